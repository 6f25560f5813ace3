#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "../support/tables.hpp"
#include "models/model_store.hpp"
#include "regression/linear_reg_model.hpp"

namespace zentable {
namespace {

using testing::thrown_text;

struct Tracked : base_c {
    explicit Tracked(int* alive) : alive_(alive) { ++*alive_; }
    ~Tracked() override { --*alive_; }
    int* alive_;
};

handle_c<linearRegModel> new_linear_model(double marker) {
    return handle_c<linearRegModel>(new linearRegModel({}, {"x"}, {marker, 0.0}, {}, {}, {}));
}

TEST(StringC, ComparesWithoutCaseAndKeepsIt) {
    const string_c a("linearRegModel->12");
    EXPECT_EQ(a, string_c("LINEARREGMODEL->12"));
    EXPECT_EQ(a, string_c("linearregmodel->12"));
    EXPECT_NE(a, string_c("linearRegModel->1"));
    EXPECT_EQ(std::string(string_c("MiXeD")), "MiXeD");
}

TEST(Handle, LastCopyDestroysTheBodyAndNoDeleteKeepsIt) {
    int alive = 0;
    {
        handle_c<Tracked> h(new Tracked(&alive));
        {
            handle_c<Tracked> copy = h;
            handle_c<Tracked> other(new Tracked(&alive));
            EXPECT_EQ(alive, 2);
            other = h;  // releases the second body
            EXPECT_EQ(alive, 1);
            EXPECT_EQ(h.use_count(), 3);
        }
        EXPECT_EQ(alive, 1);
        EXPECT_FALSE(h.is_empty());
    }
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(handle_c<Tracked>().is_empty());

    Tracked kept(&alive);
    { handle_c<Tracked> borrowed(&kept, true); }
    EXPECT_EQ(alive, 1);
}

TEST(MruList, EvictsTheLeastRecentlyUsedAndReadsRefresh) {
    int alive = 0;
    mru_list_c<Tracked> list(3, "trackedModel");
    const std::string first = list.add(handle_c<Tracked>(new Tracked(&alive)));
    const std::string second = list.add(handle_c<Tracked>(new Tracked(&alive)));
    EXPECT_EQ(first.rfind("trackedModel->", 0), 0u);
    EXPECT_NE(first, second);

    list.find(first, false);  // now the most recent
    list.add(handle_c<Tracked>(new Tracked(&alive)));
    list.add(handle_c<Tracked>(new Tracked(&alive)));  // pushes out `second`
    EXPECT_EQ(list.size(), 3u);
    EXPECT_EQ(alive, 3);
    EXPECT_FALSE(list.find(first, false).is_empty());
    EXPECT_TRUE(list.find(second, true).is_empty());
    EXPECT_EQ(
        thrown_text([&] { list.find(second, false); }),
        "Error: could not find \"" + second + "\" for trackedModel; please rebuild the model.");

    // A command's copy keeps an evicted model alive until it goes.
    handle_c<Tracked> held = list.find(first, false);
    for (int i = 0; i < 3; ++i)
        list.add(handle_c<Tracked>(new Tracked(&alive)));
    EXPECT_EQ(alive, 4);
    EXPECT_TRUE(list.find(first, true).is_empty());
}

TEST(ModelStore, HandlesFindModelsInAnyCaseUntilCapacityPushesThemOut) {
    const std::string first = std::string(linearRegModelHandle_to_string(new_linear_model(1.0)));
    const std::string kept = std::string(linearRegModelHandle_to_string(new_linear_model(2.0)));
    EXPECT_EQ(first.rfind("linearRegModel->", 0), 0u);

    std::string lower = first;
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(string_to_handle<linearRegModel>(lower)->coefs[0], 1.0);

    for (int i = 0; i < kModelListCapacity; ++i) {
        if (i == kModelListCapacity / 2)
            string_to_handle<linearRegModel>(kept);
        linearRegModelHandle_to_string(new_linear_model(3.0));
    }
    EXPECT_EQ(model_list<linearRegModel>().size(), static_cast<std::size_t>(kModelListCapacity));
    EXPECT_EQ(
        thrown_text([&] { string_to_handle<linearRegModel>(first); }),
        "Error: could not find \"" + first + "\" for linearRegModel; please rebuild the model.");
    EXPECT_EQ(string_to_handle<linearRegModel>(kept)->coefs[0], 2.0);
    // Each class has its own list.
    EXPECT_EQ(model_list<logisticRegModel>().size(), 0u);
}

TEST(ModelStore, ClassOfAModelArgument) {
    EXPECT_EQ(model_class_of("  logisticRegModel->3\t"), "logisticRegModel");
    EXPECT_EQ(model_class_of("noDashAtAll"), "noDashAtAll");
}

}  // namespace
}  // namespace zentable
