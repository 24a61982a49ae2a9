#include "control/ScheduleWords.h"

#include <algorithm>
#include <charconv>

#include "base/DatePattern.h"
#include "base/Text.h"
#include "schedule/entries/SchedulerMoment.h"
#include "schedule/entries/SchedulerSettings.h"

namespace kestrune::control {
namespace {

using base::DateValue;

constexpr int kMinutesAnHour = 60;
constexpr int kLongestMinutes = 48 * kMinutesAnHour - 1;
constexpr std::int64_t kSecondsADay = 24LL * 60 * 60;

std::optional<int> Digits(std::string_view text) {
  int number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < 0) return std::nullopt;
  return number;
}

bool IsOn(std::string_view text) {
  return text == "on";
}

}  // namespace

std::optional<DateValue> ReadOn(std::string_view text) {
  for (int day = 1; day <= schedule::kEveryDayCode; ++day) {
    const DateValue coded = schedule::CodedDay(day);
    if (base::EqualsNoCase(base::Trim(text), schedule::CodedCaption(coded))) return coded;
  }
  if (text.find(':') != std::string_view::npos) return std::nullopt;
  const std::optional<DateValue> date = base::ParseDate(text);
  // A day of that month written out means that day, which has long passed, and not the code.
  if (date && *date >= schedule::CodedDay(1) && *date <= schedule::CodedDay(schedule::kEveryDayCode))
    return std::nullopt;
  return date;
}

std::optional<int> ReadAt(std::string_view text) {
  if (text.find('-') != std::string_view::npos || text.find(',') != std::string_view::npos)
    return std::nullopt;
  const std::optional<DateValue> time = base::ParseDate(text);
  if (!time || time->Seconds() < 0 || time->Seconds() >= kSecondsADay || time->Second() != 0)
    return std::nullopt;
  return static_cast<int>(time->Seconds() / 60);
}

std::optional<int> ReadFor(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon > 2 || text.size() != colon + 3) return std::nullopt;
  const auto hours = Digits(text.substr(0, colon));
  const auto minutes = Digits(text.substr(colon + 1));
  if (!hours || !minutes || *minutes >= kMinutesAnHour) return std::nullopt;
  const int length = *hours * kMinutesAnHour + *minutes;
  if (length < 1 || length > kLongestMinutes) return std::nullopt;
  return length;
}

std::optional<std::string> ReadBitRate(std::string_view text) {
  const auto& rates = schedule::SchedulerBitRates();
  const auto found = std::find_if(rates.begin(), rates.end(), [text](const std::string& rate) {
    return base::EqualsNoCase(rate, base::Trim(text));
  });
  return found == rates.end() ? std::nullopt : std::optional(*found);
}

ScheduleChange ReadScheduleChange(std::span<const std::string> words) {
  ScheduleChange change;
  change.Number = Digits(words.front()).value_or(0);
  for (std::size_t i = 1; i + 1 < words.size(); i += 2) {
    const std::string_view option = words[i];
    const std::string_view value = words[i + 1];
    if (option == "--on") change.On = ReadOn(value);
    if (option == "--at") change.At = ReadAt(value);
    if (option == "--for") change.For = ReadFor(value);
    if (option == "--channel") change.Channel = Digits(value);
    if (option == "--integrel") change.Integrel = IsOn(value);
    if (option == "--cleftune") change.Cleftune = IsOn(value);
    if (option == "--grab") change.Grab = IsOn(value);
    if (option == "--kill") change.Kill = IsOn(value);
    if (option == "--bitrate") change.BitRate = ReadBitRate(value);
  }
  return change;
}

}  // namespace kestrune::control
