#include <QDBusConnection>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeLogin.h"
#include "FakePortal.h"
#include "PrivateBusTest.h"
#include "platform/qtdbus/DesktopInhibitor.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::DesktopInhibitor;
using ::testing::ElementsAre;

/// One bus plays both the system's and the session's.
class DesktopInhibitorTest : public PrivateBusTest {
 protected:
  [[nodiscard]] DesktopInhibitor Make() {
    return DesktopInhibitor(Connect(), [this] {
      ++sessions_;
      return Connect();
    });
  }
  int sessions_ = 0;
};

TEST_F(DesktopInhibitorTest, WhereTheLoginServiceGivesALockThePortalIsLeftAlone) {
  FakeLogin login(Address());
  const FakePortal portal(Address());
  DesktopInhibitor inhibitor = Make();
  inhibitor.Hold("a");
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 1; }));
  EXPECT_FALSE(PumpUntil([&] { return !portal.Calls.empty(); }, 200ms));
  EXPECT_EQ(sessions_, 0) << "nobody has looked for the session's bus";
}

TEST_F(DesktopInhibitorTest, WithoutALoginServiceThePortalIsAskedUntilTheRelease) {
  const FakePortal portal(Address());
  DesktopInhibitor inhibitor = Make();
  inhibitor.Hold("Recording from the radio");
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 1; }));
  EXPECT_THAT(portal.Calls, ElementsAre("'' 12 Recording from the radio"));
  inhibitor.Hold("Recording from the radio");
  EXPECT_FALSE(PumpUntil([&] { return portal.Calls.size() > 1; }, 200ms));
  inhibitor.Release();
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 0; }));
  inhibitor.Hold("again");
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 1; }));
}

TEST_F(DesktopInhibitorTest, AReleaseBeforeTheLoginServiceHasAnsweredAsksNobody) {
  const FakePortal portal(Address());
  DesktopInhibitor inhibitor = Make();
  inhibitor.Hold("a");
  inhibitor.Release();
  EXPECT_FALSE(PumpUntil([&] { return !portal.Calls.empty(); }, 300ms));
}

TEST_F(DesktopInhibitorTest, WithoutTheSystemsBusThePortalIsAsked) {
  const FakePortal portal(Address());
  DesktopInhibitor inhibitor(
      QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("none")),
      [this] { return Connect(); });
  inhibitor.Hold("a");
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 1; }));
  QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

TEST_F(DesktopInhibitorTest, WithNeitherNothingHappens) {
  DesktopInhibitor inhibitor = Make();
  inhibitor.Hold("a");
  EXPECT_FALSE(PumpUntil([] { return false; }, 300ms));
  inhibitor.Release();
  EXPECT_EQ(sessions_, 1);
}

}  // namespace
}  // namespace kestrune::test
