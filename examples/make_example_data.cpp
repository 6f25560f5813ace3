// Writes the example data set, credit.csv, from a fixed seed: 3000 customers
// with a continuous target (spend), a binary target (default_flag), three
// categorical columns and some missing values. The draws use only the raw
// 32-bit output of std::mt19937, which the standard fixes, so every platform
// writes the same file.
#include <cmath>
#include <cstdio>
#include <random>

namespace {

std::mt19937 generator(20261123u);

double uniform() {
    return (generator() + 0.5) / 4294967296.0;
}

double normal() {
    // Box-Muller on two uniforms; the second value is dropped for simplicity.
    const double u1 = uniform(), u2 = uniform();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
}

template <int N>
const char* pick(const char* const (&choices)[N], const double (&cumulative)[N]) {
    const double u = uniform();
    for (int i = 0; i < N - 1; ++i)
        if (u < cumulative[i])
            return choices[i];
    return choices[N - 1];
}

}  // namespace

int main(int argc, char** argv) {
    const char* path = argc > 1 ? argv[1] : "credit.csv";
    std::FILE* out = std::fopen(path, "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path);
        return 1;
    }
    const char* const regions[] = {"North", "South", "East", "West"};
    const double region_cdf[] = {0.3, 0.55, 0.8, 1.0};
    const double region_effect[] = {40.0, -25.0, 10.0, 0.0};
    const char* const segments[] = {"Retail", "Premium", "Student"};
    const double segment_cdf[] = {0.6, 0.85, 1.0};
    const char* const channels[] = {"Branch", "Online", "Phone"};
    const double channel_cdf[] = {0.35, 0.85, 1.0};

    std::fprintf(
        out, "id,age,income,debt_ratio,utilisation,region,segment,channel,spend,default_flag\n");
    for (int id = 1; id <= 3000; ++id) {
        const double age = std::round(18 + 52 * uniform());
        const double income = std::round(18000 + 900 * (age - 18) + 15000 * std::fabs(normal()));
        const double debt_ratio = std::fmin(0.95, std::fabs(0.3 + 0.15 * normal()));
        const double utilisation = std::fmin(1.0, uniform() * (0.4 + debt_ratio));
        const char* region = pick(regions, region_cdf);
        int r = 0;
        while (regions[r] != region)
            ++r;
        const char* segment = pick(segments, segment_cdf);
        const char* channel = pick(channels, channel_cdf);

        const double spend =
            150 + 3.0 * age + 0.004 * income - 180 * debt_ratio + region_effect[r] + 35 * normal();
        const double score = -2.2 + 3.0 * debt_ratio + 2.0 * utilisation - 0.015 * (age - 40);
        const int default_flag = uniform() < 1 / (1 + std::exp(-score)) ? 1 : 0;

        // About 3% of incomes and 2% of utilisations are not known.
        const bool income_missing = uniform() < 0.03;
        const bool utilisation_missing = uniform() < 0.02;
        std::fprintf(out, "%d,%.0f,", id, age);
        if (!income_missing)
            std::fprintf(out, "%.0f", income);
        std::fprintf(out, ",%.4f,", debt_ratio);
        if (!utilisation_missing)
            std::fprintf(out, "%.4f", utilisation);
        std::fprintf(out, ",%s,%s,%s,%.2f,%d\n", region, segment, channel, spend, default_flag);
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
