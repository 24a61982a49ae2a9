#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "real/LineUps.h"
#include "real/Process.h"
#include "real/Receiver.h"
#include "real/Screen.h"
#include "real/Unit.h"
#include "real/Waiting.h"
#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/PrivateSession.h"

namespace kestrune::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Titles as regular expressions; the main window's carries the artist once one plays.
constexpr const char* kMain = "^Kestrune(: .*)?$";
constexpr const char* kShelf = "^Kestrune Shelf$";
constexpr const char* kAgreement = "^Kestrune Agreement$";

TEST(Desktop, APersonAgreesRecordsChangesTheChannelAndClosesByKeysAlone) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two", "Three"}, 8)});
  auto settings = ShortSongs();
  // Not the first run here, and no window but the main one.
  settings.insert(
      {{"MainTop", "600"}, {"MainLeft", "600"}, {"ChannelListing", "0"}, {"Preset1", "3 - Other"}});
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Settings = settings,
                                 .Environment = screen.Environment(),
                                 .Windows = true});
  unit.Start();

  // Without the check nobody agrees; the radio waits.
  ASSERT_TRUE(screen.WaitFor(kAgreement)) << unit.Program().Errors();
  screen.Press(kAgreement, {"alt+c"});
  ASSERT_TRUE(screen.WaitFor("^Checkbox Not Checked$"));
  screen.Press("^Checkbox Not Checked$", {"Return"});
  ASSERT_TRUE(screen.WaitUntilGone("^Checkbox Not Checked$"));
  EXPECT_THAT(radio.Events("command"), IsEmpty());
  screen.Press(kAgreement, {"alt+i", "alt+c"});
  ASSERT_TRUE(screen.WaitUntilGone(kAgreement));
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_TRUE(screen.WaitFor(kMain));

  // One whole song.
  ASSERT_TRUE(unit.WaitForBoundary());
  screen.Press(kMain, {"ctrl+r"});
  ASSERT_TRUE(
      unit.WaitForStatus([](const Unit::Json& status) { return status["recording"] == "Recording"; }));
  ASSERT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["recordedCount"] >= 1; }));

  // A preset changes no channel during a recording, and does so after a stop.
  screen.Press(kMain, {"ctrl+F1"});
  EXPECT_EQ(unit.Status()["channelNumber"], 1);
  screen.Press(kMain, {"ctrl+s"});
  ASSERT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["recording"] == ""; }));
  screen.Press(kMain, {"ctrl+F1"});
  EXPECT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["channelNumber"] == 3; }));

  // Minimised, it works on, and comes back.
  screen.Minimise(kMain);
  EXPECT_TRUE(screen.WaitUntilGone(kMain));
  const auto before = unit.Status()["captureLengthMs"];
  EXPECT_TRUE(
      unit.WaitForStatus([&](const Unit::Json& status) { return status["captureLengthMs"] != before; }));
  screen.Activate("Kestrune");
  EXPECT_TRUE(screen.WaitFor(kMain));

  screen.Close(kMain);
  EXPECT_TRUE(screen.WaitUntilGone(kMain));
  EXPECT_EQ(unit.Program().Wait(kPatience), 0) << unit.Program().Errors();
  EXPECT_THAT(unit.Recordings(), Not(IsEmpty()));
  std::ifstream stored(unit.SettingsFile());
  EXPECT_THAT(std::string(std::istreambuf_iterator<char>(stored), {}),
              AllOf(HasSubstr("MainTop=600\n"), HasSubstr("MainLeft=600\n")))
      << "a window that nobody moved has moved";
  EXPECT_THAT(unit.Captures(), IsEmpty());
  EXPECT_THAT(unit.LogText(), AllOf(HasSubstr("Radio found on port 1"),
                                    ContainsRegex("[0-9] Recorded: Channel 1"), HasSubstr("Shutting Down")));
  EXPECT_THAT(unit.Program().Errors(), Not(HasSubstr("QObject")));
}

