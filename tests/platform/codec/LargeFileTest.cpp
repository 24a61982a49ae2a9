// Wave files beyond what a 32-bit size can say. The sound is a hole in the file, so that no disk is filled.
#include <array>
#include <cstdint>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <unistd.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/codec/RiffFile.h"

namespace kestrune::test {
namespace {

using platform::DiskFile;

constexpr std::int64_t kFourGiB = std::int64_t{1} << 32;

/// A finished file of so many bytes of 16-bit stereo sound.
void MakeLarge(const std::string& path, std::int64_t dataBytes) {
  platform::RiffSound sound;
  sound.Channels = 2;
  sound.SampleRate = 44100;
  sound.BlockAlign = 4;
  sound.BytesPerSecond = 176400;
  DiskFile file;
  ASSERT_TRUE(file.Create(path));
  platform::RiffFile riff(sound);
  ASSERT_TRUE(riff.Begin(file));
  ASSERT_TRUE(file.Truncate(file.Size() + dataBytes - 4));
  ASSERT_TRUE(riff.Append(platform::AsBytes("\x01\x02\x03\x04")));
  ASSERT_TRUE(riff.Finish(dataBytes / 4));
}

TEST(LargeFile, BeyondFourGiBIsRf64AndOthersReadItsLength) {
  TempFolder folder;
  const std::string path = folder.Path("a.wav");
  const std::int64_t bytes = kFourGiB + 400000;
  MakeLarge(path, bytes);
  DiskFile file;
  ASSERT_TRUE(file.OpenExisting(path));
  EXPECT_EQ(file.ReadAt(0, 16), std::string("RF64\xFF\xFF\xFF\xFFWAVEds64", 16));
  auto facts = Probe(path);
  EXPECT_EQ(facts["codec_name"], "pcm_s16le");
  EXPECT_EQ(facts["duration_ts"], std::to_string(bytes / 4));
  SF_INFO info{};
  SNDFILE* const sound = sf_open(path.c_str(), SFM_READ, &info);
  ASSERT_NE(sound, nullptr);
  EXPECT_EQ(info.frames, bytes / 4);
  EXPECT_EQ(info.format, SF_FORMAT_RF64 | SF_FORMAT_PCM_16);
  sf_close(sound);
}

TEST(LargeFile, BelowFourGiBIsPlainRiffWithRoomLeft) {
  TempFolder folder;
  const std::string path = folder.Path("a.wav");
  MakeLarge(path, kFourGiB - 1000);
  DiskFile file;
  ASSERT_TRUE(file.OpenExisting(path));
  EXPECT_EQ(file.ReadAt(0, 4), "RIFF");
  EXPECT_EQ(file.ReadAt(8, 8), "WAVEJUNK");
  EXPECT_EQ(Probe(path)["duration_ts"], std::to_string((kFourGiB - 1000) / 4));
}

TEST(LargeFile, TagsFollowTheSoundOfRf64) {
  TempFolder folder;
  const std::string path = folder.Path("a.wav");
  const std::int64_t bytes = kFourGiB + 400000;
  MakeLarge(path, bytes);
  platform::FileTagWriter writer;
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(writer.Write(path, {"Artist", "Title", "", "", 1}));
    DiskFile file;
    ASSERT_TRUE(file.OpenExisting(path));
    const auto size = file.ReadAt(20, 8);
    ASSERT_TRUE(size);
    EXPECT_EQ(static_cast<std::int64_t>(platform::ReadLe(*size, 0, 8)), file.Size() - 8);
  }
  auto facts = Probe(path);
  EXPECT_EQ(facts["duration_ts"], std::to_string(bytes / 4));
  EXPECT_EQ(facts["TAG:artist"], "Artist");
}

TEST(LargeFile, TagsThatWouldPassFourGiBAreRefused) {
  TempFolder folder;
  const std::string path = folder.Path("a.wav");
  MakeLarge(path, kFourGiB - 100);
  DiskFile file;
  ASSERT_TRUE(file.OpenExisting(path));
  const std::int64_t size = file.Size();
  file.Close();
  platform::FileTagWriter writer;
  EXPECT_FALSE(writer.Write(path, {std::string(400, 'x'), "", "", "", 1}));
  ASSERT_TRUE(file.OpenExisting(path));
  EXPECT_EQ(file.Size(), size);
}

}  // namespace
}  // namespace kestrune::test
