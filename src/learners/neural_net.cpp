#include "learners/neural_net.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "data/delimited_file.hpp"
#include "models/model_eval.hpp"
#include "models/model_store.hpp"
#include "numeric/column_scaling.hpp"
#include "numeric/random.hpp"
#include "regression/logistic_fit.hpp"
#include "trees/tree_report.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr double kSaturation = 10.0;
constexpr double kFirstStep = 0.1;
constexpr double kStepFloor = 0.0001;
constexpr double kStepCeiling = 50.0;
constexpr double kWeightBound = 1500.0;

constexpr const char* kBadAlgorithm =
    "Unknown training algorithm. Available training algorithms are: BP_ONLINE, BP_BATCH, IRPROPM";
constexpr const char* kInputLayer = "The input nodes must have the same size as input variables";
constexpr const char* kOutputLayer = "The output layer must only have one node";
constexpr const char* kNotConformable = "Data matrix is not conformable";

// Past +-10 the logistic is within 1e-4 of its bound, so the exponential is skipped.
double activation(double net) {
    if (net < -kSaturation)
        return -1.0;
    if (net > kSaturation)
        return 1.0;
    return -1.0 + 2.0 / (1.0 + std::exp(-net));
}

LayerMatrices shaped_like(const std::vector<int>& sizes, double value) {
    LayerMatrices out;
    for (std::size_t l = 0; l + 1 < sizes.size(); ++l)
        out.emplace_back(sizes[l + 1], sizes[l] + 1, value);
    return out;
}

std::vector<dvec> layer_vectors(const std::vector<int>& sizes) {
    std::vector<dvec> out;
    for (int size : sizes)
        out.emplace_back(size, 0.0);
    return out;
}

// Runs one input through the layers, leaving every node's activation in
// `act`; gives the output node's net. A linear output needs no activation of
// its own, so `squash_output` off spares its exponential.
double forward(const LayerMatrices& weights, const double* input, std::vector<dvec>& act,
               bool squash_output) {
    std::copy(input, input + act[0].size(), act[0].begin());
    double net = 0.0;
    for (std::size_t l = 0; l < weights.size(); ++l) {
        const dvec& from = act[l];
        dvec& to = act[l + 1];
        const std::size_t k = from.size();
        for (std::size_t j = 0; j < to.size(); ++j) {
            const double* row = weights[l].row(j);
            double sum = 0.0;
            for (std::size_t i = 0; i < k; ++i)
                sum += row[i] * from[i];
            net = row[k] + sum;
            if (squash_output || l + 1 < weights.size())
                to[j] = activation(net);
        }
    }
    return net;
}

class Trainer {
  public:
    Trainer(NeuralNetwork& net, NetData& train, const NetData* test)
        : net_(net), train_(train), test_(test), ls_(net.objective == "LS") {}

    void run(dmat& history) {
        const bool online = net_.algorithm == "BP_ONLINE";
        const int epochs = net_.epochs;
        double best = -1.0;
        // A batch epoch's gradient pass runs on the weights that the previous
        // epoch's error pass saw, so one pass serves both.
        if (!online)
            accumulate_gradient();
        for (int e = 0; e < epochs; ++e) {
            if (net_.algorithm == "IRPROPM") {
                rprop_update();
            } else if (!online) {
                backprop_update(e, static_cast<double>(train_.x.size()));
            } else {
                online_epoch(e);
            }
            const double train_error =
                !online && e + 1 < epochs ? accumulate_gradient() : error_of(train_);
            const double test_error = test_ ? error_of(*test_) : train_error;
            if (best < 0.0 || best >= train_error) {
                best = train_error;
                net_.bestWeights = net_.weights;
                history.push_back({train_error, test_error});
            }
        }
    }

  private:
    double output(const double* input) {
        const double net = forward(net_.weights, input, net_.activations, !ls_);
        net_.output = ls_ ? net : net_.activations.back()[0];
        return net_.output;
    }

