// What begins on other channels, with the real programs.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Process.h"
#include "real/Receiver.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using Json = Unit::Json;

constexpr const char* kHint = "Now on 28 Station 28: Abigail Wren - Winter Apples";

/// Channel 8 plays one long song; on channel 28 an artist of the Grab lists begins again and again.
std::vector<LineUpStation> Stations(double seconds) {
  std::vector<LineUpStation> stations = TenStations(3600);
  stations.back().Songs = {{"Juniper & Rue", "Tin Cup", seconds}, {"Abigail Wren", "Winter Apples", seconds}};
  return stations;
}

class Hints : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

TEST_F(Hints, ABeginningElsewhereIsSaidToWhoeverFollows) {
  Receiver radio(folder_ / "radio", {Stations(20)});
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

}  // namespace
}  // namespace kestrune::test
