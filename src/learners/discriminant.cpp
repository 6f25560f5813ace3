#include "learners/discriminant.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "learners/class_labels.hpp"
#include "models/model_store.hpp"
#include "numeric/symmetric_eigen.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The discriminant of class k at x is c_k + b_k . x; the term in x'Ax that
// all classes share is left out, as it cancels in the posteriors.
class ldaModel : public base_c {
  public:
    svec names;
    Levels classes;
    dmat slopes;     // b_k = A m_k, A the inverse of the pooled covariance
    dvec constants;  // c_k = log prior_k - m_k'A m_k / 2

    ClassProbabilities score(const double* x) const {
        dvec log_products(classes.size());
        for (std::size_t k = 0; k < log_products.size(); ++k) {
            double sum = 0.0;
            for (std::size_t j = 0; j < names.size(); ++j)
                sum += slopes[k][j] * x[j];
            log_products[k] = constants[k] + sum;
        }
        return normalise_log_products(log_products);
    }
};

// The log of prior times normal density, less the shared log(2 pi) term,
// through the inverse of each class covariance's lower Cholesky factor.
class qdaModel : public base_c {
  public:
    svec names;
    Levels classes;
    dmat means;
    std::vector<dmat> inverse_factors;  // L_k^-1, lower triangular
    dvec constants;                     // log prior_k - log det(Sigma_k) / 2

    ClassProbabilities score(const double* x) const {
        const std::size_t p = names.size();
        dvec log_products(classes.size());
        dvec centred(p);
        for (std::size_t k = 0; k < log_products.size(); ++k) {
            for (std::size_t j = 0; j < p; ++j)
                centred[j] = x[j] - means[k][j];
            double distance = 0.0;
            for (std::size_t i = 0; i < p; ++i) {
                const dvec& row = inverse_factors[k][i];
                double z = 0.0;
                for (std::size_t j = 0; j <= i; ++j)
                    z += row[j] * centred[j];
                distance += z * z;
            }
            log_products[k] = constants[k] - 0.5 * distance;
        }
        return normalise_log_products(log_products);
    }
};

