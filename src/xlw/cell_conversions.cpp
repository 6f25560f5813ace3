#include "xlw/cell_conversions.hpp"

#include <cstdlib>
#include <sstream>

namespace zentable {

double cell_to_double(const CellValue& cell) {
    if (cell.IsANumber()) {
        return cell.NumericValue();
    }
    if (cell.IsString()) {
        return std::atof(cell.StringValue().c_str());
    }
    if (cell.IsBoolean()) {
        return cell.BooleanValue() ? 1.0 : 0.0;
    }
    return 0.0;
}

std::string cell_to_text(const CellValue& cell) {
    if (cell.IsString()) {
        return cell.StringValue();
    }
    if (cell.IsANumber()) {
        return number_to_text(cell.NumericValue());
    }
    if (cell.IsBoolean()) {
        return cell.BooleanValue() ? "TRUE" : "FALSE";
    }
    return std::string();
}

std::string number_to_text(double value) {
    std::ostringstream out;
    out.precision(16);
    out << value;
    return out.str();
}

std::string trim(const std::string& text, int mode) {
    static const char* const kBlanks = " \t\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) {
        return std::string();
    }
    const std::size_t last = text.find_last_not_of(kBlanks);
    if (mode == 0) {
        return text.substr(first, last - first + 1);
    }
    if (mode == -1) {
        return text.substr(first);
    }
    return text.substr(0, last + 1);
}

bool is_omitted(const CellMatrix& table) {
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    if (rows == 0 || columns == 0) {
        return true;
    }
    return rows == 1 && columns == 1 && table(0, 0).IsEmpty();
}

}  // namespace zentable
