#include <QCoreApplication>
#include <QWidget>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingsSection.h"
#include "support/MemorySettingsStore.h"
#include "windows/RememberedPlace.h"

namespace kestrune::test {
namespace {

using ::testing::ElementsAre;
using windows::Remembered;
using windows::RestorePlace;
using windows::SavePlace;

class RememberedPlaceTest : public ::testing::Test {
 protected:
  void Put(std::string_view key, std::string_view value) { store_.Put("Lorimel", "Kestrune", key, value); }

  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  QWidget window_;
};

TEST_F(RememberedPlaceTest, AWindowThatWasNeverClosedStaysAsItIsDesigned) {
  window_.move(31, 47);
  window_.resize(321, 123);
  RestorePlace(window_, section_, "Log", Remembered::PlaceAndSize);
  EXPECT_EQ(window_.pos(), QPoint(31, 47));
  EXPECT_EQ(window_.size(), QSize(321, 123));
}

TEST_F(RememberedPlaceTest, AWindowComesBackToItsPlaceAndSize) {
  Put("LogTop", "1500");
  Put("LogLeft", "3000");
  Put("LogHeight", "4500");
  Put("LogWidth", "6000");
  RestorePlace(window_, section_, "Log", Remembered::PlaceAndSize);
  EXPECT_EQ(window_.pos(), QPoint(200, 100));
  EXPECT_EQ(window_.size(), QSize(400, 300));
}

TEST_F(RememberedPlaceTest, OddSizesBecomePossibleOnes) {
  window_.setMinimumSize(134, 67);
  Put("LogHeight", "-5");
  Put("LogWidth", "nan");
  RestorePlace(window_, section_, "Log", Remembered::PlaceAndSize);
  EXPECT_EQ(window_.height(), 67);
  EXPECT_GE(window_.width(), 134);
}

TEST_F(RememberedPlaceTest, IsSavedInTheOrderTopLeftHeightWidth) {
  window_.move(10, 20);
  window_.resize(300, 200);
  SavePlace(window_, section_, "Log", Remembered::PlaceAndSize);
  EXPECT_THAT(store_.Calls,
              ElementsAre("save Lorimel/Kestrune/LogTop=300", "save Lorimel/Kestrune/LogLeft=150",
                          "save Lorimel/Kestrune/LogHeight=3000", "save Lorimel/Kestrune/LogWidth=4500"));
}

TEST_F(RememberedPlaceTest, APlaceAloneSavesNoSize) {
  SavePlace(window_, section_, "Mixer");
  EXPECT_THAT(store_.Calls,
              ElementsAre("save Lorimel/Kestrune/MixerTop=0", "save Lorimel/Kestrune/MixerLeft=0"));
}

TEST_F(RememberedPlaceTest, AMinimisedWindowIsNotSaved) {
  window_.setWindowState(Qt::WindowMinimized);
  SavePlace(window_, section_, "Mixer");
  EXPECT_THAT(store_.Calls, ElementsAre());
}

TEST_F(RememberedPlaceTest, OfAMaximisedWindowItsUsualPlaceAndSizeAreSaved) {
  window_.move(10, 20);
  window_.resize(300, 200);
  window_.show();
  QCoreApplication::processEvents();
  window_.showMaximized();
  QCoreApplication::processEvents();
  ASSERT_GT(window_.width(), 300);
  SavePlace(window_, section_, "BigForm", Remembered::PlaceAndSize);
  EXPECT_THAT(
      store_.Calls,
      ElementsAre("save Lorimel/Kestrune/BigFormTop=300", "save Lorimel/Kestrune/BigFormLeft=150",
                  "save Lorimel/Kestrune/BigFormHeight=3000", "save Lorimel/Kestrune/BigFormWidth=4500"));
}

}  // namespace
}  // namespace kestrune::test
