#include <cmath>
#include <cstddef>

#include <gtest/gtest.h>

#include "presenters/LagTip.h"
#include "support/UnitRig.h"

namespace kestrune::presenters {
namespace {

cut::LagModel Learned(int lagMs, int changes) {
  cut::LagRow evidence{};
  for (std::size_t i = 0; i < cut::kLags; ++i) {
    const float far = static_cast<float>(cut::LagAt(i) - lagMs) / cut::kBlockMs;
    evidence[i] = 30 * std::exp(-0.5F * far * far);
  }
  cut::LagModel model(lagMs);
  for (int i = 0; i < changes; ++i) model.Renew(evidence);
  return model;
}

TEST(LagTip, SaysHowFarTheTextIsFromTheSound) {
  EXPECT_EQ(LagTip(Learned(1200, 34)), "Text 1.2 s ahead of the sound, learned from 34 changes");
  EXPECT_EQ(LagTip(Learned(-600, 12)), "Text 0.6 s behind the sound, learned from 12 changes");
  EXPECT_EQ(LagTip(Learned(0, 20)), "Text with the sound, learned from 20 changes");
  EXPECT_EQ(LagTip(Learned(600, 1)), "Text 0.6 s ahead of the sound, learned from 1 change");
}

TEST(LagTip, TheChannelsWindowSaysItWhileSongsAreCutByListening) {
  test::UnitRig rig;
  rig.StartIdle();
  rig->Parts().StationLags.Of(44) = Learned(1200, 34);
  const ChannelChooser& chooser = rig.Rules->ChannelsWindow();
  EXPECT_EQ(chooser.Tip(44), "") << "the text is what counts";
  EXPECT_TRUE(rig->Parts().Settings.Set("CutPlacement", "Listen").Done());
  EXPECT_EQ(chooser.Tip(44), "Text 1.2 s ahead of the sound, learned from 34 changes");
  EXPECT_EQ(chooser.Tip(45), "");
}

}  // namespace
}  // namespace kestrune::presenters
