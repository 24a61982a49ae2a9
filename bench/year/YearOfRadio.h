#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "flow/DirectHistoryStore.h"
#include "platform/posix/IniSettingsStore.h"
#include "support/MemoryFolder.h"
#include "support/UnitRig.h"
#include "year/CrampedDisk.h"
#include "year/DirectMender.h"
#include "year/YearSound.h"

namespace kestrune::test {

/// A unit that runs for a year with all that it can do: 120 channels are written down, songs are recorded by ten events,
/// by hand and from hints, cut by text and by listening, kept from the shelf, asked for in report and search, while things
/// outside fail. Files, encoder, tags, settings and database are real; radio, sound and time are simulated. In the first
/// third the program crashes or is started again every few days, then it runs without an end. All of it follows from the
/// seed.
class YearOfRadio {
 public:
  struct Plan {
    std::uint32_t Seed = 1;
    int Days = 365;
    int KeptDays = 90;  ///< for so long the record keeps what happened
  };
  /// What it takes at one moment.
  struct Look {
    std::chrono::hours At{0};
    std::int64_t HeapBytes = 0;  ///< in use, but for the lines of the log's list
    std::int64_t ResidentBytes = 0;
    std::int64_t Handles = 0;
    std::int64_t RecordBytes = 0;
    std::int64_t LogBytes = 0;
    std::int64_t ShelfFiles = 0;
    std::int64_t ShelfBytes = 0;
  };
  /// Rows of the record, and lines of the log.
  struct Rows {
    std::int64_t Plays = 0;
    std::int64_t Titles = 0;
    std::int64_t Songs = 0;
    std::int64_t Events = 0;
    std::int64_t Incidents = 0;
    std::int64_t Stations = 0;
    std::int64_t LogLines = 0;
  };
  /// Counted since the beginning.
  struct Tally {
    std::int64_t PlaysWritten = 0;
    std::int64_t SongsKept = 0;
    std::int64_t Recovered = 0;
    std::int64_t Failures = 0;
    std::int64_t Reports = 0;
    int Starts = 0;
  };

  explicit YearOfRadio(const Plan& plan);
  ~YearOfRadio();
  YearOfRadio(const YearOfRadio&) = delete;
  YearOfRadio& operator=(const YearOfRadio&) = delete;

  /// Looks four times a day.
  void Run(const std::function<void(const Look& look)>& looked);

  /// After so much of it the program is not started again any more.
  [[nodiscard]] std::chrono::hours LastStart() const { return std::chrono::hours(plan_.Days * 8); }
  [[nodiscard]] Rows RowsNow() const;
  [[nodiscard]] const Tally& Sum() const { return tally_; }
  [[nodiscard]] const std::vector<std::string>& Complaints() const { return complaints_; }

 private:
  class Audio;
  using Milliseconds = std::chrono::milliseconds;

  void WriteSettings() const;
  void PlanEvents() const;
  void PlanOnce();
  void ListenForAWhile();
  void StartUnit();
  void EndUnit(bool crash);
  void StartAnew();
  void ChangeSong(int channel);
  void RenameStation();
  void FailSomething();
  void DoSomething();
  void ChangeSetting();
  void AskSomething();
  void LookOver();
  void TakeFiles();
  [[nodiscard]] Look LookNow() const;
  void Every(std::chrono::seconds least, std::chrono::seconds most, std::function<void()> what);
  void Later(std::chrono::seconds after, std::function<void()> what) {
    loop_.AtHardware(after, std::move(what));
  }
  void Check(bool holds, const std::string& complaint);
  [[nodiscard]] int Draw(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  [[nodiscard]] std::string Music() const { return folder_ / "music"; }
  [[nodiscard]] std::string Data() const { return folder_ / "home/Application Data/Kestrune"; }
  [[nodiscard]] std::string Record() const { return folder_ / "History.db"; }

  Plan plan_;
  std::mt19937 random_;
  MemoryFolder folder_;
  SimulatedEventLoop loop_;
  TestRadio radio_{loop_};
  YearSound sound_{loop_};
  CrampedDisk files_;
  FakeFileSync fileSync_;
  DirectMender captureMender_{loop_};
  platform::IniSettingsStore store_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  CountedSounds sounds_;
  recorder::Windows windows_;
  platform::SerialEnumerator serialEnumerator_;
  FakeWeb web_;
  FakeProcesses processes_;
  FakeSleepInhibitor sleepInhibitor_;
  DirectHistoryStore history_;
  std::unique_ptr<Audio> audio_;
  std::unique_ptr<recorder::Kestrune> unit_;
  std::unique_ptr<presenters::UnitPresenters> rules_;

  bool closed_ = false;
  bool running_ = false;  // the start is over
  bool restartDue_ = false;
  std::int64_t newSongs_ = 0;
  int deaf_ = 0;  // how many failures at work have these in common
  int unplugged_ = 0;
  int silent_ = 0;
  int full_ = 0;

  Tally tally_;
  std::vector<std::string> complaints_;
};

}  // namespace kestrune::test
