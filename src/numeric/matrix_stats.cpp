#include "numeric/matrix_stats.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>

#include "data/delimited_file.hpp"
#include "numeric/covariance.hpp"
#include "numeric/matrix_cells.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

// Only the records complete in every variable.
dmat complete_records(const NamedTable& table) {
    dmat out;
    for (std::size_t i = 0; i < table.data.size(); ++i)
        if (table.valid[i])
            out.push_back(table.data[i]);
    return out;
}

// A k by k result labelled by names: names across row 0 and down column 0.
void check_labelled_size(std::size_t k) {
    check_result_size(static_cast<double>(k) + 1.0, static_cast<double>(k) + 1.0);
}

CellMatrix labelled_matrix(const svec& names, const dmat& m) {
    check_labelled_size(names.size());
    CellMatrix r(names.size() + 1, names.size() + 1);
    for (std::size_t j = 0; j < names.size(); ++j) {
        r(0, j + 1) = names[j];
        r(j + 1, 0) = names[j];
    }
    write_matrix(r, 1, 1, m);
    return r;
}

// Names and complete records of a table with or without a header row.
NamedTable read_data(const CellMatrix& inputData) {
    if (is_omitted(inputData))
        throw "Input data is empty";
    const int kind = header_kind(inputData);
    if (kind == 2)
        throw "The first row must be all numbers or all strings";
    const std::size_t k = inputData.ColumnsInStructure();
    // The result is k + 1 square: refused before a cell is decoded.
    check_labelled_size(k);
    NamedTable table;
    if (kind == 1) {
        table = read_table_with_headers(inputData);
        table.data = complete_records(table);
    } else {
        for (std::size_t j = 0; j < k; ++j)
            table.names.push_back("X" + std::to_string(j + 1));
        table.data = read_numeric_matrix(inputData);
    }
    return table;
}

NamedTable read_file_data(const std::string& filename, const CellMatrix& varNames,
                          const CellMatrix& delimiter) {
    const svec names =
        read_file_variable_names(varNames, "Error: variable names (varNames) are missing");
    const char delim = read_delimiter(delimiter);
    check_labelled_size(names.size());
    NamedTable table = read_numeric_table(filename, names, delim);
    table.data = complete_records(table);
    return table;
}

dmat read_square(const CellMatrix& matrix, const char* message) {
    if (matrix.RowsInStructure() != matrix.ColumnsInStructure())
        throw message;
    return read_numeric_matrix(matrix);
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// The power of the distance; an infinite one is Chebyshev's.
double read_power(const CellMatrix& p) {
    constexpr const char* kInCell = "Input p must be in a cell";
    constexpr const char* kBelowOne =
        "Input p of the power of the Minkowski must be larger than or equal to 1";
    if (is_omitted(p))
        return 2.0;
    if (p.RowsInStructure() != 1 || p.ColumnsInStructure() != 1)
        throw kInCell;
    if (p(0, 0).IsString()) {
        const std::string name = upper(trim(p(0, 0).StringValue()));
        if (name == "EUCLIDEAN")
            return 2.0;
        if (name == "MANHATTAN")
            return 1.0;
        if (name == "CHEBYSHEV")
            return HUGE_VAL;
        throw kBelowOne;
    }
    const double power = p(0, 0).NumericValue();
    if (!(power >= 1.0))
        throw kBelowOne;
    return power;
}

double distance(const dvec& a, const dvec& b, double power) {
    double sum = 0.0;
    for (std::size_t k = 0; k < a.size(); ++k) {
        const double d = std::fabs(a[k] - b[k]);
        if (std::isinf(power))
            sum = std::max(sum, d);
        else if (power == 1.0)
            sum += d;
        else if (power == 2.0)
            sum += d * d;
        else
            sum += std::pow(d, power);
    }
    if (std::isinf(power) || power == 1.0)
        return sum;
    return power == 2.0 ? std::sqrt(sum) : std::pow(sum, 1.0 / power);
}

}  // namespace

CellMatrix matrix_cov(const CellMatrix& inputData) {
    const NamedTable t = read_data(inputData);
    return labelled_matrix(t.names, covarianceMatrix(t.data));
}

CellMatrix matrix_corr(const CellMatrix& inputData) {
    const NamedTable t = read_data(inputData);
    return labelled_matrix(t.names, correlationMatrix(t.data));
}

CellMatrix matrix_cov_from_file(const std::string& filename, const CellMatrix& varNames,
                                const CellMatrix& delimiter) {
    const NamedTable t = read_file_data(filename, varNames, delimiter);
    return labelled_matrix(t.names, covarianceMatrix(t.data));
}

CellMatrix matrix_corr_from_file(const std::string& filename, const CellMatrix& varNames,
                                 const CellMatrix& delimiter) {
    const NamedTable t = read_file_data(filename, varNames, delimiter);
    return labelled_matrix(t.names, correlationMatrix(t.data));
}

