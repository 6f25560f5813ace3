// Writes a seeded file of records drawn around centers, for the clustering
// benchmarks: a head line x1..xP and N records, record i drawn around center
// i mod K, each coordinate the center's plus a standard normal draw; the
// centers' coordinates are uniform on -3 to 3, so the groups overlap and
// Lloyd's iteration takes many rounds.
// usage: make_cluster_file PATH [RECORDS] [VARIABLES] [CENTERS] [SEED]
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: make_cluster_file PATH [RECORDS] [VARIABLES] [CENTERS] [SEED]\n");
        return 2;
    }
    const long records = argc > 2 ? std::atol(argv[2]) : 100000;
    const int variables = argc > 3 ? std::atoi(argv[3]) : 10;
    const int centers = argc > 4 ? std::atoi(argv[4]) : 8;
    const unsigned seed = argc > 5 ? static_cast<unsigned>(std::atol(argv[5])) : 20261125u;
    std::FILE* out = std::fopen(argv[1], "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    std::mt19937_64 gen(seed);
    // Raw draws mapped by hand: the standard fixes the engine, not the distributions.
    auto uniform = [&] { return (static_cast<double>(gen() >> 11) + 0.5) / 9007199254740992.0; };
    auto normal = [&] {
        return std::sqrt(-2.0 * std::log(uniform())) * std::cos(6.283185307179586 * uniform());
    };
    std::vector<double> center(static_cast<std::size_t>(centers * variables));
    for (double& c : center)
        c = 6.0 * uniform() - 3.0;
    for (int j = 1; j <= variables; ++j)
        std::fprintf(out, j < variables ? "x%d," : "x%d\n", j);
    for (long r = 0; r < records; ++r) {
        const double* c = &center[static_cast<std::size_t>((r % centers) * variables)];
        for (int j = 0; j < variables; ++j)
            std::fprintf(out, j + 1 < variables ? "%.6f," : "%.6f\n", c[j] + normal());
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
