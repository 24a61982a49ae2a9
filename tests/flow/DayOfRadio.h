#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "flow/LedgerCaptureFile.h"
#include "support/FaultyLine.h"
#include "support/UnitRig.h"

namespace kestrune::test {

/// A unit left running: songs change on all channels, a user records, stops, tunes and changes options now and
/// then, and the line and the radio have bad moments. All of it follows from the seed. The state is checked once
/// a second; what does not add up is kept as a complaint.
class DayOfRadio {
 public:
  struct Plan {
    std::uint32_t Seed = 1;
    std::chrono::hours Length{24};
    FaultyLine::Faults Faults{};
    bool BadMoments = true;  ///< the radio falls silent, is switched off, comes back on another channel
    bool Unplugs = false;    ///< once its cable is pulled, and plugged in again
    bool User = true;        ///< somebody presses buttons
    bool Watch = true;       ///< the setting of that name
    int Channels = 40;       ///< of which each has a new song every three minutes; 40 to 120
    bool Record = true;      ///< keeps the record of what happened in memory; else it is only fed
    bool Schedule = false;   ///< and plans events, and the wall clock is set now and then
    bool Shelf = false;      ///< what is not kept goes to a shelf of seven songs, and the user keeps some
    bool Listens = false;    ///< songs are cut by listening, and by text again now and then
  };

  explicit DayOfRadio(const Plan& plan);
  ~DayOfRadio();

  void Run();

  [[nodiscard]] const std::vector<std::string>& Complaints() const { return complaints_; }
  [[nodiscard]] const CutLedger& Ledger() const { return ledger_; }
  /// All lines of the log, without their time stamps.
  [[nodiscard]] const std::vector<std::string>& LogTexts() const { return logTexts_; }
  [[nodiscard]] std::uint64_t HandlersRun() const { return loop_.HandlersRun(); }
  [[nodiscard]] std::int64_t FramesLost() const { return framesLost_; }
  [[nodiscard]] int SongsKept() const { return songsKept_; }
  [[nodiscard]] int EventsBegun() const { return eventsBegun_; }
  /// Complete songs whose names give another channel than the one that the radio really played for most of them.
  [[nodiscard]] const std::vector<std::string>& Misnamed() const { return misnamed_; }
  /// By how many bytes the memory has grown in the second half, but for the log: its file, its list and the texts here.
  [[nodiscard]] std::int64_t BytesGrown() const { return bytesGrown_; }
  [[nodiscard]] bool LineOpenAtTheEnd() const { return lineOpenAtTheEnd_; }

 private:
  class Audio;

  void ChangeSongs();
  /// What a user does waits at the door like everything from outside.
  void AsAWish(std::function<void()> act);
  void PressSomething();
  void HaveABadMoment();
  void PullTheCable();
  void TakeSong(const std::string& path);
  void PlanSomething();
  void LookOver();
  void FollowSession();
  void BeginSession();
  void TakeLogLine(const std::string& line);
  void Check(bool holds, const std::string& complaint);
  [[nodiscard]] int Draw(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }
  void Every(std::chrono::milliseconds least, std::chrono::milliseconds most, std::function<void()> what);

  Plan plan_;
  std::mt19937 random_;
  SimulatedEventLoop loop_;
  TestRadio radio_{loop_};
  FaultyLine line_;
  SimulatedSoundSource sound_{loop_, std::chrono::milliseconds(100)};
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
  FakeHistoryStore history_{loop_};
  CutLedger ledger_;
  std::unique_ptr<Audio> audio_;
  std::unique_ptr<recorder::Kestrune> unit_;

  std::vector<std::string> complaints_;
  bool closed_ = false;
  int song_ = 0;
  int songsKept_ = 0;
  int eventsBegun_ = 0;
  std::vector<std::string> misnamed_;
  bool lineOpenAtTheEnd_ = false;
  std::int64_t logBytes_ = 0;
  std::int64_t bytesHalfway_ = 0;
  std::int64_t bytesGrown_ = 0;
  std::int64_t framesLost_ = 0;
  std::vector<std::string> logTexts_;
  bool requested_ = false;         ///< whether recording was asked for at the last check
  bool sessionAnnounced_ = false;  ///< the log announced a recording that has not been seen to begin
  int keptThisSession_ = 0;
  int refusedThisSession_ = 0;
};

}  // namespace kestrune::test
