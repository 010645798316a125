#include "sys/string_conversion.h"

#include <gtest/gtest.h>

#include <locale>
#include <stdexcept>
#include <string>

namespace lumo {
namespace sys {
namespace {

std::locale utf8Locale() {
  try {
    return std::locale("C.UTF-8");
  } catch (const std::runtime_error&) {
    return std::locale("en_US.UTF-8");
  }
}

TEST(StringConversion, EmptyRanges) {
  EXPECT_EQ("", do_narrow(std::wstring()));
  EXPECT_EQ(L"", do_widen(std::string()));
}

TEST(StringConversion, Utf8LocaleRoundTripBeyondOneBuffer) {
  const std::locale loc = utf8Locale();
  // Longer than the 32-unit buffer, with 2-, 3- and 4-byte sequences.
  std::wstring wide;
  for (int i = 0; i < 20; ++i) wide += L"a\u00e9\u20ac\U0001F600";
  const std::string narrow = do_narrow(wide.data(), wide.data() + wide.size(), loc);
  std::string expected;
  for (int i = 0; i < 20; ++i) expected += "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";
  EXPECT_EQ(expected, narrow);
  EXPECT_EQ(wide, do_widen(narrow.data(), narrow.data() + narrow.size(), loc));
}

TEST(StringConversion, ClassicLocaleCopiesAscii) {
  const std::wstring wide = L"frame 17/scan 3";
  EXPECT_EQ("frame 17/scan 3",
            do_narrow(wide.data(), wide.data() + wide.size(), std::locale::classic()));
}

TEST(StringConversion, UnrepresentableCharacterIsBadConversion) {
  const std::wstring wide = L"\u20ac";
  try {
    do_narrow(wide.data(), wide.data() + wide.size(), std::locale::classic());
    FAIL() << "no exception";
  } catch (const std::range_error& e) {
    EXPECT_STREQ("bad conversion", e.what());
  }
  const std::string bad = "ab\xff";
  EXPECT_THROW(do_widen(bad.data(), bad.data() + bad.size(), utf8Locale()), std::range_error);
}

}  // namespace
}  // namespace sys
}  // namespace lumo
