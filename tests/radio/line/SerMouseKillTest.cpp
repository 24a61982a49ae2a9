#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "radio/line/SerMouseKill.h"

namespace kestrune::test {
namespace {

class ScriptedEnumerator final : public platform::SerialEnumerator {
 public:
  explicit ScriptedEnumerator(std::optional<std::string> status) : status_(std::move(status)) {}
  [[nodiscard]] std::optional<std::string> MouseStatus() override { return status_; }
  void DisableMouse() override { ++Disabled; }
  int Disabled = 0;

 private:
  std::optional<std::string> status_;
};

int DisabledAfter(std::optional<std::string> status) {
  ScriptedEnumerator enumerator(std::move(status));
  radio::DisableSerialMouse(enumerator);
  return enumerator.Disabled;
}

TEST(SerMouseKill, NoMatchingAnywhereInAnyCaseDisablesNothing) {
  EXPECT_EQ(DisabledAfter("No matching devices found.\r\n"), 0);
  EXPECT_EQ(DisabledAfter("tool 1.0\r\nNO MATCHING devices"), 0);
  EXPECT_EQ(DisabledAfter("xno matchingx"), 0);
}

TEST(SerMouseKill, AFoundMouseIsDisabledOnce) {
  EXPECT_EQ(DisabledAfter("SERENUM\\MOUSE\\1\r\n  Driver is running.\r\n1 matching device(s) found."), 1);
}

TEST(SerMouseKill, AnEmptyResultCountsAsAMatch) {
  EXPECT_EQ(DisabledAfter(""), 1);
}

TEST(SerMouseKill, NoResultCountsAsAMatch) {
  EXPECT_EQ(DisabledAfter(std::nullopt), 1);
}

TEST(SerMouseKill, ASystemWithoutAnEnumeratorHasNothingToDisable) {
  platform::SerialEnumerator none;
  ASSERT_TRUE(none.MouseStatus());
  EXPECT_EQ(DisabledAfter(none.MouseStatus()), 0);
}

}  // namespace
}  // namespace kestrune::test
