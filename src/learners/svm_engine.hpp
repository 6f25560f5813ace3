#pragma once

#include <string>
#include <vector>

namespace zentable {

// The library's training and prediction tools, run in-process on their own
// argument vectors: every datum reaches the library through its text files,
// and every failure comes back as a thrown text instead of ending the process.

// As the training tool: options, the data file, the model file. The C
// library's generator is seeded just before training, because the library
// draws the folds of its probability estimate from rand().
void svmTrainMain(const std::vector<std::string>& args, int seed);

// As the prediction tool ("-b 1" optional): the data file, the model file, the
// predictions file. Gives each record's probability of the label 1 under
// "-b 1", else its predicted value.
std::vector<double> svmPredictMain(const std::vector<std::string>& args);

}  // namespace zentable
