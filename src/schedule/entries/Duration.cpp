#include "schedule/entries/Duration.h"

#include "base/Numbers.h"

namespace kestrune::schedule {

std::optional<Duration> ParseDuration(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const auto hours = base::ToInt16(text.substr(0, colon));
  const auto minutes = base::ToInt16(text.substr(colon + 1));
  if (!hours || !minutes) return std::nullopt;
  return Duration{.Hours = *hours, .Minutes = *minutes};
}

std::string DurationText(const Duration& duration) {
  return base::SixtiesText(duration.InMinutes());
}

}  // namespace kestrune::schedule
