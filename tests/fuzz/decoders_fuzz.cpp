// Tables of arbitrary shapes and cell kinds through every decoder of the
// command frame: each one decodes, with the shapes it promises, or fails in
// words.

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "commands/catalogue.hpp"
#include "data/delimited_file.hpp"
#include "fuzz_support.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable::fuzz {
namespace {

MJCellValue cell_from(Bytes& bytes) {
    MJCellValue cell;
    switch (bytes.byte() % 9) {
        case 0:
            cell = bytes.number();
            break;
        case 1:
            cell = static_cast<double>(static_cast<std::int8_t>(bytes.byte()));
            break;
        case 2: {
            static const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         1e308,
                                         -0.0,
                                         2147483648.0,
                                         -2147483649.0};
            cell = odd[bytes.byte() % (sizeof odd / sizeof odd[0])];
            break;
        }
        case 3:
            cell = bytes.text(12);
            break;
        case 4: {
            std::u16string wide;
            for (char c : bytes.text(6))
                wide += static_cast<char16_t>(static_cast<unsigned char>(c) * 257);
            cell = wide;
            break;
        }
        case 5:
            cell = (bytes.byte() & 1) != 0;
            break;
        case 6:
            cell = CellValue::ErrorCode{static_cast<unsigned long>(bytes.byte() % 48)};
            break;
        case 7: {
            static const char* const words[] = {"x1", "x2", "y", "w", " 3.5", "1e400", "TRUE", ""};
            cell = words[bytes.byte() % 8];
            break;
        }
        default:
            break;  // empty
    }
    return cell;
}

CellMatrix table_from(Bytes& bytes) {
    // Mostly small, now and then empty or one long row or column.
    std::size_t rows = bytes.byte() % 7, columns = bytes.byte() % 7;
    const std::uint8_t stretch = bytes.byte();
    if (stretch == 255)
        rows = 3000;
    else if (stretch == 254)
        columns = 3000;
    CellMatrix table(rows, columns);
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j)
            table(i, j) = cell_from(bytes);
    return table;
}

template <class Body>
void decodes(const char* what, Body body) {
    require_text_failure(guarded([&] {
                             body();
                             return CellMatrix(1, 1);
                         }),
                         what);
}

void check_named_table(const NamedTable& t) {
    require(t.data.size() == t.valid.size(), "a mask entry per observation");
    for (const dvec& row : t.data)
        require(row.size() == t.names.size(), "a value per variable");
}

void check_scalars(const CellMatrix& t) {
    int i = 7;
    double d = 7;
    bool b = false;
    std::string s;
    decodes("read_int", [&] { read_int(t, "m", i); });
    decodes("read_int_required", [&] { read_int_required(t, "m", i); });
    decodes("read_double", [&] { read_double(t, "m", d); });
    decodes("read_double_required", [&] { read_double_required(t, "m", d); });
    decodes("read_bool", [&] { read_bool(t, "m", b); });
    decodes("read_string", [&] { read_string(t, "m", s); });
    decodes("read_text", [&] { read_text(t, "m", s); });
    decodes("read_text_required", [&] { read_text_required(t, "m", s); });
    decodes("read_delimiter", [&] { read_delimiter(t); });
    decodes("cell_to_text", [&] {
        if (t.RowsInStructure() && t.ColumnsInStructure())
            cell_to_text(t(0, 0));
    });
    // The catalogue's own argument conversions, as every driver calls them.
    const ArgumentInfo label{"arg", "XLF_OPER", ""};
    decodes("as_table", [&] { as_table(t, label); });
    decodes("as_text", [&] { as_text(t, label); });
    decodes("as_number", [&] { as_number(t, label); });
}

void check_vectors(const CellMatrix& t, std::size_t index) {
    dvec v;
    svec names;
    std::string name;
    decodes("read_double_vector", [&] { read_double_vector(t, "m", v); });
    decodes("read_double_vector_optional", [&] { read_double_vector_optional(t, "m", v); });
    decodes("read_named_vector", [&] { read_named_vector(t, name, v); });
    decodes("read_string_list", [&] { read_string_list(t, names); });
    decodes("read_file_variable_names", [&] { read_file_variable_names(t, "missing"); });
    // The callers of these pick an index inside the table.
    if (index < t.ColumnsInStructure()) {
        decodes("read_column_double", [&] { read_column_double(t, index); });
        decodes("read_column_text", [&] { read_column_text(t, index); });
    }
    if (index < t.RowsInStructure()) {
        decodes("read_row_double", [&] { read_row_double(t, index); });
        decodes("read_row_text", [&] { read_row_text(t, index); });
    }
}

void check_tables(const CellMatrix& t) {
    decodes("read_table_with_headers", [&] { check_named_table(read_table_with_headers(t)); });
    decodes("read_table_numeric_headers_first_row",
            [&] { check_named_table(read_table_numeric_headers_first_row(t)); });
    decodes("read_vector_with_header", [&] {
        const NamedVector v = read_vector_with_header(t);
        require(v.values.size() == v.valid.size(), "a mask entry per value");
    });
    decodes("read_columns_dropping_non_numbers", [&] {
        const NamedColumns c = read_columns_dropping_non_numbers(t);
        require(c.columns.size() == c.names.size(), "a column per name");
    });
    decodes("read_mixed_table", [&] {
        const MixedTable m = read_mixed_table(t);
        require(m.column_types.size() == m.names.size(), "a type per variable");
    });
    decodes("read_labelled_table", [&] {
        const LabelledTable l = read_labelled_table(t);
        require(l.values.size() == l.row_labels.size(), "a row of values per label");
        for (const dvec& row : l.values)
            require(row.size() == l.column_labels.size(), "a value per column label");
    });
    decodes("read_numeric_matrix", [&] { read_numeric_matrix(t); });
    decodes("header_kind", [&] {
        const int kind = header_kind(t);
        require(kind >= 0 && kind <= 2, "header kind is 0, 1 or 2");
    });
    decodes("read_table_text", [&] {
        const TextTable tt = read_table_text(t);
        require(tt.columns.size() == tt.names.size(), "a column per name");
    });
}

}  // namespace
}  // namespace zentable::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zentable;
    using namespace zentable::fuzz;
    Bytes bytes(data, size);
    const CellMatrix a = table_from(bytes);
    const CellMatrix b = table_from(bytes);
    const CellMatrix c = table_from(bytes);
    const std::size_t index = bytes.byte() % 8;
    for (const CellMatrix* t : {&a, &b, &c}) {
        check_scalars(*t);
        check_vectors(*t, index);
        check_tables(*t);
    }
    decodes("read_xyw", [&] {
        const XYW xyw = read_xyw(a, b, c);
        require(xyw.x.size() == xyw.y.size(), "x and y align");
        require(!xyw.has_weight || xyw.weight.size() == xyw.y.size(), "the weight aligns");
        for (const dvec& row : xyw.x)
            require(row.size() == xyw.x_names.size(), "a value per x variable");
    });
    return 0;
}
