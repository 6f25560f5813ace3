#pragma once

#include <string>
#include <utility>
#include <vector>

#include "models/model_store.hpp"
#include "numeric/matrix.hpp"

namespace zentable {

// A binning of continuous variables: per variable its finished (merged)
// table and the value that a missing x gets.
class WoeXcontBinning : public base_c {
  public:
    WoeXcontBinning(std::vector<std::string> variable_names, std::vector<dmat> finished_tables,
                    dvec values_for_missing)
        : names(std::move(variable_names)),
          tables(std::move(finished_tables)),
          missing_values(std::move(values_for_missing)) {}

    const std::vector<std::string> names;
    const std::vector<dmat> tables;
    const dvec missing_values;
};

// Binary target: a bin's value is its WOE.
class woeXcontYbinModel : public WoeXcontBinning {
  public:
    using WoeXcontBinning::WoeXcontBinning;
    woeXcontYbinModel(const woeXcontYbinModel&) = default;
};

// Continuous target: a bin's value is its mean of y.
class woeXcontYcontModel : public WoeXcontBinning {
  public:
    using WoeXcontBinning::WoeXcontBinning;
    woeXcontYcontModel(const woeXcontYcontModel&) = default;
};

// A grouping of categories: per variable the category labels of each bin,
// as text, and the finished table.
class WoeXcatBinning : public base_c {
  public:
    WoeXcatBinning(std::vector<std::string> variable_names,
                   std::vector<std::vector<std::vector<std::string>>> label_groups,
                   std::vector<dmat> finished_tables)
        : names(std::move(variable_names)),
          groups(std::move(label_groups)),
          tables(std::move(finished_tables)) {}

    const std::vector<std::string> names;
    const std::vector<std::vector<std::vector<std::string>>> groups;
    const std::vector<dmat> tables;
};

class woeXcatYbinModel : public WoeXcatBinning {
  public:
    using WoeXcatBinning::WoeXcatBinning;
    woeXcatYbinModel(const woeXcatYbinModel&) = default;
};

class woeXcatYcontModel : public WoeXcatBinning {
  public:
    using WoeXcatBinning::WoeXcatBinning;
    woeXcatYcontModel(const woeXcatYcontModel&) = default;
};

// The value of a label under a grouping's table: that of the bin whose group
// holds exactly the label, 0 for a label no bin holds. value_column is
// kWoeValue or kWoeMeanY.
double woe_apply_xcat(const WoeXcatBinning& model, std::size_t variable, std::size_t value_column,
                      const std::string& label);

}  // namespace zentable
