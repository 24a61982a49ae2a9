#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ring/RingRecorder.h"
#include "support/SimulatedEventLoop.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;
using test::SimulatedEventLoop;
using test::SimulatedSoundSource;

class RingRecorderTest : public ::testing::Test {
 protected:
  RingRecorderTest() {
    Recorder->SetBlockHandler([this] {
      const auto block = Recorder->GetBlock();
      Taken.insert(Taken.end(), block.begin(), block.end());
      BlockSizes.push_back(block.size());
    });
  }

  std::int16_t Start(const PcmFormat& format = {}) {
    Recorder->SetFormat(format);
    Recorder->SetBlockSize(Recorder->TimeToBytes(100));
    Recorder->Prepare();
    return Recorder->StartRecording().Number;
  }

  /// Numbers of the frames taken since the last call.
  std::vector<std::uint32_t> TakeFrames() {
    auto frames = SimulatedSoundSource::FrameNumbers(Taken);
    Taken.clear();
    BlockSizes.clear();
    return frames;
  }

  /// Frames that do not follow the one before them.
  static int Breaks(const std::vector<std::uint32_t>& frames) {
    int breaks = 0;
    for (std::size_t at = 1; at < frames.size(); ++at) {
      if (frames[at] != frames[at - 1] + 1) ++breaks;
    }
    return breaks;
  }

  SimulatedEventLoop Loop;
  SimulatedSoundSource Source{Loop};
  std::unique_ptr<RingRecorder> Recorder = std::make_unique<RingRecorder>(Loop, Source);
  std::vector<std::int16_t> Taken;
  std::vector<std::size_t> BlockSizes;
};

TEST_F(RingRecorderTest, BlocksHaveTheSetSizeAndOnlyTheLastMayBeShorter) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1030));
  Recorder->Stop();
  ASSERT_EQ(BlockSizes.size(), 11U);
  for (std::size_t at = 0; at < 10; ++at) EXPECT_EQ(BlockSizes[at], 8820U);
  EXPECT_EQ(BlockSizes[10], 2 * 1323U);
  EXPECT_EQ(Recorder->FramesCaptured(), 45423);
}

TEST_F(RingRecorderTest, TimeToBytesCountsWholeFrames) {
  Recorder->SetFormat({44100, 2});
  EXPECT_EQ(Recorder->TimeToBytes(100), 17640);
  Recorder->SetFormat({11025, 1});
  EXPECT_EQ(Recorder->TimeToBytes(100), 2204);
  Recorder->SetFormat({22050, 2});
  EXPECT_EQ(Recorder->TimeToBytes(1), 88);
}

TEST_F(RingRecorderTest, AnOddBlockSizeIsCutToWholeFrames) {
  Recorder->SetFormat({44100, 2});
  Recorder->SetBlockSize(4003);
  ASSERT_EQ(Recorder->StartRecording().Number, RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  ASSERT_FALSE(BlockSizes.empty());
  EXPECT_EQ(BlockSizes[0], 2000U);
}

TEST_F(RingRecorderTest, WithoutABlockSizeABlockIsATenthOfASecond) {
  Recorder->SetFormat({8000, 1});
  ASSERT_EQ(Recorder->StartRecording().Number, RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  ASSERT_FALSE(BlockSizes.empty());
  EXPECT_EQ(BlockSizes[0], 800U);
}

TEST_F(RingRecorderTest, StopHandsOverAllThatWasCapturedAndThenIsQuiet) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(250));
  Recorder->Stop();
  const auto frames = TakeFrames();
  ASSERT_EQ(frames.size(), 11025U);
  EXPECT_EQ(frames.front(), 0U);
  Loop.Run(milliseconds(2000));
  EXPECT_TRUE(Taken.empty());
  Recorder->Stop();
  EXPECT_TRUE(Taken.empty());
}

