// Bad data in a calibration table: a number that no model accepts.
#ifndef KORA_CALIBRATION_ACCESS_CORRUPT_DATA_ERROR_H_
#define KORA_CALIBRATION_ACCESS_CORRUPT_DATA_ERROR_H_

#include <stdexcept>
#include <string>

namespace lumo {
namespace io {
namespace calibration {

class CorruptDataError : public std::runtime_error {
 public:
  explicit CorruptDataError(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace calibration
}  // namespace io
}  // namespace lumo

#endif  // KORA_CALIBRATION_ACCESS_CORRUPT_DATA_ERROR_H_
