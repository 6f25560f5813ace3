#include "numeric/prob_functions.hpp"

#include "numeric/distributions.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

const char* const kNcMessage = "Input nc must be a non-negative number";
const char* const kFTableMessage = "Input p must be a number between 0 and 1";

// What stands for an infinite degree of freedom in the F table.
const double kInfiniteDf = 1000000000.0;

double read_nc(const CellMatrix& nc) {
    double value = 0.0;
    if (!is_omitted(nc))
        read_double(nc, kNcMessage, value);
    if (value < 0.0)
        throw kNcMessage;
    return value;
}

}  // namespace

CellMatrix prob_normal(double z) {
    return CellMatrix(normal_cdf(z));
}

CellMatrix prob_normal_inv(double p) {
    return CellMatrix(normal_inv(p));
}

CellMatrix prob_normal_table() {
    const int steps = 350;
    CellMatrix result(3 + steps, 2);
    result(0, 0) =
        "Cumulative Normal Distribution. Table Entry Is N(z) = Prob(Z < z). Example: Prob(Z < "
        "2.18) = 0.985371.";
    result(2, 0) = "z";
    result(2, 1) = "N(z)";
    for (int i = 0; i < steps; ++i) {
        // Each z from its index, so that no rounding accumulates down the table.
        const double z = i * 0.01;
        result(3 + i, 0) = z;
        result(3 + i, 1) = normal_cdf(z);
    }
    return result;
}

CellMatrix prob_t(double t, double df) {
    return CellMatrix(student_cdf(t, df));
}

CellMatrix prob_t_inv(double p, double df) {
    return CellMatrix(student_inv(p, df));
}

CellMatrix prob_t_table() {
    static const double probabilities[6] = {0.75, 0.9, 0.95, 0.975, 0.99, 0.995};
    const int max_df = 100;
    CellMatrix result(max_df + 3, 7);
    result(0, 0) =
        "Percentiles of the Student's t Distribution. Table Entry Is t Such That Prob(t_n < t) = "
        "P. Example: Prob(t_10 < 1.372184) = 0.9.";
    result(1, 0) = "d.f.";
    for (int j = 0; j < 6; ++j)
        result(1, j + 1) = probabilities[j];
    for (int df = 1; df <= max_df; ++df) {
        result(df + 1, 0) = df;
        for (int j = 0; j < 6; ++j)
            result(df + 1, j + 1) = student_inv(probabilities[j], df);
    }
    result(max_df + 2, 0) = "Infinity";
    for (int j = 0; j < 6; ++j)
        result(max_df + 2, j + 1) = normal_inv(probabilities[j]);
    return result;
}

CellMatrix prob_chi(double c, double df, const CellMatrix& nc) {
    const double ncp = read_nc(nc);
    return CellMatrix(nc_chi_cdf(c, df, ncp));
}

CellMatrix prob_chi_inv(double p, double df, const CellMatrix& nc) {
    const double ncp = read_nc(nc);
    return CellMatrix(nc_chi_inv(p, df, ncp));
}

CellMatrix prob_chi_table(const CellMatrix& nc) {
    static const double probabilities[13] = {0.005, 0.01, 0.025, 0.05,  0.1,  0.25, 0.5,
                                             0.75,  0.9,  0.95,  0.975, 0.99, 0.995};
    const double ncp = read_nc(nc);
    const int max_df = 50;
    CellMatrix result(max_df + 2, 14);
    result(0, 0) =
        "Percentiles of the Chi-Squared Distribution. Table Entry Is c Such That Prob(X^2 < c) = "
        "P. Example: Prob(X^2(10) < 9.341818) = 0.5.";
    result(1, 0) = "d.f.";
    for (int j = 0; j < 13; ++j)
        result(1, j + 1) = probabilities[j];
    for (int df = 1; df <= max_df; ++df) {
        result(df + 1, 0) = df;
        for (int j = 0; j < 13; ++j)
            result(df + 1, j + 1) = nc_chi_inv(probabilities[j], df, ncp);
    }
    return result;
}

CellMatrix prob_f(double f, double df1, double df2) {
    return CellMatrix(f_cdf_boost(f, df1, df2));
}

CellMatrix prob_f_inv(double p, double df1, double df2) {
    return CellMatrix(f_inv(p, df1, df2));
}

CellMatrix prob_f_table(const CellMatrix& p) {
    double probability = 0.95;
    if (!is_omitted(p))
        read_double(p, kFTableMessage, probability);
    if (probability < 0.0 || probability > 1.0)
        throw kFTableMessage;

    // Degrees of freedom 1 to 100, then the infinite one.
    const int count = 101;
    CellMatrix result(count + 2, count + 1);
    result(0, 0) =
        "Percentiles of the F-Distribution. Table Entry Is f Such That Prob(F(df1, df2) < f) = P. "
        "Example: Prob(F(5, 6) < 4.387374) = 0.95.";
    result(1, 0) = "df2 \\ df1";
    for (int k = 1; k <= count; ++k) {
        if (k < count) {
            result(1, k) = k;
            result(k + 1, 0) = k;
        } else {
            result(1, k) = "Infinity";
            result(k + 1, 0) = "Infinity";
        }
    }
    for (int i = 1; i <= count; ++i) {
        const double df2 = i < count ? i : kInfiniteDf;
        for (int j = 1; j <= count; ++j) {
            const double df1 = j < count ? j : kInfiniteDf;
            result(i + 1, j) = f_inv(probability, df1, df2);
        }
    }
    return result;
}

CellMatrix Cornish_Fisher_expansion(double cl, double skewness, double kurtosis) {
    if (!(cl > 0.0 && cl < 1.0))
        throw "Input confidence level cl must be between 0 and 1";
    const double z = normal_inv(cl);
    const double z2 = z * z;
    const double z3 = z2 * z;
    const double percentile = z + (z2 - 1.0) * skewness / 6.0 + (z3 - 3.0 * z) * kurtosis / 24.0 -
                              (2.0 * z3 - 5.0 * z) * skewness * skewness / 36.0;
    CellMatrix result(4, 2);
    result(0, 0) = "Cornish-Fisher expansion";
    result(2, 0) = "Gaussian variate";
    result(2, 1) = "Confidence level";
    result(3, 0) = z;
    result(3, 1) = percentile;
    return result;
}

}  // namespace zentable
