#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "learners/discriminant.hpp"
#include "learners/naive_bayes.hpp"
#include "models/scoring.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

using Fit =
    std::function<CellMatrix(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight)>;

// Three overlapping classes in two variables plus a text column, seeded, with
// integer weights 1 to 3; `repeated` writes each record weight times instead.
struct Data {
    CellMatrix x, y, weight;
};

Data make_data(bool repeated) {
    std::mt19937_64 gen(20261125);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::uniform_int_distribution<int> times(1, 3);
    std::vector<std::vector<double>> rows;
    std::vector<int> weights;
    for (int i = 0; i < 60; ++i) {
        const int k = i % 3;
        rows.push_back({k + noise(gen), 0.5 * k + noise(gen) * (1.0 + 0.3 * k), double(k)});
        weights.push_back(times(gen));
    }
    std::size_t n = 0;
    for (int w : weights)
        n += repeated ? static_cast<std::size_t>(w) : 1;
    Data d{CellMatrix(n + 1, 3), CellMatrix(n + 1, 1), CellMatrix(n + 1, 1)};
    d.x(0, 0) = "a";
    d.x(0, 1) = "b";
    d.x(0, 2) = "c";
    d.y(0, 0) = "y";
    d.weight(0, 0) = "w";
    const char* const names[] = {"first", "second", "third"};
    const char* const levels[] = {"p", "q", "r", "s"};
    std::size_t row = 1;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int copies = repeated ? weights[i] : 1;
        for (int c = 0; c < copies; ++c, ++row) {
            d.x(row, 0) = rows[i][0];
            d.x(row, 1) = rows[i][1];
            d.x(row, 2) = levels[(i * 7 + static_cast<std::size_t>(rows[i][2])) % 4];
            d.y(row, 0) = names[static_cast<int>(rows[i][2])];
            d.weight(row, 0) = repeated ? 1.0 : static_cast<double>(weights[i]);
        }
    }
    return d;
}

CellMatrix numeric_columns(const CellMatrix& x) {
    CellMatrix out(x.RowsInStructure(), 2);
    for (std::size_t i = 0; i < x.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < 2; ++j)
            out(i, j) = x(i, j);
    return out;
}

std::size_t row_of(const CellMatrix& report, const std::string& title) {
    for (std::size_t i = 0; i < report.RowsInStructure(); ++i)
        if (report(i, 0).IsString() && report(i, 0).StringValue() == title)
            return i;
    ADD_FAILURE() << "no row " << title;
    return report.RowsInStructure();
}

void expect_same_cells(const CellMatrix& a, std::size_t from_a, const CellMatrix& b,
                       std::size_t from_b) {
    ASSERT_EQ(a.RowsInStructure() - from_a, b.RowsInStructure() - from_b);
    ASSERT_EQ(a.ColumnsInStructure(), b.ColumnsInStructure());
    for (std::size_t i = 0; from_a + i < a.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < a.ColumnsInStructure(); ++j) {
            const CellValue& u = a(from_a + i, j);
            const CellValue& v = b(from_b + i, j);
            if (u.IsANumber() && v.IsANumber())
                EXPECT_NEAR(u.NumericValue(), v.NumericValue(),
                            1e-12 * std::max(1.0, std::fabs(u.NumericValue())))
                    << "row " << from_a + i << " column " << j;
            else
                EXPECT_EQ(cell_to_text(u), cell_to_text(v)) << "row " << from_a + i;
        }
    }
}

// A frequency weight of w is w records: everything from the model's first
// block on, and the scores of new data, equal those of the repeated records.
TEST(Classifiers, IntegerWeightsEqualRepeatedRecords) {
    const Data weighted = make_data(false), repeated = make_data(true);
    const CellMatrix probe = weighted.x;
    struct Case {
        const char* name;
        Fit fit;
        const char* first_block;
    };
    const std::vector<Case> cases = {
        {"LDA",
         [](const CellMatrix& x, const CellMatrix& y, const CellMatrix& w) {
             return LDA(numeric_columns(x), y, w);
         },
         "Group Means"},
        {"QDA",
         [](const CellMatrix& x, const CellMatrix& y, const CellMatrix& w) {
             return QDA(numeric_columns(x), y, w);
         },
         "Group Means"},
        {"GAUSSIAN",
         [](const CellMatrix& x, const CellMatrix& y, const CellMatrix& w) {
             return naive_bayes_classifier(x, y, "", w);
         },
         "Continuous Variables"},
        {"CATEGORICAL",
         [](const CellMatrix& x, const CellMatrix& y, const CellMatrix& w) {
             return naive_bayes_classifier(x, y, "CATEGORICAL", w);
         },
         "Frequencies of a"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CellMatrix a = c.fit(weighted.x, weighted.y, weighted.weight);
        const CellMatrix b = c.fit(repeated.x, repeated.y, CellMatrix(1, 1));
        expect_same_cells(a, row_of(a, c.first_block), b, row_of(b, c.first_block));
        const CellMatrix sa = model_score(cell_to_text(a(0, 0)), probe);
        const CellMatrix sb = model_score(cell_to_text(b(0, 0)), probe);
        expect_same_cells(sa, 0, sb, 0);
    }
}

// The training confusion of the report is what scoring the training records
// through the handle gives, weight by weight.
TEST(Classifiers, HandleReproducesTrainingConfusion) {
    const Data d = make_data(false);
    const std::vector<std::function<CellMatrix()>> fits = {
        [&] { return LDA(numeric_columns(d.x), d.y, d.weight); },
        [&] { return QDA(numeric_columns(d.x), d.y, d.weight); },
        [&] { return naive_bayes_classifier(d.x, d.y, "", d.weight); },
    };
    const std::vector<std::string> classes = {"first", "second", "third"};
    for (const auto& fit : fits) {
        const CellMatrix report = fit();
        const CellMatrix scores = model_score(cell_to_text(report(0, 0)), d.x);
        std::vector<std::vector<double>> counts(3, std::vector<double>(3, 0.0));
        int wrong = 0;
        for (std::size_t i = 1; i < scores.RowsInStructure(); ++i) {
            const std::string predicted = cell_to_text(scores(i, 3));
            std::size_t k = 0;
            while (k < 3 && classes[k] != predicted)
                ++k;
            ASSERT_LT(k, 3u);
            const std::size_t actual = (i - 1) % 3;
            counts[actual][k] += d.weight(i, 0).NumericValue();
            wrong += k != actual;
        }
        EXPECT_GT(wrong, 0);  // the classes overlap, so the test can see a wrong cell
        const std::size_t top = row_of(report, "Training Confusion Matrix") + 3;
        for (std::size_t a = 0; a < 3; ++a)
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_EQ(report(top + a, k + 1).NumericValue(), counts[a][k]);
    }
}

}  // namespace
}  // namespace zentable
