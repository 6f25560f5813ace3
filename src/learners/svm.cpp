#include "learners/svm.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>

#include "data/delimited_file.hpp"
#include "learners/svm_engine.hpp"
#include "models/model_eval.hpp"
#include "models/model_store.hpp"
#include "numeric/column_scaling.hpp"
#include "regression/logistic_fit.hpp"
#include "trees/tree_report.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kDirectoryNotString = "directory name must be a string";
constexpr const char* kBadType =
    "svmType must be either SVC (for classification) or SVR (for regression)";
constexpr const char* kBadKernel = "kernelType must be LINEAR, POLYNOMIAL, RBF, or SIGMOID";
constexpr const char* kBadC = "Input C must be a non-negative number";
constexpr const char* kBadEpsilon = "Input epsilon must be a non-negative number";
constexpr const char* kBadDegree = "Input degree must be a positive integer";
constexpr const char* kBadGamma = "Input gamma must be a positive number";
constexpr const char* kBadCoef0 = "Input coef0 must be a number";
constexpr const char* kBadSeed = "Input seed must be an integer";
constexpr const char* kBadScaling = "Input doScaling must be either 1 or 0";
constexpr const char* kEmptyX = "Input data x is empty";
constexpr const char* kKinds = "Only BIN and CONT of y support";

const char* const kKernels[] = {"LINEAR", "POLYNOMIAL", "RBF", "SIGMOID"};

std::string upper(std::string s) {
    for (char& c : s)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

// The numbers the library reads as "%f" text: six decimals, the rest lost.
std::string fixed6(double v) {
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%f", v);
    return buffer;
}

std::string sixteen_digits(double v) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.16g", v);
    return buffer;
}

std::string time_stamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char buffer[100];
    std::strftime(buffer, sizeof buffer, "%m%d%Y%H%M%S", &local);
    return buffer;
}

bool whole(double v) {
    return std::isfinite(v) && v == std::floor(v);
}

struct SvmOptions {
    std::string directory;
    std::string type;
    std::string kernel;
    double C = 1.0;
    double epsilon = 0.1;
    int degree = 3;
    double gamma = 0.0;  // 0: one over the number of variables
    double coef0 = 0.0;
    int seed = 100;
    bool scale = true;
};

