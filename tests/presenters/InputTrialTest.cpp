#include <chrono>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Ignored.h"
#include "presenters/InputTrial.h"
#include "support/FakeEnvironment.h"
#include "support/FakeInputListener.h"
#include "support/MemoryFiles.h"
#include "support/RecordingShell.h"
#include "support/SimulatedEventLoop.h"
#include "support/TrialAudio.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::int32_t kRate = 8000;

class InputTrialTest : public ::testing::Test {
 protected:
  InputTrialTest() { base::Ignored(files_.CreateFolder("/tmp")); }

  /// An input that is this loud from now on brings a tenth of a second at each tenth of a second.
  void Play(std::chrono::milliseconds time, std::int16_t amplitude) {
    for (auto left = time; left > 0ms; left -= 100ms) {
      listener_.Waiting.insert(listener_.Waiting.end(), kRate / 10 * 2, amplitude);
      loop_.Run(100ms);
    }
  }
  /// The same from the recorder.
  void PlayCaptured(std::chrono::milliseconds time, std::int16_t amplitude,
                    platform::PcmFormat format = {kRate, 2}) {
    const std::vector<std::int16_t> block(static_cast<std::size_t>(format.SampleRate / 10 * format.Channels),
                                          amplitude);
    for (auto left = time; left > 0ms; left -= 100ms) {
      trial_.Hear(block, format);
      loop_.Run(100ms);
    }
  }
  [[nodiscard]] const presenters::InputTrialControls& Shown() const { return trial_.Controls(); }
  [[nodiscard]] std::vector<std::string> TemporaryFiles() const {
    std::vector<std::string> names;
    for (const std::string& path : files_.AllFiles()) {
      if (path.starts_with("/tmp/")) names.push_back(path);
    }
    return names;
  }

  SimulatedEventLoop loop_;
  MemoryFiles files_;
  FakeEnvironment environment_;
  RecordingShell shell_;
  FakeInputListener listener_;
  TrialAudio audio_{files_};
  std::string captured_;
  std::string configured_ = "line";
  bool recording_ = false;
  platform::CaptureFormat format_ = platform::WavFormat{.Frequency = kRate, .Channels = 2, .Bits = 16};
  presenters::InputTrial trial_{
      {.Loop = loop_,
       .Listener = listener_,
       .Captured = [this] { return captured_; },
       .Configured = [this] { return configured_; },
       .Recording = [this] { return recording_; },
       .Format = [this] { return format_; },
       .Extension = [] { return std::string("wav"); },
       .Test = {.Audio = audio_, .Files = files_, .Environment = environment_, .Shell = shell_}}};
};

TEST_F(InputTrialTest, NothingIsOpenBeforeTheWindowIsAndAfterIt) {
  trial_.Choose("line");
  loop_.Run(1s);
  EXPECT_THAT(listener_.Opened, IsEmpty());
  trial_.Load();
  EXPECT_EQ(listener_.OpenId, "line");
  EXPECT_EQ(listener_.OpenFormat, (platform::PcmFormat{kRate, 2}));
  trial_.Unload();
  EXPECT_EQ(listener_.OpenId, "");
  loop_.Run(1s);
  EXPECT_THAT(listener_.Opened, ElementsAre("line"));
}

TEST_F(InputTrialTest, TheLevelOfTheChosenInputMoves) {
  trial_.Choose("line");
  trial_.Load();
  Play(500ms, 3277);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
  EXPECT_NEAR(Shown().Level, 2 / 3.0, 0.01);
  EXPECT_FALSE(Shown().Doubtful);
  Play(100ms, 328);
  EXPECT_EQ(Shown().lblLevel, "-40 dB");
}

TEST_F(InputTrialTest, AnotherChoiceShowsThatInputsLevelAtOnce) {
  trial_.Choose("line");
  trial_.Load();
  Play(5s, 0);
  EXPECT_THAT(Shown().lblLevel, HasSubstr("Silence"));
  EXPECT_TRUE(Shown().Doubtful);
  EXPECT_EQ(Shown().Level, 0);
  trial_.Choose("usb");
  EXPECT_EQ(listener_.OpenId, "usb");
  Play(200ms, 3277);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
  trial_.Choose("usb");
  EXPECT_THAT(listener_.Opened, ElementsAre("line", "usb")) << "an input that stays is not opened again";
}

TEST_F(InputTrialTest, SilenceCountsFromThreeSecondsOn) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 3277);
  Play(2900ms, 60);  // -55 dB
  EXPECT_FALSE(Shown().Doubtful);
  Play(300ms, 60);
  EXPECT_EQ(Shown().lblLevel, "Silence: if the radio plays, it is on another input.");
  Play(100ms, 200);  // -44 dB
  EXPECT_FALSE(Shown().Doubtful);
}

