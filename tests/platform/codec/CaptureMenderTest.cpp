// Files that a crash has left open, cut off at any place: mended, they decode to the end, and to what was written.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/Ignored.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/codec/JudgedFiles.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"
#include "platform/codec/WorkerCaptureMender.h"
#include "platform/posix/HeldFile.h"
#include "platform/posix/TemporaryFolder.h"
#include "support/RealEventLoop.h"
#include "support/Repetitions.h"

namespace kestrune::test {
namespace {

using platform::EncodedFile;
using platform::MendedCapture;
using State = platform::MendedCapture::State;

struct Row {
  std::string Name;
  platform::CaptureFormat Format;
  std::size_t MostLost;    ///< bytes before the cut
  std::size_t EmptyBelow;  ///< a longer piece has sound in it
};

platform::Mp3Parameters Mp3(int rate, int channels, int bitrate, int vbrMethod) {
  platform::Mp3Parameters parameters;
  parameters.Frequency = rate;
  parameters.Channels = static_cast<std::int16_t>(channels);
  parameters.Bitrate = static_cast<std::int16_t>(bitrate);
  parameters.VBRCodingMethod = static_cast<std::int16_t>(vbrMethod);
  parameters.VBRQuality = 4;
  parameters.Quality = 7;
  parameters.TypeStereo = 2;
  parameters.BitReservoir = true;
  return parameters;
}

std::vector<Row> Rows() {
  return {
      {"Capture0.wav", platform::WavFormat{44100, 2, 16}, 4, 84},
      {"Capture1.wav", platform::WavFormat{22050, 1, 8}, 1, 81},
      {"Capture0.raw", platform::RawFormat{1, 44100, 2, 16}, 3, 4},
      {"Capture1.raw", platform::RawFormat{2, 8000, 1, 16}, 3, 4},
      {"Capture0.vox", platform::VoxFormat{8000}, 0, 1},
      {"Capture0.g726", platform::G726Format{8000, 4}, 1, 96},
      {"Capture1.g726", platform::G726Format{8000, 3}, 3, 98},
      {"Capture0.mp3", Mp3(44100, 2, 160, -1), 1500, 4096 + 4 * 523},
      {"Capture1.mp3", Mp3(44100, 2, 64, 0), 1500, 4096 + 4 * 1500},
      {"Capture2.mp3", Mp3(22050, 1, 32, -1), 1500, 4096 + 1500},
      {"Capture0.ogg", platform::OggFormat{44100, 2, 128, 0, 0, -1}, 9000, 20000},
      {"Capture1.ogg", platform::OggFormat{44100, 2, 0, 0, 0, 8}, 9000, 20000},
      {"Capture0.flac", platform::FlacFormat{44100, 2, 5}, 17000, 4138 + 17000},
      {"Capture1.flac", platform::FlacFormat{22050, 1, 0}, 2400, 4138 + 2400},
      {"Capture0.opus", platform::OpusFormat{48000, 2, 128}, 12000, 4187 + 12000},
      {"Capture1.opus", platform::OpusFormat{44100, 1, 32, true}, 4000, 4187 + 4000},
  };
}

bool EndsWith(const std::string& name, const std::string& extension) {
  return name.ends_with(extension);
}

/// How ffmpeg has to read a file without a header.
std::string OptionsFor(const std::string& path) {
  if (EndsWith(path, "0.raw")) return "-f s16le -ac 2";
  if (EndsWith(path, "1.raw")) return "-f alaw -ar 8000 -ac 1";
  return {};
}

MendedCapture Mend(const std::string& path) {
  platform::DiskFile file;
  return platform::MendCapture(file, path, {});
}

using Samples = std::vector<std::int16_t>;

/// What a run leaves that is killed while it records, and the same file as it would have ended.
struct Crashed {
  Row Format;
  std::string Path;
  std::string Open;
  std::shared_ptr<Samples> Decoded;  ///< empty until the files are judged
};

void ExpectPrefix(const Samples& piece, const Samples& whole) {
  ASSERT_LE(piece.size(), whole.size());
  const auto [at, there] = std::mismatch(piece.begin(), piece.end(), whole.begin());
  EXPECT_EQ(at - piece.begin(), static_cast<std::ptrdiff_t>(piece.size())) << "first difference";
}

void ExpectRightInfoFrame(const std::string& bytes) {
  const auto stream = ParseMp3(bytes);
  EXPECT_FALSE(stream.Broken);
  EXPECT_EQ(ParseInfo(stream).Frames, static_cast<long>(stream.Frames.size()) - 1);
}

/// The page that comes last says so.
void ExpectEndOfStream(const std::string& bytes) {
  const std::size_t at = bytes.rfind("OggS");
  ASSERT_LT(at + 5, bytes.size());
  EXPECT_EQ(bytes[at + 5] & 4, 4);
}

/// As another program reads it off the first block.
std::size_t FlacFrames(const std::string& path) {
  return std::stoul(RunProgram("metaflac --show-total-samples '" + path + "'").Output);
}

/// Decodes all that a test leaves together, at its end or when it says so.
class CaptureMender : public testing::Test {
 protected:
  void TearDown() override { judged_.JudgeAll(); }