SvmOptions read_options(const CellMatrix& directory, const CellMatrix& svmType,
                        const CellMatrix& kernelType, const CellMatrix& C,
                        const CellMatrix& epsilon, const CellMatrix& degree,
                        const CellMatrix& gamma, const CellMatrix& coef0, const CellMatrix& seed,
                        const CellMatrix& doScaling) {
    SvmOptions o;
    if (directory.RowsInStructure() != 1 || directory.ColumnsInStructure() != 1 ||
        !directory(0, 0).IsAString())
        throw kDirectoryNotString;
    o.directory = directory(0, 0).StringValue();
    struct stat info {};
    if (stat(o.directory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        throw "The directory " + o.directory + " does not exist! Please create one";
    read_text_required(svmType, kBadType, o.type);
    o.type = upper(o.type);
    if (o.type != "SVC" && o.type != "SVR")
        throw kBadType;
    read_text_required(kernelType, kBadKernel, o.kernel);
    o.kernel = upper(o.kernel);
    if (std::find(std::begin(kKernels), std::end(kKernels), o.kernel) == std::end(kKernels))
        throw kBadKernel;
    read_double(C, kBadC, o.C);
    if (!(o.C >= 0.0))
        throw kBadC;
    read_double(epsilon, kBadEpsilon, o.epsilon);
    if (!(o.epsilon >= 0.0))
        throw kBadEpsilon;
    double d = 3.0;
    read_double(degree, kBadDegree, d);
    if (!whole(d) || d < 1.0 || d > 2147483647.0)
        throw kBadDegree;
    o.degree = static_cast<int>(d);
    if (!is_omitted(gamma)) {
        read_double(gamma, kBadGamma, o.gamma);
        if (!(o.gamma > 0.0))
            throw kBadGamma;
    }
    read_double(coef0, kBadCoef0, o.coef0);
    if (!std::isfinite(o.coef0))
        throw kBadCoef0;
    double s = 100.0;
    read_double(seed, kBadSeed, s);
    if (!whole(s) || std::fabs(s) > 2147483647.0)
        throw kBadSeed;
    o.seed = static_cast<int>(s);
    double scaling = 1.0;
    read_double(doScaling, kBadScaling, scaling);
    if (scaling != 0.0 && scaling != 1.0)
        throw kBadScaling;
    o.scale = scaling == 1.0;
    return o;
}

const char* kernel_code(const std::string& kernel) {
    const char* const codes[] = {"0", "1", "2", "3"};
    return codes[std::find(std::begin(kKernels), std::end(kKernels), kernel) -
                 std::begin(kKernels)];
}

std::vector<svec> read_model_header(const std::string& path) {
    std::ifstream in(path);
    if (!in)
        throw "Error: open file failed: " + path;
    std::vector<svec> header;
    std::string line;
    while (std::getline(in, line) && line.compare(0, 2, "SV") != 0) {
        svec fields;
        std::size_t start = 0;
        for (std::size_t blank; (blank = line.find(' ', start)) != std::string::npos;
             start = blank + 1)
            fields.push_back(line.substr(start, blank - start));
        fields.push_back(line.substr(start));
        header.push_back(fields);
    }
    return header;
}

std::vector<std::string> predict_args(const svmModel& m, const std::string& data,
                                      const std::string& predictions) {
    std::vector<std::string> args{"dummy"};
    if (m.svmType == "SVC")
        args.insert(args.end(), {"-b", "1"});
    args.insert(args.end(), {data, m.modelFile, predictions});
    return args;
}

// The kernel's own rows under "kernelType"; gives the last row written.
std::size_t write_kernel_rows(CellMatrix& r, std::size_t row, const SvmOptions& o, double gamma) {
    auto put = [&](const char* label, double value) {
        ++row;
        r(row, 0) = label;
        r(row, 1) = value;
    };
    if (o.kernel == "POLYNOMIAL")
        put("Degree", o.degree);
    if (o.kernel != "LINEAR")
        put("Gamma", gamma);
    if (o.kernel == "POLYNOMIAL" || o.kernel == "SIGMOID")
        put("Coef0", o.coef0);
    return row;
}

// The shared evaluation blocks are laid out from row 2; this moves one under
// the kernel rows.
void paste_block(CellMatrix& r, const CellMatrix& block, std::size_t shift) {
    for (std::size_t i = 2; i < block.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < block.ColumnsInStructure(); ++j)
            r(i + shift, j) = block(i, j);
}

CellMatrix run_svm(const XYW& data, const SvmOptions& o) {
    const svec& names = data.x_names;
    if (names.empty() || data.x.empty())
        throw kEmptyX;
    const bool svc = o.type == "SVC";
    const std::size_t p = names.size();

    auto model = std::make_unique<svmModel>();
    model->svmType = o.type;
    model->directory = o.directory;
    model->variableNames = names;
    dvec target = data.y;
    if (svc)
        model->levels = binary_recode(target);
    const dvec coded = target;  // "SVC": 0 and 1

    dmat x = data.x;
    const dvec ones(x.size(), 1.0);
    if (o.scale) {
        const ColumnScaling scaling = standardize_columns(x, ones);
        model->xMean = scaling.mean;
        model->xStd = scaling.sd;
        if (svc) {
            model->yMean = 0.0;
            model->yStd = 0.0;
            for (double& y : target)
                y = y >= 0.5 ? 1.0 : -1.0;
        } else {
            const TargetScale scale =
                target_scale(target, ones, static_cast<double>(target.size()));
            model->yMean = scale.mean;
            model->yStd = scale.sd;
            for (double& y : target)
                y = (y - model->yMean) / model->yStd;
        }
    } else {
        model->xMean.assign(p, 0.0);
        model->xStd.assign(p, 1.0);
        model->yMean = 0.0;
        model->yStd = 1.0;
    }

    const std::string stamp = time_stamp();
    const std::string data_file = svmFileName(o.directory, "data", stamp);
    model->modelFile = svmFileName(o.directory, "model", stamp);
    const std::string predict_file = svmFileName(o.directory, "predict", stamp);
    writeSvmDataFile(data_file, svc ? "BIN" : "CONT", target, x);

    const double gamma = o.gamma > 0.0 ? o.gamma : 1.0 / static_cast<double>(p);
    std::vector<std::string> args{
        "dummy",       "-s", svc ? "0" : "3",   "-t", kernel_code(o.kernel),    "-c",
        fixed6(o.C),   "-p", fixed6(o.epsilon), "-d", std::to_string(o.degree), "-g",
        fixed6(gamma), "-r", fixed6(o.coef0)};
    if (svc)
        args.insert(args.end(), {"-b", "1"});
    args.insert(args.end(), {data_file, model->modelFile});
    svmTrainMain(args, o.seed);
    model->modelHeader = read_model_header(model->modelFile);

    const svmModel& fit = *model;
    // From here on the model is in the store, whatever follows.
    const std::string handle = svmModelHandle_to_string(handle_c<svmModel>(model.release()));

    std::size_t row = svc ? 3 : 4;
    CellMatrix head(row + 8, svc ? 5 : 6);
    head(0, 0) = handle;
    head(2, 0) = "svmType";
    head(2, 1) = o.type;
    head(3, 0) = "C";
    head(3, 1) = o.C;
    if (!svc) {
        head(4, 0) = "Epsilon";
        head(4, 1) = o.epsilon;
    }
    row += 2;
    head(row, 0) = "kernelType";
    head(row, 1) = o.kernel;
    row = write_kernel_rows(head, row, o, gamma);

    CellMatrix block(svc ? 21 : 18, svc ? 5 : 6);
    if (svc) {
        BinaryEval eval;
        model_binary_association(handle, names, data.x, coded, ones, eval);
        BinaryPerformance perf;
        perf.y_name = data.y_name;
        perf.levels = fit.levels;
        count_events(coded, ones, perf);
        perf.candidates = static_cast<int>(p);
        perf.nv = static_cast<int>(p);
        perf.ll0 = intercept_only_loglik(perf.w, perf.w1);
        perf.ll1 = eval.log_likelihood;
        write_binary_block(block, perf, eval);
    } else {
        ContEval eval;
        model_continuous_stats(handle, names, data.x, data.y, ones, eval);
        write_anova_block(block, eval, static_cast<int>(p));
    }
    const std::size_t block_last = block.RowsInStructure() - 1 + row;
    CellMatrix result(block_last + 3, svc ? 5 : 6);
    for (std::size_t i = 0; i <= row; ++i)
        for (std::size_t j = 0; j < result.ColumnsInStructure(); ++j)
            result(i, j) = head(i, j);
    paste_block(result, block, row);
    write_report_end(result, "svm");

    svmPredictMain(predict_args(fit, data_file, predict_file));
    return result;
}

}  // namespace

std::string svmFileName(const std::string& directory, const std::string& what,
                        const std::string& stamp) {
    return directory + "/tmp_svm_" + what + "_" + stamp + ".txt";
}

void writeSvmDataFile(const std::string& path, const std::string& kind, const dvec& labels,
                      const dmat& x) {
    if (kind != "BIN" && kind != "CONT")
        throw kKinds;
    std::FILE* f = std::fopen(path.c_str(), "w");
    if (!f)
        throw "Error: open file " + path + " failed!";
    std::string line;
    for (std::size_t i = 0; i < x.size(); ++i) {
        line =
            kind == "BIN" ? std::to_string(static_cast<int>(labels[i])) : sixteen_digits(labels[i]);
        for (std::size_t j = 0; j < x[i].size(); ++j)
            line += " " + std::to_string(j + 1) + ":" + sixteen_digits(x[i][j]);
        line += '\n';
        std::fputs(line.c_str(), f);
    }
    std::fclose(f);
}

dvec scoreSvm(const svmModel& model, const svec& names, const dmat& rows) {
    std::vector<std::size_t> columns;
    for (const std::string& name : model.variableNames) {
        const auto it = std::find(names.begin(), names.end(), name);
        if (it == names.end())
            throw "The variable used in SVM model: " + name + ": cannot be found in input data";
        columns.push_back(static_cast<std::size_t>(it - names.begin()));
    }
    dmat x(rows.size(), dvec(columns.size()));
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = 0; j < columns.size(); ++j)
            x[i][j] = (rows[i][columns[j]] - model.xMean[j]) / model.xStd[j];

    const std::string stamp = time_stamp();
    const std::string data_file = svmFileName(model.directory, "data", stamp);
    const std::string predict_file = svmFileName(model.directory, "predict", stamp);
    const bool svc = model.svmType == "SVC";
    writeSvmDataFile(data_file, svc ? "BIN" : "CONT", dvec(rows.size(), 0.0), x);
    dvec out = svmPredictMain(predict_args(model, data_file, predict_file));
    if (!svc)
        for (double& v : out)
            v = v * model.yStd + model.yMean;
    return out;
}

