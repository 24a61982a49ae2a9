#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "base/EventLoop.h"

namespace kestrune::recorder {

/// A long step beside the run, such as a download: it has waits of its own, during which wishes are served, so it
/// must not touch the run's state except through the door. It starts from the outer loop, with no step of the run on
/// the stack, so that it holds up none.
class Errand {
 public:
  /// The loop must outlive the object.
  explicit Errand(base::EventLoop& loop)
      : loop_(loop), tmrStart_(loop.MakeTimer(std::chrono::milliseconds(0), [this] { Run(); })) {}

  /// Never runs the step within the call. The one before must have begun.
  void Start(std::function<void()> step) {
    step_ = std::move(step);
    tmrStart_->SetEnabled(true);
  }

 private:
  void Run() {
    if (loop_.Pumping()) return;
    tmrStart_->SetEnabled(false);
    const std::function<void()> step = std::exchange(step_, {});
    step();
  }

  const base::EventLoop& loop_;
  std::function<void()> step_;
  std::unique_ptr<base::Timer> tmrStart_;
};

}  // namespace kestrune::recorder
