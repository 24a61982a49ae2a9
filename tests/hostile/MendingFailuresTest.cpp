// Each call that finding and mending captures makes fails, one after the other until none fails any more: no capture is
// overlooked, no sound is ever cut off or called empty because the system has refused something, and the next try mends all
// of it.

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "hostile/FailingCalls.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/WorkerCaptureMender.h"
#include "support/MemoryFolder.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using platform::MendedCapture;
using State = MendedCapture::State;

struct Row {
  std::string Name;
  platform::CaptureFormat Format;
};

platform::Mp3Parameters Mp3() {
  platform::Mp3Parameters parameters;
  parameters.Frequency = 22050;
  parameters.Channels = 1;
  parameters.Bitrate = 32;
  parameters.Quality = 7;
  parameters.TypeStereo = 2;
  parameters.BitReservoir = true;
  return parameters;
}

std::vector<Row> Rows() {
  return {{"Capture0.wav", platform::WavFormat{8000, 1, 16}},
          {"Capture0.raw", platform::RawFormat{1, 8000, 1, 16}},
          {"Capture0.vox", platform::VoxFormat{8000}},
          {"Capture0.g726", platform::G726Format{8000, 4}},
          {"Capture0.mp3", Mp3()},
          {"Capture0.ogg", platform::OggFormat{22050, 1, 0, 0, 0, 4}},
          {"Capture0.flac", platform::FlacFormat{8000, 1, 0}},
          {"Capture0.opus", platform::OpusFormat{48000, 1, 32}}};
}

std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

MendedCapture Mend(const std::string& path) {
  platform::DiskFile file;
  return platform::MendCapture(file, path, std::stop_token());
}

class MendingFailures : public testing::Test {
 protected:
  /// What a run leaves that is killed after some seconds.
  std::string LeaveOpen(const Row& row) const {
    const std::string path = folder_ / "open";
    std::filesystem::create_directory(path);
    platform::EncodedFile file;
    file.SetFormat(row.Format);
    EXPECT_TRUE(file.Create(path + "/" + row.Name));
    const platform::PcmFormat format = file.FormatValues();
    const int samples = format.SampleRate * format.Channels * 5;
    std::vector<std::int16_t> noise;
    std::uint32_t random = 1;
    for (int i = 0; i < samples; ++i) {
      random = random * 1664525 + 1013904223;
      noise.push_back(static_cast<std::int16_t>(random >> 18U));
    }
    EXPECT_TRUE(file.WriteBlock(noise));
    return Contents(path + "/" + row.Name);
  }

  void FailEach(CallKind kind, const Row& row, const std::string& open) const {
    const std::string path = folder_ / row.Name;
    std::ofstream(path, std::ios::binary) << open;
    const MendedCapture expected = Mend(path);
    ASSERT_EQ(expected.Is, State::Whole) << expected.Cause;
    const std::string whole = Contents(path);
    for (int number = 1; !HasFailure(); ++number) {
      SCOPED_TRACE(std::string(NameOf(kind)) + " " + std::to_string(number) + " of " + row.Name);
      std::ofstream(path, std::ios::binary) << open;
      WatchCalls(folder_.Path(), false);
      FailCall({.Kind = kind, .Place = CallPlace::Files, .Number = number, .Error = EIO, .Lasting = false});
      const MendedCapture mended = Mend(path);
      LeaveCallsAlone();
      if (CallsFailed() == 0) return;
      // Nobody else holds it, so it has to be moved out of the way of later captures.
      EXPECT_TRUE(mended.Is == State::Whole || mended.Is == State::Not) << static_cast<int>(mended.Is);
      // What it did not begin to write is as it was.
      if (kind == CallKind::Read || kind == CallKind::Open || kind == CallKind::Seek) {
        EXPECT_EQ(mended.Is, State::Not);
        EXPECT_EQ(mended.Cause, "Input/output error");
        EXPECT_TRUE(Contents(path) == open);
      }
      EXPECT_EQ(Mend(path).Is, State::Whole);
      EXPECT_TRUE(Contents(path) == whole);
    }
  }

  MemoryFolder folder_;
};

TEST_F(MendingFailures, NoSoundIsLost) {
  for (const Row& row : Rows()) {
    const std::string open = LeaveOpen(row);
    for (const CallKind kind : {CallKind::Open, CallKind::Read, CallKind::Seek, CallKind::Status,
                                CallKind::Lock, CallKind::Write, CallKind::Truncate, CallKind::Change})
      FailEach(kind, row, open);
  }
}

struct Search {
  std::size_t Found = 0;
  bool SawAll = false;
};

Search FindCaptures(const std::string& folder) {
  using namespace std::chrono_literals;
  SimulatedEventLoop loop;
  platform::WorkerCaptureMender mender(loop);
  Search search;
  bool answered = false;
  mender.Find(folder, "Capture*", [&](const std::vector<std::string>& paths, const base::Result& looked) {
    search = {.Found = paths.size(), .SawAll = looked.Ok()};
    answered = true;
  });
  while (!answered) {
    loop.Run(100ms);
    std::this_thread::sleep_for(1ms);
  }
  return search;
}

TEST_F(MendingFailures, NoCaptureIsOverlooked) {
  for (const char* inside : {"44", "44/Rock", "52"}) {
    std::filesystem::create_directories(folder_ / inside);
    std::ofstream(folder_ / inside + "/Capture0.wav") << "sound";
  }
  ASSERT_EQ(FindCaptures(folder_.Path()).Found, 3U);
  for (const CallKind kind : {CallKind::Open, CallKind::Status}) {
    int failures = 0;
    for (int number = 1;; ++number) {
      SCOPED_TRACE(std::string(NameOf(kind)) + " " + std::to_string(number));
      WatchCalls(folder_.Path(), false);
      FailCall({.Kind = kind, .Place = CallPlace::Files, .Number = number, .Error = EIO, .Lasting = false});
      const Search search = FindCaptures(folder_.Path());
      LeaveCallsAlone();
      if (CallsFailed() == 0) break;
      ++failures;
      EXPECT_TRUE(search.Found == 3 || !search.SawAll)
          << search.Found << " found, " << FirstFailedPath() << " failed";
    }
    EXPECT_GT(failures, 0) << NameOf(kind);
  }
}

}  // namespace
}  // namespace kestrune::test
