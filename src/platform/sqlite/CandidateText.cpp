#include "platform/sqlite/CandidateText.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

#include <fmt/format.h>

namespace kestrune::platform {
namespace {

constexpr double kWhole = 1000;

/// Takes a number off the beginning; false if there is none.
bool TakeNumber(std::string_view& text, std::int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

bool TakeSign(std::string_view& text, char sign) {
  if (!text.starts_with(sign)) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

int Thousandths(double chance) {
  if (!(chance > 0)) return 0;
  return chance >= 1 ? static_cast<int>(kWhole) : static_cast<int>(std::lround(chance * kWhole));
}

std::string CandidateText(const std::vector<CutCandidate>& candidates) {
  std::string text;
  for (std::size_t i = 0; i < candidates.size() && i < kMostCandidates; ++i) {
    text += fmt::format("{}{}:{}", i == 0 ? "" : " ", candidates[i].LagMs, Thousandths(candidates[i].Chance));
  }
  return text;
}

std::vector<CutCandidate> ReadCandidates(std::string_view text) {
  std::vector<CutCandidate> candidates;
  while (candidates.size() < kMostCandidates) {
    std::int32_t lag = 0;
    std::int32_t chance = 0;
    if (!TakeNumber(text, lag) || !TakeSign(text, ':') || !TakeNumber(text, chance)) break;
    if (chance < 0 || chance > kWhole) break;
    candidates.push_back({.LagMs = lag, .Chance = chance / kWhole});
    if (!TakeSign(text, ' ')) break;
  }
  return candidates;
}

}  // namespace kestrune::platform