TEST_F(RingRecorderTest, WhatComesBetweenStopAndStartOpensTheNextCapture) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(250));
  Recorder->Stop();
  static_cast<void>(TakeFrames());
  Loop.Sleep(milliseconds(730));
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_TRUE(Taken.empty()) << "blocks come from the loop, not from within StartRecording";
  Loop.Run(milliseconds(100));
  Recorder->Stop();
  const auto frames = TakeFrames();
  ASSERT_FALSE(frames.empty());
  EXPECT_EQ(frames.front(), 11025U);
  EXPECT_EQ(frames.size(), 44100U * 830 / 1000);
  EXPECT_EQ(Breaks(frames), 0);
  EXPECT_EQ(Source.TimesOpened(), 1);
}

TEST_F(RingRecorderTest, ASleepOfSixHundredMillisecondsBeforeStopBelongsToTheOldCapture) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(3000));
  Loop.Sleep(milliseconds(600));
  Recorder->Stop();
  const auto frames = TakeFrames();
  EXPECT_EQ(frames.size(), 44100U * 36 / 10);
  EXPECT_EQ(Breaks(frames), 0);
  EXPECT_EQ(Recorder->FramesLost(), 0);
}

// Songs of random length, each ended by a sleep, a Stop, some work and a Start, as a song change does it.
// Laid end to end, what the captures hold is what the radio played.
TEST_F(RingRecorderTest, AThousandCutsLoseDoubleAndMixNothing) {
  const char* const wish = std::getenv("KESTRUNE_SEED");
  const auto seed = wish != nullptr ? static_cast<unsigned>(std::stoul(wish)) : std::random_device{}();
  std::cout << "KESTRUNE_SEED=" << seed << '\n';
  std::mt19937 random(seed);
  constexpr int kCuts = 1200;
  // 8 kHz keeps the run short; 44.1 frames a millisecond, which is no whole number, is tried above.
  constexpr PcmFormat kFormat{8000, 2};

  std::uint64_t lost = 0;
  std::uint64_t doubled = 0;
  std::uint64_t misplaced = 0;
  std::uint64_t expected = 0;
  std::uint64_t captureStart = 0;
  std::int64_t deliveredAtStall = -1;
  for (int cut = 0; cut < kCuts; ++cut) {
    ASSERT_EQ(Start(kFormat), RingRecorder::kStarted);
    Loop.Run(milliseconds(random() % 4000));
    // A silence of more than a second counts as lost sound, so that one stall never joins the next.
    if (random() % 4 == 0 && Source.FramesDelivered() != deliveredAtStall) {
      Source.Stall(milliseconds(random() % 900));
      deliveredAtStall = Source.FramesDelivered();
    }
    const int pumps = static_cast<int>(random() % 3);
    for (int pump = 0; pump < pumps; ++pump) {
      Loop.Sleep(milliseconds(random() % 300));
      Loop.PumpEvents();
    }
    if (random() % 2 == 0) Loop.Sleep(milliseconds(600));
    const std::int64_t delivered = Source.FramesDelivered();
    Recorder->Stop();
    const auto frames = TakeFrames();
    // The capture holds what had been delivered by its Stop, and begins where the one before it ended.
    if (captureStart + frames.size() != static_cast<std::uint64_t>(delivered)) ++misplaced;
    for (const std::uint32_t frame : frames) {
      if (frame > expected) lost += frame - expected;
      if (frame < expected) ++doubled;
      expected = std::uint64_t{frame} + 1;
    }
    captureStart += frames.size();
    if (random() % 3 == 0) Loop.Sleep(milliseconds(random() % 500));
    if (random() % 5 == 0) Loop.Run(milliseconds(random() % 200));
  }
  EXPECT_EQ(lost, 0U);
  EXPECT_EQ(doubled, 0U);
  EXPECT_EQ(misplaced, 0U);
  EXPECT_EQ(Recorder->FramesLost(), 0);
  EXPECT_EQ(Recorder->FramesCaptured(), static_cast<std::int64_t>(expected));
  EXPECT_EQ(Source.TimesOpened(), 1);
}

TEST_F(RingRecorderTest, TheRingHoldsThirtySecondsOfSleep) {
  ASSERT_EQ(Start({48000, 2}), RingRecorder::kStarted);
  Loop.Sleep(milliseconds(30000));
  Loop.PumpEvents();
  Recorder->Stop();
  EXPECT_EQ(Recorder->FramesLost(), 0);
  const auto frames = TakeFrames();
  EXPECT_EQ(frames.size(), 48000U * 30);
  EXPECT_EQ(Breaks(frames), 0);
}

