// Writes the seeded files of the table-command benchmarks into a folder:
//   sort.csv    a head line and N records of five fields (id, name, score,
//               region, amount): name a text key of 20000 values, score a
//               number with two decimals;
//   merge1.csv, merge2.csv   M rows of three numbers without a head line,
//               the first column a whole key drawn from 1.5 M values.
// usage: make_table_files FOLDER [N] [M] [SEED]
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace {

std::FILE* open_or_die(const std::string& path) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        std::exit(1);
    }
    return out;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: make_table_files FOLDER [N] [M] [SEED]\n");
        return 2;
    }
    const std::string folder = argv[1];
    const long records = argc > 2 ? std::atol(argv[2]) : 1000000;
    const long merge_rows = argc > 3 ? std::atol(argv[3]) : 100000;
    const unsigned seed = argc > 4 ? static_cast<unsigned>(std::atol(argv[4])) : 20261125u;
    // Raw draws mapped by hand: the standard fixes the engine, not the distributions.
    std::mt19937_64 gen(seed);
    auto below = [&](unsigned long n) { return static_cast<unsigned long>(gen() % n); };

    static const char* const regions[] = {"North", "South", "East", "West"};
    std::FILE* sort = open_or_die(folder + "/sort.csv");
    std::fprintf(sort, "id,name,score,region,amount\n");
    for (long r = 1; r <= records; ++r) {
        std::fprintf(sort, "%ld,c%05lu,%lu.%02lu,%s,%lu\n", r, below(20000), below(1000),
                     below(100), regions[below(4)], below(100000));
    }
    std::fclose(sort);

    const unsigned long keys = static_cast<unsigned long>(merge_rows) * 3 / 2;
    for (int t = 1; t <= 2; ++t) {
        std::FILE* merge = open_or_die(folder + "/merge" + std::to_string(t) + ".csv");
        for (long r = 0; r < merge_rows; ++r) {
            std::fprintf(merge, "%lu,%lu,%lu.%lu\n", below(keys), below(1000), below(10000),
                         below(10));
        }
        std::fclose(merge);
    }
    return 0;
}
