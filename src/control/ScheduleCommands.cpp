#include "control/ScheduleCommands.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Text.h"
#include "schedule/entries/ConflictCheck.h"
#include "schedule/entries/Duration.h"
#include "schedule/entries/NextRun.h"
#include "schedule/entries/SchedulerMoment.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using schedule::SchedulerRow;
using schedule::TimeOfDay;

using Refusal = std::optional<std::string>;

constexpr std::int64_t kLongestMinutes = 2 * 24 * 60 - 1;
constexpr const char* kNotWritten = "The schedule could not be written.";

/// One stored entry and what a command makes of it.
class EntryChange {
 public:
  EntryChange(const StoredSchedule& stored, int number)
      : stored_(stored),
        number_(number),
        row_(schedule::ReadSchedulerRow(stored.Settings, number, stored.Channels, stored.Now)),
        hasStart_(base::ParseDate(Text("ScheduleStartDate")).has_value()) {
    // A row shows durations of its lists alone; this is what counts.
    duration_ = schedule::ParseDuration(Text("ScheduleDuration"));
  }

  /// False if the entry is not enabled, or is for a date that is over.
  [[nodiscard]] bool Enabled() const { return row_.Enabled; }

  void SetStart(const std::optional<DateValue>& on, const std::optional<int>& at) {
    if (on) row_.Start.Caption = schedule::StartCaption(*on);
    if (at) row_.Start.Time = TimeOfDay::Of(DateValue().AddMinutes(*at));
    hasStart_ = hasStart_ || (on && at);
    Note("ScheduleStartDate", row_.Start.StoredText());
  }
  void SetDuration(int minutes) {
    duration_ = {.Hours = minutes / 60, .Minutes = minutes % 60};
    Note("ScheduleDuration", schedule::DurationText(*duration_));
  }
  void Note(const char* name, std::string text) { notes_.push_back({name, std::move(text)}); }
  void Note(const char* name, bool ticked) { Note(name, std::string(ticked ? "1" : "0")); }

  /// Enabling what can never run would look as if something had been asked for.
  [[nodiscard]] Refusal WhyItCannotRun() const {
    if (!hasStart_) return fmt::format("entry {} has no start; give --on and --at", number_);
    const std::int64_t minutes = duration_ ? duration_->InMinutes() : 0;
    if (minutes < 1 || minutes > kLongestMinutes)
      return fmt::format("entry {} has no length from 0:01 to 47:59; give --for", number_);
    if (!row_.Start.Recurs() && row_.Start.Date().AddMinutes(minutes) < stored_.Now) {
      return fmt::format("entry {} would be over already: {} for {}", number_, row_.Start.Caption,
                         schedule::DurationText(*duration_));
    }
    return std::nullopt;
  }

  [[nodiscard]] Refusal WhatConflicts() const {
    schedule::SchedulerRows rows;
    int number = 0;
    for (SchedulerRow& row : rows)
      row = schedule::ReadSchedulerRow(stored_.Settings, ++number, stored_.Channels, stored_.Now);
    const auto index = static_cast<std::size_t>(number_ - 1);
    rows.at(index) = row_;
    rows.at(index).DurationHours = duration_->Hours;
    rows.at(index).DurationMinutes = duration_->Minutes;
    return schedule::WhatConflictsWith(rows, index);
  }

  /// Writes what was noted.
  [[nodiscard]] Refusal Write() const {
    bool written = true;
    for (const auto& [name, text] : notes_)
      written = stored_.Settings.Save(name + std::to_string(number_), text) && written;
    return written ? std::nullopt : Refusal(kNotWritten);
  }

 private:
  [[nodiscard]] std::string Text(const char* name) const {
    return stored_.Settings.Read(name + std::to_string(number_), {});
  }

  const StoredSchedule& stored_;
  int number_;
  SchedulerRow row_;
  bool hasStart_;
  std::optional<schedule::Duration> duration_;
  std::vector<std::pair<std::string, std::string>> notes_;
};

bool IsListed(const StoredSchedule& stored, int channel) {
  return std::any_of(stored.Channels.begin(), stored.Channels.end(),
                     [channel](const schedule::SchedulerChannel& one) { return one.Number == channel; });
}

}  // namespace

