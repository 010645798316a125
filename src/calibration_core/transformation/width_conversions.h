// The width conversions of every transformator, written once over the
// model's own scalar conversions so that a derived model or a decorator that
// changes a scalar also changes its widths.
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_WIDTH_CONVERSIONS_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_WIDTH_CONVERSIONS_H_

#include <cmath>

namespace lumo {
namespace calibration {
namespace Transformation {
namespace detail {

// The mass width of `indexWidth` samples centred on `mass`; an interval
// reaching below index 0 is moved up to start there, keeping its width.
// Model provides MassToDIndex(double) and DIndexToMass(double).
template <class Model>
double indexWidthToMassWidth(const Model& model, double mass, double indexWidth) {
  const double x = model.MassToDIndex(mass);
  const double half = indexWidth * 0.5;
  double lo = x - half;
  double hi = half + x;
  if (lo < 0) {
    hi = hi - lo;
    lo = 0;
  }
  return std::fabs(model.DIndexToMass(hi) - model.DIndexToMass(lo));
}

// The index width of `massWidth` centred on `mass`; an interval reaching
// below the mass of index 0 is moved up to start there.
// Model provides IndexToMass(std::int32_t) and MassToDIndex(double).
template <class Model>
double massWidthToIndexWidth(const Model& model, double mass, double massWidth) {
  const double half = massWidth * 0.5;
  double lo = mass - half;
  double hi = half + mass;
  const double massOfIndexZero = model.IndexToMass(0);
  if (massOfIndexZero >= lo) {
    lo = massOfIndexZero;
    hi = massOfIndexZero + massWidth;
  }
  return std::fabs(model.MassToDIndex(hi) - model.MassToDIndex(lo));
}

}  // namespace detail
}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_WIDTH_CONVERSIONS_H_
