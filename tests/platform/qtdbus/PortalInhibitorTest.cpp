#include <QDBusConnection>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakePortal.h"
#include "PrivateBusTest.h"
#include "platform/qtdbus/PortalInhibitor.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::PortalInhibitor;
using ::testing::ElementsAre;

class PortalInhibitorTest : public PrivateBusTest {};

TEST_F(PortalInhibitorTest, HoldsARequestUntilItIsReleased) {
  FakePortal portal(Address());
  PortalInhibitor inhibitor(Connect());
  inhibitor.Hold("Recording from the radio");
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 1; }));
  // Neither sleep nor idleness, and for no window.
  EXPECT_THAT(portal.Calls, ElementsAre("'' 12 Recording from the radio"));
  EXPECT_FALSE(PumpUntil([&] { return portal.Held() == 0; }, 100ms));
  inhibitor.Release();
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 0; }));
  EXPECT_EQ(portal.Closed, 1);
}

TEST_F(PortalInhibitorTest, HoldingTwiceIsHoldingOnceAndAgainIsAnew) {
  FakePortal portal(Address());
  PortalInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  inhibitor.Hold("b");
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 1; }));
  inhibitor.Hold("c");
  EXPECT_FALSE(PumpUntil([&] { return portal.Calls.size() != 1; }, 200ms));
  inhibitor.Release();
  inhibitor.Hold("d");
  EXPECT_TRUE(PumpUntil([&] { return portal.Calls.size() == 2 && portal.Held() == 1; }));
}

TEST_F(PortalInhibitorTest, AReleaseBeforeTheAnswerLeavesNoRequest) {
  FakePortal portal(Address());
  PortalInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  inhibitor.Release();
  EXPECT_TRUE(PumpUntil([&] { return portal.Closed == 1; }));
  EXPECT_EQ(portal.Held(), 0);
}

TEST_F(PortalInhibitorTest, AHoldBeforeTheAnswerIsServedByIt) {
  FakePortal portal(Address());
  PortalInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  inhibitor.Release();
  inhibitor.Hold("a");
  EXPECT_FALSE(PumpUntil([&] { return portal.Calls.size() > 1 || portal.Closed > 0; }, 300ms));
  EXPECT_EQ(portal.Held(), 1);
}

TEST_F(PortalInhibitorTest, TheEndOfTheProgramReleasesToo) {
  FakePortal portal(Address());
  {
    PortalInhibitor inhibitor(Connect());
    inhibitor.Hold("a");
    ASSERT_TRUE(PumpUntil([&] { return portal.Held() == 1; }));
    EXPECT_FALSE(PumpUntil([] { return false; }, 100ms)) << "the answer is under way";
  }
  EXPECT_TRUE(PumpUntil([&] { return portal.Held() == 0; }));
}

TEST_F(PortalInhibitorTest, ARefusalIsTakenAndNotRepeated) {
  FakePortal portal(Address());
  portal.Refuses = true;
  PortalInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  EXPECT_TRUE(PumpUntil([&] { return portal.Calls.size() == 1; }));
  EXPECT_FALSE(PumpUntil([&] { return portal.Calls.size() > 1; }, 200ms));
  inhibitor.Release();
  EXPECT_FALSE(PumpUntil([&] { return portal.Closed > 0; }, 100ms));
}

TEST_F(PortalInhibitorTest, WithoutAPortalHoldingDoesNothing) {
  PortalInhibitor inhibitor(Connect());
  inhibitor.Hold("a");
  EXPECT_FALSE(PumpUntil([] { return false; }, 200ms));
  inhibitor.Release();
}

TEST_F(PortalInhibitorTest, WithoutABusHoldingDoesNothing) {
  PortalInhibitor inhibitor(
      QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("none")));
  inhibitor.Hold("a");
  inhibitor.Release();
  QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

}  // namespace
}  // namespace kestrune::test
