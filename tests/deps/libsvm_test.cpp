#include <gtest/gtest.h>
#include <libsvm/svm.h>

#include <vector>

// Four points split by the line x1 + x2 = 1: a linear C-SVC must separate them
// and put the boundary between the classes.
TEST(Libsvm, LinearFitOnFourPoints) {
    svm_set_print_string_function([](const char*) {});
    const double xs[4][2] = {{0, 0}, {0.2, 0.1}, {1, 1}, {0.9, 1.2}};
    double labels[4] = {-1, -1, 1, 1};
    std::vector<std::vector<svm_node>> rows(4);
    std::vector<svm_node*> pointers(4);
    for (int i = 0; i < 4; ++i) {
        rows[i] = {{1, xs[i][0]}, {2, xs[i][1]}, {-1, 0.0}};
        pointers[i] = rows[i].data();
    }
    svm_problem problem{4, labels, pointers.data()};
    svm_parameter param{};
    param.svm_type = C_SVC;
    param.kernel_type = LINEAR;
    param.C = 100;
    param.eps = 1e-6;
    param.cache_size = 10;
    ASSERT_EQ(svm_check_parameter(&problem, &param), nullptr);

    svm_model* model = svm_train(&problem, &param);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(svm_predict(model, pointers[i]), labels[i]) << i;
    svm_node low[] = {{1, 0.1}, {2, 0.3}, {-1, 0.0}};
    svm_node high[] = {{1, 0.8}, {2, 0.9}, {-1, 0.0}};
    EXPECT_EQ(svm_predict(model, low), -1.0);
    EXPECT_EQ(svm_predict(model, high), 1.0);
    svm_free_and_destroy_model(&model);
}
