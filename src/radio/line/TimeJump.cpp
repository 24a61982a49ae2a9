#include "radio/line/TimeJump.h"

#include <utility>

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

// The steady clock stands still while the machine sleeps.
constexpr auto kSlept = 10s;
// The longest song delay blocks the program for half of this.
constexpr auto kNoBeat = 60s;

}  // namespace

TimeJump::TimeJump(const base::EventLoop& loop)
    : loop_(loop), steady_(loop.SteadyNow()), boot_(loop.BootNow()) {}

bool TimeJump::Seen() {
  const auto steady = loop_.SteadyNow();
  const auto boot = loop_.BootNow();
  const auto ran = steady - std::exchange(steady_, steady);
  const auto passed = boot - std::exchange(boot_, boot);
  return ran >= kNoBeat || passed - ran >= kSlept;
}

}  // namespace kestrune::radio
