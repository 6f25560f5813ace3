// Handle strings: the store finds a model by its key in any case and by
// nothing else, the class of a model argument is the text before its first
// "-", and a command given any model text fails in words.

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "commands/catalogue.hpp"
#include "fuzz_support.hpp"
#include "models/model_store.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::fuzz {
namespace {

CellMatrix column(std::initializer_list<MJCellValue> cells) {
    CellMatrix t(cells.size(), 1);
    std::size_t i = 0;
    for (const MJCellValue& c : cells)
        t(i++, 0) = c;
    return t;
}

// Two models filed once, as a user would file them.
const std::vector<std::string>& filed_keys() {
    static const std::vector<std::string> keys = [] {
        const CellMatrix x = column({MJCellValue("x"), MJCellValue(1.0), MJCellValue(2.0),
                                     MJCellValue(3.0), MJCellValue(4.0), MJCellValue(5.0)});
        const CellMatrix y = column({MJCellValue("y"), MJCellValue(0.0), MJCellValue(1.0),
                                     MJCellValue(0.0), MJCellValue(1.0), MJCellValue(1.0)});
        std::vector<std::string> k;
        for (const char* f : {"linear_reg", "logistic_reg"}) {
            const GuardedResult r = call_entry(*find_function(f), {x, y});
            require(!r.failed(), "the seed models fit");
            k.push_back(r.table(0, 0).StringValue());
        }
        return k;
    }();
    return keys;
}

bool same_ignoring_case(const std::string& a, const std::string& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](unsigned char p, unsigned char q) {
               return std::toupper(p) == std::toupper(q);
           });
}

// Raw bytes, or a filed key changed a little: in case, cut, or lengthened.
std::string model_text(Bytes& bytes) {
    const std::uint8_t how = bytes.byte() % 5;
    if (how == 0)
        return bytes.rest();
    std::string key = filed_keys()[bytes.byte() % filed_keys().size()];
    if (how == 1)
        for (char& c : key)
            c = (bytes.byte() & 1) ? static_cast<char>(std::tolower(static_cast<unsigned char>(c)))
                                   : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    else if (how == 2)
        key.resize(bytes.byte() % (key.size() + 1));
    else if (how == 3)
        key += bytes.rest();
    return key;
}

}  // namespace
}  // namespace zentable::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zentable;
    using namespace zentable::fuzz;
    Bytes bytes(data, size);
    const std::string text = model_text(bytes);

    // The store folds case; the class before "-" must be exact for a command.
    bool scorable = false;
    for (const std::string& key : filed_keys())
        scorable = scorable || (same_ignoring_case(text, key) &&
                                text.compare(0, key.find('-'), key, 0, key.find('-')) == 0);
    const bool linear = same_ignoring_case(text, filed_keys()[0]);
    require(string_to_handle<linearRegModel>(text, true).is_empty() != linear,
            "a quiet look-up finds exactly the filed key, in any case");
    const GuardedResult loud = guarded([&] {
        string_to_handle<logisticRegModel>(text);
        return CellMatrix(1, 1);
    });
    require_text_failure(loud, "a look-up that finds nothing says so");
    require(loud.failed() == !same_ignoring_case(text, filed_keys()[1]),
            "a look-up fails exactly when the key was not filed");

    const GuardedResult cls = guarded([&] { return CellMatrix(model_class_of(text)); });
    require_text_failure(cls, "a model file that cannot be read says so");
    if (!cls.failed()) {
        const std::string name = cls.table(0, 0).StringValue();
        require(text.find(name) != std::string::npos && name.find('-') == std::string::npos,
                "the class is the text before the first '-'");
    }

    const CellMatrix rows = column({MJCellValue("x"), MJCellValue(2.5)});
    for (const char* f : {"model_score", "model_score_node"}) {
        const GuardedResult r = call_entry(*find_function(f), {CellMatrix(text), rows});
        require_text_failure(r, "scoring by any model text fails in words");
        if (scorable && std::string(f) == "model_score")
            require(!r.failed(), "a filed model scores");
    }
    return 0;
}
