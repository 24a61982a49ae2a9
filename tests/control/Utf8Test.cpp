#include <string_view>

#include <gtest/gtest.h>

#include "control/Utf8.h"

namespace kestrune::control {
namespace {

using namespace std::string_view_literals;

struct FirstCase {
  std::string_view Text;
  char32_t Value;
  std::size_t Bytes;  ///< 0: not UTF-8
};

TEST(Utf8, FirstCodePointTable) {
  const FirstCase kCases[] = {
      {"a", U'a', 1},
      {"\0"sv, 0, 1},
      {"\x7F", 0x7F, 1},
      {"\xC2\x80", 0x80, 2},
      {"\xC3\xA9x", 0xE9, 2},
      {"\xDF\xBF", 0x7FF, 2},
      {"\xE0\xA0\x80", 0x800, 3},
      {"\xEF\xBF\xBF", 0xFFFF, 3},
      {"\xF0\x90\x80\x80", 0x10000, 4},
      {"\xF4\x8F\xBF\xBF", 0x10FFFF, 4},
      {"", 0, 0},
      {"\x80", 0, 0},              // continues nothing
      {"\xC0\x80", 0, 0},          // overlong
      {"\xC1\xBF", 0, 0},          // overlong
      {"\xE0\x9F\xBF", 0, 0},      // overlong
      {"\xF0\x8F\xBF\xBF", 0, 0},  // overlong
      {"\xED\xA0\x80", 0, 0},      // surrogate
      {"\xED\xBF\xBF", 0, 0},      // surrogate
      {"\xF4\x90\x80\x80", 0, 0},  // too large
      {"\xF5\x80\x80\x80", 0, 0},
      {"\xFF", 0, 0},
      {"\xC3", 0, 0},          // cut short
      {"\xE2\x82", 0, 0},      // cut short
      {"\xF0\x9F\x98", 0, 0},  // cut short
      {"\xC3(", 0, 0},
  };
  for (const FirstCase& one : kCases) {
    const auto first = FirstCodePoint(one.Text);
    ASSERT_EQ(first.has_value(), one.Bytes != 0) << ::testing::PrintToString(one.Text);
    if (!first) continue;
    EXPECT_EQ(first->Value, one.Value);
    EXPECT_EQ(first->Bytes, one.Bytes);
  }
}

TEST(Utf8, OneWrongByteSpoilsAText) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("Beyonc\xC3\xA9 \xF0\x9F\x8E\xB5"));
  EXPECT_FALSE(IsUtf8("Beyonc\xE9"));
}

TEST(Utf8, ControlCharactersAreC0DelAndC1) {
  EXPECT_TRUE(IsControl(0));
  EXPECT_TRUE(IsControl(0x1F));
  EXPECT_FALSE(IsControl(0x20));
  EXPECT_FALSE(IsControl(0x7E));
  EXPECT_TRUE(IsControl(0x7F));
  EXPECT_TRUE(IsControl(0x9F));
  EXPECT_FALSE(IsControl(0xA0));
}

}  // namespace
}  // namespace kestrune::control
