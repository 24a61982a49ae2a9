#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "schedule/entries/SchedulerRow.h"

namespace kestrune::presenters {

/// What comes of one row of the scheduler if it is saved as it is. Both are empty for a row that is not enabled.
struct RowPlan {
  std::string Next;     ///< such as "Next: tomorrow, 8:00 PM to 9:00 PM"
  std::string Warning;  ///< what keeps it from recording, or from recording as it says; usually empty

  bool operator==(const RowPlan&) const = default;
};

/// A run, or a part of one, as the bar of the week shows it. Places are days from the bar's left end, 0 to kDays.
struct WeekRun {
  int Entry = 0;  ///< 1 to 10
  double From = 0;
  double To = 0;
  bool Lost = false;  ///< another entry records meanwhile
  std::string Text;   ///< entry, channel and the times of the whole run

  bool operator==(const WeekRun&) const = default;
};

/// The coming week, from the beginning of today on.
struct WeekPlan {
  static constexpr int kDays = 7;

  std::array<std::string, kDays> Days;  ///< "Today", "Sun 2"
  double Now = 0;                       ///< the present moment, in days
  std::vector<WeekRun> Runs;            ///< by their start; those that are lost last
  std::string InWords;                  ///< all runs that are still to come, for those who do not see the bar

  bool operator==(const WeekPlan&) const = default;
};

struct SchedulePlan {
  std::array<RowPlan, schedule::kSchedulerRows> Rows;
  WeekPlan Week;

  bool operator==(const SchedulePlan&) const = default;
};

/// What a plan follows from.
struct PlanSource {
  schedule::SchedulerRows Rows;
  std::vector<schedule::SchedulerChannel> Channels;  ///< to which the rows' positions refer
  std::size_t Listed = 0;     ///< so many of them, the first ones, are in the channel list
  bool BitRatesCount = true;  ///< the recordings are MP3
  base::DateValue Now;        ///< to the minute

  bool operator==(const PlanSource&) const = default;
};

/// Runs and overlaps as the clock has them: of two entries at the same time the one with the lower number records. That
/// finds more than saving refuses.
[[nodiscard]] SchedulePlan MakePlan(const PlanSource& source);

}  // namespace kestrune::presenters
