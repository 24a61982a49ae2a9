// A disk that takes no more, in the middle of a capture and at its beginning.
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "base/Ignored.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::EncodedFile;

/// While it lives, no file of this process grows beyond a size.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    // Without this the process would be killed instead of getting an error.
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &before_); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
};

struct Row {
  std::string Name;
  std::function<void(EncodedFile&)> Prepare;
  std::string Options;  ///< for ffmpeg
};

std::vector<Row> Formats() {
  platform::Mp3Parameters constant;
  constant.Bitrate = 320;
  constant.TypeStereo = 2;
  constant.Quality = 7;
  constant.VBRHeader = true;
  constant.BitReservoir = true;
  platform::Mp3Parameters variable = constant;
  variable.VBRCodingMethod = 0;
  return {
      {"a.wav",
       [](EncodedFile& f) {
         f.SetFormat(platform::WavFormat{44100, 2, 16});
       },
       ""},
      {"b.wav",
       [](EncodedFile& f) {
         f.SetFormat(platform::WavFormat{44100, 1, 8});
       },
       ""},
      {"a.raw",
       [](EncodedFile& f) {
         f.SetFormat(platform::RawFormat{1, 44100, 2, 16});
       },
       "-f s16le -ac 2"},
      {"a.vox", [](EncodedFile& f) { f.SetFormat(platform::VoxFormat{44100}); }, "-f alaw"},
      {"a.mp3", [=](EncodedFile& f) { f.SetFormat(constant); }, ""},
      {"b.mp3", [=](EncodedFile& f) { f.SetFormat(variable); }, ""},
      {"a.ogg",
       [](EncodedFile& f) {
         f.SetFormat(platform::OggFormat{44100, 2, 128, 0, 0, 10});
       },
       ""},
      {"a.g726",
       [](EncodedFile& f) {
         f.SetFormat(platform::G726Format{44100, 5});
       },
       ""},
      {"a.flac",
       [](EncodedFile& f) {
         f.SetFormat(platform::FlacFormat{44100, 2, 5});
       },
       ""},
      {"a.opus",
       [](EncodedFile& f) {
         f.SetFormat(platform::OpusFormat{48000, 2, 256});
       },
       ""},
  };
}

/// These formats reserve it, and are also those that hold sound back while they encode.
bool HasRoomForTags(const std::string& path) {
  return path.ends_with(".mp3") || path.ends_with(".ogg") || path.ends_with(".flac") ||
         path.ends_with(".opus");
}

/// Writes until the file takes no more; the samples that it took.
std::size_t FillUp(EncodedFile& file) {
  const auto format = file.FormatValues();
  const auto sound = MakeNoise(
      static_cast<std::size_t>(format.SampleRate / 10) * static_cast<std::size_t>(format.Channels), 6);
  std::size_t taken = 0;
  for (int i = 0; i < 1000 && file.WriteBlock(sound); ++i) taken += sound.size();
  EXPECT_EQ(file.WriteBlock(sound).Cause().empty(), false) << "what has failed stays failed";
  EXPECT_EQ(file.Length(), static_cast<std::int64_t>(taken) / format.Channels * 1000 / format.SampleRate);
  return taken;
}

void ExpectWhatWasTaken(const Row& row, const std::string& path, std::size_t taken) {
  if (path.ends_with(".vox")) {
    EXPECT_EQ(ReadFile(path).size(), taken / 2);
    return;
  }
  const std::size_t decoded = DecodeWithFfmpeg(path, row.Options).size();
  if (HasRoomForTags(path)) {
    // These hold sound back while they encode, which had no room any more.
    EXPECT_GT(decoded, taken * 3 / 4);
    EXPECT_LE(decoded, taken + 4608);
  } else if (path.ends_with(".g726")) {
    // The last codes did not fill a byte.
    EXPECT_NEAR(static_cast<double>(decoded), static_cast<double>(taken), 8);
  } else {
    EXPECT_EQ(decoded, taken);
  }
}

TEST(FullDisk, AShortFileIsFinishedAndPlays) {
  for (const Row& row : Formats()) {
    SCOPED_TRACE(row.Name);
    TempFolder folder;
    const std::string path = folder.Path(row.Name);
    std::size_t taken = 0;
    {
      const FileSizeLimit limit(150001);
      EncodedFile file;
      row.Prepare(file);
      ASSERT_EQ(file.Create(path).Number, 0);
      taken = FillUp(file);
      base::Ignored(file.Close());
    }
    ASSERT_GT(taken, 0U);
    EXPECT_LE(ReadFile(path).size(), 150001U);
    ExpectWhatWasTaken(row, path, taken);
    if (path.ends_with(".mp3")) {
      const auto stream = ParseMp3(ReadFile(path));
      EXPECT_FALSE(stream.Broken);
      EXPECT_EQ(ParseInfo(stream).Frames, static_cast<long>(stream.Frames.size()) - 1);
    }
    if (path.ends_with(".flac")) {
      EXPECT_EQ(RunProgramAll("flac -s -t '" + path + "'").Status, 0);
      EXPECT_EQ(RunProgram("metaflac --show-total-samples '" + path + "'").Output,
                std::to_string(DecodeWithFlac(path).size() / 2) + "\n");
    }
  }
}