TEST_F(InputTrialTest, ClippedSoundIsTooLoud) {
  trial_.Choose("line");
  trial_.Load();
  Play(100ms, 32767);
  EXPECT_EQ(Shown().lblLevel, "Too loud: turn this input down.");
  EXPECT_TRUE(Shown().Doubtful);
  Play(3s, 3277);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
}

TEST_F(InputTrialTest, AnInputThatDoesNotOpenSaysWhyUntilItDoes) {
  listener_.Errors["line"] = "it is in use";
  trial_.Choose("line");
  trial_.Load();
  loop_.Run(5s);
  EXPECT_EQ(Shown().lblLevel, "This input cannot be opened: it is in use.");
  EXPECT_TRUE(Shown().Doubtful);
  EXPECT_FALSE(Shown().cmdTestEnabled);
  Play(100ms, 3277);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
  EXPECT_TRUE(Shown().cmdTestEnabled);
}

TEST_F(InputTrialTest, AnInputThatBringsNothingSaysSo) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 3277);
  loop_.Run(1900ms);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
  loop_.Run(300ms);
  EXPECT_EQ(Shown().lblLevel, "Nothing comes from this input.");
  EXPECT_EQ(Shown().Level, 0);
}

TEST_F(InputTrialTest, WithoutAChoiceNothingIsOpened) {
  trial_.Load();
  loop_.Run(1s);
  EXPECT_THAT(listener_.Opened, IsEmpty());
  EXPECT_EQ(Shown().lblLevel, "Choose the input that the radio is connected to.");
  EXPECT_FALSE(Shown().cmdTestEnabled);
}

TEST_F(InputTrialTest, AnInputThatCannotBeHadTwiceIsHeardThroughTheRecorder) {
  listener_.Sharing = false;
  captured_ = "line";
  trial_.Choose("line");
  trial_.Load();
  PlayCaptured(500ms, 3277);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
  EXPECT_THAT(listener_.Opened, IsEmpty());
  trial_.Choose("usb");
  EXPECT_EQ(listener_.OpenId, "usb") << "another one is free";
  PlayCaptured(500ms, 3277);
  EXPECT_EQ(Shown().Level, 0) << "the recorder's sound is not that of the chosen input";
}

TEST_F(InputTrialTest, AnInputThatTheRecorderTakesIsLetGoAtOnce) {
  listener_.Sharing = false;
  captured_ = "usb";
  configured_ = "usb";
  trial_.Choose("line");
  trial_.Load();
  EXPECT_EQ(listener_.OpenId, "line");
  configured_ = "line";
  loop_.Run(100ms);
  EXPECT_EQ(listener_.OpenId, "") << "the next capture has to get it";
  EXPECT_EQ(Shown().lblLevel, "This input is used from the next song on.");
  EXPECT_FALSE(Shown().cmdTestEnabled);
  captured_ = "line";
  loop_.Run(100ms);
  PlayCaptured(200ms, 3277);
  EXPECT_EQ(Shown().lblLevel, "-20 dB");
}

TEST_F(InputTrialTest, WhatIsSharedIsHeardBesideTheRecorder) {
  captured_ = "line";
  trial_.Choose("line");
  trial_.Load();
  EXPECT_EQ(listener_.OpenId, "line");
}

TEST_F(InputTrialTest, ATestRecordsFiveSecondsOfTheChosenInputAndPlaysThem) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  ASSERT_TRUE(Shown().cmdTestEnabled);
  trial_.cmdTest();
  EXPECT_FALSE(Shown().cmdTestEnabled) << "one at a time";
  EXPECT_EQ(Shown().lblTest, "Recording: 0 of 5 seconds");
  Play(2500ms, 3277);
  EXPECT_EQ(Shown().lblTest, "Recording: 2 of 5 seconds");
  EXPECT_NEAR(Shown().TestPart, 0.5, 0.001);
  EXPECT_THAT(shell_.Opened, IsEmpty());
  Play(2500ms, 3277);
  ASSERT_THAT(shell_.Opened, ElementsAre(EndsWith("/Test recording.wav")));
  EXPECT_THAT(TemporaryFiles(), ElementsAre(shell_.Opened.front()));
  EXPECT_EQ(files_.Bytes(shell_.Opened.front()), kRate * 5 * 2 * 2) << "and not a sample more";
  EXPECT_EQ(Shown().lblTest, "Recorded; your player plays it.");
  EXPECT_TRUE(Shown().cmdTestEnabled);
  Play(10s, 3277);
  EXPECT_EQ(shell_.Opened.size(), 1U);
  trial_.Unload();
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
  EXPECT_FALSE(files_.Exists(shell_.Opened.front().substr(0, shell_.Opened.front().rfind('/'))));
}

