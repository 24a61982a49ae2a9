#include "radio/line/TimeJump.h"

#include <cstdlib>

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

// The steady clock stands still while the machine sleeps, and the wall clock does not.
constexpr auto kClocksApart = 10s;
// The longest song delay blocks the program for half of this.
constexpr auto kNoBeat = 60s;

}  // namespace

TimeJump::TimeJump(const base::EventLoop& loop) : loop_(loop), steady_(loop.SteadyNow()), wall_(loop.Now()) {}

bool TimeJump::Seen() {
  const auto steady = loop_.SteadyNow();
  const base::DateValue wall = loop_.Now();
  const auto passed = steady - steady_;
  const auto shown = std::chrono::seconds(wall.Seconds() - wall_.Seconds());
  steady_ = steady;
  wall_ = wall;
  return passed >= kNoBeat || std::chrono::abs(shown - passed) >= kClocksApart;
}

}  // namespace kestrune::radio
