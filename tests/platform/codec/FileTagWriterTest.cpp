#include <csignal>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <taglib/fileref.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/wavfile.h>

#include "base/Text.h"
#include "platform/codec/Decoders.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/Ffmpeg.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/codec/Mp3Frames.h"
#include "platform/codec/Signals.h"

namespace kestrune::test {
namespace {

using platform::EncodedFile;
using platform::FileTagWriter;
using platform::Tags;

Tags SomeTags() {
  return {"Björk", "Jóga", "Radio ID: ABC12345", "Kestrune 3.0", 1};
}

class FileTagWriterTest : public testing::Test {
 protected:
  /// A capture of the format that the extension says.
  std::string MakeFile(const std::string& name) {
    std::string path = folder_.Path(name);
    const std::string extension = name.substr(name.rfind('.') + 1);
    EncodedFile file;
    if (extension == "mp3") {
      platform::Mp3Parameters parameters;
      parameters.Bitrate = 128;
      parameters.TypeStereo = 2;
      parameters.Quality = 7;
      parameters.VBRHeader = true;
      file.SetFormat(parameters);
    } else if (extension == "ogg") {
      file.SetFormat(platform::OggFormat{44100, 2, 128, 0, 0, 4});
    } else if (extension == "opus") {
      file.SetFormat(platform::OpusFormat{48000, 2, 128});
    } else if (extension == "flac") {
      file.SetFormat(platform::FlacFormat{44100, 2, 5});
    } else if (extension == "g726") {
      file.SetFormat(platform::G726Format{8000, 5});
    } else if (extension == "vox") {
      file.SetFormat(platform::VoxFormat{8000});
    } else if (extension == "raw") {
      file.SetFormat(platform::RawFormat{1, 44100, 2, 16});
    } else {
      file.SetFormat(platform::WavFormat{44100, 1, 8});
    }
    const auto format = file.FormatValues();
    // An odd number of bytes where the format allows it.
    sound_ = MakeMusic(30001, format.SampleRate, format.Channels);
    EXPECT_EQ(file.Create(path).Number, 0);
    EXPECT_TRUE(WriteBlocks(file, sound_));
    EXPECT_TRUE(file.Close());
    return path;
  }

  /// A copy that stays as the file is now.
  std::string Kept(const std::string& path) {
    std::string copy = folder_.NewPath(path.substr(path.rfind('.') + 1));
    std::filesystem::copy_file(path, copy);
    return copy;
  }