    void back_propagate(double target) {
        std::vector<dvec>& delta = net_.deltas;
        const std::vector<dvec>& act = net_.activations;
        const double miss = target - net_.output;
        delta.back()[0] = ls_ ? 2.0 * miss : 0.5 * miss;
        for (std::size_t l = delta.size() - 2; l >= 1; --l) {
            const LayerMatrix& w = net_.weights[l];
            for (std::size_t i = 0; i < delta[l].size(); ++i) {
                double sum = 0.0;
                for (std::size_t j = 0; j < w.rows; ++j)
                    sum += w(j, i) * delta[l + 1][j];
                const double a = act[l][i];
                delta[l][i] = sum * (1.0 - a) * (1.0 + a) * 0.5;
            }
        }
    }

    void add_gradient() {
        for (std::size_t l = 0; l < net_.gradient.size(); ++l) {
            const dvec& from = net_.activations[l];
            const std::size_t k = from.size();
            for (std::size_t j = 0; j < net_.gradient[l].rows; ++j) {
                const double d = net_.deltas[l + 1][j];
                double* g = net_.gradient[l].row(j);
                for (std::size_t i = 0; i < k; ++i)
                    g[i] += -from[i] * d;
                g[k] += -d;
            }
        }
    }

    void zero_gradient() {
        for (LayerMatrix& m : net_.gradient)
            std::fill(m.values.begin(), m.values.end(), 0.0);
    }

    // The gradient of all training records at the present weights, and their
    // error, in record order.
    double accumulate_gradient() {
        zero_gradient();
        double sum = 0.0;
        for (std::size_t r = 0; r < train_.x.size(); ++r) {
            const double e = train_.y[r] - output(train_.x[r].data());
            sum += train_.weight[r] * e * e;
            back_propagate(train_.y[r]);
            add_gradient();
        }
        return sum / net_.sumWeightTrain;
    }

    double error_of(const NetData& data) {
        double sum = 0.0;
        for (std::size_t r = 0; r < data.x.size(); ++r) {
            const double e = data.y[r] - output(data.x[r].data());
            sum += data.weight[r] * e * e;
        }
        return sum / (&data == &train_ ? net_.sumWeightTrain : net_.sumWeightTest);
    }

    void rprop_update() {
        for (std::size_t l = 0; l < net_.weights.size(); ++l) {
            dvec& w = net_.weights[l].values;
            dvec& g = net_.gradient[l].values;
            dvec& h = net_.prevGradient[l].values;
            dvec& s = net_.stepSize[l].values;
            for (std::size_t c = 0; c < w.size(); ++c) {
                if (!(s[c] > kStepFloor))
                    s[c] = kStepFloor;
                if (g[c] * h[c] >= 0.0) {
                    s[c] = std::min(1.2 * s[c], kStepCeiling);
                    if (g[c] > 0.0) {
                        w[c] -= s[c];
                        if (w[c] < -kWeightBound)
                            w[c] = -kWeightBound;
                    } else if (g[c] < 0.0) {
                        w[c] += s[c];
                        if (w[c] > kWeightBound)
                            w[c] = kWeightBound;
                    }
                } else {
                    s[c] = std::max(0.5 * s[c], 0.0);
                    g[c] = 0.0;
                }
                h[c] = g[c];
            }
        }
    }

    void backprop_update(int epoch, double batch) {
        const double decay = 20.0 / (epoch + 20.0);
        for (std::size_t l = 0; l < net_.weights.size(); ++l) {
            dvec& w = net_.weights[l].values;
            const dvec& g = net_.gradient[l].values;
            dvec& v = net_.lastStep[l].values;
            for (std::size_t c = 0; c < w.size(); ++c) {
                v[c] = net_.momentum * decay * v[c] - net_.learnRate * decay * g[c] / batch;
                w[c] = std::min(std::max(w[c] + v[c], -kWeightBound), kWeightBound);
            }
        }
    }

    // The order carries over: each epoch shuffles the order the last one left.
    void shuffle(int epoch) {
        const std::size_t n = train_.x.size();
        seed_rand15(static_cast<std::uint32_t>(net_.seed + epoch));
        for (std::size_t i = 0; i < n; ++i) {
            auto j = static_cast<std::size_t>((rand15() + 1.0) / 32769.0 * static_cast<double>(n));
            if (j >= n)
                j = n - 1;
            std::swap(train_.x[i], train_.x[j]);
            std::swap(train_.y[i], train_.y[j]);
            std::swap(train_.weight[i], train_.weight[j]);
        }
    }

