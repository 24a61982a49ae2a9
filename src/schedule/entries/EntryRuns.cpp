#include "schedule/entries/EntryRuns.h"

#include <optional>

#include "schedule/entries/Duration.h"
#include "schedule/entries/NextRun.h"

namespace kestrune::schedule {

using base::DateValue;

ScheduleEntry EntryOf(const SchedulerRow& row) {
  ScheduleEntry entry;
  entry.Enabled = row.Enabled && row.DurationInMinutes() > 0;
  entry.StartDate = row.Start.Date();
  entry.EndDate = entry.StartDate.AddMinutes(row.DurationInMinutes()).AddSeconds(kRestOfTheLastMinute);
  return entry;
}

std::vector<EntryRun> RunsBetween(const ScheduleEntry& entry, DateValue from, DateValue to) {
  const std::int64_t length = base::SecondsBetween(entry.StartDate, entry.EndDate);
  std::vector<EntryRun> runs;
  std::optional<DateValue> start = NextStart(entry, from.AddSeconds(1 - length));
  while (start && *start < to) {
    runs.push_back({.Start = *start, .End = start->AddSeconds(length)});
    start = NextStart(entry, start->AddSeconds(1));
  }
  return runs;
}

}  // namespace kestrune::schedule
