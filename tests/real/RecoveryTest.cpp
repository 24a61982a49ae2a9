#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/CutLedger.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/Repetitions.h"

namespace kestrune::test {
namespace {

using testing::IsEmpty;

constexpr double kSongSeconds = 4;
/// A longer leftover has sound in it, in each format; VOX has so much after three seconds.
constexpr std::uintmax_t kSurelySound = 12000;
/// What an encoder still holds, and the fraction of a second that the log does not tell.
constexpr double kMostLost = 1.5 + 1;

/// Units that are killed again and again while they record, some in each format.
class Recovery : public testing::Test {
 protected:
  struct Track {
    std::string Format;
    std::unique_ptr<Receiver> Radio;
    std::unique_ptr<Unit> Recorder;
    std::set<std::string> Decoded;  ///< files that were looked at
    std::ptrdiff_t Left = 0;        ///< by the last kill, with sound in them
    std::ptrdiff_t Recovered = 0;   ///< so far, as the log says
    std::int64_t CapturedMs = 0;    ///< before the last kill; 0 if the song changed meanwhile
    double MostLost = 0;            ///< of that, by any kill, in seconds
  };

  /// `name` is its own among the tracks.
  Track Make(const std::string& format, const std::string& name, const std::string& sound) const {
    Track track{.Format = format, .Radio = {}, .Recorder = {}, .Decoded = {}};
    auto settings = ShortSongs();
    settings["FileFormat"] = format;
    settings["726_Frequency"] = settings["VOX_Frequency"] = "8000";
    settings["RAW_Compression"] = "1";
    track.Radio = std::make_unique<Receiver>(
        folder_ / ("radio of " + name), Receiver::Setup{ShortLineUp({"One", "Two", "Three"}, kSongSeconds)});
    track.Recorder =
        std::make_unique<Unit>(folder_ / name, Unit::Setup{"pipe:" + sound, track.Radio->Link(), settings});
    return track;
  }

  static void ExpectNoComplaints(const std::string& program, const std::vector<std::string>& arguments) {
    const Outcome checked = RunToEnd({program, arguments, {}});
    EXPECT_EQ(checked.Exit, 0);
    EXPECT_EQ(checked.Errors, "");
    EXPECT_EQ(checked.Output.find("WARNING"), std::string::npos) << checked.Output;
    EXPECT_EQ(checked.Output.find("ERROR"), std::string::npos) << checked.Output;
  }

  static Decoded DecodeByItsOwn(const std::string& format, const std::string& file) {
    if (format == "OGG") return DecodeWithOggdec(file);
    if (format == "OPUS") return DecodeWithOpusdec(file);
    return DecodeWithFfmpeg(file);
  }

  static void ExpectDecodes(const std::string& format, const std::string& file) {
    SCOPED_TRACE(file);
    if (format == "RAW") {
      EXPECT_EQ(std::filesystem::file_size(file) % 4, 0U);
    } else if (format == "VOX") {
      EXPECT_FALSE(DecodeWithSox(file, {"-t", "vox", "-r", "8000"}, 8000, 1).Samples.empty());
    } else {
      ExpectNoComplaints("ffmpeg", {"-nostdin", "-v", "error", "-i", file, "-f", "null", "-"});
      EXPECT_FALSE(DecodeByItsOwn(format, file).Samples.empty());
    }
    // It compares the length that the file gives with the sound.
    if (format == "FLAC") {
      EXPECT_EQ(RunToEnd({"flac", {"--silent", "--test", file}, {}}).Exit, 0);
    }
    // The checker takes a very short file for no sound at all.
    if (format == "MP3" && std::filesystem::file_size(file) >= kSurelySound)
      ExpectNoComplaints("mp3val", {file});
  }

  /// Every file under a final name decodes completely, and none is lost.
  static void LookAtRecordings(Track& track) {
    const std::vector<std::string> recordings = track.Recorder->Recordings();
    for (const std::string& file : recordings) {
      if (track.Decoded.insert(file).second) ExpectDecodes(track.Format, file);
    }
    EXPECT_EQ(track.Decoded, std::set<std::string>(recordings.begin(), recordings.end()));
  }

  static std::ptrdiff_t RecoveredLines(const Track& track) {
    const std::string log = track.Recorder->LogText();
    std::ptrdiff_t lines = 0;
    for (std::size_t at = 0; (at = log.find("Recovered \"", at)) != std::string::npos; ++at) ++lines;
    return lines;
  }