TEST_F(RingRecorderTest, WhatALongerSleepOverrunsIsCounted) {
  ASSERT_EQ(Start({8000, 2}), RingRecorder::kStarted);
  Loop.Sleep(milliseconds(35000));
  EXPECT_EQ(Recorder->FramesLost(), 5 * 8000);
  Loop.Run(milliseconds(1000));
  Recorder->Stop();
  const auto frames = TakeFrames();
  EXPECT_EQ(frames.size(), 31U * 8000);
  EXPECT_EQ(Breaks(frames), 1);
  EXPECT_EQ(Recorder->FramesLost(), 5 * 8000);
}

TEST_F(RingRecorderTest, LossesThatTheSourceKnowsOfAreCounted) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  Source.Drop(1000);
  Loop.Run(milliseconds(500));
  Source.Die(milliseconds(2000));
  Loop.Run(milliseconds(4000));
  Recorder->Stop();
  const auto frames = TakeFrames();
  EXPECT_EQ(Breaks(frames), 2);
  EXPECT_EQ(Recorder->FramesLost(), 1000 + 2 * 44100);
  EXPECT_EQ(Recorder->FramesCaptured() + Recorder->FramesLost(), 5 * 44100);
}

TEST_F(RingRecorderTest, AnotherFormatOpensTheDeviceAnewAndCountsWhatIsLeftOver) {
  ASSERT_EQ(Start({44100, 2}), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  Recorder->Stop();
  static_cast<void>(TakeFrames());
  Loop.Sleep(milliseconds(100));
  ASSERT_EQ(Start({22050, 1}), RingRecorder::kStarted);
  EXPECT_EQ(Source.TimesOpened(), 2);
  EXPECT_EQ(Source.TimesClosed(), 1);
  EXPECT_EQ(Source.OpenFormat(), (PcmFormat{22050, 1}));
  EXPECT_EQ(Recorder->FramesLost(), 2205) << "a tenth of a second of the capture that lacks it";
  Loop.Run(milliseconds(1000));
  Recorder->Stop();
  ASSERT_EQ(Taken.size(), 22050U);
  const std::uint64_t first = SimulatedSoundSource::FrameAt(milliseconds(1100), 22050);
  for (std::size_t at = 0; at < Taken.size(); ++at) {
    ASSERT_EQ(static_cast<std::uint16_t>(Taken[at]), static_cast<std::uint16_t>(first + at));
  }
}

TEST_F(RingRecorderTest, AnotherDeviceIsOpenedAtTheNextStart) {
  Source.SetDevices({{"Radio", "radio"}, {"Other", "other"}});
  EXPECT_EQ(Recorder->DeviceCount(), 3);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Recorder->SetDeviceIndex(1);
  Loop.Run(milliseconds(200));
  EXPECT_EQ(Source.OpenId(), "radio");
  Recorder->Stop();
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_EQ(Source.OpenId(), "other");
  EXPECT_EQ(Source.TimesOpened(), 2);
}

TEST_F(RingRecorderTest, TheDeviceListStaysAsCounted) {
  Source.SetDevices({{"A", "a"}, {"B", "b"}});
  EXPECT_EQ(Recorder->DeviceCount(), 3);
  Source.SetDevices({{"New", "new"}, {"A", "a"}, {"B", "b"}});
  Recorder->SetDeviceIndex(1);
  EXPECT_EQ(Recorder->DeviceName(), "B");
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_EQ(Source.OpenId(), "b");
  EXPECT_EQ(Recorder->DeviceCount(), 4);
  EXPECT_EQ(Recorder->DeviceName(), "A");
}

TEST_F(RingRecorderTest, AnIndexPastTheLastDeviceIsUnusableAndNameless) {
  EXPECT_EQ(Recorder->DeviceCount(), 2);
  for (const std::int16_t index : {std::int16_t{2}, std::int16_t{-1}, std::int16_t{32767}}) {
    Recorder->SetDeviceIndex(index);
    EXPECT_FALSE(Recorder->DeviceUsable());
    EXPECT_EQ(Recorder->DeviceName(), "");
    EXPECT_EQ(Recorder->DeviceId(), "");
    EXPECT_EQ(Start(), RingRecorder::kNoSuchDevice);
  }
  Recorder->SetDeviceIndex(0);
  EXPECT_TRUE(Recorder->DeviceUsable());
  EXPECT_EQ(Recorder->DeviceName(), "Radio");
  Source.SetUsable("radio", false);
  EXPECT_FALSE(Recorder->DeviceUsable());
}

TEST_F(RingRecorderTest, TheMapperAfterTheListIsTheFirstUsableDevice) {
  Source.SetDevices({{"A", "a"}, {"B", "b"}});
  Source.SetUsable("a", false);
  EXPECT_EQ(Recorder->DeviceCount(), 3);
  Recorder->SetDeviceIndex(2);
  EXPECT_TRUE(Recorder->DeviceUsable());
  EXPECT_EQ(Recorder->DeviceName(), "Sound Mapper");
  EXPECT_EQ(Recorder->DeviceId(), "b");
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_EQ(Source.OpenId(), "b");
}

TEST_F(RingRecorderTest, WithoutDevicesThereIsNoMapperEither) {
  Source.SetDevices({});
  EXPECT_EQ(Recorder->DeviceCount(), 0);
  Recorder->SetDeviceIndex(0);
  EXPECT_FALSE(Recorder->DeviceUsable());
}

TEST_F(RingRecorderTest, WhatCameWhileNothingRecordedDoesNotOpenALaterCapture) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  Recorder->Stop();
  Loop.Run(milliseconds(5000));
  Recorder->Stop();
  Taken.clear();
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  const std::uint64_t now = SimulatedSoundSource::FrameAt(Loop.SteadyNow(), 44100);
  Loop.Run(milliseconds(500));
  ASSERT_FALSE(Taken.empty());
  const std::uint32_t first = SimulatedSoundSource::FrameNumbers(Taken).front();
  EXPECT_GE(first + 4410U, now) << "not the sound of five seconds ago";
}

