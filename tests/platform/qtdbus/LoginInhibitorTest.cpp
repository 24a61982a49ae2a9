#include <QDBusConnection>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeLogin.h"
#include "PrivateBusTest.h"
#include "platform/qtdbus/LoginInhibitor.h"
#include "support/Pump.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::LoginInhibitor;
using ::testing::ElementsAre;

class LoginInhibitorTest : public PrivateBusTest {};

TEST_F(LoginInhibitorTest, HoldsALockUntilItIsReleased) {
  FakeLogin login(Address());
  LoginInhibitor inhibitor(Connect());
  inhibitor.Hold("Recording from the radio");
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 1; }));
  EXPECT_THAT(login.Calls, ElementsAre("sleep:idle|Kestrune|Recording from the radio|block|"));
  inhibitor.Release();
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 0; }));
}

TEST_F(LoginInhibitorTest, HoldingTwiceIsHoldingOnce) {
  FakeLogin login(Address());
  LoginInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 1; }));
  inhibitor.Hold("b");
  EXPECT_FALSE(PumpUntil([&] { return login.Calls.size() != 1; }, 200ms));
  inhibitor.Release();
  inhibitor.Hold("c");
  EXPECT_TRUE(PumpUntil([&] { return login.Calls.size() == 2; }));
}

TEST_F(LoginInhibitorTest, TheEndOfTheProgramReleasesToo) {
  FakeLogin login(Address());
  {
    LoginInhibitor inhibitor(Connect());
    inhibitor.Hold("a");
    ASSERT_TRUE(PumpUntil([&] { return login.Held() == 1; }));
  }
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 0; }));
}

TEST_F(LoginInhibitorTest, WhoMayNotForbidSleepForbidsIdleness) {
  FakeLogin login(Address());
  login.Refused = "sleep";
  LoginInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 1; }));
  EXPECT_THAT(login.Calls, ElementsAre("sleep:idle|Kestrune|a|block|", "idle|Kestrune|a|block|"));
}

TEST_F(LoginInhibitorTest, ARefusalIsTakenAndNotRepeated) {
  FakeLogin login(Address());
  login.Refused = "";
  login.Refused = "sleep:idle";
  LoginInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  EXPECT_TRUE(PumpUntil([&] { return login.Calls.size() == 2; }));
  EXPECT_FALSE(PumpUntil([&] { return login.Calls.size() > 2; }, 200ms));
}

TEST_F(LoginInhibitorTest, AReleaseBeforeTheAnswerLeavesNoLock) {
  FakeLogin login(Address());
  LoginInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  inhibitor.Release();
  EXPECT_TRUE(PumpUntil([&] { return login.Calls.size() == 1; }));
  EXPECT_TRUE(PumpUntil([&] { return login.Held() == 0; }));
}

TEST_F(LoginInhibitorTest, WithoutTheServiceHoldingDoesNothing) {
  LoginInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  EXPECT_FALSE(PumpUntil([] { return false; }, 200ms));
  inhibitor.Release();
}

TEST_F(LoginInhibitorTest, WithoutABusHoldingDoesNothing) {
  LoginInhibitor inhibitor(
      QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("none")));
  inhibitor.Hold("a");
  inhibitor.Release();
  QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

}  // namespace
}  // namespace kestrune::test
