#include "presenters/SchedulePlan.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/DatePattern.h"
#include "base/OneLine.h"
#include "base/SameDay.h"
#include "base/Text.h"
#include "schedule/entries/ConflictCheck.h"
#include "schedule/entries/DueSearch.h"
#include "schedule/entries/EntryRuns.h"
#include "schedule/entries/NextRun.h"
#include "schedule/entries/SchedulerSettings.h"

namespace kestrune::presenters {
namespace {

using base::DateValue;
using base::SameDay;
using schedule::EntryRun;
using schedule::ScheduleEntry;
using schedule::SchedulerRow;

DateValue MidnightOf(DateValue moment) {
  return DateValue::FromCivil(moment.Year(), moment.Month(), moment.Day());
}

std::string Time(DateValue moment) {
  return base::FormatDate(moment, "h:nn AM/PM");
}

std::string Day(DateValue moment, DateValue now) {
  return base::FormatDate(moment, moment.Year() == now.Year() ? "ddd, mmm d" : "ddd, mmm d, yyyy");
}

/// "today", "tomorrow" or the day.
std::string NearDay(DateValue moment, DateValue now) {
  if (SameDay(moment, now)) return "today";
  if (SameDay(moment, now.AddDays(1))) return "tomorrow";
  return Day(moment, now);
}

/// The end of a run, with the weekday if it is not on the day of `from`.
std::string EndTime(DateValue end, DateValue from) {
  return SameDay(end, from) ? Time(end) : base::FormatDate(end, "ddd ") + Time(end);
}

std::string Times(const EntryRun& run) {
  return fmt::format("{} to {}", Time(run.Start), EndTime(run.End, run.Start));
}

class Planner {
 public:
  explicit Planner(const PlanSource& source) : source_(source), now_(source.Now) {
    for (std::size_t i = 0; i < entries_.size(); ++i) entries_.at(i) = schedule::EntryOf(source.Rows.at(i));
  }

  [[nodiscard]] SchedulePlan Make() const {
    SchedulePlan plan;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      if (source_.Rows.at(i).Enabled) plan.Rows.at(i) = {.Next = Next(i), .Warning = Warning(i)};
    }
    plan.Week = Week();
    return plan;
  }

 private:
  [[nodiscard]] const SchedulerRow& Row(std::size_t i) const { return source_.Rows.at(i); }

  [[nodiscard]] std::string Next(std::size_t i) const {
    schedule::ScheduleEntries alone;
    alone.front() = entries_.at(i);
    const schedule::DueSearch search(alone, [this] { return now_; });
    if (const auto due = search.Find(); due && entries_.at(i).Enabled)
      return "Now, until " + EndTime(due->RemainingUntil, now_);
    const auto start = schedule::NextStart(entries_.at(i), now_);
    if (!start) return "Never";
    const EntryRun run = schedule::RunsBetween(entries_.at(i), *start, start->AddSeconds(1)).front();
    return fmt::format("Next: {}, {}", NearDay(run.Start, now_), Times(run));
  }

  [[nodiscard]] std::string Warning(std::size_t i) const {
    std::vector<std::string> warnings;
    const auto warn = [&](std::string text) {
      if (!text.empty()) warnings.push_back(std::move(text));
    };
    warn(WrongLength(i));
    warn(WrongDate(i));
    warn(WrongChannel(i));
    warn(Overlap(i));
    warn(WrongBitRate(i));
    return fmt::format("{}", fmt::join(warnings, " "));
  }

  [[nodiscard]] std::string WrongLength(std::size_t i) const {
    if (Row(i).DurationInMinutes() == 0) return "It has no length and is saved switched off.";
    schedule::SchedulerRows alone;
    alone.at(i) = Row(i);
    return schedule::WhatConflicts(alone) ? "It lasts longer than the day after which it begins again." : "";
  }

  [[nodiscard]] std::string WrongDate(std::size_t i) const {
    const bool over = !Row(i).Start.Recurs() && entries_.at(i).Enabled && entries_.at(i).EndDate <= now_;
    return over ? "Its date is over." : "";
  }

  [[nodiscard]] std::string WrongChannel(std::size_t i) const {
    const int position = Row(i).Channel;
    if (position < 0) return "It has no channel.";
    if (static_cast<std::size_t>(position) < source_.Listed) return {};
    return fmt::format("Channel {} is not in the channel list.",
                       source_.Channels.at(static_cast<std::size_t>(position)).Number);
  }

  [[nodiscard]] std::string WrongBitRate(std::size_t i) const {
    if (!source_.BitRatesCount) return {};
    const std::string_view rate = base::Trim(Row(i).MP3BitRate);
    if (rate.empty()) return "It has no bit rate: 128 Stereo is used.";
    const auto& rates = schedule::SchedulerBitRates();
    return std::ranges::find(rates, rate) == rates.end() ? fmt::format("There is no bit rate {}.", rate) : "";
  }