TEST_F(RingRecorderTest, ADeviceThatDoesNotOpenIsTriedAgainEachSecondWhileTheCaptureWaits) {
  Source.FailOpening("in use");
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_EQ(Recorder->OpenError(), "in use");
  Loop.Run(milliseconds(4500));
  EXPECT_TRUE(Taken.empty());
  Source.FailOpening("");
  Loop.Run(milliseconds(1500));
  Recorder->Stop();
  const auto frames = TakeFrames();
  ASSERT_FALSE(frames.empty());
  EXPECT_EQ(frames.back() + 1, 6U * 44100);
  EXPECT_EQ(Recorder->Sound(), (CaptureSound{.Frames = static_cast<std::int64_t>(frames.size()),
                                             .Gaps = {{.At = 0, .Frames = frames.front()}}}));
  EXPECT_EQ(Recorder->FramesLost(), frames.front());
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_EQ(Source.TimesOpened(), 1);
}

TEST_F(RingRecorderTest, TheMapperStaysWithItsDeviceWhileNoneAnswers) {
  Source.SetDevices({{"A", "a"}, {"B", "b"}});
  EXPECT_EQ(Recorder->DeviceCount(), 3);
  Recorder->SetDeviceIndex(2);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  Source.SetUsable("a", false);
  for (const bool other : {true, false}) {
    Source.SetUsable("b", other);
    Recorder->Stop();
    ASSERT_EQ(Start(), RingRecorder::kStarted);
    EXPECT_EQ(Recorder->DeviceId(), "a");
    Loop.Run(milliseconds(1000));
  }
  Recorder->Stop();
  EXPECT_EQ(TakeFrames().size(), 3U * 44100);
  EXPECT_EQ(Source.TimesOpened(), 1);
}

