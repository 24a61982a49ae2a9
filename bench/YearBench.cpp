// A unit with all that it can do, left to run for a long time: a line a month, or a day of a short run, tells what it takes.
// KESTRUNE_BENCH_DAYS=365 runs a year (4 days otherwise), KESTRUNE_SEED another year. Memory and database are to be flat: once
// the record is as old as it may become and the program is not started again any more, what is used in the second half of
// what remains is compared with the first half. Medians are, since both go up and down with the songs and the days.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "year/YearOfRadio.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using Look = YearOfRadio::Look;

/// By how much the medians of two halves may differ, though nothing grows: what is in hand at the moments of the looks.
constexpr double kMostHeapGrown = 200'000;
constexpr double kMostResidentGrown = 2'000'000;
constexpr double kMostRecordGrown = 0.05;

int NumberOf(const char* variable, int otherwise) {
  const char* told = std::getenv(variable);
  return told != nullptr ? std::atoi(told) : otherwise;
}

double ProcessorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

struct Halves {
  double First = 0;
  double Second = 0;
};

/// The medians of a field of the looks, those of the first half and those of the second.
Halves HalvesOf(const std::vector<Look>& looks, std::int64_t Look::*field) {
  std::vector<double> first;
  std::vector<double> second;
  for (std::size_t i = 0; i < looks.size(); ++i)
    (i < looks.size() / 2 ? first : second).push_back(static_cast<double>(looks[i].*field));
  return {Median(first), Median(second)};
}

void PrintHead() {
  fmt::print(
      "{:>4} {:>8} {:>9} {:>5} {:>10} {:>8} {:>7} {:>6} {:>8} {:>6} {:>9} {:>8} {:>10} {:>5} {:>10} {:>6} "
      "{:>6} {:>7}\n",
      "day", "heap", "resident", "files", "record", "plays", "titles", "songs", "stations", "events",
      "incidents", "lines", "log", "shelf", "bytes", "kept", "starts", "seconds");
}

void Print(const Look& look, const YearOfRadio& year, double seconds) {
  const YearOfRadio::Rows rows = year.RowsNow();
  fmt::print(
      "{:4} {:8} {:9} {:5} {:10} {:8} {:7} {:6} {:8} {:6} {:9} {:8} {:10} {:5} {:10} {:6} {:6} {:7.0f}\n",
      look.At / 24h, look.HeapBytes, look.ResidentBytes, look.Handles, look.RecordBytes, rows.Plays,
      rows.Titles, rows.Songs, rows.Stations, rows.Events, rows.Incidents, rows.LogLines, look.LogBytes,
      look.ShelfFiles, look.ShelfBytes, year.Sum().SongsKept, year.Sum().Starts, seconds);
  std::fflush(stdout);
}

void Year(benchmark::State& state) {
  const int days = std::max(4, NumberOf("KESTRUNE_BENCH_DAYS", 4));
  const YearOfRadio::Plan plan{.Seed = static_cast<std::uint32_t>(NumberOf("KESTRUNE_SEED", 1)),
                               .Days = days,
                               .KeptDays = std::min(90, days / 4)};
  const std::chrono::hours step = days < 60 ? 24h : 30 * 24h;
  for ([[maybe_unused]] auto iteration : state) {
    YearOfRadio year(plan);
    fmt::print("seed {}, {} days, the record of {} of them\n", plan.Seed, plan.Days, plan.KeptDays);
    PrintHead();
    const std::chrono::hours settled =
        std::max<std::chrono::hours>(plan.KeptDays * 24h, year.LastStart()) + 24h;
    std::vector<Look> looks;
    const double began = ProcessorSeconds();
    year.Run([&](const Look& look) {
      if (look.At >= settled) looks.push_back(look);
      if (look.At / step != (look.At - 6h) / step) Print(look, year, ProcessorSeconds() - began);
    });
    const Halves heap = HalvesOf(looks, &Look::HeapBytes);
    const Halves resident = HalvesOf(looks, &Look::ResidentBytes);
    const Halves files = HalvesOf(looks, &Look::Handles);
    const Halves record = HalvesOf(looks, &Look::RecordBytes);
    state.counters["seconds_a_day"] = (ProcessorSeconds() - began) / days;
    state.counters["heap"] = heap.Second;
    state.counters["heap_grown"] = heap.Second - heap.First;
    state.counters["resident"] = resident.Second;
    state.counters["resident_grown"] = resident.Second - resident.First;
    state.counters["record"] = record.Second;
    state.counters["record_grown"] = record.Second - record.First;
    state.counters["plays"] = static_cast<double>(year.Sum().PlaysWritten);
    state.counters["songs_kept"] = static_cast<double>(year.Sum().SongsKept);
    state.counters["recovered"] = static_cast<double>(year.Sum().Recovered);
    state.counters["reports"] = static_cast<double>(year.Sum().Reports);
    state.counters["failures"] = static_cast<double>(year.Sum().Failures);
    for (const std::string& complaint : year.Complaints()) fmt::print("{}\n", complaint);
    if (!year.Complaints().empty()) state.SkipWithError("see the complaints");
    if (heap.Second - heap.First > kMostHeapGrown || resident.Second - resident.First > kMostResidentGrown)
      state.SkipWithError("the memory grows");
    if (files.Second > files.First + 1) state.SkipWithError("files stay open");
    if (record.Second > record.First * (1 + kMostRecordGrown)) state.SkipWithError("the record grows");
  }
}
BENCHMARK(Year)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
}  // namespace kestrune::test
