#include "stats/variable_corr_select.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "regression/weighted_regression.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kBadCutOff = "Input corrCutOff must be a number between 0 and 1";
constexpr const char* kNoRecords = "There are no complete records in x, y and weight";
constexpr const char* kTitle = "Variable pairs with correlations larger than the cut off";

using Pair = CorrSelection::Pair;

}  // namespace

CorrSelection select_by_correlation(const dmat& corr_xx, const dvec& corr_xy, double cut_off) {
    CorrSelection out;
    const std::size_t p = corr_xy.size();
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = i + 1; j < p; ++j) {
            if (!(std::fabs(corr_xx[i][j]) >= cut_off))
                continue;
            const double ri = std::fabs(corr_xy[i]);
            const double rj = std::fabs(corr_xy[j]);
            // On a tie the first of the pair is kept.
            if (rj > ri)
                out.pairs.push_back({i, j, j, i, rj});
            else
                out.pairs.push_back({i, j, i, j, ri});
        }
    }

    // Repeatedly the pair with the strongest keeper: the keeper's partners in
    // all its pairs are dropped, and every pair that holds one of them goes.
    std::vector<Pair> open = out.pairs;
    std::vector<bool> is_dropped(p, false);
    while (!open.empty()) {
        const std::size_t keeper =
            std::max_element(open.begin(), open.end(), [](const Pair& a, const Pair& b) {
                return a.value < b.value;
            })->keeper;
        for (const Pair& pair : open) {
            if (pair.keeper == keeper && !is_dropped[pair.other]) {
                is_dropped[pair.other] = true;
                out.dropped.push_back(pair.other);
            }
        }
        open.erase(std::remove_if(open.begin(), open.end(),
                                  [&](const Pair& pair) {
                                      return is_dropped[pair.first] || is_dropped[pair.second];
                                  }),
                   open.end());
    }
    return out;
}

CellMatrix variable_corr_select(const CellMatrix& x, const CellMatrix& y,
                                const CellMatrix& corrCutOff, const CellMatrix& weight) {
    const XYW data = read_xyw(x, y, weight);
    double cut_off = 0.0;
    read_double_required(corrCutOff, kBadCutOff, cut_off);
    if (!(cut_off >= 0.0 && cut_off <= 1.0))
        throw kBadCutOff;
    if (data.x.empty())
        throw kNoRecords;

    const Moments m = weighted_moments(data.x, data.y, data.weight);
    const CorrSelection selection = select_by_correlation(m.corr_xx, m.corr_xy, cut_off);
    const std::size_t p = data.x_names.size();
    std::vector<bool> is_dropped(p, false);
    for (std::size_t d : selection.dropped)
        is_dropped[d] = true;

    // Title, headings and pairs; a blank row; the keep block; a blank row;
    // the drop block.
    const std::size_t pairs = selection.pairs.size();
    const std::size_t keep_row = pairs + 3;
    const std::size_t drop_row = keep_row + (p - selection.dropped.size()) + 2;
    CellMatrix table(drop_row + selection.dropped.size() + 1, 5);
    table(0, 0) = std::string(kTitle);
    table(1, 0) = std::string("Var1");
    table(1, 1) = std::string("Var2");
    table(1, 2) = std::string("Corr(Var1, Var2)");
    table(1, 3) = "Corr(Var1, " + data.y_name + ")";
    table(1, 4) = "Corr(Var2, " + data.y_name + ")";
    for (std::size_t k = 0; k < pairs; ++k) {
        const Pair& pair = selection.pairs[k];
        table(k + 2, 0) = data.x_names[pair.first];
        table(k + 2, 1) = data.x_names[pair.second];
        table(k + 2, 2) = m.corr_xx[pair.first][pair.second];
        table(k + 2, 3) = m.corr_xy[pair.first];
        table(k + 2, 4) = m.corr_xy[pair.second];
    }
    table(keep_row, 0) = std::string("Keep List");
    std::size_t row = keep_row + 1;
    for (std::size_t j = 0; j < p; ++j)
        if (!is_dropped[j])
            table(row++, 0) = data.x_names[j];
    table(drop_row, 0) = std::string("Drop List");
    row = drop_row + 1;
    for (std::size_t d : selection.dropped)
        table(row++, 0) = data.x_names[d];
    end_report(table, "variable_corr_select");
    return table;
}

}  // namespace zentable
