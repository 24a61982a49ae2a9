#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/SmallDisk.h"
#include "real/Tone.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double kSongSeconds = 5;

/// What breaks while the program runs, or was broken before: it goes on with what is left.
class Faults : public testing::Test {
 protected:
  Receiver::Setup RadioSetup() const { return {ShortLineUp({"One", "Two", "Three"}, kSongSeconds)}; }
  Unit::Setup UnitSetup(const Receiver& radio) const {
    return {"pipe:" + QuietFile(folder_.Path()), radio.Link(), ShortSongs()};
  }

  /// In the middle of a song that is being recorded.
  static bool WaitForMidSong(const Unit& unit) {
    return unit.WaitForStatus([](const Json& status) {
      return status.value("recording", "") == "Recording" && status.value("captureLengthMs", 0) > 1500;
    });
  }
  static bool WaitForSongs(const Unit& unit, int count) {
    return unit.WaitForStatus(
        [count](const Json& status) { return status.value("recordedCount", 0) >= count; });
  }

  TemporaryFolder folder_;
};

TEST_F(Faults, AReceiverThatGoesAwayInMidSongStopsNothing) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit unit(folder_ / "profile", UnitSetup(radio));
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_EQ(unit.Ctl({"record"}).Exit, 0);
  ASSERT_TRUE(WaitForMidSong(unit));

  radio.Kill();
  const double length = unit.Status().value("captureLengthMs", 0);
  // Without a radio no song ends: the capture in hand runs on beyond any song of this line-up.
  EXPECT_TRUE(unit.WaitForStatus([length](const Json& status) {
    return status.value("captureLengthMs", 0) > length + 1000 * kSongSeconds;
  }));
  radio.Start();
  EXPECT_EQ(unit.Ctl({"stop"}).Exit, 0);
  EXPECT_TRUE(unit.Program().Running());
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.Captures(), IsEmpty());

  // The next start finds the radio at its old place.
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  EXPECT_TRUE(unit.Record(1));
}

TEST_F(Faults, ASoundServerThatComesBackIsRecordedAgainAndItsGapCounted) {
  if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
  PrivatePulse pulse;
  ASSERT_TRUE(pulse.Start());
  const auto variables = pulse.Environment();
  // The receiver plays no sound here, as its player would go down with the server.
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit::Setup setup = UnitSetup(radio);
  setup.Audio = "pulse";
  setup.Environment = {variables.begin(), variables.end()};
  constexpr double kTone = 480;
  const std::string tone = folder_ / "tone.raw";
  ASSERT_EQ(RunToEnd({"sox",
                      {"-n", "-r", "44100", "-c", "2", "-b", "16", "-e", "signed", "-t", "raw", tone, "synth",
                       "300", "sine", "480", "gain", "-6"},
                      {}})
                .Exit,
            0);
  ChildProcess player = pulse.Play(tone);

  Unit unit(folder_ / "profile", setup);
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_EQ(unit.Ctl({"record"}).Exit, 0);
  ASSERT_TRUE(WaitForMidSong(unit));

  pulse.Kill();
  // A song ends while there is no server; the gap is known when it is over.
  EXPECT_TRUE(unit.WaitForBoundary());
  ASSERT_TRUE(pulse.Start());
  player = pulse.Play(tone);
  EXPECT_TRUE(unit.WaitForStatus([](const Json& status) { return status.value("samplesLost", 0) > 0; }));
  const int before = unit.RecordedCount();
  // The song that the gap falls into, perhaps one beside it, and then a whole one.
  EXPECT_TRUE(WaitForSongs(unit, before + 3));
  EXPECT_EQ(unit.Quit(), 0);

  std::vector<std::string> files = unit.Recordings();
  std::sort(files.begin(), files.end(), [](const std::string& a, const std::string& b) {
    return std::filesystem::last_write_time(a) < std::filesystem::last_write_time(b);
  });
  ASSERT_FALSE(files.empty());
  const Decoded last = DecodeWithFfmpeg(files.back());
  const std::vector<double> heard = TonesOver(last.Mono(), last.Rate, std::vector<double>{kTone});
  EXPECT_GT(std::count(heard.begin(), heard.end(), kTone), static_cast<int>((kSongSeconds - 2) * 10));
}

