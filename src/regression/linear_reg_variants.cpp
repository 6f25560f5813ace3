#include "regression/linear_reg_variants.hpp"

#include <cmath>
#include <cstdio>
#include <iomanip>
#include <locale>
#include <sstream>
#include <utility>

#include "data/delimited_file.hpp"
#include "numeric/matrix.hpp"
#include "regression/linear_reg.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kTooFewRecords =
    "Cannot perform linear regression when the number of data points is less than or equal to "
    "the number of variables";
constexpr const char* kNumPoints = "Input numPoints must be a positive integer";
constexpr const char* kNumStdev = "Input numStdev must be a number";
constexpr const char* kStepSize = "Input stepSize must be a positive integer";
constexpr const char* kNumForecast = "Input numForecast must be a non-negative integer";
constexpr const char* kDigits = "Input digits must be a non-negative integer";
constexpr const char* kBadCoefs =
    "coefs must hold variable names in the first column and coefficients in the second";

// The records, in order, whose y is not zero, each with its x and weight.
void drop_zero_y(XYW& data) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < data.y.size(); ++i) {
        if (is_zero(data.y[i]))
            continue;
        if (kept != i) {
            data.x[kept] = std::move(data.x[i]);
            data.y[kept] = data.y[i];
            data.weight[kept] = data.weight[i];
        }
        ++kept;
    }
    data.x.resize(kept);
    data.y.resize(kept);
    data.weight.resize(kept);
}

CellMatrix fit(const XYW& data, const dvec& lambda, const std::string& command_name) {
    if (data.x.size() <= data.x_names.size())
        throw kTooFewRecords;
    return run_linear_reg(data.x_names, data.x, data.y, data.weight, lambda, command_name);
}

int read_positive(const CellMatrix& table, const char* message) {
    int value = 0;
    read_int_required(table, message, value);
    if (value <= 0)
        throw std::string(message);
    return value;
}

int read_non_negative(const CellMatrix& table, const char* message, int value) {
    if (!is_omitted(table))
        read_int(table, message, value);
    if (value < 0)
        throw std::string(message);
    return value;
}

double read_num_stdev(const CellMatrix& table) {
    double value = 0.0;
    read_double_required(table, kNumStdev, value);
    return value;
}

// For each full window of num_points records, the last one's being i =
// num_points - 1, ..., n - 1: the window mean plus num_stdev times the sample
// standard deviation (0 for a window of one). The window is summed from its
// newest value back; that order settles the last digits, so keep it.
dvec envelope(const dvec& y, int num_points, double num_stdev) {
    const std::size_t width = static_cast<std::size_t>(num_points);
    dvec out;
    if (y.size() < width)
        return out;
    out.reserve(y.size() - width + 1);
    for (std::size_t i = width - 1; i < y.size(); ++i) {
        double sum = 0.0;
        for (std::size_t j = 0; j < width; ++j)
            sum += y[i - j];
        const double mean = sum / num_points;
        double s = 0.0;
        if (num_points > 1) {
            double squares = 0.0;
            for (std::size_t j = 0; j < width; ++j)
                squares += (y[i - j] - mean) * (y[i - j] - mean);
            s = std::sqrt(squares / num_points) *
                std::sqrt(static_cast<double>(num_points) / (num_points - 1));
        }
        out.push_back(mean + num_stdev * s);
    }
    return out;
}

// The records from the end of each full window on, with the envelope as y.
XYW smoothed(const XYW& data, int num_points, double num_stdev) {
    XYW out;
    out.x_names = data.x_names;
    out.y_name = data.y_name;
    out.weight_name = data.weight_name;
    out.has_weight = data.has_weight;
    out.y = envelope(data.y, num_points, num_stdev);
    const std::size_t first = static_cast<std::size_t>(num_points) - 1;
    for (std::size_t j = 0; j < out.y.size(); ++j) {
        out.x.push_back(data.x[first + j]);
        out.weight.push_back(data.weight[first + j]);
    }
    return out;
}

// A file's first two columns as x and y, under their head names; a record
// whose x or y is not a number, or whose y is zero, is dropped.
XYW read_series(const std::string& filename, char delimiter) {
    const svec head = read_head(filename, delimiter);
    if (head.size() < 2)
        throw "Error: head line has " + std::to_string(head.size()) +
            " fields, which is less than expected in " + filename;
    const NamedTable table = read_numeric_table(filename, {head[0], head[1]}, delimiter);
    XYW out;
    out.x_names = {head[0]};
    out.y_name = head[1];
    out.weight_name = "weight";
    for (std::size_t i = 0; i < table.data.size(); ++i) {
        if (!table.valid[i] || is_zero(table.data[i][1]))
            continue;
        out.x.push_back({table.data[i][0]});
        out.y.push_back(table.data[i][1]);
        out.weight.push_back(1.0);
    }
    return out;
}

std::string fixed(double value, int digits) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

void write_text(const std::string& filename, const std::string& text) {
    std::FILE* file = std::fopen(filename.c_str(), "w");
    if (!file)
        throw "Error: cannot open output file " + filename;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    if (std::fclose(file) != 0 || !written)
        throw "Error: writing output file " + filename + " failed";
}

}  // namespace