  static std::ptrdiff_t CapturesWithSound(const Unit& unit) {
    const std::vector<std::string> captures = unit.Captures();
    return std::count_if(captures.begin(), captures.end(), [](const std::string& path) {
      std::error_code gone;  // a finished song takes its final name meanwhile
      const std::uintmax_t size = std::filesystem::file_size(path, gone);
      return !gone && size >= kSurelySound;
    });
  }

  static void Record(Unit& unit, std::chrono::milliseconds time) {
    EXPECT_EQ(unit.Ctl({"record"}).Exit, 0) << unit.Program().Errors();
    std::this_thread::sleep_for(time);
  }

  enum class Moment { Any, WithSoundOnTheDisk };
  static void Kill(Track& track, Moment moment) {
    Unit& unit = *track.Recorder;
    const std::vector<std::string> captures = unit.Captures();
    const Unit::Json status = unit.Status();
    // Last, since a song may end at any time, and the next one has nothing on the disk at first.
    if (moment == Moment::WithSoundOnTheDisk) {
      EXPECT_TRUE(WaitUntil(kPatience, [&unit] { return CapturesWithSound(unit) > 0; }));
    }
    unit.Program().Signal(SIGKILL);
    EXPECT_EQ(unit.Program().Wait(kPatience), 128 + SIGKILL);
    track.Left = CapturesWithSound(unit);
    const bool sameSong = status.is_object() && captures == unit.Captures();
    track.CapturedMs = sameSong ? status.value("captureLengthMs", std::int64_t{0}) : 0;
  }

  /// What the log tells of the captures that were recovered after so many, in seconds.
  static std::int64_t LongestRecovered(const Track& track) {
    std::istringstream log(track.Recorder->LogText());
    std::string line;
    std::ptrdiff_t lines = 0;
    std::int64_t longest = 0;
    while (std::getline(log, line)) {
      if (line.find("Recovered \"") == std::string::npos || ++lines <= track.Recovered) continue;
      const std::size_t colon = line.rfind(':');
      const std::size_t minutes = line.rfind('(');
      if (colon == std::string::npos || minutes == std::string::npos || minutes > colon) continue;
      longest = std::max<std::int64_t>(
          longest, std::stoll(line.substr(minutes + 1)) * 60 + std::stoll(line.substr(colon + 1)));
    }
    return longest;
  }

  /// After the next start.
  static void ExpectRecovered(Track& track) {
    const Unit& unit = *track.Recorder;
    EXPECT_TRUE(WaitUntil(kPatience, [&] { return RecoveredLines(track) >= track.Recovered + track.Left; }))
        << unit.LogText();
    EXPECT_EQ(unit.LogText().find("Cannot mend"), std::string::npos) << unit.LogText();
    // The files of these do not say how long they are.
    if (track.Format != "RAW" && track.Format != "VOX") {
      const auto captured = static_cast<double>(track.CapturedMs) / 1000;
      const double lost = captured - static_cast<double>(LongestRecovered(track));
      EXPECT_LT(lost, kMostLost) << captured << " s were captured\n" << unit.LogText();
      track.MostLost = std::max(track.MostLost, lost);
    }
    track.Recovered = RecoveredLines(track);
    LookAtRecordings(track);
  }

  /// The record of what happened has outlived them all, and knows each of them.
  static void ExpectCrashesInTheRecord(const Track& track, int crashes) {
    for (const auto& entry : std::filesystem::directory_iterator(track.Recorder->DataFolder())) {
      const std::string name = entry.path().filename();
      EXPECT_FALSE(name.starts_with("History.db.")) << "put aside as " << name;
    }
    const Unit::Json report = track.Recorder->Ask({"report", "--since", "3h"});
    int told = 0;
    for (const Unit::Json& incident : report.value("incidents", Unit::Json::array()))
      if (incident.value("kind", "") == "program") ++told;
    EXPECT_EQ(told, crashes) << report.dump(1);
  }