namespace {

// A pivot this small against its diagonal entry means that variable is, to
// ten digits, a linear combination of those before it.
constexpr double kSingularPivot = 1e-10;

// The usable records of x, y and weight, their classes in sorted order, the
// class means and each class's centred cross-products.
struct ClassMoments {
    svec names;
    std::string y_name;
    bool has_weight = false;
    long long read = 0;
    dmat x;
    std::vector<int> actual;
    dvec weight;
    ClassCounts counts;
    dmat means;                               // [class][variable]
    std::vector<dmat> products;               // [class]: sum of w (x - m)(x - m)'
    std::vector<std::vector<char>> constant;  // [class][variable]
};

ClassMoments read_moments(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    NamedTable xs = read_table_with_headers(x);
    const std::size_t n = xs.valid.size();
    LabelsAndWeights lw = read_labels_and_weights(y, weight, n);
    ClassMoments out;
    out.names = std::move(xs.names);
    out.y_name = lw.y_name;
    out.has_weight = lw.has_weight;
    out.read = static_cast<long long>(n);
    const std::size_t p = out.names.size();

    LevelCoder coder;
    std::vector<int> first_code;
    for (std::size_t i = 0; i < n; ++i) {
        if (!xs.valid[i] || !lw.usable[i])
            continue;
        first_code.push_back(coder.code(lw.labels[i]));
        out.x.push_back(std::move(xs.data[i]));
        out.weight.push_back(lw.weight[i]);
    }
    std::vector<int> place;
    out.counts.classes = coder.sorted(place);
    const std::size_t k_count = out.counts.classes.size();
    out.counts.records.assign(k_count, 0);
    out.counts.weights.assign(k_count, 0.0);
    out.means.assign(k_count, dvec(p, 0.0));
    out.constant.assign(k_count, std::vector<char>(p, 1));
    out.actual.reserve(first_code.size());
    // A class is constant in a variable when every record equals its first.
    std::vector<long long> first_of(k_count, -1);
    for (std::size_t i = 0; i < first_code.size(); ++i) {
        const int k = place[first_code[i]];
        out.actual.push_back(k);
        ++out.counts.records[k];
        out.counts.weights[k] += out.weight[i];
        if (first_of[k] < 0)
            first_of[k] = static_cast<long long>(i);
        const dvec& first = out.x[static_cast<std::size_t>(first_of[k])];
        for (std::size_t j = 0; j < p; ++j) {
            out.means[k][j] += out.weight[i] * out.x[i][j];
            if (out.x[i][j] != first[j])
                out.constant[k][j] = 0;
        }
    }
    for (double w : out.counts.weights)
        out.counts.total_weight += w;
    check_classes(out.counts);
    for (std::size_t k = 0; k < k_count; ++k)
        for (double& m : out.means[k])
            m /= out.counts.weights[k];

    // Centred on the class means, so that the cross-products keep their digits.
    out.products.assign(k_count, dmat(p, dvec(p, 0.0)));
    dvec d(p);
    for (std::size_t i = 0; i < out.x.size(); ++i) {
        const int k = out.actual[i];
        const double w = out.weight[i];
        for (std::size_t j = 0; j < p; ++j)
            d[j] = out.x[i][j] - out.means[k][j];
        dmat& s = out.products[k];
        for (std::size_t a = 0; a < p; ++a) {
            const double wd = w * d[a];
            double* row = s[a].data();
            for (std::size_t b = a; b < p; ++b)
                row[b] += wd * d[b];
        }
    }
    for (dmat& s : out.products)
        for (std::size_t a = 0; a < p; ++a)
            for (std::size_t b = 0; b < a; ++b)
                s[a][b] = s[b][a];
    return out;
}

// The lower factor L of a = L L'; false when a pivot falls below
// kSingularPivot times its diagonal entry.
bool cholesky_factor(const dmat& a, dmat& l) {
    const std::size_t p = a.size();
    l.assign(p, dvec(p, 0.0));
    for (std::size_t j = 0; j < p; ++j) {
        double pivot = a[j][j];
        for (std::size_t k = 0; k < j; ++k)
            pivot -= l[j][k] * l[j][k];
        if (!(pivot > kSingularPivot * a[j][j]) || !(a[j][j] > 0.0))
            return false;
        l[j][j] = std::sqrt(pivot);
        for (std::size_t i = j + 1; i < p; ++i) {
            double sum = a[i][j];
            for (std::size_t k = 0; k < j; ++k)
                sum -= l[i][k] * l[j][k];
            l[i][j] = sum / l[j][j];
        }
    }
    return true;
}

dmat lower_inverse(const dmat& l) {
    const std::size_t p = l.size();
    dmat inv(p, dvec(p, 0.0));
    for (std::size_t j = 0; j < p; ++j) {
        inv[j][j] = 1.0 / l[j][j];
        for (std::size_t i = j + 1; i < p; ++i) {
            double sum = 0.0;
            for (std::size_t k = j; k < i; ++k)
                sum -= l[i][k] * inv[k][j];
            inv[i][j] = sum / l[i][i];
        }
    }
    return inv;
}

CellMatrix means_block(const ClassMoments& m) {
    const std::size_t p = m.names.size(), k_count = m.counts.classes.size();
    CellMatrix r(k_count + 4, p + 1);
    r(0, 0) = "Group Means";
    r(2, 0) = "Class";
    for (std::size_t j = 0; j < p; ++j)
        r(2, j + 1) = m.names[j];
    for (std::size_t k = 0; k < k_count; ++k) {
        m.counts.classes.write(r(3 + k, 0), k);
        for (std::size_t j = 0; j < p; ++j)
            r(3 + k, j + 1) = m.means[k][j];
    }
    return r;
}

CellMatrix finish(CellMatrix r, const ClassMoments& m, const std::vector<int>& predicted,
                  const char* command) {
    r.PushBottom(confusion_block(m.counts.classes, m.actual, predicted, m.weight, false));
    r.PushBottom(CellMatrix(std::string("End of output: ") + command));
    return r;
}

CellMatrix head_blocks(const std::string& handle, const std::string& method,
                       const ClassMoments& m) {
    CellMatrix r = handle_block(handle);
    r.PushBottom(record_block(method, m.y_name, m.read, static_cast<long long>(m.x.size()),
                              m.has_weight, m.counts.total_weight));
    r.PushBottom(class_block(m.counts));
    r.PushBottom(means_block(m));
    return r;
}

// The directions v of largest between-class over within-class variance, each
// scaled so that v'Sv = 1 for the pooled covariance S and signed so that its
// largest coefficient is positive, with each one's share of the trace.
void discriminant_directions(const ClassMoments& m, const dmat& inverse_factor, dmat& directions,
                             dvec& proportions) {
    const std::size_t p = m.names.size(), k_count = m.counts.classes.size();
    dvec overall(p, 0.0);
    for (std::size_t k = 0; k < k_count; ++k)
        for (std::size_t j = 0; j < p; ++j)
            overall[j] += m.counts.weights[k] * m.means[k][j];
    for (double& v : overall)
        v /= m.counts.total_weight;
    // The between-class matrix in the coordinates where S is the identity.
    dmat between(p, dvec(p, 0.0));
    dvec z(p);
    for (std::size_t k = 0; k < k_count; ++k) {
        for (std::size_t i = 0; i < p; ++i) {
            double sum = 0.0;
            for (std::size_t j = 0; j <= i; ++j)
                sum += inverse_factor[i][j] * (m.means[k][j] - overall[j]);
            z[i] = sum;
        }
        for (std::size_t a = 0; a < p; ++a)
            for (std::size_t b = a; b < p; ++b)
                between[a][b] += m.counts.weights[k] * z[a] * z[b];
    }
    for (std::size_t a = 0; a < p; ++a)
        for (std::size_t b = 0; b < a; ++b)
            between[a][b] = between[b][a];
    const EigenPairs eigen = symmetricEigen(between);
    const std::size_t r = std::min(p, k_count - 1);
    double total = 0.0;
    for (std::size_t d = 0; d < r; ++d)
        total += eigen.values[d];
    directions.assign(p, dvec(r, 0.0));
    proportions.assign(r, 0.0);
    for (std::size_t d = 0; d < r; ++d) {
        proportions[d] = eigen.values[d] / total;
        std::size_t largest = 0;
        for (std::size_t j = 0; j < p; ++j) {
            double sum = 0.0;  // (L^-1)' u
            for (std::size_t i = j; i < p; ++i)
                sum += inverse_factor[i][j] * eigen.vectors[i][d];
            directions[j][d] = sum;
            if (std::fabs(sum) > std::fabs(directions[largest][d]))
                largest = j;
        }
        if (directions[largest][d] < 0.0)
            for (std::size_t j = 0; j < p; ++j)
                directions[j][d] = -directions[j][d];
    }
}

}  // namespace