/// A sound server that plays a tone, with a unit that records from it.
class SoundServerFaults : public Faults {
 protected:
  void SetUp() override {
    if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
    ASSERT_TRUE(pulse_.Start());
    for (const auto& [file, hertz] : {std::pair(tone_, "480"), std::pair(otherTone_, "1200")}) {
      ASSERT_EQ(RunToEnd({"sox",
                          {"-n", "-r", "44100", "-c", "2", "-b", "16", "-e", "signed", "-t", "raw", file,
                           "synth", "300", "sine", hertz, "gain", "-6"},
                          {}})
                    .Exit,
                0);
    }
    player_ = pulse_.Play(tone_);
    const auto variables = pulse_.Environment();
    setup_.Audio = "pulse";
    setup_.Environment = {variables.begin(), variables.end()};
    // A song is kept for what came before the fault.
    setup_.Settings["MinSongLength"] = "1";
  }

  /// Records from the device of that number and waits for the middle of a song.
  void Record(const std::string& device) {
    setup_.Settings["InputDevice"] = device;
    unit_.emplace(folder_ / "profile", setup_);
    unit_->Start();
    ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
    ASSERT_EQ(unit_->Ctl({"record"}).Exit, 0);
    ASSERT_TRUE(WaitForMidSong(*unit_));
  }
  /// The server ends and comes back with both tones and another default source.
  void RestartWithDefault(const std::string& source) {
    const std::string log = unit_->LogText();
    pulse_.Kill();
    EXPECT_TRUE(WaitUntil(kPatience, [&] { return unit_->LogText().size() > log.size(); }))
        << "a loss is said";
    ASSERT_TRUE(pulse_.Start());
    ASSERT_TRUE(pulse_.Control({"set-default-source", source}));
    PlayBoth();
    ASSERT_TRUE(WaitForSongs(*unit_, unit_->RecordedCount() + 3)) << unit_->LogText();
  }
  void PlayBoth() {
    player_ = pulse_.Play(tone_);
    otherPlayer_ = pulse_.Play(otherTone_, "odd");
  }
  /// The file that was finished last holds that tone.
  void ExpectLastHeard(double tone) const {
    std::vector<std::string> files = unit_->Recordings();
    std::sort(files.begin(), files.end(), [](const std::string& a, const std::string& b) {
      return std::filesystem::last_write_time(a) < std::filesystem::last_write_time(b);
    });
    ASSERT_FALSE(files.empty());
    const Decoded last = DecodeWithFfmpeg(files.back());
    const std::vector<double> heard = TonesOver(last.Mono(), last.Rate, std::vector{kTone, kOtherTone});
    EXPECT_GT(std::count(heard.begin(), heard.end(), tone), static_cast<int>((kSongSeconds - 2) * 10));
    EXPECT_LT(std::count(heard.begin(), heard.end(), tone == kTone ? kOtherTone : kTone), 1);
  }
  [[nodiscard]] std::int64_t Lost() const { return unit_->Status().value("samplesLost", std::int64_t{-1}); }

  // The monitors, by description: this one and "Radio"; the mapper comes after them.
  PrivatePulse pulse_{{"module-null-sink sink_name=odd sink_properties=device.description=50%#0%Line#1%"}};
  // The receiver plays no sound here, as its player would go down with the server.
  Receiver radio_{folder_ / "radio", RadioSetup()};
  Unit::Setup setup_ = UnitSetup(radio_);
  static constexpr double kTone = 480;
  static constexpr double kOtherTone = 1200;
  std::string tone_ = folder_ / "tone.raw";
  std::string otherTone_ = folder_ / "other.raw";
  ChildProcess player_;
  ChildProcess otherPlayer_;
  std::optional<Unit> unit_;
};

TEST_F(SoundServerFaults, TheMapperRecordsTheSongThatBeganWithoutASoundServer) {
  Record("2");
  EXPECT_EQ(unit_->Status().value("inputDevice", ""), "Sound Mapper");
  const std::int64_t lostBefore = Lost();
  pulse_.Kill();
  EXPECT_TRUE(unit_->WaitForBoundary());
  ASSERT_TRUE(pulse_.Start());
  player_ = pulse_.Play(tone_);
  const auto length = [this] { return unit_->Status().value("captureLengthMs", 0); };
  EXPECT_TRUE(WaitUntil(4s, [&] { return length() > 500; })) << "the song in hand has sound again";
  EXPECT_GT(Lost(), lostBefore);
  EXPECT_TRUE(WaitForSongs(*unit_, unit_->RecordedCount() + 2));
  EXPECT_THAT(unit_->LogText(), Not(HasSubstr("recording input")));
  EXPECT_THAT(unit_->LogText(), HasSubstr("of sound are missing from"));
  EXPECT_THAT(unit_->Recordings(), Contains(HasSubstr(" (Incomplete)"))) << "the song that lacks sound";
  EXPECT_EQ(unit_->Quit(), 0);
}

