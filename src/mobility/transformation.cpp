// Concentrates the one implementation of ILinearVoltageRampBasedTransformator;
// nothing outside this file sees its class.
#include "mobility/transformation.h"

#include <boost/noncopyable.hpp>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "logging/logger.h"
#include "math/linearly_continued_function.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace kora {

void rangeTransform(std::vector<double>& out, int begin, int end,
                    const boost::function<double(double)>& f) {
  if (end < begin) LUMO_THROW(std::invalid_argument("end must be >= begin."));
  const int64_t count = static_cast<int64_t>(end) - begin;
  out.resize(static_cast<size_t>(count));
  if (begin == end) return;
  for (int64_t i = begin; i < end; ++i) {
    out[static_cast<size_t>(i - begin)] = f(static_cast<double>(i));
  }
}

namespace {

// Invariant: once created, function_ is engaged and was built from the
// current c0_, c1_, vmin_, vmax_.
class LinearVoltageRampBasedTransformator : public virtual ILinearVoltageRampBasedTransformator,
                                            private boost::noncopyable {
 public:
  LinearVoltageRampBasedTransformator(const LinearVoltageRamp& ramp, double scanNumOffset)
      : logger_(logging::Logger::getLogger(
            "lumo.calibration.kora.LinearVoltageRampBasedTransformator")),
        ramp_(ramp),
        polaritySign_(ramp.isNegative() ? -1.0 : 1.0),
        scanNumOffset_(scanNumOffset),
        c0_(0.0),
        c1_(0.0),
        vmin_(0.0),
        vmax_(0.0) {}

  void scanNumToOneOverK0(std::vector<double>& out, int begin, int end) const override {
    rangeTransform(out, begin, end, [this](double s) { return scanNumToOneOverK0(s); });
  }
  double scanNumToOneOverK0(double scanNum) const override {
    return voltageToOneOverK0(scanNumToVoltage(scanNum));
  }
  void scanNumToVoltage(std::vector<double>& out, int begin, int end) const override {
    rangeTransform(out, begin, end, [this](double s) { return scanNumToVoltage(s); });
  }
  double scanNumToVoltage(double scanNum) const override {
    return ramp_.voltage(scanNum - scanNumOffset_);
  }
  double oneOverK0ToScanNum(double oneOverK0) const override {
    return voltageToScanNum(oneOverK0ToVoltage(oneOverK0));
  }
  double voltageToScanNum(double voltage) const override {
    return ramp_.scanNumber(voltage) + scanNumOffset_;
  }
  double voltageToOneOverK0(double voltage) const override {
    assert(function_);
    return (*function_)(polaritySign_ * voltage);
  }
  double oneOverK0ToVoltage(double oneOverK0) const override {
    assert(function_);
    return polaritySign_ * function_->inverse(oneOverK0);
  }
  int getModelType() const override { return 2; }

  LinearVoltageRamp getVoltageRamp() const override { return ramp_; }
  void setVoltageRamp(const LinearVoltageRamp& ramp) override {
    ramp_ = ramp;
    polaritySign_ = ramp_.isNegative() ? -1.0 : 1.0;
  }
  double getScanNumOffset() const override { return scanNumOffset_; }
  void setScanNumOffset(double offset) override { scanNumOffset_ = offset; }
  std::pair<int, int> getScanNumRange() const override {
    const int first = static_cast<int>(std::floor(ramp_.ndelay() + scanNumOffset_));
    const int last = static_cast<int>(std::ceil(ramp_.endScan() + scanNumOffset_));
    return std::make_pair(first, last);
  }
  int getDegree() const override { return 1; }
  std::vector<double> getCoefficients() const override { return {c0_, c1_, vmin_, vmax_}; }

  void setCoefficients(const std::vector<double>& coefficients) override {
    if (coefficients.size() != 4) {
      LUMO_THROW(std::invalid_argument("Only polynomials of degree 1 supported currently."));
    }
    const double c0 = coefficients[0];
    const double c1 = coefficients[1];
    const double vmin = coefficients[2];
    const double vmax = coefficients[3];
    if (!(c1 > 0.0) || !(vmin > 0.0) || !(vmax > 0.0)) {
      LUMO_THROW(std::invalid_argument("c1, vmin and vmax must be strictly positive."));
    }
    if (vmin >= vmax) LUMO_THROW(std::invalid_argument("vmax must be larger than vmin."));
    if (0.0 > c0 && vmax >= -(c1 / c0)) LUMO_THROW(std::invalid_argument("vmax is too large."));
    const double slope0 = c1 / std::pow(vmin * c0 + c1, 2.0);
    const double slope1 = c1 / std::pow(vmax * c0 + c1, 2.0);
    if (!(slope0 > 0.0) || !(slope1 > 0.0)) {
      LUMO_THROW(std::invalid_argument("Slopes at vmin and vmax must be strictly positive."));
    }
    c0_ = c0;
    c1_ = c1;
    vmin_ = vmin;
    vmax_ = vmax;
    function_.emplace(*this, vmin, vmax, slope0, slope1);
  }

  // The law on the voltage magnitude x in (vmin, vmax), and its inverse, as
  // the continued function calls them.
  double operator()(double x) const { return 1.0 / (c1_ / x + c0_); }
  double inverse(double y) const { return c1_ / (1.0 / y - c0_); }

 private:
  logging::Logger logger_;
  LinearVoltageRamp ramp_;
  double polaritySign_;  // -1.0 for a negative ramp, else +1.0
  double scanNumOffset_;
  double c0_;
  double c1_;
  double vmin_;  // voltage magnitudes
  double vmax_;
  std::optional<math::LinearlyContinuedFunction<LinearVoltageRampBasedTransformator&>> function_;
};

}  // namespace

std::unique_ptr<ILinearVoltageRampBasedTransformator> createLinearVoltageRampBasedTransformator(
    const LinearVoltageRamp& ramp, double scanNumOffset, const std::vector<double>& coefficients) {
  std::unique_ptr<LinearVoltageRampBasedTransformator> t(
      new LinearVoltageRampBasedTransformator(ramp, scanNumOffset));
  t->setCoefficients(coefficients);
  return t;
}

}  // namespace kora
}  // namespace calibration
}  // namespace lumo
