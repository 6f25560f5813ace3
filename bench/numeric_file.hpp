#pragma once

#include <cstdlib>
#include <fstream>
#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable::bench {

// The 10^6 by 20 numeric file of the file benchmarks (about 200 MB), made once
// by make_numeric_file in the working directory, or named by ZENTABLE_BENCH_FILE.
inline const std::string& numeric_file_1e6x20() {
    static const std::string path = [] {
        const char* given = std::getenv("ZENTABLE_BENCH_FILE");
        const std::string p = given ? given : "bench_numeric_1e6x20.csv";
        if (!std::ifstream(p)) {
            const std::string command = "./make_numeric_file " + p + " 1000000 20";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        return p;
    }();
    return path;
}

// The same shape with a 0/1 y drawn from a logistic model of the x, for the
// binary-target benchmarks, or named by ZENTABLE_BENCH_BINARY_FILE.
inline const std::string& binary_file_1e6x20() {
    static const std::string path = [] {
        const char* given = std::getenv("ZENTABLE_BENCH_BINARY_FILE");
        const std::string p = given ? given : "bench_binary_1e6x20.csv";
        if (!std::ifstream(p)) {
            const std::string command = "./make_numeric_file " + p + " 1000000 20 20261123 binary";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        return p;
    }();
    return path;
}

// The same shape with a y of three text classes, for the classifiers, or
// named by ZENTABLE_BENCH_CLASSES_FILE.
inline const std::string& classes_file_1e6x20() {
    static const std::string path = [] {
        const char* given = std::getenv("ZENTABLE_BENCH_CLASSES_FILE");
        const std::string p = given ? given : "bench_classes_1e6x20.csv";
        if (!std::ifstream(p)) {
            const std::string command = "./make_numeric_file " + p + " 1000000 20 20261123 classes";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        return p;
    }();
    return path;
}

// Its x names, x1 to x20, in one row of cells.
inline CellMatrix x_names_1e6x20() {
    CellMatrix names(1, 20);
    for (int j = 0; j < 20; ++j)
        names(0, j) = "x" + std::to_string(j + 1);
    return names;
}

}  // namespace zentable::bench
