#include <gtest/gtest.h>

#include "platform/local/ControlSocketPath.h"

namespace kestrune::platform {
namespace {

TEST(ControlSocketPath, EachUnitHasItsOwnNameWithoutRegardToCase) {
  EXPECT_EQ(ControlSocketPath("/run", ""), "/run/kestrune.sock");
  EXPECT_EQ(ControlSocketPath("/run", "2"), "/run/kestrune2.sock");
  EXPECT_EQ(ControlSocketPath("/run", "x"), "/run/kestrunex.sock");
  EXPECT_EQ(ControlSocketPath("/run", "X"), "/run/kestrunex.sock");
}

TEST(ControlSocketPath, NoUnitLeadsOutOfTheFolder) {
  EXPECT_EQ(ControlSocketPath("/run", "/"), "/run/kestrune%2f.sock");
  EXPECT_EQ(ControlSocketPath("/run", "../a"), "/run/kestrune%2e%2e%2fa.sock");
  EXPECT_EQ(ControlSocketPath("/run", "%"), "/run/kestrune%25.sock");
  EXPECT_EQ(ControlSocketPath("/run", "\xC3\xA9"), "/run/kestrune%c3%a9.sock");
}

}  // namespace
}  // namespace kestrune::platform
