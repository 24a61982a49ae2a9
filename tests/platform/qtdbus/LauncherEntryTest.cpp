#include <QDBusConnection>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeLauncherBar.h"
#include "PrivateBusTest.h"
#include "platform/qtdbus/LauncherEntry.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::LauncherEntry;
using ::testing::ElementsAre;

class LauncherEntryTest : public PrivateBusTest {};

TEST_F(LauncherEntryTest, ALauncherShowsTheNumberWhileThereIsOne) {
  const FakeLauncherBar bar(Address());
  LauncherEntry entry(Connect());
  entry.Show(1);
  entry.Show(12);
  entry.Show(0);
  ASSERT_TRUE(PumpUntil([&] { return bar.Heard.size() == 3; }));
  EXPECT_THAT(bar.Heard,
              ElementsAre("application://kestrune.desktop 1 shown", "application://kestrune.desktop 12 shown",
                          "application://kestrune.desktop 0 hidden"));
}

TEST_F(LauncherEntryTest, NothingIsSaidThatIsKnown) {
  const FakeLauncherBar bar(Address());
  LauncherEntry entry(Connect());
  entry.Show(0);
  entry.Show(3);
  entry.Show(3);
  EXPECT_FALSE(PumpUntil([&] { return bar.Heard.size() > 1; }, 200ms));
  EXPECT_THAT(bar.Heard, ElementsAre("application://kestrune.desktop 3 shown"));
}

TEST_F(LauncherEntryTest, TheEndOfTheProgramTakesTheNumberOff) {
  const FakeLauncherBar bar(Address());
  {
    LauncherEntry entry(Connect());
    entry.Show(3);
  }
  EXPECT_TRUE(PumpUntil([&] { return bar.Heard.size() == 2; }));
  EXPECT_EQ(bar.Heard.back(), "application://kestrune.desktop 0 hidden");
}

TEST_F(LauncherEntryTest, WithoutABusNothingHappens) {
  LauncherEntry entry(
      QDBusConnection::connectToBus(QStringLiteral("unix:path=/nowhere/bus"), QStringLiteral("none")));
  entry.Show(3);
  QDBusConnection::disconnectFromBus(QStringLiteral("none"));
}

}  // namespace
}  // namespace kestrune::test
