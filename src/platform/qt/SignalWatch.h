#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace kestrune::platform {

/// Turns SIGTERM and SIGINT into a call on the event loop. There may be one in a process at a time; its end restores the
/// former signal handlers.
class SignalWatch {
 public:
  /// The handler gets the signal's number. It runs from the event loop, once for each signal received.
  explicit SignalWatch(std::function<void(int)> handler);
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  struct PreviousActions;

  void ReadSignals();

  std::function<void(int)> handler_;
  std::unique_ptr<PreviousActions> previous_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace kestrune::platform