TEST_F(InputTrialTest, ASecondTestTakesThePlaceOfTheFirst) {
  trial_.Choose("line");
  trial_.Load();
  for (int i = 0; i < 2; ++i) {
    Play(100ms, 100);
    trial_.cmdTest();
    Play(5s, 100);
  }
  ASSERT_EQ(shell_.Opened.size(), 2U);
  EXPECT_THAT(TemporaryFiles(), ElementsAre(shell_.Opened.back()));
}

TEST_F(InputTrialTest, AWindowThatClosesWithinATestLeavesNothing) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  trial_.cmdTest();
  Play(1s, 100);
  EXPECT_THAT(TemporaryFiles(), Not(IsEmpty()));
  trial_.Unload();
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
  EXPECT_THAT(shell_.Opened, IsEmpty());
}

TEST_F(InputTrialTest, WhileSomethingIsRecordedThereIsNoTest) {
  recording_ = true;
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  EXPECT_FALSE(Shown().cmdTestEnabled);
  EXPECT_EQ(Shown().lblTest, "Something is being recorded; test when that is over.");
  trial_.cmdTest();
  Play(6s, 100);
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
  recording_ = false;
  Play(100ms, 100);
  EXPECT_TRUE(Shown().cmdTestEnabled);
  EXPECT_EQ(Shown().lblTest, "");
}

TEST_F(InputTrialTest, ARecordingThatBeginsBreaksTheTestOff) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  trial_.cmdTest();
  Play(1s, 100);
  recording_ = true;
  Play(100ms, 100);
  EXPECT_EQ(Shown().lblTest, "Broken off: a recording has begun.");
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
}

TEST_F(InputTrialTest, AnotherInputOrFormatBreaksTheTestOff) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  trial_.cmdTest();
  trial_.Choose("usb");
  EXPECT_EQ(Shown().lblTest, "Broken off: the input or its format has changed.");
  Play(1s, 100);
  trial_.cmdTest();
  format_ = platform::WavFormat{.Frequency = 16000, .Channels = 1, .Bits = 16};
  Play(100ms, 100);
  EXPECT_EQ(Shown().lblTest, "Broken off: the input or its format has changed.");
  EXPECT_EQ(listener_.OpenFormat, (platform::PcmFormat{16000, 1}));
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
}

TEST_F(InputTrialTest, AnInputThatBringsNothingEndsTheTest) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  trial_.cmdTest();
  loop_.Run(4s);
  EXPECT_EQ(Shown().lblTest, "Nothing came from this input, so nothing was recorded.");
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
}

TEST_F(InputTrialTest, ATestThroughTheRecorderWantsItsFormat) {
  listener_.Sharing = false;
  captured_ = "line";
  trial_.Choose("line");
  trial_.Load();
  PlayCaptured(1s, 100, {kRate * 2, 2});
  trial_.cmdTest();
  EXPECT_EQ(Shown().lblTest, "The recorder takes this format from the next song on; test it then.");
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
  PlayCaptured(1s, 100);
  trial_.cmdTest();
  PlayCaptured(5s, 100);
  ASSERT_EQ(shell_.Opened.size(), 1U);
  EXPECT_EQ(files_.Bytes(shell_.Opened.front()), kRate * 5 * 2 * 2);
}

TEST_F(InputTrialTest, WhatIsInTheWayOfATestIsSaid) {
  trial_.Choose("line");
  trial_.Load();
  Play(1s, 100);
  audio_.FailCreate = true;
  trial_.cmdTest();
  EXPECT_THAT(Shown().lblTest, HasSubstr("The test cannot be recorded: "));
  audio_.FailCreate = false;
  audio_.FailWrites = true;
  trial_.cmdTest();
  Play(100ms, 100);
  EXPECT_THAT(Shown().lblTest, HasSubstr("The test cannot be recorded: "));
  EXPECT_THAT(TemporaryFiles(), IsEmpty());
  audio_.FailWrites = false;
  shell_.Works = false;
  trial_.cmdTest();
  Play(5s, 100);
  EXPECT_EQ(Shown().lblTest, "Recorded, but no player could be started for it.");
}

}  // namespace
}  // namespace kestrune::test
