// Two weeks of a schedule with all ten entries, and what people do meanwhile, against the log that a careful
// reader of the calendar would write.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "flow/LedgerCaptureFile.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;

struct LogRow {
  std::string Moment;  ///< earliest; the line comes a pass later at the most
  std::string Text;
};

DateValue Moment(const std::string& text) {
  return base::ParseDate(text).value();
}

// Songs change on all channels at five past, a quarter past and so on, ten minutes apart. Whole songs count
// from the second change after the beginning; pieces from the first.
const std::vector<LogRow> kFortnight = {
    {"Jan 1, 2005 12:00:00", "Scheduled event 7 beginning on channel 51 until Jan 1, 12:30:59 pm"},
    {"Jan 1, 2005 12:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 1, 2005 12:30:59", "Scheduled event 7 completed - 2 songs recorded"},
    {"Jan 1, 2005 23:00:00", "Scheduled event 2 beginning on channel 46 until Jan 1, 11:49:59 pm"},
    {"Jan 1, 2005 23:00:00", "Scheduled event is utilizing Grab/Kill lists"},
    {"Jan 1, 2005 23:49:59", "Scheduled event 2 completed - 5 songs recorded"},
    {"Jan 1, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 2, 12:15:59 am"},
    {"Jan 1, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 2, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 2, 2005 08:00:00", "Scheduled event 3 beginning on channel 47 until Jan 2, 8:30:59 am"},
    {"Jan 2, 2005 08:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 2, 2005 08:30:59", "Scheduled event 3 completed - 2 songs recorded"},
    {"Jan 2, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 3, 12:15:59 am"},
    {"Jan 2, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 3, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 3, 2005 20:00:00", "Scheduled event 4 beginning on channel 48 until Jan 3, 9:00:59 pm"},
    {"Jan 3, 2005 20:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 3, 2005 20:00:00", "Scheduled event is utilizing Grab/Kill lists"},
    {"Jan 3, 2005 21:00:59", "Scheduled event 4 completed - 5 songs recorded"},
    {"Jan 3, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 4, 12:15:59 am"},
    {"Jan 3, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 4, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 4, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 5, 12:15:59 am"},
    {"Jan 4, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 5, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 5, 2005 18:00:00", "Scheduled event 5 beginning on channel 49 until Jan 5, 6:30:59 pm"},
    {"Jan 5, 2005 18:00:00", "Scheduled event is NOT utilizing Cleftune"},
    {"Jan 5, 2005 18:30:59", "Scheduled event 5 completed - 0 songs recorded"},
    {"Jan 5, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 6, 12:15:59 am"},
    {"Jan 5, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 6, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 6, 2005 14:00:00", "Scheduled event 8 beginning on channel 52 until Jan 6, 2:45:59 pm"},
    {"Jan 6, 2005 14:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 6, 2005 14:20:00", "Schedule changed, now recording channel 52"},
    {"Jan 6, 2005 14:45:59", "Scheduled event 8 completed - 2 songs recorded"},
    {"Jan 6, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 7, 12:15:59 am"},
    {"Jan 6, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 7, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 7, 2005 09:00:00", "Scheduled event 6 beginning on channel 50 until Jan 7, 10:00:59 am"},
    {"Jan 7, 2005 09:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 7, 2005 09:20:00", "Schedule changed, now recording until Jan 7, 9:40 am"},
    {"Jan 7, 2005 09:40:59", "Scheduled event 6 completed - 3 songs recorded"},
    {"Jan 7, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 8, 12:15:59 am"},
    {"Jan 7, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 8, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 8, 2005 11:30:00", "Scheduled event 7 beginning on channel 51 until Jan 8, 12:30:59 pm"},
    {"Jan 8, 2005 11:30:00", "Scheduled event is utilizing Integrel"},
    {"Jan 8, 2005 12:30:59", "Scheduled event 7 completed - 5 songs recorded"},
    {"Jan 8, 2005 23:00:00", "Scheduled event 2 beginning on channel 46 until Jan 8, 11:49:59 pm"},
    {"Jan 8, 2005 23:00:00", "Scheduled event is utilizing Grab/Kill lists"},
    {"Jan 8, 2005 23:49:59", "Scheduled event 2 completed - 5 songs recorded"},
    {"Jan 8, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 9, 12:15:59 am"},
    {"Jan 8, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 9, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 9, 2005 08:00:00", "Scheduled event 3 beginning on channel 47 until Jan 9, 8:30:59 am"},
    {"Jan 9, 2005 08:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 9, 2005 08:20:00", "Scheduled event 3 completed - 1 songs recorded"},
    {"Jan 9, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 10, 12:15:59 am"},
    {"Jan 9, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 10, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 10, 2005 20:00:00", "Scheduled event 4 beginning on channel 48 until Jan 10, 9:00:59 pm"},
    {"Jan 10, 2005 20:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 10, 2005 20:00:00", "Scheduled event is utilizing Grab/Kill lists"},
    {"Jan 10, 2005 21:00:59", "Scheduled event 4 completed - 5 songs recorded"},
    {"Jan 10, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 11, 12:15:59 am"},
    {"Jan 10, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 11, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 11, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 12, 12:15:59 am"},
    {"Jan 11, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 12, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 12, 2005 18:00:00", "Scheduled event 5 beginning on channel 49 until Jan 12, 6:30:59 pm"},
    {"Jan 12, 2005 18:00:00", "Scheduled event is NOT utilizing Cleftune"},
    {"Jan 12, 2005 18:30:59", "Scheduled event 5 completed - 0 songs recorded"},
    {"Jan 12, 2005 23:30:00", "Scheduled event 9 beginning on channel 54 until Jan 13, 12:30:59 am"},
    {"Jan 12, 2005 23:30:00", "Scheduled event is utilizing Integrel"},
    {"Jan 12, 2005 23:50:00", "Scheduled event 9 completed - 1 songs recorded"},
    {"Jan 12, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 13, 12:15:59 am"},
    {"Jan 12, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 13, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 13, 2005 00:15:59", "Scheduled event 9 beginning on channel 54 until Jan 13, 12:30:59 am"},
    {"Jan 13, 2005 00:15:59", "Scheduled event is utilizing Integrel"},
    {"Jan 13, 2005 00:30:59", "Scheduled event 9 completed - 0 songs recorded"},
    {"Jan 13, 2005 21:00:00", "Scheduled event 10 beginning on channel 55 until Jan 13, 9:30:59 pm"},
    {"Jan 13, 2005 21:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 13, 2005 21:30:59", "Scheduled event 10 completed - 2 songs recorded"},
    {"Jan 13, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 14, 12:15:59 am"},
    {"Jan 13, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 14, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 14, 2005 09:00:00", "Scheduled event 6 beginning on channel 50 until Jan 14, 9:40:59 am"},
    {"Jan 14, 2005 09:00:00", "Scheduled event is utilizing Integrel"},
    {"Jan 14, 2005 09:40:59", "Scheduled event 6 completed - 3 songs recorded"},
    {"Jan 14, 2005 23:50:00", "Scheduled event 1 beginning on channel 45 until Jan 15, 12:15:59 am"},
    {"Jan 14, 2005 23:50:00", "Scheduled event is utilizing Integrel"},
    {"Jan 15, 2005 00:15:59", "Scheduled event 1 completed - 2 songs recorded"},
    {"Jan 15, 2005 11:30:00", "Scheduled event 7 beginning on channel 51 until Jan 15, 12:30:59 pm"},
    {"Jan 15, 2005 11:30:00", "Scheduled event is utilizing Integrel"},
};