CellMatrix LDA(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    const ClassMoments m = read_moments(x, y, weight);
    const std::size_t p = m.names.size(), k_count = m.counts.classes.size();
    const double divisor = m.counts.total_weight - static_cast<double>(k_count);
    dmat pooled(p, dvec(p, 0.0));
    for (std::size_t k = 0; k < k_count; ++k)
        for (std::size_t a = 0; a < p; ++a)
            for (std::size_t b = 0; b < p; ++b)
                pooled[a][b] += m.products[k][a][b];
    for (dvec& row : pooled)
        for (double& v : row)
            v /= divisor;
    dmat factor;
    if (!cholesky_factor(pooled, factor))
        throw "The pooled within-class covariance is singular: a variable is constant within "
              "every class or a linear combination of others";
    const dmat inverse_factor = lower_inverse(factor);

    auto model = std::make_unique<ldaModel>();
    model->names = m.names;
    model->classes = m.counts.classes;
    const dvec priors = m.counts.priors();
    for (std::size_t k = 0; k < k_count; ++k) {
        dvec z(p, 0.0);  // L^-1 m_k, so that A m_k = (L^-1)' z
        for (std::size_t i = 0; i < p; ++i)
            for (std::size_t j = 0; j <= i; ++j)
                z[i] += inverse_factor[i][j] * m.means[k][j];
        dvec slope(p, 0.0);
        for (std::size_t j = 0; j < p; ++j)
            for (std::size_t i = j; i < p; ++i)
                slope[j] += inverse_factor[i][j] * z[i];
        double quadratic = 0.0;
        for (double v : z)
            quadratic += v * v;
        model->slopes.push_back(std::move(slope));
        model->constants.push_back(std::log(priors[k]) - 0.5 * quadratic);
    }
    std::vector<int> predicted;
    predicted.reserve(m.x.size());
    for (const dvec& row : m.x)
        predicted.push_back(model->score(row.data()).predicted);
    dmat directions;
    dvec proportions;
    discriminant_directions(m, inverse_factor, directions, proportions);

    const handle_c<ldaModel> handle(model.release());
    CellMatrix r = head_blocks(ldaModelHandle_to_string(handle), "Linear Discriminant Analysis", m);
    CellMatrix covariance(p + 4, p + 1);
    covariance(0, 0) = "Pooled Within-Class Covariance";
    for (std::size_t a = 0; a < p; ++a) {
        covariance(2, a + 1) = m.names[a];
        covariance(3 + a, 0) = m.names[a];
        for (std::size_t b = 0; b < p; ++b)
            covariance(3 + a, b + 1) = pooled[a][b];
    }
    r.PushBottom(covariance);
    const std::size_t dims = proportions.size();
    CellMatrix coefficients(p + 6, dims + 1);
    coefficients(0, 0) = "Linear Discriminant Coefficients";
    coefficients(2, 0) = "Variable";
    coefficients(p + 4, 0) = "Proportion of Trace";
    for (std::size_t d = 0; d < dims; ++d) {
        coefficients(2, d + 1) = "LD" + std::to_string(d + 1);
        coefficients(p + 4, d + 1) = proportions[d];
        for (std::size_t j = 0; j < p; ++j)
            coefficients(3 + j, d + 1) = directions[j][d];
    }
    for (std::size_t j = 0; j < p; ++j)
        coefficients(3 + j, 0) = m.names[j];
    r.PushBottom(coefficients);
    return finish(r, m, predicted, "LDA");
}