  TemporaryFolder folder_;
};

TEST_F(Recovery, WhatAKilledProgramLeavesIsWholeAfterTheNextStart) {
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> anyMoment(0, static_cast<int>(kSongSeconds * 2000));
  const std::string sound = folder_ / "noise.raw";
  ASSERT_EQ(RunToEnd({"sox",
                      {"-n", "-r", "44100", "-c", "2", "-b", "16", "-e", "signed", "-t", "raw", sound,
                       "synth", "120", "pinknoise", "gain", "-6"},
                      {}})
                .Exit,
            0);
  std::vector<Track> tracks;
  const int unitsOfAFormat = Repetitions(1, 4);
  for (const char* format : {"WAV", "RAW", "VOX", "G726", "OGG", "MP3", "FLAC", "OPUS"}) {
    for (int unit = 1; unit <= unitsOfAFormat; ++unit)
      tracks.push_back(Make(format, format + std::to_string(unit), sound));
  }
  for (Track& track : tracks) track.Recorder->Start();
  for (Track& track : tracks)
    ASSERT_TRUE(track.Recorder->WaitUntilIdle()) << track.Recorder->Program().Errors();
  // Sixteen kills, or a thousand.
  const int rounds = Repetitions(2, 32);
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    std::vector<std::future<void>> kills;
    for (Track& track : tracks) {
      const std::chrono::milliseconds after(anyMoment(random));
      // Any moment may do, but once each of them has something to mend.
      const Moment moment = round == 0 ? Moment::WithSoundOnTheDisk : Moment::Any;
      kills.push_back(std::async(std::launch::async, [&track, after, moment] {
        Record(*track.Recorder, after);
        Kill(track, moment);
      }));
    }
    for (std::future<void>& kill : kills) kill.get();
    // A program ends with the thread that has started it, which must be this one.
    for (Track& track : tracks) track.Recorder->Start();
    for (Track& track : tracks) {
      SCOPED_TRACE(track.Format);
      ASSERT_TRUE(track.Recorder->WaitUntilIdle()) << track.Recorder->Program().Errors();
      ExpectRecovered(track);
    }
  }
  for (Track& track : tracks) {
    SCOPED_TRACE(track.Format);
    ExpectCrashesInTheRecord(track, rounds);
    EXPECT_EQ(track.Recorder->Quit(), 0);
    EXPECT_THAT(track.Recorder->Captures(), IsEmpty());
    EXPECT_GT(track.Recovered, 0);
    LookAtRecordings(track);
    std::cout << track.Format << ": " << track.Recovered << " recovered, " << track.Decoded.size()
              << " files, at most " << track.MostLost << " s lost by a kill\n";
  }
}

TEST_F(Recovery, ACrashWhileListeningLosesNoMoreThanWasHeldBack) {
  // Ten seconds, and while a cut is awaited, what may still begin the next song; and what is on the way to the disk.
  constexpr double kMostHeld = 10 + 4.05;
  constexpr double kOnTheWay = 1.5;
  constexpr double kRate = 44100;
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  const std::string pipe = folder_ / "sound";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const Receiver radio(folder_ / "radio",
                       {ShortLineUp({"One", "Two", "Three"}, 12), "pipe:" + pipe, "counter"});
  const auto radioStart = std::chrono::steady_clock::now();
  auto settings = ShortSongs();
  settings["CutPlacement"] = "Listen";
  Track track{.Format = "WAV", .Radio = {}, .Recorder = {}, .Decoded = {}};
  track.Recorder =
      std::make_unique<Unit>(folder_ / "profile", Unit::Setup{"pipe:" + pipe, radio.Link(), settings});
  track.Recorder->Start();
  ASSERT_TRUE(track.Recorder->WaitUntilIdle()) << track.Recorder->Program().Errors();
  // Long enough for a cut, and at any moment after it.
  Record(*track.Recorder,
         std::chrono::milliseconds(std::uniform_int_distribution<int>(26000, 38000)(random)));
  const std::int64_t reported = track.Recorder->Status().value("samplesLost", std::int64_t{0});
  const std::chrono::duration<double> killed = std::chrono::steady_clock::now() - radioStart;
  Kill(track, Moment::Any);
  track.Recorder->Start();
  ASSERT_TRUE(track.Recorder->WaitUntilIdle()) << track.Recorder->Program().Errors();
  ExpectRecovered(track);
  EXPECT_EQ(track.Recorder->Quit(), 0);

  const CutLedger ledger = ReadCutLedger(track.Recorder->Recordings());
  EXPECT_GT(ledger.Files, 1);
  // A machine that stands still for a second loses sound, and says so.
  EXPECT_LE(ledger.Lost, reported);
  EXPECT_EQ(ledger.Doubled, 0);
  const double lost = killed.count() - static_cast<double>(ledger.Last) / kRate;
  std::cout << "lost " << lost << " s\n";
  EXPECT_GT(lost, 5) << "nothing was held back";
  EXPECT_LT(lost, kMostHeld + kOnTheWay);
}

}  // namespace
}  // namespace kestrune::test
