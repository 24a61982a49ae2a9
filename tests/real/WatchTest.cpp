// What the real program notices, says and repairs when sound or disk fail.
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/SmallDisk.h"
#include "real/Tone.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::HasSubstr;
using testing::Not;

class Watch : public testing::Test {
 protected:
  static std::string Warning(const Unit& unit) { return unit.Status().value("warning", "?"); }
  static bool WaitForLine(const Unit& unit, const std::string& text, std::chrono::seconds patience) {
    return WaitUntil(patience, [&] { return unit.LogText().find(text) != std::string::npos; });
  }

  TemporaryFolder folder_;
};

TEST_F(Watch, ADiskThatFillsInMidSongCostsOnlyWhatDidNotFit) {
  constexpr double kSongSeconds = 40;
  Receiver radio(folder_ / "radio", {ShortLineUp({"One", "Two"}, kSongSeconds)});
  Unit::Setup setup{"pipe:" + QuietFile(folder_.Path()), radio.Link(), ShortSongs()};
  setup.Settings["FileFormat"] = "WAV";
  // About eight seconds of sound.
  SmallDisk disk(folder_ / "profile/Music/Kestrune", "1400k");
  if (!disk.Trouble().empty()) GTEST_SKIP() << "no small disk can be mounted here: " << disk.Trouble();
  Unit unit(folder_ / "profile", setup);
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  EXPECT_THAT(Warning(unit), HasSubstr("The disk is nearly full: room for 0:00"));
  EXPECT_THAT(unit.LogText(), HasSubstr("Little space on the disk of "));
  ASSERT_EQ(unit.Ctl({"record"}).Exit, 0);
  ASSERT_TRUE(WaitForLine(unit, "Cannot write ", 100s)) << unit.LogText();
  EXPECT_TRUE(WaitForLine(unit, "(Incomplete)\"  Song length: ", 10s)) << unit.LogText();
  EXPECT_EQ(Warning(unit), "The recording cannot be written: No space left on device.");
  disk.Resize("60m");
  EXPECT_TRUE(WaitForLine(unit, "Writing goes on after ", 30s)) << unit.LogText();
  const int before = unit.RecordedCount();
  EXPECT_TRUE(WaitUntil(100s, [&] { return unit.RecordedCount() > before; }));
  EXPECT_EQ(unit.Quit(), 0);
  int incomplete = 0;
  for (const std::string& file : unit.Recordings()) {
    EXPECT_GT(DecodeWithFfmpeg(file).Seconds(), 1) << file;
    if (file.find("(Incomplete)") != std::string::npos) ++incomplete;
  }
  EXPECT_GE(incomplete, 2) << "the piece before and the piece after";
}

/// A sound server that plays a tone, and a unit that records from it.
class SoundWatch : public Watch {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
    ASSERT_TRUE(pulse_.Start());
    const std::string tone = folder_ / "tone.raw";
    ASSERT_EQ(RunToEnd({"sox",
                        {"-n", "-r", "44100", "-c", "2", "-b", "16", "-e", "signed", "-t", "raw", tone,
                         "synth", "600", "sine", "480", "gain", "-6"},
                        {}})
                  .Exit,
              0);
    player_ = pulse_.Play(tone);
    const auto variables = pulse_.Environment();
    Unit::Setup setup{"pulse", radio_.Link(), ShortSongs()};
    setup.Environment = {variables.begin(), variables.end()};
    unit_.emplace(folder_ / "profile", setup);
    unit_->Start();
    ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
    ASSERT_EQ(unit_->Ctl({"record"}).Exit, 0);
    ASSERT_TRUE(unit_->WaitForStatus(
        [](const Json& status) { return status.value("recording", "") == "Recording"; }));
  }

  PrivatePulse pulse_;
  Receiver radio_{folder_ / "radio", {ShortLineUp({"One", "Two", "Three"}, 10)}};
  ChildProcess player_;
  std::optional<Unit> unit_;
};

TEST_F(SoundWatch, AMutedInputIsSilenceAndItsEndIsSaid) {
  ASSERT_TRUE(pulse_.Control({"set-source-mute", PrivatePulse::kMonitor, "1"}));
  EXPECT_TRUE(WaitForLine(*unit_, "No sound from the radio for 20 seconds", 30s)) << unit_->LogText();
  EXPECT_EQ(Warning(*unit_), "No sound comes from the radio: check the cable and the input device.");
  ASSERT_TRUE(pulse_.Control({"set-source-mute", PrivatePulse::kMonitor, "0"}));
  EXPECT_TRUE(WaitForLine(*unit_, "Sound is back after 0:", 10s)) << unit_->LogText();
  EXPECT_EQ(Warning(*unit_), "");
  EXPECT_THAT(unit_->LogText(), Not(HasSubstr("Sound input lost")));
  EXPECT_EQ(unit_->Quit(), 0);
}

TEST_F(SoundWatch, AServerThatStandsStillIsALostInput) {
  pulse_.Halt();
  EXPECT_TRUE(WaitForLine(*unit_, "Sound input lost: ", 20s)) << unit_->LogText();
  EXPECT_THAT(Warning(*unit_), HasSubstr("The sound input is lost: "));
  pulse_.Continue();
  EXPECT_TRUE(WaitForLine(*unit_, "Sound input found again after 0:", 20s)) << unit_->LogText();
  EXPECT_EQ(Warning(*unit_), "");
  EXPECT_EQ(unit_->Quit(), 0);
}

}  // namespace
}  // namespace kestrune::test
