#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The text by which a class label or a categorical value is known: a number,
// whether it came as a number cell or as a field such as "1.0", becomes its
// 16-digit text, so that a model fitted on a file scores cells and back.
std::string value_key(const CellValue& cell);
std::string value_key(const std::string& field);

// value_key for a column of a million values that repeat: each distinct value
// is turned into text once.
class ValueKeys {
  public:
    const std::string& operator()(const CellValue& cell);
    const std::string& operator()(const std::string& field);

  private:
    std::unordered_map<double, std::string> numbers_;
    std::unordered_map<std::string, std::string> texts_;
};

// Distinct texts in a fixed order: by value when every text is a number,
// else by byte order; so a user finds the classes as a sorted factor has them.
struct Levels {
    svec texts;
    bool numeric = false;
    dvec values;  // for numeric levels, the numbers of the texts

    std::size_t size() const { return texts.size(); }
    // A report cell: the number for numeric levels, else the text.
    void write(CellValue& cell, std::size_t k) const;
};

// Gathers texts in order of first appearance and gives each its code.
class LevelCoder {
  public:
    int code(const std::string& text);
    std::size_t size() const { return texts_.size(); }
    // The sorted levels, and for each code of first appearance its place in them.
    Levels sorted(std::vector<int>& place) const;

  private:
    std::unordered_map<std::string, int> index_;
    svec texts_;
};

// y and weight beside n records of x, as the classifiers read them: a record
// is usable when its label is not empty and its weight a positive number.
struct LabelsAndWeights {
    std::string y_name;
    svec labels;  // value_key of each cell, empty where missing
    dvec weight;
    bvec usable;
    bool has_weight = false;
};
LabelsAndWeights read_labels_and_weights(const CellMatrix& y, const CellMatrix& weight,
                                         std::size_t records);

// Per class: records and weight sum. Fails with fewer than two classes or a
// class whose weight cannot carry a variance.
struct ClassCounts {
    Levels classes;
    std::vector<long long> records;
    dvec weights;
    double total_weight = 0.0;
    dvec priors() const;
};
void check_classes(const ClassCounts& counts);

// What the classifiers give for one record: a probability per class, and the
// class predicted, -1 when none can be (all products 0).
struct ClassProbabilities {
    dvec probabilities;
    int predicted = -1;
};
// Normalises class products given as logs, shifted by their largest so that
// none underflows; the class is the first with the highest product.
ClassProbabilities normalise_log_products(const dvec& log_products);

// The model_score table: "Prob_" and each class, "Class Predicted", one row per
// record; `score(i, out)` returns false for a record that cannot be scored,
// whose cells show ".".
CellMatrix class_score_table(const Levels& classes, std::size_t rows,
                             const std::function<bool(std::size_t, ClassProbabilities&)>& score);

// Where each wanted variable stands in the header row of a scoring table x:
// the first column of that name; a missing one fails with before + name + after.
std::vector<std::size_t> scoring_columns(const CellMatrix& x, const svec& wanted,
                                         const std::string& before, const std::string& after);

// Report blocks, each ending in a blank row, to be joined below each other;
// the handle's block is its cell and a blank row.
CellMatrix handle_block(const std::string& handle);
CellMatrix record_block(const std::string& method, const std::string& y_name, long long read,
                        long long used, bool has_weight, double weight_sum);
CellMatrix class_block(const ClassCounts& counts);
// Weighted counts of actual (rows) against predicted (columns), and the
// accuracy; predictions of -1 go to a last column "Unclassified" when
// `unclassified` is set.
CellMatrix confusion_block(const Levels& classes, const std::vector<int>& actual,
                           const std::vector<int>& predicted, const dvec& weight,
                           bool unclassified);

}  // namespace zentable