TEST_F(RingRecorderTest, AnotherFormatDoesNotMoveTheMapperToAnotherDevice) {
  Source.SetDevices({{"A", "a"}, {"B", "b"}});
  EXPECT_EQ(Recorder->DeviceCount(), 3);
  Recorder->SetDeviceIndex(2);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Recorder->Stop();
  Source.SetUsable("a", false);
  ASSERT_EQ(Start({22050, 1}), RingRecorder::kStarted);
  EXPECT_NE(Recorder->OpenError(), "");
  EXPECT_EQ(Source.OpenId(), "a");
  Source.SetUsable("a", true);
  Loop.Run(milliseconds(1500));
  EXPECT_FALSE(Taken.empty());
}

TEST_F(RingRecorderTest, ACaptureKnowsWhatItLacksAndWhere) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(2000));
  Source.Die(milliseconds(3000));
  Loop.Run(milliseconds(4000));
  Recorder->Stop();
  ASSERT_EQ(Recorder->Sound().Gaps.size(), 1U);
  EXPECT_NEAR(static_cast<double>(Recorder->Sound().Gaps[0].At), 2 * 44100, 0.2 * 44100);
  EXPECT_EQ(Recorder->Sound().Lost(), 3 * 44100);
  EXPECT_EQ(Recorder->Sound().Frames, 3 * 44100);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  Recorder->Stop();
  EXPECT_EQ(Recorder->Sound(), (CaptureSound{.Frames = 44100, .Gaps = {}}));
}

// The source reports the gap when it is over; each capture is charged with its own part all the same.
TEST_F(RingRecorderTest, AGapOverTwoCutsIsSharedByThreeCaptures) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(3000));
  Source.Die(milliseconds(10000));
  Loop.Run(milliseconds(4000));
  Recorder->Stop();
  EXPECT_EQ(Recorder->Sound().Frames, 3 * 44100);
  EXPECT_NEAR(static_cast<double>(Recorder->Sound().Lost()), 4 * 44100, 0.1 * 44100);
  ASSERT_EQ(Recorder->Sound().Gaps.size(), 1U);
  EXPECT_EQ(Recorder->Sound().Gaps[0].At, 3 * 44100);

  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(4000));
  Recorder->Stop();
  EXPECT_EQ(Recorder->Sound(), (CaptureSound{.Frames = 0, .Gaps = {{.At = 0, .Frames = 4 * 44100}}}));

  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(4000));
  Recorder->Stop();
  EXPECT_NEAR(static_cast<double>(Recorder->Sound().Lost()), 2 * 44100, 0.1 * 44100);
  EXPECT_EQ(Recorder->Sound().Frames, 2 * 44100);
  EXPECT_EQ(Recorder->FramesLost(), 10 * 44100);
}

TEST_F(RingRecorderTest, ASleepOfTheMachineIsChargedToTheCaptureThatEndsWhenItWakes) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(3000));
  Loop.SleepMachine(milliseconds(83000));
  Source.Slept(milliseconds(83000));
  Recorder->Stop();
  EXPECT_EQ(Recorder->Sound().Frames, 3 * 44100);
  EXPECT_NEAR(static_cast<double>(Recorder->Sound().Lost()), 83 * 44100, 0.1 * 44100);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(5000));
  Recorder->Stop();
  EXPECT_EQ(Recorder->Sound().Lost(), 0);
  EXPECT_EQ(Recorder->FramesLost(), 83 * 44100);
}

TEST_F(RingRecorderTest, SoundThatComesLateIsNoGapInALaterCapture) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  Source.Stall(milliseconds(2000));
  Loop.Run(milliseconds(1800));
  Recorder->Stop();
  EXPECT_NEAR(static_cast<double>(Recorder->Sound().Lost()), 1.8 * 44100, 0.1 * 44100) << "its file lacks it";
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(5000));
  Source.Drop(44100);
  Loop.Run(milliseconds(2000));
  Recorder->Stop();
  EXPECT_EQ(Recorder->Sound().Lost(), 44100) << "what was charged ahead is no credit for ever";
}

TEST_F(RingRecorderTest, ACaptureWhileTheMainThreadSleepsLacksOnlyWhatDidNotCome) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  Source.Die(milliseconds(60000));
  Loop.Sleep(milliseconds(5000));
  Recorder->Stop();
  EXPECT_NEAR(static_cast<double>(Recorder->Sound().Lost()), 5 * 44100, 0.1 * 44100);
  EXPECT_EQ(Recorder->Sound().Frames, 44100);
}

