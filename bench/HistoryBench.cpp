// The record of what happened at 120 channels: how long a search takes in 90 days of it (about three million rows),
// how large they are, and what the feeding costs.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <utility>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include "history/History.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistoryWriter.h"
#include "platform/sqlite/PlayCounter.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune {
namespace {

using base::DateValue;

constexpr int kChannels = 120;
constexpr int kTitlesAChannel = 600;
constexpr int kDays = 90;
constexpr int kSecondsASong = 312;

const DateValue kEnd = DateValue::FromCivil(2066, 11, 21, 20, 0, 0);

std::string Word(std::uint32_t number) {
  constexpr std::array kSyllables{"ba", "re",  "mon", "ti",  "lu", "sha", "ven", "do",
                                  "ke", "ria", "nor", "sel", "wa", "pi",  "gus", "fe"};
  std::string word;
  for (int i = 0; i < 3; ++i, number /= 16) word += kSyllables.at(number % 16);
  return word;
}

std::string Artist(int channel, int title) {
  return Word(static_cast<std::uint32_t>(channel * 97 + title / 10)) + " and the " +
         Word(static_cast<std::uint32_t>(title / 7));
}
std::string Title(int channel, int title) {
  return Word(static_cast<std::uint32_t>(channel * 31 + title)) + " " +
         Word(static_cast<std::uint32_t>(title * 13 + channel)) + fmt::format(" {}", title);
}

class Folder {
 public:
  Folder() {
    std::string name = std::filesystem::temp_directory_path().string() + "/kestrune-bench-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  [[nodiscard]] std::string Record() const { return path_ + "/History.db"; }

 private:
  std::string path_;
};

/// Ninety days of all channels, made once.
class NinetyDays {
 public:
  static NinetyDays& Get() {
    static NinetyDays made;
    return made;
  }
  [[nodiscard]] std::string Path() const { return folder_.Record(); }

 private:
  NinetyDays() {
    const std::atomic<bool> stop{false};
    auto opened = platform::OpenHistoryFile(folder_.Record(), stop);
    if (opened.Database == nullptr) std::abort();
    platform::HistoryWriter writer(*opened.Database, {});
    std::minstd_rand dice(1);
    // In the order of their ends, as the program does, but more at once.
    std::array<int, kChannels> began{};
    for (int& second : began) second = static_cast<int>(dice() % kSecondsASong);
    platform::HistoryRows rows;
    for (int second = 0; second < kDays * 86400; ++second) {
      for (int channel = 0; channel < kChannels; ++channel) {
        int& from = began.at(static_cast<std::size_t>(channel));
        if (second - from < kSecondsASong) continue;
        const int title = static_cast<int>(dice() % kTitlesAChannel);
        rows.Plays.push_back({.Channel = static_cast<std::int16_t>(channel + 1),
                              .Station = fmt::format("Station {}", channel),
                              .Genre = fmt::format("Genre {}", channel / 10),
                              .Artist = Artist(channel, title),
                              .Title = Title(channel, title),
                              .From = kEnd.AddSeconds(from - kDays * 86400),
                              .To = kEnd.AddSeconds(second - kDays * 86400)});
        from = second + static_cast<int>(dice() % 60) - 30;
      }
      if (second % 3600 != 0 || rows.Count() == 0) continue;
      if (!writer.Write(rows)) std::abort();
      rows = {};
    }
  }

