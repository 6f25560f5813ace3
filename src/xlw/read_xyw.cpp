#include <utility>

#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kUnequalCounts =
    "The numbers of observations in input data X, Y, and weight must be the same";

}  // namespace

// Tables here run to a million rows: the rows of x are moved, never copied,
// and nothing is reallocated while the complete records are gathered.
XYW read_xyw(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    NamedTable xs = read_table_with_headers(x);
    NamedVector ys = read_vector_with_header(y);
    NamedVector ws;
    const bool has_weight = !is_omitted(weight);
    if (has_weight) {
        ws = read_vector_with_header(weight);
    } else {
        ws.name = "weight";
        ws.values.assign(ys.values.size(), 1.0);
        ws.valid.assign(ys.values.size(), true);
    }

    const std::size_t n = xs.valid.size();
    if (ys.valid.size() != n || ws.valid.size() != n) {
        throw kUnequalCounts;
    }

    std::size_t kept = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (xs.valid[i] && ys.valid[i] && ws.valid[i]) {
            ++kept;
        }
    }

    XYW out;
    out.x_names = std::move(xs.names);
    out.y_name = std::move(ys.name);
    out.weight_name = std::move(ws.name);
    out.has_weight = has_weight;
    if (kept == n) {
        out.x = std::move(xs.data);
        out.y = std::move(ys.values);
        out.weight = std::move(ws.values);
    } else {
        out.x.reserve(kept);
        out.y.reserve(kept);
        out.weight.reserve(kept);
        for (std::size_t i = 0; i < n; ++i) {
            if (xs.valid[i] && ys.valid[i] && ws.valid[i]) {
                out.x.push_back(std::move(xs.data[i]));
                out.y.push_back(ys.values[i]);
                out.weight.push_back(ws.values[i]);
            }
        }
    }

    if (out.x.size() != out.y.size() || out.y.size() != out.weight.size()) {
        throw kUnequalCounts;
    }
    return out;
}

}  // namespace zentable
