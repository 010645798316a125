// CSpec1dElementFunction: one function element on one segment, the element
// class chosen by a type code (ElementTypeCode; any code outside 4 to 12
// makes a CSpec1dLinearElem).
//
// Thread-safety: as CFunctionImp.
#ifndef KORA_MATH_CFUNCTION_SPEC1D_ELEMENT_FUNCTION_H_
#define KORA_MATH_CFUNCTION_SPEC1D_ELEMENT_FUNCTION_H_

#include <memory>
#include <vector>

#include "math/cfunction/cfunction_imp.h"

namespace lumo {
namespace math {

class CSpec1dElementFunction : public CFunctionImp {
 public:
  explicit CSpec1dElementFunction(int typeCode);
  std::unique_ptr<CFunctionImp> Clone() const override;
  using CFunctionImp::Init;
  // InitSpec1dElem(x, y).
  void Init(const std::vector<double>& x, const std::vector<double>& y) override;
  int TypeCode() const override;

  // Replaces the geometry by the segment from x's first to last value and
  // the function element by a new one of the type code, made from x, y and
  // the integer parameters. Keeps a copy of y.
  // Throws std::invalid_argument "not initialized correctly,
  // MakeEmptyContainer" for an empty x, and what the element's constructor
  // throws.
  void InitSpec1dElem(const std::vector<double>& x, const std::vector<double>& y);

 private:
  std::vector<double> yValues;
  int typeCode;
};

namespace detail {

// A new function element of the class of `typeCode`.
std::unique_ptr<CFuncBaseElem> makeSpec1dFuncElem(int typeCode, int elemNumber,
                                                  const std::vector<double>& x,
                                                  const std::vector<double>& y,
                                                  const std::vector<int>& parameters);

}  // namespace detail
}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_SPEC1D_ELEMENT_FUNCTION_H_
