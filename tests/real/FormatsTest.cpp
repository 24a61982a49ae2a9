#include <algorithm>
#include <array>
#include <future>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Tone.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

constexpr double kSongSeconds = 7;
constexpr int kWholeSongs = 2;
constexpr int kRoundOfSongs = 4;

/// How far a cut may lie from the change of the sound. The tuned channel is asked on every second tick of 200
/// ms, its answer takes 0.1 s on the line and is acted on at the next tick; the delay of a song is as long as
/// the lead of its text. So a cut comes up to 0.7 s late; the rest is for the sound server's buffers, which
/// make it early, and for a busy machine.
constexpr double kCutTolerance = 1.2;

/// One unit with one receiver and one sink, recording in one format.
struct FormatRun {
  std::string Format;
  std::unique_ptr<Receiver> Radio;
  std::unique_ptr<Unit> Recorder;
  std::vector<std::string> Files;
  std::string RadioID;
  Unit::Json Status;
};

constexpr const char* kFormats[] = {"WAV", "RAW", "VOX", "G726", "OGG", "MP3", "FLAC", "OPUS"};

struct ExpectedSong {
  std::string Place;  ///< below the folder of recordings, without extension
  std::string Artist;
  std::string Title;
};

/// As the program takes them over: a text all in capitals gets small letters.
const std::array<ExpectedSong, kRoundOfSongs> kSongs{{
    {"Decades/8 - Neon 80s/Telephone Isle - Call Me", "Telephone Isle", "Call Me"},
    {"Decades/8 - Neon 80s/Los Claveles - Canción-Puerto", "Los Claveles", "Canción/Puerto"},
    {"Decades/8 - Neon 80s/Silver & Tetra - What's It-", "Silver & Tetra", "What's It?"},
    {"Decades/8 - Neon 80s/The Arcades - Insert Coin", "The Arcades", "Insert Coin"},
}};

