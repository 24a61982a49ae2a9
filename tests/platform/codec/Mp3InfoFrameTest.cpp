#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <lame/lame.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/LameSettings.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Mp3InfoFrame.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::Mp3Parameters;
using platform::Mp3SeekTable;

Mp3Parameters Parameters(std::int16_t method) {
  Mp3Parameters parameters;
  parameters.Bitrate = 128;
  parameters.VBRCodingMethod = method;
  parameters.VBRTargetBitrate = 112;
  parameters.VBRQuality = 4;
  parameters.TypeStereo = 2;
  parameters.Quality = 5;
  parameters.VBRHeader = true;
  parameters.BitReservoir = true;
  return parameters;
}

/// The same sound by the bare library with its own info frame.
std::string EncodeBare(const Mp3Parameters& parameters, std::vector<std::int16_t> samples) {
  auto* const lame = lame_init();
  EXPECT_EQ(platform::ApplyMp3Parameters(lame, parameters), 0);
  lame_set_bWriteVbrTag(lame, 1);
  EXPECT_EQ(lame_init_params(lame), 0);
  std::vector<unsigned char> mp3(samples.size() * 2 + 7200);
  const auto frames = static_cast<int>(samples.size() / 2);
  int bytes =
      lame_encode_buffer_interleaved(lame, samples.data(), frames, mp3.data(), static_cast<int>(mp3.size()));
  bytes += lame_encode_flush(lame, mp3.data() + bytes, static_cast<int>(mp3.size()) - bytes);
  std::string stream(reinterpret_cast<char*>(mp3.data()), static_cast<std::size_t>(bytes));
  std::vector<unsigned char> tag(4096);
  const std::size_t tagBytes = lame_get_lametag_frame(lame, tag.data(), tag.size());
  stream.replace(0, tagBytes, reinterpret_cast<char*>(tag.data()), tagBytes);
  lame_close(lame);
  return stream;
}

std::string Encode(const Mp3Parameters& parameters, const std::vector<std::int16_t>& samples) {
  TempFolder folder;
  platform::EncodedFile file;
  file.SetFormat(parameters);
  EXPECT_TRUE(file.Create(folder.Path("a.mp3")));
  EXPECT_TRUE(WriteBlocks(file, samples));
  EXPECT_TRUE(file.Close());
  return ReadFile(folder.Path("a.mp3"));
}

TEST(Mp3InfoFrame, HoldsTheSameAsTheLibrarysOwn) {
  const auto music = MakeMusic(200000, 44100, 2);
  for (const std::int16_t method : {-1, 0, 1, 4}) {
    SCOPED_TRACE(method);
    const auto ours = ParseInfo(ParseMp3(Encode(Parameters(method), music)));
    const auto theirs = ParseInfo(ParseMp3(EncodeBare(Parameters(method), music)));
    EXPECT_EQ(ours.Name, method == -1 ? "Info" : "Xing");
    EXPECT_EQ(ours.Name, theirs.Name);
    EXPECT_EQ(ours.Frames, theirs.Frames);
    EXPECT_EQ(ours.Bytes, theirs.Bytes);
    EXPECT_EQ(ours.Encoder, theirs.Encoder);
    EXPECT_EQ(ours.Method, theirs.Method);
    EXPECT_EQ(ours.Delay, theirs.Delay);
    EXPECT_EQ(ours.Padding, theirs.Padding);
    EXPECT_EQ(ours.MusicBytes, theirs.MusicBytes);
    EXPECT_EQ(ours.MusicCrc, theirs.MusicCrc);
    // Theirs counts the bytes of a frame when it is encoded, ours where it lies in the file.
    for (std::size_t i = 0; i < 100; ++i) EXPECT_NEAR(ours.Table[i], theirs.Table[i], 8) << i;
  }
}

TEST(Mp3InfoFrame, TheSoundIsThatOfTheBareLibrary) {
  const auto music = MakeMusic(100000, 44100, 2);
  const auto ours = ParseMp3(Encode(Parameters(-1), music));
  const auto theirs = ParseMp3(EncodeBare(Parameters(-1), music));
  ASSERT_EQ(ours.Frames.size(), theirs.Frames.size());
  EXPECT_EQ(ours.Bytes.substr(ours.Frames[1].At), theirs.Bytes.substr(theirs.Frames[1].At));
}

TEST(Mp3InfoFrame, ChecksumCoversItself) {
  for (const std::int16_t method : {-1, 0}) {
    const auto stream = ParseMp3(Encode(Parameters(method), MakeMusic(20000, 44100, 2)));
    const auto info = ParseInfo(stream);
    const auto covered =
        std::string_view(stream.Bytes).substr(stream.Frames[0].At, static_cast<std::size_t>(info.TagBytes));
    EXPECT_EQ(platform::Mp3Crc(0, platform::AsBytes(covered)), info.TagCrc);
  }
}

