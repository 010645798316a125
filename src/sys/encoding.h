// Text conversion between UTF-8, UTF-16 and the native narrow encoding, and the
// validation of UTF-8 text at the library's boundary.
//
// The native narrow encoding of this platform is UTF-8: every code page option
// maps to it, and UTF-16 text is char16_t.
//
// Thread-safety: thread-safe (no state).
#ifndef KORA_SYS_ENCODING_H_
#define KORA_SYS_ENCODING_H_

#include <string>

namespace lumo {
namespace sys {

// Which native narrow encoding a conversion targets.
struct NativeEncodingOption {
  enum type : int {
    ANSI = 0,              // the system's ANSI code page
    OEM = 1,               // the system's OEM code page
    FILE_APIS_CURRENT = 2  // the code page the file functions currently use
  };
};

namespace details {
// The code page number of `option`: 0 for ANSI, 1 for OEM; the file functions
// use the ANSI code page here, so option 2 gives 0.
// Throws std::runtime_error "Invalid native encoding option (ordinal value: N)"
// for any other option.
int do_get_codepage(NativeEncodingOption::type option);
}  // namespace details

// Converts the UTF-16 range [first, last) to the native narrow encoding.
// An empty range gives an empty string. Throws a utf8::exception (with
// utfcpp's default text) on invalid UTF-16, std::runtime_error on an invalid
// option.
std::string utf16_to_native(const char16_t* first, const char16_t* last,
                            NativeEncodingOption::type option);

// Converts zero-terminated UTF-8 `text` to the native narrow encoding.
// utfcpp's exceptions on invalid UTF-8 pass through.
// REQUIRES: text != nullptr.
std::string utf8_to_native(const char* text, NativeEncodingOption::type option);

// Validates zero-terminated UTF-8 `text`; a null pointer is accepted.
// Throws std::runtime_error "Invalid UTF-8 code unit at index <i>: <0xNN>" at
// the first invalid sequence, with the byte index of its start and the value
// of that byte.
void checkUtf8(const char* text);

}  // namespace sys
}  // namespace lumo

#endif  // KORA_SYS_ENCODING_H_
