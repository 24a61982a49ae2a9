#include "schedule/entries/ReloadSchedule.h"

#include <optional>

#include "base/DatePattern.h"
#include "base/Numbers.h"
#include "schedule/entries/Duration.h"

namespace kestrune::schedule {
namespace {

// The main object's bit rate and mode, which nothing ever sets, with a blank between them.
constexpr std::string_view kDefaultBitRate = " ";

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
    if (const auto duration = ParseDuration(texts.Text("ScheduleDuration", "1:00"))) {
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
