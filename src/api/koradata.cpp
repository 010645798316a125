// The exported functions and the Instance behind a handle.
//
// A handle is the address of an Instance. There is no table of open handles
// and no validation: a handle is turned back into a pointer and used. No
// exception leaves a function that can fail: every such export routes its
// catch block through saveError(), which logs the full diagnostic text and
// keeps what() as the calling thread's last error.
#include "koradata.h"

#include <omp.h>

#include <algorithm>
#include <boost/exception/diagnostic_information.hpp>
#include <boost/filesystem/path.hpp>
#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/tss.hpp>
#include <cassert>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "calibration_access/calibration_state_selector.h"
#include "logging/log_stream.h"
#include "logging/logger.h"
#include "reader/oxa_reader.h"
#include "sys/encoding.h"
#include "sys/throw.h"

namespace {

using lumo::calibration::ICalibrationTransformator;
using lumo::calibration::kora::ITransformator;
using lumo::io::calibration::CalibrationStateSelector;
using lumo::logging::Level;
using lumo::logging::Logger;
using lumo::logging::LogStream;

const char* const kLoggerName = "lumo.io.koradata_dll";

// One text per thread, created by the thread's first failure, never cleared.
boost::thread_specific_ptr<std::string> last_error;

// Below this many values a batch is copied on the calling thread alone.
constexpr uint32_t kParallelCopyThreshold = 1 << 16;

// to[0..n) = from[0..n), bit for bit. A long batch is copied in one block per
// OpenMP thread (the number kora_set_num_threads sets), as the mass
// conversion between the two copies runs on them too: a serial copy of a
// long batch would cost about as much as the conversion itself.
// REQUIRES: the ranges do not overlap.
void copyValues(const double* from, double* to, uint32_t n) {
  if (n < kParallelCopyThreshold || omp_in_parallel()) {
    std::memcpy(to, from, n * sizeof(double));
    return;
  }
  const int blocks = omp_get_max_threads();
#pragma omp parallel for schedule(static)
  for (int b = 0; b < blocks; ++b) {
    const size_t begin = static_cast<size_t>(n) * b / blocks;
    const size_t end = static_cast<size_t>(n) * (b + 1) / blocks;
    std::memcpy(to + begin, from + begin, (end - begin) * sizeof(double));
  }
}

// What a conversion export asks of a frame's transformator: one batch of the
// mass transformator, or one value of the mobility transformator.
using MzOperation = void (ICalibrationTransformator::*)(const std::vector<double>&,
                                                        std::vector<double>&) const;
using MobOperation = double (ITransformator::*)(double) const;

// An open analysis. Thread-compatible: one thread at a time.
class Instance : boost::noncopyable {
 public:
  Instance(const boost::filesystem::path& dir, bool useRecalibratedState)
      : logger(Logger::getLogger(kLoggerName)),
        reader(dir, useRecalibratedState ? boost::make_optional(CalibrationStateSelector())
                                         : boost::none) {
    LogStream(logger, Level::DEBUG) << "instantiated.";
  }

  // Writes the peaks of scans [scan_begin, scan_end) of `frame_id` to `buf`:
  // N = scan_end - scan_begin peak counts, then per scan its indices and its
  // intensities, all as 32-bit words. Returns the bytes needed; writes
  // nothing unless that is at most `len`.
  // Throws std::invalid_argument "scan_end must be > scan_begin" for an empty
  // range, std::runtime_error "Maximum decompressed frame size exceeded." for
  // more than 0x3FFFFFFF words, and every error of the reader.
  unsigned int readScans(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                         void* buf, unsigned int len,
                         lumo::io::kora::NormalizationType normalization);

  // Converts in[0..cnt) into out[0..cnt) by `op` of the frame's mass
  // transformator, as one batch. `in` may equal `out`. Does nothing, and
  // cannot fail, when cnt is 0.
  // Throws std::runtime_error "No m/z trafo available." when the frame's
  // calibration row does not exist, and the failures of the reader and of
  // the model.
  void mzConversionFunc(int64_t frame_id, const double* in, double* out, uint32_t cnt,
                        MzOperation op);
  // out[i] = op(in[i]) of the frame's mobility transformator, in index
  // order. `in` may equal `out`. Does nothing, and cannot fail, when cnt is 0.
  // Throws std::runtime_error "No mobility trafo available." when the
  // frame's calibration row does not exist, and the failures of the reader.
  void mobConversionFunc(int64_t frame_id, const double* in, double* out, uint32_t cnt,
                         MobOperation op);

