#include "xlw/headed_column.hpp"

#include "xlw/cell_conversions.hpp"

namespace zentable {

std::string read_column_header(const CellMatrix& table, const ColumnTexts& texts) {
    if (is_omitted(table)) {
        throw texts.no_data;
    }
    if (table.ColumnsInStructure() != 1) {
        throw texts.not_one_column;
    }
    if (!table(0, 0).IsString()) {
        throw texts.header_not_string;
    }
    if (table.RowsInStructure() < 2) {
        throw texts.no_data;
    }
    return trim(table(0, 0).StringValue(), 0);
}

NamedVector read_headed_column(const CellMatrix& table, const ColumnTexts& texts) {
    NamedVector out;
    out.name = read_column_header(table, texts);
    const std::size_t count = table.RowsInStructure() - 1;
    out.values.resize(count);
    out.valid.assign(count, true);
    for (std::size_t i = 0; i < count; ++i) {
        const CellValue& c = table(i + 1, 0);
        if (c.IsANumber()) {
            out.values[i] = c.NumericValue();
        } else {
            out.values[i] = cell_to_double(c);
            out.valid[i] = false;
        }
    }
    return out;
}

}  // namespace zentable