  TempFolder folder_;
  FileTagWriter writer_;
  std::vector<std::int16_t> sound_;
};

/// The versions of each file have the same packets of sound.
void ExpectSameSound(const std::vector<std::vector<std::string>>& versions) {
  std::vector<std::string> paths;
  for (const auto& each : versions) paths.insert(paths.end(), each.begin(), each.end());
  const std::vector<std::string> checksums = SoundChecksums(paths);
  std::size_t at = 0;
  for (const auto& each : versions) {
    const std::string& first = checksums[at];
    EXPECT_TRUE(first.starts_with("MD5=")) << each[0];
    for (const std::string& path : each) EXPECT_EQ(checksums[at++], first) << path;
  }
}

/// Those of ffmpeg, file by file.
std::vector<std::map<std::string, std::string>> TagsOf(const std::vector<std::string>& paths) {
  std::vector<SoundFile> files;
  for (const std::string& path : paths) files.push_back({path});
  std::vector<std::map<std::string, std::string>> tags;
  for (DecodedFile& file : DecodeTogether(files)) tags.push_back(std::move(file.Tags));
  return tags;
}

const std::vector<std::string> kTagged{"a.mp3", "a.ogg", "a.wav", "a.g726", "a.flac", "a.opus"};

TEST_F(FileTagWriterTest, TagsAreThereAndTheSoundIsUntouched) {
  std::vector<std::vector<std::string>> versions;
  std::vector<SoundFile> files;
  for (const std::string& name : kTagged) {
    const std::string path = MakeFile(name);
    const std::string untagged = Kept(path);
    EXPECT_TRUE(writer_.Write(path, SomeTags()));
    versions.push_back({untagged, path});
    files.insert(files.end(), {{untagged}, {path}});
  }
  ExpectSameSound(versions);
  const auto decoded = DecodeTogether(files);
  for (std::size_t i = 0; i < kTagged.size(); ++i) {
    const std::string& name = kTagged[i];
    SCOPED_TRACE(name);
    const DecodedFile& untagged = decoded[2 * i];
    const DecodedFile& tagged = decoded[2 * i + 1];
    EXPECT_FALSE(untagged.Samples.empty());
    EXPECT_EQ(tagged.Samples, untagged.Samples);
    auto tags = tagged.Tags;
    EXPECT_EQ(tags["artist"], "Björk");
    EXPECT_EQ(tags["title"], "Jóga");
    EXPECT_EQ(tags["comment"], "Radio ID: ABC12345");
    EXPECT_EQ(tags[name == "a.mp3" ? "encoded_by" : "encoder"], "Kestrune 3.0");
  }
}

/// What the tags may change of a file: up to the end of the room in front, or the size in the RIFF header.
std::size_t HeadOf(const std::string& name) {
  if (name == "a.mp3") return 4096;
  if (name == "a.ogg") return 58 + 27 + 17 + 4096;
  if (name == "a.opus") return 47 + 27 + 17 + 4096;
  return name == "a.flac" ? 42 + 4096 : 8;
}

void ExpectSomeTags(const TagLib::Tag& tag) {
  EXPECT_EQ(tag.artist().to8Bit(true), "Björk");
  EXPECT_EQ(tag.title().to8Bit(true), "Jóga");
  EXPECT_EQ(tag.comment().to8Bit(true), "Radio ID: ABC12345");
}

TEST_F(FileTagWriterTest, AnotherTagLibraryReadsTheSame) {
  for (const std::string& name : std::vector<std::string>{"a.mp3", "a.ogg", "a.flac", "a.opus"}) {
    SCOPED_TRACE(name);
    const std::string path = MakeFile(name);
    ASSERT_TRUE(writer_.Write(path, SomeTags()));
    const TagLib::FileRef file(path.c_str());
    ASSERT_FALSE(file.isNull());
    ExpectSomeTags(*file.tag());
  }
  const std::string path = MakeFile("a.wav");
  ASSERT_TRUE(writer_.Write(path, SomeTags()));
  const TagLib::RIFF::WAV::File file(path.c_str());
  ASSERT_TRUE(file.hasInfoTag());
  ExpectSomeTags(*file.InfoTag());
}

TEST_F(FileTagWriterTest, TaggingWithinReservedRoomMovesNoByteOfSound) {
  for (const std::string& name : std::vector<std::string>{"a.mp3", "a.ogg", "a.flac", "a.opus"}) {
    const std::string path = MakeFile(name);
    const std::string before = ReadFile(path);
    ASSERT_TRUE(writer_.Write(path, SomeTags()));
    const std::string after = ReadFile(path);
    const std::size_t room = HeadOf(name);
    EXPECT_EQ(after.substr(room, before.size() - room), before.substr(room)) << name;
    EXPECT_EQ(after.size(), before.size() + (name == "a.mp3" ? 128 : 0));
  }
}

TEST_F(FileTagWriterTest, TaggedFilesPassTheCheckers) {
  const std::string mp3 = MakeFile("a.mp3");
  ASSERT_TRUE(writer_.Write(mp3, SomeTags()));
  const auto checked = RunProgramAll("mp3val '" + mp3 + "'");
  EXPECT_EQ(checked.Output.find("WARNING"), std::string::npos) << checked.Output;
  EXPECT_NE(checked.Output.find("ID3v1"), std::string::npos) << checked.Output;

  const std::string ogg = MakeFile("a.ogg");
  ASSERT_TRUE(writer_.Write(ogg, SomeTags()));
  const auto said = RunProgramAll("LC_ALL=C.UTF-8 ogginfo '" + ogg + "'");
  EXPECT_EQ(said.Status, 0);
  EXPECT_EQ(said.Output.find("WARNING"), std::string::npos) << said.Output;
  EXPECT_NE(said.Output.find("ARTIST=Björk"), std::string::npos) << said.Output;
  EXPECT_EQ(DecodeWithOggdec(ogg).size(), sound_.size());

  const std::string flac = MakeFile("a.flac");
  ASSERT_TRUE(writer_.Write(flac, SomeTags()));
  const auto tested = RunProgramAll("flac -s -t -w '" + flac + "'");
  EXPECT_EQ(tested.Status, 0);
  EXPECT_EQ(tested.Output, "");
  EXPECT_EQ(RunProgramAll("metaflac --no-utf8-convert --export-tags-to=- '" + flac + "'").Output,
            "ARTIST=Björk\nTITLE=Jóga\nCOMMENT=Radio ID: ABC12345\nENCODER=Kestrune 3.0\n");

  const std::string opus = MakeFile("a.opus");
  ASSERT_TRUE(writer_.Write(opus, SomeTags()));
  const auto info = RunProgramAll("LC_ALL=C.UTF-8 opusinfo '" + opus + "'");
  EXPECT_EQ(info.Status, 0);
  EXPECT_EQ(info.Output.find("WARNING"), std::string::npos) << info.Output;
  EXPECT_NE(info.Output.find("ARTIST=Björk"), std::string::npos) << info.Output;
  EXPECT_EQ(DecodeWithOpusdec(opus).size(), sound_.size());

  const std::string wav = MakeFile("a.wav");
  ASSERT_TRUE(writer_.Write(wav, SomeTags()));
  const auto read = RunProgramAll("sox '" + wav + "' -n stat");
  EXPECT_EQ(read.Status, 0);
  EXPECT_EQ(read.Output.find("WARN"), std::string::npos) << read.Output;
}

TEST_F(FileTagWriterTest, RiffSizeIsThatOfTheFile) {
  for (const std::string& name : std::vector<std::string>{"a.wav", "a.g726"}) {
    const std::string path = MakeFile(name);
    for (int round = 0; round < 2; ++round) {
      const std::string bytes = ReadFile(path);
      std::size_t size = 0;
      for (std::size_t i = 8; i > 4; --i) size = size << 8 | static_cast<unsigned char>(bytes[i - 1]);
      EXPECT_EQ(size, bytes.size() - 8) << name << " " << round;
      EXPECT_EQ(bytes.size() % 2, 0U);
      ASSERT_TRUE(writer_.Write(path, SomeTags()));
    }
  }
}

TEST_F(FileTagWriterTest, Mp3HoldsTheShortTagAtItsEnd) {
  const std::string path = MakeFile("a.mp3");
  ASSERT_TRUE(writer_.Write(path, SomeTags()));
  TagLib::MPEG::File file(path.c_str());
  ASSERT_TRUE(file.hasID3v1Tag());
  EXPECT_EQ(file.ID3v1Tag()->artist().to8Bit(true), "Björk");
  EXPECT_EQ(file.ID3v1Tag()->title().to8Bit(true), "Jóga");
  EXPECT_EQ(file.ID3v1Tag()->comment().to8Bit(true), "Radio ID: ABC12345");
  ASSERT_TRUE(file.hasID3v2Tag());
  EXPECT_EQ(file.ID3v2Tag()->header()->majorVersion(), 4U);
  EXPECT_EQ(file.ID3v2Tag()->frameListMap()["TENC"].front()->toString().to8Bit(true), "Kestrune 3.0");
}

TEST_F(FileTagWriterTest, TaggingAgainReplacesTheTags) {
  std::vector<std::vector<std::string>> versions;
  for (const std::string& name : kTagged) {
    SCOPED_TRACE(name);
    const std::string path = MakeFile(name);
    const std::string untagged = Kept(path);
    Tags longer = SomeTags();
    longer.Title = base::ReplaceAll(std::string(70, '-'), "-", "longer.");
    ASSERT_TRUE(writer_.Write(path, longer));
    ASSERT_TRUE(writer_.Write(path, SomeTags()));
    const std::string once = ReadFile(path);
    ASSERT_TRUE(writer_.Write(path, SomeTags()));
    EXPECT_EQ(ReadFile(path), once);
    EXPECT_EQ(once.find("longer"), std::string::npos);
    versions.push_back({untagged, path});
  }
  ExpectSameSound(versions);
}

TEST_F(FileTagWriterTest, RawAndVoxFilesAreLeftAsTheyAre) {
  for (const std::string& name : std::vector<std::string>{"a.raw", "a.vox"}) {
    const std::string path = MakeFile(name);
    const std::string before = ReadFile(path);
    EXPECT_TRUE(writer_.Write(path, SomeTags()));
    EXPECT_EQ(ReadFile(path), before);
  }
}

TEST_F(FileTagWriterTest, SoundThatLooksLikeAnotherFormatIsNotTagged) {
  const std::string wav = ReadFile(MakeFile("a.wav"));
  WriteFile(folder_.Path("b.raw"), wav);
  EXPECT_TRUE(writer_.Write(folder_.Path("b.raw"), SomeTags()));
  EXPECT_EQ(ReadFile(folder_.Path("b.raw")), wav);
}

TEST_F(FileTagWriterTest, ExtensionsCountWithoutRegardToCase) {
  const std::string path = MakeFile("a.mp3");
  std::filesystem::rename(path, folder_.Path("A.MP3"));
  EXPECT_TRUE(writer_.Write(folder_.Path("A.MP3"), SomeTags()));
}

TEST_F(FileTagWriterTest, AMissingFileIsReportedAndNotCreated) {
  for (const std::string& name : kTagged) {
    EXPECT_EQ(writer_.Write(folder_.Path(name), SomeTags()).Cause(), "No such file or directory");
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path("")));
}

TEST_F(FileTagWriterTest, FilesThatAreNotOursAreLeftAsTheyAre) {
  const std::vector<std::string> contents{"",
                                          "x",
                                          "ID3",
                                          "OggS",
                                          "RIFF",
                                          "fLaC",
                                          std::string("fLaC\0\0\0\x22", 8) + std::string(5000, '\x10'),
                                          std::string(5000, '\0'),
                                          std::string(5000, '\xFF'),
                                          std::string("RIFF\x0C\0\0\0WAVEfata\0\0\0\0", 20),
                                          std::string("RIFF\x0C\0\0\0WAVEdata\xFF\xFF\xFF\x7F", 20),
                                          std::string("ID3\x04\0\0\0\0\x1F\x76", 10)};
  for (const std::string& name : kTagged) {
    for (const std::string& content : contents) {
      WriteFile(folder_.Path(name), content);
      EXPECT_FALSE(writer_.Write(folder_.Path(name), SomeTags()));
      EXPECT_EQ(ReadFile(folder_.Path(name)), content);
    }
  }
}

TEST_F(FileTagWriterTest, ACutOffFileIsTaggedOrLeftButItsSoundNeverSpoilt) {
  for (const std::string& name : kTagged) {
    const std::size_t head = HeadOf(name);
    const std::string path = MakeFile(name);
    const std::string whole = ReadFile(path);
    for (std::size_t size = 0; size < whole.size(); size += 1 + size / 7) {
      SCOPED_TRACE(fmt::format("{} {}", name, size));
      const std::string cut = whole.substr(0, size);
      WriteFile(path, cut);
      const bool tagged = writer_.Write(path, SomeTags()).Ok();
      const std::string after = ReadFile(path);
      if (tagged) {
        ASSERT_GE(size, head);
        EXPECT_EQ(after.substr(head, size - head), cut.substr(head));
      } else {
        EXPECT_EQ(after, cut);
      }
    }
  }
}

TEST_F(FileTagWriterTest, AFileWhoseEndNeverCameHoldsNoInfoList) {
  EncodedFile file;
  file.SetFormat(platform::WavFormat{44100, 2, 16});
  EXPECT_TRUE(file.Create(folder_.Path("a.wav")));
  ASSERT_TRUE(file.WriteBlock(MakeMusic(1000, 44100, 2)));
  const std::string before = ReadFile(folder_.Path("a.wav"));
  EXPECT_FALSE(writer_.Write(folder_.Path("a.wav"), SomeTags()));
  EXPECT_EQ(ReadFile(folder_.Path("a.wav")), before);
}

TEST_F(FileTagWriterTest, OddTextsNeverSpoilAFile) {
  const std::vector<std::string> texts{"",
                                       " ",
                                       std::string("a\0b\r\nc\x1B", 7),
                                       std::string(100000, 'y'),
                                       "\xFF\xFE not utf-8 \xC3",
                                       "日本語 🎵 €",
                                       "ARTIST=x=y",
                                       "TAG",
                                       "OggS LIST RIFF data"};
  std::vector<std::string> paths;
  std::vector<std::vector<std::string>> versions;
  for (const std::string& name : kTagged) {
    SCOPED_TRACE(name);
    paths.push_back(MakeFile(name));
    versions.push_back({Kept(paths.back())});
    for (const std::string& text : texts) {
      EXPECT_TRUE(writer_.Write(paths.back(), {text, text, text, text, 1})) << text.substr(0, 20);
      versions.back().push_back(Kept(paths.back()));
    }
  }
  ExpectSameSound(versions);
  for (auto& tags : TagsOf(paths)) EXPECT_EQ(tags["artist"], "OggS LIST RIFF data");
}

TEST_F(FileTagWriterTest, ALongTextIsCutAndTheOthersStay) {
  for (const std::string& name : kTagged) {
    const std::string path = MakeFile(name);
    Tags tags = SomeTags();
    tags.Artist = std::string(5000, 'a');
    tags.Comment = std::string(5000, 'c');
    ASSERT_TRUE(writer_.Write(path, tags));
    auto facts = Probe(path);
    EXPECT_EQ(facts["TAG:artist"].empty() ? facts["TAG:ARTIST"] : facts["TAG:artist"], std::string(900, 'a'))
        << name;
    EXPECT_EQ(facts["TAG:title"].empty() ? facts["TAG:TITLE"] : facts["TAG:title"], "Jóga") << name;
  }
}

TEST_F(FileTagWriterTest, EmptyTextsHaveNoField) {
  std::vector<std::string> paths;
  for (const std::string& name : kTagged) {
    paths.push_back(MakeFile(name));
    ASSERT_TRUE(writer_.Write(paths.back(), SomeTags()));
    ASSERT_TRUE(writer_.Write(paths.back(), {"", "Jóga", "", "", 1}));
  }
  const auto found = TagsOf(paths);
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i].count("artist"), 0U) << paths[i];
    EXPECT_EQ(found[i].count("title"), 1U) << paths[i];
  }
}

}  // namespace
}  // namespace kestrune::test
