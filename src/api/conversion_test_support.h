// Helpers of the conversion tests: the six conversion exports by name, calls
// that report the last error, and an open handle that closes itself.
#ifndef KORA_API_CONVERSION_TEST_SUPPORT_H_
#define KORA_API_CONVERSION_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "koradata.h"
#include "testing/last_error.h"

namespace kora_testing {

using ConversionFunction = uint32_t (*)(uint64_t, int64_t, const double*, double*, uint32_t);

struct NamedConversion {
  const char* name;
  ConversionFunction function;
};

// All six, mass first.
inline const std::vector<NamedConversion>& conversions() {
  static const std::vector<NamedConversion> all = {
      {"kora_index_to_mz", kora_index_to_mz},
      {"kora_mz_to_index", kora_mz_to_index},
      {"kora_scannum_to_oneoverk0", kora_scannum_to_oneoverk0},
      {"kora_oneoverk0_to_scannum", kora_oneoverk0_to_scannum},
      {"kora_scannum_to_voltage", kora_scannum_to_voltage},
      {"kora_voltage_to_scannum", kora_voltage_to_scannum}};
  return all;
}

// An analysis opened for the life of the object; 0 if the open failed.
class OpenAnalysis {
 public:
  OpenAnalysis(const std::string& dir, uint32_t use_recalibrated_state)
      : handle_(kora_open(dir.c_str(), use_recalibrated_state)) {
    EXPECT_NE(0u, handle_) << lastError();
  }
  ~OpenAnalysis() { kora_close(handle_); }
  OpenAnalysis(const OpenAnalysis&) = delete;
  OpenAnalysis& operator=(const OpenAnalysis&) = delete;

  uint64_t handle() const { return handle_; }

  // f over `in`, expected to succeed.
  std::vector<double> convert(ConversionFunction f, int64_t frame,
                              const std::vector<double>& in) const {
    std::vector<double> out(in.size(), -1.0);
    EXPECT_EQ(1u, f(handle_, frame, in.data(), out.data(), static_cast<uint32_t>(in.size())))
        << lastError();
    return out;
  }
  double convert(ConversionFunction f, int64_t frame, double value) const {
    return convert(f, frame, std::vector<double>{value})[0];
  }

  // The text of f's failure over `in` ("<succeeded>" when it did not fail).
  std::string failure(ConversionFunction f, int64_t frame,
                      const std::vector<double>& in = {1.0}) const {
    std::vector<double> out(in.size());
    if (f(handle_, frame, in.data(), out.data(), static_cast<uint32_t>(in.size())) != 0)
      return "<succeeded>";
    return lastError();
  }

 private:
  uint64_t handle_;
};

// |actual - expected| within `relative` of |expected| (or of 1 near 0).
inline ::testing::AssertionResult closeTo(double actual, double expected, double relative = 1e-12) {
  const double tolerance = relative * std::max(1.0, std::fabs(expected));
  if (std::fabs(actual - expected) <= tolerance) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << actual << " differs from " << expected << " by " << actual - expected;
}

}  // namespace kora_testing

#endif  // KORA_API_CONVERSION_TEST_SUPPORT_H_
