#include "math/polynomials.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "logging/log_stream.h"
#include "logging/logger.h"
#include "sys/throw.h"

// LAPACK's general real eigenvalue driver, Fortran interface: every argument
// by address.
extern "C" void dgeev_(const char* jobvl, const char* jobvr, const int* n, double* a,
                       const int* lda, double* wr, double* wi, double* vl, const int* ldvl,
                       double* vr, const int* ldvr, double* work, const int* lwork, int* info);

namespace lumo {
namespace math {

void polynomialRoots(unsigned int n, const double* coefficients,
                     std::vector<std::complex<double>>& roots) {
  if (n < 2) LUMO_THROW(std::out_of_range("Too few coefficients."));
  const std::size_t N = n - 1;
  // One block for the four scratch arrays; released however we leave.
  std::vector<double> scratch(N * N + N + N + 6 * N);
  double* matrix = scratch.data();
  double* rootsReal = matrix + N * N;
  double* rootsImag = rootsReal + N;
  double* workspace = rootsImag + N;
  detail::polynomialRootsImpl(n, coefficients, roots, matrix, rootsReal, rootsImag, workspace);
}

namespace detail {

void polynomialRootsImpl(unsigned int n, const double* c, std::vector<std::complex<double>>& roots,
                         double* matrix, double* rootsReal, double* rootsImag, double* workspace) {
  assert(n >= 2);
  const double h = c[n - 1];
  // Exact comparison: a tiny leading coefficient is accepted, NaN passes.
  if (h == 0.0) LUMO_THROW(std::runtime_error("Highest-order coefficient must not be zero."));

  const int N = static_cast<int>(n - 1);
  // Column-major companion matrix with leading dimension N: ones on the
  // subdiagonal, -(c[i] / h) in the last column.
  std::fill(matrix, matrix + static_cast<std::size_t>(N) * N, 0.0);
  for (int i = 0; i + 1 < N; ++i) matrix[i * N + (i + 1)] = 1.0;
  for (int i = 0; i < N; ++i) matrix[(N - 1) * N + i] = -(c[i] / h);

  const char job = 'N';
  const int one = 1;
  const int lwork = 6 * N;
  int info = 0;
  dgeev_(&job, &job, &N, matrix, &N, rootsReal, rootsImag, nullptr, &one, nullptr, &one, workspace,
         &lwork, &info);
  if (info != 0) LUMO_THROW(std::runtime_error("DGEEV failed."));

  roots.resize(N);
  for (int i = 0; i < N; ++i) roots[i] = std::complex<double>(rootsReal[i], rootsImag[i]);
}

}  // namespace detail

namespace {

std::string coefficientText(const vigra::Polynomial<double>& p) {
  std::ostringstream os;
  for (unsigned int i = 0; i <= p.order(); ++i) {
    if (i) os << ' ';
    os << p[i];
  }
  return os.str();
}

}  // namespace

std::pair<double, double> monotonicPolyRange(const vigra::Polynomial<double>& f, double x0) {
  static const logging::Logger logger = logging::Logger::getLogger("lumo.math.monotonicPolyRange");
  using logging::Level;
  using logging::LogStream;
  {
    LogStream ls(logger, Level::TRACE);
    if (ls.enabled()) ls.stream() << "f(x) poly: " << coefficientText(f);
  }
  vigra::Polynomial<double> g(f);
  g.differentiate();
  {
    LogStream ls(logger, Level::TRACE);
    if (ls.enabled()) ls.stream() << "f'(x) poly: " << coefficientText(g);
  }

  double slope = 0.0;  // g(x0) by Horner's rule
  for (unsigned int i = g.order() + 1; i-- > 0;) slope = slope * x0 + g[i];
  // A NaN slope does not fail here and runs on.
  if (slope <= 0.0)
    LUMO_THROW(std::runtime_error("Polynomial not strictly monotonously increasing at x0."));

  // Drop exactly-zero leading coefficients only.
  g.minimizeOrder(0.0);
  std::vector<double> realRoots;
  if (g.order() > 0) {
    const std::vector<double> coefficients(g.begin(), g.begin() + g.order() + 1);
    std::vector<std::complex<double>> roots;
    polynomialRoots(static_cast<unsigned int>(coefficients.size()), coefficients.data(), roots);
    for (const std::complex<double>& r : roots)
      if (r.imag() == 0.0) realRoots.push_back(r.real());
  }
  if (logger.isEnabled(Level::TRACE)) {
    std::ostringstream os;
    for (double r : realRoots) os << r << ' ';
    LogStream(logger, Level::TRACE) << "Real roots: " << os.str();
  }

  const double inf = std::numeric_limits<double>::infinity();
  if (realRoots.empty()) return {-inf, inf};
  std::sort(realRoots.begin(), realRoots.end());
  double upper = inf;
  for (double r : realRoots) {
    if (r > x0) {
      upper = r;
      break;
    }
  }
  double lower = -inf;
  for (auto it = realRoots.rbegin(); it != realRoots.rend(); ++it) {
    if (*it < x0) {
      lower = *it;
      break;
    }
  }
  return {lower, upper};
}

}  // namespace math
}  // namespace lumo
