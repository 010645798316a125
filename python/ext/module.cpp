// koradata._koradata: the mechanical layer between Python and libkoradata.
// Argument checks, the GIL released around every library call, and results
// handed to numpy without a further copy (arrays own the memory the peaks
// were gathered in). What a user reads lives in the Python package.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "connection.h"
#include "frame_query.h"
#include "scan_layout.h"

namespace py = pybind11;
using namespace pybind11::literals;

namespace koradata_py {
namespace detail {

constexpr const char* kClosedText = "Cannot operate on a closed analysis.";

// A numpy array that owns `data` (given back to the block cache).
template <class T>
py::array_t<T> adopt(MallocArray<T> data, size_t size) {
  T* p = data.release();
  py::capsule owner(p, [](void* q) { releaseBlock(q); });
  return py::array_t<T>({size}, {sizeof(T)}, p, owner);
}

// One open analysis as Python sees it: the connection of single reads and
// the connections of the query workers, pool[0] being the first.
// Thread-safe: a mutex serialises the calls, taken with the GIL released.
class Handle {
 public:
  Handle(std::string directory, bool recalibrated)
      : directory_(std::move(directory)), recalibrated_(recalibrated) {
    py::gil_scoped_release nogil;
    pool_.push_back(std::make_unique<Connection>(directory_, recalibrated_));
  }

  void close() {
    py::gil_scoped_release nogil;
    std::lock_guard<std::mutex> lock(mutex_);
    pool_.clear();
  }

  bool closed() {
    py::gil_scoped_release nogil;
    std::lock_guard<std::mutex> lock(mutex_);
    return pool_.empty();
  }

  void checkOpen() {
    if (closed()) throw LibraryError(kClosedText);
  }

  py::tuple readScans(int64_t frame, uint32_t begin, uint32_t end, bool raw) {
    size_t peaks = 0;
    MallocArray<uint32_t> scan, tof, intensity;
    {
      py::gil_scoped_release nogil;
      std::lock_guard<std::mutex> lock(mutex_);
      Connection& connection = open();
      scratch_.resize(0);
      connection.appendScans(frame, begin, end, raw, scratch_);
      // The library has refused an empty range, so end > begin here.
      const uint32_t scans = end - begin;
      peaks = peakCount(scratch_.size(), scans);
      MallocVector<uint32_t> columns[3];
      for (MallocVector<uint32_t>& c : columns) c.resize(peaks);
      PeakColumns out;
      out.scan = columns[0].data();
      out.tof = columns[1].data();
      out.intensity = columns[2].data();
      scatterScans(scratch_.data(), scans, begin, nullptr, out);
      scan = columns[0].release();
      tof = columns[1].release();
      intensity = columns[2].release();
    }
    return py::make_tuple(adopt(std::move(scan), peaks), adopt(std::move(tof), peaks),
                          adopt(std::move(intensity), peaks));
  }

  py::array_t<double> convert(int kind, int64_t frame,
                              py::array_t<double, py::array::c_style | py::array::forcecast> in) {
    if (kind < 0 || kind > static_cast<int>(Conversion::kVoltageToScan)) {
      throw py::value_error("unknown conversion");
    }
    py::array_t<double> out(in.size());
    const double* from = in.data();
    double* to = out.mutable_data();
    const size_t count = static_cast<size_t>(in.size());
    {
      py::gil_scoped_release nogil;
      std::lock_guard<std::mutex> lock(mutex_);
      open().convert(static_cast<Conversion>(kind), frame, from, to, count);
    }
    return out;
  }

  // Columns by name (frame, scan, tof, intensity, mz, inv_ion_mobility),
  // peaks per frame and the failed frames as (position, text).
  py::dict query(std::vector<int64_t> frames, std::vector<int64_t> numScans,
                 const std::vector<std::string>& columns, bool raw, bool stopOnError,
                 unsigned threads, py::object progress) {
    if (frames.size() != numScans.size()) throw py::value_error("one scan count per frame");
    QueryRequest request;
    request.frames = std::move(frames);
    request.numScans = std::move(numScans);
    request.raw = raw;
    request.stopOnError = stopOnError;
    request.threads = std::max(1u, threads);
    for (const std::string& name : columns) {
      bool* wanted = name == "frame"              ? &request.columns.frame
                     : name == "scan"             ? &request.columns.scan
                     : name == "tof"              ? &request.columns.tof
                     : name == "intensity"        ? &request.columns.intensity
                     : name == "mz"               ? &request.columns.mz
                     : name == "inv_ion_mobility" ? &request.columns.invMobility
                                                  : nullptr;
      if (!wanted) throw py::value_error("unknown column " + name);
      *wanted = true;
    }

    // Declared before the GIL is released, so that it is destroyed holding it.
    std::optional<py::error_already_set> interrupted;
    auto report = [&](size_t done) {
      py::gil_scoped_acquire gil;
      try {
        if (!progress.is_none()) progress(done);
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
        return true;
      } catch (py::error_already_set& e) {
        interrupted.emplace(std::move(e));
        return false;
      }
    };
    QueryResult r;
    {
      py::gil_scoped_release nogil;
      std::lock_guard<std::mutex> lock(mutex_);
      open();
      r = runQuery(request, directory_, recalibrated_, pool_, report);
    }
    if (interrupted) throw std::move(*interrupted);

    py::dict result;
    py::dict out;
    if (r.frame) out["frame"] = adopt(std::move(r.frame), r.rows);
    if (r.scan) out["scan"] = adopt(std::move(r.scan), r.rows);
    if (r.tof) out["tof"] = adopt(std::move(r.tof), r.rows);
    if (r.intensity) out["intensity"] = adopt(std::move(r.intensity), r.rows);
    if (r.mz) out["mz"] = adopt(std::move(r.mz), r.rows);
    if (r.invMobility) out["inv_ion_mobility"] = adopt(std::move(r.invMobility), r.rows);
    result["columns"] = out;
    result["peaks"] = py::array_t<uint64_t>(r.peaks.size(), r.peaks.data()).attr("astype")("int64");
    py::list errors;
    for (const FrameError& e : r.errors) errors.append(py::make_tuple(e.position, e.text));
    result["errors"] = errors;
    return result;
  }

 private:
  // REQUIRES: mutex_ held.
  Connection& open() {
    if (pool_.empty()) throw LibraryError(kClosedText);
    return *pool_.front();
  }

  const std::string directory_;
  const bool recalibrated_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Connection>> pool_;  // empty once closed
  WordBuffer scratch_;                             // of readScans
};

}  // namespace detail
}  // namespace koradata_py

PYBIND11_MODULE(_koradata, m) {
  using koradata_py::detail::Handle;
  m.doc() = "Bindings of libkoradata; use the koradata package instead.";
  py::register_exception<koradata_py::LibraryError>(m, "Error", PyExc_RuntimeError);
  m.attr("have_conversions") = koradata_py::kHaveConversions;
  py::class_<Handle>(m, "Handle")
      .def(py::init<std::string, bool>(), "directory"_a, "recalibrated"_a)
      .def("close", &Handle::close)
      .def_property_readonly("closed", &Handle::closed)
      .def("check_open", &Handle::checkOpen)
      .def("read_scans", &Handle::readScans, "frame"_a, "scan_begin"_a, "scan_end"_a, "raw"_a)
      .def("convert", &Handle::convert, "kind"_a, "frame"_a, "values"_a)
      .def("query", &Handle::query, "frames"_a, "num_scans"_a, "columns"_a, "raw"_a,
           "stop_on_error"_a, "threads"_a, "progress"_a);
}
