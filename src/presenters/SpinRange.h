#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::presenters {

/// The range of a spin control. It limits the control only: the text box beside it takes any text.
struct SpinRange {
  std::int32_t Least = 0;
  std::int32_t Most = 0;
  std::int32_t Step = 1;

  bool operator==(const SpinRange&) const = default;
};

/// The text after one step up (1) or down (-1) from the number that the text begins with, within the range.
[[nodiscard]] std::string Stepped(std::string_view text, const SpinRange& range, int direction);

}  // namespace kestrune::presenters
