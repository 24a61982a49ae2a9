#include "recorder/Door.h"

#include <chrono>
#include <utility>

namespace kestrune::recorder {

Door::Door(base::EventLoop& loop)
    : loop_(loop), tmrServe_(loop.MakeTimer(std::chrono::milliseconds(0), [this] { Serve(); })) {}

void Door::Ask(Wish wish, Answered answered) {
  if (!shut_.empty()) {
    if (answered) answered(base::Result::Failed(shut_));
    return;
  }
  waiting_.push_back({std::move(wish), std::move(answered)});
  Look();
}

void Door::ShutForGood(const std::string& reason) {
  shut_ = reason;
  while (!waiting_.empty()) {
    const Waiting refused = std::move(waiting_.front());
    waiting_.pop_front();
    if (refused.Tell) refused.Tell(base::Result::Failed(shut_));
  }
  Look();
}

// A handler that no pump serves comes from the outer loop, where no step of the run is on the stack.
void Door::Serve() {
  if (loop_.Pumping()) return;
  const Hold hold(*this);
  const Waiting next = std::move(waiting_.front());
  waiting_.pop_front();
  serving_ = true;
  const base::Result result = next.What();
  serving_ = false;
  if (next.Tell) next.Tell(result);
}

void Door::Look() {
  tmrServe_->SetEnabled(!waiting_.empty() && holds_ == 0);
}

Door::Hold::Hold(Door& door) : door_(door) {
  ++door_.holds_;
  door_.Look();
}

Door::Hold::~Hold() {
  --door_.holds_;
  door_.Look();
}

}  // namespace kestrune::recorder
