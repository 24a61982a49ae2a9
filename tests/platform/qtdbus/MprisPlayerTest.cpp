#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PrivateBusTest.h"
#include "platform/qtdbus/MprisPlayer.h"

namespace kestrune::test {
namespace {

using platform::MediaCommand;
using platform::MprisPlayer;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const platform::MediaState kWinterApples{.Title = "Winter Apples",
                                         .Artist = "Abigail Wren",
                                         .Album = "Campfire Folk",
                                         .Sounding = true,
                                         .CanSwitch = true,
                                         .CanStep = true};

class MprisPlayerTest : public PrivateBusTest {
 protected:
  void SetUp() override {
    PrivateBusTest::SetUp();
    if (!ChildProcess::Installed("playerctl")) GTEST_SKIP() << "no client of media players here";
  }

  /// What a client of the desktop prints, which talks to the player over the bus. The player answers meanwhile.
  std::string Client(std::vector<std::string> arguments, int status = 0) {
    arguments.insert(arguments.begin(), "playerctl");
    const std::string output = folder_ / fmt::format("client{}", ++clients_);
    ChildProcess client(arguments, {{"DBUS_SESSION_BUS_ADDRESS", bus_->Address()}}, output);
    EXPECT_TRUE(PumpUntil([&client] { return !client.Running(); }));
    EXPECT_EQ(client.Wait(std::chrono::seconds(1)), status) << FileText(output);
    return FileText(output);
  }
  /// The reply to a call made by hand.
  QDBusMessage Call(const QString& interface, const QString& method, const QVariantList& arguments) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.mpris.MediaPlayer2.kestrune"),
                                       QStringLiteral("/org/mpris/MediaPlayer2"), interface, method);
    call.setArguments(arguments);
    QDBusPendingCall reply =
        QDBusConnection::connectToBus(Address(), QStringLiteral("caller")).asyncCall(call);
    EXPECT_TRUE(PumpUntil([&reply] { return reply.isFinished(); }));
    QDBusConnection::disconnectFromBus(QStringLiteral("caller"));
    return reply.reply();
  }
  void Follow(MprisPlayer& player) {
    player.SetHandler([this](MediaCommand command) { asked_.push_back(command); });
  }

  std::vector<MediaCommand> asked_;

 private:
  int clients_ = 0;
};

TEST_F(MprisPlayerTest, AClientReadsWhatPlays) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = "/usr/share/icons/a b.png"}, Connect());
  player.Show(kWinterApples);
  EXPECT_EQ(Client({"--list-all"}), "kestrune\n");
  EXPECT_EQ(Client({"metadata", "--format", "{{artist}}|{{title}}|{{album}}|{{mpris:artUrl}}|{{status}}"}),
            "Abigail Wren|Winter Apples|Campfire Folk|file:///usr/share/icons/a%20b.png|Playing\n");
}

TEST_F(MprisPlayerTest, AClientIsInformedOfTheNextSong) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  player.Show(kWinterApples);
  const std::string output = folder_ / "follower";
  const ChildProcess follower({"playerctl", "--follow", "metadata", "--format", "{{title}} {{status}}"},
                              {{"DBUS_SESSION_BUS_ADDRESS", bus_->Address()}}, output);
  ASSERT_TRUE(PumpUntil([&] { return FileText(output) == "Winter Apples Playing\n"; }));
  platform::MediaState next = kWinterApples;
  next.Title = "Harbor";
  player.Show(next);
  ASSERT_TRUE(PumpUntil([&] { return FileText(output).ends_with("Harbor Playing\n"); }));
  next.Sounding = false;
  player.Show(next);
  ASSERT_TRUE(PumpUntil([&] { return FileText(output).ends_with("Harbor Paused\n"); }));
}

TEST_F(MprisPlayerTest, EachSongIsATrackOfItsOwnAndAMutedOneIsTheSame) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  // The client takes a player without a track for none.
  static_cast<void>(Client({"metadata", "mpris:trackid"}, 1));
  player.Show(kWinterApples);
  const std::string first = Client({"metadata", "mpris:trackid"});
  platform::MediaState state = kWinterApples;
  state.Sounding = false;
  player.Show(state);
  EXPECT_EQ(Client({"metadata", "mpris:trackid"}), first);
  state.Title = "Harbor";
  player.Show(state);
  EXPECT_NE(Client({"metadata", "mpris:trackid"}), first);
}