TEST_F(SoundServerFaults, TheChosenDeviceStaysTheOneWhenTheServerComesBackWithAnotherDefault) {
  Record("1");
  ASSERT_EQ(unit_->Status().value("inputDevice", ""), "Monitor of Radio");
  RestartWithDefault("odd.monitor");
  EXPECT_EQ(unit_->Status().value("inputDevice", ""), "Monitor of Radio");
  ExpectLastHeard(kTone);
  EXPECT_EQ(unit_->Quit(), 0);

  // Another device that comes first in the list, and with that another number for this one.
  ASSERT_TRUE(pulse_.Control(
      {"load-module", "module-null-sink", "sink_name=first", "sink_properties=device.description=1st"}));
  unit_->Start();
  ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
  EXPECT_EQ(unit_->Status().value("inputDevice", ""), "Monitor of Radio");
  EXPECT_EQ(unit_->Ctl({"get", "InputDevice"}).Output, "2\n");
  ASSERT_TRUE(unit_->Record(2));
  ExpectLastHeard(kTone);
  EXPECT_EQ(unit_->Quit(), 0);
}

/// It stands for the device that it chose at the start, whatever the server calls its default later.
TEST_F(SoundServerFaults, TheMapperStaysWithItsDeviceWhenTheServerComesBackWithAnotherDefault) {
  Record("2");
  RestartWithDefault("radio.monitor");
  ExpectLastHeard(kOtherTone);
  EXPECT_EQ(unit_->Quit(), 0);
}

TEST_F(SoundServerFaults, AServerThatAnswersNothingStopsNoTick) {
  Record("2");
  const std::int64_t lostBefore = Lost();
  pulse_.Halt();
  const auto song = [this] { return unit_->Status().value("song", ""); };
  for (int cut = 0; cut < 2; ++cut) {
    const std::string before = song();
    EXPECT_TRUE(WaitUntil(kPatience, [&] { return song() != before; }));
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_TRUE(unit_->Status().is_object());
    EXPECT_LT(std::chrono::steady_clock::now() - asked, 3s) << "with the song delay in it";
  }
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return Lost() > lostBefore + 44100; }));
  pulse_.Continue();
  EXPECT_TRUE(WaitForSongs(*unit_, unit_->RecordedCount() + 2));
  EXPECT_EQ(unit_->Quit(), 0);
}

TEST_F(SoundServerFaults, ADeviceNamedWithTheMarksOfTheListTextIsTheOneChosen) {
  Record("0");
  EXPECT_EQ(unit_->Status().value("inputDevice", ""), "Monitor of 50%#0%Line#1%");
  EXPECT_EQ(unit_->Ctl({"get", "InputDeviceId"}).Output, "odd.monitor\n");
  EXPECT_EQ(unit_->Ctl({"set", "InputDevice", "1"}).Exit, 0);
  EXPECT_EQ(unit_->Status().value("inputDevice", ""), "Monitor of Radio");
  EXPECT_EQ(unit_->Ctl({"get", "InputDeviceId"}).Output, "radio.monitor\n");
  EXPECT_EQ(unit_->Quit(), 0);
}

TEST_F(Faults, AFullDiskLosesSongsButNotTheOnesAfterIt) {
  Receiver radio(folder_ / "radio", RadioSetup());
  const Unit::Setup setup = UnitSetup(radio);
  // One song of 5 s takes 0.9 MB.
  const SmallDisk disk(folder_ / "profile/Music/Kestrune", "1200k");
  if (!disk.Trouble().empty()) GTEST_SKIP() << "no small disk can be mounted here: " << disk.Trouble();
  Unit unit(folder_ / "profile", setup);
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_EQ(unit.Ctl({"record"}).Exit, 0);
  EXPECT_TRUE(WaitUntil(kPatience, [&disk] { return disk.Full(); }));
  const int count = unit.RecordedCount();
  EXPECT_TRUE(unit.Program().Running());

  const auto free = [&unit] {
    for (const std::string& file : unit.Recordings()) std::filesystem::remove(file);
  };
  free();
  // The song in hand while the disk was full may be short; the disk is kept free until a later one is whole.
  double longest = 0;
  EXPECT_TRUE(WaitUntil(
      kPatience,
      [&] {
        for (const std::string& file : unit.Recordings()) {
          const double seconds = DecodeWithFfmpeg(file).Seconds();
          longest = std::max(longest, seconds);
          if (seconds > kSongSeconds - 1.5 && unit.RecordedCount() > count + 1) return true;
          std::filesystem::remove(file);
        }
        return false;
      },
      300ms))
      << "longest file after the full disk: " << longest << " s";
  EXPECT_EQ(unit.Quit(), 0);
}

