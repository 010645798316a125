// The extension's only contact with libkoradata: an open handle that is
// replaced by a fresh one after any failed call, and the growable word buffer
// that the read functions fill. Everything here uses the public C interface
// alone and never touches Python, so it runs with the GIL released.
#ifndef KORA_PYTHON_EXT_CONNECTION_H_
#define KORA_PYTHON_EXT_CONNECTION_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "malloc_vector.h"

namespace koradata_py {

// A failure reported by the library, carrying its text unchanged; becomes
// koradata.Error in Python.
class LibraryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The calling thread's last error text of the library, whole.
std::string lastErrorText();

// The library's read layout, filled by Connection::readScans.
using WordBuffer = MallocVector<uint32_t>;

// The six batch conversions of the library, in the order of its interface.
enum class Conversion {
  kIndexToMz,
  kMzToIndex,
  kScanToInvMobility,
  kInvMobilityToScan,
  kScanToVoltage,
  kVoltageToScan,
};

// Whether this build of the extension can call the library's conversions.
extern const bool kHaveConversions;

// One handle of the library on an analysis directory.
//
// A handle whose file stream has failed keeps failing, so after any failed
// call the handle is closed and the analysis opened again before the error
// is thrown: the next call starts clean. If that reopening fails, every
// later call throws the text of that failure.
//
// Thread-compatible: one thread at a time, as the handle itself.
class Connection {
 public:
  // Opens `directory`; throws LibraryError with the library's text.
  Connection(std::string directory, bool recalibrated);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Appends the read of scans [begin, end) of `frame` to `out`, in the
  // library's layout: the end - begin peak counts, then per scan its indices
  // and intensities. Intensities as stored when `raw`, else normalised by the
  // analysis's default. `out` is grown (keeping its words) only when the
  // library asks for more than its spare capacity. Throws LibraryError, and
  // then `out` holds the words it had.
  void appendScans(int64_t frame, uint32_t begin, uint32_t end, bool raw, WordBuffer& out);

  // Converts `count` values of `frame`; `in` may equal `out`. Throws
  // LibraryError (also when this build has no conversions).
  void convert(Conversion conversion, int64_t frame, const double* in, double* out, size_t count);

 private:
  // Takes the calling thread's error text, reopens and throws it.
  [[noreturn]] void fail();
  void requireOpen() const;

  std::string directory_;
  bool recalibrated_;
  uint64_t handle_ = 0;
  std::string lostReason_;  // why handle_ is 0
};

// Calls the library's conversion; false on failure, with the thread's error
// text set by the library. Throws LibraryError when the build has none.
bool callConversion(uint64_t handle, Conversion conversion, int64_t frame, const double* in,
                    double* out, uint32_t count);

}  // namespace koradata_py

#endif  // KORA_PYTHON_EXT_CONNECTION_H_
