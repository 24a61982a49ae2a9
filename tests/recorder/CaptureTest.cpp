#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/Capture.h"
#include "support/FakeFileSync.h"
#include "support/FakeHistoryStore.h"
#include "support/MemoryFiles.h"
#include "support/RecordingCaptureFile.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::recorder {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Keeps every call as text.
class CalledRecorder final : public platform::AudioRecorder {
 public:
  explicit CalledRecorder(std::vector<std::string>& calls) : calls_(calls) {}
  [[nodiscard]] std::int16_t DeviceCount() override { return 2; }
  void SetDeviceIndex(std::int16_t index) override { Called("device", index); }
  [[nodiscard]] bool DeviceUsable() override { return true; }
  [[nodiscard]] std::string DeviceName() override { return "Line"; }
  [[nodiscard]] std::string DeviceId() override { return "line"; }
  void SetAgcEnabled(bool enabled) override { Called("agc", enabled ? 1 : 0); }
  void SetAgcAttackTime(std::int16_t milliseconds) override { Called("attack", milliseconds); }
  void SetAgcHighLevel(std::int16_t decibels) override { Called("high", decibels); }
  void SetAgcLowLevel(std::int16_t decibels) override { Called("low", decibels); }
  void SetFormat(const platform::PcmFormat& format) override {
    Called("rate", format.SampleRate);
    Called("channels", format.Channels);
  }
  [[nodiscard]] std::int32_t TimeToBytes(std::int32_t milliseconds) const override {
    return milliseconds * 100;
  }
  void SetBlockSize(std::int32_t bytes) override { Called("block", bytes); }
  void Prepare() override { calls_.emplace_back("prepare"); }
  platform::NumberedResult StartRecording() override {
    calls_.emplace_back("start");
    return StartResult;
  }
  void Stop() override { calls_.emplace_back("stop"); }
  [[nodiscard]] std::span<const std::int16_t> GetBlock() const override { return Block; }
  [[nodiscard]] std::vector<std::int16_t> GetDisplaySamples(std::int32_t /*count*/) const override {
    return {};
  }
  void SetBlockHandler(std::function<void()> handler) override { OnBlock = std::move(handler); }
  void SetTimerHandler(std::function<void()> /*handler*/) override {}
  [[nodiscard]] std::string OpenDeviceId() const override { return {}; }
  [[nodiscard]] std::string OpenError() const override { return {}; }
  [[nodiscard]] const platform::CaptureSound& Sound() const override { return CapturedSound; }
  [[nodiscard]] std::int64_t FramesCaptured() const override { return 0; }
  [[nodiscard]] std::int64_t FramesLost() const override { return 0; }
  [[nodiscard]] std::int64_t FramesWaiting() const override { return 0; }

  platform::NumberedResult StartResult;
  platform::CaptureSound CapturedSound;
  std::vector<std::int16_t> Block;
  std::function<void()> OnBlock;

 private:
  void Called(const char* what, int value) { calls_.push_back(what + (" " + std::to_string(value))); }
  std::vector<std::string>& calls_;
};

class KeptTags final : public platform::TagWriter {
 public:
  explicit KeptTags(std::vector<std::pair<std::string, platform::Tags>>& written) : written_(written) {}
  base::Result Write(std::string_view path, const platform::Tags& tags) override {
    written_.emplace_back(path, tags);
    return base::Result::Done();
  }

 private:
  std::vector<std::pair<std::string, platform::Tags>>& written_;
};

class KeptLog final : public base::Journal {
 public:
  void DoLog(std::string_view text) override { Lines.emplace_back(text); }
  void DebugPrint(std::string_view /*text*/) override {}
  [[nodiscard]] bool Tracing() const override { return false; }
  void Trace(std::string_view /*text*/) override {}
  std::vector<std::string> Lines;
};

class CaptureTest : public ::testing::Test {
 protected:
  CaptureTest() {
    auto madeRecorder = std::make_unique<CalledRecorder>(calls);
    recorder = madeRecorder.get();
    audio.AudioRecord = std::move(madeRecorder);
    for (std::size_t slot = 0; slot < 2; ++slot) {
      auto file = std::make_unique<test::RecordingCaptureFile>(&files);
      captureFiles[slot] = file.get();
      audio.CaptureFiles[slot] = std::move(file);
      state.CaptureSlots[slot] = {.FileName = "/music/x",
                                  .Extension = "wav",
                                  .LengthMs = 5,
                                  .Song = "Slow Tide",
                                  .Artist = "Moonlighters",
                                  .Genre = "Rock",
                                  .Folder = "/music/",
                                  .Outcome = {}};
    }
    audio.AudioInformation = std::make_unique<KeptTags>(tagged);
    settings.FileFormat = "WAV";
    settings.InputDevice = 3;
    settings.FormatWAV = {.Frequency = 8000, .Channels = 1, .Bits = 16};
    radio.RadioID = "ABCD1234";
    files.MakeFolders("/music");
    capture.ConnectRecorder();
  }

