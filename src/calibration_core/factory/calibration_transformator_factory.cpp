#include "calibration_core/factory/calibration_transformator_factory.h"

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <cmath>
#include <stdexcept>
#include <string>

#include "calibration_core/constants/calibration_constants_functional_other.h"
#include "calibration_core/decorators/calibration_transformator_index_bounds_checker.h"
#include "calibration_core/decorators/calibration_transformator_raw_bounds_checker.h"
#include "calibration_core/ftms/calibration_transformator_ftms.h"
#include "calibration_core/halyard/calibration_transformator_halyard.h"
#include "calibration_core/linear/calibration_transformator_linear.h"
#include "calibration_core/tof/calibration_transformator_tof.h"
#include "calibration_core/tof2/calibration_transformator_tof2.h"
#include "calibration_core/tof2/calibration_transformator_tof2_cubic.h"
#include "calibration_core/zrk/calibration_transformator_zrk.h"
#include "sys/throw.h"

namespace lumo {
namespace calibration {
namespace Transformation {

namespace {

// `functional` as the family interface F; throws std::invalid_argument with
// "<scope>CalibrationTransformatorFactory::<operation>: funcConsts is not of
// type <family>" otherwise.
template <class F>
boost::shared_ptr<F> familyOf(const ICalibrationConstantsFunctionalPtr& functional,
                              const char* operation, const char* family) {
  boost::shared_ptr<F> constants = boost::dynamic_pointer_cast<F>(functional);
  if (!constants) {
    LUMO_THROW(std::invalid_argument(
        std::string("lumo::calibration::Transformation::CalibrationTransformatorFactory::") +
        operation + ": funcConsts is not of type " + family));
  }
  return constants;
}

template <class Model>
ICalibrationTransformatorPtr make(const ICalibrationConstantsFunctionalPtr& functional,
                                  const ICalibrationConstantsPhysicalPtr& physical) {
  return boost::make_shared<Model>(functional, physical);
}

typedef ICalibrationTransformatorPtr (*Maker)(const ICalibrationConstantsFunctionalPtr&,
                                              const ICalibrationConstantsPhysicalPtr&);

// The model that choose(family constants) names, made of both constants;
// the failure of familyOf for constants of another family.
template <class F, class Choose>
ICalibrationTransformatorPtr makeChosen(const ICalibrationConstantsFunctionalPtr& functional,
                                        const ICalibrationConstantsPhysicalPtr& physical,
                                        const char* operation, const char* family,
                                        const Choose& choose) {
  const Maker maker = choose(*familyOf<F>(functional, operation, family));
  return maker(functional, physical);
}

// `physical` as P; throws std::invalid_argument ("types differ") otherwise.
template <class P>
boost::shared_ptr<P> physicalOf(const ICalibrationConstantsPhysicalPtr& physical) {
  boost::shared_ptr<P> constants = boost::dynamic_pointer_cast<P>(physical);
  if (!constants) {
    LUMO_THROW(std::invalid_argument(
        "CalibrationTransformatorFactory::createTransformator: invalid calibration constants: "
        "types differ"));
  }
  return constants;
}

typedef ICalibrationConstantsFunctionalTOF1 FunctionalTOF1;
typedef ICalibrationConstantsFunctionalTOF2 FunctionalTOF2;
typedef ICalibrationConstantsFunctionalFTMS FunctionalFTMS;
typedef ICalibrationConstantsFunctionalHalyard FunctionalHalyard;
typedef ICalibrationConstantsFunctionalLinear FunctionalLinear;
typedef ICalibrationConstantsPhysicalTOF PhysicalTOF;
typedef ICalibrationConstantsPhysicalFTMS PhysicalFTMS;
typedef ICalibrationConstantsPhysicalHalyard PhysicalHalyard;
typedef ICalibrationConstantsPhysicalLinear PhysicalLinear;

template <class F>
bool is(const ICalibrationConstantsFunctionalPtr& functional) {
  return boost::dynamic_pointer_cast<F>(functional) != nullptr;
}

}  // namespace

// Stateless: every operation reads only its arguments.
class CalibrationTransformatorFactory final : public ICalibrationTransformatorFactory {
 public:
  ICalibrationTransformatorPtr createTransformator(
      const ICalibrationConstantsFunctionalPtr& f,
      const ICalibrationConstantsPhysicalPtr& p) const override {
    if (is<FunctionalTOF2>(f)) return createTransformatorTof2(f, physicalOf<PhysicalTOF>(p));
    if (is<FunctionalTOF1>(f)) return createTransformatorTof(f, physicalOf<PhysicalTOF>(p));
    if (is<FunctionalFTMS>(f)) return createTransformatorIcr(f, physicalOf<PhysicalFTMS>(p));
    if (is<FunctionalHalyard>(f)) return createTransformatorTrap(f, physicalOf<PhysicalHalyard>(p));
    if (is<FunctionalLinear>(f)) return createTransformatorLinear(f, physicalOf<PhysicalLinear>(p));
    LUMO_THROW(
        std::invalid_argument("CalibrationTransformatorFactory::createTransformator: invalid "
                              "transformator: type unknown"));
  }

