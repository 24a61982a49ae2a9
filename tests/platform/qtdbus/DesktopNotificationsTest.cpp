#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeNotificationService.h"
#include "PrivateBusTest.h"
#include "platform/qtdbus/DesktopNotifications.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::DesktopNotifications;
using platform::Notice;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

Notice NoticeOf(const std::string& subject, const std::string& title) {
  return {.Subject = subject,
          .Title = title,
          .Text = "Abigail Wren - Winter Apples",
          .Actions = {{.Key = "folder", .Label = "Show in Folder"}},
          .Urgency = Notice::Weight::Normal};
}

class DesktopNotificationsTest : public PrivateBusTest {
 protected:
  void SetUp() override {
    PrivateBusTest::SetUp();
    if (IsSkipped()) return;
    MakeService();
    notifications_ = std::make_unique<DesktopNotifications>(
        DesktopNotifications::Identity{.Name = "Kestrune", .Icon = "kestrune"}, Connect());
    notifications_->SetHandler([this](const std::string& subject, const std::string& key) {
      chosen_.push_back(subject + ":" + key);
    });
  }
  void TearDown() override {
    notifications_.reset();
    service_.reset();
    PrivateBusTest::TearDown();
  }

  template <typename... Abilities>
  void MakeService(Abilities... abilities) {
    service_.reset();
    service_ = std::make_unique<FakeNotificationService>(Address(), abilities...);
  }
  bool WaitForMessages(std::size_t count) {
    return PumpUntil([&] { return service_->Messages.size() >= count; });
  }
  /// Whatever is under way is done.
  void Settle() {
    EXPECT_FALSE(PumpUntil([] { return false; }, 150ms));
  }
  void ShowAndWait(const Notice& notice) {
    const std::size_t before = service_->Messages.size();
    notifications_->Show(notice);
    ASSERT_TRUE(WaitForMessages(before + 1));
    Settle();
  }

  std::unique_ptr<FakeNotificationService> service_;
  std::unique_ptr<DesktopNotifications> notifications_;
  std::vector<std::string> chosen_;
};

TEST_F(DesktopNotificationsTest, AMessageReachesTheServiceWhole) {
  ShowAndWait(NoticeOf("kept", "Song kept"));
  const auto& shown = service_->Messages.at(0);
  EXPECT_EQ(shown.Program, "Kestrune");
  EXPECT_EQ(shown.Icon, "kestrune");
  EXPECT_EQ(shown.Replaces, 0U);
  EXPECT_EQ(shown.Title, "Song kept");
  EXPECT_EQ(shown.Text, "Abigail Wren - Winter Apples");
  EXPECT_THAT(shown.Actions, ElementsAre("folder", "Show in Folder"));
  EXPECT_EQ(shown.Hints[QStringLiteral("urgency")], QVariant::fromValue<uchar>(1));
  EXPECT_EQ(shown.Hints[QStringLiteral("desktop-entry")], QStringLiteral("kestrune"));
  EXPECT_EQ(shown.Time, -1);
  EXPECT_EQ(service_->Calls["GetCapabilities"], 1);
}

TEST_F(DesktopNotificationsTest, WeightsAreLevelsOfUrgency) {
  for (const Notice::Weight weight : {Notice::Weight::Light, Notice::Weight::Normal, Notice::Weight::Heavy}) {
    Notice notice = NoticeOf("a", "b");
    notice.Urgency = weight;
    ShowAndWait(notice);
  }
  std::vector<int> levels;
  for (const auto& shown : service_->Messages)
    levels.push_back(shown.Hints[QStringLiteral("urgency")].toInt());
  EXPECT_THAT(levels, ElementsAre(0, 1, 2));
}

TEST_F(DesktopNotificationsTest, APictureIsGivenAsAnAddress) {
  notifications_ = std::make_unique<DesktopNotifications>(
      DesktopNotifications::Identity{.Name = "Kestrune 2", .Icon = "/usr/share/a b.png"}, Connect());
  ShowAndWait(NoticeOf("a", "b"));
  EXPECT_EQ(service_->Messages.at(0).Icon, "file:///usr/share/a%20b.png");
}