TEST_F(Faults, AFolderThatCannotBeWrittenIsReportedAndALaterOneServes) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit::Setup setup = UnitSetup(radio);
  // Even root makes no folder below a file.
  PutFile(folder_ / "file", "no folder");
  setup.Settings["FileDir"] = folder_ / "file/below";
  Unit unit(folder_ / "profile", setup);
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_EQ(unit.Ctl({"record"}).Exit, 0);
  EXPECT_TRUE(WaitUntil(
      kPatience, [&unit] { return unit.LogText().find("creating output file") != std::string::npos; }));
  EXPECT_TRUE(unit.Program().Running());

  const std::string good = folder_ / "good";
  EXPECT_EQ(unit.Ctl({"set", "FileDir", good}).Exit, 0);
  EXPECT_TRUE(WaitUntil(kPatience, [&good] { return !Unit::FilesBelow(good, false).empty(); }));
  EXPECT_EQ(FileText(folder_ / "file"), "no folder");
  EXPECT_EQ(unit.Quit(), 0);
}

TEST_F(Faults, FilesFullOfRubbishDoNotKeepTheProgramFromWorking) {
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  const auto rubbish = [&random] {
    std::string bytes(20000, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
  };
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit::Setup setup = UnitSetup(radio);
  Unit unit(folder_ / "profile", setup);
  // The settings stay readable after the rubbish, so that the songs are short enough for this test.
  PutFile(unit.SettingsFile(), rubbish() + "\n" + FileText(unit.SettingsFile()));
  std::filesystem::create_directories(unit.DataFolder());
  for (const char* name : {"ChannelList.txt", "Restriction.txt", "Kestrune.log"}) {
    PutFile(unit.DataFolder() + "/" + name, rubbish());
  }
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  const Json channels = unit.Ask({"channels"});
  EXPECT_TRUE(std::any_of(channels.begin(), channels.end(), [](const Json& channel) {
    return channel["number"] == 3 && channel["station"] == "Other";
  })) << channels.dump();
  EXPECT_TRUE(unit.Record(1));
  EXPECT_EQ(unit.Quit(), 0);
}

TEST_F(Faults, AProgramThatWasKilledStartsAndRecordsAgain) {
  Receiver radio(folder_ / "radio", RadioSetup());
  Unit unit(folder_ / "profile", UnitSetup(radio));
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_EQ(unit.Ctl({"record"}).Exit, 0);
  ASSERT_TRUE(WaitForMidSong(unit));
  unit.Program().Signal(SIGKILL);
  EXPECT_EQ(unit.Program().Wait(kPatience), 128 + SIGKILL);
  EXPECT_FALSE(unit.Captures().empty()) << "the song in hand is left behind";
  EXPECT_EQ(unit.Ctl({"status"}).Exit, 3);

  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  EXPECT_TRUE(unit.Record(2));
  EXPECT_EQ(unit.Quit(), 0);
  EXPECT_THAT(unit.Captures(), IsEmpty());
}

TEST_F(Faults, ALineThatMisbehavesIsLivedWith) {
  Receiver::Setup setup = RadioSetup();
  setup.Arguments = {"--misbehave", "junk,split,lost", "--seed", "11"};
  Receiver radio(folder_ / "radio", setup);
  Unit unit(folder_ / "profile", UnitSetup(radio));
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  EXPECT_TRUE(unit.Record(3));
  std::set<std::string> struck;
  for (const Json& event : radio.Events("misbehaviour")) struck.insert(event.value("name", ""));
  EXPECT_THAT(struck, testing::ElementsAre("junk", "lost", "split"));
  EXPECT_EQ(unit.Quit(), 0);
  for (const std::string& file : unit.Recordings()) {
    EXPECT_THAT(std::filesystem::path(file).stem().string(), testing::MatchesRegex("(One|Two|Three)[0-9]*"));
  }
}

}  // namespace
}  // namespace kestrune::test
