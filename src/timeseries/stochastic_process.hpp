#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// stochastic_process(x, process): fits a normal, lognormal or shifted
// lognormal process to a path by maximum likelihood.
CellMatrix stochastic_process(const CellMatrix& x, const CellMatrix& process);

// stochastic_process_simulate(process, numPoints, initialValue, mu, sigma,
// shift, seed): draws a path of such a process from a seeded generator.
CellMatrix stochastic_process_simulate(const CellMatrix& process, const CellMatrix& numPoints,
                                       const CellMatrix& initialValue, const CellMatrix& mu,
                                       const CellMatrix& sigma, const CellMatrix& shift,
                                       const CellMatrix& seed);

enum class Process { normal, lognormal, shifted_lognormal };

struct ProcessFit {
    double minus_two_log_likelihood = 0.0;
    double mu = 0.0;
    double sigma = 0.0;
    double shift = 0.0;
};

// The fits on their own, for the command and for tests. A path of fewer
// than two points has no step to learn from and fits as all zeros.
ProcessFit normal_process_fit(const dvec& x);
ProcessFit lognormal_process_fit(const dvec& x);
ProcessFit shifted_lognormal_process_fit(const dvec& x);

// x[0] = initialValue, then numPoints - 1 steps driven by sigma times the
// seeded generator's normal draws, one per step in order.
dvec simulate_process(Process process, int numPoints, double initialValue, double mu, double sigma,
                      double shift, unsigned long seed);

}  // namespace zentable