    void online_epoch(int epoch) {
        shuffle(epoch);
        for (std::size_t r = 0; r < train_.x.size(); ++r) {
            output(train_.x[r].data());
            back_propagate(train_.y[r]);
            zero_gradient();
            add_gradient();
            backprop_update(epoch, 1.0);
        }
    }

    NeuralNetwork& net_;
    NetData& train_;
    const NetData* test_;
    bool ls_;
};

double weighted_sum(const dvec& w) {
    double sum = 0.0;
    for (double v : w)
        sum += v;
    return sum;
}

void check_shape(const NetSettings& s, const NetData& train, const NetData* test) {
    const std::size_t p = train.x.empty() ? s.variableNames.size() : train.x[0].size();
    if (s.layerSizes.size() < 2 || s.layerSizes.front() != static_cast<int>(p))
        throw kInputLayer;
    if (s.layerSizes.back() != 1)
        throw kOutputLayer;
    for (const NetData* d : {&train, test})
        if (d && (d->y.size() != d->x.size() || d->weight.size() != d->x.size()))
            throw kNotConformable;
    if (s.algorithm != "IRPROPM" && s.algorithm != "BP_BATCH" && s.algorithm != "BP_ONLINE")
        throw kBadAlgorithm;
}

void scale_target(NeuralNetwork& net, NetData& train, NetData* test) {
    if (net.objective == "LS") {
        const TargetScale scale = target_scale(train.y, train.weight, net.sumWeightTrain);
        net.yMean = scale.mean;
        net.yStd = scale.sd;
    }
    for (NetData* d : {&train, test}) {
        if (!d)
            continue;
        for (double& y : d->y)
            y = net.objective == "LS" ? (y - net.yMean) / net.yStd : (y >= 0.5 ? 1.0 : -1.0);
    }
}

// After the fold the first layer takes raw inputs and, under "LS", the output
// node gives raw targets.
void fold_scaling(NeuralNetwork& net) {
    LayerMatrix& first = net.bestWeights.front();
    const std::size_t p = net.xMean.size();
    for (std::size_t j = 0; j < first.rows; ++j) {
        double* row = first.row(j);
        double shift = 0.0;
        for (std::size_t i = 0; i < p; ++i) {
            row[i] /= net.xStd[i];
            shift += row[i] * net.xMean[i];
        }
        row[p] -= shift;
    }
    if (net.objective != "LS")
        return;
    dvec& out = net.bestWeights.back().values;
    for (double& w : out)
        w *= net.yStd;
    out.back() += net.yMean;
}

}  // namespace

LayerMatrices initialNetWeights(const std::vector<int>& layerSizes, int seed) {
    LayerMatrices weights = shaped_like(layerSizes, 0.0);
    seed_rand15(static_cast<std::uint32_t>(seed));
    for (LayerMatrix& m : weights)
        for (double& w : m.values)
            w = ((rand15() + 1.0) / 32769.0 - 0.5) * 0.01;
    return weights;
}

NeuralNetwork trainNeuralNet(const NetSettings& settings, NetData& train, NetData* test,
                             dmat& history) {
    check_shape(settings, train, test);
    NeuralNetwork net;
    net.algorithm = settings.algorithm;
    net.objective = settings.objective;
    net.layerSizes = settings.layerSizes;
    net.numLayers = static_cast<std::int32_t>(net.layerSizes.size());
    net.learnRate = settings.learnRate;
    net.momentum = settings.momentum;
    net.epochs = settings.epochs;
    net.seed = settings.seed;
    net.variableNames = settings.variableNames;

    const ColumnScaling scaling = standardize_columns(train.x, train.weight);
    net.xMean = scaling.mean;
    net.xStd = scaling.sd;
    net.sumWeightTrain = scaling.sum_weight;
    if (test) {
        scale_columns(test->x, scaling);
        net.sumWeightTest = weighted_sum(test->weight);
    } else {
        net.sumWeightTest = net.sumWeightTrain;
    }
    scale_target(net, train, test);

    net.weights = initialNetWeights(net.layerSizes, net.seed);
    net.bestWeights = net.weights;
    net.lastStep = shaped_like(net.layerSizes, 0.0);
    net.stepSize = shaped_like(net.layerSizes, kFirstStep);
    net.prevGradient = shaped_like(net.layerSizes, 0.0);
    net.gradient = shaped_like(net.layerSizes, 0.0);
    net.activations = layer_vectors(net.layerSizes);
    net.deltas = layer_vectors(net.layerSizes);

    history.clear();
    Trainer(net, train, test).run(history);
    fold_scaling(net);
    return net;
}

