#include "base/SortText.h"

#include <array>
#include <cstddef>

#include "base/Text.h"

namespace kestrune::base {
namespace {

/// U+00DF to U+00FF; empty for the division sign, which stays.
constexpr std::array<std::string_view, 33> kPlain{"ss", "a", "a", "a", "a", "a", "a", "ae", "c", "e",  "e",
                                                  "e",  "e", "i", "i", "i", "i", "d", "n",  "o", "o",  "o",
                                                  "o",  "o", "",  "o", "u", "u", "u", "u",  "y", "th", "y"};

/// The plain spelling of a small letter of two bytes, or empty.
std::string_view PlainOf(unsigned char lead, unsigned char tail) {
  if (lead == 0xC3 && tail >= 0x9F && tail <= 0xBF) return kPlain.at(static_cast<std::size_t>(tail - 0x9F));
  if (lead != 0xC5) return {};
  switch (tail) {
    case 0x93:
      return "oe";
    case 0xA1:
      return "s";
    case 0xBE:
      return "z";
    default:
      return {};
  }
}

}  // namespace

std::string SortText(std::string_view text) {
  const std::string lower = ToLower(text);
  std::string plain;
  plain.reserve(lower.size());
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const std::string_view letters = i + 1 < lower.size() ? PlainOf(static_cast<unsigned char>(lower[i]),
                                                                    static_cast<unsigned char>(lower[i + 1]))
                                                          : std::string_view();
    if (letters.empty()) {
      plain += lower[i];
    } else {
      plain += letters;
      ++i;
    }
  }
  return plain;
}

}  // namespace kestrune::base
