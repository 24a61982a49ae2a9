#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "recorder/DiskWatch.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

constexpr double kGiB = 1024.0 * 1024 * 1024;

TEST(RoomFor, HasHoursAndMinutes) {
  EXPECT_EQ(recorder::RoomFor(0), "room for 0:00");
  EXPECT_EQ(recorder::RoomFor(59), "room for 0:00");
  EXPECT_EQ(recorder::RoomFor(6000), "room for 1:40");
  EXPECT_EQ(recorder::RoomFor(360000), "room for 100:00");
}

/// The watch without a unit, which would fill the memory with sound.
class DiskWatch : public ::testing::Test {
 protected:
  DiskWatch() {
    state.Settings.FileFormat = "WAV";
    state.Settings.FileDir = "/music/";
    files.MakeFolders("/music");
  }

  recorder::State state;
  SimulatedEventLoop loop;
  MemoryFiles files;
  RecordingJournal log;
  config::FileSpecs fileSpecs{[](std::int16_t) { return nullptr; }, state.Settings,
                              state.Recording.CaptureSlot, [this] { return scheduled; }};
  std::optional<std::string> scheduled;
  recorder::DiskWatch watch{state, fileSpecs, files, loop, log};
};

TEST_F(DiskWatch, LessThanAGibibyteIsLittle) {
  state.Settings.FileFormat = "VOX";  // 22050 bytes a second: two hours take 159 million
  files.Free = kGiB;
  watch.Start();
  EXPECT_EQ(state.Watch.LittleRoom, "");
  files.Free = kGiB - 1;
  loop.Run(60s);
  EXPECT_EQ(state.Watch.LittleRoom, "room for 13:31");
}

TEST_F(DiskWatch, LessThanTwoHoursIsLittle) {
  files.Free = 7200 * 176400.0;
  watch.Start();
  EXPECT_EQ(state.Watch.LittleRoom, "");
  files.Free -= 1;
  loop.Run(60s);
  EXPECT_EQ(state.Watch.LittleRoom, "room for 1:59");
  EXPECT_EQ(log.Log, std::vector<std::string>{"Little space on the disk of \"/music/\": room for 1:59"});
}

TEST_F(DiskWatch, ItIsSaidOnceUntilThereIsRoomAgain) {
  files.Free = 100e6;
  watch.Start();
  loop.Run(10min);
  EXPECT_EQ(log.Log.size(), 1U);
  files.Free = 50e6;
  loop.Run(1min);
  EXPECT_EQ(state.Watch.LittleRoom, "room for 0:04") << "what is shown follows";
  EXPECT_EQ(log.Log.size(), 1U);
  files.Free = 100e9;
  loop.Run(1min);
  EXPECT_EQ(state.Watch.LittleRoom, "");
  files.Free = 100e6;
  loop.Run(1min);
  EXPECT_EQ(log.Log.size(), 2U);
}

TEST_F(DiskWatch, ItLooksOnceAMinute) {
  files.Free = 100e9;
  watch.Start();
  files.Free = 0;
  loop.Run(59s);
  EXPECT_EQ(state.Watch.LittleRoom, "");
  loop.Run(2s);
  EXPECT_EQ(state.Watch.LittleRoom, "room for 0:00");
  watch.Stop();
  files.Free = 100e9;
  loop.Run(5min);
  EXPECT_EQ(state.Watch.LittleRoom, "room for 0:00");
}

TEST_F(DiskWatch, AnEventsBitRateCounts) {
  state.Settings.FileFormat = "MP3";
  files.Free = 2 * kGiB;
  scheduled = "320 Stereo";  // 40000 bytes a second
  watch.Start();
  EXPECT_EQ(state.Watch.LittleRoom, "");
  files.Free = 40000 * 3600.0;
  loop.Run(1min);
  EXPECT_EQ(state.Watch.LittleRoom, "room for 1:00");
}

TEST_F(DiskWatch, WhatIsNotKnownIsNoReasonToWorry) {
  files.Free = -1;
  watch.Start();
  EXPECT_EQ(state.Watch.LittleRoom, "");
  files.Free = 0;
  state.Settings.FileFormat = "8TRACK";
  loop.Run(1min);
  EXPECT_EQ(state.Watch.LittleRoom, "");
}

TEST_F(DiskWatch, WithoutTheWatchNothingIsSaid) {
  state.Settings.Watch = false;
  files.Free = 0;
  watch.Start();
  loop.Run(5min);
  EXPECT_EQ(state.Watch.LittleRoom, "");
  EXPECT_TRUE(log.Log.empty());
}

TEST(BytesPerSecond, EachFormatHasItsOwn) {
  using namespace platform;
  EXPECT_EQ(BytesPerSecond(CaptureFormat()), 0);
  EXPECT_EQ(BytesPerSecond(WavFormat{.Frequency = 44100, .Channels = 2, .Bits = 16}), 176400);
  EXPECT_EQ(BytesPerSecond(WavFormat{.Frequency = 8000, .Channels = 1, .Bits = 8}), 8000);
  EXPECT_EQ(BytesPerSecond(RawFormat{.Compression = 1, .Frequency = 44100, .Channels = 2, .Bits = 16}),
            176400);
  EXPECT_EQ(BytesPerSecond(RawFormat{.Compression = 0, .Frequency = 44100, .Channels = 2, .Bits = 16}),
            176400);
  EXPECT_EQ(BytesPerSecond(RawFormat{.Compression = 3, .Frequency = 8000, .Channels = 1, .Bits = 16}), 8000);
  EXPECT_EQ(BytesPerSecond(VoxFormat{.Frequency = 8000}), 4000);
  EXPECT_EQ(BytesPerSecond(G726Format{.Frequency = 8000, .Bits = 5}), 5000);
  EXPECT_EQ(BytesPerSecond(FlacFormat{.Frequency = 44100, .Channels = 2, .Level = 5}), 176400);
  EXPECT_EQ(BytesPerSecond(OpusFormat{.Frequency = 48000, .Channels = 2, .Bitrate = 96}), 12000);
  EXPECT_EQ(BytesPerSecond(OggFormat{.Frequency = 44100, .Channels = 2, .NominalBitrate = 160}), 20000);
  EXPECT_EQ(
      BytesPerSecond(OggFormat{.Frequency = 44100, .Channels = 2, .NominalBitrate = 128, .Quality = 10}),
      62500);
  EXPECT_EQ(BytesPerSecond(Mp3Parameters{.VBRCodingMethod = -1, .Bitrate = 160}), 20000);
  EXPECT_EQ(BytesPerSecond(Mp3Parameters{.VBRCodingMethod = -1, .Bitrate = 0}), 16000);
  EXPECT_EQ(BytesPerSecond(Mp3Parameters{.VBRCodingMethod = -1, .Channels = 1, .Bitrate = 0}), 8000);
  EXPECT_EQ(BytesPerSecond(Mp3Parameters{.VBRMaxBitrate = 192, .VBRCodingMethod = 2, .Bitrate = 64}), 24000);
  EXPECT_EQ(BytesPerSecond(Mp3Parameters{.VBRCodingMethod = 4, .VBRTargetBitrate = 128}), 16000);
}

}  // namespace
}  // namespace kestrune::test
