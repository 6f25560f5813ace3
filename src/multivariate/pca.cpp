#include "multivariate/pca.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "numeric/covariance.hpp"
#include "numeric/decompositions.hpp"
#include "numeric/symmetric_eigen.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kEmpty = "Input data is empty";
constexpr const char* kBadMode = "Valid input of covOrCorr is COV, CORR, or MATRIX";
constexpr const char* kBadFactors = "numFactors must be a positive integer";
constexpr const char* kTooManyFactors =
    "numFactors must be less than or equal to number of variables";
constexpr const char* kNotSquare = "Input matrix must be a square matrix";
constexpr const char* kMixedHeader = "The first row must be all numbers or all strings";

constexpr int kVarimaxRounds = 50;
constexpr double kVarimaxStop = 1e-07;

enum class Source { covariance, correlation, matrix };

Source read_source(const CellMatrix& covOrCorr) {
    std::string text = "COV";
    read_text(covOrCorr, kBadMode, text);
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (text == "COV")
        return Source::covariance;
    if (text == "CORR")
        return Source::correlation;
    if (text == "MATRIX")
        return Source::matrix;
    throw kBadMode;
}

struct Variables {
    svec names;
    dmat data;  // one row per record, or the matrix itself
    bvec valid;
};

// A first row of texts names the columns; a first row of numbers is data, and
// the columns are then named X1, X2, ... A cell that is not a number marks
// its record as missing, as in every table of records.
Variables read_variables(const CellMatrix& inputData) {
    const int kind = header_kind(inputData);
    if (kind == 2)
        throw kMixedHeader;
    Variables v;
    if (kind == 1) {
        NamedTable table = read_table_with_headers(inputData);
        v.names = std::move(table.names);
        v.data = std::move(table.data);
        v.valid = std::move(table.valid);
        return v;
    }
    const std::size_t rows = inputData.RowsInStructure();
    const std::size_t columns = inputData.ColumnsInStructure();
    for (std::size_t j = 0; j < columns; ++j)
        v.names.push_back("X" + std::to_string(j + 1));
    v.data.assign(rows, dvec(columns));
    v.valid.assign(rows, true);
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            const CellValue& cell = inputData(i, j);
            v.data[i][j] = cell_to_double(cell);
            v.valid[i] = v.valid[i] && cell.IsANumber();
        }
    }
    return v;
}

// The records of a data table without those that miss a value.
dmat complete_records(Variables&& v) {
    dmat kept;
    for (std::size_t i = 0; i < v.data.size(); ++i)
        if (v.valid[i])
            kept.push_back(std::move(v.data[i]));
    if (kept.empty())
        throw kEmpty;
    return kept;
}

struct Analysed {
    svec names;
    Source source = Source::covariance;
    dmat m;
};

Analysed analysed_matrix(Variables&& v, Source source) {
    Analysed a;
    a.source = source;
    a.names = std::move(v.names);
    switch (source) {
        case Source::covariance:
            a.m = covarianceMatrix(complete_records(std::move(v)));
            break;
        case Source::correlation:
            a.m = correlationMatrix(complete_records(std::move(v)));
            break;
        case Source::matrix:
            // A matrix is not a table of records: its cells stand as they read.
            a.m = std::move(v.data);
            break;
    }
    return a;
}

const char* label_of(Source source) {
    switch (source) {
        case Source::covariance:
            return "Covariance matrix";
        case Source::correlation:
            return "Correlation matrix";
        case Source::matrix:
            return "Input matrix";
    }
    return "";
}

// Rows 2 to p + 2: the label and the names across, then each row of M.
void write_matrix_block(CellMatrix& r, const Analysed& a) {
    const std::size_t p = a.names.size();
    r(2, 0) = label_of(a.source);
    for (std::size_t j = 0; j < p; ++j) {
        r(2, j + 1) = a.names[j];
        r(j + 3, 0) = a.names[j];
        for (std::size_t c = 0; c < p; ++c)
            r(j + 3, c + 1) = a.m[j][c];
    }
}

// The heading on row `top`, then per eigenvalue its share and the running
// share, both over `total`.
void write_eigenvalues(CellMatrix& r, std::size_t top, const dvec& values, double total) {
    const char* const heads[] = {"#", "Eigenvalue", "Proportion", "Cumulative Proportion"};
    for (std::size_t c = 0; c < 4; ++c)
        r(top, c) = heads[c];
    double running = 0.0;
    for (std::size_t j = 0; j < values.size(); ++j) {
        running += values[j];
        r(top + 1 + j, 0) = static_cast<double>(j + 1);
        r(top + 1 + j, 1) = values[j];
        r(top + 1 + j, 2) = values[j] / total;
        r(top + 1 + j, 3) = running / total;
    }
}

// A title with "Factor1" ... across and a last heading, then one row per
// variable: its loadings and the sum of their squares.
void write_loadings(CellMatrix& r, std::size_t top, const char* title, const svec& names,
                    const dmat& loadings, const dvec& communality) {
    const std::size_t k = loadings.empty() ? 0 : loadings[0].size();
    r(top, 0) = title;
    for (std::size_t f = 0; f < k; ++f)
        r(top, f + 1) = "Factor" + std::to_string(f + 1);
    r(top, k + 1) = "Communality";
    for (std::size_t i = 0; i < names.size(); ++i) {
        r(top + 1 + i, 0) = names[i];
        for (std::size_t f = 0; f < k; ++f)
            r(top + 1 + i, f + 1) = loadings[i][f];
        r(top + 1 + i, k + 1) = communality[i];
    }
}

dvec row_sums_of_squares(const dmat& a) {
    dvec h(a.size(), 0.0);
    for (std::size_t i = 0; i < a.size(); ++i)
        for (double x : a[i])
            h[i] += x * x;
    return h;
}