TEST_F(RingRecorderTest, AFormatThatIsNoneIsRefused) {
  EXPECT_EQ(Start({0, 2}), RingRecorder::kBadFormat);
  EXPECT_EQ(Start({44100, 0}), RingRecorder::kBadFormat);
  EXPECT_EQ(Start({44100, 3}), RingRecorder::kBadFormat);
  EXPECT_EQ(Source.TimesOpened(), 0);
}

TEST_F(RingRecorderTest, ADeviceThatNobodyRecordsFromIsClosedAndItsSoundForgotten) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  Recorder->Stop();
  static_cast<void>(TakeFrames());
  Loop.Run(milliseconds(9900));
  EXPECT_TRUE(Source.IsOpen());
  Loop.Run(milliseconds(200));
  EXPECT_FALSE(Source.IsOpen());
  EXPECT_EQ(Recorder->FramesLost(), 0);
  Loop.Run(milliseconds(60000));
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  const std::uint64_t now = SimulatedSoundSource::FrameAt(Loop.SteadyNow(), 44100);
  Loop.Run(milliseconds(500));
  const auto frames = TakeFrames();
  ASSERT_FALSE(frames.empty());
  EXPECT_EQ(frames.front(), now);
}

TEST_F(RingRecorderTest, SlowWorkBetweenStopAndStartKeepsTheDeviceOpen) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  Recorder->Stop();
  Loop.Sleep(milliseconds(15000));
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  Recorder->Stop();
  const auto frames = TakeFrames();
  EXPECT_EQ(frames.size(), 44100U * 16);
  EXPECT_EQ(Breaks(frames), 0);
}

TEST_F(RingRecorderTest, StartWhileRecordingEndsTheCaptureFirst) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(230));
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  EXPECT_EQ(BlockSizes.back(), 2 * 1323U);
  Loop.Run(milliseconds(230));
  Recorder->Stop();
  const auto frames = TakeFrames();
  EXPECT_EQ(frames.size(), 44100U * 460 / 1000);
  EXPECT_EQ(Breaks(frames), 0);
}

TEST_F(RingRecorderTest, StopFromWithinTheBlockHandlerEndsTheCapture) {
  std::size_t blocks = 0;
  Recorder->SetBlockHandler([&] {
    if (++blocks == 3) Recorder->Stop();
  });
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Sleep(milliseconds(1000));
  Loop.Run(milliseconds(2000));
  EXPECT_FALSE(Recorder->Recording());
  EXPECT_EQ(Recorder->FramesCaptured(), 44100);
  EXPECT_EQ(blocks, 10U);
}

TEST_F(RingRecorderTest, TheDisplayTimerFiresWhileRecordingOnly) {
  int fired = 0;
  Recorder->SetTimerHandler([&] { ++fired; });
  Loop.Run(milliseconds(1000));
  EXPECT_EQ(fired, 0);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  EXPECT_EQ(fired, 10);
  Recorder->Stop();
  Loop.Run(milliseconds(1000));
  EXPECT_EQ(fired, 10);
}

TEST_F(RingRecorderTest, OneTimerServesTheBlocksAndTheDisplay) {
  std::vector<std::size_t> taken;
  Recorder->SetTimerHandler([&] { taken.push_back(Taken.size()); });
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  const auto before = Loop.HandlersRun();
  Loop.Run(milliseconds(1000));
  EXPECT_EQ(Loop.HandlersRun() - before, 10U) << "each waking of the program costs more than a block";
  ASSERT_FALSE(taken.empty());
  EXPECT_EQ(taken.back(), Taken.size()) << "the display has the block of its moment";
}

TEST_F(RingRecorderTest, DisplaySamplesAreTheNewestThatWereHandedOver) {
  EXPECT_TRUE(Recorder->GetDisplaySamples(100).empty());
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(1000));
  EXPECT_TRUE(Recorder->GetDisplaySamples(-1).empty());
  const auto samples = Recorder->GetDisplaySamples(1000);
  ASSERT_EQ(samples.size(), 1000U);
  EXPECT_TRUE(std::equal(samples.begin(), samples.end(), Taken.end() - 1000));
  EXPECT_LE(Recorder->GetDisplaySamples(1 << 30).size(), Taken.size());
}