CellMatrix QDA(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    const ClassMoments m = read_moments(x, y, weight);
    const std::size_t p = m.names.size(), k_count = m.counts.classes.size();
    auto model = std::make_unique<qdaModel>();
    model->names = m.names;
    model->classes = m.counts.classes;
    model->means = m.means;
    const dvec priors = m.counts.priors();
    dvec determinants;
    for (std::size_t k = 0; k < k_count; ++k) {
        for (std::size_t j = 0; j < p; ++j)
            if (m.constant[k][j])
                throw "The variable " + m.names[j] + " is constant within class " +
                    m.counts.classes.texts[k];
        dmat covariance = m.products[k];
        for (dvec& row : covariance)
            for (double& v : row)
                v /= m.counts.weights[k] - 1.0;
        dmat factor;
        if (!cholesky_factor(covariance, factor))
            throw "The covariance of class " + m.counts.classes.texts[k] +
                " is singular: a variable is a linear combination of others within it";
        double log_determinant = 0.0;
        for (std::size_t j = 0; j < p; ++j)
            log_determinant += 2.0 * std::log(factor[j][j]);
        determinants.push_back(std::exp(log_determinant));
        model->inverse_factors.push_back(lower_inverse(factor));
        model->constants.push_back(std::log(priors[k]) - 0.5 * log_determinant);
    }
    std::vector<int> predicted;
    predicted.reserve(m.x.size());
    for (const dvec& row : m.x)
        predicted.push_back(model->score(row.data()).predicted);

    const handle_c<qdaModel> handle(model.release());
    CellMatrix r =
        head_blocks(qdaModelHandle_to_string(handle), "Quadratic Discriminant Analysis", m);
    CellMatrix block(k_count + 4, 2);
    block(0, 0) = "Class Covariance Determinants";
    block(2, 0) = "Class";
    block(2, 1) = "Determinant";
    for (std::size_t k = 0; k < k_count; ++k) {
        m.counts.classes.write(block(3 + k, 0), k);
        block(3 + k, 1) = determinants[k];
    }
    r.PushBottom(block);
    return finish(r, m, predicted, "QDA");
}

namespace {

template <class Model>
CellMatrix score_with(const Model& model, const CellMatrix& x) {
    const std::vector<std::size_t> columns = scoring_columns(
        x, model.names, "The variable used in model:", ": cannot be found in input data");
    dvec row(columns.size());
    return class_score_table(model.classes, x.RowsInStructure() - 1,
                             [&](std::size_t i, ClassProbabilities& out) {
                                 for (std::size_t j = 0; j < columns.size(); ++j) {
                                     const CellValue& cell = x(i + 1, columns[j]);
                                     if (!cell.IsANumber())
                                         return false;
                                     row[j] = cell.NumericValue();
                                 }
                                 out = model.score(row.data());
                                 return true;
                             });
}

}  // namespace

CellMatrix discriminant_score(const std::string& handle, const CellMatrix& x) {
    const std::string key = trim(handle, 0);
    if (model_class_of(key) == "ldaModel") {
        const handle_c<ldaModel> fit = string_to_handle<ldaModel>(key);
        return score_with(*static_cast<const ldaModel*>(fit.getBody()), x);
    }
    const handle_c<qdaModel> fit = string_to_handle<qdaModel>(key);
    return score_with(*static_cast<const qdaModel*>(fit.getBody()), x);
}

}  // namespace zentable
