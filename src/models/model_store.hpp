#pragma once

#include <string>

#include "models/mru_list.hpp"

namespace zentable {

// The model classes, in the order of the store's lists.
#define ZENTABLE_MODEL_CLASSES(X)    \
    X(linearRegModel)                \
    X(polyRegModel)                  \
    X(plsRegModel)                   \
    X(piecewiseLinearRegModel)       \
    X(logisticRegModel)              \
    X(woeXcontYbinModel)             \
    X(woeXcontYcontModel)            \
    X(woeXcatYbinModel)              \
    X(woeXcatYcontModel)             \
    X(regressionTreeModel)           \
    X(classificationTreeModel)       \
    X(lsRegBoostingTreeModel)        \
    X(logisticRegBoostingTreeModel)  \
    X(neuralNetModel)                \
    X(svmModel)                      \
    X(naiveBayesClassificationModel) \
    X(ldaModel)                      \
    X(qdaModel)

constexpr int kModelListCapacity = 16384;

// The list of each class lives as long as the program.
template <class T>
mru_list_c<T>& model_list();

#define ZENTABLE_DECLARE_MODEL_CLASS(name) \
    class name;                            \
    template <>                            \
    mru_list_c<name>& model_list<name>();  \
    string_c name##Handle_to_string(const handle_c<name>& handle);
ZENTABLE_MODEL_CLASSES(ZENTABLE_DECLARE_MODEL_CLASS)
#undef ZENTABLE_DECLARE_MODEL_CLASS

// Files a model in its class's list and gives the handle string.
template <class T>
string_c handle_to_string(const handle_c<T>& handle) {
    return model_list<T>().add(handle);
}

template <class T>
handle_c<T> string_to_handle(const string_c& key, bool quiet = false) {
    return model_list<T>().find(key, quiet);
}

// The class named by a model argument: the text before the first "-".
std::string model_class_of(const std::string& model);

}  // namespace zentable
