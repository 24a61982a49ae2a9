#include <chrono>

#include <gtest/gtest.h>

#include "config/update/Updating.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

TEST(Updating, SaysWhatGoesOn) {
  SimulatedEventLoop loop;
  const config::Updating updating(loop);
  EXPECT_EQ(updating.Window().Caption, "Updating Kestrune");
  EXPECT_EQ(
      updating.Window().lblUpdating,
      "Kestrune is currently downloading the most recent version. This may take several minutes depending "
      "on the speed of your connection.");
  EXPECT_FALSE(updating.Window().Visible);
}

TEST(Updating, TheBarRunsFromZeroToAHundredAndStartsAgain) {
  SimulatedEventLoop loop;
  config::Updating updating(loop);
  updating.Open();
  EXPECT_TRUE(updating.Window().Visible);
  EXPECT_EQ(updating.Window().pbrDownload, 0);
  loop.Run(5ms);
  EXPECT_EQ(updating.Window().pbrDownload, 1);
  loop.Run(495ms);
  EXPECT_EQ(updating.Window().pbrDownload, 100);
  loop.Run(5ms);
  EXPECT_EQ(updating.Window().pbrDownload, 0);
}

TEST(Updating, ClosingStopsTheBarAndOpeningStartsItAnew) {
  SimulatedEventLoop loop;
  config::Updating updating(loop);
  updating.Open();
  loop.Run(50ms);
  updating.Close();
  loop.Run(50ms);
  EXPECT_EQ(updating.Window().pbrDownload, 10);
  EXPECT_FALSE(updating.Window().Visible);
  updating.Open();
  EXPECT_EQ(updating.Window().pbrDownload, 0);
}

}  // namespace
}  // namespace kestrune::test
