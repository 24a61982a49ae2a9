#include "control/HintFollow.h"

#include <algorithm>

#include "control/HintJson.h"

namespace kestrune::control {

std::optional<std::string> HintFollow::NewIn(const control::Json& answer) {
  auto hints = control::HintsFromJson(answer);
  if (!hints) return std::nullopt;
  std::sort(hints->begin(), hints->end(), [](const auto& a, const auto& b) { return a.Number < b.Number; });
  std::string text;
  for (const control::HintReport& hint : *hints) {
    if (hint.Number <= said_) continue;
    said_ = hint.Number;
    text += json_ ? control::ToJson(hint).dump() + '\n' : control::HintsText({hint});
  }
  return text;
}

}  // namespace kestrune::control
