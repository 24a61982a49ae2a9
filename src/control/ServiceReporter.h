#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "platform/ServiceManager.h"
#include "recorder/Kestrune.h"

namespace kestrune::control {

/// Tells a service manager how a unit does: that it still starts, that its channels are loaded, what it does, that its
/// loop turns, that it ends. All of it comes from a timer of the unit's own loop, so that a unit that hangs falls silent.
class ServiceReporter {
 public:
  /// All must outlive the object.
  ServiceReporter(const recorder::Kestrune& unit, base::EventLoop& loop, platform::ServiceManager& manager);

  /// Tells now, and then every ten seconds, or more often if the manager's patience is short, every second until the
  /// channels are loaded. Does nothing if nobody listens.
  void Start();

 private:
  [[nodiscard]] std::chrono::milliseconds Interval() const;
  void Tell();

  const recorder::Kestrune& unit_;
  platform::ServiceManager& manager_;
  bool ready_ = false;
  bool stopping_ = false;
  std::string told_;  // of the status
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace kestrune::control