CellMatrix svm(const CellMatrix& directory, const CellMatrix& x, const CellMatrix& y,
               const CellMatrix& svmType, const CellMatrix& kernelType, const CellMatrix& C,
               const CellMatrix& epsilon, const CellMatrix& degree, const CellMatrix& gamma,
               const CellMatrix& coef0, const CellMatrix& seed, const CellMatrix& doScaling) {
    const SvmOptions o = read_options(directory, svmType, kernelType, C, epsilon, degree, gamma,
                                      coef0, seed, doScaling);
    return run_svm(read_xyw(x, y, CellMatrix()), o);
}

CellMatrix svm_from_file(const CellMatrix& directory, const std::string& filename,
                         const CellMatrix& xNames, const CellMatrix& yName,
                         const CellMatrix& svmType, const CellMatrix& kernelType,
                         const CellMatrix& C, const CellMatrix& epsilon, const CellMatrix& degree,
                         const CellMatrix& gamma, const CellMatrix& coef0, const CellMatrix& seed,
                         const CellMatrix& doScaling, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const SvmOptions o = read_options(directory, svmType, kernelType, C, epsilon, degree, gamma,
                                      coef0, seed, doScaling);
    if (is_omitted(xNames))
        throw kEmptyX;
    return run_svm(read_xyw_from_file(filename, xNames, yName, CellMatrix(), separator), o);
}

}  // namespace zentable
