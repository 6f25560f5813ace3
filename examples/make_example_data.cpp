// Writes the example data sets from fixed seeds. credit.csv: 3000 customers
// with a continuous target (spend), a binary target (default_flag), three
// categorical columns and some missing values. loans.csv, beside it: 240
// loans followed quarter by quarter until default, early repayment or the end
// of observation. prices.csv: a monthly price index over 12 years and its
// monthly change. returns.csv: three years of daily returns of a share whose
// variance clusters. sales.csv: monthly sales over 12 years with a trend and
// a season of 12 months. The draws use only the raw 32-bit output of std::mt19937,
// which the standard fixes, so every platform writes the same files.
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

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

// Each loan opens in one of the 12 quarters observed and is followed to the
// end of them; each quarter it defaults with its product's chance, else may be
// repaid early. A loan repaid or still running at the end is censored.
bool write_loans(const std::string& path) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return false;
    }
    std::mt19937 loans(20261125u);
    auto draw = [&] { return (loans() + 0.5) / 4294967296.0; };
    const char* const products[] = {"Card", "Personal", "Mortgage"};
    const double product_cdf[] = {0.4, 0.75, 1.0};
    const double default_chance[] = {0.07, 0.04, 0.015};
    std::fprintf(out, "id,product,quarters,defaulted\n");
    for (int id = 1; id <= 240; ++id) {
        const double u = draw();
        const int p = u < product_cdf[0] ? 0 : u < product_cdf[1] ? 1 : 2;
        const int observed = 12 - static_cast<int>(12 * draw());
        int quarters = observed, defaulted = 0;
        for (int q = 1; q <= observed; ++q) {
            if (draw() < default_chance[p]) {
                quarters = q;
                defaulted = 1;
                break;
            }
            if (draw() < 0.03) {
                quarters = q;
                break;
            }
        }
        std::fprintf(out, "%d,%s,%d,%d\n", id, products[p], quarters, defaulted);
    }
    return std::fclose(out) == 0;
}

// A monthly price index over 12 years: a random walk with drift, so that its
// autocorrelations die away slowly and the Dickey-Fuller test finds a unit
// root, beside its change on the month before, which is white noise about the
// drift. The first month has no change and leaves the cell empty.
bool write_prices(const std::string& path) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return false;
    }
    std::mt19937 prices(20261129u);
    auto draw = [&] { return (prices() + 0.5) / 4294967296.0; };
    std::fprintf(out, "month,index,change\n");
    double index = 100.0;
    for (int month = 1; month <= 144; ++month) {
        const double u1 = draw(), u2 = draw();
        const double shock = std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
        const double previous = index;
        index = std::round((index + 0.25 + 1.5 * shock) * 100.0) / 100.0;
        if (month == 1) {
            std::fprintf(out, "%d,%.2f,\n", month, index);
        } else {
            std::fprintf(out, "%d,%.2f,%.2f\n", month, index, index - previous);
        }
    }
    return std::fclose(out) == 0;
}

// Daily returns over three years whose variance follows GARCH(1, 1) with
// omega 2e-6, alpha 0.08 and beta 0.9, starting at its long-run level: quiet
// and turbulent spells that a constant variance would miss.
bool write_returns(const std::string& path) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return false;
    }
    std::mt19937 returns(20261130u);
    auto draw = [&] { return (returns() + 0.5) / 4294967296.0; };
    std::fprintf(out, "day,return\n");
    const double omega = 2e-6, alpha = 0.08, beta = 0.9;
    double variance = omega / (1.0 - alpha - beta);
    double previous = 0.0;
    for (int day = 1; day <= 750; ++day) {
        const double u1 = draw(), u2 = draw();
        const double shock = std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
        variance = omega + alpha * previous * previous + beta * variance;
        previous = std::round(std::sqrt(variance) * shock * 1e6) / 1e6;
        std::fprintf(out, "%d,%.6f\n", day, previous);
    }
    return std::fclose(out) == 0;
}

// Monthly sales over 12 years: a season of 12 months about a rising level,
// the airline model (1 - B)(1 - B^12) x = (1 - 0.4B)(1 - 0.6B^12) a with a of
// standard deviation 2, so that a seasonal ARIMA fits and forecasts it.
bool write_sales(const std::string& path) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return false;
    }
    std::mt19937 sales(20261131u);
    auto draw = [&] { return (sales() + 0.5) / 4294967296.0; };
    const double season[12] = {-8, -10, -2, 1, 4, 7, 9, 8, 3, -1, -4, -7};
    std::fprintf(out, "month,sales\n");
    double a[14] = {0};  // the shocks of the last 14 months, newest first
    double x[14] = {0};  // the deviations from level and season, likewise
    for (int month = 1; month <= 144; ++month) {
        const double u1 = draw(), u2 = draw();
        for (int k = 13; k > 0; --k) {
            a[k] = a[k - 1];
            x[k] = x[k - 1];
        }
        a[0] = 2.0 * std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
        const double w = a[0] - 0.4 * a[1] - 0.6 * a[12] + 0.24 * a[13];
        x[0] = w + x[1] + x[12] - x[13];
        const double level = 200.0 + 0.5 * month + season[(month - 1) % 12];
        std::fprintf(out, "%d,%.1f\n", month, level + x[0]);
    }
    return std::fclose(out) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    const char* path = argc > 1 ? argv[1] : "credit.csv";
    const std::string credit(path);
    const std::string folder = credit.substr(0, credit.find_last_of('/') + 1);
    if (!write_loans(folder + "loans.csv"))
        return 1;
    if (!write_prices(folder + "prices.csv"))
        return 1;
    if (!write_returns(folder + "returns.csv"))
        return 1;
    if (!write_sales(folder + "sales.csv"))
        return 1;
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
