#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "base/EventLoop.h"

namespace kestrune::test {

/// The timers of a loop that serves them itself, in the order of their moments and, within one, in the order of
/// asking. It must outlive its timers.
class TimerTable {
 public:
  using Duration = std::chrono::milliseconds;

  /// `now` is the clock that the moments are of.
  explicit TimerTable(std::function<Duration()> now) : now_(std::move(now)) {}

  [[nodiscard]] std::unique_ptr<base::Timer> MakeTimer(Duration interval, std::function<void()> handler);

  /// The moment of the first; Duration::max() if none waits.
  [[nodiscard]] Duration NextMoment() const;
  /// Runs the handler of the first if its moment is not later than that; false if there is none.
  bool FireOne(Duration until);

 private:
  class TableTimer;
  using Moment = std::pair<Duration, std::uint64_t>;

  std::function<Duration()> now_;
  std::uint64_t order_ = 0;
  std::map<Moment, TableTimer*> timers_;
};

}  // namespace kestrune::test