  std::vector<std::string> calls;
  test::MemoryFiles files;
  KeptLog log;
  AudioObjects audio;
  CalledRecorder* recorder = nullptr;
  std::array<test::RecordingCaptureFile*, 2> captureFiles{};
  std::vector<std::pair<std::string, platform::Tags>> tagged;
  State all;
  RecordingState& state = all.Recording;
  radio::RadioState& radio = all.Radio;
  config::Settings& settings = all.Settings;
  config::FileSpecs fileSpecs{[this](std::int16_t slot) { return audio.File(slot); }, settings,
                              state.CaptureSlot, [] { return std::nullopt; }};
  schedule::ScheduleState& schedule = all.Schedule;
  test::FakeFileSync sync;
  SongFiles songFiles{files, sync, log};
  recorder::SoundMeter meter;
  test::SimulatedEventLoop loop;
  test::FakeHistoryStore store{loop};
  history::History history{store, loop};
  StationLags lags{history, settings, loop};
  CutChooser cuts{lags};
  Capture capture{
      all,
      {.Audio = audio, .Meter = meter, .Cuts = cuts, .FileSpecs = fileSpecs, .SongFiles = songFiles},
      log};
  std::int32_t result = 99;
};

TEST_F(CaptureTest, StartTakesItsStepsInOrder) {
  capture.RecordStart(1, "/music/Capture1.wav", result);
  EXPECT_THAT(calls,
              ElementsAre("agc 0", "device 3", "rate 8000", "channels 1", "block 10000", "prepare", "start"));
  EXPECT_THAT(captureFiles[1]->Calls, ElementsAre("SetFormatWAV 8000 1 16", "Create /music/Capture1.wav"));
  EXPECT_EQ(result, 0);
  EXPECT_EQ(state.CaptureSlots[1].LengthMs, 0);
  EXPECT_THAT(log.Lines, IsEmpty());
}

TEST_F(CaptureTest, LevelsGoOutInOrderWhenGainControlIsOn) {
  settings.AGCEnabled = true;
  settings.AGCAttackTime = 70;
  settings.AGCHighLevel = -12;
  settings.AGCLowLevel = -34;
  capture.RecordStart(0, "/music/Capture0.wav", result);
  EXPECT_EQ((std::vector<std::string>(calls.begin(), calls.begin() + 4)),
            (std::vector<std::string>{"agc 1", "attack 70", "high -12", "low -34"}));
}

TEST_F(CaptureTest, NoLevelsGoOutWhenGainControlIsOff) {
  settings.AGCEnabled = false;
  capture.RecordStart(0, "/music/Capture0.wav", result);
  EXPECT_EQ(calls[0], "agc 0");
  EXPECT_EQ(calls[1], "device 3");
}

TEST_F(CaptureTest, AFailedCreationIsLoggedAndNothingIsStarted) {
  captureFiles[0]->FailCreate = true;
  capture.RecordStart(0, "/music/Capture0.wav", result);
  EXPECT_THAT(log.Lines, ElementsAre("Error -1 creating output file",
                                     "Cannot create \"/music/Capture0.wav\": Permission denied"));
  EXPECT_EQ(state.CaptureSlots[0].Outcome.StartFailure, "Permission denied");
  EXPECT_EQ(state.CaptureSlots[0].Outcome.File, "");
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "start"), 0);
}

TEST_F(CaptureTest, AFailedStartIsLoggedAndTheFileClosed) {
  recorder->StartResult = {.Number = -7, .Cause = "the input is gone"};
  capture.RecordStart(0, "/music/Capture0.wav", result);
  EXPECT_EQ(result, -7);
  EXPECT_THAT(log.Lines, ElementsAre("Error -7 recording input",
                                     "Cannot record from the input device: the input is gone"));
  EXPECT_EQ(state.CaptureSlots[0].Outcome.StartFailure, "the input is gone");
  EXPECT_FALSE(captureFiles[0]->IsOpen());
}

TEST_F(CaptureTest, ASlotThatIsNoneOpensNothing) {
  capture.RecordStart(2, "/music/Capture2.wav", result);
  EXPECT_EQ(result, 99);
  EXPECT_THAT(calls, ElementsAre("agc 0", "device 3"));
  capture.RecordStart(-1, "/music/Capture2.wav", result);
  EXPECT_EQ(result, 99);
}