  ICalibrationTransformatorPtr createTransformatorTof(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalTOFPtr& physical) const override {
    return makeChosen<FunctionalTOF1>(functional, physical, "createTransformatorTof",
                                      "ICalibrationConstantsFunctionalTOF1",
                                      [](const FunctionalTOF1& tof1) -> Maker {
                                        if (tof1.GetC2() == 0.0)
                                          return make<CalibrationTransformatorTOFLinear>;
                                        return make<CalibrationTransformatorTOFQuadratic>;
                                      });
  }

  ICalibrationTransformatorPtr createTransformatorTof2(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalTOFPtr& physical) const override {
    return makeChosen<FunctionalTOF2>(functional, physical, "createTransformatorTof2",
                                      "ICalibrationConstantsFunctionalTOF2",
                                      [](const FunctionalTOF2& tof2) -> Maker {
                                        if (tof2.GetDm() != 0.0 || tof2.GetC3() != 0.0) {
                                          return make<CalibrationTransformatorTOF2Cubic>;
                                        }
                                        if (tof2.GetC2() != 0.0)
                                          return make<CalibrationTransformatorTOF2Quadratic>;
                                        return make<CalibrationTransformatorTOF2Linear>;
                                      });
  }

  ICalibrationTransformatorPtr createTransformatorTrap(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalHalyardPtr& physical) const override {
    return makeChosen<FunctionalHalyard>(
        functional, physical, "createTransformatorTrap", "ICalibrationConstantsFunctionalHalyard",
        [](const FunctionalHalyard& halyard) -> Maker {
          if (halyard.GetA1() * 1e-9 >= std::fabs(halyard.GetC2())) {
            return make<CalibrationTransformatorHalyardLinear>;
          }
          return make<CalibrationTransformatorHalyardQuadratic>;
        });
  }

  ICalibrationTransformatorPtr createTransformatorIcr(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalFTMSPtr& physical) const override {
    const ICalibrationConstantsFunctionalFTMSPtr ftms =
        boost::dynamic_pointer_cast<ICalibrationConstantsFunctionalFTMS>(functional);
    if (!ftms) {
      LUMO_THROW(std::invalid_argument(
          "lumo::calibration::Transformation::CalibrationTransformatorFactory::"
          "createTransformatorIcr: expected ICalibrationConstantsFunctionalFTMS"));
    }
    const int mode = ftms->GetCalibMode();
    switch (mode) {
      case 0:
      case 4:
        return make<CalibrationTransformatorFTMS04>(functional, physical);
      case 1:
      case 5:
        return make<CalibrationTransformatorFTMS15>(functional, physical);
      case 2:
        LUMO_THROW(std::invalid_argument(
            "CalibrationTransformatorFactory::createTransformatorIcr: mode 2 not supported [WT]"));
      case 3:
      case 6:
        LUMO_THROW(std::invalid_argument(
            "CalibrationTransformatorFactory::createTransformatorIcr: mode 3 and 6 not supported "
            "[WT]"));
      default:
        LUMO_THROW(std::runtime_error(
            "CalibrationTransformatorFactory::createTransformatorIcr: unknown ftms mode. Expected "
            "0..6, but CalibMode = " +
            std::to_string(mode)));
    }
  }