std::vector<ScheduleReport> ReportSchedule(const schedule::ScheduleEntries& entries,
                                           const schedule::ScheduleState& state,
                                           const ScheduleSources& sources) {
  std::vector<ScheduleReport> reports;
  for (const schedule::ScheduleEntry& entry : entries) {
    ScheduleReport& report = reports.emplace_back();
    report.Number = static_cast<int>(reports.size());
    report.Set = entry.Enabled || sources.IsSet(report.Number);
    report.Enabled = entry.Enabled;
    report.Running = state.ActiveSchedule == report.Number;
    if (report.Running) {
      report.SecondsLeft =
          static_cast<int>(std::max<std::int64_t>(0, sources.SecondsUntil(state.RemainingUntil)));
    }
    if (!report.Set) continue;
    if (entry.StartDate != DateValue()) {
      report.On = schedule::StartCaption(entry.StartDate);
      report.At = base::FormatDate(entry.StartDate, "h:nn AM/PM");
    }
    const std::int64_t length =
        base::SecondsBetween(entry.StartDate, entry.EndDate) - schedule::kRestOfTheLastMinute;
    if (length >= 0) report.Minutes = static_cast<int>(length / 60);
    report.Channel = entry.Channel;
    report.Station = sources.Station(entry.Channel);
    report.Integrel = entry.Integrel;
    report.Cleftune = entry.Cleftune;
    report.Grab = entry.MatchGrab;
    report.Kill = entry.MatchKill;
    report.BitRate = base::Trim(entry.MP3BitRate);
    if (const auto next = schedule::NextStart(entry, sources.Now))
      report.NextRun = base::FormatDate(*next, "yyyy-mm-dd hh:nn");
  }
  return reports;
}

Refusal SetEntry(const StoredSchedule& stored, const ScheduleChange& change) {
  const bool empty = !schedule::IsStored(stored.Settings, change.Number);
  if (empty && !(change.On && change.At && change.For && change.Channel)) {
    return fmt::format("entry {} is empty; --on, --at, --for and --channel are all needed", change.Number);
  }
  if (change.Channel && !IsListed(stored, *change.Channel))
    return fmt::format("channel {} is not in the channel list", *change.Channel);

  EntryChange entry(stored, change.Number);
  if (change.On || change.At) entry.SetStart(change.On, change.At);
  if (change.For) entry.SetDuration(*change.For);
  if (change.Channel) entry.Note("ScheduleChannel", std::to_string(*change.Channel));
  // An entry that was never set gets all its modes, which the table and the scheduler would not take alike.
  const auto noteMode = [&](const char* name, const std::optional<bool>& given, bool usual) {
    if (given || empty) entry.Note(name, given.value_or(usual));
  };
  noteMode("ScheduleIntegrel", change.Integrel, true);
  noteMode("ScheduleCleftune", change.Cleftune, true);
  noteMode("ScheduleMatchGrab", change.Grab, false);
  noteMode("ScheduleMatchKill", change.Kill, false);
  if (change.BitRate || empty) entry.Note("ScheduleMP3BitRate", change.BitRate.value_or(" "));

  if (Refusal why = entry.WhyItCannotRun()) return why;
  const bool moved = change.On || change.At || change.For;
  if (moved || !entry.Enabled()) {
    if (Refusal conflict = entry.WhatConflicts()) return conflict;
  }
  entry.Note("ScheduleEnabled", true);
  return entry.Write();
}

Refusal EnableEntry(const StoredSchedule& stored, int number) {
  if (!schedule::IsStored(stored.Settings, number))
    return fmt::format("entry {} is empty; set it first", number);
  EntryChange entry(stored, number);
  if (Refusal why = entry.WhyItCannotRun()) return why;
  if (Refusal conflict = entry.WhatConflicts()) return conflict;
  entry.Note("ScheduleEnabled", true);
  return entry.Write();
}

Refusal DisableEntry(const StoredSchedule& stored, int number) {
  EntryChange entry(stored, number);
  entry.Note("ScheduleEnabled", false);
  return entry.Write();
}

Refusal ClearEntry(const StoredSchedule& stored, int number) {
  SchedulerRow row = schedule::EmptySchedulerRow(stored.Now);
  row.Channel = stored.Channels.empty() ? -1 : 0;
  row.MP3BitRate =
      schedule::ReadSchedulerRow(stored.Settings, number, stored.Channels, stored.Now).MP3BitRate;
  if (schedule::SaveSchedulerRow(stored.Settings, number, stored.Channels, row)) return std::nullopt;
  return kNotWritten;
}

}  // namespace kestrune::control