/// As many units record at once, one in each format, from a receiver and a sink each: the songs last as long for
/// all as for one.
class Formats : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!PrivatePulse::Installed()) return;
    world_ = new World;
    world_->Ready = StartAll() && RecordAll();
  }
  static void TearDownTestSuite() {
    delete world_;
    world_ = nullptr;
  }

  void SetUp() override {
    if (world_ == nullptr) GTEST_SKIP() << "PulseAudio is not installed";
    ASSERT_TRUE(world_->Ready) << world_->Trouble;
  }

  static const FormatRun& RunOf(const std::string& format) {
    return *std::find_if(world_->Runs.begin(), world_->Runs.end(),
                         [&](const FormatRun& run) { return run.Format == format; });
  }

  /// The song whose file this is, by its folder and name.
  static int SongOf(const FormatRun& run, const std::string& file, const std::string& extension) {
    for (int i = 0; i < kRoundOfSongs; ++i) {
      std::string path = run.Recorder->RecordingFolder();
      path.append("/").append(kSongs[static_cast<std::size_t>(i)].Place).append(extension);
      if (file == path) return i;
    }
    return -1;
  }

  /// From the tolerance at its beginning to the tolerance at its end, the file holds the song's tone; at the
  /// edges it may hold the neighbours' too, and nothing else.
  static void ExpectOwnTone(const Decoded& sound, int song) {
    ASSERT_GT(sound.Samples.size(), 0U) << "nothing could be decoded";
    EXPECT_NEAR(sound.Seconds(), kSongSeconds, kCutTolerance);
    std::vector<double> all;
    all.reserve(kRoundOfSongs);
    for (int i = 0; i < kRoundOfSongs; ++i) all.push_back(ToneOfSong(i));
    const std::vector<double> windows = TonesOver(sound.Mono(), sound.Rate, all);
    const auto edge = static_cast<std::size_t>(kCutTolerance * 10);
    ASSERT_GT(windows.size(), 2 * edge);

    const double own = ToneOfSong(song);
    const double before = ToneOfSong((song + kRoundOfSongs - 1) % kRoundOfSongs);
    const double after = ToneOfSong((song + 1) % kRoundOfSongs);
    for (std::size_t i = 0; i < windows.size(); ++i) {
      const double at = windows[i];
      const bool first = i < edge;
      const bool last = i + edge >= windows.size();
      // A window that a change falls into is filled by no tone.
      const bool good =
          at == own || (first && (at == before || at == 0)) || (last && (at == after || at == 0));
      EXPECT_TRUE(good) << at << " Hz at " << static_cast<double>(i) / 10 << " s of "
                        << static_cast<double>(windows.size()) / 10 << " s, own tone " << own << " Hz";
    }
  }

  template <typename Decode>
  static void ExpectWholeSongs(const std::string& format, const std::string& extension, int rate,
                               int channels, Decode decode) {
    const FormatRun& run = RunOf(format);
    EXPECT_EQ(run.Status.value("fileFormat", ""), format);
    EXPECT_GE(run.Files.size(), static_cast<std::size_t>(kWholeSongs));
    for (const std::string& file : run.Files) {
      SCOPED_TRACE(file);
      const int song = SongOf(run, file, extension);
      ASSERT_GE(song, 0) << "no song has this name";
      const Decoded sound = decode(file);
      EXPECT_EQ(sound.Rate, rate);
      EXPECT_EQ(sound.Channels, channels);
      ExpectOwnTone(sound, song);
    }
  }

  /// The tags that the container gives back, the encoder's under its own name.
  static void ExpectTags(const std::string& format, const std::string& extension, const std::string& codec,
                         const std::string& encoderTag) {
    const FormatRun& run = RunOf(format);
    for (const std::string& file : run.Files) {
      SCOPED_TRACE(file);
      const int song = SongOf(run, file, extension);
      ASSERT_GE(song, 0);
      std::map<std::string, std::string> facts = Probe(file);
      EXPECT_EQ(facts["codec_name"], codec);
      EXPECT_EQ(facts["TAG:artist"], kSongs[static_cast<std::size_t>(song)].Artist);
      EXPECT_EQ(facts["TAG:title"], kSongs[static_cast<std::size_t>(song)].Title);
      EXPECT_EQ(facts["TAG:comment"], "Radio ID: " + run.RadioID);
      EXPECT_EQ(facts[encoderTag], "Kestrune 3.0");
    }
  }

 private:
  struct World {
    // After the first sink, whose monitor comes first as its description is the shortest.
    PrivatePulse Pulse{{SinkModule(1), SinkModule(2), SinkModule(3), SinkModule(4), SinkModule(5),
                        SinkModule(6), SinkModule(7)}};
    TemporaryFolder Folder;
    std::vector<FormatRun> Runs;
    bool Ready = false;
    std::string Trouble;
  };

  static std::string SinkName(std::size_t number) {
    return PrivatePulse::kSink + (number == 0 ? std::string() : std::to_string(number));
  }
  static std::string SinkModule(std::size_t number) {
    return "module-null-sink sink_name=" + SinkName(number) +
           " format=s16le rate=44100 channels=2 sink_properties=device.description=Radio" +
           std::to_string(number);
  }

  static bool StartAll() {
    if (!world_->Pulse.Start()) {
      world_->Trouble = "the sound server does not start";
      return false;
    }
    const auto variables = world_->Pulse.Environment();
    const std::map<std::string, std::string> environment(variables.begin(), variables.end());
    for (const char* format : kFormats) {
      const std::size_t number = world_->Runs.size();
      FormatRun run;
      run.Format = format;
      run.Radio = std::make_unique<Receiver>(
          world_->Folder / (run.Format + "-radio"),
          Receiver::Setup{TenStations(kSongSeconds), "pulse:" + SinkName(number), "tones", {}, environment});
      run.Recorder = std::make_unique<Unit>(world_->Folder / run.Format,
                                            Unit::Setup{"pulse",
                                                        run.Radio->Link(),
                                                        {{"Channel", "8"},
                                                         {"MinSongLength", "3"},
                                                         {"FileFormat", format},
                                                         {"InputDevice", std::to_string(number)},
                                                         {"726_Frequency", "8000"},
                                                         {"VOX_Frequency", "8000"},
                                                         {"RAW_Compression", "1"}},
                                                        {},
                                                        environment});
      run.Recorder->Start();
      world_->Runs.push_back(std::move(run));
    }
    for (FormatRun& run : world_->Runs) {
      if (run.Recorder->WaitUntilIdle()) continue;
      world_->Trouble = run.Format + " does not start: " + run.Recorder->Program().Errors();
      return false;
    }
    return true;
  }

  static bool RecordAll() {
    // Each at a boundary of its own, and all within the same song.
    std::vector<std::future<bool>> pressed;
    for (FormatRun& run : world_->Runs) {
      pressed.push_back(std::async(std::launch::async, [&unit = *run.Recorder] {
        return unit.WaitForBoundary() && unit.Ctl({"record"}).Exit == 0;
      }));
    }
    for (std::size_t i = 0; i < pressed.size(); ++i) {
      if (!pressed[i].get()) world_->Trouble = world_->Runs[i].Format + " does not record";
    }
    for (FormatRun& run : world_->Runs) {
      const bool kept = run.Recorder->WaitForStatus(
          [](const Unit::Json& status) { return status.value("recordedCount", 0) >= kWholeSongs; });
      run.Status = run.Recorder->Status();
      run.RadioID = run.Status.value("radioID", "");
      if (!kept) world_->Trouble = run.Format + " keeps no songs: " + run.Recorder->LogText();
    }
    // All at once: a quit is answered when the radio is off, and a unit that waits its turn would record on.
    std::vector<std::future<int>> quits;
    for (FormatRun& run : world_->Runs) {
      quits.push_back(
          std::async(std::launch::async, [&unit = *run.Recorder] { return unit.Ctl({"quit"}).Exit; }));
    }
    for (std::size_t i = 0; i < quits.size(); ++i) {
      if (quits[i].get() != 0) world_->Trouble = world_->Runs[i].Format + " does not quit";
    }
    for (FormatRun& run : world_->Runs) {
      if (run.Recorder->Program().Wait(kPatience) != 0) world_->Trouble = run.Format + " does not end well";
      run.Files = run.Recorder->Recordings();
    }
    return world_->Trouble.empty();
  }

  static inline World* world_ = nullptr;
};