TEST_F(DesktopNotificationsTest, ALaterMessageTakesThePlaceOfTheOneBeforeOfItsSubject) {
  ShowAndWait(NoticeOf("kept", "one"));
  ShowAndWait(NoticeOf("event", "other"));
  ShowAndWait(NoticeOf("kept", "two"));
  EXPECT_EQ(service_->Messages.at(1).Replaces, 0U);
  EXPECT_EQ(service_->Messages.at(2).Replaces, 7U);
  EXPECT_EQ(service_->Calls["GetCapabilities"], 1) << "asked once";
}

TEST_F(DesktopNotificationsTest, OneThatWasClosedIsFollowedByANewOne) {
  ShowAndWait(NoticeOf("kept", "one"));
  service_->CloseOne(7);
  Settle();
  ShowAndWait(NoticeOf("kept", "two"));
  EXPECT_EQ(service_->Messages.at(1).Replaces, 0U);
}

TEST_F(DesktopNotificationsTest, TextIsNeverMarkup) {
  Notice notice = NoticeOf("kept", "<i>Tom & Jerry</i>");
  notice.Text = "<b>A & \"B\"</b>\n<img src='http://nowhere/'>";
  ShowAndWait(notice);
  EXPECT_EQ(service_->Messages.at(0).Text,
            "&lt;b&gt;A &amp; &quot;B&quot;&lt;/b&gt;\n&lt;img src='http://nowhere/'&gt;");
  EXPECT_EQ(service_->Messages.at(0).Title, "<i>Tom & Jerry</i>") << "titles have no markup";
  // A service that knows no markup shows what it gets.
  MakeService(QStringList{QStringLiteral("body")});
  Settle();
  ShowAndWait(notice);
  EXPECT_EQ(service_->Messages.at(0).Text, notice.Text);
}

