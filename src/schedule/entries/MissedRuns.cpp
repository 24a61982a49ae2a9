#include "schedule/entries/MissedRuns.h"

#include "schedule/entries/NextRun.h"

namespace kestrune::schedule {

std::vector<std::int16_t> MissedRuns(const ScheduleEntries& entries, base::DateValue from,
                                     base::DateValue to) {
  std::vector<std::int16_t> missed;
  std::int16_t number = 0;
  for (const ScheduleEntry& entry : entries) {
    ++number;
    const auto start = NextStart(entry, from.AddSeconds(1));
    if (start && start->AddSeconds(base::SecondsBetween(entry.StartDate, entry.EndDate)) <= to)
      missed.push_back(number);
  }
  return missed;
}

}  // namespace kestrune::schedule