dvec scoreNeuralNet(const NeuralNetwork& net, const svec& names, const dmat& rows) {
    std::vector<std::size_t> columns;
    for (const std::string& v : net.variableNames) {
        const auto it = std::find(names.begin(), names.end(), v);
        if (it == names.end())
            throw "The variable used in neural network: " + v + ": cannot be found in input data";
        columns.push_back(static_cast<std::size_t>(it - names.begin()));
    }
    std::vector<dvec> act = layer_vectors(net.layerSizes);
    dvec input(columns.size());
    dvec scores;
    scores.reserve(rows.size());
    const bool ls = net.objective == "LS";
    for (const dvec& row : rows) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            input[i] = row[columns[i]];
        const double out = forward(net.bestWeights, input.data(), act, !ls);
        scores.push_back(ls ? out : (act.back()[0] + 1.0) * 0.5);
    }
    return scores;
}

// The commands.

namespace {

constexpr const char* kBadObjective =
    "Only LS (least squares) or ML (maximum likelihood) objective function allowed in neural net";
constexpr const char* kBadHidden =
    "The number of nodes in each hidden layer must be a positive integer";
constexpr const char* kBadEpochs = "Input epochs must be a positive integer";
constexpr const char* kBadSeed = "Input seed must be an integer";
constexpr const char* kTestCounts =
    "The numbers of observations in input data xTest, yTest, and weightTest must be the same";
constexpr const char* kNoTestX = "Test file is specified, but xTestNames is missing";
constexpr const char* kNoTestY = "Test file is specified, but yTestName is missing";
constexpr const char* kNoTestFile =
    "xTestNames or yTestName is specified, but test file is missing";
constexpr const char* kNoRecords = "Number of non-missing records in input data is 0";

struct NetOptions {
    std::string objective;
    std::vector<int> hidden;
    int epochs = 20;
    int seed = 100;
};

NetOptions read_options(const std::string& model, const CellMatrix& numHiddenNodes,
                        const CellMatrix& epochs, const CellMatrix& seed) {
    NetOptions o;
    o.objective = model;
    if (o.objective != "LS" && o.objective != "ML")
        throw kBadObjective;
    dvec nodes;
    read_double_vector_optional(numHiddenNodes, kBadHidden, nodes);
    if (nodes.empty())
        throw kBadHidden;
    for (double v : nodes) {
        // A layer of 2^31 nodes could never be allocated anyway.
        if (!(v >= 1.0 && v < 2147483648.0))
            throw kBadHidden;
        o.hidden.push_back(static_cast<int>(v));
    }
    read_int(epochs, kBadEpochs, o.epochs);
    if (o.epochs < 1)
        throw kBadEpochs;
    read_int(seed, kBadSeed, o.seed);
    return o;
}

// The test rows' columns put in the order of the training variables.
void align_test(XYW& test, const svec& names) {
    if (test.x_names == names)
        return;
    std::vector<std::size_t> columns;
    for (const std::string& name : names)
        columns.push_back(find_variable_in_data(test.x_names, name));
    for (dvec& row : test.x) {
        dvec aligned(columns.size());
        for (std::size_t j = 0; j < columns.size(); ++j)
            aligned[j] = row[columns[j]];
        row = std::move(aligned);
    }
    test.x_names = names;
}

std::size_t cells_after_name(const CellMatrix& line) {
    return is_omitted(line) ? 0 : NamedLine(line).size();
}

void write_ls_block(CellMatrix& r, const ContEval& train, const ContEval& test, int p) {
    r(2, 0) = "Analysis of Variance";
    r(4, 1) = "Training";
    r(4, 2) = "Testing";
    const char* const labels[] = {
        "Number of records", "Number of variables", "R-Sqaure", "Adj R-Square", nullptr, "RMSE",
        "Y-actual Mean",     "Y-predicted Mean",    "Coeff Var"};
    const ContEval* sets[] = {&train, &test};
    for (std::size_t c = 0; c < 2; ++c) {
        const ContEval& e = *sets[c];
        const double values[] = {static_cast<double>(e.n),
                                 static_cast<double>(p),
                                 e.r_square,
                                 e.adj_r_square,
                                 0.0,
                                 e.rmse,
                                 e.y_mean,
                                 e.p_mean,
                                 e.coeff_var};
        for (std::size_t i = 0; i < 9; ++i) {
            if (!labels[i])
                continue;
            r(5 + i, 0) = labels[i];
            r(5 + i, c + 1) = values[i];
        }
    }
    write_variance_rows(r, 15, train.n, train.k, train.ssr, train.sse, train.sst, train.f_value,
                        train.p_value);
}

std::string weights_title(std::size_t k, std::size_t hidden) {
    if (k == 0)
        return "Weights from input layer to hidden layer 1";
    const std::string from = "Weights from hidden layer " + std::to_string(k);
    return k == hidden ? from + " to output layer"
                       : from + " to hidden layer " + std::to_string(k + 1);
}

// The structure, the folded weights and the history, from row `top`.
void write_network(CellMatrix& r, std::size_t top, const NeuralNetwork& net, const dmat& history) {
    const std::vector<int>& sizes = net.layerSizes;
    const std::size_t hidden = sizes.size() - 2;
    std::size_t row = top;
    r(row, 0) = "Neural network structure";
    r(row + 1, 0) = "Layer";
    r(row + 1, 1) = "Nodes";
    r(row + 2, 0) = "Input layer";
    r(row + 2, 1) = sizes[0];
    row += 3;
    for (std::size_t h = 1; h <= hidden; ++h, ++row) {
        r(row, 0) = "Hidden layer " + std::to_string(h);
        r(row, 1) = sizes[h];
    }
    r(row, 0) = "Output layer";
    r(row, 1) = 1;
    row += 2;
    for (std::size_t k = 0; k + 1 < sizes.size(); ++k) {
        const LayerMatrix& w = net.bestWeights[k];
        r(row, 0) = weights_title(k, hidden);
        r(row + 1, 0) = "Variable";
        r(row + 1, 1) = "Node";
        for (std::size_t j = 0; j < w.rows; ++j)
            r(row + 1, 2 + j) = static_cast<int>(j + 1);
        row += 2;
        const auto from = static_cast<std::size_t>(sizes[k]);
        for (std::size_t i = 0; i <= from; ++i, ++row) {
            if (i == from)
                r(row, 0) = "Intercept";
            else if (k == 0)
                r(row, 0) = net.variableNames[i];
            else
                r(row, 0) = "Hidden layer " + std::to_string(k);
            if (i == from)
                r(row, 1) = "Intercept";
            else
                r(row, 1) = static_cast<int>(i + 1);
            for (std::size_t j = 0; j < w.rows; ++j)
                r(row, 2 + j) = w(j, i);
        }
        ++row;
    }
    r(row, 0) = "Epoch";
    r(row, 1) = "MSE Training";
    r(row, 2) = "MSE Testing";
    for (std::size_t e = 0; e < history.size(); ++e) {
        r(row + 1 + e, 0) = static_cast<int>(e + 1);
        r(row + 1 + e, 1) = history[e][0];
        r(row + 1 + e, 2) = history[e][1];
    }
    write_report_end(r, "neural network");
}

CellMatrix run_neural_net(const XYW& train, XYW* test, const NetOptions& o) {
    if (train.y.empty())
        throw kNoRecords;
    const bool ls = o.objective == "LS";
    const svec& names = train.x_names;
    const int p = static_cast<int>(names.size());
    if (test)
        align_test(*test, names);

    // The engine scales its copies; the evaluation sees the data as given.
    NetData train_set{train.x, train.y, train.weight};
    std::unique_ptr<NetData> test_set;
    if (test)
        test_set.reset(new NetData{test->x, test->y, test->weight});
    dvec levels;
    if (!ls) {
        levels = binary_recode(train_set.y);
        if (test_set)
            binary_recode(test_set->y);
    }
    NetSettings settings;
    settings.objective = o.objective;
    settings.layerSizes.push_back(p);
    settings.layerSizes.insert(settings.layerSizes.end(), o.hidden.begin(), o.hidden.end());
    settings.layerSizes.push_back(1);
    settings.epochs = o.epochs;
    settings.seed = o.seed;
    settings.variableNames = names;
    const dvec train_target = train_set.y;

    dmat history;
    auto model = std::make_unique<neuralNetModel>();
    model->net = trainNeuralNet(settings, train_set, test_set.get(), history);
    model->levels = levels;
    const NeuralNetwork& net = model->net;

    // From here on the model is in the store, whatever follows.
    const std::string handle =
        neuralNetModelHandle_to_string(handle_c<neuralNetModel>(model.release()));

    const std::size_t r = ls ? 18 : 20;
    const std::size_t hidden = o.hidden.size();
    const int widest = *std::max_element(o.hidden.begin(), o.hidden.end());
    std::size_t rows = r + 6 + hidden + history.size() + 4;
    for (std::size_t k = 0; k + 1 < net.layerSizes.size(); ++k)
        rows += static_cast<std::size_t>(net.layerSizes[k]) + 4;
    CellMatrix result(rows,
                      std::max<std::size_t>(ls ? 6 : 5, static_cast<std::size_t>(widest) + 2));
    result(0, 0) = handle;
    if (ls) {
        ContEval train_eval, test_eval;
        model_continuous_stats(handle, names, train.x, train.y, train.weight, train_eval);
        if (test)
            model_continuous_stats(handle, names, test->x, test->y, test->weight, test_eval);
        else
            test_eval = train_eval;
        write_ls_block(result, train_eval, test_eval, p);
    } else {
        BinaryEval eval;
        model_binary_association(handle, names, train.x, train_target, train.weight, eval);
        BinaryPerformance perf;
        perf.y_name = train.y_name;
        perf.levels = levels;
        count_events(train_target, train.weight, perf);
        perf.candidates = p;
        perf.nv = p;
        perf.ll0 = intercept_only_loglik(perf.w, perf.w1);
        perf.ll1 = eval.log_likelihood;
        write_binary_block(result, perf, eval);
    }
    write_network(result, r + 2, net, history);
    return result;
}

}  // namespace

