// The batch and range loops of the transformators, and the functors that
// bind a model's scalar conversion into them.
//
// A functor holds a pointer to the concrete model T and calls T's scalar
// function by its qualified name, so the loops bind it without virtual
// dispatch and can inline it.
//
// Parallelism: a loop runs on OpenMP threads (dynamic schedule, chunks of
// one element) when the caller is not inside a parallel region already and
// the loop is long enough: kParallelBatchThreshold elements for a batch,
// kParallelRangeThreshold for a range. Otherwise it runs serially in index
// order and lets the first exception out unchanged. In a parallel loop an
// element that throws is dropped, the thread skips its remaining elements,
// and the loop ends with std::runtime_error (kTransformationFailedText).
#ifndef KORA_CALIBRATION_CORE_TRANSFORMATION_FUNCTORS_H_
#define KORA_CALIBRATION_CORE_TRANSFORMATION_FUNCTORS_H_

#include <omp.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace lumo {
namespace calibration {
namespace Functors {

const std::size_t kParallelBatchThreshold = 100;
const std::int32_t kParallelRangeThreshold = 8;

extern const char* const kTransformationFailedText;

// Throw std::runtime_error(kTransformationFailedText), with a stack trace.
[[noreturn]] void throwTransformationFailed();
// Throw the std::invalid_argument of RangeTransformation for last < first.
[[noreturn]] void throwInvalidRange(std::int32_t first, std::int32_t last);

template <class Functor, class T>
void BatchTransformation(Functor functor, std::vector<T>& values);

// Fills destination[i] = functor(source[i]) for every i of `source`.
// `destination` is cleared and resized (zero-filled) first, so an empty
// `source` gives an empty `destination` and starts no thread. After a failed
// parallel loop the elements not computed keep 0. `source` and
// `destination` may be the same vector.
template <class Functor, class S, class T>
void BatchTransformation(Functor functor, const std::vector<S>& source,
                         std::vector<T>& destination) {
  if constexpr (std::is_same<S, T>::value) {
    if (&source == &destination) {
      BatchTransformation(functor, destination);
      return;
    }
  }
  destination.clear();
  destination.resize(source.size());
  if (source.empty()) return;
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(source.size());
  const S* in = source.data();
  T* out = destination.data();
  if (!omp_in_parallel() && source.size() >= kParallelBatchThreshold) {
    bool failed = false;
#pragma omp parallel for schedule(dynamic, 1) reduction(|| : failed)
    for (std::ptrdiff_t i = 0; i < n; ++i) {
      if (failed) continue;
      try {
        out[i] = functor(in[i]);
      } catch (...) {
        failed = true;
      }
    }
    if (failed) throwTransformationFailed();
  } else {
    for (std::ptrdiff_t i = 0; i < n; ++i) out[i] = functor(in[i]);
  }
}

// In place: values[i] = functor(values[i]). After a failed parallel loop the
// elements not computed keep their old values.
template <class Functor, class T>
void BatchTransformation(Functor functor, std::vector<T>& values) {
  if (values.empty()) return;
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(values.size());
  T* v = values.data();
  if (!omp_in_parallel() && values.size() >= kParallelBatchThreshold) {
    bool failed = false;
#pragma omp parallel for schedule(dynamic, 1) reduction(|| : failed)
    for (std::ptrdiff_t i = 0; i < n; ++i) {
      if (failed) continue;
      try {
        v[i] = functor(v[i]);
      } catch (...) {
        failed = true;
      }
    }
    if (failed) throwTransformationFailed();
  } else {
    for (std::ptrdiff_t i = 0; i < n; ++i) v[i] = functor(v[i]);
  }
}

// destination = functor(first), ..., functor(last).
// Throws std::invalid_argument when last < first.
template <class Functor, class T>
void RangeTransformation(Functor functor, std::int32_t first, std::int32_t last,
                         std::vector<T>& destination) {
  if (last < first) throwInvalidRange(first, last);
  const std::int32_t n = last - first + 1;
  if (!omp_in_parallel() && n >= kParallelRangeThreshold) {
    destination.resize(n);
    T* out = destination.data();
    bool failed = false;
#pragma omp parallel for schedule(dynamic, 1) reduction(|| : failed)
    for (std::int32_t i = 0; i < n; ++i) {
      if (failed) continue;
      try {
        out[i] = functor(first + i);
      } catch (...) {
        failed = true;
      }
    }
    if (failed) throwTransformationFailed();
  } else {
    destination.clear();
    destination.reserve(n);
    for (std::int64_t i = first; i <= last; ++i) {
      destination.push_back(functor(static_cast<std::int32_t>(i)));
    }
  }
}

#define KORA_DEFINE_TRANSFORM_FUNCTOR(Name, Function, In, Out)                \
  template <class Model>                                                      \
  class Name {                                                                \
   public:                                                                    \
    explicit Name(const Model* model) : model_(model) {}                      \
    Out operator()(In value) const { return model_->Model::Function(value); } \
                                                                              \
   private:                                                                   \
    const Model* model_;                                                      \
  };

KORA_DEFINE_TRANSFORM_FUNCTOR(RawMassTransformFunctor, RawToMass, double, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(MassRawTransformFunctor, MassToRaw, double, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(IndexMassTransformFunctor, IndexToMass, std::int32_t, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(MassIndexTransformFunctor, MassToIndex, double, std::int32_t)
KORA_DEFINE_TRANSFORM_FUNCTOR(DIndexMassTransformFunctor, DIndexToMass, double, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(MassDIndexTransformFunctor, MassToDIndex, double, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(IndexRawTransformFunctor, IndexToRaw, std::int32_t, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(RawIndexTransformFunctor, RawToIndex, double, std::int32_t)
KORA_DEFINE_TRANSFORM_FUNCTOR(DIndexRawTransformFunctor, DIndexToRaw, double, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(RawDIndexTransformFunctor, RawToDIndex, double, double)
KORA_DEFINE_TRANSFORM_FUNCTOR(ApparentMassToMassTransformFunctor, ApparentMassToMass, double,
                              double)

#undef KORA_DEFINE_TRANSFORM_FUNCTOR

}  // namespace Functors
}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_TRANSFORMATION_FUNCTORS_H_