CellMatrix matrix_corr_from_cov(const CellMatrix& matrix) {
    dmat c = read_square(matrix, "Input covariance matrix must be square matrix");
    const dvec d = vecdiag(c);
    // In the order of correlationMatrix, so that both give the same digits.
    for (std::size_t a = 0; a < c.size(); ++a)
        for (std::size_t b = 0; b < c.size(); ++b)
            c[a][b] = c[a][b] / std::sqrt(d[a]) / std::sqrt(d[b]);
    return matrix_table(c);
}

CellMatrix matrix_cov_from_corr(const CellMatrix& matrix, const CellMatrix& stdevs) {
    if (matrix.RowsInStructure() != matrix.ColumnsInStructure())
        throw "Input correlation matrix must be square matrix";
    if (stdevs.RowsInStructure() != 1 && stdevs.ColumnsInStructure() != 1)
        throw "Input stdevs must be in one row or one column";
    if (std::max(stdevs.RowsInStructure(), stdevs.ColumnsInStructure()) != matrix.RowsInStructure())
        throw "The size of stdevs must be the same as the size of matrix";
    dmat c = read_numeric_matrix(matrix);
    dvec s;
    for (const dvec& row : read_numeric_matrix(stdevs))
        s.insert(s.end(), row.begin(), row.end());
    for (double x : s)
        if (!(x >= 0.0))
            throw "All elements in stdevs must be non-negative";
    for (std::size_t a = 0; a < c.size(); ++a)
        for (std::size_t b = 0; b < c.size(); ++b)
            c[a][b] = c[a][b] * s[a] * s[b];
    return matrix_table(c);
}

CellMatrix matrix_stdev_from_cov(const CellMatrix& matrix) {
    const dmat c = read_square(matrix, "Input covariance matrix must be square matrix");
    dmat out;
    for (std::size_t i = 0; i < c.size(); ++i)
        out.push_back({std::sqrt(c[i][i])});
    return matrix_table(out);
}

CellMatrix matrix_distance(const CellMatrix& inputData, const CellMatrix& p) {
    if (is_omitted(inputData))
        throw "Input data is empty";
    const double power = read_power(p);
    const double n = static_cast<double>(inputData.RowsInStructure());
    check_result_size(n, n);
    const dmat x = read_numeric_matrix(inputData);
    dmat d(x.size(), dvec(x.size(), 0.0));
    for (std::size_t i = 0; i < x.size(); ++i)
        for (std::size_t j = i + 1; j < x.size(); ++j)
            d[i][j] = d[j][i] = distance(x[i], x[j], power);
    return matrix_table(d);
}

CellMatrix matrix_freq(const CellMatrix& matrix, const CellMatrix& includeMissing) {
    constexpr const char* kIncludeMissing = "Input includeMissing must be 0 or 1";
    int include = 0;
    read_int(includeMissing, kIncludeMissing, include);
    if (include != 0 && include != 1)
        throw kIncludeMissing;

    std::map<double, int> numbers;
    std::map<std::string, int> texts;
    int missing = 0;
    for (std::size_t i = 0; i < matrix.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < matrix.ColumnsInStructure(); ++j) {
            const CellValue& cell = matrix(i, j);
            if (cell.IsANumber() && !std::isnan(cell.NumericValue())) {
                ++numbers[cell.NumericValue()];
                continue;
            }
            const std::string text = trim(cell_to_text(cell));
            if (text.empty())
                ++missing;
            else
                ++texts[text];
        }
    int total = include == 1 ? missing : 0;
    for (const auto& level : numbers)
        total += level.second;
    for (const auto& level : texts)
        total += level.second;

    const std::size_t rows = 1 + numbers.size() + texts.size() + (include == 1 ? 1 : 0);
    CellMatrix r(rows, 5);
    const char* const heads[] = {"Value", "Freq", "Percent", "CumFreq", "CumPercent"};
    for (std::size_t c = 0; c < 5; ++c)
        r(0, c) = heads[c];
    std::size_t row = 1;
    int cumulative = 0;
    auto write_counts = [&](int count) {
        cumulative += count;
        r(row, 1) = count;
        r(row, 2) = total > 0 ? static_cast<double>(count) / total : 0.0;
        r(row, 3) = cumulative;
        r(row, 4) = total > 0 ? static_cast<double>(cumulative) / total : 0.0;
        ++row;
    };
    for (const auto& [value, count] : numbers) {
        r(row, 0) = value;
        write_counts(count);
    }
    for (const auto& [text, count] : texts) {
        r(row, 0) = text;
        write_counts(count);
    }
    if (include == 1) {
        r(row, 0) = "Missing";
        write_counts(missing);
    }
    return r;
}

}  // namespace zentable
