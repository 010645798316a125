#include "sys/string_conversion.h"

#include <cwchar>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace sys {
namespace {

using Codecvt = std::codecvt<wchar_t, char, std::mbstate_t>;

// Output goes through a stack buffer of kBufferSize units, of which kStep are
// offered at first; each call that yields nothing offers kStep more, and
// reaching kBufferSize is a failure.
constexpr std::size_t kBufferSize = 32;
constexpr std::size_t kStep = 8;

// One algorithm for both directions. `Convert` calls the facet's out or in.
template <class In, class Out, class Convert>
std::basic_string<Out> convert(const In* first, const In* last, Convert convertStep) {
  std::basic_string<Out> result;
  if (first == last) return result;
  std::mbstate_t state = std::mbstate_t();
  Out buffer[kBufferSize];
  std::size_t offered = kStep;
  const In* from = first;
  while (from != last) {
    const In* fromNext = from;
    Out* toNext = buffer;
    const std::codecvt_base::result r =
        convertStep(state, from, last, fromNext, buffer, buffer + offered, toNext);
    if (r == std::codecvt_base::error) {
      LUMO_THROW_NO_TRACE(std::range_error("bad conversion"));
    }
    if (r == std::codecvt_base::noconv) {
      for (; from != last; ++from) result.push_back(static_cast<Out>(*from));
      break;
    }
    if (toNext != buffer) {
      result.append(buffer, toNext);
    } else {
      offered += kStep;
      if (offered >= kBufferSize) LUMO_THROW_NO_TRACE(std::range_error("bad conversion"));
    }
    from = fromNext;
  }
  return result;
}

}  // namespace

std::string do_narrow(const wchar_t* first, const wchar_t* last, const std::locale& locale) {
  const Codecvt& facet = std::use_facet<Codecvt>(locale);
  return convert<wchar_t, char>(
      first, last,
      [&facet](std::mbstate_t& state, const wchar_t* from, const wchar_t* fromEnd,
               const wchar_t*& fromNext, char* to, char* toEnd, char*& toNext) {
        return facet.out(state, from, fromEnd, fromNext, to, toEnd, toNext);
      });
}

std::string do_narrow(const std::wstring& text) {
  return do_narrow(text.data(), text.data() + text.size(), std::locale());
}

std::wstring do_widen(const char* first, const char* last, const std::locale& locale) {
  const Codecvt& facet = std::use_facet<Codecvt>(locale);
  return convert<char, wchar_t>(
      first, last,
      [&facet](std::mbstate_t& state, const char* from, const char* fromEnd, const char*& fromNext,
               wchar_t* to, wchar_t* toEnd, wchar_t*& toNext) {
        return facet.in(state, from, fromEnd, fromNext, to, toEnd, toNext);
      });
}

std::wstring do_widen(const std::string& text) {
  return do_widen(text.data(), text.data() + text.size(), std::locale());
}

}  // namespace sys
}  // namespace lumo
