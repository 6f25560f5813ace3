// Writes a seeded numeric data file for the file benchmarks: a head line
// x1..xP,y and N records of P uniform x and a y linear in them plus noise,
// or, with "binary", a 0/1 y drawn from a logistic model of the same line,
// or, with "classes", a y of three text classes a, b, c cut from the noisy
// line at -150 and 150 (about a third each with 20 variables).
// usage: make_numeric_file PATH [RECORDS] [VARIABLES] [SEED] [binary|classes]
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(
            stderr,
            "usage: make_numeric_file PATH [RECORDS] [VARIABLES] [SEED] [binary|classes]\n");
        return 2;
    }
    const long records = argc > 2 ? std::atol(argv[2]) : 1000000;
    const int variables = argc > 3 ? std::atoi(argv[3]) : 20;
    const unsigned seed = argc > 4 ? static_cast<unsigned>(std::atol(argv[4])) : 20261123u;
    const bool binary = argc > 5 && std::strcmp(argv[5], "binary") == 0;
    const bool classes = argc > 5 && std::strcmp(argv[5], "classes") == 0;
    std::FILE* out = std::fopen(argv[1], "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    std::mt19937_64 gen(seed);
    // Raw draws mapped by hand: the standard fixes the engine, not the distributions.
    auto uniform = [&] { return (static_cast<double>(gen() >> 11) + 0.5) / 9007199254740992.0; };
    for (int j = 1; j <= variables; ++j)
        std::fprintf(out, "x%d,", j);
    std::fprintf(out, "y\n");
    for (long r = 0; r < records; ++r) {
        double y = 1.0;
        for (int j = 0; j < variables; ++j) {
            const double x = 200.0 * uniform() - 100.0;
            y += (j % 5 - 2) * x;
            std::fprintf(out, "%.6f,", x);
        }
        if (binary) {
            const double p = 1.0 / (1.0 + std::exp(-y / 200.0));
            std::fprintf(out, "%d\n", uniform() < p ? 1 : 0);
        } else if (classes) {
            const double noisy = y + 10.0 * (uniform() - 0.5);
            std::fprintf(out, "%s\n", noisy < -150.0 ? "a" : noisy < 150.0 ? "b" : "c");
        } else {
            std::fprintf(out, "%.6f\n", y + 10.0 * (uniform() - 0.5));
        }
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
