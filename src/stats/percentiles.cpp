#include "stats/percentiles.hpp"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "stats/means.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kBadP =
    "Input percentiles p must be numbers between 0 and 1 inclusive in one row or one column";
constexpr const char* kSizes = "The sizes of classVar and x must be the same";
constexpr const char* kNoValues = "Input x must have at least one number";

// The classes after the name cell, read as x is read: along a single row,
// else down the first column.
std::vector<const CellValue*> class_cells(const CellMatrix& classVar) {
    const bool along_row = classVar.RowsInStructure() == 1;
    const std::size_t count =
        along_row ? classVar.ColumnsInStructure() : classVar.RowsInStructure();
    std::vector<const CellValue*> cells;
    cells.reserve(count);
    for (std::size_t i = 1; i < count; ++i)
        cells.push_back(along_row ? &classVar(0, i) : &classVar(i, 0));
    return cells;
}

template <class Key>
void write_groups(CellMatrix& table, const std::map<Key, dvec>& groups, const dvec& ps) {
    std::size_t row = 1;
    for (const auto& [key, group] : groups) {
        dvec sorted = group;
        numeric_sort(sorted);
        table(row, 0) = key;
        for (std::size_t k = 0; k < ps.size(); ++k)
            table(row, k + 1) = sorted_percentile(sorted, ps[k]);
        ++row;
    }
}

}  // namespace

CellMatrix percentiles(const CellMatrix& x, const CellMatrix& p, const CellMatrix& classVar) {
    std::string name;
    dvec values;
    read_named_vector(x, name, values);
    if (values.empty())
        throw kNoValues;
    dvec ps;
    read_double_vector(p, kBadP, ps);
    for (double q : ps)
        if (!(q >= 0.0 && q <= 1.0))
            throw kBadP;

    // Numbers group by value; any other class makes every class a text.
    std::map<double, dvec> by_number;
    std::map<std::string, dvec> by_text;
    if (is_omitted(classVar)) {
        by_text.emplace("All", values);
    } else {
        const std::vector<const CellValue*> classes = class_cells(classVar);
        if (classes.size() != values.size())
            throw kSizes;
        bool numeric = true;
        for (const CellValue* c : classes)
            numeric = numeric && c->IsANumber();
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (numeric)
                by_number[classes[i]->NumericValue()].push_back(values[i]);
            else
                by_text[trim(cell_to_text(*classes[i]), 0)].push_back(values[i]);
        }
    }

    const std::size_t groups = by_number.size() + by_text.size();
    CellMatrix table(groups + 1, ps.size() + 1);
    table(0, 0) = std::string("Class");
    for (std::size_t k = 0; k < ps.size(); ++k)
        table(0, k + 1) = number_to_text(ps[k] * 100.0);
    if (by_number.empty())
        write_groups(table, by_text, ps);
    else
        write_groups(table, by_number, ps);
    return table;
}

}  // namespace zentable
