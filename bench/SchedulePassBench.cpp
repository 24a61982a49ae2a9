// What the schedule costs each fourth second: the search through ten enabled entries of which none is due.
#include <string>

#include <benchmark/benchmark.h>

#include "base/DateValue.h"
#include "schedule/entries/DueSearch.h"
#include "schedule/entries/ScheduleEntry.h"

namespace {

using kestrune::base::DateValue;
using namespace kestrune::schedule;

// A Wednesday at noon; each entry runs in the evening.
const DateValue kNow = DateValue::FromCivil(2005, 3, 9, 12, 0, 0);

void Search(benchmark::State& state, DateValue day) {
  ScheduleEntries entries;
  for (ScheduleEntry& entry : entries) {
    entry.Enabled = true;
    entry.StartDate = day.AddHours(20);
    entry.EndDate = entry.StartDate.AddHours(1).AddSeconds(59);
  }
  const DueSearch search(entries, [] { return kNow; });
  for ([[maybe_unused]] auto step : state) benchmark::DoNotOptimize(search.Find());
}

void BenchWeeklyEntries(benchmark::State& state) {
  Search(state, DateValue::FromCivil(1967, 1, 4));
}
void BenchDailyEntries(benchmark::State& state) {
  Search(state, DateValue::FromCivil(1967, 1, 15));
}
void BenchSingleDates(benchmark::State& state) {
  Search(state, DateValue::FromCivil(2005, 3, 9));
}

BENCHMARK(BenchWeeklyEntries);
BENCHMARK(BenchDailyEntries);
BENCHMARK(BenchSingleDates);

}  // namespace
