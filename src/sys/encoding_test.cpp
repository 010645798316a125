#include "sys/encoding.h"

#include <gtest/gtest.h>
#include <utf8.h>

#include <stdexcept>
#include <string>

namespace lumo {
namespace sys {
namespace {

std::string checkUtf8Error(const char* text) {
  try {
    checkUtf8(text);
  } catch (const std::runtime_error& e) {
    return e.what();
  }
  return "no error";
}

TEST(CheckUtf8, AcceptsValidTextAndNull) {
  EXPECT_NO_THROW(checkUtf8(nullptr));
  EXPECT_NO_THROW(checkUtf8(""));
  EXPECT_NO_THROW(checkUtf8("/data/run\xc3\xa9/\xe2\x82\xac\xf0\x9f\x98\x80"));
}

TEST(CheckUtf8, ReportsByteIndexAndValueOfFirstBadSequence) {
  EXPECT_EQ("Invalid UTF-8 code unit at index 2: 0xff", checkUtf8Error("ab\xff"));
  EXPECT_EQ("Invalid UTF-8 code unit at index 0: 0x80", checkUtf8Error("\x80z"));
  // Overlong encoding of '/'.
  EXPECT_EQ("Invalid UTF-8 code unit at index 1: 0xc0", checkUtf8Error("a\xc0\xaf"));
}

TEST(CheckUtf8, TruncatedSequenceAtEndFailsAtItsFirstByte) {
  EXPECT_EQ("Invalid UTF-8 code unit at index 3: 0xe2", checkUtf8Error("abc\xe2\x82"));
  EXPECT_EQ("Invalid UTF-8 code unit at index 2: 0xf0", checkUtf8Error("\xc3\xa9\xf0\x9f\x98"));
}

TEST(NativeEncoding, CodepageOptions) {
  EXPECT_EQ(0, details::do_get_codepage(NativeEncodingOption::ANSI));
  EXPECT_EQ(1, details::do_get_codepage(NativeEncodingOption::OEM));
  EXPECT_EQ(0, details::do_get_codepage(NativeEncodingOption::FILE_APIS_CURRENT));
  try {
    details::do_get_codepage(static_cast<NativeEncodingOption::type>(3));
    FAIL() << "no exception";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("Invalid native encoding option (ordinal value: 3)", e.what());
  }
  try {
    details::do_get_codepage(static_cast<NativeEncodingOption::type>(-1));
    FAIL() << "no exception";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ("Invalid native encoding option (ordinal value: -1)", e.what());
  }
}

TEST(NativeEncoding, Utf16ToNativeIsUtf8) {
  const std::u16string text = u"m/z \u00e9\u20ac\U0001F600";
  EXPECT_EQ("m/z \xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80",
            utf16_to_native(text.data(), text.data() + text.size(),
                            NativeEncodingOption::FILE_APIS_CURRENT));
}

TEST(NativeEncoding, EmptyRangeNeedsNoValidOption) {
  const char16_t* none = u"";
  EXPECT_EQ("", utf16_to_native(none, none, static_cast<NativeEncodingOption::type>(9)));
}

TEST(NativeEncoding, InvalidOptionOnNonEmptyRangeFails) {
  const std::u16string text = u"x";
  EXPECT_THROW(
      utf16_to_native(text.data(), text.data() + 1, static_cast<NativeEncodingOption::type>(9)),
      std::runtime_error);
}

TEST(NativeEncoding, LoneSurrogateIsUtfcppFailure) {
  const char16_t bad[] = {u'a', static_cast<char16_t>(0xD800)};
  EXPECT_THROW(utf16_to_native(bad, bad + 2, NativeEncodingOption::ANSI), utf8::exception);
  const char16_t lowFirst[] = {static_cast<char16_t>(0xDC00), u'a'};
  EXPECT_THROW(utf16_to_native(lowFirst, lowFirst + 2, NativeEncodingOption::ANSI),
               utf8::exception);
}

TEST(NativeEncoding, Utf8ToNativeRoundTripsAndRejectsInvalid) {
  EXPECT_EQ("/tmp/\xc3\xa9t\xc3\xa9",
            utf8_to_native("/tmp/\xc3\xa9t\xc3\xa9", NativeEncodingOption::ANSI));
  EXPECT_EQ("", utf8_to_native("", NativeEncodingOption::ANSI));
  EXPECT_THROW(utf8_to_native("ab\xff", NativeEncodingOption::ANSI), utf8::invalid_utf8);
}

}  // namespace
}  // namespace sys
}  // namespace lumo
