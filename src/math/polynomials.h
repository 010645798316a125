// Roots of real polynomials through the eigenvalues of the companion matrix,
// and the range around a point on which a polynomial keeps rising.
//
// Coefficients are lowest order first: c[0] + c[1] x + ... + c[n-1] x^(n-1);
// `n` counts coefficients, not the degree.
//
// Thread-safety: re-entrant; no state beyond the arguments.
#ifndef KORA_MATH_POLYNOMIALS_H_
#define KORA_MATH_POLYNOMIALS_H_

#include <complex>
#include <utility>
#include <vector>
#include <vigra/polynomial.hxx>

namespace lumo {
namespace math {

// All n - 1 complex roots of the polynomial, in the order the eigenvalue
// solver returns them (unsorted). `roots` is resized and overwritten.
// Throws std::out_of_range "Too few coefficients." for n < 2, and what
// detail::polynomialRootsImpl throws.
void polynomialRoots(unsigned int n, const double* coefficients,
                     std::vector<std::complex<double>>& roots);

// The widest open interval around x0 on which `f` rises: bounded by the
// nearest real roots of f' strictly below and strictly above x0, or by
// -/+infinity where there is none. Result: (lower, upper).
// Throws std::runtime_error "Polynomial not strictly monotonously increasing
// at x0." when f'(x0) <= 0. Logs the polynomials and real roots at TRACE on
// "lumo.math.monotonicPolyRange".
std::pair<double, double> monotonicPolyRange(const vigra::Polynomial<double>& f, double x0);

namespace detail {

// The solver behind polynomialRoots, with caller-provided scratch of N = n - 1:
// `matrix` N*N, `rootsReal` and `rootsImag` N, `workspace` 6*N doubles.
// Throws std::runtime_error "Highest-order coefficient must not be zero."
// when c[n-1] == 0.0 exactly, and "DGEEV failed." when the solver reports an
// error (`roots` is then unchanged).
// REQUIRES: n >= 2.
void polynomialRootsImpl(unsigned int n, const double* coefficients,
                         std::vector<std::complex<double>>& roots, double* matrix,
                         double* rootsReal, double* rootsImag, double* workspace);

}  // namespace detail
}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_POLYNOMIALS_H_