TEST_F(Formats, WavFilesHoldTheirOwnSongsAndTags) {
  ExpectWholeSongs("WAV", ".wav", 44100, 2, DecodeWithFfmpeg);
  ExpectTags("WAV", ".wav", "pcm_s16le", "TAG:encoder");
}

TEST_F(Formats, RawFilesHoldTheirOwnSongs) {
  ExpectWholeSongs("RAW", ".raw", 44100, 2, [](const std::string& file) { return ReadRaw(file, 44100, 2); });
}

TEST_F(Formats, VoxFilesHoldTheirOwnSongs) {
  ExpectWholeSongs("VOX", ".vox", 8000, 1, [](const std::string& file) {
    return DecodeWithSox(file, {"-t", "vox", "-r", "8000"}, 8000, 1);
  });
}

TEST_F(Formats, G726FilesHoldTheirOwnSongsAndTags) {
  ExpectWholeSongs("G726", ".g726", 8000, 1, DecodeWithFfmpeg);
  ExpectTags("G726", ".g726", "adpcm_g726", "TAG:encoder");
}

TEST_F(Formats, OggFilesHoldTheirOwnSongsAndTags) {
  ExpectWholeSongs("OGG", ".ogg", 44100, 2, DecodeWithOggdec);
  ExpectTags("OGG", ".ogg", "vorbis", "TAG:encoder");
}

TEST_F(Formats, Mp3FilesHoldTheirOwnSongsAndTags) {
  ExpectWholeSongs("MP3", ".mp3", 44100, 2, DecodeWithFfmpeg);
  ExpectTags("MP3", ".mp3", "mp3", "TAG:encoded_by");
}

TEST_F(Formats, FlacFilesHoldTheirOwnSongsAndTags) {
  ExpectWholeSongs("FLAC", ".flac", 44100, 2, DecodeWithFfmpeg);
  ExpectTags("FLAC", ".flac", "flac", "TAG:encoder");
}

TEST_F(Formats, FlacFilesAreInOrder) {
  for (const std::string& file : RunOf("FLAC").Files) {
    const Outcome checked = RunToEnd({"flac", {"-s", "-t", "-w", file}, {}});
    EXPECT_EQ(checked.Exit, 0);
    EXPECT_EQ(checked.Errors, "");
  }
}

TEST_F(Formats, OpusFilesHoldTheirOwnSongsAndTags) {
  ExpectWholeSongs("OPUS", ".opus", 48000, 2, DecodeWithOpusdec);
  ExpectTags("OPUS", ".opus", "opus", "TAG:encoder");
}

TEST_F(Formats, Mp3FilesAreInOrder) {
  for (const std::string& file : RunOf("MP3").Files) {
    const Outcome checked = RunToEnd({"mp3val", {file}, {}});
    EXPECT_EQ(checked.Output.find("WARNING"), std::string::npos) << checked.Output;
    EXPECT_EQ(checked.Output.find("ERROR"), std::string::npos) << checked.Output;
  }
}

TEST_F(Formats, EachUnitRecordsFromItsOwnInput) {
  for (const char* format : kFormats) {
    EXPECT_THAT(RunOf(format).Status.value("inputDevice", ""), testing::HasSubstr("Radio"));
    EXPECT_EQ(RunOf(format).Status.value("samplesLost", -1), 0) << format;
  }
}

TEST_F(Formats, NothingUnfinishedIsLeftBehind) {
  for (const char* format : kFormats) {
    EXPECT_THAT(RunOf(format).Recorder->Captures(), testing::IsEmpty()) << format;
  }
}

}  // namespace
}  // namespace kestrune::test
