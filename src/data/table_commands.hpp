#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// The variable names of a file's head line, one per row.
CellMatrix variable_list(const std::string& filename, const CellMatrix& delimiter);

// The file's name, record count and numbered variables.
CellMatrix data_info(const std::string& filename, const CellMatrix& delimiter);

// The columns of a table whose indicator is positive, with all of its rows.
CellMatrix subset(const CellMatrix& inputData, const CellMatrix& indicator);

// For each row of keys, the chosen columns of the first row of dataTable whose
// fields under the keys' headers hold the same texts; blanks where none does.
CellMatrix data_lookup(const CellMatrix& keys, const CellMatrix& dataTable,
                       const CellMatrix& columnIndexesForOutput);

CellMatrix data_save(const CellMatrix& inputData, const std::string& filename,
                     const CellMatrix& delimiter);

// Named variables of a file under a head row; numbers as numbers, all else text.
CellMatrix data_load(const std::string& filename, const CellMatrix& varNames,
                     const CellMatrix& numRecords, const CellMatrix& delimiter);

// The header and the rows of one part of a seeded random partition.
CellMatrix data_partition(const CellMatrix& inputData, const CellMatrix& partition,
                          const CellMatrix& part, const CellMatrix& seed);

// The table with each empty cell replaced by the value.
CellMatrix data_fill(const CellMatrix& inputData, const CellMatrix& value);

// Inner join on equal numeric keys, each row of table1 with its first match in table2.
CellMatrix merge_tables(const CellMatrix& table1, const CellMatrix& table2, const CellMatrix& key1,
                        const CellMatrix& key2, const CellMatrix& output1,
                        const CellMatrix& output2);

// The items ranked rankFrom to rankTo by key.
CellMatrix rank_items(const CellMatrix& keys, const CellMatrix& items, const CellMatrix& rankFrom,
                      const CellMatrix& rankTo, const CellMatrix& order);

// The trimmed pieces of a text, one per row.
CellMatrix split_str(const CellMatrix& text, const CellMatrix& delimiter);

}  // namespace zentable
