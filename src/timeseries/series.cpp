#include "timeseries/series.hpp"

#include <cstddef>

#include "xlw/cell_conversions.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

namespace {

constexpr const char* kMaxLag = "Input maxLag must be a positive integer";

Series keep_numbers(const NamedVector& column, const bvec& keep, const std::string& no_data) {
    Series out{column.name, {}};
    out.values.reserve(column.values.size());
    for (std::size_t i = 0; i < column.values.size(); ++i) {
        if (keep[i]) {
            out.values.push_back(column.values[i]);
        }
    }
    if (out.values.empty()) {
        throw no_data;
    }
    return out;
}

}  // namespace

ColumnTexts series_texts(const std::string& which) {
    return {"there is no input data for " + which,
            "Input data for " + which + " must be in one column",
            "Header for variable name " + which + " must be a string"};
}

Series read_series(const CellMatrix& table, const ColumnTexts& texts) {
    Series out{read_column_header(table, texts), {}};
    const std::size_t rows = table.RowsInStructure();
    out.values.reserve(rows - 1);
    prefer_huge_pages(out.values.data(), (rows - 1) * sizeof(double));
    for (std::size_t i = 1; i < rows; ++i) {
        const CellValue& cell = table(i, 0);
        if (cell.IsANumber()) {
            out.values.push_back(cell.NumericValue());
        }
    }
    if (out.values.empty()) {
        throw texts.no_data;
    }
    return out;
}

SeriesPair read_series_pair(const CellMatrix& x, const ColumnTexts& x_texts, const CellMatrix& y,
                            const ColumnTexts& y_texts, const std::string& length_text) {
    const NamedVector cx = read_headed_column(x, x_texts);
    const NamedVector cy = read_headed_column(y, y_texts);
    if (cx.values.size() != cy.values.size()) {
        throw length_text;
    }
    bvec both(cx.valid.size());
    for (std::size_t i = 0; i < both.size(); ++i) {
        both[i] = cx.valid[i] && cy.valid[i];
    }
    return {keep_numbers(cx, both, x_texts.no_data), keep_numbers(cy, both, y_texts.no_data)};
}

int read_max_lag(const CellMatrix& maxLag, int default_lag) {
    int lag = default_lag;
    if (!is_omitted(maxLag)) {
        read_int(maxLag, kMaxLag, lag);
    }
    if (lag <= 0) {
        throw kMaxLag;
    }
    return lag;
}

}  // namespace zentable
