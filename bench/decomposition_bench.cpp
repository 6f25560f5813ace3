// The dense decompositions on a 300 by 300 matrix of uniform numbers.
#include <benchmark/benchmark.h>

#include <random>

#include "numeric/decompositions.hpp"

namespace {

using namespace zentable;

dmat uniform_matrix(int n, unsigned seed) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    dmat a(n, dvec(n));
    for (dvec& row : a)
        for (double& x : row)
            x = uniform(engine);
    return a;
}

void BM_SvdDecomp(benchmark::State& state) {
    const dmat a = uniform_matrix(static_cast<int>(state.range(0)), 1);
    for (auto _ : state) {
        SVD svd = svdDecomp(a);
        benchmark::DoNotOptimize(svd);
    }
}
BENCHMARK(BM_SvdDecomp)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PseudoInverse(benchmark::State& state) {
    const dmat a = uniform_matrix(static_cast<int>(state.range(0)), 2);
    for (auto _ : state) {
        dmat x = pseudo_inverse(a);
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(BM_PseudoInverse)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_LuDecompose(benchmark::State& state) {
    const dmat a = uniform_matrix(static_cast<int>(state.range(0)), 3);
    for (auto _ : state) {
        LU lu = lu_decompose(a);
        benchmark::DoNotOptimize(lu);
    }
}
BENCHMARK(BM_LuDecompose)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_QrDecompose(benchmark::State& state) {
    const dmat a = uniform_matrix(static_cast<int>(state.range(0)), 4);
    for (auto _ : state) {
        QR qr = qr_decompose(a);
        benchmark::DoNotOptimize(qr);
    }
}
BENCHMARK(BM_QrDecompose)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Cholesky(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const dmat b = uniform_matrix(n, 5);
    // B B' + n I: symmetric positive definite.
    dmat a(n, dvec(n, 0.0));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j <= i; ++j) {
            double s = i == j ? n : 0.0;
            for (int k = 0; k < n; ++k)
                s += b[i][k] * b[j][k];
            a[i][j] = s;
            a[j][i] = s;
        }
    for (auto _ : state) {
        dmat l = cholesky(a);
        benchmark::DoNotOptimize(l);
    }
}
BENCHMARK(BM_Cholesky)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