/// Real radio, ticks, sound and files around the events. Hours in which nothing is planned pass in jumps of the
/// wall clock, with a schedule pass after each.
class ScheduledFortnight : public ::testing::Test {
 protected:
  ScheduledFortnight() {
    for (int channel = 40; channel <= 60; ++channel) radio.Channels[channel] = {"Station", "Genre", "", ""};
    PlaySongs();
    for (const LogRow& row : kFortnight) plannedMoments.push_back(Moment(row.Moment));
    const auto set = [this](std::string_view key, std::string_view value) { Set(key, value); };
    set("FileFormat", "WAV");
    set("WAV_Frequency", "1000");
    set("WAV_Channels", "1");
    set("FileDir", "/music/");
    set("MinSongLength", "10");
    set("MaxSongLength", "0");
    set("CheckUpdatesAtStartup", "False");
    set("LegalAgreement", "True");
    set("ShelfSongs", "0");
    set("PortNum", "1");
    files.MakeFolders("/music");
    files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Artist\n2Nobody\n");
    unit = std::make_unique<recorder::Kestrune>(recorder::Outside{.Loop = loop,
                                                                  .pcrComm = radio,
                                                                  .Audio = audio,
                                                                  .Files = files,
                                                                  .FileSync = fileSync,
                                                                  .CaptureMender = captureMender,
                                                                  .Environment = environment,
                                                                  .Settings = store,
                                                                  .Dialogs = dialogs,
                                                                  .Sounds = sounds,
                                                                  .Windows = windows,
                                                                  .SerialEnumerator = serialEnumerator,
                                                                  .Web = web,
                                                                  .Processes = processes,
                                                                  .SleepInhibitor = sleepInhibitor,
                                                                  .HistoryStore = history});
  }