TEST_F(DesktopNotificationsTest, OddTextsDoNoHarm) {
  Notice notice = NoticeOf("kept", std::string("a\0b", 3) + "\xff\xfe\xed\xa0\x80");
  notice.Text = std::string(100'000, '<') + "\x1b[2J\x7f";
  notice.Actions = {{.Key = "", .Label = "\n"}};
  ShowAndWait(notice);
  EXPECT_THAT(service_->Messages.at(0).Title, ::testing::StartsWith("a b"));
  ShowAndWait(NoticeOf("kept", "two"));
  EXPECT_EQ(service_->Messages.at(1).Title, "two") << "the connection lives on";
}

TEST_F(DesktopNotificationsTest, AServiceWithoutActionsGetsNone) {
  MakeService(QStringList{QStringLiteral("body")});
  Settle();
  ShowAndWait(NoticeOf("kept", "one"));
  EXPECT_THAT(service_->Messages.at(0).Actions, IsEmpty());
}

TEST_F(DesktopNotificationsTest, AChosenActionComesBackOnceAndTheMessageGoes) {
  ShowAndWait(NoticeOf("kept", "one"));
  service_->Invoke(7, "folder");
  service_->Invoke(7, "folder");
  service_->CloseOne(7);
  Settle();
  EXPECT_THAT(chosen_, ElementsAre("kept:folder"));
  EXPECT_THAT(service_->Closed, ElementsAre(7U));
  ShowAndWait(NoticeOf("kept", "two"));
  EXPECT_EQ(service_->Messages.at(1).Replaces, 0U);
}

TEST_F(DesktopNotificationsTest, AMessageShownInAnswerToAnActionIsANewOne) {
  notifications_->SetHandler([this](const std::string& /*subject*/, const std::string& /*key*/) {
    notifications_->Show(NoticeOf("kept", "answer"));
  });
  ShowAndWait(NoticeOf("kept", "one"));
  service_->Invoke(7, "folder");
  service_->CloseOne(7);
  ASSERT_TRUE(WaitForMessages(2));
  EXPECT_EQ(service_->Messages.at(1).Replaces, 0U);
}

TEST_F(DesktopNotificationsTest, WithdrawingTakesItAway) {
  notifications_->Withdraw("kept");
  ShowAndWait(NoticeOf("kept", "one"));
  notifications_->Withdraw("kept");
  notifications_->Withdraw("kept");
  ASSERT_TRUE(PumpUntil([&] { return !service_->Closed.empty(); }));
  Settle();
  EXPECT_THAT(service_->Closed, ElementsAre(7U));
  service_->Invoke(7, "folder");
  Settle();
  EXPECT_THAT(chosen_, IsEmpty());
}

TEST_F(DesktopNotificationsTest, WhileTheServiceAnswersLateOnlyTheLatestMessageWaits) {
  service_->Silent = true;
  for (int i = 0; i < 50; ++i) notifications_->Show(NoticeOf("kept", std::to_string(i)));
  ASSERT_TRUE(PumpUntil([&] { return service_->Calls["GetCapabilities"] == 1; }));
  Settle();
  EXPECT_THAT(service_->Messages, IsEmpty());
  service_->Answer();
  ASSERT_TRUE(WaitForMessages(1));
  Settle();
  service_->Silent = true;
  for (int i = 50; i < 100; ++i) notifications_->Show(NoticeOf("kept", std::to_string(i)));
  Settle();
  service_->Answer();
  ASSERT_TRUE(WaitForMessages(3));
  Settle();
  std::vector<std::string> titles;
  for (const auto& shown : service_->Messages) titles.push_back(shown.Title);
  EXPECT_THAT(titles, ElementsAre("49", "50", "99"));
  EXPECT_EQ(service_->Messages.at(2).Replaces, 7U);
}

TEST_F(DesktopNotificationsTest, AMessageWithdrawnBeforeTheAnswerIsTakenAwayAfterIt) {
  ShowAndWait(NoticeOf("event", "one"));
  service_->Silent = true;
  notifications_->Show(NoticeOf("kept", "one"));
  ASSERT_TRUE(WaitForMessages(2));
  notifications_->Show(NoticeOf("kept", "two"));
  notifications_->Withdraw("kept");
  service_->Answer();
  ASSERT_TRUE(PumpUntil([&] { return !service_->Closed.empty(); }));
  Settle();
  EXPECT_THAT(service_->Closed, ElementsAre(8U));
  EXPECT_EQ(service_->Messages.size(), 2U);
}

TEST_F(DesktopNotificationsTest, AClickWhileALaterMessageIsOnItsWayMeansNothing) {
  ShowAndWait(NoticeOf("kept", "one"));
  service_->Silent = true;
  notifications_->Show(NoticeOf("kept", "two"));
  ASSERT_TRUE(WaitForMessages(2));
  service_->Invoke(7, "folder");
  Settle();
  EXPECT_THAT(chosen_, IsEmpty());
  service_->Answer();
  Settle();
  service_->Invoke(7, "folder");
  Settle();
  EXPECT_THAT(chosen_, ElementsAre("kept:folder"));
}

TEST_F(DesktopNotificationsTest, AServiceThatRefusesIsAskedAgainWithTheNextMessage) {
  service_->Error = QStringLiteral("org.freedesktop.DBus.Error.Failed");
  notifications_->Show(NoticeOf("event", "one"));
  ASSERT_TRUE(PumpUntil([&] { return service_->Calls["GetCapabilities"] == 1; }));
  Settle();
  EXPECT_THAT(service_->Messages, IsEmpty());
  service_->Error.clear();
  ShowAndWait(NoticeOf("kept", "two"));
  ASSERT_EQ(service_->Messages.size(), 1U) << "what was refused is out of date";
  EXPECT_EQ(service_->Messages.at(0).Title, "two");
  service_->Error = QStringLiteral("org.freedesktop.DBus.Error.Failed");
  ShowAndWait(NoticeOf("kept", "three"));
  service_->Error.clear();
  ShowAndWait(NoticeOf("kept", "four"));
  EXPECT_EQ(service_->Messages.at(2).Replaces, 0U) << "nobody knows whether there is one";
}

TEST_F(DesktopNotificationsTest, AnotherServiceInItsPlaceIsAskedAnewAndKnowsNoMessage) {
  ShowAndWait(NoticeOf("kept", "one"));
  MakeService(QStringList{QStringLiteral("actions")});
  Settle();
  ShowAndWait(NoticeOf("kept", "a & b"));
  EXPECT_EQ(service_->Calls["GetCapabilities"], 1);
  EXPECT_EQ(service_->Messages.at(0).Replaces, 0U);
}

TEST_F(DesktopNotificationsTest, AServiceThatEndsInMidAnswerLeavesTheNextOneToWork) {
  ShowAndWait(NoticeOf("kept", "one"));
  service_->Silent = true;
  notifications_->Show(NoticeOf("kept", "two"));
  ASSERT_TRUE(WaitForMessages(2));
  notifications_->Show(NoticeOf("kept", "three"));
  MakeService();
  ASSERT_TRUE(WaitForMessages(1));
  EXPECT_EQ(service_->Messages.at(0).Title, "three");
  EXPECT_EQ(service_->Messages.at(0).Replaces, 0U);
}

TEST_F(DesktopNotificationsTest, WithoutAServiceNothingHappensUntilThereIsOne) {
  service_.reset();
  notifications_->Show(NoticeOf("kept", "one"));
  notifications_->Withdraw("kept");
  Settle();
  MakeService();
  Settle();
  ShowAndWait(NoticeOf("kept", "two"));
  EXPECT_EQ(service_->Messages.size(), 1U);
}

TEST_F(DesktopNotificationsTest, WithoutABusNothingHappens) {
  DesktopNotifications none(
      {.Name = "Kestrune", .Icon = ""},
      QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("none")));
  none.Show(NoticeOf("kept", "one"));
  none.Withdraw("kept");
  QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

TEST_F(DesktopNotificationsTest, ItsEndInMidAnswerIsNoHarm) {
  service_->Silent = true;
  notifications_->Show(NoticeOf("kept", "one"));
  ASSERT_TRUE(PumpUntil([&] { return service_->Calls["GetCapabilities"] == 1; }));
  notifications_.reset();
  service_->Answer();
  Settle();
  EXPECT_THAT(service_->Messages, IsEmpty());
}

TEST_F(DesktopNotificationsTest, SignalsThatMakeNoSenseMeanNothing) {
  ShowAndWait(NoticeOf("kept", "one"));
  const QString key = QStringLiteral("folder");
  for (const char* name : {"ActionInvoked", "NotificationClosed"}) {
    for (const QVariantList& arguments : std::vector<QVariantList>{
             {},
             {7U},
             {key},
             {7, key},
             {QStringLiteral("7"), key},
             {7U, key, key},
             {qulonglong{7}, key},
             {0U, key},
             {8U, key},
             {0xFFFFFFFFU, 2U},
             {7U, QStringLiteral("folde")},
             {7U, QString()},
             {7U, QStringList{key}},
             {QVariant::fromValue(QDBusVariant(7U)), key},
             {QByteArray("\xff\x00", 2), true},
         }) {
      service_->Signal(name, arguments);
    }
  }
  Settle();
  EXPECT_THAT(chosen_, IsEmpty());
  service_->Invoke(7, "folder");
  Settle();
  EXPECT_THAT(chosen_, ElementsAre("kept:folder")) << "the message is still there";
}

TEST_F(DesktopNotificationsTest, AStrangersSignalsMeanNothing) {
  ShowAndWait(NoticeOf("kept", "one"));
  QDBusConnection stranger = QDBusConnection::connectToBus(Address(), QStringLiteral("stranger"));
  QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/Notifications"),
                                                   QStringLiteral("org.freedesktop.Notifications"),
                                                   QStringLiteral("ActionInvoked"));
  signal << 7U << QStringLiteral("folder");
  stranger.send(signal);
  Settle();
  EXPECT_THAT(chosen_, IsEmpty());
  QDBusConnection::disconnectFromBus(QStringLiteral("stranger"));
}

