#pragma once

#include <chrono>

namespace kestrune::radio {

/// How often something outside is tried again: every two seconds at first, every thirty after five minutes.
class RemedyPace {
 public:
  using Milliseconds = std::chrono::milliseconds;

  static constexpr Milliseconds kFast = std::chrono::seconds(2);
  static constexpr Milliseconds kSlow = std::chrono::seconds(30);
  static constexpr Milliseconds kFastFor = std::chrono::minutes(5);

  /// The five minutes begin, and the first try may be made at once. Times are the steady clock's.
  void Begin(Milliseconds now) {
    began_ = now;
    due_ = now;
  }
  [[nodiscard]] bool Due(Milliseconds now) const { return now >= due_; }
  /// A try begins.
  void Tried(Milliseconds now) { due_ = now + (now - began_ < kFastFor ? kFast : kSlow); }

 private:
  Milliseconds began_{0};
  Milliseconds due_{0};
};

}  // namespace kestrune::radio