  void Set(std::string_view key, std::string_view value) { store.Put("Lorimel", "Kestrune", key, value); }
  /// `modes` holds the letters of what is on: I(ntegrel), C(leftune), G(rab), K(ill).
  void Entry(int number, const std::string& start, const std::string& duration, int channel,
             const std::string& modes, bool enabled = true) {
    const auto set = [&](const char* name, const std::string& value) {
      Set(name + std::to_string(number), value);
    };
    const auto on = [&](char mode) { return modes.find(mode) == std::string::npos ? "0" : "1"; };
    set("ScheduleEnabled", enabled ? "1" : "0");
    set("ScheduleChannel", std::to_string(channel));
    set("ScheduleStartDate", start);
    set("ScheduleDuration", duration);
    set("ScheduleIntegrel", on('I'));
    set("ScheduleCleftune", on('C'));
    set("ScheduleMatchGrab", on('G'));
    set("ScheduleMatchKill", on('K'));
    set("ScheduleMP3BitRate", "128 Stereo");
  }

  void PlaySongs() {
    constexpr std::int64_t kSong = 600;
    constexpr std::int64_t kFivePast = 300;
    const std::int64_t number = (loop.Now().Seconds() - kFivePast) / kSong;
    if (number == songNumber) return;
    songNumber = number;
    for (int channel = 40; channel <= 60; ++channel) {
      radio.Play(channel, "Artist", fmt::format("Song {}", number));
    }
  }

  /// Seconds to the next line that is expected, 0 within the minute in which one is.
  [[nodiscard]] std::int64_t ToNextLine() const {
    for (const DateValue planned : plannedMoments) {
      if (planned.AddSeconds(60) > loop.Now())
        return std::max<std::int64_t>(0, base::SecondsBetween(loop.Now(), planned));
    }
    return 0;
  }

  void RunTo(const std::string& moment) {
    constexpr std::int64_t kHop = 11 * 60;
    constexpr std::int64_t kLead = 60;
    const DateValue wall = Moment(moment);
    while (loop.Now() < wall) {
      PlaySongs();
      const bool busy = unit->State().Schedule.ActiveSchedule != 0 || unit->State().Recording.RecordRequested;
      const std::int64_t free = std::min(base::SecondsBetween(loop.Now(), wall), ToNextLine());
      if (!busy && free > kLead) {
        loop.StepWallClock(std::chrono::seconds(std::min(kHop, free - kLead)));
      }
      loop.Run(5s);
      radio.Commands.clear();
      files.Calls.clear();
      audio.Tags.clear();
    }
  }

  /// The log lines of the schedule, each with its time stamp.
  [[nodiscard]] std::vector<LogRow> Logged() {
    std::vector<LogRow> rows;
    for (const std::string& line : unit->Parts().Log.List().Lines()) {
      const std::size_t text = line.find(':') + 7;
      if (line.compare(text, 8, "Schedule") != 0) continue;
      rows.push_back({line.substr(0, text - 1), line.substr(text)});
    }
    return rows;
  }

