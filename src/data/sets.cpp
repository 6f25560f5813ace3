#include "data/sets.hpp"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "stats/freq.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

// Texts and numbers are kept apart, so that the text "1" and the number 1 are
// two elements; an empty cell is the empty text.
struct CellSet {
    std::set<std::string> texts;
    std::set<double, FreqKeyLess> numbers;  // a NaN cell is one element, after the rest
};

CellSet read_cell_set(const CellMatrix& table) {
    CellSet out;
    for (std::size_t i = 0; i < table.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < table.ColumnsInStructure(); ++j) {
            const CellValue& cell = table(i, j);
            if (cell.IsANumber()) {
                out.numbers.insert(cell.NumericValue());
            } else {
                out.texts.insert(cell_to_text(cell));
            }
        }
    }
    return out;
}

CellMatrix set_report(const char* heading, const CellSet& elements) {
    CellMatrix r(1 + elements.texts.size() + elements.numbers.size(), 1);
    r(0, 0) = heading;
    std::size_t row = 1;
    for (const std::string& text : elements.texts) {
        r(row++, 0) = text;
    }
    for (double number : elements.numbers) {
        r(row++, 0) = number;
    }
    return r;
}

// Applies a sorted-range operation of the standard library to each kind.
template <class Operation>
CellSet combine(const CellMatrix& set1, const CellMatrix& set2, Operation operation) {
    const CellSet a = read_cell_set(set1);
    const CellSet b = read_cell_set(set2);
    CellSet out;
    operation(a.texts.begin(), a.texts.end(), b.texts.begin(), b.texts.end(),
              std::inserter(out.texts, out.texts.end()), out.texts.key_comp());
    operation(a.numbers.begin(), a.numbers.end(), b.numbers.begin(), b.numbers.end(),
              std::inserter(out.numbers, out.numbers.end()), out.numbers.key_comp());
    return out;
}

struct Union {
    template <class In, class Out, class Less>
    void operator()(In a, In a_end, In b, In b_end, Out out, Less less) const {
        std::set_union(a, a_end, b, b_end, out, less);
    }
};
struct Intersection {
    template <class In, class Out, class Less>
    void operator()(In a, In a_end, In b, In b_end, Out out, Less less) const {
        std::set_intersection(a, a_end, b, b_end, out, less);
    }
};
struct Difference {
    template <class In, class Out, class Less>
    void operator()(In a, In a_end, In b, In b_end, Out out, Less less) const {
        std::set_difference(a, a_end, b, b_end, out, less);
    }
};

}  // namespace

CellMatrix set(const CellMatrix& matrix) {
    return set_report("Set Elements:", read_cell_set(matrix));
}

CellMatrix set_union(const CellMatrix& set1, const CellMatrix& set2) {
    return set_report("Set Union Elements:", combine(set1, set2, Union()));
}

CellMatrix set_intersection(const CellMatrix& set1, const CellMatrix& set2) {
    return set_report("Set Intersection Elements:", combine(set1, set2, Intersection()));
}

CellMatrix set_difference(const CellMatrix& set1, const CellMatrix& set2) {
    return set_report("Set Difference Elements:", combine(set1, set2, Difference()));
}

}  // namespace zentable