CellMatrix neural_net(const CellMatrix& x, const CellMatrix& y, const std::string& model,
                      const CellMatrix& numHiddenNodes, const CellMatrix& epochs,
                      const CellMatrix& seed, const CellMatrix& weight, const CellMatrix& xTest,
                      const CellMatrix& yTest, const CellMatrix& weightTest) {
    const NetOptions options = read_options(model, numHiddenNodes, epochs, seed);
    const XYW train = read_xyw(x, y, weight);
    if (is_omitted(xTest) && is_omitted(yTest))
        return run_neural_net(train, nullptr, options);
    const std::size_t n = is_omitted(xTest) ? 0 : xTest.RowsInStructure() - 1;
    if (cells_after_name(yTest) != n ||
        (!is_omitted(weightTest) && cells_after_name(weightTest) != n))
        throw kTestCounts;
    XYW test = read_xyw(xTest, yTest, weightTest);
    return run_neural_net(train, &test, options);
}

CellMatrix neural_net_from_file(const std::string& filename, const CellMatrix& xNames,
                                const CellMatrix& yName, const std::string& model,
                                const CellMatrix& numHiddenNodes, const CellMatrix& epochs,
                                const CellMatrix& seed, const CellMatrix& weightName,
                                const CellMatrix& testFileName, const CellMatrix& xTestNames,
                                const CellMatrix& yTestName, const CellMatrix& weightTestName,
                                const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const NetOptions options = read_options(model, numHiddenNodes, epochs, seed);
    // The file name travels as a table so that an omitted one reads as no test file.
    const std::string test_file =
        is_omitted(testFileName) ? std::string() : trim(cell_to_text(testFileName(0, 0)), 0);
    const bool test_names = !is_omitted(xTestNames) || !is_omitted(yTestName);
    if (!test_file.empty()) {
        if (is_omitted(xTestNames))
            throw kNoTestX;
        if (is_omitted(yTestName))
            throw kNoTestY;
    } else if (test_names) {
        throw kNoTestFile;
    }
    const XYW train = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    if (test_file.empty())
        return run_neural_net(train, nullptr, options);
    XYW test = read_xyw_from_file(test_file, xTestNames, yTestName, weightTestName, separator);
    return run_neural_net(train, &test, options);
}

}  // namespace zentable