TEST_F(RingRecorderTest, TheGainControlWorksOnWhatIsHandedOverWhenItIsOn) {
  Source.SetSignal(
      [](std::uint64_t frame, int) { return static_cast<std::int16_t>(frame % 2 == 0 ? 100 : -100); });
  Recorder->SetAgcEnabled(true);
  Recorder->SetAgcAttackTime(50);
  Recorder->SetAgcHighLevel(-10);
  Recorder->SetAgcLowLevel(-20);
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(2000));
  EXPECT_NEAR(std::abs(Taken.back()), 3277, 40);
  Recorder->Stop();
  Recorder->SetAgcEnabled(false);
  Taken.clear();
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  EXPECT_EQ(std::abs(Taken.front()), 100);
  EXPECT_EQ(std::abs(Taken.back()), 100);
}

/// Delivers numbered stereo frames from a thread of its own as fast as it can, fewer than a ring holds, and
/// then reports one as lost.
class ThreadedSource final : public SoundSource {
 public:
  static constexpr std::uint32_t kFrames = 200'000;

  [[nodiscard]] std::vector<SoundDevice> Devices() override { return {{"Thread", "thread"}}; }
  [[nodiscard]] bool Usable(const std::string& /*id*/) override { return true; }
  [[nodiscard]] std::string Open(const std::string& /*id*/, const PcmFormat& /*format*/,
                                 SampleSink& sink) override {
    thread_ = std::thread([this, &sink] {
      std::vector<std::int16_t> piece;
      for (std::uint32_t frame = 0; frame < kFrames && !stop_; frame += 100) {
        piece.clear();
        for (std::uint32_t number = frame; number < frame + 100; ++number) {
          piece.push_back(static_cast<std::int16_t>(static_cast<std::uint16_t>(number)));
          piece.push_back(static_cast<std::int16_t>(static_cast<std::uint16_t>(number >> 16)));
        }
        sink.OnSamples(piece);
      }
      sink.OnLost(1);
      done_ = true;
    });
    return {};
  }
  void Close() override {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    stop_ = false;
    done_ = false;
  }
  [[nodiscard]] bool Done() const { return done_; }

 private:
  std::atomic<bool> stop_{false};
  std::atomic<bool> done_{false};
  std::thread thread_;
};

TEST(RingRecorderThreads, CutsWhileTheSourcesThreadDeliversLoseNothing) {
  const auto seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  SimulatedEventLoop loop;
  ThreadedSource source;
  RingRecorder recorder(loop, source);
  std::vector<std::int16_t> taken;
  recorder.SetBlockHandler([&] {
    const auto block = recorder.GetBlock();
    taken.insert(taken.end(), block.begin(), block.end());
  });
  // Each format opens the source, and with it its thread, anew.
  for (const std::int32_t rate : {44100, 8000, 44100}) {
    taken.clear();
    recorder.SetFormat({rate, 2});
    while (!source.Done() || taken.size() < 2 * std::size_t{ThreadedSource::kFrames}) {
      ASSERT_EQ(recorder.StartRecording().Number, RingRecorder::kStarted);
      loop.Run(milliseconds(random() % 150));
      recorder.Stop();
    }
    EXPECT_GT(recorder.FramesLost(), 0);
    const auto frames = SimulatedSoundSource::FrameNumbers(taken);
    ASSERT_EQ(frames.size(), ThreadedSource::kFrames);
    for (std::uint32_t number = 0; number < ThreadedSource::kFrames; ++number)
      ASSERT_EQ(frames[number], number);
  }
}

TEST_F(RingRecorderTest, DestroyingItClosesTheSource) {
  ASSERT_EQ(Start(), RingRecorder::kStarted);
  Loop.Run(milliseconds(500));
  Recorder.reset();
  EXPECT_FALSE(Source.IsOpen());
  Loop.Run(milliseconds(500));
}

}  // namespace
}  // namespace kestrune::platform
