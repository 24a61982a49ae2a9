#include <array>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Receiver.h"
#include "real/Screen.h"
#include "real/Tone.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Titles as regular expressions; the main window's carries the artist once one plays.
constexpr const char* kMain = "^Kestrune(: .*)?$";
constexpr const char* kAgreement = "^Kestrune Agreement$";
constexpr const char* kConfiguration = "^Kestrune Configuration$";
constexpr const char* kChannels = "^Kestrune Channels$";
constexpr const char* kScheduler = "^Kestrune Scheduler$";
constexpr const char* kDateSelect = "^Kestrune Date Select$";
constexpr const char* kListAddition = "^Kestrune Grab/Kill List Addition$";
constexpr const char* kMixer = "^Kestrune Record Mixer$";

/// Four stations; one artist each, whose songs change.
std::vector<LineUpStation> FourStations(double seconds) {
  const auto station = [seconds](int number, const std::string& name, const std::string& artist) {
    return LineUpStation{number,
                         name,
                         "Genre",
                         {{artist, "One", seconds}, {artist, "Two", seconds}, {artist, "Three", seconds}}};
  };
  return {station(1, "Preview", "The Preview"), station(3, "Harbour", "Moonlighters"),
          station(5, "Wind & Sail", "Wind & Water"), station(7, "Newsline", "Markets")};
}

std::vector<std::string> Times(int count, const char* key) {
  return std::vector<std::string>(static_cast<std::size_t>(count), key);
}

std::vector<std::string> Then(std::vector<std::string> first, const std::vector<std::string>& rest) {
  first.insert(first.end(), rest.begin(), rest.end());
  return first;
}

