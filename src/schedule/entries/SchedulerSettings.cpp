#include "schedule/entries/SchedulerSettings.h"

#include <optional>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Numbers.h"
#include "schedule/entries/SchedulerCalculations.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

constexpr int kLongestHours = 47;
constexpr int kLongestMinutes = 59;

struct Duration {
  int Hours = 0;
  int Minutes = 0;
};

/// Hours, ":", minutes; nothing if the lists of a row have no such items.
std::optional<Duration> ReadDuration(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const auto hours = base::ToInt16(text.substr(0, colon));
  const auto minutes = base::ToInt16(text.substr(colon + 1));
  if (!hours || *hours < 0 || *hours > kLongestHours) return std::nullopt;
  if (!minutes || *minutes < 0 || *minutes > kLongestMinutes) return std::nullopt;
  return Duration{*hours, *minutes};
}

SchedulerMoment ShownStart(DateValue start) {
  const bool coded = start >= CodedDay(1) && start < CodedDay(16);
  return {.Caption = coded ? CodedCaption(start) : DateCaption(start), .Time = TimeOfDay::Of(start)};
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

}  // namespace

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
    return settings.Read(name + std::to_string(number), defaultText);
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
  row.Start = ShownStart(start);
  if (const auto duration = ReadDuration(text("ScheduleDuration", "1:00"))) {
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
  // Nothing ever gives the recording's own bit rate and mode a text; the default is the blank between the two.
  row.MP3BitRate = text("Schedulemp3bitrate", " ");
  return row;
}

bool SaveSchedulerRow(const SchedulerSettings& settings, int number,
                      const std::vector<SchedulerChannel>& channels, SchedulerRow& row) {
  if (row.DurationInMinutes() == 0) row.Enabled = false;
  bool saved = true;
  const auto save = [&](const char* name, std::string_view value) {
    saved = settings.Save(name + std::to_string(number), value) && saved;
  };
  save("ScheduleEnabled", BoxText(row.Enabled));
  if (row.Channel >= 0 && static_cast<std::size_t>(row.Channel) < channels.size())
    save("ScheduleChannel", std::to_string(channels[static_cast<std::size_t>(row.Channel)].Number));
  save("ScheduleStartDate", row.Start.StoredText());
  save("ScheduleDuration", fmt::format("{}:{:02}", row.DurationHours, row.DurationMinutes));
  save("ScheduleIntegrel", BoxText(row.Integrel));
  save("ScheduleCleftune", BoxText(row.Cleftune));
  save("ScheduleMatchGrab", BoxText(row.Grab));
  save("ScheduleMatchKill", BoxText(row.Kill));
  save("ScheduleMP3BitRate", row.MP3BitRate);
  return saved;
}

}  // namespace kestrune::schedule
