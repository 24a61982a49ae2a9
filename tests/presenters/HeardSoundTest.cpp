#include <cstdint>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

TEST(HeardSound, IsAllThatIsCapturedAlsoAcrossACut) {
  UnitRig rig;
  rig.Set("MainTop", "0");
  // A mono frame holds the low half of its number.
  std::vector<std::uint16_t> frames;
  rig.StartIdle();
  EXPECT_EQ(rig->CapturedDeviceId(), "radio");
  rig.Rules->Heard = [&frames](std::span<const std::int16_t> block, const platform::PcmFormat& format) {
    ASSERT_EQ(format, (platform::PcmFormat{1000, 1}));
    frames.insert(frames.end(), block.begin(), block.end());
  };
  rig.Run(5s);
  rig.NextSong("Lanterns", "North Pier");
  rig.Run(5s);
  ASSERT_GT(frames.size(), 10000U);
  for (std::size_t i = 1; i < frames.size(); ++i) {
    ASSERT_EQ(frames[i], static_cast<std::uint16_t>(frames[i - 1] + 1)) << i;
  }
}

TEST(HeardSound, WithoutACaptureNoInputIsOpen) {
  UnitRig rig;
  EXPECT_EQ(rig->CapturedDeviceId(), "");
}

}  // namespace
}  // namespace kestrune::test