TEST(FullDisk, WhatIsHeldBackToTheEndAndDoesNotFitIsReported) {
  for (const Row& row : Formats()) {
    if (!HasRoomForTags(row.Name)) continue;
    SCOPED_TRACE(row.Name);
    TempFolder folder;
    EncodedFile file;
    row.Prepare(file);
    ASSERT_EQ(file.Create(folder.Path(row.Name)).Number, 0);
    ASSERT_TRUE(file.WriteBlock(MakeNoise(2000, 8)));
    const FileSizeLimit limit(std::filesystem::file_size(folder.Path(row.Name)));
    EXPECT_EQ(file.Close().Cause(), "File too large");
  }
}

TEST(FullDisk, AFileWithoutRoomForItsHeaderIsRemoved) {
  for (const Row& row : Formats()) {
    if (row.Name == "a.raw" || row.Name == "a.vox") continue;  // they have no header
    SCOPED_TRACE(row.Name);
    TempFolder folder;
    const FileSizeLimit limit(20);
    EncodedFile file;
    row.Prepare(file);
    EXPECT_EQ(file.Create(folder.Path(row.Name)).Number, platform::kDiskFull);
    EXPECT_FALSE(std::filesystem::exists(folder.Path(row.Name)));
    EXPECT_FALSE(file.WriteBlock({}));
    EXPECT_TRUE(file.Close());
  }
}

TEST(FullDisk, ADeviceIsNeitherWrittenNorRemoved) {
  for (const Row& row : Formats()) {
    EncodedFile file;
    row.Prepare(file);
    EXPECT_EQ(file.Create("/dev/full").Number, platform::kNameHeld);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
  }
}

TEST(FullDisk, TagsInReservedRoomAreWrittenAllTheSame) {
  for (const Row& row : Formats()) {
    if (!HasRoomForTags(row.Name)) continue;
    TempFolder folder;
    const std::string path = folder.Path(row.Name);
    const FileSizeLimit limit(150001);
    EncodedFile file;
    row.Prepare(file);
    EXPECT_TRUE(file.Create(path));
    FillUp(file);
    base::Ignored(file.Close());
    const FileSizeLimit noMore(std::filesystem::file_size(path));
    platform::FileTagWriter writer;
    EXPECT_TRUE(writer.Write(path, {"Artist", "Title", "", "", 1}));
    auto facts = Probe(path);
    EXPECT_EQ(facts["TAG:title"].empty() ? facts["TAG:TITLE"] : facts["TAG:title"], "Title");
  }
}

TEST(FullDisk, AnInfoListThatDoesNotFitLeavesTheFileAsItWas) {
  for (const Row& row : Formats()) {
    if (!row.Name.ends_with(".wav") && !row.Name.ends_with(".g726")) continue;
    TempFolder folder;
    const std::string path = folder.Path(row.Name);
    EncodedFile file;
    row.Prepare(file);
    EXPECT_TRUE(file.Create(path));
    ASSERT_TRUE(file.WriteBlock(MakeNoise(1000, 8)));
    EXPECT_TRUE(file.Close());
    const std::string before = ReadFile(path);
    const FileSizeLimit limit(before.size() + 10);
    platform::FileTagWriter writer;
    EXPECT_FALSE(writer.Write(path, {"Artist", "Title", "", "", 1}));
    EXPECT_EQ(ReadFile(path), before);
  }
}

TEST(FullDisk, ASmallVolumeGivesTheSame) {
  TempFolder folder;
  const std::string volume = folder.Path("volume");
  std::filesystem::create_directory(volume);
  if (::mount("tmpfs", volume.c_str(), "tmpfs", 0, "size=200k") != 0) {
    GTEST_SKIP() << "this user may not mount a volume";
  }
  for (const Row& row : Formats()) {
    SCOPED_TRACE(row.Name);
    const std::string path = volume + "/" + row.Name;
    EncodedFile file;
    row.Prepare(file);
    EXPECT_EQ(file.Create(path).Number, 0);
    const std::size_t taken = FillUp(file);
    base::Ignored(file.Close());
    EXPECT_GT(taken, 0U);
    ExpectWhatWasTaken(row, path, taken);
    std::filesystem::remove(path);
  }
  ::umount(volume.c_str());
}

}  // namespace
}  // namespace kestrune::test