  /// Judges the file as it is now, as an independent program decodes it, which must not complain.
  void JudgeSound(const std::string& path, const std::function<void(const Samples&)>& judge) {
    const std::string copy = folder_.NewPath(std::filesystem::path(path).filename());
    std::filesystem::copy_file(path, copy);
    if (EndsWith(copy, ".vox")) {
      judge(DecodeWithSox(copy, "-t vox -r 8000"));
      return;
    }
    judged_.Add(copy, {copy, OptionsFor(copy)}, [=](const DecodedFile& file) {
      // These have a decoder of their own besides ffmpeg.
      if (EndsWith(copy, ".ogg")) return judge(DecodeWithOggdec(copy));
      if (EndsWith(copy, ".flac")) return judge(DecodeWithFlac(copy));
      if (EndsWith(copy, ".opus")) return judge(DecodeWithOpusdec(copy));
      judge(file.Samples);
    });
  }

  Crashed Crash(const Row& row, std::size_t seconds = 6) {
    Crashed crashed{
        .Format = row, .Path = folder_.Path(row.Name), .Open = {}, .Decoded = std::make_shared<Samples>()};
    EncodedFile file;
    file.SetFormat(row.Format);
    EXPECT_TRUE(file.Create(crashed.Path));
    const auto format = file.FormatValues();
    EXPECT_TRUE(WriteBlocks(file, MakeMusic(seconds * static_cast<std::size_t>(format.SampleRate),
                                            format.SampleRate, format.Channels)));
    crashed.Open = ReadFile(crashed.Path);
    EXPECT_TRUE(file.Close());
    JudgeSound(crashed.Path, [decoded = crashed.Decoded](const Samples& samples) {
      EXPECT_GT(samples.size(), 1000U);
      *decoded = samples;
    });
    return crashed;
  }

  void ExpectMended(const Crashed& crashed, std::size_t cut) {
    const std::string row = "cut at " + std::to_string(cut);
    SCOPED_TRACE(row);
    const std::string& path = crashed.Path;
    WriteFile(path, crashed.Open.substr(0, cut));
    const MendedCapture mended = Mend(path);
    if (mended.Is == State::Empty) {
      EXPECT_LT(cut, crashed.Format.EmptyBelow);
      return;
    }
    ASSERT_EQ(mended.Is, State::Whole) << mended.Cause;
    const std::string bytes = ReadFile(path);
    EXPECT_GE(bytes.size() + crashed.Format.MostLost, cut);
    if (EndsWith(path, ".mp3")) ExpectRightInfoFrame(bytes);
    if (EndsWith(path, ".ogg") || EndsWith(path, ".opus")) ExpectEndOfStream(bytes);
    const std::size_t flacFrames = EndsWith(path, ".flac") ? FlacFrames(path) : 0;
    JudgeSound(path, [=](const Samples& decoded) {
      SCOPED_TRACE(row);
      EXPECT_FALSE(decoded.empty());
      ExpectPrefix(decoded, *crashed.Decoded);
      const auto format = platform::FormatValues(crashed.Format.Format);
      const auto frames = decoded.size() / static_cast<std::size_t>(format.Channels);
      if (mended.LengthMs != MendedCapture::kUnknownLength) {
        const std::int32_t rate = EndsWith(path, ".opus") ? 48000 : format.SampleRate;
        EXPECT_EQ(mended.LengthMs, static_cast<std::int64_t>(frames) * 1000 / rate);
      }
      if (EndsWith(path, ".flac")) {
        EXPECT_EQ(flacFrames, frames);
      }
    });
    // Mending again changes nothing.
    EXPECT_EQ(Mend(path).LengthMs, mended.LengthMs);
    EXPECT_TRUE(ReadFile(path) == bytes);
  }

