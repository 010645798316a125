// The sink protocol of the decoders. A sink is callable as
//   void(uint32_t index, uint32_t intensity)
// and takes one peak per call, in stored order. A sink may also take whole
// blocks of peaks with a member
//   void append(const uint32_t* indices, const uint32_t* intensities, size_t n)
// which must be equivalent to n single calls in order. The decoders collect
// up to kPeakBlock peaks in local arrays and hand them over with
// deliverPeaks, which uses append where there is one: the per-peak loops then
// hold no call at all and the block-wise work can use vector instructions.
#ifndef KORA_READER_PEAK_SINK_H_
#define KORA_READER_PEAK_SINK_H_

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace lumo {
namespace io {
namespace kora {
namespace detail {

// Peaks per block handed over at once.
constexpr size_t kPeakBlock = 256;

template <class F, class = void>
struct TakesPeakBlocks : std::false_type {};

template <class F>
struct TakesPeakBlocks<F, std::void_t<decltype(std::declval<F&>().append(
                              std::declval<const uint32_t*>(), std::declval<const uint32_t*>(),
                              std::declval<size_t>()))>> : std::true_type {};

template <class F>
inline void deliverPeaks(F& sink, const uint32_t* indices, const uint32_t* intensities, size_t n) {
  if constexpr (TakesPeakBlocks<F>::value) {
    sink.append(indices, intensities, n);
  } else {
    for (size_t k = 0; k < n; ++k) sink(indices[k], intensities[k]);
  }
}

}  // namespace detail
}  // namespace kora
}  // namespace io
}  // namespace lumo

#endif  // KORA_READER_PEAK_SINK_H_
