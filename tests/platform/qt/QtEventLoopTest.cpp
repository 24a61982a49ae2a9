#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "QtApplication.h"
#include "platform/qt/QtEventLoop.h"

namespace kestrune::test {
namespace {

/// The process's time zone, put back at the end.
class TimeZone {
 public:
  TimeZone() {
    if (const char* const zone = std::getenv("TZ")) before_ = zone;
  }
  ~TimeZone() {
    if (before_) {
      ::setenv("TZ", before_->c_str(), 1);
    } else {
      ::unsetenv("TZ");
    }
    ::tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

  void Set(const char* zone) { ::setenv("TZ", zone, 1); }

 private:
  std::optional<std::string> before_;
};

std::int64_t WholeMinutes(std::int64_t seconds) {
  return (seconds + (seconds < 0 ? -30 : 30)) / 60;
}

TEST(QtEventLoop, TheWallClockFollowsAChangedTimeZone) {
  QtLoop under;
  TimeZone zone;
  zone.Set("UTC0");
  const auto here = under.Loop.Now();
  zone.Set("FAR-5:30");
  EXPECT_EQ(WholeMinutes(base::SecondsBetween(here, under.Loop.Now())), 330);
  zone.Set("UTC0");
  EXPECT_EQ(WholeMinutes(base::SecondsBetween(here, under.Loop.Now())), 0);
}

TEST(QtEventLoop, TheWallClockFollowsDaylightSaving) {
  QtLoop under;
  TimeZone zone;
  zone.Set("UTC0");
  const auto here = under.Loop.Now();
  // Summer time from the first day of the year to the last.
  zone.Set("WIN0SUM-1,0/0,J365/25");
  EXPECT_EQ(WholeMinutes(base::SecondsBetween(here, under.Loop.Now())), 60);
}

TEST(QtEventLoop, TheWallClockIsTheMachines) {
  QtLoop under;
  TimeZone zone;
  zone.Set("UTC0");
  constexpr std::int64_t kDay0ToEpochSeconds = 25569LL * 86400;
  const auto clock = [] { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); };
  const std::int64_t before = clock();
  const std::int64_t now = under.Loop.Now().Seconds() - kDay0ToEpochSeconds;
  EXPECT_GE(now, before);
  EXPECT_LE(now, clock());
}

TEST(QtEventLoop, ALongTimerIsNotEarlyByMoreThanATwentieth) {
  QtLoop under;
  bool fired = false;
  const auto timer = under.Loop.MakeTimer(std::chrono::milliseconds(1100), [&] { fired = true; });
  const auto start = under.Loop.SteadyNow();
  timer->SetEnabled(true);
  ASSERT_TRUE(under.RunUntil([&] { return fired; }, std::chrono::seconds(10)));
  EXPECT_GE(under.Loop.SteadyNow() - start, std::chrono::milliseconds(1045));
}

}  // namespace
}  // namespace kestrune::test
