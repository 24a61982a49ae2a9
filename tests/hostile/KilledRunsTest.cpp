// Runs that are killed at any moment, again and again over the same folder, while songs are recorded: after each kill the next
// run mends what was cut off, every file that had its name before is as it was, all of them are whole, and no more is lost than
// an encoder holds.
//
// Seven kills in each format; with KESTRUNE_SOAK a thousand in all.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <stop_token>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "hostile/DiskRun.h"
#include "hostile/DiskState.h"
#include "hostile/Forked.h"
#include "hostile/SharedNumber.h"
#include "support/MemoryFolder.h"
#include "support/Repetitions.h"

namespace kestrune::test {
namespace {

/// In real time; a run loads in a part of it, and records song after song for the rest.
constexpr int kLongestMicroseconds = 120'000;
constexpr std::int64_t kMostLostMs = 1500;

class KilledRuns : public testing::TestWithParam<const char*> {
 protected:
  KilledRuns() { DiskRun::Prepare(Folder(), GetParam()); }

  [[nodiscard]] std::string Folder() const { return folder_ / "run"; }

  /// Kills a run after so long; how much of the song that it was writing its file was given, in milliseconds. 0 if that
  /// song had come to its end.
  [[nodiscard]] std::int64_t Kill(std::chrono::microseconds after) const {
    const SharedNumber captured;
    const SharedNumber slot;
    Forked processes;
    processes.Begin([&] {
      DiskRun run(Folder());
      if (!run.Start()) return std::string("complaint it does not start");
      run.RecordForEver(*captured, *slot);
    });
    std::this_thread::sleep_for(after);
    const Forked::Outcome outcome = processes.Wait(true);
    EXPECT_EQ(outcome.Status, 128 + SIGKILL) << outcome.Report;
    const std::string name = "/Capture" + std::to_string(*slot) + ".";
    const std::vector<std::string> left = DiskState(Folder()).Leftovers;
    return left.size() == 1 && left.front().find(name) != std::string::npos ? captured->load() : 0;
  }

  /// Starts again and closes; the log's lines.
  [[nodiscard]] std::string StartAgain() const {
    Forked processes;
    processes.Begin([&] {
      DiskRun run(Folder());
      if (!run.Start()) return std::string("complaint it does not start");
      if (!run.Close()) return std::string("complaint it does not close");
      std::string lines;
      for (const std::string& line : run.LogTexts()) lines += line + "\n";
      return lines;
    });
    const Forked::Outcome outcome = processes.Wait();
    EXPECT_EQ(outcome.Status, 0);
    return outcome.Report;
  }

  /// How long the capture is that was recovered.
  [[nodiscard]] std::int64_t RecoveredMs(const DiskState& before, const DiskState& after) const {
    std::int64_t longest = 0;
    for (const auto& [path, contents] : after.Songs) {
      if (before.Songs.contains(path) || path.find("/Recovered/") == std::string::npos) continue;
      std::int64_t length = 0;
      {
        platform::DiskFile file;
        length = platform::MendCapture(file, Folder() + path, std::stop_token()).LengthMs;
      }
      // Two samples a byte, and two bytes a sample, at 8 kHz.
      if (path.ends_with(".vox")) length = static_cast<std::int64_t>(contents.size()) / 4;
      if (path.ends_with(".raw")) length = static_cast<std::int64_t>(contents.size()) / 16;
      longest = std::max(longest, length);
    }
    return longest;
  }

 private:
  MemoryFolder folder_;
};

TEST_P(KilledRuns, NothingEarlierIsLostAndAllIsWhole) {
  const char* const chosen = std::getenv("KESTRUNE_SEED");
  const auto seed = chosen != nullptr ? static_cast<unsigned>(std::stoul(chosen)) : std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> anyMoment(0, kLongestMicroseconds);
  int recovered = 0;
  std::int64_t mostLost = 0;
  const int kills = Repetitions(7, 125);
  for (int kill = 1; kill <= kills && !HasFailure(); ++kill) {
    SCOPED_TRACE("kill " + std::to_string(kill));
    const DiskState before(Folder());
    const std::int64_t captured = Kill(std::chrono::microseconds(anyMoment(random)));
    const std::string lines = StartAgain();
    EXPECT_EQ(lines.find("complaint"), std::string::npos) << lines;
    EXPECT_EQ(lines.find("Cannot"), std::string::npos) << lines;
    if (lines.find("Recovered \"") != std::string::npos) ++recovered;

    const DiskState after(Folder());
    for (const auto& [path, contents] : before.Songs) {
      EXPECT_TRUE(after.Songs.contains(path) && after.Songs.at(path) == contents) << path;
    }
    EXPECT_TRUE(after.Leftovers.empty()) << after.Leftovers.front();
    EXPECT_TRUE(after.PutAside.empty()) << after.PutAside.front();
    EXPECT_TRUE(after.Log.starts_with(before.Log));
    for (const auto& [key, value] : before.Settings) EXPECT_TRUE(after.Settings.contains(key)) << key;
    for (const auto& [path, contents] : after.Songs) {
      if (!before.Songs.contains(path)) {
        EXPECT_EQ(WhatIsWrong(Folder() + path), "") << path;
      }
    }
    const std::int64_t lost = captured - RecoveredMs(before, after);
    EXPECT_LE(lost, kMostLostMs) << captured << " ms were captured\n" << lines;
    mostLost = std::max(mostLost, lost);
  }
  const DiskState end(Folder());
  std::cout << kills << " kills, " << recovered << " captures recovered, " << end.Songs.size()
            << " files, at most " << mostLost << " ms lost\n";
}

INSTANTIATE_TEST_SUITE_P(EachFormat, KilledRuns,
                         testing::Values("WAV", "RAW", "VOX", "G726", "OGG", "MP3", "FLAC", "OPUS"),
                         [](const auto& format) { return std::string(format.param); });

}  // namespace
}  // namespace kestrune::test
