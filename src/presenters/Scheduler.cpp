#include "presenters/Scheduler.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "schedule/entries/ConflictCheck.h"
#include "schedule/entries/SchedulerCalculations.h"

namespace kestrune::presenters {

using base::DateValue;

namespace {

constexpr std::string_view kNotListed = "not in the channel list";

/// The caption of a date that comes from the date picker.
std::string CaptionOf(DateValue date) {
  return date >= schedule::CodedDay(1) && date <= schedule::CodedDay(schedule::kEveryDayCode)
             ? schedule::CodedCaption(date)
             : schedule::DateCaption(date);
}

}  // namespace

Scheduler::Scheduler(SchedulerPorts ports, std::vector<schedule::SchedulerChannel> channels)
    : ports_(std::move(ports)), channels_(std::move(channels)), listed_(channels_.size()) {
  ReadRows();
  ports_.Editors.Add(*this);
}

void Scheduler::ReadRows() {
  channels_.resize(listed_);
  const auto has = [this](std::int16_t number) {
    return std::ranges::find(channels_, number, &schedule::SchedulerChannel::Number) != channels_.end();
  };
  for (int number = 1; number <= schedule::kSchedulerRows; ++number) {
    const auto stored = schedule::StoredChannel(ports_.Settings, number);
    if (!stored || has(*stored)) continue;
    schedule::SchedulerChannel& unlisted = channels_.emplace_back();
    unlisted.Number = *stored;
    unlisted.Station = kNotListed;
  }
  int number = 0;
  for (schedule::SchedulerRow& row : rows_) {
    row = schedule::ReadSchedulerRow(ports_.Settings, ++number, channels_, ports_.Loop.Now());
    // The first item for an entry without a channel of its own is the first of the list.
    if (listed_ == 0 && !schedule::StoredChannel(ports_.Settings, number)) row.Channel = -1;
  }
}

void Scheduler::EntriesChanged() {
  ReadRows();
  schedDirty_ = false;
  Reread();
}

const SchedulePlan& Scheduler::Plan() {
  const DateValue now = ports_.Loop.Now();
  PlanSource source{.Rows = rows_,
                    .Channels = channels_,
                    .Listed = listed_,
                    .BitRatesCount = ports_.BitRatesCount(),
                    .Now = now.AddSeconds(-now.Second())};
  if (planned_ != source) {
    planned_ = std::move(source);
    plan_ = MakePlan(*planned_);
  }
  return plan_;
}

std::string Scheduler::ChannelItem(const schedule::SchedulerChannel& channel) {
  return fmt::format("{:>3} - {}", channel.Number, channel.Station);
}

schedule::SchedulerRow& Scheduler::Changed(int index) {
  schedDirty_ = true;
  RowAt(index).Enabled = true;
  return RowAt(index);
}

void Scheduler::ChooseStartTime(int index, schedule::TimeOfDay time) {
  Changed(index).Start.Time = time;
  CalculateEndTime(index);
}

void Scheduler::ChooseDuration(int index, int hours, int minutes) {
  schedule::SchedulerRow& row = Changed(index);
  row.DurationHours = hours;
  row.DurationMinutes = minutes;
  CalculateEndTime(index);
}

void Scheduler::ChooseEndTime(int index, schedule::TimeOfDay time) {
  SetEnd(index, {.Caption = Row(index).End.Caption, .Time = time});
}

void Scheduler::ChooseChannel(int index, int position) {
  Changed(index).Channel = position;
}
void Scheduler::TickIntegrel(int index, bool ticked) {
  Changed(index).Integrel = ticked;
}
void Scheduler::TickCleftune(int index, bool ticked) {
  Changed(index).Cleftune = ticked;
}
void Scheduler::TickGrab(int index, bool ticked) {
  Changed(index).Grab = ticked;
}
void Scheduler::TickKill(int index, bool ticked) {
  Changed(index).Kill = ticked;
}

void Scheduler::ChooseMP3BitRate(int index, std::string text) {
  schedDirty_ = true;
  RowAt(index).MP3BitRate = std::move(text);
}

void Scheduler::TickEnabled(int index, bool ticked) {
  schedDirty_ = true;
  RowAt(index).Enabled = ticked;
}

// The end and the bit rate stay.
void Scheduler::cmdClear(int index) {
  schedule::SchedulerRow& row = RowAt(index);
  schedule::SchedulerRow cleared = schedule::EmptySchedulerRow(ports_.Loop.Now());
  cleared.Channel = listed_ == 0 ? -1 : 0;
  cleared.End = std::move(row.End);
  cleared.MP3BitRate = std::move(row.MP3BitRate);
  row = std::move(cleared);
  schedDirty_ = true;
}

DateValue Scheduler::DateForPicker(const schedule::SchedulerMoment& moment) const {
  const DateValue now = ports_.Loop.Now();
  return moment.Recurs() ? now : base::ParseDate(moment.Caption).value_or(now);
}

void Scheduler::cmdStartDate(int index, const std::function<void()>& picker) {
  SelDate = DateForPicker(Row(index).Start);
  picker();
  SetStartDate(index, SelDate);
}

void Scheduler::cmdEndDate(int index, const std::function<void()>& picker) {
  SelDate = DateForPicker(Row(index).End);
  picker();
  SetEndDate(index, SelDate);
}

void Scheduler::SetStartDate(int index, DateValue date) {
  Changed(index).Start.Caption = CaptionOf(date);
  CalculateEndTime(index);
}

void Scheduler::SetEndDate(int index, DateValue date) {
  SelDate = Row(index).Start.IsDaily() ? schedule::CodedDay(schedule::kEveryDayCode) : date;
  SetEnd(index, {.Caption = CaptionOf(SelDate), .Time = Row(index).End.Time});
}

void Scheduler::SetEnd(int index, schedule::SchedulerMoment end) {
  Changed(index).End = std::move(end);
  CalculateDuration(index);
}

// Each calculation sets controls whose changes call the other one, hence the guard.
void Scheduler::CalculateEndTime(int index) {
  if (calculating_) return;
  calculating_ = true;
  SetEnd(index, schedule::EndTimeOf(Row(index)));
  calculating_ = false;
}

void Scheduler::CalculateDuration(int index) {
  if (calculating_) return;
  calculating_ = true;
  const int minutes = schedule::DurationOf(Row(index));
  ChooseDuration(index, minutes / 60, minutes % 60);
  SetEnd(index, schedule::EndTimeOf(Row(index)));
  calculating_ = false;
}

bool Scheduler::cmdSave() {
  const std::optional<std::string> conflict = schedule::WhatConflicts(rows_);
  saveFailed_ = conflict.has_value();
  if (conflict) {
    base::Ignored(ports_.Dialogs.Show({.Title = "Schedule Conflict", .Text = *conflict}));
    return false;
  }
  int number = 0;
  for (schedule::SchedulerRow& row : rows_) {
    if (!schedule::SaveSchedulerRow(ports_.Settings, ++number, channels_, row)) saveFailed_ = true;
  }
  if (saveFailed_) {
    ports_.Log.DoLog("The schedule was not saved: the settings could not be written");
    return false;
  }
  schedDirty_ = false;
  return true;
}

bool Scheduler::MayClose(bool askedHere) {
  if (askedHere && schedDirty_) {
    const platform::MessageAnswer answer =
        ports_.Dialogs.Show({.Title = "Save Schedule Changes",
                             .Text = "You have made changes, do you want to save your changes first?",
                             .Icon = platform::MessageIcon::Question,
                             .Buttons = platform::MessageButtons::YesNoCancel});
    if (answer == platform::MessageAnswer::Cancel) return false;
    if (answer == platform::MessageAnswer::Yes && !cmdSave()) return false;
  }
  ports_.ReloadSchedule();
  return true;
}

}  // namespace kestrune::presenters