  Folder folder_;
};

void Search(benchmark::State& state, const platform::HistorySearch& search) {
  const std::atomic<bool> stop{false};
  const auto database = platform::OpenHistoryForQuestions(NinetyDays::Get().Path(), stop);
  platform::HistoryReader reader(*database);
  std::size_t found = 0;
  for ([[maybe_unused]] auto step : state) {
    const auto plays = reader.Search(search);
    if (!plays) return state.SkipWithError(database->Failure().Cause().c_str());
    found = plays->size();
    database->ReleaseMemory();
  }
  state.counters["found"] = static_cast<double>(found);
  state.counters["rows"] = static_cast<double>(database->NumberOf("SELECT count(*) FROM play").value_or(0));
  state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(NinetyDays::Get().Path()));
}

platform::HistorySearch For(std::string text, std::int16_t channel = 0, std::optional<DateValue> since = {}) {
  return {.Text = std::move(text), .Channel = channel, .Since = since, .Limit = 50};
}

BENCHMARK_CAPTURE(Search, OneSong, For(Title(60, 300)));
BENCHMARK_CAPTURE(Search, AWordOfSome, For("moriase"));
BENCHMARK_CAPTURE(Search, AWordOfNone, For("zzzzzz"));
BENCHMARK_CAPTURE(Search, AWordOfAll, For("and"));
BENCHMARK_CAPTURE(Search, ThreeLetters, For("sel"));
BENCHMARK_CAPTURE(Search, TwoWords, For("mon 300"));
BENCHMARK_CAPTURE(Search, TwoLetters, For("zz"));
BENCHMARK_CAPTURE(Search, AllOfAChannel, For("", 44));
BENCHMARK_CAPTURE(Search, AWordOnAChannel, For("sel", 44));
BENCHMARK_CAPTURE(Search, AChannelThatIsNoMore, For("", 200));
BENCHMARK_CAPTURE(Search, SinceYesterday, For("sel", 0, kEnd.AddDays(-1)));

/// All pieces of one answer; between them other questions are answered.
void MostPlayed(benchmark::State& state, const platform::MostPlayedSearch& search) {
  using std::chrono::duration;
  using std::chrono::steady_clock;
  const std::atomic<bool> stop{false};
  const auto database = platform::OpenHistoryForQuestions(NinetyDays::Get().Path(), stop);
  double longest = 0;
  double pieces = 0;
  std::size_t found = 0;
  for ([[maybe_unused]] auto step : state) {
    platform::PlayCounter counter(search);
    auto piece = platform::PlayCounter::Piece::More;
    for (pieces = 0; piece == platform::PlayCounter::Piece::More; ++pieces) {
      const auto began = steady_clock::now();
      piece = counter.CountOn(*database);
      database->ReleaseMemory();
      longest = std::max(longest, duration<double>(steady_clock::now() - began).count());
    }
    const auto began = steady_clock::now();
    found = counter.MostPlayed().size();
    longest = std::max(longest, duration<double>(steady_clock::now() - began).count());
  }
  state.counters["found"] = static_cast<double>(found);
  state.counters["pieces"] = pieces;
  state.counters["longest_piece_ms"] = longest * 1000;
}

platform::MostPlayedSearch Most(platform::PlayedAs as, std::int16_t channel = 0,
                                std::optional<DateValue> since = {}) {
  return {.As = as, .Channel = channel, .Since = since, .Limit = 50};
}

BENCHMARK_CAPTURE(MostPlayed, Artists, Most(platform::PlayedAs::Artist))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MostPlayed, Songs, Most(platform::PlayedAs::Song))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MostPlayed, SongsOfAChannel, Most(platform::PlayedAs::Song, 44))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MostPlayed, SongsOfAWeek, Most(platform::PlayedAs::Song, 0, kEnd.AddDays(-7)))
    ->Unit(benchmark::kMillisecond);

/// The processor time of the whole process, in seconds.
double ProcessTime() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  double size = 0;
  double resident = 0;
  statm >> size >> resident;
  return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

/// Five replies a second, as the radio gives them; a song ends on each channel every five minutes, and the record is
/// written as it is in the program.
void Feed(benchmark::State& state) {
  constexpr int kHours = 24;
  for ([[maybe_unused]] auto step : state) {
    const Folder folder;
    test::SimulatedEventLoop loop(kEnd);
    ::malloc_trim(0);
    const double residentBefore = ResidentBytes();
    platform::SqliteHistoryStore store(loop, folder.Record());
    history::History history(store, loop);
    history.Begin();
    const double before = ProcessTime();
    double replies = 0;
    for (int tick = 0; tick < kHours * 3600 * 5; ++tick) {
      const int channel = tick % kChannels;
      const int title = (tick / (5 * kSecondsASong) * 7 + channel) % kTitlesAChannel;
      const std::string artist = Artist(channel, title);
      const std::string song = Title(channel, title);
      const auto began = std::chrono::steady_clock::now();
      history.Heard(static_cast<std::int16_t>(channel + 1),
                    {.Station = "Station", .Genre = "Genre", .Artist = artist, .Title = song});
      replies += std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
      if (tick % 300 == 299) {
        loop.Run(std::chrono::seconds(60));
        // Each minute's piece by itself, as in the program: a simulated minute leaves the thread no time.
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    }
    state.counters["core_percent"] = (ProcessTime() - before) / (kHours * 3600.0) * 100;
    state.counters["main_thread_percent"] = replies / (kHours * 3600.0) * 100;
    state.counters["resident_bytes"] = ResidentBytes() - residentBefore;
    history.Close("");
  }
}
/// What a cut pays on the main thread: the row of a song, handed over every tenth time.
void EndSong(benchmark::State& state) {
  const Folder folder;
  test::SimulatedEventLoop loop(kEnd);
  platform::SqliteHistoryStore store(loop, folder.Record());
  history::History history(store, loop);
  history.Begin();
  platform::HistorySong song;
  song.Began = song.Ended = kEnd;
  song.Station = "Station";
  song.Artist = Artist(44, 1);
  song.Title = Title(44, 1);
  song.File = "/music/Rock/44 - Station/" + song.Artist + " - " + song.Title + ".mp3";
  int songs = 0;
  for ([[maybe_unused]] auto step : state) {
    history.SongEnded(song);
    if (++songs % 10 == 0) loop.Run(history::History::kSoon);
  }
}
BENCHMARK(EndSong)->Iterations(2000);

BENCHMARK(Feed)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace kestrune
