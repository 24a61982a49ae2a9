#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/CutLedger.h"
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

/// Units record the same kind of sound at once, over three roads and, over one of them, with cuts by listening and as FLAC: songs
/// of three seconds, all kept. A cut by listening is then settled by the next change, seven seconds early.
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
    const CutLedger ledger = ReadCutLedger(track.Recorder->Recordings());
    RecordProperty(road + "_frames", std::to_string(ledger.Frames));
    // One cut lies between each two files.
    EXPECT_GT(ledger.Files, WantedCuts());
    EXPECT_GT(ledger.Frames, static_cast<std::int64_t>(WantedCuts() * (kSongSeconds - 1) * 44100));
    EXPECT_EQ(ledger.Lost, 0);
    EXPECT_EQ(ledger.Doubled, 0);
    EXPECT_LE(ledger.Silent, kMostSilence);
    EXPECT_EQ(track.SamplesLost, 0);
  }

 private:
  struct Track {
    std::unique_ptr<Receiver> Radio;
    std::unique_ptr<Unit> Recorder;
    std::int64_t SamplesLost = -1;
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
        {"pipe", {}}, {"listening", {{"CutPlacement", "Listen"}}}, {"flac", {{"FileFormat", "FLAC"}}}};
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

  static void RecordAll() {
    for (auto& [road, track] : world_->Tracks) {
      if (!track.Recorder->WaitUntilIdle()) {
        track.Trouble = road + " does not start: " + track.Recorder->Program().Errors();
      } else if (track.Recorder->Ctl({"record"}).Exit != 0) {
        track.Trouble = road + " does not record";
      }
    }
    const auto patience = std::chrono::seconds(WantedCuts() * 2 * static_cast<int>(kSongSeconds)) + kPatience;
    for (auto& [road, track] : world_->Tracks) {
      if (!track.Trouble.empty()) continue;
      const bool kept = track.Recorder->WaitForStatus(
          [](const Unit::Json& status) { return status.value("recordedCount", 0) > WantedCuts(); }, patience);
      if (!kept) track.Trouble = road + " keeps too few songs: " + track.Recorder->LogText();
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

TEST_F(Cuts, LoseAndDoubleNothingByListening) {
  ExpectUnbroken("listening");
}

}  // namespace
}  // namespace kestrune::test
