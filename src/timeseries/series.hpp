#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/headed_column.hpp"

namespace zentable {

// A series as the time-series tests take it: the observations of one column,
// in order, with every cell that is not a number left out.
struct Series {
    std::string name;
    dvec values;
};

// The texts of the x argument that most of the family shares.
ColumnTexts series_texts(const std::string& which);

// One column under a header; a column with no number in it fails with the
// no-data text, as an empty one does.
Series read_series(const CellMatrix& table, const ColumnTexts& texts);

// Two columns of equal length, a pair dropped when either cell is not a number.
struct SeriesPair {
    Series x;
    Series y;
};
SeriesPair read_series_pair(const CellMatrix& x, const ColumnTexts& x_texts, const CellMatrix& y,
                            const ColumnTexts& y_texts, const std::string& length_text);

// maxLag of the correlograms and the Box test: a positive integer, the
// default kept for an omitted argument.
int read_max_lag(const CellMatrix& maxLag, int default_lag);

}  // namespace zentable
