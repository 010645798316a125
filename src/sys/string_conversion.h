// Conversion between wide text and the narrow text of a locale, through the
// locale's std::codecvt<wchar_t, char, std::mbstate_t> facet.
//
// Thread-safety: thread-safe (no state; the facet is only read).
#ifndef KORA_SYS_STRING_CONVERSION_H_
#define KORA_SYS_STRING_CONVERSION_H_

#include <locale>
#include <string>

namespace lumo {
namespace sys {

// Narrows [first, last) with the codecvt facet of `locale`. An empty range
// gives an empty string; a facet without conversion copies each unit by value.
// Throws std::range_error "bad conversion" when the facet reports an error or
// makes no progress within 32 bytes of output.
std::string do_narrow(const wchar_t* first, const wchar_t* last, const std::locale& locale);
std::string do_narrow(const std::wstring& text);  // default std::locale

// Widens [first, last) with the codecvt facet of `locale`; the same rules.
std::wstring do_widen(const char* first, const char* last, const std::locale& locale);
std::wstring do_widen(const std::string& text);  // default std::locale

}  // namespace sys
}  // namespace lumo

#endif  // KORA_SYS_STRING_CONVERSION_H_