std::string TextOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A unit with windows on a screen of its own, in its first run.
class FirstHour : public testing::Test {
 protected:
  void SetUp() override {
    if (!screen_.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  }
  void StartUnit(const std::map<std::string, std::string>& settings) {
    radio_ = std::make_unique<Receiver>(folder_ / "radio", Receiver::Setup{FourStations(6)});
    unit_ =
        std::make_unique<Unit>(folder_ / "profile", Unit::Setup{.Audio = "pipe:" + QuietFile(folder_.Path()),
                                                                .Port = radio_->Link(),
                                                                .Settings = settings,
                                                                .Environment = screen_.Environment(),
                                                                .Windows = true});
    unit_->Start();
  }
  [[nodiscard]] bool Agree() {
    if (!screen_.WaitFor(kAgreement)) return false;
    screen_.Press(kAgreement, {"alt+i", "alt+c"});
    return screen_.WaitUntilGone(kAgreement);
  }
  [[nodiscard]] bool WaitForChannel(int channel) {
    return unit_->WaitForStatus([&](const Json& status) { return status["channelNumber"] == channel; });
  }
  [[nodiscard]] bool WaitForRecording(const char* text) {
    return unit_->WaitForStatus([&](const Json& status) { return status["recording"] == text; }, 30s);
  }
  /// Since Record was pressed.
  [[nodiscard]] bool WaitForSongs(int count) {
    return unit_->WaitForStatus([&](const Json& status) { return status["recordedCount"] >= count; });
  }
  [[nodiscard]] std::vector<int> TunedChannels() const {
    std::vector<int> channels;
    for (const Json& event : radio_->Events("tuned")) channels.push_back(event["channel"]);
    return channels;
  }
  /// A strip of the main window in which something is to be clicked: fonts decide where exactly.
  struct Strip {
    int X;
    int First;
    int Last;
    int Times;
  };
  /// Clicks down the strip until a window opens.
  [[nodiscard]] bool ClickUntil(const char* title, const Strip& strip) {
    for (int y = strip.First; y < strip.Last; y += 8) {
      screen_.Click(kMain, strip.X, y, strip.Times);
      if (WaitUntil(400ms, [&] { return screen_.Shows(title); })) return true;
    }
    return false;
  }
  /// Of the texts of the main window, the artist is the first that asks for a list.
  [[nodiscard]] bool DoubleClickTheArtist() {
    return ClickUntil(kListAddition, {.X = 180, .First = 70, .Last = 170, .Times = 2});
  }
  [[nodiscard]] std::string ListFile() const { return TextOf(unit_->DataFolder() + "/Restriction.txt"); }
  [[nodiscard]] std::string Settings() const { return TextOf(unit_->SettingsFile()); }

  const Screen screen_;
  const TemporaryFolder folder_;
  std::unique_ptr<Receiver> radio_;
  std::unique_ptr<Unit> unit_;
};

TEST_F(FirstHour, ChannelsAreWalkedRecordedListedAndPreset) {
  auto settings = ShortSongs();
  settings.insert_or_assign("FileFormat", "MP3");
  settings.insert({{"Preset1", "1 - Preview"}});
  StartUnit(settings);
  ASSERT_TRUE(Agree()) << unit_->Program().Errors();

  // The first configuration has to be saved: Escape is no way out. The shortest song is a second longer now.
  ASSERT_TRUE(screen_.WaitFor(kConfiguration)) << unit_->Program().Errors();
  screen_.Press(kConfiguration, {"Escape"});
  screen_.Press(kConfiguration, {"alt+o", "Down", "Return"});
  ASSERT_TRUE(screen_.WaitUntilGone(kConfiguration));
  ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
  ASSERT_TRUE(screen_.WaitFor(kChannels)) << "the channels are open in the first run";

  // Two steps down the list are one change, once the user has stopped; a click is one too.
  const std::size_t before = TunedChannels().size();
  screen_.Press(kChannels, {"Down", "Down"});
  EXPECT_TRUE(WaitForChannel(5));
  constexpr int kSearchLine = 33;  // above the list
  screen_.Click(kChannels, 100, kSearchLine + 34);
  EXPECT_TRUE(WaitForChannel(1));
  const std::vector<int> tuned = TunedChannels();
  EXPECT_EQ(std::vector<int>(tuned.begin() + static_cast<std::ptrdiff_t>(before), tuned.end()),
            (std::vector{5, 1}));

  // One whole song, by the main window's key in the channels window. While it runs the channel stays.
  ASSERT_TRUE(unit_->WaitForBoundary());
  screen_.Press(kChannels, {"ctrl+r"});
  ASSERT_TRUE(WaitForRecording("Recording"));
  screen_.Press(kChannels, {"Down"});
  ASSERT_TRUE(WaitForSongs(1));
  EXPECT_EQ(unit_->Status()["channelNumber"], 1);
  EXPECT_EQ(TunedChannels().size(), tuned.size());

  // The artist, double clicked, goes onto the Kill list, which then counts.
  ASSERT_TRUE(DoubleClickTheArtist());
  screen_.Press(kListAddition, {"Tab", "Tab", "space"});
  ASSERT_TRUE(screen_.WaitUntilGone(kListAddition));
  EXPECT_TRUE(WaitUntil(10s, [this] { return ListFile() == "2The Preview\n"; })) << ListFile();
  screen_.Press(kMain, {"ctrl+k"});
  EXPECT_TRUE(WaitForRecording("Recording (Killed)"));
  screen_.Press(kMain, {"ctrl+s"});
  ASSERT_TRUE(WaitForRecording(""));

  // By an arrow key to another channel, and by the preset's key back.
  screen_.Press(kChannels, {"Down", "Down", "Down"});
  EXPECT_TRUE(WaitForChannel(7));
  screen_.Press(kChannels, {"ctrl+F1"});
  EXPECT_TRUE(WaitForChannel(1));

  // The channels window goes down with the main window, and comes back with it.
  screen_.Minimise(kMain);
  EXPECT_TRUE(screen_.WaitUntilGone(kMain));
  EXPECT_TRUE(screen_.WaitUntilGone(kChannels));
  screen_.Activate("Kestrune");
  EXPECT_TRUE(screen_.WaitFor(kMain));
  EXPECT_TRUE(screen_.WaitFor(kChannels));
  screen_.Close(kMain);
  EXPECT_TRUE(screen_.WaitUntilGone(kMain));
  EXPECT_EQ(unit_->Program().Wait(kPatience), 0) << unit_->Program().Errors();

  const std::vector<std::string> recordings = unit_->Recordings();
  ASSERT_THAT(recordings, Not(IsEmpty()));
  EXPECT_THAT(recordings, Each(AnyOf(EndsWith("/One.mp3"), EndsWith("/Two.mp3"), EndsWith("/Three.mp3"))));
  auto facts = Probe(recordings.front());
  EXPECT_EQ(facts["codec_name"], "mp3");
  EXPECT_EQ(facts["TAG:artist"], "The Preview");
  EXPECT_THAT(recordings.front(), EndsWith("/" + facts["TAG:title"] + ".mp3"));
  EXPECT_THAT(unit_->Captures(), IsEmpty());
  EXPECT_THAT(Settings(),
              AllOf(HasSubstr("MinSongLength=3\n"), HasSubstr("ChannelListing=1\n"), HasSubstr("Channel=1\n"),
                    HasSubstr("SievanceKill=1\n"), HasSubstr("LegalAgreement=True\n"), HasSubstr("MainTop="),
                    HasSubstr("ChannelTop=")));
  EXPECT_THAT(unit_->LogText(),
              AllOf(HasSubstr("Radio found on port 1"), ContainsRegex("[0-9] Recorded: Channel 1"),
                    HasSubstr("Shutting Down")));
  EXPECT_EQ(ListFile(), "2The Preview\n");
  EXPECT_THAT(unit_->Program().Errors(), Not(HasSubstr("QObject")));
}

TEST_F(FirstHour, ANewUserConfiguresRecordsSchedulesAndChangesTheFormat) {
  StartUnit({});
  ASSERT_TRUE(Agree()) << unit_->Program().Errors();
  ASSERT_TRUE(screen_.WaitFor(kConfiguration)) << unit_->Program().Errors();
  // Songs from two seconds on; all else as it comes.
  screen_.Press(kConfiguration, {"alt+o", "Home", "Down", "Return"});
  ASSERT_TRUE(screen_.WaitUntilGone(kConfiguration));
  ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
  EXPECT_EQ(unit_->Status()["fileFormat"], "MP3");
  screen_.Press(kMain, {"ctrl+r"});

  // Each week at this day, on channel 3, at the next whole minute that leaves time to say so.
  const std::time_t due = (std::time(nullptr) + 10 + 59) / 60 * 60;
  std::tm moment{};
  localtime_r(&due, &moment);
  screen_.Press(kMain, {"ctrl+t"});
  ASSERT_TRUE(screen_.WaitFor(kScheduler));
  screen_.Press(kScheduler, {"space", "Tab", "Down", "Tab", "space"});
  ASSERT_TRUE(screen_.WaitFor(kDateSelect));
  screen_.Press(kDateSelect, Then(Times(moment.tm_wday + 1, "Tab"), {"space"}));
  ASSERT_TRUE(screen_.WaitUntilGone(kDateSelect));
  screen_.Press(kScheduler, Then({"Tab", "Home"}, Times((moment.tm_hour + 11) % 12, "Down")));
  screen_.Press(kScheduler, Then({"Tab", "Home"}, Times(moment.tm_min, "Down")));
  screen_.Press(kScheduler,
                {"Tab", moment.tm_hour < 12 ? "Home" : "End", "Tab", "Home", "Tab", "Home", "Down"});
  // Past the end and the modes to the bit rate, of which the last is chosen.
  screen_.Press(kScheduler, Then(Times(9, "Tab"), {"End"}));
  // Backwards, Save is ten rows nearer: past the first control and Cancel.
  screen_.Press(kScheduler, Then(Times(18, "shift+Tab"), {"space"}));
  ASSERT_TRUE(screen_.WaitUntilGone(kScheduler));

  // Meanwhile the artist goes onto the Kill list, and a song is recorded all the same: the list is not on.
  ASSERT_TRUE(DoubleClickTheArtist());
  screen_.Press(kListAddition, {"Tab", "Tab", "space"});
  ASSERT_TRUE(screen_.WaitUntilGone(kListAddition));
  ASSERT_TRUE(WaitForSongs(1));

  // The event begins in its own time.
  ASSERT_TRUE(unit_->WaitForStatus([](const Json& status) { return status["activeSchedule"] == 1; }))
      << unit_->LogText();
  EXPECT_GE(std::time(nullptr), due);
  ASSERT_TRUE(WaitForChannel(3));
  ASSERT_TRUE(WaitForSongs(1)) << unit_->LogText();

  // In the midst of it another format, by the menu. It stops what is recorded, and Record goes on with it.
  screen_.Press(kMain, {"alt+o", "Up", "Return"});
  ASSERT_TRUE(screen_.WaitFor(kConfiguration));
  screen_.Press(kConfiguration, Then(Then({"alt+o"}, Times(4, "Tab")), {"o", "Return"}));
  ASSERT_TRUE(screen_.WaitUntilGone(kConfiguration));
  ASSERT_TRUE(WaitForRecording(""));
  screen_.Press(kMain, {"ctrl+r"});
  ASSERT_TRUE(ClickUntil(kMixer, {.X = 640, .First = 270, .Last = 340, .Times = 1}));
  screen_.Press(kMixer, {"Escape"});
  EXPECT_TRUE(screen_.WaitUntilGone(kMixer));
  // The song in hand still ends in the format in which it began.
  EXPECT_TRUE(WaitForSongs(2)) << unit_->LogText();
  EXPECT_EQ(unit_->Status()["activeSchedule"], 1);
  screen_.Press(kMain, {"ctrl+q"});
  EXPECT_EQ(unit_->Program().Wait(kPatience), 0) << unit_->Program().Errors();

  EXPECT_EQ(ListFile(), "2The Preview\n");
  EXPECT_THAT(Settings(),
              AllOf(HasSubstr("ScheduleEnabled1=1\n"), HasSubstr("ScheduleChannel1=3\n"),
                    HasSubstr("ScheduleDuration1=0:01\n"), HasSubstr("ScheduleMP3BitRate1=192 Stereo\n"),
                    HasSubstr("FileFormat=OGG\n"), HasSubstr("MinSongLength=2\n"), HasSubstr("Channel=3\n"),
                    HasSubstr("MainTop="), HasSubstr("ScheduleTop="), HasSubstr("ConfigTop="),
                    HasSubstr("MixerTop=")));
  EXPECT_THAT(
      unit_->LogText(),
      AllOf(HasSubstr("Using file format: MP3"), ContainsRegex("[0-9] Recorded: Channel 1  \"The Preview - "),
            HasSubstr("Scheduled event 1 beginning on channel 3 until "),
            HasSubstr("Scheduled event is utilizing Integrel"),
            ContainsRegex("[0-9] Recorded: Channel 3  \"Moonlighters - "),
            HasSubstr(" Ogg Vorbis, 160 kbit/s"), HasSubstr("Shutting Down"), Not(HasSubstr("Error"))));
  const std::vector<std::string> recordings = unit_->Recordings();
  EXPECT_THAT(recordings,
              AllOf(Contains(AllOf(HasSubstr("/1 - Preview/The Preview - "), EndsWith(".mp3"))),
                    Contains(AllOf(HasSubstr("/3 - Harbour/Moonlighters - "), EndsWith(".mp3"))),
                    Contains(AllOf(HasSubstr("/3 - Harbour/Moonlighters - "), EndsWith(".ogg")))));
  for (const std::string& file : recordings) {
    SCOPED_TRACE(file);
    auto facts = Probe(file);
    EXPECT_EQ(facts["codec_name"], file.ends_with(".mp3") ? "mp3" : "vorbis");
    EXPECT_THAT(file, HasSubstr("/" + facts["TAG:artist"] + " - " + facts["TAG:title"]));
  }
  EXPECT_THAT(unit_->Captures(), IsEmpty());
  EXPECT_THAT(unit_->Program().Errors(), Not(HasSubstr("QObject")));
}

/// Two minutes of a tone that swells and fades, as raw samples.
void WriteSwellingTone(const std::string& path) {
  constexpr int kRate = 44100;
  constexpr double kPi = 3.14159265358979;
  std::ofstream file(path, std::ios::binary);
  for (int frame = 0; frame < kRate * 120; ++frame) {
    const double time = static_cast<double>(frame) / kRate;
    const double swell = 0.05 + 0.3 * (1 + std::sin(2 * kPi * time / 1.5)) / 2;
    const auto sample = static_cast<std::int16_t>(32767 * swell * std::sin(2 * kPi * 1000 * time));
    const std::array<std::int16_t, 2> both{sample, sample};
    file.write(reinterpret_cast<const char*>(both.data()), sizeof both);
  }
}

TEST_F(FirstHour, AWrongInputIsFoundByItsLevelAndATestRecordingIsHeard) {
  if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
  // The first in the list, which is what a new user gets, is silent.
  PrivatePulse pulse({"module-null-sink sink_name=aux sink_properties=device.description=Aux"});
  ASSERT_TRUE(pulse.Start());
  WriteSwellingTone(folder_ / "tone");
  const ChildProcess tone = pulse.Play(folder_ / "tone");
  // The desktop's player.
  const std::string opener = folder_ / "xdg-open";
  const std::string opened = folder_ / "opened";
  PutFile(opener, "#!/bin/sh\nprintf '%s' \"$1\" > '" + opened + "'\n");
  std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  auto environment = screen_.Environment();
  for (const auto& [name, value] : pulse.Environment()) environment[name] = value;
  environment["PATH"] = folder_.Path() + ":/usr/bin:/bin";
  environment["XDG_CONFIG_HOME"] = folder_ / "xdg";
  radio_ = std::make_unique<Receiver>(folder_ / "radio", Receiver::Setup{FourStations(6)});
  unit_ = std::make_unique<Unit>(
      folder_ / "profile",
      Unit::Setup{.Audio = "pulse", .Port = radio_->Link(), .Environment = environment, .Windows = true});
  unit_->Start();
  ASSERT_TRUE(Agree()) << unit_->Program().Errors();
  ASSERT_TRUE(screen_.WaitFor(kConfiguration)) << unit_->Program().Errors();
  const auto pictures = [this](int count) {
    std::set<std::string> different;
    for (int i = 0; i < count; ++i) different.insert(screen_.Picture(kConfiguration));
    return different;
  };

  // The level of the wrong input stands still, and its words stay as they are.
  ASSERT_TRUE(WaitUntil(30s, [&] { return pictures(5).size() == 1; }));
  const std::set<std::string> still = pictures(1);
  EXPECT_THAT(still, Not(Contains("")));
  // That of the right one moves, before anything is saved.
  screen_.Press(kConfiguration, {"Down"});
  EXPECT_TRUE(WaitUntil(30s, [&] { return pictures(5).size() > 2; }));
  EXPECT_THAT(Settings(), Not(HasSubstr("radio.monitor")));

  screen_.Press(kConfiguration, {"alt+t"});
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return FileText(opened).starts_with("file://"); }));
  std::string file = FileText(opened).substr(7);
  ASSERT_THAT(file, EndsWith("/Test%20recording.mp3"));
  file.replace(file.find("%20"), 3, " ");
  EXPECT_EQ(Probe(file)["codec_name"], "mp3");
  const Decoded heard = DecodeWithFfmpeg(file);
  EXPECT_NEAR(heard.Seconds(), 5, 0.1);
  // The swelling takes a fifth of the energy beside the tone.
  EXPECT_GT(ToneShare(heard.Mono(), heard.Rate, 1000), 0.7);

  // The desktop is to start this unit, with this profile.
  screen_.Press(kConfiguration, {"alt+p", "space", "Return"});
  ASSERT_TRUE(screen_.WaitUntilGone(kConfiguration));
  EXPECT_EQ(FileText(file), "(absent)");
  const std::vector<std::string> entries = Unit::FilesBelow(folder_ / "xdg/autostart", false);
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_THAT(FileText(entries.front()), HasSubstr("\"--profile\" \"" + (folder_ / "profile") + "\""));
  EXPECT_EQ(RunToEnd({"desktop-file-validate", {entries.front()}, environment}).Exit, 0);

  ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
  EXPECT_THAT(Settings(), HasSubstr("radio.monitor"));
  EXPECT_THAT(unit_->LogText(), Not(HasSubstr("Test")));
  EXPECT_THAT(unit_->Recordings(), IsEmpty());
  EXPECT_EQ(unit_->Quit(), 0) << unit_->Program().Errors();
  EXPECT_THAT(unit_->Program().Errors(), Not(HasSubstr("QObject")));
}

}  // namespace
}  // namespace kestrune::test