  TempFolder folder_;
  JudgedFiles judged_;
};

TEST_F(CaptureMender, ACutFileDecodesToItsEndInEachFormat) {
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  for (const Row& row : Rows()) {
    SCOPED_TRACE(row.Name);
    const Crashed crashed = Crash(row);
    std::uniform_int_distribution<std::size_t> anywhere(0, crashed.Open.size());
    std::uniform_int_distribution<std::size_t> early(0, std::min<std::size_t>(crashed.Open.size(), 24000));
    for (int i = Repetitions(8, 200); i > 0; --i)
      ExpectMended(crashed, i % 4 == 0 ? early(random) : anywhere(random));
    ExpectMended(crashed, crashed.Open.size());
    ExpectMended(crashed, 0);
    judged_.JudgeAll();
  }
}

/// Places that chance seldom finds: in a header, a first page, a first frame.
TEST_F(CaptureMender, EveryCutBeforeTheFirstSoundLeavesNothingAndTheFirstPiecesDecode) {
  constexpr std::size_t kEveryByte = 400;
  constexpr std::size_t kStep = 97;  // shorter than any frame
  constexpr int kPieces = 3;
  for (const Row& row : Rows()) {
    SCOPED_TRACE(row.Name);
    const Crashed crashed = Crash(row, 2);
    const std::string& path = crashed.Path;
    std::uintmax_t size = 0;
    int pieces = 0;
    for (std::size_t cut = 0; pieces < kPieces && cut <= crashed.Open.size();
         cut += cut < kEveryByte ? 1 : kStep) {
      std::filesystem::remove(path);  // what takes the place of another file would be waited for
      WriteFile(path, crashed.Open.substr(0, cut));
      const MendedCapture mended = Mend(path);
      if (pieces == 0 && mended.Is == State::Empty) continue;
      ASSERT_EQ(mended.Is, State::Whole) << mended.Cause << ", cut at " << cut;
      if (std::filesystem::file_size(path) == size) continue;
      size = std::filesystem::file_size(path);
      ++pieces;
      ExpectMended(crashed, cut);
    }
    EXPECT_GT(pieces, 0);
  }
}

/// Finished and tagged, but never renamed.
TEST_F(CaptureMender, AFinishedFileStaysAsItIsAndItsTagsAreRead) {
  for (const Row& row : Rows()) {
    SCOPED_TRACE(row.Name);
    const Crashed crashed = Crash(row, 2);
    const std::string& path = crashed.Path;
    const std::string untagged = ReadFile(path);
    EXPECT_EQ(Mend(path).Is, State::Whole);
    EXPECT_TRUE(ReadFile(path) == untagged);

    EXPECT_TRUE(platform::FileTagWriter().Write(
        path, {.Artist = "Los Clav\xC3\xA9s", .Title = "T/x", .Comment = "c", .Encoder = "e"}));
    const std::string tagged = ReadFile(path);
    const MendedCapture mended = Mend(path);
    EXPECT_EQ(mended.Is, State::Whole) << mended.Cause;
    EXPECT_TRUE(ReadFile(path) == tagged);
    const bool hasTags = !EndsWith(row.Name, ".raw") && !EndsWith(row.Name, ".vox");
    EXPECT_EQ(mended.Artist, hasTags ? "Los Clav\xC3\xA9s" : "");
    EXPECT_EQ(mended.Title, hasTags ? "T/x" : "");
    const auto expectAll = [decoded = crashed.Decoded](const Samples& samples) {
      EXPECT_TRUE(samples == *decoded);
    };
    JudgeSound(path, expectAll);

    // A crash while the tags are written.
    if (tagged.size() == untagged.size()) continue;
    WriteFile(path, tagged.substr(0, tagged.size() - 3));
    EXPECT_EQ(Mend(path).Is, State::Whole);
    JudgeSound(path, expectAll);
  }
}

TEST_F(CaptureMender, ALongFileKeepsItsSoundBeyondFourGigabytes) {
  const std::string path = folder_.Path("Capture0.wav");
  {
    EncodedFile file;
    file.SetFormat(platform::WavFormat{44100, 2, 16});
    ASSERT_TRUE(file.Create(path));
  }
  constexpr std::int64_t kSize = (std::int64_t{5} << 30) + 3;
  const std::string header = ReadFile(path).substr(0, 80);
  std::string open = header;
  open.replace(4, 4, "\xFF\xFF\xFF\xFF").replace(76, 4, "\xFF\xFF\xFF\xFF");
  WriteFile(path, open);
  std::filesystem::resize_file(path, kSize);
  const MendedCapture mended = Mend(path);
  EXPECT_EQ(mended.Is, State::Whole) << mended.Cause;
  constexpr std::int64_t kFrames = (kSize - 80) / 4;
  EXPECT_EQ(mended.LengthMs, kFrames / 44100 * 1000 + kFrames % 44100 * 1000 / 44100);
  EXPECT_EQ(std::filesystem::file_size(path), 80U + static_cast<std::uint64_t>(kFrames) * 4);
  auto facts = Probe(path);
  EXPECT_EQ(facts["codec_name"], "pcm_s16le");
  EXPECT_EQ(facts["duration_ts"], std::to_string(kFrames));
}

TEST_F(CaptureMender, AStrangersFileStaysAsItIs) {
  for (const char* name :
       {"Capture0.mp3", "Capture0.ogg", "Capture0.wav", "Capture0.g726", "Capture0.flac", "Capture0.opus"}) {
    const std::string path = folder_.Path(name);
    for (const std::string& bytes :
         {std::string("A diary."), std::string(100000, '\0'), "RIFF" + std::string(40, 'x'),
          "OggS" + std::string(100000, '\0'), "fLaC" + std::string(100000, '\0')}) {
      WriteFile(path, bytes);
      EXPECT_EQ(Mend(path).Is, State::Not) << name;
      EXPECT_TRUE(ReadFile(path) == bytes);
    }
  }
}

TEST_F(CaptureMender, WhatIsDamagedLongBeforeItsEndStaysAsItIs) {
  for (const Row& row : Rows()) {
    if (EndsWith(row.Name, ".wav") || EndsWith(row.Name, ".g726") || EndsWith(row.Name, ".raw") ||
        EndsWith(row.Name, ".vox"))
      continue;
    const std::string path = folder_.Path(row.Name);
    std::string bytes = Crash(row).Open;
    bytes.replace(bytes.size() / 2, 4096, std::string(4096, '\0'));
    bytes.append(std::size_t{1} << 20, '\0');
    WriteFile(path, bytes);
    EXPECT_EQ(Mend(path).Cause, "it is damaged long before its end") << row.Name;
    EXPECT_TRUE(ReadFile(path) == bytes);
  }
}

/// A disk that lost power may have kept what stood there before.
TEST_F(CaptureMender, FlacBlocksOfAnOlderCaptureAreCutOff) {
  const std::string path = folder_.Path("Capture0.flac");
  for (const platform::FlacFormat& other :
       {platform::FlacFormat{44100, 2, 5}, platform::FlacFormat{48000, 2, 5},
        platform::FlacFormat{44100, 1, 5}}) {
    const std::string older =
        Crash({.Name = "Capture1.flac", .Format = other, .MostLost = 0, .EmptyBelow = 0}).Open;
    const Crashed crashed = Crash({.Name = "Capture0.flac",
                                   .Format = platform::FlacFormat{44100, 2, 5},
                                   .MostLost = 0,
                                   .EmptyBelow = 0});
    WriteFile(path, crashed.Open + older.substr(4138));
    EXPECT_EQ(Mend(path).Is, State::Whole);
    EXPECT_TRUE(ReadFile(path).substr(4138) == crashed.Open.substr(4138));
    JudgeSound(path, [whole = crashed.Decoded](const Samples& decoded) { ExpectPrefix(decoded, *whole); });
  }
}

TEST_F(CaptureMender, ALengthThatFlacBlocksDoNotBearOutIsPutRight) {
  const std::string path = folder_.Path("Capture0.flac");
  Crash(
      {.Name = "Capture0.flac", .Format = platform::FlacFormat{44100, 2, 5}, .MostLost = 0, .EmptyBelow = 0},
      2);
  const std::string whole = ReadFile(path);
  constexpr std::size_t kEndOfLength = 26;
  constexpr std::size_t kEndOfFacts = 42;
  // It says that the sound ends within its last block, many blocks earlier, or a second later.
  for (const char* length : {"\x01\x58\x01", "\x00\x88\x88", "\x02\x04\xCC"}) {
    std::string wrong = whole;
    wrong.replace(kEndOfLength - 3, 3, length, 3);
    WriteFile(path, wrong);
    ASSERT_NE(FlacFrames(path), 88200U);
    const MendedCapture mended = Mend(path);
    EXPECT_EQ(mended.Is, State::Whole);
    EXPECT_EQ(mended.LengthMs, 2000);
    EXPECT_EQ(FlacFrames(path), 88200U);
    EXPECT_TRUE(ReadFile(path).substr(kEndOfFacts) == whole.substr(kEndOfFacts));
    EXPECT_EQ(RunProgramAll("flac -s -t '" + path + "'").Status, 0);
  }
}

TEST_F(CaptureMender, AFinishedFlacFileThatLostItsEndHasNoChecksumOfTheWhole) {
  const std::string path = folder_.Path("Capture0.flac");
  Crash(
      {.Name = "Capture0.flac", .Format = platform::FlacFormat{44100, 2, 5}, .MostLost = 0, .EmptyBelow = 0},
      2);
  const std::string whole = ReadFile(path);
  WriteFile(path, whole.substr(0, whole.size() / 2));
  ASSERT_EQ(Mend(path).Is, State::Whole);
  EXPECT_LT(FlacFrames(path), 88200U);
  // The tester decodes all, and compares the checksum if there is one.
  EXPECT_EQ(RunProgramAll("flac -s -t '" + path + "'").Status, 0);
}

TEST_F(CaptureMender, TheTimeOfTheFileStays) {
  const std::string path = folder_.Path("Capture0.raw");
  WriteFile(path, "12345");
  constexpr timespec kThen{.tv_sec = 1700000000, .tv_nsec = 0};
  const timespec times[2] = {kThen, kThen};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  const MendedCapture mended = Mend(path);
  EXPECT_EQ(ReadFile(path), "1234");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mtim.tv_sec, kThen.tv_sec);
  EXPECT_EQ(mended.Written.Year(), 2023);
}

TEST_F(CaptureMender, HeldFilesAndLinksAreNotTouched) {
  const std::string path = folder_.Path("Capture0.raw");
  WriteFile(path, "12345");
  std::filesystem::create_symlink(path, folder_.Path("Capture1.raw"));
  EXPECT_EQ(Mend(folder_.Path("Capture1.raw")).Is, State::Untouched);
  EXPECT_EQ(Mend(folder_.Path("Capture2.raw")).Is, State::Untouched);
  {
    const auto held = platform::OpenHeld(path);
    ASSERT_TRUE(held.IsOpen());
    EXPECT_EQ(Mend(path).Is, State::Untouched);
  }
  EXPECT_EQ(ReadFile(path), "12345");
  EXPECT_EQ(Mend(path).Is, State::Whole);
}

class WorkerCaptureMenderTest : public ::testing::Test {
 protected:
  std::vector<std::string> Find(const std::string& place) {
    std::optional<std::vector<std::string>> answer;
    mender.Find(place, "Capture*", [&](const std::vector<std::string>& paths, const base::Result& looked) {
      EXPECT_TRUE(looked.Ok()) << looked.Cause();
      answer = paths;
    });
    EXPECT_FALSE(answer.has_value()) << "the answer comes from the loop";
    EXPECT_TRUE(loop.RunUntil([&] { return answer.has_value(); }, std::chrono::seconds(10)));
    return answer.value_or(std::vector<std::string>());
  }