  /// The first time at which an entry with a lower number records instead of this one.
  [[nodiscard]] std::string Overlap(std::size_t i) const {
    for (std::size_t other = 0; other < i; ++other) {
      if (const auto from = FirstMeeting(entries_.at(i), entries_.at(other))) {
        return fmt::format("Entry {} records instead, {} from {} on.", other + 1, NearDay(*from, now_),
                           Time(*from));
      }
    }
    return {};
  }

  [[nodiscard]] bool IsOnce(const ScheduleEntry& entry) const {
    return entry.StartDate >= schedule::CodedDay(schedule::kEveryDayCode + 1);
  }

  /// When two entries first run at the same time: around the date of one, else within a week, after which all repeats.
  [[nodiscard]] std::optional<DateValue> FirstMeeting(const ScheduleEntry& a, const ScheduleEntry& b) const {
    if (!a.Enabled || !b.Enabled) return std::nullopt;
    const ScheduleEntry& first = IsOnce(b) ? b : a;
    const ScheduleEntry& second = IsOnce(b) ? a : b;
    const DateValue to = IsOnce(first) ? first.EndDate : now_.AddDays(WeekPlan::kDays);
    for (const EntryRun& run : schedule::RunsBetween(first, now_, to)) {
      const auto met = schedule::RunsBetween(second, std::max(run.Start, now_), run.End);
      if (!met.empty()) return std::max({run.Start, met.front().Start, now_});
    }
    return std::nullopt;
  }

  struct Part {
    EntryRun Run;
    bool Lost = false;
  };

  /// A run in the parts in which its entry records, and in which another one does.
  [[nodiscard]] std::vector<Part> PartsOf(const EntryRun& run, std::size_t i) const {
    std::vector<EntryRun> others;
    for (std::size_t other = 0; other < i; ++other) {
      for (const EntryRun& lost : schedule::RunsBetween(entries_.at(other), run.Start, run.End))
        others.push_back({.Start = std::max(lost.Start, run.Start), .End = std::min(lost.End, run.End)});
    }
    std::ranges::sort(others, {}, &EntryRun::Start);
    std::vector<Part> parts;
    DateValue at = run.Start;
    for (const EntryRun& lost : others) {
      if (lost.Start > at) parts.push_back({.Run = {.Start = at, .End = lost.Start}});
      if (lost.End > at)
        parts.push_back({.Run = {.Start = std::max(at, lost.Start), .End = lost.End}, .Lost = true});
      at = std::max(at, lost.End);
    }
    if (at < run.End) parts.push_back({.Run = {.Start = at, .End = run.End}});
    return parts;
  }

  [[nodiscard]] std::string ChannelOf(std::size_t i) const {
    const int position = Row(i).Channel;
    if (position < 0) return "no channel";
    const schedule::SchedulerChannel& channel = source_.Channels.at(static_cast<std::size_t>(position));
    return fmt::format("{} - {}", channel.Number, base::OneLine(channel.Station));
  }

  [[nodiscard]] WeekPlan Week() const {
    const DateValue left = MidnightOf(now_);
    const DateValue right = left.AddDays(WeekPlan::kDays);
    constexpr double kSecondsOfADay = 86400;
    const auto place = [&](DateValue moment) {
      const double days = static_cast<double>(base::SecondsBetween(left, moment)) / kSecondsOfADay;
      return std::clamp(days, 0.0, double{WeekPlan::kDays});
    };

    WeekPlan week{.Days = {}, .Now = place(now_), .Runs = {}, .InWords = {}};
    for (int day = 0; day < WeekPlan::kDays; ++day) {
      week.Days.at(static_cast<std::size_t>(day)) =
          day == 0 ? "Today" : base::FormatDate(left.AddDays(day), "ddd d");
    }
    std::vector<std::pair<DateValue, std::string>> told;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      for (const EntryRun& run : schedule::RunsBetween(entries_.at(i), left, right)) {
        const std::string times = fmt::format("{}, {}", Day(run.Start, now_), Times(run));
        const std::string channel = ChannelOf(i);
        if (run.End > now_)
          told.emplace_back(run.Start, fmt::format("{}: entry {}, {}", times, i + 1, channel));
        for (const Part& part : PartsOf(run, i)) {
          if (part.Run.End <= left || part.Run.Start >= right) continue;
          week.Runs.push_back(
              {.Entry = static_cast<int>(i) + 1,
               .From = place(part.Run.Start),
               .To = place(part.Run.End),
               .Lost = part.Lost,
               .Text = fmt::format("Entry {}: {}\n{}{}", i + 1, channel, times,
                                   part.Lost ? "\nAnother entry records at this time." : "")});
        }
      }
    }
    std::ranges::stable_sort(week.Runs, {}, [](const WeekRun& run) { return std::pair(run.Lost, run.From); });
    std::ranges::stable_sort(told, {}, &std::pair<DateValue, std::string>::first);
    for (const auto& [start, text] : told) week.InWords += text + "\n";
    if (told.empty()) week.InWords = "Nothing is planned in the coming week";
    return week;
  }

  const PlanSource& source_;
  DateValue now_;
  schedule::ScheduleEntries entries_;
};

}  // namespace

SchedulePlan MakePlan(const PlanSource& source) {
  return Planner(source).Make();
}

}  // namespace kestrune::presenters
