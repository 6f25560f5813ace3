#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// means(inputData): count, sum, mean, population standard deviation and the
// extremes of each variable; a cell that is not a number is missing for its
// variable alone.
CellMatrix means(const CellMatrix& inputData);
CellMatrix means_from_file(const std::string& filename, const CellMatrix& varNames,
                           const CellMatrix& delimiter);

// univariate(inputData): as means, with the sample standard deviation, eleven
// percentiles and the five smallest and five largest values.
CellMatrix univariate(const CellMatrix& inputData);
CellMatrix univariate_from_file(const std::string& filename, const CellMatrix& varNames,
                                const CellMatrix& delimiter);

// Ascending by value alone; equal values come in no particular order.
void numeric_sort(dvec& values);
// numeric_sort of every column; large sets are split between two threads,
// which changes nothing in the result since each column is sorted alone.
void sort_columns(std::vector<dvec>& columns);

// The value at index trunc(p * n), clamped to the list, of a sorted list
// that is not empty. No interpolation.
double sorted_percentile(const dvec& sorted, double p);

// The numbers of each variable and the count of its cells that were not.
struct DescribedColumns {
    svec names;
    std::vector<dvec> values;
    std::vector<long long> missing;
};
DescribedColumns read_described_columns(const CellMatrix& inputData);
DescribedColumns read_described_columns(const std::string& filename, const CellMatrix& varNames,
                                        const CellMatrix& delimiter);

// The two reports; univariate sorts the columns in place.
CellMatrix report_means(const DescribedColumns& data);
CellMatrix report_univariate(DescribedColumns& data);

}  // namespace zentable