TEST(Desktop, ARefusedAgreementEndsTheProgramAtOnce) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  Receiver radio(folder / "radio", {ShortLineUp({"One"}, 60)});
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Environment = screen.Environment(),
                                 .Windows = true});
  unit.Start();
  ASSERT_TRUE(screen.WaitFor(kAgreement)) << unit.Program().Errors();
  screen.Press(kAgreement, {"Escape"});
  EXPECT_EQ(unit.Program().Wait(kPatience), 1);
  EXPECT_THAT(radio.Events("command"), IsEmpty()) << "the radio was sought before the agreement";
}

TEST(Desktop, EscapeEndsASearchForARadioThatDoesNotAnswer) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  // It hears no command for longer than anybody searches.
  Receiver radio(folder / "radio",
                 {.Stations = ShortLineUp({"One"}, 60), .Arguments = {"--misbehave", "deaf=1"}});
  Unit unit(folder / "profile",
            {.Audio = "pipe:" + QuietFile(folder.Path()),
             .Port = radio.Link(),
             .Settings = {{"MainTop", "600"}, {"MainLeft", "600"}, {"LegalAgreement", "True"}},
             .Environment = screen.Environment(),
             .Windows = true});
  unit.Start();
  constexpr const char* kSearch = "^Kestrune: Initializing$";
  ASSERT_TRUE(screen.WaitFor(kSearch)) << unit.Program().Errors();
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return !radio.Events("misbehaviour").empty(); }))
      << "nothing is sought";
  screen.Press(kSearch, {"Escape"});
  EXPECT_EQ(unit.Program().Wait(std::chrono::seconds(8)), 0) << unit.Program().Errors();
  EXPECT_THAT(unit.LogText(), HasSubstr("Shutting Down"));
}

TEST(Desktop, MediaKeysReachTheRadioAndTheDesktopShowsTheSong) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  if (!PrivateBus::Installed() || !ChildProcess::Installed("playerctl"))
    GTEST_SKIP() << "no message bus or no client of media players here";
  const TemporaryFolder folder;
  const PrivateBus bus(folder.Path());
  const auto keys = [&bus](const std::vector<std::string>& words) {
    return RunToEnd({"playerctl", words, {{"DBUS_SESSION_BUS_ADDRESS", bus.Address()}}}).Output;
  };
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two"}, 60)});
  auto settings = ShortSongs();
  settings.insert(
      {{"MainTop", "600"}, {"ChannelListing", "0"}, {"LegalAgreement", "True"}, {"Preset1", "3 - Other"}});
  auto environment = screen.Environment();
  environment["DBUS_SESSION_BUS_ADDRESS"] = bus.Address();
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Settings = settings,
                                 .Environment = environment,
                                 .Windows = true});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  const auto status = unit.Status();
  ASSERT_TRUE(WaitUntil(
      kPatience,
      [&] {
        return keys({"metadata", "--format", "{{title}}|{{artist}}|{{album}}|{{status}}"}) ==
               fmt::format("{}|{}|{}|Playing\n", status["song"].get<std::string>(),
                           status["artist"].get<std::string>(), status["station"].get<std::string>());
      }))
      << keys({"metadata"}) << status;
  keys({"pause"});
  EXPECT_TRUE(WaitUntil(kPatience, [&] {
    const auto mutes = radio.Events("mute");
    return !mutes.empty() && mutes.back()["on"] == true;
  }));
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return keys({"status"}) == "Paused\n"; }));
  keys({"next"});
  EXPECT_TRUE(unit.WaitForStatus([](const Unit::Json& now) { return now["channelNumber"] == 3; }));
  EXPECT_EQ(unit.Quit(), 0) << unit.Program().Errors();
}