TEST(Mp3InfoFrame, ChecksumIsTheOneOfThePolynomialTurnedAround) {
  // The published check value of this CRC.
  EXPECT_EQ(platform::Mp3Crc(0, platform::AsBytes("123456789")), 0xBB3D);
  EXPECT_EQ(platform::Mp3Crc(platform::Mp3Crc(0, platform::AsBytes("1234")), platform::AsBytes("56789")),
            0xBB3D);
}

TEST(Mp3InfoFrame, UsesALargeEnoughFrameAtTheLowestBitrates) {
  for (const std::int32_t rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
    for (const std::int16_t channels : {1, 2}) {
      auto parameters = Parameters(-1);
      parameters.Frequency = rate;
      parameters.Channels = channels;
      parameters.Bitrate = rate >= 32000 ? 32 : 8;
      const auto stream = ParseMp3(Encode(parameters, MakeMusic(5000, rate, channels)));
      ASSERT_FALSE(stream.Broken);
      const auto info = ParseInfo(stream);
      EXPECT_EQ(info.Name, "Info");
      EXPECT_EQ(info.Frames, static_cast<long>(stream.Frames.size()) - 1);
      EXPECT_EQ(stream.Frames[0].Rate, rate);
      EXPECT_EQ(stream.Frames[0].Mode, channels == 1 ? 3 : 1);
    }
  }
}

TEST(Mp3SeekTable, AConstantStreamIsAStraightLine) {
  Mp3SeekTable table;
  for (int i = 1; i <= 1000; ++i) table.Note(i * 4, i * 4 * 418);
  const std::string bytes = table.Table(418);
  ASSERT_EQ(bytes.size(), 100U);
  for (int i = 0; i < 100; ++i) {
    EXPECT_NEAR(static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]), i * 256 / 100.0, 1.5) << i;
  }
}

TEST(Mp3SeekTable, FollowsAStreamWhoseSecondHalfIsThreeTimesAsBig) {
  Mp3SeekTable table;
  for (int i = 1; i <= 500; ++i) table.Note(i, i * 100);
  for (int i = 501; i <= 1000; ++i) table.Note(i, 500 * 100 + (i - 500) * 300);
  const std::string bytes = table.Table(0);
  EXPECT_NEAR(static_cast<unsigned char>(bytes[50]), 64, 1);
  EXPECT_NEAR(static_cast<unsigned char>(bytes[75]), 160, 1);
}

TEST(Mp3SeekTable, StaysExactOverHoursOfNotes) {
  Mp3SeekTable table;
  std::int64_t bytes = 0;
  for (int i = 1; i <= 500000; ++i) table.Note(i, bytes += i < 250000 ? 100 : 300);
  const std::string entries = table.Table(0);
  EXPECT_NEAR(static_cast<unsigned char>(entries[50]), 64, 1);
  EXPECT_NEAR(static_cast<unsigned char>(entries[25]), 32, 1);
  EXPECT_NEAR(static_cast<unsigned char>(entries[75]), 160, 1);
}

TEST(Mp3SeekTable, IsWholeWithoutANote) {
  EXPECT_EQ(Mp3SeekTable().Table(0).size(), 100U);
  EXPECT_EQ(Mp3SeekTable().Table(417).size(), 100U);
}

TEST(MpegFrameWalker, FindsTheSameFramesHoweverTheBytesAreCut) {
  const auto stream = ParseMp3(Encode(Parameters(0), MakeMusic(30000, 44100, 2)));
  const std::string sound = stream.Bytes.substr(stream.Frames[0].At);
  for (const std::size_t piece : {1, 2, 3, 5, 417, 1000, 100000}) {
    platform::MpegFrameWalker walker(platform::MpegVersion::Mpeg1, 44100);
    for (std::size_t at = 0; at < sound.size(); at += piece) {
      auto bytes = platform::AsBytes(std::string_view(sound).substr(at, piece));
      while (!bytes.empty()) bytes = bytes.subspan(walker.Take(bytes));
    }
    EXPECT_EQ(walker.Frames(), static_cast<std::int64_t>(stream.Frames.size())) << piece;
    EXPECT_EQ(walker.FrameBytes(), static_cast<std::int64_t>(sound.size())) << piece;
  }
}

TEST(MpegFrameWalker, DoesNotCountAFrameThatIsCutOff) {
  const auto stream = ParseMp3(Encode(Parameters(-1), MakeMusic(30000, 44100, 2)));
  const std::string sound =
      stream.Bytes.substr(stream.Frames[0].At, stream.Frames[3].At - stream.Frames[0].At - 1);
  platform::MpegFrameWalker walker(platform::MpegVersion::Mpeg1, 44100);
  auto bytes = platform::AsBytes(sound);
  while (!bytes.empty()) bytes = bytes.subspan(walker.Take(bytes));
  EXPECT_EQ(walker.Frames(), 2);
  EXPECT_EQ(walker.FrameBytes(), static_cast<std::int64_t>(stream.Frames[2].At - stream.Frames[0].At));
}

}  // namespace
}  // namespace kestrune::test
