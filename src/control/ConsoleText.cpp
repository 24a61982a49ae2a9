#include "control/ConsoleText.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/Text.h"
#include "control/Utf8.h"

namespace kestrune::control {
namespace {

constexpr std::size_t kLongestQuotation = 40;

struct Range {
  char32_t First;
  char32_t Last;
};

constexpr std::array kTurning{Range{0x2028, 0x202E}, Range{0x2066, 0x2069}, Range{0x200E, 0x200F}};
constexpr std::array kCombining{Range{0x0300, 0x036F}, Range{0x1AB0, 0x1AFF}, Range{0x1DC0, 0x1DFF},
                                Range{0x200B, 0x200D}, Range{0x20D0, 0x20FF}, Range{0xFE00, 0xFE0F},
                                Range{0xFE20, 0xFE2F}};
constexpr std::array kWide{Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},  Range{0x3041, 0xA4CF},
                           Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},  Range{0xFE30, 0xFE6F},
                           Range{0xFF00, 0xFF60},   Range{0xFFE0, 0xFFE6},  Range{0x1F300, 0x1F64F},
                           Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD}};

template <typename Ranges>
bool Within(const Ranges& ranges, char32_t value) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [value](const Range& range) { return value >= range.First && value <= range.Last; });
}

std::size_t WidthOf(char32_t value) {
  if (Within(kCombining, value)) return 0;
  return Within(kWide, value) ? 2 : 1;
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  printable.reserve(text.size());
  while (!text.empty()) {
    const std::optional<CodePoint> first = FirstCodePoint(text);
    const std::size_t bytes = first ? first->Bytes : 1;
    if (!first || IsControl(first->Value) || Within(kTurning, first->Value)) {
      printable += "\xEF\xBF\xBD";
    } else {
      printable += text.substr(0, bytes);
    }
    text.remove_prefix(bytes);
  }
  return printable;
}

std::string Quoted(std::string_view text) {
  return '"' + Printable(base::TruncateUtf8(text, kLongestQuotation)) + '"';
}

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const std::optional<CodePoint> first = FirstCodePoint(text);
    width += first ? WidthOf(first->Value) : 1;
    text.remove_prefix(first ? first->Bytes : 1);
  }
  return width;
}

std::string Columns(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const std::vector<std::string>& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(Printable(row[i])));
    }
  }
  std::string text;
  for (const std::vector<std::string>& row : rows) {
    std::size_t blanks = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string cell = Printable(row[i]);
      if (!cell.empty()) {
        text.append(blanks, ' ');
        text += cell;
        blanks = 0;
      }
      blanks += widths[i] - DisplayWidth(cell) + 2;
    }
    text += '\n';
  }
  return text;
}

}  // namespace kestrune::control