  Logger logger;
  lumo::io::kora::OxaReader reader;

 private:
  // Scratch of mzConversionFunc: a batch and its results, kept with their
  // capacity over calls, so that a long batch is not paged in afresh each
  // time. Freed with the instance.
  struct MzScratch {
    std::vector<double> values;
    std::vector<double> results;
  };
  // Short batches have their own pair: a vector that shrank to one value
  // would be zero-filled again, serially, when it grows back to a long batch.
  MzScratch shortBatches;
  MzScratch longBatches;
};

void Instance::mzConversionFunc(int64_t frame_id, const double* in, double* out, uint32_t cnt,
                                MzOperation op) {
  if (cnt == 0) return;
  const boost::shared_ptr<ICalibrationTransformator> trafo = reader.getMzTrafo(frame_id, true);
  if (!trafo) LUMO_THROW(std::runtime_error("No m/z trafo available."));
  MzScratch& scratch = cnt < kParallelCopyThreshold ? shortBatches : longBatches;
  scratch.values.resize(cnt);
  copyValues(in, scratch.values.data(), cnt);
  ((*trafo).*op)(scratch.values, scratch.results);
  assert(scratch.results.size() == cnt);
  copyValues(scratch.results.data(), out, cnt);
}

void Instance::mobConversionFunc(int64_t frame_id, const double* in, double* out, uint32_t cnt,
                                 MobOperation op) {
  if (cnt == 0) return;
  const std::unique_ptr<ITransformator> trafo = reader.getMobTrafo(frame_id);
  if (!trafo) LUMO_THROW(std::runtime_error("No mobility trafo available."));
  for (uint32_t i = 0; i < cnt; ++i) out[i] = ((*trafo).*op)(in[i]);
}

unsigned int Instance::readScans(int64_t frame_id, unsigned int scan_begin, unsigned int scan_end,
                                 void* buf, unsigned int len,
                                 lumo::io::kora::NormalizationType normalization) {
  if (scan_end <= scan_begin) LUMO_THROW(std::invalid_argument("scan_end must be > scan_begin"));
  return reader.readScans(frame_id, scan_begin, scan_end, normalization, buf, len);
}

Instance* toInstance(uint64_t handle) {
  return reinterpret_cast<Instance*>(static_cast<uintptr_t>(handle));
}

// The boundary handler of every export that can fail.
// The diagnostic text (location, type, stack trace) is only built when the
// DEBUG line would be written.
void saveError(const std::exception& e) {
  const Logger logger = Logger::getLogger(kLoggerName);
  if (logger.isEnabled(Level::DEBUG)) {
    const std::string text = boost::diagnostic_information(e, true);
    if (!text.empty())
      LogStream(logger, Level::DEBUG)
          << "Caught std::exception with boost::diagnostic_information = \n" << text;
  }
  std::string message = e.what();
  if (!last_error.get()) last_error.reset(new std::string);
  *last_error = std::move(message);
}

// The shape of the six conversion exports: 1, or 0 with the error kept.
uint32_t convertMz(uint64_t handle, int64_t frame_id, const double* in, double* out, uint32_t cnt,
                   MzOperation op) {
  try {
    toInstance(handle)->mzConversionFunc(frame_id, in, out, cnt, op);
    return 1;
  } catch (const std::exception& e) {
    saveError(e);
    return 0;
  }
}

uint32_t convertMobility(uint64_t handle, int64_t frame_id, const double* in, double* out,
                         uint32_t cnt, MobOperation op) {
  try {
    toInstance(handle)->mobConversionFunc(frame_id, in, out, cnt, op);
    return 1;
  } catch (const std::exception& e) {
    saveError(e);
    return 0;
  }
}

}  // namespace

