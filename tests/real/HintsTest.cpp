// What begins on other channels, with the real programs.
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/Decoded.h"
#include "real/LineUps.h"
#include "real/Process.h"
#include "real/Receiver.h"
#include "real/Tone.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/PrivatePulse.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kHint = "Now on 28 Station 28: Abigail Wren - Winter Apples";

/// Channel 8 plays one long song; on channel 28 an artist of the Grab lists begins again and again.
std::vector<LineUpStation> Stations(double others, double wanted) {
  std::vector<LineUpStation> stations = TenStations(3600);
  stations.back().Songs = {{"Juniper & Rue", "Tin Cup", others}, {"Abigail Wren", "Winter Apples", wanted}};
  return stations;
}

class Hints : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

TEST_F(Hints, ABeginningElsewhereIsSaidToWhoeverFollows) {
  Receiver radio(folder_ / "radio", {Stations(17, 20)});
  Unit unit(folder_ / "profile", {"pipe:" + QuietFile(folder_.Path()), radio.Link(), {{"Channel", "8"}}});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  EXPECT_EQ(unit.Ctl({"hints"}).Exit, 1) << "they are switched off";
  ASSERT_EQ(unit.Ctl({"set", "Hints", "True"}).Exit, 0);
  ASSERT_EQ(unit.Ctl({"lists", "add", "grab-artist", "wren"}).Exit, 0);

  Process people({"kestrune-ctl", {"--profile", unit.Profile(), "hints", "--follow"}});
  Process machine({"kestrune-ctl", {"--profile", unit.Profile(), "--json", "hints", "--follow"}});
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return machine.Output().find('\n') != std::string::npos; }));
  const Json hint = Json::parse(machine.Output().substr(0, machine.Output().find('\n')), nullptr, false);
  ASSERT_TRUE(hint.is_object()) << machine.Output();
  EXPECT_EQ(hint.value("channel", 0), 28);
  EXPECT_EQ(hint.value("artist", ""), "Abigail Wren");
  EXPECT_EQ(hint.value("song", ""), "Winter Apples");
  EXPECT_EQ(hint.value("text", ""), kHint);
  EXPECT_TRUE(WaitUntil(10s, [&] { return people.Output() == std::string(kHint) + '\n'; }))
      << people.Output();
  EXPECT_EQ(unit.Status().value("channelNumber", 0), 8) << "nobody asked to follow it";

  ASSERT_EQ(unit.Ctl({"set", "Hints", "False"}).Exit, 0);
  EXPECT_EQ(people.Wait(10s), 1);
  EXPECT_EQ(machine.Wait(10s), 1);
  EXPECT_EQ(unit.Quit(), 0);
}

TEST_F(Hints, AnIdleProgramGoesThereKeepsTheSongAndComesBack) {
  if (!PrivatePulse::Installed()) GTEST_SKIP() << "PulseAudio is not installed";
  constexpr double kSongSeconds = 30;
  PrivatePulse pulse;
  ASSERT_TRUE(pulse.Start());
  const auto variables = pulse.Environment();
  const std::map<std::string, std::string> environment(variables.begin(), variables.end());
  const Receiver radio(folder_ / "radio",
                       {Stations(17, kSongSeconds), "pulse:radio", "tones", {}, environment});
  Unit unit(folder_ / "profile", {"pulse",
                                  radio.Link(),
                                  {{"Channel", "8"},
                                   {"FileFormat", "FLAC"},
                                   {"FilenameFormat", "%s"},
                                   {"Hints", "True"},
                                   {"FollowHints", "True"}},
                                  {},
                                  environment});
  // There before the first beginning that could be missed.
  std::filesystem::create_directories(unit.DataFolder());
  std::ofstream(unit.DataFolder() + "/Restriction.txt") << "0Wren\n";
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  const auto isOn = [](int channel) {
    return [channel](const Json& status) { return status.value("channelNumber", 0) == channel; };
  };
  ASSERT_TRUE(unit.WaitForStatus(isOn(28))) << unit.LogText();
  const Json there = unit.Status();
  EXPECT_EQ(there.value("recordRequested", true), false) << "nobody has recorded";
  ASSERT_TRUE(unit.WaitForStatus(isOn(8))) << unit.LogText();
  EXPECT_EQ(unit.Status().value("recordedCount", -1), 0);
  ASSERT_EQ(unit.Quit(), 0);

  std::vector<int> tuned;
  for (const Json& event : radio.Events("tuned")) tuned.push_back(event.value("channel", 0));
  EXPECT_THAT(tuned, ElementsAre(28, 8)) << "the radio was on channel 8 before";
  const std::string log = unit.LogText();
  for (const char* line :
       {"Following a hint: Channel 28  \"Abigail Wren - Winter Apples\"",
        "Kept: Channel 28  \"Abigail Wren - Winter Apples (Incomplete)\"", "Back on channel 8 after a hint"})
    EXPECT_THAT(log, HasSubstr(line));

  const std::string kept = unit.RecordingFolder() + "/Winter Apples (Incomplete).flac";
  std::vector<std::string> songs = unit.Recordings();
  std::erase_if(songs, [](const std::string& file) { return file.find("/Shelf/") != std::string::npos; });
  ASSERT_THAT(songs, ElementsAre(kept));
  EXPECT_EQ(RunToEnd({"flac", {"--silent", "--test", kept}, {}}).Exit, 0);
  auto facts = Probe(kept);
  EXPECT_EQ(facts["codec_name"], "flac");
  EXPECT_EQ(facts["TAG:artist"], "Abigail Wren");
  EXPECT_EQ(facts["TAG:title"], "Winter Apples");
  const Decoded sound = DecodeWithFfmpeg(kept);
  EXPECT_GT(sound.Seconds(), 5);
  EXPECT_LT(sound.Seconds(), kSongSeconds + 2);
  // The four songs of channel 8 come first in the line-up, then one of each other channel, and this is the last.
  const double own = ToneOfSong(13);
  const std::vector<double> windows =
      TonesOver(sound.Mono(), sound.Rate, std::vector{ToneOfSong(0), ToneOfSong(12), own});
  constexpr std::size_t kEdge = 15;
  ASSERT_GT(windows.size(), 2 * kEdge);
  // A busy machine may make the sound server pause, but brings no other sound.
  int paused = 0;
  for (std::size_t i = kEdge; i + kEdge < windows.size(); ++i) {
    if (windows[i] == 0)
      ++paused;
    else
      EXPECT_EQ(windows[i], own) << "at " << static_cast<double>(i) / 10 << " s";
  }
  EXPECT_LT(paused, 20);
}

}  // namespace
}  // namespace kestrune::test