CellMatrix linear_reg_from_file(const std::string& filename, const CellMatrix& xNames,
                                const CellMatrix& yName, const CellMatrix& weightName,
                                const CellMatrix& lambda, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    const dvec ridge = read_lambda(lambda, data.x_names.size());
    // The report must be the one linear_reg gives for the same data as cells.
    return fit(data, ridge, "linear_reg");
}

CellMatrix linear_reg_nz(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                         const CellMatrix& lambda) {
    XYW data = read_xyw(x, y, weight);
    drop_zero_y(data);
    const dvec ridge = read_lambda(lambda, data.x_names.size());
    return fit(data, ridge, "linear_reg_nz");
}

CellMatrix linear_reg_envelope(const CellMatrix& x, const CellMatrix& y,
                               const CellMatrix& numPoints, const CellMatrix& numStdev,
                               const CellMatrix& weight, const CellMatrix& lambda) {
    XYW data = read_xyw(x, y, weight);
    drop_zero_y(data);
    const dvec ridge = read_lambda(lambda, data.x_names.size());
    const int num_points = read_positive(numPoints, kNumPoints);
    const double num_stdev = read_num_stdev(numStdev);
    return fit(smoothed(data, num_points, num_stdev), ridge, "linear_reg_envelope");
}

CellMatrix linear_reg_envelope_from_file(const std::string& infilename, const CellMatrix& numPoints,
                                         const CellMatrix& numStdev, const CellMatrix& stepSize,
                                         const CellMatrix& numForecast,
                                         const std::string& outfilename,
                                         const CellMatrix& delimiter, const CellMatrix& digits) {
    if (infilename == outfilename)
        throw "Input file and output file must be different";
    const char separator = read_delimiter(delimiter);
    const int num_points = read_positive(numPoints, kNumPoints);
    const double num_stdev = read_num_stdev(numStdev);
    const int step_size = read_positive(stepSize, kStepSize);
    int num_forecast = 0;
    read_int_required(numForecast, kNumForecast, num_forecast);
    if (num_forecast < 0)
        throw std::string(kNumForecast);
    const int decimals = read_non_negative(digits, kDigits, 2);

    const XYW series = read_series(infilename, separator);
    const XYW data = smoothed(series, num_points, num_stdev);
    const CellMatrix report = fit(data, dvec(), "linear_reg_envelope_from_file");
    // A constant x gives the table of its dependency instead of a fit: there is
    // no line to write, and the table says why.
    if (report.ColumnsInStructure() != 6)
        return report;
    const double intercept = report(21, 2).NumericValue();
    const double slope = report(22, 2).NumericValue();

    const std::string d(1, separator);
    std::string text = data.x_names[0] + d + data.y_name + d + "envelope" + d + "fitted\n";
    const std::size_t first = static_cast<std::size_t>(num_points) - 1;
    for (std::size_t i = 0; i < data.y.size(); ++i) {
        const double x = data.x[i][0];
        text += fixed(x, decimals) + d + fixed(series.y[first + i], decimals) + d +
                fixed(data.y[i], decimals) + d + fixed(intercept + slope * x, decimals) + "\n";
    }
    const double last = data.x.back()[0];
    for (int j = 1; j <= num_forecast; ++j) {
        const double x = last + static_cast<double>(j) * step_size;
        text += fixed(x, decimals) + d + d + d + fixed(intercept + slope * x, decimals) + "\n";
    }
    write_text(outfilename, text);
    return report;
}

CellMatrix linear_reg_score_from_coefs(const CellMatrix& coefs, const CellMatrix& inputData) {
    if (coefs.ColumnsInStructure() < 2)
        throw kBadCoefs;
    svec names;
    dvec values;
    double intercept = 0.0;
    for (std::size_t r = 0; r < coefs.RowsInStructure(); ++r) {
        const CellValue& coefficient = coefs(r, 1);
        if (r == 0 && coefficient.IsString())
            continue;  // a header row
        if (!coefficient.IsANumber())
            throw kBadCoefs;
        const std::string name = trim(cell_to_text(coefs(r, 0)), 0);
        if (name == "Intercept") {
            intercept = coefficient.NumericValue();
        } else {
            names.push_back(name);
            values.push_back(coefficient.NumericValue());
        }
    }

    const NamedTable data = read_table_numeric_headers_first_row(inputData);
    std::vector<std::size_t> columns;
    for (const std::string& name : names) {
        std::size_t c = 0;
        while (c < data.names.size() && data.names[c] != name)
            ++c;
        if (c == data.names.size())
            throw "The variable in coefficients, " + name + ", cannot be found in data matrix";
        columns.push_back(c);
    }

    CellMatrix result(data.data.size() + 1, 1);
    result(0, 0) = "yhat";
    for (std::size_t i = 0; i < data.data.size(); ++i) {
        double sum = 0.0;
        for (std::size_t k = 0; k < values.size(); ++k)
            sum += values[k] * data.data[i][columns[k]];
        result(i + 1, 0) = intercept + sum;
    }
    return result;
}

}  // namespace zentable
