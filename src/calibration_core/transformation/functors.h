// The batch and range loops of the transformators, and the functors that
// bind a model's scalar conversion into them.
//
// A functor holds a pointer to the concrete model T and calls T's scalar
// function by its qualified name, so the loops bind it without virtual
// dispatch and can inline it.
//
// Parallelism: a loop runs on OpenMP threads when the caller is not inside a
// parallel region already and the loop is long enough:
// kParallelBatchThreshold elements for a batch, kParallelRangeThreshold for
// a range. Otherwise it runs serially in index order and lets the first
// exception out unchanged. The parallel loop hands out blocks of up to
// kParallelBlockSize consecutive elements, one block per chunk of a dynamic
// schedule: on long loops a shared counter per element would cost more than
// the conversion itself. An element that throws is dropped, its thread skips its
// remaining elements, and the loop ends with std::runtime_error
// (kTransformationFailedText).
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
// The largest block of consecutive elements handed out as one chunk.
const std::ptrdiff_t kParallelBlockSize = 1024;

extern const char* const kTransformationFailedText;

// Throw std::runtime_error(kTransformationFailedText), with a stack trace.
[[noreturn]] void throwTransformationFailed();
// Throw the std::invalid_argument of RangeTransformation for last < first.
[[noreturn]] void throwInvalidRange(std::int32_t first, std::int32_t last);

template <class Functor, class T>
void BatchTransformation(Functor functor, std::vector<T>& values);

namespace detail {

// The block size of a parallel loop over n elements: about four blocks per
// thread, at least 1 and at most `largest` elements.
inline std::ptrdiff_t parallelBlockSize(std::ptrdiff_t n,
                                        std::ptrdiff_t largest = kParallelBlockSize) {
  const std::ptrdiff_t quarterShare = n / (4 * static_cast<std::ptrdiff_t>(omp_get_max_threads()));
  if (quarterShare < 1) return 1;
  return quarterShare < largest ? quarterShare : largest;
}

// Runs run(i, end) over the blocks [i, end) of `blockSize` elements of
// [0, n) on the OpenMP threads; run advances i past every element it
// completes, so that after a throw i is the failing element. skip(begin,
// end) gets the elements a thread leaves out after a failure of its own: the
// rest of the failing block and every later block it takes. Throws
// std::runtime_error (kTransformationFailedText) when any element threw.
// REQUIRES: not inside a parallel region; blockSize >= 1.
template <class Run, class Skip>
void parallelLoop(std::ptrdiff_t n, std::ptrdiff_t blockSize, const Run& run, const Skip& skip) {
  const std::ptrdiff_t blocks = (n + blockSize - 1) / blockSize;
  bool failed = false;
#pragma omp parallel for schedule(dynamic, 1) reduction(|| : failed)
  for (std::ptrdiff_t b = 0; b < blocks; ++b) {
    const std::ptrdiff_t begin = b * blockSize;
    const std::ptrdiff_t end = n - begin < blockSize ? n : begin + blockSize;
    std::ptrdiff_t i = begin;
    if (!failed) {
      try {
        run(i, end);
      } catch (...) {
        failed = true;
      }
    }
    if (i < end) skip(i, end);
  }
  if (failed) throwTransformationFailed();
}

// parallelLoop in blocks of parallelBlockSize(n).
template <class Run, class Skip>
void parallelLoop(std::ptrdiff_t n, const Run& run, const Skip& skip) {
  parallelLoop(n, parallelBlockSize(n), run, skip);
}

}  // namespace detail

template <class Functor, class T>
void BatchTransformation(Functor functor, std::vector<T>& values);

// out[i] = functor(in[i]) for i from `i` up to `end`, advancing `i`. The
// pointers do not alias each other nor the functor's model, so the model's
// numbers stay in registers over the loop.
template <class Functor, class S, class T>
inline void runElements(const Functor& functor, const S* __restrict in, T* __restrict out,
                        std::ptrdiff_t& i, std::ptrdiff_t end) {
  for (; i < end; ++i) out[i] = functor(in[i]);
}

// Fills destination[i] = functor(source[i]) for every i of `source`;
// `destination` gets the size of `source`, so an empty `source` gives an
// empty `destination` and starts no thread. After a failure every element
// not computed is T() (0): the serial loop stops at the failing element, a
// parallel thread at its own first failure. `source` and `destination` may
// be the same vector.
template <class Functor, class S, class T>
void BatchTransformation(Functor functor, const std::vector<S>& source,
                         std::vector<T>& destination) {
  if constexpr (std::is_same<S, T>::value) {
    if (&source == &destination) {
      BatchTransformation(functor, destination);
      return;
    }
  }
  // Every element is written below, either with its value or with T() on
  // failure, so the old content needs no clearing.
  destination.resize(source.size());
  if (source.empty()) return;
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(source.size());
  const S* in = source.data();
  T* out = destination.data();
  auto zero = [out](std::ptrdiff_t begin, std::ptrdiff_t end) {
    for (std::ptrdiff_t i = begin; i < end; ++i) out[i] = T();
  };
  if (!omp_in_parallel() && source.size() >= kParallelBatchThreshold) {
    detail::parallelLoop(
        n, [&](std::ptrdiff_t& i, std::ptrdiff_t end) { runElements(functor, in, out, i, end); },
        zero);
  } else {
    std::ptrdiff_t i = 0;
    try {
      runElements(functor, in, out, i, n);
    } catch (...) {
      zero(i, n);
      throw;
    }
  }
}

// In place: values[i] = functor(values[i]). After a failure the elements not
// computed keep their old values.
template <class Functor, class T>
void BatchTransformation(Functor functor, std::vector<T>& values) {
  if (values.empty()) return;
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(values.size());
  T* v = values.data();
  if (!omp_in_parallel() && values.size() >= kParallelBatchThreshold) {
    detail::parallelLoop(
        n,
        [&](std::ptrdiff_t& i, std::ptrdiff_t end) {
          for (; i < end; ++i) v[i] = functor(v[i]);
        },
        [](std::ptrdiff_t, std::ptrdiff_t) {});
  } else {
    for (std::ptrdiff_t i = 0; i < n; ++i) v[i] = functor(v[i]);
  }
}

// destination = functor(first), ..., functor(last).
// Throws std::invalid_argument when last < first. After a failure of the
// parallel loop the elements not computed keep what the resized destination
// held; the serial loop leaves the elements computed before the failure.
template <class Functor, class T>
void RangeTransformation(Functor functor, std::int32_t first, std::int32_t last,
                         std::vector<T>& destination) {
  if (last < first) throwInvalidRange(first, last);
  const std::int32_t n = last - first + 1;
  if (!omp_in_parallel() && n >= kParallelRangeThreshold) {
    destination.resize(n);
    T* out = destination.data();
    detail::parallelLoop(
        n,
        [&](std::ptrdiff_t& i, std::ptrdiff_t end) {
          for (; i < end; ++i) out[i] = functor(static_cast<std::int32_t>(first + i));
        },
        [](std::ptrdiff_t, std::ptrdiff_t) {});
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