extern "C" {

KORA_EXPORT uint64_t kora_open(const char* analysis_directory, uint32_t use_recalibrated_state) {
  try {
    const Logger logger = Logger::getLogger(kLoggerName);
    {
      LogStream ls(logger, Level::TRACE);
      // Converted whether or not the statement is enabled: malformed UTF-8
      // fails here, with "Invalid UTF-8".
      const std::string path =
          lumo::sys::utf8_to_native(analysis_directory, lumo::sys::NativeEncodingOption::ANSI);
      if (ls.enabled()) ls.stream() << "Opening " << path << ", recal = " << use_recalibrated_state;
    }
    lumo::sys::checkUtf8(analysis_directory);
    // The native narrow encoding of paths is UTF-8 here.
    const boost::filesystem::path dir(analysis_directory);
    Instance* instance = new Instance(dir, use_recalibrated_state != 0);
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(instance));
  } catch (const std::exception& e) {
    saveError(e);
    return 0;
  }
}

KORA_EXPORT void kora_close(uint64_t handle) {
  LogStream(Logger::getLogger(kLoggerName), Level::TRACE) << "Closing handle " << handle;
  if (handle == 0) return;
  Instance* instance = toInstance(handle);
  LogStream(instance->logger, Level::DEBUG) << "destroying...";
  delete instance;
}

KORA_EXPORT uint32_t kora_get_last_error_string(char* buf, uint32_t len) {
  const std::string text = last_error.get() ? *last_error : std::string("<no error>");
  const uint32_t L = static_cast<uint32_t>(text.size());
  if (len != 0) {
    const uint32_t n = std::min(L, std::min(L + 1, len) - 1);
    std::memcpy(buf, text.data(), n);
    buf[n] = '\0';
  }
  return L + 1;
}

KORA_EXPORT uint32_t kora_read_scans_v2(uint64_t handle, int64_t frame_id, uint32_t scan_begin,
                                        uint32_t scan_end, void* buf, uint32_t len) {
  try {
    return toInstance(handle)->readScans(frame_id, scan_begin, scan_end, buf, len,
                                         lumo::io::kora::NormalizationType::Default);
  } catch (const std::exception& e) {
    saveError(e);
    return 0;
  }
}

KORA_EXPORT uint32_t kora_read_scans_internal(uint64_t handle, int64_t frame_id,
                                              uint32_t scan_begin, uint32_t scan_end, void* buf,
                                              uint32_t len) {
  try {
    return toInstance(handle)->readScans(frame_id, scan_begin, scan_end, buf, len,
                                         lumo::io::kora::NormalizationType::None);
  } catch (const std::exception& e) {
    saveError(e);
    return 0;
  }
}

KORA_EXPORT uint32_t kora_index_to_mz(uint64_t handle, int64_t frame_id, const double* in,
                                      double* out, uint32_t cnt) {
  return convertMz(handle, frame_id, in, out, cnt,
                   static_cast<MzOperation>(&ICalibrationTransformator::DIndexToMass));
}

KORA_EXPORT uint32_t kora_mz_to_index(uint64_t handle, int64_t frame_id, const double* in,
                                      double* out, uint32_t cnt) {
  return convertMz(handle, frame_id, in, out, cnt,
                   static_cast<MzOperation>(&ICalibrationTransformator::MassToDIndex));
}

KORA_EXPORT uint32_t kora_scannum_to_oneoverk0(uint64_t handle, int64_t frame_id, const double* in,
                                               double* out, uint32_t cnt) {
  return convertMobility(handle, frame_id, in, out, cnt,
                         static_cast<MobOperation>(&ITransformator::scanNumToOneOverK0));
}

KORA_EXPORT uint32_t kora_oneoverk0_to_scannum(uint64_t handle, int64_t frame_id, const double* in,
                                               double* out, uint32_t cnt) {
  return convertMobility(handle, frame_id, in, out, cnt, &ITransformator::oneOverK0ToScanNum);
}

KORA_EXPORT uint32_t kora_scannum_to_voltage(uint64_t handle, int64_t frame_id, const double* in,
                                             double* out, uint32_t cnt) {
  return convertMobility(handle, frame_id, in, out, cnt,
                         static_cast<MobOperation>(&ITransformator::scanNumToVoltage));
}

KORA_EXPORT uint32_t kora_voltage_to_scannum(uint64_t handle, int64_t frame_id, const double* in,
                                             double* out, uint32_t cnt) {
  return convertMobility(handle, frame_id, in, out, cnt, &ITransformator::voltageToScanNum);
}

KORA_EXPORT uint32_t kora_has_recalibrated_state(uint64_t /*handle*/) { return 0; }

KORA_EXPORT void kora_set_num_threads(uint32_t n) { omp_set_num_threads(static_cast<int>(n)); }

}  // extern "C"