TEST_F(DesktopNotificationsTest, AnswersThatMakeNoSenseAreNone) {
  const std::vector<QVariantList> answers{{QStringLiteral("actions")},
                                          {-1},
                                          {0U},
                                          {true, 7U},
                                          {QVariantMap{{QStringLiteral("actions"), 1}}},
                                          {QByteArray("\xff\xfe")},
                                          {QVariant::fromValue(QDBusVariant(7U))},
                                          {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a")))}};
  for (const QVariantList& answer : answers) {
    MakeService();
    Settle();
    service_->Nonsense = answer;
    ShowAndWait(NoticeOf("kept", "one"));
    EXPECT_THAT(service_->Messages.at(0).Actions, IsEmpty());
    ShowAndWait(NoticeOf("kept", "two"));
    EXPECT_EQ(service_->Messages.at(1).Replaces, 0U);
    notifications_->Withdraw("kept");
    service_->Invoke(0, "folder");
    Settle();
    EXPECT_THAT(service_->Closed, IsEmpty());
  }
  EXPECT_THAT(chosen_, IsEmpty());
}

/// A service that answers and signals at random, while the program shows and withdraws at random: whatever it says, no
/// action comes back that was not offered, and an honest service in its place is served at once.
TEST_F(DesktopNotificationsTest, ARandomServiceIsSurvived) {
  const char* const repeated = std::getenv("KESTRUNE_SEED");
  const std::uint32_t seed =
      repeated != nullptr ? static_cast<std::uint32_t>(std::stoul(repeated)) : std::random_device()();
  std::printf("KESTRUNE_SEED=%u\n", seed);
  std::mt19937 random(seed);
  const auto upTo = [&random](std::uint32_t most) {
    return static_cast<std::uint32_t>(random() % (most + 1));
  };
  const auto thing = [&]() -> QVariant {
    switch (upTo(7)) {
      case 0:
        return upTo(12);
      case 1:
        return static_cast<int>(upTo(12));
      case 2:
        return QStringLiteral("folder");
      case 3:
        return QString::fromLatin1(
            QByteArray(static_cast<qsizetype>(upTo(300)), static_cast<char>(1 + upTo(254))));
      case 4:
        return QStringList{QStringLiteral("actions"), QStringLiteral("body-markup")};
      case 5:
        return true;
      case 6:
        return QVariantMap{{QStringLiteral("urgency"), upTo(3)}};
      default:
        return QByteArray("\xff\x00\x80", 3);
    }
  };
  const auto things = [&] {
    QVariantList list;
    for (std::uint32_t i = upTo(3); i > 0; --i) list << thing();
    return list;
  };
  bool offered = true;
  notifications_->SetHandler([&](const std::string& /*subject*/, const std::string& key) {
    offered = offered && key == "folder";
    if (upTo(1) == 0) notifications_->Show(NoticeOf("kept", "again"));
  });
  for (int round = 0; round < 400; ++round) {
    const std::string subject = upTo(1) == 0 ? "kept" : "event";
    switch (upTo(7)) {
      case 0:
      case 1:
        notifications_->Show(NoticeOf(subject, "t"));
        break;
      case 2:
        notifications_->Withdraw(subject);
        break;
      case 3:
        service_->Signal(upTo(1) == 0 ? "ActionInvoked" : "NotificationClosed", things());
        break;
      case 4:
        service_->Invoke(upTo(20), upTo(2) == 0 ? "fold" : "folder");
        break;
      case 5:
        service_->Nonsense = things();
        break;
      case 6:
        service_->Silent = upTo(1) == 0;
        if (!service_->Silent) service_->Answer();
        break;
      default:
        if (upTo(9) == 0) MakeService();
        break;
    }
    EXPECT_FALSE(PumpUntil([] { return false; }, std::chrono::milliseconds(upTo(3))));
  }
  EXPECT_TRUE(offered);
  MakeService();
  Settle();
  notifications_->Show(NoticeOf("last", "honest"));
  EXPECT_TRUE(
      PumpUntil([&] { return !service_->Messages.empty() && service_->Messages.back().Title == "honest"; }));
}

}  // namespace
}  // namespace kestrune::test
