#include "schedule/entries/ReloadSchedule.h"

#include <optional>

#include "base/DatePattern.h"
#include "base/Numbers.h"

namespace kestrune::schedule {
namespace {

// Bit rate and stereo mode of a program that was never told either, with a blank between.
constexpr std::string_view kDefaultBitRate = " ";
constexpr std::int64_t kRestOfTheLastMinute = 59;

struct Duration {
  std::int16_t Hours = 0;
  std::int16_t Minutes = 0;
};

std::optional<Duration> ReadDuration(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const auto hours = base::ToInt16(text.substr(0, colon));
  const auto minutes = base::ToInt16(text.substr(colon + 1));
  if (!hours || !minutes) return std::nullopt;
  return Duration{*hours, *minutes};
}

template <class Value>
void Take(Value& field, const std::optional<Value>& read) {
  if (read) field = *read;
}

/// The texts of one entry.
class StoredEntry {
 public:
  StoredEntry(const StoredText& stored, int number) : stored_(stored), number_(std::to_string(number)) {}

  [[nodiscard]] std::string Text(const std::string& name, std::string_view defaultText) const {
    return stored_(name + number_, defaultText);
  }
  [[nodiscard]] std::optional<bool> Switch(const std::string& name, std::string_view defaultText) const {
    return base::ToBool(Text(name, defaultText));
  }

 private:
  const StoredText& stored_;
  std::string number_;
};

}  // namespace

void ReloadSchedule(const StoredText& stored, base::DateValue now, ScheduleEntries& entries) {
  const std::string thisMoment = base::FormatDate(now, "mmm d, yyyy h:nn:ss AM/PM");
  int number = 0;
  for (ScheduleEntry& entry : entries) {
    const StoredEntry texts(stored, ++number);
    Take(entry.Enabled, texts.Switch("ScheduleEnabled", "0"));
    Take(entry.Channel, base::ToInt16(texts.Text("ScheduleChannel", "1")));
    Take(entry.StartDate, base::ParseDate(texts.Text("ScheduleStartDate", thisMoment)));
    if (const auto duration = ReadDuration(texts.Text("ScheduleDuration", "1:00"))) {
      entry.EndDate = entry.StartDate.AddHours(duration->Hours)
                          .AddMinutes(duration->Minutes)
                          .AddSeconds(kRestOfTheLastMinute);
    }
    Take(entry.Integrel, texts.Switch("ScheduleIntegrel", "1"));
    Take(entry.Cleftune, texts.Switch("ScheduleCleftune", "1"));
    Take(entry.MatchGrab, texts.Switch("ScheduleMatchGrab", "1"));
    Take(entry.MatchKill, texts.Switch("ScheduleMatchKill", "1"));
    entry.MP3BitRate = texts.Text("ScheduleMP3BitRate", kDefaultBitRate);
  }
}

}  // namespace kestrune::schedule
