#include "schedule/entries/SchedulerSettings.h"

#include <optional>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Numbers.h"
#include "schedule/entries/Duration.h"
#include "schedule/entries/SchedulerCalculations.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

constexpr int kLongestHours = 47;
constexpr int kLongestMinutes = 59;

/// Nothing if the lists of a row have no such items.
std::optional<Duration> ShownDuration(std::string_view text) {
  const auto duration = ParseDuration(text);
  if (!duration || duration->Hours < 0 || duration->Hours > kLongestHours) return std::nullopt;
  if (duration->Minutes < 0 || duration->Minutes > kLongestMinutes) return std::nullopt;
  return duration;
}

std::optional<int> PositionOf(const std::vector<SchedulerChannel>& channels,
                              std::optional<std::int16_t> number) {
  for (std::size_t i = 0; i < channels.size(); ++i)
    if (channels[i].Number == number) return static_cast<int>(i);
  return std::nullopt;
}

const char* BoxText(bool ticked) {
  return ticked ? "1" : "0";
}

std::string Key(const char* name, int number) {
  return name + std::to_string(number);
}

}  // namespace

bool IsStored(const SchedulerSettings& settings, int number) {
  return !settings.Read(Key("ScheduleStartDate", number), {}).empty();
}

std::optional<std::int16_t> StoredChannel(const SchedulerSettings& settings, int number) {
  return base::ToInt16(settings.Read(Key("ScheduleChannel", number), {}));
}

const std::vector<std::string>& SchedulerBitRates() {
  static const std::vector<std::string> rates = [] {
    std::vector<std::string> items;
    for (const int rate : {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192})
      for (const char* mode : {"Mono", "Stereo"}) items.push_back(fmt::format("{} {}", rate, mode));
    return items;
  }();
  return rates;
}

SchedulerRow EmptySchedulerRow(DateValue now) {
  SchedulerRow row;
  row.Start.Caption = DateCaption(now);
  row.End = row.Start;
  return row;
}

SchedulerRow ReadSchedulerRow(const SchedulerSettings& settings, int number,
                              const std::vector<SchedulerChannel>& channels, DateValue now) {
  const auto text = [&](const char* name, std::string_view defaultText) {
    return settings.Read(Key(name, number), defaultText);
  };
  const auto ticked = [&](const char* name, const char* defaultText) {
    return base::ToInt16(text(name, defaultText)) == std::int16_t{1};
  };

  SchedulerRow row = EmptySchedulerRow(now);
  row.Enabled = ticked("ScheduleEnabled", "0");
  const int first = channels.empty() ? -1 : 0;
  row.Channel = PositionOf(channels, base::ToInt16(text("ScheduleChannel", "1"))).value_or(first);
  const std::string thisMoment = base::FormatDate(now, "mmm d, yyyy h:nn:ss AM/PM");
  const DateValue start = base::ParseDate(text("ScheduleStartDate", thisMoment)).value_or(row.Start.Date());
  row.Start = {.Caption = StartCaption(start), .Time = TimeOfDay::Of(start)};
  if (const auto duration = ShownDuration(text("ScheduleDuration", "1:00"))) {
    row.DurationHours = duration->Hours;
    row.DurationMinutes = duration->Minutes;
  }
  const DateValue end = start.AddMinutes(row.DurationInMinutes());
  row.End = ShownEnd(end);
  if (end < now && base::FormatDate(start, "m, yyyy") != "1, 1967") row.Enabled = false;
  row.Integrel = ticked("ScheduleIntegrel", "1");
  row.Cleftune = ticked("ScheduleCleftune", "1");
  row.Grab = ticked("ScheduleMatchGrab", "0");
  row.Kill = ticked("ScheduleMatchKill", "0");
  // The main object's bit rate and mode, which nothing ever sets, with a blank between them.
  row.MP3BitRate = text("Schedulemp3bitrate", " ");
  return row;
}

bool SaveSchedulerRow(const SchedulerSettings& settings, int number,
                      const std::vector<SchedulerChannel>& channels, SchedulerRow& row) {
  if (row.DurationInMinutes() == 0) row.Enabled = false;
  bool saved = true;
  const auto save = [&](const char* name, std::string_view value) {
    saved = settings.Save(Key(name, number), value) && saved;
  };
  save("ScheduleEnabled", BoxText(row.Enabled));
  if (row.Channel >= 0 && static_cast<std::size_t>(row.Channel) < channels.size())
    save("ScheduleChannel", std::to_string(channels[static_cast<std::size_t>(row.Channel)].Number));
  save("ScheduleStartDate", row.Start.StoredText());
  save("ScheduleDuration", DurationText({.Hours = row.DurationHours, .Minutes = row.DurationMinutes}));
  save("ScheduleIntegrel", BoxText(row.Integrel));
  save("ScheduleCleftune", BoxText(row.Cleftune));
  save("ScheduleMatchGrab", BoxText(row.Grab));
  save("ScheduleMatchKill", BoxText(row.Kill));
  save("ScheduleMP3BitRate", row.MP3BitRate);
  return saved;
}

}  // namespace kestrune::schedule
