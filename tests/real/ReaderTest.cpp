#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Reader.h"
#include "real/Receiver.h"
#include "real/Screen.h"
#include "real/Unit.h"
#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A unit whose windows are only heard.
class ScreenReader : public testing::Test {
 protected:
  void SetUp() override {
    if (!reader_.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool, wmctrl or at-spi2-core is missing";
  }
  void StartUnit(const std::map<std::string, std::string>& settings) {
    radio_ = std::make_unique<Receiver>(folder_ / "radio",
                                        Receiver::Setup{ShortLineUp({"One", "Two", "Three"}, 8)});
    unit_ =
        std::make_unique<Unit>(folder_ / "profile", Unit::Setup{.Audio = "pipe:" + QuietFile(folder_.Path()),
                                                                .Port = radio_->Link(),
                                                                .Settings = settings,
                                                                .Environment = reader_.Environment(),
                                                                .Windows = true});
    unit_->Start();
  }
  /// Whether a label or a button says this, as it shows.
  [[nodiscard]] bool Hears(const std::string& name) const {
    const std::vector<Reader::Thing> things = reader_.Read();
    return std::any_of(things.begin(), things.end(),
                       [&](const Reader::Thing& thing) { return thing.Name == name && thing.Is("showing"); });
  }

  const Screen screen_;
  Reader reader_{screen_};
  const TemporaryFolder folder_;
  std::unique_ptr<Receiver> radio_;
  std::unique_ptr<Unit> unit_;
};

/// What a person works with. Cells and rows say what they hold, which may be nothing.
bool IsControl(const std::string& role) {
  static const std::set<std::string> kControls{
      "push button", "check box", "radio button",  "combo box",  "text",         "entry",
      "spin button", "slider",    "menu item",     "page tab",   "progress bar", "table",
      "list",        "tree",      "toggle button", "tree table", "link",         "dial"};
  return kControls.contains(role);
}

TEST_F(ScreenReader, EveryControlOfEveryWindowHasANameAndARole) {
  auto settings = ShortSongs();
  settings.insert({{"MainTop", "600"},
                   {"MainLeft", "600"},
                   {"ChannelListing", "0"},
                   {"LegalAgreement", "True"},
                   {"Preset1", "3 - Other"}});
  StartUnit(settings);
  ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();
  struct Row {
    const char* Role;
    const char* Opens;
    const char* Window;
  };
  constexpr Row kWindows[] = {{"check box", "Channel Listing", "Kestrune Channels"},
                              {"check box", "Recording Log", "Kestrune Recording Log"},
                              {"check box", "Timer Schedule", "Kestrune Scheduler"},
                              {"check box", "Grab/Kill Lists", "Kestrune Grab/Kill Lists"},
                              {"check box", "Kestrune Now", "Kestrune Now"},
                              {"check box", "Recording Report", "Kestrune Recording Report"},
                              {"push button", "Record Levels", "Kestrune Record Mixer"}};
  for (const Row& row : kWindows) {
    ASSERT_TRUE(reader_.Press(row.Role, row.Opens)) << row.Opens;
    EXPECT_TRUE(reader_.WaitFor("frame", row.Window)) << row.Window;
  }
  std::size_t controls = 0;
  for (const Reader::Thing& thing : reader_.Read()) {
    EXPECT_NE(thing.Role, "unknown") << thing.Name;
    EXPECT_NE(thing.Role, "invalid") << thing.Name;
    if (!thing.Is("showing") || !IsControl(thing.Role)) continue;
    ++controls;
    EXPECT_NE(thing.Name, "") << thing.Role << " of depth " << thing.Depth << ", " << thing.States;
  }
  EXPECT_GT(controls, 150U) << "the windows were not read";
  EXPECT_EQ(unit_->Quit(), 0) << unit_->Program().Errors();
}

TEST_F(ScreenReader, AFirstHourByNamesAlone) {
  StartUnit(ShortSongs());
  ASSERT_TRUE(reader_.Press("check box", "I Agree")) << unit_->Program().Errors();
  ASSERT_TRUE(reader_.Press("push button", "Continue"));
  ASSERT_TRUE(reader_.Press("push button", "Save")) << "the first configuration";
  ASSERT_TRUE(unit_->WaitUntilIdle()) << unit_->Program().Errors();

  // A change is said without being asked for, while the window is in front.
  reader_.Listen();
  EXPECT_TRUE(reader_.Heard("Two by The Preview.") && reader_.Heard("Three by The Preview."))
      << unit_->Program().Errors();

  // What plays is heard with its caption, and changes with the song.
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return Hears("Artist: The Preview") && Hears("Song: One"); }));
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return Hears("Song: Two"); }));
  ASSERT_TRUE(reader_.Press("push button", "Record"));
  ASSERT_TRUE(
      unit_->WaitForStatus([](const Unit::Json& status) { return status["recording"] == "Recording"; }));
  EXPECT_TRUE(reader_.Heard("Recording."));
  EXPECT_TRUE(reader_.WaitFor("label", "Status: Recording"));
  EXPECT_TRUE(Hears("Locked while recording"));
  ASSERT_TRUE(unit_->WaitForStatus([](const Unit::Json& status) { return status["recordedCount"] >= 1; }));
  ASSERT_TRUE(reader_.Press("push button", "Stop"));
  ASSERT_TRUE(unit_->WaitForStatus([](const Unit::Json& status) { return status["recording"] == ""; }));

  // The song is a button too: its list question is answered, and the list counts.
  ASSERT_TRUE(reader_.Press("push button", "Artist: The Preview"));
  ASSERT_TRUE(reader_.Press("push button", "Kill")) << unit_->Program().Errors();
  ASSERT_TRUE(reader_.Press("check box", "Kill List On"));
  ASSERT_TRUE(reader_.Press("push button", "Record"));
  EXPECT_TRUE(unit_->WaitForStatus(
      [](const Unit::Json& status) { return status["recording"] == "Recording (Killed)"; }));
  EXPECT_EQ(unit_->Quit(), 0) << unit_->Program().Errors();
  EXPECT_THAT(unit_->Recordings(), Not(IsEmpty()));
  EXPECT_THAT(unit_->LogText(), HasSubstr("Recorded: Channel 1"));
}

}  // namespace
}  // namespace kestrune::test
