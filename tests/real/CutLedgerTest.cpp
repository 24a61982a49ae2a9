#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/CutLedger.h"
#include "real/Process.h"
#include "real/Tone.h"

namespace kestrune::test {
namespace {

/// A WAV file of numbered frames, made by another program.
std::string WaveOf(const TemporaryFolder& folder, const std::string& name,
                   const std::vector<std::uint32_t>& numbers) {
  std::string bytes;
  for (const std::uint32_t number : numbers) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift & 0xFF);
  }
  PutFile(folder / (name + ".raw"), bytes);
  std::string wave = folder / (name + ".wav");
  EXPECT_EQ(RunToEnd({"sox",
                      {"-D", "-t", "raw", "-r", "44100", "-e", "signed", "-b", "16", "-c", "2",
                       folder / (name + ".raw"), wave},
                      {}})
                .Exit,
            0);
  return wave;
}

TEST(CutLedger, AnUnbrokenRowHasNoLoss) {
  const TemporaryFolder folder;
  const CutLedger ledger =
      ReadCutLedger({WaveOf(folder, "late", {70003, 70004}), WaveOf(folder, "early", {70000, 70001, 70002})});
  EXPECT_EQ(ledger.Files, 2);
  EXPECT_EQ(ledger.Frames, 5);
  EXPECT_EQ(ledger.Last, 70004);
  EXPECT_EQ(ledger.Lost, 0);
  EXPECT_EQ(ledger.Doubled, 0);
}

TEST(CutLedger, FramesThatAreMissingAtACutAreLost) {
  const TemporaryFolder folder;
  const CutLedger ledger = ReadCutLedger({WaveOf(folder, "a", {7, 8}), WaveOf(folder, "b", {11, 12})});
  EXPECT_EQ(ledger.Lost, 2);
  EXPECT_EQ(ledger.Missing, (std::vector<std::pair<std::int64_t, std::int64_t>>{{9, 11}}));
}

TEST(CutLedger, FramesOfTheFileBeforeAreDoubled) {
  const TemporaryFolder folder;
  const CutLedger ledger = ReadCutLedger({WaveOf(folder, "a", {7, 8, 9}), WaveOf(folder, "b", {8, 9, 10})});
  EXPECT_EQ(ledger.Doubled, 2);
}

TEST(CutLedger, SilenceBetweenFramesIsCounted) {
  const TemporaryFolder folder;
  EXPECT_EQ(ReadCutLedger({WaveOf(folder, "a", {7, 0, 0, 8})}).Silent, 2);
}

TEST(Tone, FindsThePureToneAndNoOther) {
  std::vector<std::int16_t> sound;
  for (int i = 0; i < 8000; ++i) {
    const double frequency = i < 4000 ? 340 : 480;
    sound.push_back(static_cast<std::int16_t>(
        std::lround(16000 * std::sin(2 * std::numbers::pi * frequency * i / 8000))));
  }
  sound.insert(sound.end(), 1600, 0);
  const std::vector<double> known{200, 340, 480};
  const std::vector<double> expected{340, 340, 340, 340, 340, 480, 480, 480, 480, 480, 0, 0};
  EXPECT_EQ(TonesOver(sound, 8000, known), expected);
}

}  // namespace
}  // namespace kestrune::test
