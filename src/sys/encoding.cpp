#include "sys/encoding.h"

#include <utf8.h>

#include <boost/format.hpp>
#include <cassert>
#include <cstring>
#include <iterator>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace sys {

namespace details {
int do_get_codepage(NativeEncodingOption::type option) {
  switch (option) {
    case NativeEncodingOption::ANSI:
      return 0;
    case NativeEncodingOption::OEM:
      return 1;
    case NativeEncodingOption::FILE_APIS_CURRENT:
      // File names are taken in the ANSI code page (UTF-8) on this platform.
      return 0;
  }
  LUMO_THROW_NO_TRACE(std::runtime_error("Invalid native encoding option (ordinal value: " +
                                         std::to_string(static_cast<int>(option)) + ")"));
}
}  // namespace details

std::string utf16_to_native(const char16_t* first, const char16_t* last,
                            NativeEncodingOption::type option) {
  if (first == last) return std::string();
  // Every code page is UTF-8 here; the lookup still checks the option.
  details::do_get_codepage(option);
  std::string result;
  result.reserve(static_cast<std::size_t>(last - first));
  utf8::utf16to8(first, last, std::back_inserter(result));
  return result;
}

std::string utf8_to_native(const char* text, NativeEncodingOption::type option) {
  assert(text != nullptr);
  const char* end = text + std::strlen(text);
  std::u16string wide;
  utf8::utf8to16(text, end, std::back_inserter(wide));
  return utf16_to_native(wide.data(), wide.data() + wide.size(), option);
}

void checkUtf8(const char* text) {
  if (text == nullptr) return;
  const char* const begin = text;
  const char* const end = text + std::strlen(text);
  const char* it = begin;
  while (it != end) {
    const char* const start = it;
    if (utf8::internal::validate_next(it, end) != utf8::internal::UTF8_OK) {
      LUMO_THROW_NO_TRACE(std::runtime_error(
          (boost::format("Invalid UTF-8 code unit at index %1%: %2$#x") % (start - begin) %
           static_cast<unsigned>(static_cast<unsigned char>(*start)))
              .str()));
    }
  }
}

}  // namespace sys
}  // namespace lumo
