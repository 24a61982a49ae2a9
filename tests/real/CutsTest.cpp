#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/CutLedger.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

constexpr double kSongSeconds = 3;

/// A player that is late fills its place with silence, which no cut can be blamed for; more than this, and
/// the sound that went in is not the one that was meant to be measured.
constexpr std::int64_t kMostSilence = 44100;

/// As many as fit into a minute; the variable raises it for a longer run.
int WantedCuts() {
  const char* wanted = std::getenv("KESTRUNE_CUTS");
  return wanted == nullptr ? 20 : std::max(1, std::atoi(wanted));
}

unsigned Seed() {
  const char* asked = std::getenv("KESTRUNE_SEED");
  const unsigned seed = asked != nullptr ? static_cast<unsigned>(std::atol(asked)) : std::random_device{}();
  std::cout << "seed " << seed << std::endl;
  return seed;
}

/// Units record the same kind of sound at once, over three roads and, over one of them, with cuts by listening, as FLAC and as Opus: songs
/// of three seconds, all kept. Where cuts are made by listening, Stop and Record are pressed at random moments too.
class Cuts : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!PrivatePulse::Installed()) return;
    world_ = new World;
    if (StartAll()) RecordAll();
  }
  static void TearDownTestSuite() {
    delete world_;
    world_ = nullptr;
  }

  void SetUp() override {
    if (world_ == nullptr) GTEST_SKIP() << "PulseAudio is not installed";
    ASSERT_EQ(world_->Trouble, "");
  }

  static void ExpectUnbroken(const std::string& road) {
    const Track& track = world_->Tracks.at(road);
    ASSERT_EQ(track.Trouble, "");
    CutLedger ledger = ReadCutLedger(track.Recorder->Recordings());
    RecordProperty(road + "_pauses", std::to_string(track.Pauses.size()));
    TakeAwayPauses(track, ledger);
    RecordProperty(road + "_frames", std::to_string(ledger.Frames));
    // One cut lies between each two files.
    EXPECT_GT(ledger.Files, WantedCuts());
    EXPECT_GT(ledger.Frames, static_cast<std::int64_t>(WantedCuts() * kSongSeconds / 2 * 44100));
    EXPECT_EQ(ledger.Lost, 0);
    EXPECT_EQ(ledger.Doubled, 0);
    EXPECT_LE(ledger.Silent, kMostSilence);
    EXPECT_EQ(track.SamplesLost, 0);
  }

  /// Numbers do not outlive every format; the lengths do.
  static void ExpectCapturedLengths(const std::string& road) {
    const Track& track = world_->Tracks.at(road);
    ASSERT_EQ(track.Trouble, "");
    EXPECT_EQ(track.SamplesLost, 0);
    int songs = 0;
    for (const Unit::Json& song : track.Songs) {
      if (song.value("fate", "") != "kept") continue;
      const std::string file = song.value("file", "");
      const Decoded sound = DecodeWithOpusdec(file);
      EXPECT_EQ(sound.Rate, 48000);
      EXPECT_EQ(static_cast<std::int64_t>(sound.Frames()) * 1000 / 48000,
                song.value("lengthMs", std::int64_t{-1}))
          << file;
      ++songs;
    }
    EXPECT_GE(songs, WantedCuts());
  }

 private:
  using Clock = std::chrono::steady_clock;

  /// From a press of Stop to the press of Record after it.
  struct Pause {
    Clock::time_point From;
    Clock::time_point To;
  };
  struct Track {
    std::unique_ptr<Receiver> Radio;
    std::unique_ptr<Unit> Recorder;
    Clock::time_point RadioStart;
    std::vector<Pause> Pauses;
    std::int64_t SamplesLost = -1;
    Unit::Json Songs;  ///< as the report tells them
    std::string Trouble;
  };
  struct World {
    PrivatePulse Pulse{
        {"module-null-sink sink_name=radio1 format=s16le rate=44100 channels=2 "
         "sink_properties=device.description=Radio1"}};
    TemporaryFolder Folder;
    std::map<std::string, Track> Tracks;
    std::string Trouble;
  };

  static void StartTrack(const std::string& road, const std::string& sound, const std::string& audio,
                         const std::map<std::string, std::string>& environment,
                         const std::map<std::string, std::string>& more = {}) {
    Track& track = world_->Tracks[road];
    track.RadioStart = Clock::now();
    track.Radio = std::make_unique<Receiver>(
        world_->Folder / (road + "-radio"),
        Receiver::Setup{
            ShortLineUp({"One", "Two", "Three"}, kSongSeconds), sound, "counter", {}, environment});
    auto settings = ShortSongs();
    settings["MinSongLength"] = "0";
    for (const auto& [key, value] : more) settings[key] = value;
    track.Recorder = std::make_unique<Unit>(
        world_->Folder / road, Unit::Setup{audio, track.Radio->Link(), settings, {}, environment});
    track.Recorder->Start();
  }

  static bool StartAll() {
    if (!world_->Pulse.Start()) {
      world_->Trouble = "the sound server does not start";
      return false;
    }
    const auto variables = world_->Pulse.Environment();
    const std::map<std::string, std::string> pulse(variables.begin(), variables.end());
    StartTrack("pulse", "pulse:radio", "pulse", pulse);

    // The ALSA library is led to a sound of this test's own by the user's file in a home folder.
    std::map<std::string, std::string> alsa = pulse;
    alsa["HOME"] = world_->Folder.Path();
    std::ofstream(world_->Folder / ".asoundrc")
        << "pcm.!default { type pulse server \"" << world_->Pulse.Server()
        << "\" device \"radio1.monitor\" }\nctl.!default { type pulse server \"" << world_->Pulse.Server()
        << "\" }\n";
    StartTrack("alsa", "pulse:radio1", "alsa", alsa);

    const std::map<std::string, std::map<std::string, std::string>> pipes{
        {"pipe", {}},
        // Where Stop is pressed, it ends the song in hand.
        {"listening", {{"CutPlacement", "Listen"}, {"Integrel", "False"}}},
        {"flac", {{"FileFormat", "FLAC"}}},
        {"opus", {{"FileFormat", "OPUS"}}}};
    for (const auto& [road, settings] : pipes) {
      const std::string pipe = world_->Folder / (road + "-sound");
      if (::mkfifo(pipe.c_str(), 0600) != 0) {
        world_->Trouble = "no named pipe can be made";
        return false;
      }
      StartTrack(road, "pipe:" + pipe, "pipe:" + pipe, {}, settings);
    }
    return true;
  }

  /// What nobody recorded is not lost: from Stop to the beginning of the song in which Record was pressed, or of the next
  /// one, if its text had come by then.
  static void TakeAwayPauses(const Track& track, CutLedger& ledger) {
    constexpr auto kEarliest = std::chrono::milliseconds(-300);
    constexpr auto kLatest = std::chrono::milliseconds(6000);
    const auto momentOf = [&track](std::int64_t frame) {
      return track.RadioStart + std::chrono::milliseconds(frame * 1000 / 44100);
    };
    for (const std::pair<std::int64_t, std::int64_t>& row : ledger.Missing) {
      const bool paused = std::any_of(track.Pauses.begin(), track.Pauses.end(), [&](const Pause& pause) {
        return momentOf(row.first) >= pause.From + kEarliest && momentOf(row.second) <= pause.To + kLatest;
      });
      if (paused) ledger.Lost -= row.second - row.first;
    }
    std::cout << track.Pauses.size() << " pauses, " << ledger.Files << " files, " << ledger.Lost << " lost, "
              << ledger.Doubled << " doubled" << std::endl;
  }

  static bool Press(const Track& track, const char* button) {
    return WaitUntil(kPatience, [&] { return track.Recorder->Ctl({button}).Exit == 0; });
  }

  /// Presses Stop and Record at random moments until enough songs are kept; Record was pressed before.
  static void PressAtRandom(Track& track) {
    std::mt19937 random(Seed());
    const auto wait = [&random](int least, int most) {
      std::this_thread::sleep_for(
          std::chrono::milliseconds(std::uniform_int_distribution<int>(least, most)(random)));
    };
    const auto deadline = Clock::now() + Patience();
    while (track.Recorder->Recordings().size() <= static_cast<std::size_t>(WantedCuts())) {
      if (Clock::now() > deadline) {
        track.Trouble = "too few songs are kept: " + track.Recorder->LogText();
        return;
      }
      wait(4000, 20000);
      Pause& pause = track.Pauses.emplace_back();
      pause.From = Clock::now();
      const bool stopped = Press(track, "stop");
      wait(0, 5000);
      const bool recorded = Press(track, "record");
      pause.To = Clock::now();
      if (!stopped || !recorded) track.Trouble = "the buttons do not work: " + track.Recorder->LogText();
      if (!track.Trouble.empty()) return;
    }
  }

  [[nodiscard]] static std::chrono::milliseconds Patience() {
    return std::chrono::seconds(WantedCuts() * 2 * static_cast<int>(kSongSeconds)) + kPatience;
  }

  static void RecordAll() {
    for (auto& [road, track] : world_->Tracks) {
      if (!track.Recorder->WaitUntilIdle()) {
        track.Trouble = road + " does not start: " + track.Recorder->Program().Errors();
      } else if (track.Recorder->Ctl({"record"}).Exit != 0) {
        track.Trouble = road + " does not record";
      }
    }
    Track& listening = world_->Tracks.at("listening");
    std::thread presses([&listening] {
      if (listening.Trouble.empty()) PressAtRandom(listening);
    });
    for (auto& [road, track] : world_->Tracks) {
      if (!track.Trouble.empty() || &track == &listening) continue;
      const bool kept = track.Recorder->WaitForStatus(
          [](const Unit::Json& status) { return status.value("recordedCount", 0) > WantedCuts(); },
          Patience());
      if (!kept) track.Trouble = road + " keeps too few songs: " + track.Recorder->LogText();
    }
    presses.join();
    for (auto& [road, track] : world_->Tracks) {
      track.Songs = track.Recorder->Ask({"report", "--since", "3h"}).value("otherSongs", Unit::Json::array());
      track.SamplesLost = track.Recorder->Status().value("samplesLost", std::int64_t{-1});
    }
    for (auto& [road, track] : world_->Tracks) {
      if (track.Trouble.empty() && track.Recorder->Quit() != 0) track.Trouble = road + " does not end well";
    }
  }

  static inline World* world_ = nullptr;
};

TEST_F(Cuts, LoseAndDoubleNothingThroughPulseAudio) {
  ExpectUnbroken("pulse");
}

TEST_F(Cuts, LoseAndDoubleNothingThroughAlsa) {
  ExpectUnbroken("alsa");
}

TEST_F(Cuts, LoseAndDoubleNothingThroughAPipe) {
  ExpectUnbroken("pipe");
}

TEST_F(Cuts, LoseAndDoubleNothingInFlacFiles) {
  ExpectUnbroken("flac");
}

TEST_F(Cuts, LeaveOpusFilesOfTheLengthThatWasCaptured) {
  ExpectCapturedLengths("opus");
}

TEST_F(Cuts, LoseAndDoubleNothingByListening) {
  ExpectUnbroken("listening");
}

}  // namespace
}  // namespace kestrune::test
