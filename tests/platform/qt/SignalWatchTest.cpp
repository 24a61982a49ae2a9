#include <csignal>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "QtApplication.h"
#include "platform/qt/SignalWatch.h"

namespace kestrune::test {
namespace {

using platform::SignalWatch;

TEST(SignalWatch, CallsTheHandlerFromTheLoopForBothSignals) {
  QtLoop under;
  std::vector<int> seen;
  const SignalWatch watch([&](int signal) { seen.push_back(signal); });
  ASSERT_EQ(::raise(SIGTERM), 0);
  ASSERT_EQ(::raise(SIGINT), 0);
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(under.RunUntil([&] { return seen.size() == 2; }, std::chrono::seconds(5)));
  EXPECT_EQ(seen, (std::vector<int>{SIGTERM, SIGINT}));
}

TEST(SignalWatch, MayBeDestroyedByItsOwnHandler) {
  QtLoop under;
  int calls = 0;
  std::optional<SignalWatch> watch;
  watch.emplace([&](int /*signal*/) {
    ++calls;
    watch.reset();
  });
  ASSERT_EQ(::raise(SIGTERM), 0);
  EXPECT_TRUE(under.RunUntil([&] { return calls == 1; }, std::chrono::seconds(5)));
  under.Run(std::chrono::milliseconds(20));
  EXPECT_FALSE(watch);
}

TEST(SignalWatch, PutsTheFormerActionsBack) {
  QtLoop under;
  struct sigaction before {};
  ASSERT_EQ(::sigaction(SIGTERM, nullptr, &before), 0);
  {
    const SignalWatch watch([](int /*signal*/) {});
    struct sigaction during {};
    ASSERT_EQ(::sigaction(SIGTERM, nullptr, &during), 0);
    EXPECT_NE(during.sa_handler, before.sa_handler);
  }
  struct sigaction after {};
  ASSERT_EQ(::sigaction(SIGTERM, nullptr, &after), 0);
  EXPECT_EQ(after.sa_handler, before.sa_handler);
}

}  // namespace
}  // namespace kestrune::test
