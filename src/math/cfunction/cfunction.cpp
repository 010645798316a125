#include "math/cfunction/cfunction.h"

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "math/cfunction/cfunction_imp.h"
#include "math/cfunction/spec1d_element_function.h"
#include "sys/throw.h"

namespace lumo {
namespace math {

namespace detail {

// A failure of a CFunction's set-up: the text of the original failure,
// which loses its class on the way out.
class CFunctionSetUpError : public std::exception {
 public:
  explicit CFunctionSetUpError(std::string text) : text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// The implementation of `strategy`, not yet initialised.
// Throws std::runtime_error "Unsupported CFunction strategy." for strategies
// other than 1 to 6 and 9 to 11.
std::unique_ptr<CFunctionImp> makeStrategy(int strategy) {
  static const int kTypeCodes[] = {
      0,                              // unused
      kConstElemType,                 // 1
      kLinearElemType,                // 2
      kCubicSplineElemType,           // 3
      kIntPolynomXAllElemType,        // 4
      kIntPolynomXCopyExtElemType,    // 5
      kRealPolynomXDerivExtElemType,  // 6
      0,                              // 7: fixed shape, not supported
      0,                              // 8: fixed shape, not supported
      kIntPolynomZRKExtElemType,      // 9
      kAkimaElemType,                 // 10
      kAkimaPosConstrainedElemType,   // 11
  };
  const int count = static_cast<int>(sizeof(kTypeCodes) / sizeof(kTypeCodes[0]));
  if (strategy < 0 || strategy >= count || kTypeCodes[strategy] == 0) {
    LUMO_THROW(std::runtime_error("Unsupported CFunction strategy."));
  }
  return std::make_unique<CSpec1dElementFunction>(kTypeCodes[strategy]);
}

}  // namespace detail

CFunction::CFunction() : status(0), strategy(0) {}

CFunction::CFunction(int strategy, const std::vector<double>& x, const std::vector<double>& y,
                     int& status)
    : status(0), strategy(0) {
  try {
    SetUp(strategy, x, y, nullptr, 2101);
  } catch (...) {
    status = this->status;
    throw;
  }
  status = this->status;
}

CFunction::~CFunction() {}

CFunction::CFunction(const CFunction& other)
    : status(other.status),
      strategyImp(other.strategyImp ? other.strategyImp->Clone() : nullptr),
      strategy(other.strategy) {}

CFunction& CFunction::operator=(const CFunction& other) {
  if (this != &other) {
    strategyImp = other.strategyImp ? other.strategyImp->Clone() : nullptr;
    status = other.status;
    strategy = other.strategy;
  }
  return *this;
}

void CFunction::Init(int strategy, const std::vector<double>& x, const std::vector<double>& y) {
  SetUp(strategy, x, y, nullptr, 2100);
}

void CFunction::Init(int strategy, const std::vector<double>& x, const std::vector<double>& y,
                     const std::vector<int>& parameters) {
  SetUp(strategy, x, y, &parameters, 2100);
}

void CFunction::SetUp(int strategy, const std::vector<double>& x, const std::vector<double>& y,
                      const std::vector<int>* parameters, int failureStatus) {
  strategyImp.reset();
  this->strategy = strategy;
  try {
    std::unique_ptr<CFunctionImp> imp = detail::makeStrategy(strategy);
    if (parameters) {
      imp->Init(x, y, *parameters);
    } else {
      imp->Init(x, y);
    }
    strategyImp = std::move(imp);
    status = 1;
  } catch (const std::exception& e) {
    status = failureStatus;
    LUMO_THROW(detail::CFunctionSetUpError(e.what()));
  }
}

double CFunction::operator()(double x, int elem) const { return Imp()(x, elem); }

void CFunction::operator()(const std::vector<double>& x, std::vector<double>& y) const {
  Imp()(x, y);
}

double CFunction::Derivative(double x, int elem) const { return Imp().Derivative(x, elem); }

double CFunction::Inverse(double y, double lo, double hi, bool& converged, double& residual) const {
  return Inverse(y, (lo + hi) * 0.5, lo, hi, converged, residual);
}

double CFunction::Inverse(double y, double start, double lo, double hi, bool& converged,
                          double& residual) const {
  if (!strategyImp) {
    converged = false;
    residual = 0.0;
    return 0.0;
  }
  int flag = 0;
  const double x = strategyImp->Inverse(y, start, lo, hi, flag, residual);
  converged = flag != 0;
  return x;
}

bool CFunction::IsInitialized() const { return static_cast<bool>(strategyImp); }

int CFunction::GetStatus() const { return status; }

int CFunction::GetStrategy() const { return strategy; }

const CFunctionImp& CFunction::Imp() const {
  if (!strategyImp) detail::throwNoFuncElems();
  return *strategyImp;
}

}  // namespace math
}  // namespace lumo