  class Audio final : public platform::AudioLibrary {
   public:
    explicit Audio(ScheduledFortnight& test) : test_(test) {}
    [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override {
      return std::make_unique<platform::RingRecorder>(test_.loop, test_.sound);
    }
    [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override {
      return std::make_unique<LedgerCaptureFile>(test_.ledger, test_.files);
    }
    [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override {
      return std::make_unique<KeptTags>(Tags);
    }
    KeptTags::List Tags;

   private:
    ScheduledFortnight& test_;
  };

  SimulatedEventLoop loop{Moment("Jan 1, 2005 12:00:00")};
  TestRadio radio{loop};
  SimulatedSoundSource sound{loop, 1s};
  MemoryFiles files;
  FakeFileSync fileSync;
  FakeCaptureMender captureMender{loop, files};
  MemorySettingsStore store;
  FakeEnvironment environment;
  ScriptedDialogs dialogs;
  CountedSounds sounds;
  recorder::Windows windows;
  platform::SerialEnumerator serialEnumerator;
  FakeWeb web;
  FakeProcesses processes;
  FakeSleepInhibitor sleepInhibitor;
  FakeHistoryStore history{loop};
  CutLedger ledger;
  Audio audio{*this};
  std::unique_ptr<recorder::Kestrune> unit;
  std::int64_t songNumber = 0;
  std::vector<DateValue> plannedMoments;
};

TEST_F(ScheduledFortnight, TheLogIsWhatTheCalendarSays) {
  Entry(1, "Jan 15, 1967 11:50 PM", "0:25", 45, "IC");
  Entry(2, "Jan 7, 1967 11:00 PM", "0:49", 46, "CK");
  Entry(3, "Jan 1, 1967 8:00 AM", "0:30", 47, "IC");
  Entry(4, "Jan 2, 1967 8:00 PM", "1:00", 48, "ICG");
  Entry(5, "Jan 4, 1967 6:00 PM", "0:30", 49, "");
  Entry(6, "Jan 6, 1967 9:00 AM", "1:00", 50, "IC");
  Entry(7, "Jan 7, 1967 11:30 AM", "1:00", 51, "IC");
  Entry(8, "Jan 6, 2005 2:00 PM", "0:45", 52, "IC");
  Entry(9, "Jan 12, 2005 11:30 PM", "1:00", 54, "IC");
  Entry(10, "Dec 31, 2004 8:00 PM", "1:00", 55, "IC");
  ASSERT_EQ(unit->Load(), recorder::StartOutcome::Running);

  // A recording by hand in the way of Monday's event, and one on Tuesday that is in the way of none.
  RunTo("Jan 3, 2005 19:50:00");
  unit->cmdRecord();
  RunTo("Jan 4, 2005 10:00:00");
  unit->cmdRecord();
  RunTo("Jan 4, 2005 10:12:00");
  unit->cmdStop();
  // The user tunes to another channel in the middle of Thursday's event.
  RunTo("Jan 6, 2005 14:20:00");
  unit->SetChannelNumber(53);
  // The running entry is cut short, and keeps its new length a week later.
  RunTo("Jan 7, 2005 09:20:00");
  Entry(6, "Jan 6, 1967 9:00 AM", "0:40", 50, "IC");
  unit->ReloadSchedule();
  // The running entry is disabled.
  RunTo("Jan 9, 2005 08:20:00");
  Entry(3, "Jan 1, 1967 8:00 AM", "0:30", 47, "IC", false);
  unit->ReloadSchedule();
  // A finished entry gets another date.
  RunTo("Jan 11, 2005 12:00:00");
  Entry(10, "Jan 13, 2005 9:00 PM", "0:30", 55, "IC");
  unit->ReloadSchedule();
  RunTo("Jan 15, 2005 12:00:00");

  const std::vector<LogRow> logged = Logged();
  for (std::size_t i = 0; i < std::min(logged.size(), kFortnight.size()); ++i) {
    ASSERT_EQ(logged[i].Text, kFortnight[i].Text)
        << logged[i].Moment << ", expected " << kFortnight[i].Moment;
    const std::int64_t late = base::SecondsBetween(Moment(kFortnight[i].Moment), Moment(logged[i].Moment));
    EXPECT_GE(late, 0) << kFortnight[i].Moment << ' ' << kFortnight[i].Text;
    // A pass is four seconds; a recording by hand takes one more, and the first event waits for the channels.
    const std::int64_t allowed = i < 2 ? 60 : 10;
    EXPECT_LE(late, allowed) << kFortnight[i].Moment << ' ' << kFortnight[i].Text;
  }
  EXPECT_EQ(logged.size(), kFortnight.size());
  EXPECT_EQ(ledger.Breaks, 0) << "no event took a sample from any file";
  EXPECT_LE(ledger.MostOpen, 1);
}

}  // namespace
}  // namespace kestrune::test