TEST(Desktop, NotificationsTellWhatIsKeptWhileNoWindowIsInFront) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  if (!PrivateBus::Installed() || !ChildProcess::Installed("dbus-send"))
    GTEST_SKIP() << "no message bus here";
  const TemporaryFolder folder;
  const PrivateBus bus(folder.Path());
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return std::filesystem::exists(folder / "bus"); }));
  // The desktop's file manager.
  const std::string opener = folder / "xdg-open";
  const std::string opened = folder / "opened";
  PutFile(opener, "#!/bin/sh\nprintf '%s' \"$1\" > '" + opened + "'\n");
  std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  auto environment = screen.Environment();
  environment["DBUS_SESSION_BUS_ADDRESS"] = bus.Address();
  environment["PATH"] = folder.Path() + ":/usr/bin:/bin";
  Process service(Command{"notification_service", {}, environment});
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return service.Output() == "ready\n"; })) << service.Errors();
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two", "Three"}, 5)});
  auto settings = ShortSongs();
  settings.insert(
      {{"MainTop", "600"}, {"ChannelListing", "0"}, {"LegalAgreement", "True"}, {"NotifySongs", "True"}});
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Settings = settings,
                                 .Environment = environment,
                                 .Windows = true});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  screen.Press(kMain, {"ctrl+r"});
  ASSERT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["recordedCount"] >= 1; }));
  EXPECT_EQ(service.Output(), "ready\n") << "the window is in front";

  screen.Minimise(kMain);
  ASSERT_TRUE(WaitUntil(kPatience, [&] {
    return service.Output().ends_with('\n') && service.Output() != "ready\n";
  })) << unit.Program().Errors();
  EXPECT_THAT(service.Output(), ContainsRegex("^ready\nSong kept.The Preview - [OT][a-z]+\n"));
  const Outcome clicked = RunToEnd(
      {"dbus-send",
       {"--session", "--print-reply", "--dest=org.freedesktop.Notifications",
        "/org/freedesktop/Notifications", "org.freedesktop.Notifications.Click", "string:Show in Folder"},
       environment});
  EXPECT_EQ(clicked.Exit, 0) << clicked.Errors;
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return FileText(opened).starts_with("file://"); }));
  EXPECT_EQ(FileText(opened), "file://" + unit.RecordingFolder() + "/");

  // Once the window is in front again the message has done its duty.
  const std::string before = service.Output();
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return service.Output().rfind("Song kept") > before.size(); }));
  screen.Activate("Kestrune");
  EXPECT_TRUE(WaitUntil(kPatience, [&] { return service.Output().ends_with("gone\n"); })) << service.Output();
  EXPECT_EQ(unit.Quit(), 0) << unit.Program().Errors();

  // Who has no windows has nobody to tell.
  const std::string all = service.Output();
  Unit headless(folder / "headless", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                      .Port = radio.Link(),
                                      .Settings = settings,
                                      .Environment = environment});
  headless.Start();
  ASSERT_TRUE(headless.WaitUntilIdle()) << headless.Program().Errors();
  ASSERT_TRUE(headless.Record(1));
  EXPECT_EQ(headless.Quit(), 0);
  EXPECT_EQ(service.Output(), all);
}

TEST(Desktop, AMessageThatIsOpenDoesNotHoldUpTheEnd) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two"}, 8)});
  auto settings = ShortSongs();
  settings.insert({{"MainTop", "600"}, {"ChannelListing", "0"}, {"LegalAgreement", "True"}});
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Settings = settings,
                                 .Environment = screen.Environment(),
                                 .Windows = true});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  screen.Press(kMain, {"ctrl+y"});
  ASSERT_TRUE(screen.WaitFor("^Disable Integrel$"));
  EXPECT_EQ(unit.Quit(), 0) << unit.Program().Errors();
  EXPECT_THAT(unit.LogText(), HasSubstr("Shutting Down"));
}

