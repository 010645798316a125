#include "math/cfunction/spec1d_element_function.h"

#include <stdexcept>

#include "math/cfunction/piecewise_elements.h"
#include "math/cfunction/polynomial_elements.h"
#include "math/cfunction/real_polynomial_elem.h"
#include "math/cfunction/spline_elements.h"
#include "sys/throw.h"

namespace lumo {
namespace math {

namespace detail {

std::unique_ptr<CFuncBaseElem> makeSpec1dFuncElem(int typeCode, int elemNumber,
                                                  const std::vector<double>& x,
                                                  const std::vector<double>& y,
                                                  const std::vector<int>& parameters) {
  switch (typeCode) {
    case kConstElemType:
      return std::make_unique<CSpec1dConstElem>(elemNumber, x, y);
    case kCubicSplineElemType:
      return std::make_unique<CSpec1dCubicSplineElem>(elemNumber, x, y);
    case kIntPolynomXAllElemType:
      return std::make_unique<CSpec1dIntPolynomElemXAll>(elemNumber, x, y);
    case kIntPolynomXCopyExtElemType:
      return std::make_unique<CSpec1dIntPolynomElemXCopyExt>(elemNumber, x, y);
    case kRealPolynomXDerivExtElemType:
      return std::make_unique<CSpec1dRealPolynomElemXDerivExt>(elemNumber, x, y, parameters);
    case kIntPolynomZRKExtElemType:
      return std::make_unique<CSpec1dIntPolynomElemZRKExt>(elemNumber, x, y);
    case kAkimaElemType:
      return std::make_unique<CSpec1dAkimaElem>(elemNumber, x, y);
    case kAkimaPosConstrainedElemType:
      return std::make_unique<CSpec1dAkimaPosConstrainedElem>(elemNumber, x, y);
    default:
      return std::make_unique<CSpec1dLinearElem>(elemNumber, x, y);
  }
}

}  // namespace detail

CSpec1dElementFunction::CSpec1dElementFunction(int typeCode) : typeCode(typeCode) {}

std::unique_ptr<CFunctionImp> CSpec1dElementFunction::Clone() const {
  return std::make_unique<CSpec1dElementFunction>(*this);
}

void CSpec1dElementFunction::Init(const std::vector<double>& x, const std::vector<double>& y) {
  InitSpec1dElem(x, y);
}

int CSpec1dElementFunction::TypeCode() const { return typeCode; }

void CSpec1dElementFunction::InitSpec1dElem(const std::vector<double>& x,
                                            const std::vector<double>& y) {
  if (x.empty()) {
    LUMO_THROW(std::invalid_argument("not initialized correctly, MakeEmptyContainer"));
  }
  points.clear();
  elements.clear();
  m_vFuncElems.clear();
  points.push_back(std::make_unique<CGeomPoint1d>(x.front()));
  points.push_back(std::make_unique<CGeomPoint1d>(x.back()));
  elements.push_back(std::make_unique<CSpec1dElem>(0, 1));
  const int elemNumber = static_cast<int>(elements.size()) - 1;
  m_vFuncElems.push_back(detail::makeSpec1dFuncElem(typeCode, elemNumber, x, y, intParams));
  yValues = y;
}

}  // namespace math
}  // namespace lumo