TEST_F(MprisPlayerTest, EachKeyReachesTheProgramOnce) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  Follow(player);
  player.Show(kWinterApples);
  for (const char* key : {"play", "pause", "play-pause", "stop", "next", "previous"})
    EXPECT_THAT(Client({key}), IsEmpty());
  EXPECT_THAT(asked_, ElementsAre(MediaCommand::Play, MediaCommand::Pause, MediaCommand::PlayPause,
                                  MediaCommand::Stop, MediaCommand::Next, MediaCommand::Previous));
  asked_.clear();
  for (const char* method : {"Raise", "Quit"}) {
    const QDBusMessage reply =
        Call(QStringLiteral("org.mpris.MediaPlayer2"), QString::fromLatin1(method), {});
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage);
  }
  EXPECT_THAT(asked_, ElementsAre(MediaCommand::Raise, MediaCommand::Quit));
}

TEST_F(MprisPlayerTest, WhileTheChannelIsKeptAClientOffersNothing) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  Follow(player);
  platform::MediaState state = kWinterApples;
  state.CanSwitch = state.CanStep = false;
  player.Show(state);
  static_cast<void>(Client({"next"}, 1));
  EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(MprisPlayerTest, WhatARadioCannotDoIsAnsweredAndLeavesAllAsItIs) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  Follow(player);
  player.Show(kWinterApples);
  const QString interface = QStringLiteral("org.mpris.MediaPlayer2.Player");
  const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
  EXPECT_EQ(Call(interface, QStringLiteral("Seek"), {qlonglong{5}}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(Call(properties, QStringLiteral("Set"),
                 {interface, QStringLiteral("Volume"), QVariant::fromValue(QDBusVariant(0.5))})
                .type(),
            QDBusMessage::ReplyMessage);
  EXPECT_EQ(Client({"volume"}), "1.000000\n");
  EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(MprisPlayerTest, CallsThatMakeNoSenseAreRefused) {
  MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  Follow(player);
  const QString interface = QStringLiteral("org.mpris.MediaPlayer2.Player");
  const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
  for (const QDBusMessage& reply :
       {Call(interface, QStringLiteral("Explode"), {}),
        Call(QStringLiteral("org.mpris.MediaPlayer2"), QStringLiteral("Play"), {}),
        Call(properties, QStringLiteral("Get"), {}),
        Call(properties, QStringLiteral("Get"), {interface, QStringLiteral("Nothing")}),
        Call(properties, QStringLiteral("Get"), {QByteArray("\xff\x00"), 7}),
        Call(properties, QStringLiteral("Set"),
             {interface, QStringLiteral("Metadata"), QVariant::fromValue(QDBusVariant(1))}),
        Call(properties, QStringLiteral("Set"), {interface, QStringLiteral("CanSeek")})}) {
    EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage);
  }
  EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(MprisPlayerTest, TwoUnitsAreTwoPlayers) {
  const MprisPlayer one({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
  const MprisPlayer two({.Name = "Kestrune 2-x", .Unit = "2-x", .Picture = ""},
                        QDBusConnection::connectToBus(Address(), QStringLiteral("second")));
  // One with another data folder has the same name and gets another one.
  const MprisPlayer three({.Name = "Kestrune", .Unit = "", .Picture = ""},
                          QDBusConnection::connectToBus(Address(), QStringLiteral("third")));
  const std::string players = Client({"--list-all"});
  EXPECT_THAT(players, HasSubstr("kestrune\n"));
  EXPECT_THAT(players, HasSubstr("kestrune.unit2_x\n"));
  EXPECT_THAT(players, HasSubstr("kestrune.instance"));
  QDBusConnection::disconnectFromBus(QStringLiteral("second"));
  QDBusConnection::disconnectFromBus(QStringLiteral("third"));
}

TEST_F(MprisPlayerTest, ItsEndTakesItOffTheBus) {
  {
    const MprisPlayer player({.Name = "Kestrune", .Unit = "", .Picture = ""}, Connect());
    EXPECT_EQ(Client({"--list-all"}), "kestrune\n");
  }
  EXPECT_THAT(Client({"--list-all"}), Not(HasSubstr("kestrune")));
}

TEST_F(MprisPlayerTest, WithoutABusNothingHappens) {
  MprisPlayer player(
      {.Name = "Kestrune", .Unit = "", .Picture = ""},
      QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("none")));
  player.Show(kWinterApples);
  QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

}  // namespace
}  // namespace kestrune::test
