#include "learners/svm_engine.hpp"

#include <libsvm/svm.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace zentable {

namespace {

// Standard output carries only tables, so the library's progress goes nowhere.
void quiet(const char*) {}

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

struct ModelFree {
    void operator()(svm_model* m) const { svm_free_and_destroy_model(&m); }
};
using Model = std::unique_ptr<svm_model, ModelFree>;

// The records of a data file. The nodes of all records live in one buffer,
// each record ending with index -1 as the library expects.
struct Problem {
    std::vector<double> y;
    std::vector<svm_node> nodes;
    std::vector<std::size_t> starts;
    int max_index = 0;

    std::vector<svm_node*> rows() {
        std::vector<svm_node*> out;
        for (std::size_t s : starts)
            out.push_back(nodes.data() + s);
        return out;
    }
};

bool read_line(std::FILE* f, std::string& line) {
    line.clear();
    int c;
    while ((c = std::fgetc(f)) != EOF) {
        if (c == '\n')
            return true;
        line.push_back(static_cast<char>(c));
    }
    return !line.empty();
}

// One "label index:value ..." line; false when it breaks the format.
bool parse_record(const std::string& line, Problem& p) {
    const char* s = line.c_str();
    char* end = nullptr;
    const double label = std::strtod(s, &end);
    if (end == s)
        return false;
    p.y.push_back(label);
    p.starts.push_back(p.nodes.size());
    s = end;
    int previous = 0;
    for (;;) {
        while (*s == ' ' || *s == '\t')
            ++s;
        if (*s == '\0' || *s == '\r')
            break;
        const long index = std::strtol(s, &end, 10);
        if (end == s || *end != ':' || index <= previous)
            return false;
        s = end + 1;
        const double value = std::strtod(s, &end);
        if (end == s)
            return false;
        s = end;
        previous = static_cast<int>(index);
        p.nodes.push_back(svm_node{previous, value});
    }
    if (previous > p.max_index)
        p.max_index = previous;
    p.nodes.push_back(svm_node{-1, 0.0});
    return true;
}

Problem read_problem(const std::string& path) {
    File f(std::fopen(path.c_str(), "r"));
    if (!f)
        throw "can't open input file " + path;
    Problem p;
    std::string line;
    for (int n = 1; read_line(f.get(), line); ++n)
        if (!parse_record(line, p))
            throw "Wrong input format at line " + std::to_string(n);
    return p;
}

svm_parameter default_parameter() {
    svm_parameter param{};
    param.svm_type = C_SVC;
    param.kernel_type = RBF;
    param.degree = 3;
    param.gamma = 0;
    param.coef0 = 0;
    param.nu = 0.5;
    param.cache_size = 100;
    param.C = 1;
    param.eps = 1e-3;
    param.p = 0.1;
    param.shrinking = 1;
    param.probability = 0;
    param.nr_weight = 0;
    param.weight_label = nullptr;
    param.weight = nullptr;
    return param;
}

[[noreturn]] void bad_usage(const std::string& option) {
    throw "Unknown option: " + option;
}

}  // namespace

void svmTrainMain(const std::vector<std::string>& args, int seed) {
    svm_set_print_string_function(&quiet);
    svm_parameter param = default_parameter();
    std::size_t i = 1;
    for (; i < args.size() && args[i][0] == '-'; i += 2) {
        if (i + 1 >= args.size() || args[i].size() != 2)
            bad_usage(args[i]);
        const char* value = args[i + 1].c_str();
        switch (args[i][1]) {
            case 's':
                param.svm_type = std::atoi(value);
                break;
            case 't':
                param.kernel_type = std::atoi(value);
                break;
            case 'd':
                param.degree = std::atoi(value);
                break;
            case 'g':
                param.gamma = std::atof(value);
                break;
            case 'r':
                param.coef0 = std::atof(value);
                break;
            case 'n':
                param.nu = std::atof(value);
                break;
            case 'm':
                param.cache_size = std::atof(value);
                break;
            case 'c':
                param.C = std::atof(value);
                break;
            case 'e':
                param.eps = std::atof(value);
                break;
            case 'p':
                param.p = std::atof(value);
                break;
            case 'h':
                param.shrinking = std::atoi(value);
                break;
            case 'b':
                param.probability = std::atoi(value);
                break;
            default:
                bad_usage(args[i]);
        }
    }
    if (i + 2 != args.size())
        throw "The training needs a data file and a model file";
    const std::string& data_file = args[i];
    const std::string& model_file = args[i + 1];

    Problem problem = read_problem(data_file);
    // As the tool does: a gamma of zero means one over the number of features.
    if (param.gamma == 0 && problem.max_index > 0)
        param.gamma = 1.0 / problem.max_index;
    std::vector<svm_node*> rows = problem.rows();
    svm_problem prob{};
    prob.l = static_cast<int>(problem.y.size());
    prob.y = problem.y.data();
    prob.x = rows.data();
    if (const char* error = svm_check_parameter(&prob, &param))
        throw std::string("ERROR: ") + error;

    std::srand(static_cast<unsigned>(seed));
    Model model(svm_train(&prob, &param));
    if (svm_save_model(model_file.c_str(), model.get()) != 0)
        throw "can't save model to file " + model_file;
}

std::vector<double> svmPredictMain(const std::vector<std::string>& args) {
    svm_set_print_string_function(&quiet);
    int probability = 0;
    std::size_t i = 1;
    for (; i < args.size() && args[i][0] == '-'; i += 2) {
        if (i + 1 >= args.size() || args[i] != "-b")
            bad_usage(args[i]);
        probability = std::atoi(args[i + 1].c_str());
    }
    if (i + 3 != args.size())
        throw "The prediction needs a data file, a model file and a predictions file";
    const std::string& data_file = args[i];
    const std::string& model_file = args[i + 1];
    const std::string& output_file = args[i + 2];

    Problem problem = read_problem(data_file);
    File output(std::fopen(output_file.c_str(), "w"));
    if (!output)
        throw "can't open output file " + output_file;
    Model model(svm_load_model(model_file.c_str()));
    if (!model)
        throw "can't open model file " + model_file;

    const int type = svm_get_svm_type(model.get());
    const bool classes = type == C_SVC || type == NU_SVC;
    if (probability && !svm_check_probability_model(model.get()))
        throw "Model does not support probabiliy estimates";
    const bool with_probability = probability && classes;

    const int nr_class = svm_get_nr_class(model.get());
    std::vector<int> labels(static_cast<std::size_t>(nr_class));
    int label_one = -1;
    if (with_probability) {
        svm_get_labels(model.get(), labels.data());
        std::fputs("labels", output.get());
        for (int j = 0; j < nr_class; ++j) {
            std::fprintf(output.get(), " %d", labels[j]);
            if (labels[j] == 1)
                label_one = j;
        }
        std::fputs("\n", output.get());
        if (label_one < 0)
            throw std::string("The model has no label 1");
    }

    std::vector<double> results;
    results.reserve(problem.y.size());
    std::vector<double> estimates(static_cast<std::size_t>(nr_class));
    for (svm_node* row : problem.rows()) {
        if (with_probability) {
            const double label = svm_predict_probability(model.get(), row, estimates.data());
            std::fprintf(output.get(), "%g", label);
            for (double e : estimates)
                std::fprintf(output.get(), " %g", e);
            std::fputs("\n", output.get());
            results.push_back(estimates[static_cast<std::size_t>(label_one)]);
        } else {
            const double value = svm_predict(model.get(), row);
            std::fprintf(output.get(), "%.17g\n", value);
            results.push_back(value);
        }
    }
    return results;
}

}  // namespace zentable
