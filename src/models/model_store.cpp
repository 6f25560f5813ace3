#include "models/model_store.hpp"

#include <algorithm>
#include <cctype>

#include "data/delimited_file.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

long long next_model_number() {
    static long long last = 0;
    return ++last;
}

#define ZENTABLE_DEFINE_MODEL_LIST(name)                            \
    template <>                                                     \
    mru_list_c<name>& model_list<name>() {                          \
        static mru_list_c<name> list(kModelListCapacity, #name);    \
        return list;                                                \
    }                                                               \
    string_c name##Handle_to_string(const handle_c<name>& handle) { \
        return handle_to_string(handle);                            \
    }
ZENTABLE_MODEL_CLASSES(ZENTABLE_DEFINE_MODEL_LIST)
#undef ZENTABLE_DEFINE_MODEL_LIST

namespace {

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

}  // namespace

std::string model_class_of(const std::string& model) {
    const std::string name = trim(model, 0);
    const std::vector<std::string> pieces = split_line(name, '.');
    if (pieces.size() > 1 && upper(pieces.back()) == "XML")
        throw std::string("Reading a PMML model file is not available in this build: " + name);
    return name.substr(0, name.find('-'));
}

}  // namespace zentable