/// What lies on the unit's shelf, as addresses.
std::vector<std::string> AddressesOfTheShelf(const Unit& unit) {
  std::vector<std::string> addresses;
  for (const Unit::Json& song : unit.Ask({"shelf"})) {
    std::string& address = addresses.emplace_back("file://");
    for (const char letter : song["file"].get<std::string>())
      address += letter == ' ' ? std::string("%20") : std::string(1, letter);
  }
  return addresses;
}

TEST(Desktop, WhatJustPlayedIsPlayedDraggedOutAndKept) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  // The desktop's player.
  const std::string opener = folder / "xdg-open";
  const std::string played = folder / "played";
  PutFile(opener, "#!/bin/sh\nprintf '%s' \"$1\" > '" + played + "'\n");
  std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two", "Three"}, 8)});
  auto settings = ShortSongs();
  settings.insert({{"MainTop", "600"},
                   {"MainLeft", "600"},
                   {"ChannelListing", "0"},
                   {"LegalAgreement", "True"},
                   {"ShelfSongs", "20"},
                   {"ShelfTop", "3000"},
                   {"ShelfLeft", "4500"},
                   {"ShelfHeight", "5040"},
                   {"ShelfWidth", "9000"}});
  auto environment = screen.Environment();
  environment["PATH"] = folder.Path() + ":/usr/bin:/bin";
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Settings = settings,
                                 .Environment = environment,
                                 .Windows = true});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return unit.Ask({"shelf"}).size() >= 4; }));
  screen.Press(kMain, {"ctrl+e"});
  ASSERT_TRUE(screen.WaitFor(kShelf)) << unit.Program().Errors();

  // The song that plays is on top, and no file.
  screen.Press(kShelf, {"Home", "Return", "Down", "Return"});
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return FileText(played).starts_with("file://"); }));
  EXPECT_THAT(AddressesOfTheShelf(unit), Contains(FileText(played)));

  Process target(Command{"drop_target", {}, environment});
  ASSERT_TRUE(screen.WaitFor("^Drop Here$")) << target.Errors();
  constexpr int kAnyRow = 105;  // whatever the font, a song lies there
  screen.Drag(kShelf, 200, kAnyRow, "^Drop Here$");
  ASSERT_TRUE(WaitUntil(kPatience, [&] { return target.Output().ends_with('\n'); }));
  const std::string dropped = target.Output();
  ASSERT_THAT(dropped, ::testing::StartsWith("copy file://"));
  EXPECT_THAT(AddressesOfTheShelf(unit), Contains(dropped.substr(5, dropped.size() - 6)))
      << "a copy is dragged, so it is still there";

  // The chosen song is the dragged one.
  EXPECT_EQ(unit.Status()["recordedCount"], 0);
  screen.Press(kShelf, {"alt+k"});
  ASSERT_TRUE(
      WaitUntil(kPatience, [&] { return unit.LogText().find("Kept: Channel 1") != std::string::npos; }));
  EXPECT_THAT(AddressesOfTheShelf(unit), Not(Contains(dropped.substr(5, dropped.size() - 6))));

  // The button of the main window is the one after Record while nothing is recorded.
  screen.Press(kMain, {"Tab", "space"});
  EXPECT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["keep"] == true; }));
  EXPECT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["keep"] == false; }));
  EXPECT_TRUE(WaitUntil(kPatience, [&] {
    const std::string log = unit.LogText();
    return log.find("Kept: Channel 1") != log.rfind("Kept: Channel 1");
  })) << unit.LogText();
  EXPECT_EQ(unit.Quit(), 0) << unit.Program().Errors();
  EXPECT_THAT(unit.Program().Errors(), Not(HasSubstr("QObject")));
}

