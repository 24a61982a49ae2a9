#include "control/ScheduleCommands.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Text.h"
#include "schedule/entries/NextRun.h"
#include "schedule/entries/SchedulerMoment.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using presenters::Scheduler;
using schedule::SchedulerRow;
using schedule::TimeOfDay;

using Refusal = std::optional<std::string>;

constexpr std::int64_t kRestOfTheLastMinute = 59;

std::string OnText(DateValue start) {
  const bool coded = start >= schedule::CodedDay(1) && start < schedule::CodedDay(16);
  return coded ? schedule::CodedCaption(start) : schedule::DateCaption(start);
}

std::optional<int> PositionOf(const Scheduler& scheduler, int channel) {
  const auto& channels = scheduler.Channels();
  const auto found =
      std::find_if(channels.begin(), channels.end(),
                   [channel](const schedule::SchedulerChannel& one) { return one.Number == channel; });
  if (found == channels.end()) return std::nullopt;
  return static_cast<int>(found - channels.begin());
}

/// Enabling what can never run would only look as if something had been asked for.
Refusal SaveUnlessOver(Scheduler& scheduler, int index, DateValue now) {
  const SchedulerRow& row = scheduler.Row(index);
  if (!row.Start.Recurs() && row.Start.Date().AddMinutes(row.DurationInMinutes()) < now) {
    return fmt::format("entry {} would be over already: {} for {}:{:02}", index + 1, row.Start.Caption,
                       row.DurationHours, row.DurationMinutes);
  }
  if (row.DurationInMinutes() == 0) return fmt::format("entry {} has no length", index + 1);
  return scheduler.SaveRow(index);
}

}  // namespace

std::vector<ScheduleReport> ReportSchedule(const schedule::ScheduleEntries& entries,
                                           const schedule::ScheduleState& state, DateValue now,
                                           const std::function<std::string(std::int16_t channel)>& station) {
  std::vector<ScheduleReport> reports;
  for (const schedule::ScheduleEntry& entry : entries) {
    ScheduleReport report;
    report.Number = static_cast<int>(reports.size()) + 1;
    report.Enabled = entry.Enabled;
    report.On = OnText(entry.StartDate);
    report.At = base::FormatDate(entry.StartDate, "h:nn AM/PM");
    report.Minutes =
        static_cast<int>((base::SecondsBetween(entry.StartDate, entry.EndDate) - kRestOfTheLastMinute) / 60);
    report.Channel = entry.Channel;
    report.Station = station(entry.Channel);
    report.Integrel = entry.Integrel;
    report.Cleftune = entry.Cleftune;
    report.Grab = entry.MatchGrab;
    report.Kill = entry.MatchKill;
    report.BitRate = base::Trim(entry.MP3BitRate);
    if (entry.Enabled) {
      if (const auto next = schedule::NextStart(entry, now))
        report.NextRun = base::FormatDate(*next, "yyyy-mm-dd hh:nn");
    }
    report.Running = state.ActiveSchedule == report.Number;
    if (report.Running) {
      report.SecondsLeft =
          static_cast<int>(std::max<std::int64_t>(0, base::SecondsBetween(now, state.RemainingUntil)));
    }
    reports.push_back(std::move(report));
  }
  return reports;
}

Refusal SetEntry(Scheduler& scheduler, const ScheduleChange& change, DateValue now) {
  const int index = change.Number - 1;
  if (!scheduler.IsStored(index) && !(change.On && change.At && change.For && change.Channel)) {
    return fmt::format("entry {} is empty; --on, --at, --for and --channel are all needed", change.Number);
  }
  if (change.Channel) {
    const std::optional<int> position = PositionOf(scheduler, *change.Channel);
    if (!position) return fmt::format("channel {} is not in the channel list", *change.Channel);
    scheduler.ChooseChannel(index, *position);
  }
  if (change.On) scheduler.SetStartDate(index, *change.On);
  if (change.At) {
    scheduler.ChooseStartTime(index, TimeOfDay::Of(DateValue::FromSeconds(std::int64_t{*change.At} * 60)));
  }
  if (change.For) scheduler.ChooseDuration(index, *change.For / 60, *change.For % 60);
  if (change.Integrel) scheduler.TickIntegrel(index, *change.Integrel);
  if (change.Cleftune) scheduler.TickCleftune(index, *change.Cleftune);
  if (change.Grab) scheduler.TickGrab(index, *change.Grab);
  if (change.Kill) scheduler.TickKill(index, *change.Kill);
  if (change.BitRate) scheduler.ChooseMP3BitRate(index, *change.BitRate);
  scheduler.TickEnabled(index, true);
  return SaveUnlessOver(scheduler, index, now);
}

Refusal EnableEntry(Scheduler& scheduler, int number, bool enabled, DateValue now) {
  const int index = number - 1;
  if (enabled && !scheduler.IsStored(index)) return fmt::format("entry {} is empty; set it first", number);
  scheduler.TickEnabled(index, enabled);
  return enabled ? SaveUnlessOver(scheduler, index, now) : scheduler.SaveRow(index);
}

Refusal ClearEntry(Scheduler& scheduler, int number) {
  scheduler.cmdClear(number - 1);
  return scheduler.SaveRow(number - 1);
}

}  // namespace kestrune::control