  ICalibrationTransformatorPtr createTransformatorLinear(
      const ICalibrationConstantsFunctionalPtr& functional,
      const ICalibrationConstantsPhysicalLinearPtr& physical) const override {
    return makeChosen<FunctionalLinear>(
        functional, physical, "createTransformatorLinear", "ICalibrationConstantsFunctionalLinear",
        [](const FunctionalLinear&) -> Maker { return make<CalibrationTransformatorLinear>; });
  }

  ICalibrationTransformatorPtr createTransformatorVega(
      const std::vector<double>& numbers) const override {
    // The VEGA polynomial is not made by this library.
    LUMO_THROW(std::runtime_error(
        "CalibrationTransformatorFactory::createTransformatorVega: can't create vegaPolynomial"));
  }

  ICalibrationTransformatorPtr createTransformatorVega2(
      const std::vector<double>& numbers) const override {
    LUMO_THROW(std::runtime_error(
        "CalibrationTransformatorFactory::createTransformatorVega2: can't create vega2Polynomial"));
  }

  ICalibrationTransformatorPtr createDecoratedTransformator(
      const ICalibrationTransformatorPtr& transformator,
      const ICalibrationTransformatorPtr& decorator) const override {
    if (transformator) {
      if (const auto raw =
              boost::dynamic_pointer_cast<ICalibrationTransformatorRawBoundsChecker>(decorator)) {
        return boost::make_shared<CalibrationTransformatorRawBoundsChecker>(
            transformator, raw->GetLower(), raw->GetUpper());
      }
      if (const auto index =
              boost::dynamic_pointer_cast<ICalibrationTransformatorIndexBoundsChecker>(decorator)) {
        return boost::make_shared<CalibrationTransformatorIndexBoundsChecker>(
            transformator, index->GetLower(), index->GetUpper());
      }
      if (const auto zrk = boost::dynamic_pointer_cast<ICalibrationTransformatorZRK>(decorator)) {
        const auto made =
            boost::make_shared<CalibrationTransformatorZRK>(transformator, zrk->GetPolynomial());
        made->SetUseCorrection(zrk->GetUseCorrection());
        made->SetMinimumSearchWidth(zrk->GetMinimumSearchWidth());
        return made;
      }
    }
    LUMO_THROW(
        std::invalid_argument("CalibrationTransformatorFactory::createDecoratedTransformator: "
                              "invalid transformator: type "
                              "unknown"));
  }

  ICalibrationConstantsFunctionalPtr createConstantsFunctionalIcr(int calibMode, int ftmsRawMode,
                                                                  int version, bool withAlpha,
                                                                  double alpha, double beta,
                                                                  double freqHigh) const override {
    switch (calibMode) {
      case 0:
      case 4:
        return boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS04>(
            beta, freqHigh, ftmsRawMode, calibMode);
      case 1:
      case 3:
      case 5:
      case 6:
        return boost::make_shared<Constants::CalibrationConstantsFunctionalFTMS1356>(
            withAlpha ? alpha : 0.0, beta, freqHigh, ftmsRawMode, calibMode);
      case 2:
        LUMO_THROW(std::invalid_argument(
            "CalibrationTransformatorFactory::createConstantsFunctionalIcr: mode 2 not supported "
            "[WT]"));
      default:
        LUMO_THROW(std::runtime_error("unknown icr mode in serialization"));
    }
  }
};

const ICalibrationTransformatorFactory& transformatorFactory() {
  static const CalibrationTransformatorFactory factory;
  return factory;
}

}  // namespace Transformation
}  // namespace calibration
}  // namespace lumo