// Everything is read and checked before any matrix is formed, so that a bad
// argument beside a wide table fails at once.
Analysed read_input(const CellMatrix& inputData, Source source, int factors) {
    Variables v = read_variables(inputData);
    if (factors > static_cast<int>(v.names.size()))
        throw kTooManyFactors;
    if (source == Source::matrix && v.data.size() != v.names.size())
        throw kNotSquare;
    return analysed_matrix(std::move(v), source);
}

}  // namespace

dmat varimaxRotation(const dmat& b, double gamma) {
    const std::size_t p = b.size();
    const std::size_t k = b[0].size();
    dmat t = identity(static_cast<int>(k));
    const double c = gamma / static_cast<double>(p);
    const dmat bt = transpose(b);
    double d = 0.0;
    for (int round = 0; round < kVarimaxRounds; ++round) {
        const dmat z = mat_mul(b, t);
        dvec scale(k, 0.0);
        for (std::size_t f = 0; f < k; ++f) {
            for (std::size_t i = 0; i < p; ++i)
                scale[f] += z[i][f] * z[i][f];
            scale[f] *= c;
        }
        // Z times Z times (Z - Z D), the difference first: this order is the
        // rotation's definition here, not the usual cube less Z D.
        dmat target(p, dvec(k));
        for (std::size_t i = 0; i < p; ++i)
            for (std::size_t f = 0; f < k; ++f)
                target[i][f] = z[i][f] * z[i][f] * (z[i][f] - z[i][f] * scale[f]);
        const SVD svd = svdDecomp(mat_mul(bt, target));
        t = mat_mul(svd.u, transpose(svd.v));
        double d_new = 0.0;
        for (double w : svd.w)
            d_new += w;
        if (is_zero(d_new) || std::fabs((d_new - d) / d_new) < kVarimaxStop)
            break;
        d = d_new;
    }
    return t;
}

CellMatrix PCA(const CellMatrix& inputData, const CellMatrix& covOrCorr) {
    if (is_omitted(inputData))
        throw kEmpty;
    const Source source = read_source(covOrCorr);
    const Analysed a = read_input(inputData, source, 0);

    const std::size_t p = a.names.size();
    const EigenPairs eigen = symmetricEigen(a.m);
    double total = 0.0;
    for (double l : eigen.values)
        total += l;

    CellMatrix r(3 * p + 7, std::max<std::size_t>(p + 1, 4));
    r(0, 0) = "Principal Component Analysis";
    write_matrix_block(r, a);
    write_eigenvalues(r, p + 4, eigen.values, total);
    const std::size_t top = 2 * p + 6;
    r(top, 0) = "Eigenvectors";
    for (std::size_t j = 0; j < p; ++j) {
        r(top, j + 1) = "PC" + std::to_string(j + 1);
        r(top + 1 + j, 0) = a.names[j];
        for (std::size_t c = 0; c < p; ++c)
            r(top + 1 + j, c + 1) = eigen.vectors[j][c];
    }
    return r;
}

CellMatrix factor_analysis(const CellMatrix& inputData, const CellMatrix& numFactors,
                           const CellMatrix& covOrCorr) {
    if (is_omitted(inputData))
        throw kEmpty;
    int k = 0;
    read_int_required(numFactors, kBadFactors, k);
    if (k < 1)
        throw kBadFactors;
    const Source source = read_source(covOrCorr);
    const Analysed a = read_input(inputData, source, k);

    const std::size_t p = a.names.size();
    const auto factors = static_cast<std::size_t>(k);
    const double total = trace(a.m);
    const EigenPairs eigen = symmetricEigen(a.m);
    dmat loadings(p, dvec(factors));
    for (std::size_t f = 0; f < factors; ++f) {
        const double root = std::sqrt(eigen.values[f]);
        for (std::size_t i = 0; i < p; ++i)
            loadings[i][f] = eigen.vectors[i][f] * root;
    }
    const dvec communality = row_sums_of_squares(loadings);
    dmat normalised = loadings;
    for (std::size_t i = 0; i < p; ++i) {
        const double root = std::sqrt(communality[i]);
        for (double& x : normalised[i])
            x /= root;
    }
    const dmat rotated = mat_mul(loadings, varimaxRotation(normalised, 1.0));

    // Rows as the layout lists them add up to 4p + 15; the last row stays
    // blank so that the table keeps the size users select for it.
    CellMatrix r(4 * p + 16, std::max({std::size_t{4}, p + 1, factors + 2}));
    r(0, 0) = "Factor Analysis";
    write_matrix_block(r, a);
    r(p + 4, 0) = "Total Variance";
    r(p + 4, 1) = total;
    write_eigenvalues(r, p + 6, eigen.values, total);
    write_loadings(r, 2 * p + 8, "Factors", a.names, loadings, communality);
    write_loadings(r, 3 * p + 10, "Rotated Factors", a.names, rotated,
                   row_sums_of_squares(rotated));

    const std::size_t top = 4 * p + 12;
    r(top, 0) = "Variance Explained by Each Factor";
    r(top + 1, 0) = "Variance Explained";
    r(top + 2, 0) = "Proportion of Variance Explained";
    double sum = 0.0;
    for (std::size_t f = 0; f < factors; ++f) {
        double explained = 0.0;
        for (std::size_t i = 0; i < p; ++i)
            explained += rotated[i][f] * rotated[i][f];
        sum += explained;
        r(top, f + 1) = "Factor" + std::to_string(f + 1);
        r(top + 1, f + 1) = explained;
        r(top + 2, f + 1) = explained / total;
    }
    r(top, factors + 1) = "Total from Factors";
    r(top + 1, factors + 1) = sum;
    r(top + 2, factors + 1) = sum / total;
    return r;
}

}  // namespace zentable
