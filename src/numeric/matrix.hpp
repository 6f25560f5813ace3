#pragma once

#include <cstdint>
#include <vector>

namespace zentable {

using dvec = std::vector<double>;
using dmat = std::vector<dvec>;  // row-major: one dvec per row
using ivec = std::vector<std::int32_t>;

// The tolerance of a zero, and the looser one of the rank tests.
constexpr double kZeroTolerance = 2.220446049250313e-16;
constexpr double kRankTolerance = 2.220446049250313e-14;

dmat identity(int n);
dmat transpose(const dmat& a);
dmat mat_sub(const dmat& a, const dmat& b);
dmat mat_add(const dmat& a, const dmat& b);
dmat mat_mul(const dmat& a, const dmat& b);
dmat mat_mul_unchecked(const dmat& a, const dmat& b);
dmat mat_scale(const dmat& a, double s);
dmat mat_div(const dmat& a, double s);
dmat elementwise_mul(const dmat& a, const dmat& b);
dmat direct_product(const dmat& a, const dmat& b);
dvec diag(const dmat& a);  // the diagonal of a square matrix
dmat diag(const dvec& v);  // the diagonal matrix of a vector
dvec vecdiag(const dmat& a);
double trace(const dmat& a);
dvec mat_vec(const dmat& a, const dvec& v);
dvec vec_mat(const dvec& v, const dmat& a);
double dot(const dvec& u, const dvec& v);
dvec vec_add(const dvec& u, const dvec& v);
dvec vec_sub(const dvec& u, const dvec& v);
dvec vec_scale(const dvec& u, double s);
dvec poly_mul(const dvec& u, const dvec& v);
bool is_zero(double x);
double max_abs(const dmat& a);
double max_abs(const dvec& v);

// Gauss-Jordan inverse with partial pivoting; fails on a pivot not above 2.2e-16.
dmat inverse(const dmat& a);
// Gauss-Jordan sweep over the pivots in list order.
dmat sweep(const dmat& a, const ivec& pivots);

// sqrt(a^2 + b^2) without overflow or destructive underflow on the way.
double pythag(double a, double b);

}  // namespace zentable