TEST_F(CaptureTest, StopTagsWithTheTextsOfTheCapturesBeginning) {
  capture.RecordStart(0, "/music/Capture0.wav", result);
  calls.clear();
  capture.RecordStop(0);
  EXPECT_THAT(calls, ElementsAre("stop"));
  EXPECT_FALSE(captureFiles[0]->IsOpen());
  EXPECT_TRUE(captureFiles[0]->IsHeld()) << "until its fate is known";
  ASSERT_EQ(tagged.size(), 1U);
  EXPECT_EQ(tagged[0].first, "/music/Capture0.wav");
  EXPECT_EQ(tagged[0].second, (platform::Tags{.Artist = "Moonlighters",
                                              .Title = "Slow Tide",
                                              .Comment = "Radio ID: ABCD1234",
                                              .Encoder = "Kestrune 3.0",
                                              .Kind = 1}));
}

TEST_F(CaptureTest, StopWithoutAFileTagsNothing) {
  capture.RecordStop(0);
  EXPECT_THAT(tagged, IsEmpty());
}

TEST_F(CaptureTest, NothingHappensWithoutAudioObjects) {
  audio.Release();
  capture.RecordStop(0);
  capture.RecordStart(0, "/music/Capture0.wav", result);
  EXPECT_EQ(result, 99);
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(CaptureTest, ABlockGoesToTheSlotThatIsBeingWrittenAtThatMoment) {
  capture.RecordStart(0, "/music/Capture0.wav", result);
  recorder->Block.assign(800, 7);
  recorder->OnBlock();
  EXPECT_EQ(captureFiles[0]->Written.back().Samples.size(), 800U);
  EXPECT_EQ(state.CaptureSlots[0].LengthMs, 100);
  capture.RecordStop(0);
  capture.RecordStart(1, "/music/Capture1.wav", result);
  state.CaptureSlot = 1;
  recorder->OnBlock();
  EXPECT_EQ(captureFiles[0]->Written.back().Samples.size(), 800U);
  EXPECT_EQ(captureFiles[1]->Written.back().Samples.size(), 800U);
}

TEST_F(CaptureTest, AFileThatTakesNoMoreIsNoReasonToStop) {
  capture.RecordStart(0, "/music/Capture0.wav", result);
  captureFiles[0]->FailWrites = true;
  recorder->Block.assign(800, 7);
  recorder->OnBlock();
  recorder->OnBlock();
  EXPECT_TRUE(captureFiles[0]->IsOpen());
  EXPECT_THAT(log.Lines, ElementsAre("Cannot write \"/music/Capture0.wav\": No space left on device"));
  EXPECT_TRUE(state.CaptureSlots[0].Outcome.Shortened());
}

TEST_F(CaptureTest, TheTemporaryNameBearsTheSlotAndTheExtension) {
  EXPECT_EQ(capture.TemporaryFile(0), "/music/Capture0.wav");
  EXPECT_EQ(capture.TemporaryFile(1), "/music/Capture1.wav");
}

TEST_F(CaptureTest, ANamedUnitHasNamesOfItsOwn) {
  capture.SetMultiUnit("2");
  EXPECT_EQ(capture.TemporaryFile(0), "/music/Capture0-2.wav");
  EXPECT_EQ(capture.TemporaryName(3, "mp3"), "Capture3-2.mp3");
}

TEST_F(CaptureTest, TheOutcomeKeepsTheModesOfItsBeginning) {
  settings.Integrel = true;
  capture.RecordStart(0, "/music/Capture0.wav", result);
  schedule.ActiveSchedule = 4;
  schedule.SchedSievanceGrab = true;
  capture.RecordStart(1, "/music/Capture1.wav", result);
  EXPECT_EQ(state.CaptureSlots[0].Outcome.Event, 0);
  EXPECT_TRUE(state.CaptureSlots[0].Outcome.Modes.Integrel);
  EXPECT_EQ(state.CaptureSlots[1].Outcome.Event, 4);
  EXPECT_TRUE(state.CaptureSlots[1].Outcome.Modes.Grab);
  EXPECT_FALSE(state.CaptureSlots[1].Outcome.Modes.Integrel);
}

TEST_F(CaptureTest, AFolderFullOfHeldFilesIsAnErrorAndNoEndlessSearch) {
  for (int number = 0; number < 200; ++number) {
    files.HoldByAnother("/music/" + capture.TemporaryName(number, "wav"));
  }
  capture.RecordStart(0, "/music/Capture0.wav", result);
  EXPECT_EQ(result, platform::kNameHeld);
  EXPECT_EQ(state.CaptureSlots[0].Outcome.File, "");
}

}  // namespace
}  // namespace kestrune::recorder