  TempFolder folder;
  RealEventLoop loop;
  platform::WorkerCaptureMender mender{loop};
};

TEST_F(WorkerCaptureMenderTest, FindsPlainFilesInAllFoldersThroughNoLink) {
  std::filesystem::create_directories(folder.Path("music/Rock/44"));
  std::filesystem::create_directories(folder.Path("elsewhere"));
  for (const char* name :
       {"music/Capture1.mp3", "music/Rock/44/Capture0.ogg", "music/Rock/Song.ogg", "elsewhere/Capture0.wav"})
    WriteFile(folder.Path(name), "x");
  std::filesystem::create_directory(folder.Path("music/Capture5.wav"));
  std::filesystem::create_symlink(folder.Path("elsewhere"), folder.Path("music/link"));
  std::filesystem::create_symlink(folder.Path("elsewhere/Capture0.wav"), folder.Path("music/Capture0.wav"));
  EXPECT_THAT(Find(folder.Path("music/")), ::testing::ElementsAre(folder.Path("music/Capture1.mp3"),
                                                                  folder.Path("music/Rock/44/Capture0.ogg")));
  EXPECT_THAT(Find(folder.Path("nowhere")), ::testing::IsEmpty());
}

TEST_F(WorkerCaptureMenderTest, AFolderThatCannotBeReadIsNoEmptyOne) {
  const std::filesystem::path music = folder.Path("music");
  std::filesystem::create_directories(music / "lost+found");
  WriteFile(music / "Capture1.mp3", "x");
  std::filesystem::permissions(music / "lost+found", std::filesystem::perms::none);
  std::filesystem::permissions(folder.Path(""), std::filesystem::perms::all);
  const OrdinaryUser user;
  EXPECT_THAT(Find(music), ::testing::ElementsAre(music / "Capture1.mp3"));

  std::optional<base::Result> answer;
  mender.Find(
      std::string(music / "lost+found"), "Capture*",
      [&](const std::vector<std::string>& /*paths*/, const base::Result& looked) { answer = looked; });
  ASSERT_TRUE(loop.RunUntil([&] { return answer.has_value(); }, std::chrono::seconds(10)));
  EXPECT_EQ(answer->Cause(), "Permission denied");
}

TEST_F(WorkerCaptureMenderTest, HoldsTheMendedFileUntilTheNextCall) {
  const std::string path = folder.Path("Capture0.raw");
  WriteFile(path, "12345");
  std::optional<MendedCapture> answer;
  mender.Mend(path, [&](const MendedCapture& mended) { answer = mended; });
  ASSERT_TRUE(loop.RunUntil([&] { return answer.has_value(); }, std::chrono::seconds(10)));
  EXPECT_EQ(answer->Is, State::Whole);
  EXPECT_FALSE(platform::OpenHeld(path).IsOpen());
  mender.Stop();
  EXPECT_TRUE(platform::OpenHeld(path).IsOpen());
}

TEST_F(WorkerCaptureMenderTest, AStoppedCallIsNotAnswered) {
  WriteFile(folder.Path("Capture0.raw"), "12345");
  bool answered = false;
  mender.Mend(folder.Path("Capture0.raw"), [&](const MendedCapture& /*mended*/) { answered = true; });
  mender.Stop();
  loop.Run(std::chrono::milliseconds(200));
  EXPECT_FALSE(answered);
}

}  // namespace
}  // namespace kestrune::test
