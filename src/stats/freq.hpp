#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// freq(inputData, includeMissing): one block of counts per variable of a table.
CellMatrix freq(const CellMatrix& inputData, const CellMatrix& includeMissing);

// The same blocks for variables of a delimited file, read by name.
CellMatrix freq_from_file(const std::string& filename, const CellMatrix& varNames,
                          const CellMatrix& delimiter, const CellMatrix& includeMissing);

// The report over decoded text columns; both forms of freq end here.
CellMatrix freq_report(const svec& names, const std::vector<svec>& columns, bool includeMissing);

// The distinct values of a text column in report order. A column whose first
// non-empty value is a number is keyed by value, ascending, and any text in
// it that is not a number (NA, ".", n/a) is a level of its own, by text, after
// the numbers; otherwise every value is keyed by text. The empty text is
// missing and has no level.
struct FreqLevels {
    static constexpr int kMissing = -1;

    bool numeric = false;
    dvec values;              // the numeric levels, first
    svec labels;              // the text levels, after them
    std::vector<int> counts;  // records at each level
    std::vector<int> codes;   // per record: its level, or kMissing
    int missing = 0;          // records with the empty text

    std::size_t size() const { return counts.size(); }
    // Writes level i as a number or a text, as it was keyed.
    void write(CellValue& cell, std::size_t i) const;
    // Level i as text, a number at 16 significant digits.
    std::string text(std::size_t i) const;
};
FreqLevels make_freq_levels(const svec& texts);

// The value of a field in a numerically keyed column: the number it reads as,
// else the C library's atof of it, as the lenient conversions do.
double freq_numeric_key(const std::string& text);

// Strict weak order on doubles with every NaN equal and after all numbers, so
// that atof's NaN cannot break a sorted container.
struct FreqKeyLess {
    bool operator()(double a, double b) const;
};

}  // namespace zentable
