#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "flow/DirectHistoryStore.h"
#include "flow/WhereaboutsFile.h"
#include "history/Report.h"
#include "platform/posix/TemporaryFolder.h"
#include "support/UnitRig.h"

namespace kestrune::test {

/// A unit left alone with eight events a day, while everything outside fails at random: the radio is unplugged, loses
/// its power, answers nothing, comes back under another name; the sound falls silent, the input goes away; the disk
/// fills; the machine sleeps; its clock is set; the program crashes and is started again over the same folder and the
/// same record. All of it follows from the seed. What does not add up is kept as a complaint:
///
/// 1. Each minute of each event is in a file, or an incident or a told reason in the record accounts for it, and the
///    report on it knows why.
/// 2. No device is opened, no file is tried and no command is sent more often than it should be.
/// 3. What the record takes is bounded, and so is the memory.
class WeekOfFailures {
 public:
  struct Plan {
    std::uint32_t Seed = 1;
    std::chrono::hours Length{168};
  };

  explicit WeekOfFailures(const Plan& plan);
  ~WeekOfFailures();

  void Run();

  [[nodiscard]] const std::vector<std::string>& Complaints() const { return complaints_; }
  /// How often each thing has failed, by its name.
  [[nodiscard]] const std::map<std::string, int>& Failures() const { return failures_; }
  /// What became of the events, in seconds of them.
  struct Tally {
    std::int64_t Planned = 0;
    std::int64_t InFiles = 0;
    std::int64_t Explained = 0;
    std::int64_t Unexplained = 0;
    int Events = 0;
  };
  [[nodiscard]] const Tally& Events() const { return tally_; }
  [[nodiscard]] std::int64_t RecordBytes() const { return recordBytes_; }
  /// By how much the memory has grown in the second half, but for the account that is kept here, the log and its list.
  [[nodiscard]] std::int64_t BytesGrown() const { return bytesGrown_; }
  [[nodiscard]] int Starts() const { return starts_; }
  [[nodiscard]] std::uint64_t HandlersRun() const { return loop_.HandlersRun(); }

 private:
  class Audio;
  using Milliseconds = std::chrono::milliseconds;

  /// What the wall clock showed, second by second of the steady clock.
  struct Second {
    std::int64_t Wall = 0;
    bool InFile = false;
    bool Unwatched =
        false;  ///< the program did not run, and the clock was set meanwhile: nobody could see how long
  };
  /// A time that the wall clock went past at once.
  struct Skipped {
    std::int64_t From = 0;
    std::int64_t To = 0;
  };
  struct PlannedEvent {
    int Entry = 0;
    int StartMinute = 0;
    int Minutes = 0;
    bool WholeSongs = false;
  };

  void PlanEvents();
  void StartUnit();
  void Crash();
  void Close();
  void ChangeSong(int channel);
  void FailSomething(int least, int most);
  void LookOutside();
  void LookOver();
  void CheckPace();
  void CheckReport();
  void TakeFiles();
  void AccountForEvents();
  [[nodiscard]] bool IsExplained(const PlannedEvent& event, std::int64_t wall) const;
  void CollectExplanations();
  /// Adds a song to those that explain what is missing. Its times are those of the clock at its end: what sounded before
  /// the clock was set had other ones.
  void Explain(std::vector<std::pair<std::int64_t, std::int64_t>>& spans,
               const platform::HistorySong& song) const;
  void Check(bool holds, const std::string& complaint);
  /// What the process has allocated besides what has to grow; 0 where a sanitizer keeps the memory.
  [[nodiscard]] std::int64_t BytesInUse() const;
  void Later(std::chrono::seconds after, std::function<void()> what) {
    loop_.AtHardware(after, std::move(what));
  }
  [[nodiscard]] int Draw(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  [[nodiscard]] std::int64_t SecondNow() const { return loop_.SteadyNow().count() / 1000; }

  Plan plan_;
  std::mt19937 random_;
  SimulatedEventLoop loop_;
  TestRadio radio_{loop_};
  SimulatedSoundSource sound_{loop_, Milliseconds(100)};
  MemoryFiles files_;
  FakeFileSync fileSync_;
  FakeCaptureMender captureMender_{loop_, files_};
  MemorySettingsStore store_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  CountedSounds sounds_;
  recorder::Windows windows_;
  platform::SerialEnumerator serialEnumerator_;
  FakeWeb web_;
  FakeProcesses processes_;
  FakeSleepInhibitor sleepInhibitor_;
  TemporaryFolder folder_;
  DirectHistoryStore history_;
  Whereabouts whereabouts_;
  std::unique_ptr<Audio> audio_;
  std::unique_ptr<recorder::Kestrune> unit_;

  std::vector<PlannedEvent> events_;
  bool crashDue_ = false;
  bool closed_ = false;
  bool running_ = false;  // the start is over
  int song_ = 0;
  int clocksSet_ = 0;
  int starts_ = 0;
  int deaf_ = 0;  // how many failures at work have these in common
  int unpowered_ = 0;
  int unplugged_ = 0;
  int silent_ = 0;
  int full_ = 0;

  std::vector<Second> seconds_;
  std::vector<Skipped> skipped_;
  std::vector<Skipped> clockSteps_;  // also back
  std::vector<bool> inFinalFile_;    // by the number of the capture
  std::int64_t runningSince_ = 0;
  std::size_t openingsSeen_ = 0;
  Milliseconds lastOpening_{0};
  Milliseconds paceSince_{0};  // the outage, or the last jump of the clocks in it
  bool up_ = true;
  int triesSeen_ = 0;
  std::int64_t recordBytes_ = 0;
  std::int64_t bytesHalfway_ = 0;
  std::int64_t bytesGrown_ = 0;

  std::vector<std::pair<std::int64_t, std::int64_t>> incidents_;  // wall times
  std::vector<std::pair<std::int64_t, std::int64_t>> dropped_;
  std::vector<std::pair<std::int64_t, std::int64_t>> notWhole_;

  Tally tally_;
  std::map<std::string, int> failures_;
  std::vector<std::string> complaints_;
};

}  // namespace kestrune::test
