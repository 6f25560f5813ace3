#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "models/handle.hpp"
#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The weights of one layer step in one block, row-major: a row per node of the
// next layer, holding a weight per node of the previous layer and then the
// intercept.
struct LayerMatrix {
    std::size_t rows = 0, columns = 0;
    dvec values;

    LayerMatrix() = default;
    LayerMatrix(std::size_t r, std::size_t c, double value)
        : rows(r), columns(c), values(r * c, value) {}
    double* row(std::size_t j) { return values.data() + j * columns; }
    const double* row(std::size_t j) const { return values.data() + j * columns; }
    double operator()(std::size_t j, std::size_t i) const { return values[j * columns + i]; }
};
using LayerMatrices = std::vector<LayerMatrix>;

// A fully connected feed-forward network with one output node. The matrix of
// the step from layer l to layer l + 1 has a row per node of layer l + 1 and
// layerSizes[l] + 1 columns, the intercept last.
struct NeuralNetwork {
    std::string algorithm;  // "IRPROPM", "BP_ONLINE" or "BP_BATCH"
    std::string objective;  // "LS" or "ML"
    std::int32_t numLayers = 0;
    std::vector<int> layerSizes;
    double learnRate = 0.002;
    double momentum = 0.0001;
    std::int32_t epochs = 20;
    std::int32_t seed = 100;
    dvec xMean, xStd;
    double yMean = 0.0, yStd = 0.0;
    double sumWeightTrain = 0.0, sumWeightTest = 0.0;
    LayerMatrices bestWeights;
    LayerMatrices weights;
    LayerMatrices lastStep;  // the momentum's velocity of back-propagation
    LayerMatrices stepSize;
    LayerMatrices prevGradient;
    LayerMatrices gradient;
    std::vector<dvec> activations;
    std::vector<dvec> deltas;
    double output = 0.0;
    svec variableNames;
};

// The records of one set. Training scales x and y in place.
struct NetData {
    dmat x;
    dvec y;  // "ML": 0 and 1 (any value at or above 0.5 is the event)
    dvec weight;
};

struct NetSettings {
    std::string algorithm = "IRPROPM";
    std::string objective = "LS";
    std::vector<int> layerSizes;
    double learnRate = 0.002;
    double momentum = 0.0001;
    int epochs = 20;
    int seed = 100;
    svec variableNames;
};

// Scales both sets, trains from the seeded initial weights, keeps the weights
// of the lowest training error and folds the scaling into them, so that the
// network scores raw data. `test` null means the training set stands for the
// test set. Each history row: MSE Training, MSE Testing of an improving epoch.
NeuralNetwork trainNeuralNet(const NetSettings& settings, NetData& train, NetData* test,
                             dmat& history);

// The scores of the rows of a table whose columns are `names`: the output
// node's net under "LS", the event probability under "ML".
dvec scoreNeuralNet(const NeuralNetwork& net, const svec& names, const dmat& rows);

// The initial weights that the generator gives for a seed, matrix by matrix
// in layer order, row by row, the intercept last.
LayerMatrices initialNetWeights(const std::vector<int>& layerSizes, int seed);

class neuralNetModel : public base_c {
  public:
    NeuralNetwork net;
    dvec levels;  // "ML": the two target values as given, ascending
};

// neural_net(x, y, model, numHiddenNodes, epochs, seed, weight, xTest, yTest,
// weightTest): trains a network by resilient propagation and files it.
CellMatrix neural_net(const CellMatrix& x, const CellMatrix& y, const std::string& model,
                      const CellMatrix& numHiddenNodes, const CellMatrix& epochs,
                      const CellMatrix& seed, const CellMatrix& weight, const CellMatrix& xTest,
                      const CellMatrix& yTest, const CellMatrix& weightTest);
CellMatrix neural_net_from_file(const std::string& filename, const CellMatrix& xNames,
                                const CellMatrix& yName, const std::string& model,
                                const CellMatrix& numHiddenNodes, const CellMatrix& epochs,
                                const CellMatrix& seed, const CellMatrix& weightName,
                                const CellMatrix& testFileName, const CellMatrix& xTestNames,
                                const CellMatrix& yTestName, const CellMatrix& weightTestName,
                                const CellMatrix& delimiter);

}  // namespace zentable
