// Writes seeded survival data for the Kaplan-Meier benchmark as three
// one-column files in a folder: days.csv (whole days 1 to 3650), status.csv
// (1 for an event, 0 for about a quarter censored) and group.csv (three text
// groups, each with its own hazard).
// usage: make_survival_files FOLDER [RECORDS] [SEED]
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: make_survival_files FOLDER [RECORDS] [SEED]\n");
        return 2;
    }
    const std::string folder = argv[1];
    const long records = argc > 2 ? std::atol(argv[2]) : 1000000;
    const unsigned seed = argc > 3 ? static_cast<unsigned>(std::atol(argv[3])) : 20261124u;
    std::FILE* days = std::fopen((folder + "/days.csv").c_str(), "w");
    std::FILE* status = std::fopen((folder + "/status.csv").c_str(), "w");
    std::FILE* group = std::fopen((folder + "/group.csv").c_str(), "w");
    if (!days || !status || !group) {
        std::fprintf(stderr, "cannot write the files in %s\n", folder.c_str());
        return 1;
    }
    std::mt19937_64 gen(seed);
    // Raw draws mapped by hand: the standard fixes the engine, not the distributions.
    auto uniform = [&] { return (static_cast<double>(gen() >> 11) + 0.5) / 9007199254740992.0; };
    const char* const names[] = {"alpha", "beta", "gamma"};
    const double mean_days[] = {900.0, 1400.0, 2100.0};
    std::fprintf(days, "days\n");
    std::fprintf(status, "status\n");
    std::fprintf(group, "group\n");
    for (long r = 0; r < records; ++r) {
        const int g = static_cast<int>(uniform() * 3.0);
        const double t = std::ceil(-mean_days[g] * std::log(uniform()));
        std::fprintf(days, "%d\n", static_cast<int>(std::fmin(t, 3650.0)));
        std::fprintf(status, "%d\n", uniform() < 0.25 ? 0 : 1);
        std::fprintf(group, "%s\n", names[g]);
    }
    const bool closed =
        std::fclose(days) == 0 && std::fclose(status) == 0 && std::fclose(group) == 0;
    return closed ? 0 : 1;
}