TEST(Desktop, TheEndOfTheSessionWaitsForTheWholeClose) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  const PrivateSession session;
  ASSERT_NE(session.Address(), "");
  Receiver radio(folder / "radio", {ShortLineUp({"One", "Two"}, 6)});
  auto settings = ShortSongs();
  settings.insert({{"MainTop", "600"}, {"ChannelListing", "0"}, {"LegalAgreement", "True"}});
  auto environment = screen.Environment();
  environment["SESSION_MANAGER"] = session.Address();
  Unit unit(folder / "profile", {.Audio = "pipe:" + QuietFile(folder.Path()),
                                 .Port = radio.Link(),
                                 .Settings = settings,
                                 .Environment = environment,
                                 .Windows = true});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_TRUE(unit.WaitForBoundary());
  screen.Press(kMain, {"ctrl+r"});
  ASSERT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["recordedCount"] >= 1; }));

  // A session that is only saved is no reason to stop.
  session.Tell("save");
  ASSERT_TRUE(session.WaitToHear("1 saved", 2));
  EXPECT_EQ(unit.Status()["recording"], "Recording");

  session.Tell("end");
  EXPECT_EQ(unit.Program().Wait(kPatience), 0) << unit.Program().Errors();
  EXPECT_TRUE(session.WaitToHear("1 closed"));
  EXPECT_EQ(session.Heard("2 registered"), 0) << "one program, two clients";
  EXPECT_THAT(unit.Recordings(), Not(IsEmpty()));
  EXPECT_THAT(unit.Captures(), IsEmpty());
  EXPECT_THAT(unit.LogText(), HasSubstr("Shutting Down"));
  const auto power = radio.Events("power");
  ASSERT_THAT(power, Not(IsEmpty()));
  EXPECT_EQ(power.back()["on"], false);
}

TEST(Desktop, ASessionManagerThatDiesLeavesTheProgramAlone) {
  const Screen screen;
  if (!screen.Usable()) GTEST_SKIP() << "Xvfb, openbox, xdotool or wmctrl is missing";
  const TemporaryFolder folder;
  PrivateSession session;
  ASSERT_NE(session.Address(), "");
  Receiver radio(folder / "radio", {ShortLineUp({"One"}, 60)});
  auto environment = screen.Environment();
  environment["SESSION_MANAGER"] = session.Address();
  Unit unit(folder / "profile",
            {.Audio = "pipe:" + QuietFile(folder.Path()),
             .Port = radio.Link(),
             .Settings = {{"MainTop", "600"}, {"ChannelListing", "0"}, {"LegalAgreement", "True"}},
             .Environment = environment,
             .Windows = true});
  unit.Start();
  ASSERT_TRUE(unit.WaitUntilIdle()) << unit.Program().Errors();
  ASSERT_TRUE(session.WaitToHear("1 saved"));
  session.Kill();
  // A client that has not noticed would read the dead line over and over; the program's only one does notice.
  EXPECT_EQ(session.Heard("2 registered"), 0);
  screen.Press(kMain, {"ctrl+r"});
  EXPECT_TRUE(unit.WaitForStatus([](const Unit::Json& status) { return status["recordRequested"] == true; }));
  EXPECT_EQ(unit.Quit(), 0) << unit.Program().Errors();
}

TEST(Desktop, WithoutADisplayTheReasonIsToldInALine) {
  const TemporaryFolder folder;
  const std::map<std::string, std::string> nothing{
      {"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}};
  const Outcome none = RunToEnd({"kestrune", {"--profile", folder / "profile"}, nothing}, kPatience);
  EXPECT_EQ(none.Exit, 1);
  EXPECT_THAT(none.Errors, AllOf(HasSubstr("there is no display"), HasSubstr("--headless")));
  auto dead = nothing;
  dead["DISPLAY"] = ":65000";
  const Outcome refused = RunToEnd({"kestrune", {"--profile", folder / "profile"}, dead}, kPatience);
  EXPECT_EQ(refused.Exit, 1);
  EXPECT_THAT(refused.Errors, HasSubstr("kestrune: the windows cannot be shown"));
}

}  // namespace
}  // namespace kestrune::test
