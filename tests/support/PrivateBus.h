#pragma once

#include <string>

#include "support/ChildProcess.h"

namespace kestrune::test {

/// A message bus of a test's own, with its files in a folder of the test. It answers some moments after it was started.
class PrivateBus {
 public:
  explicit PrivateBus(const std::string& folder)
      : log_(folder + "/bus.log"),
        address_("unix:path=" + folder + "/bus"),
        daemon_({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address_}, {}, log_) {}

  [[nodiscard]] static bool Installed() { return ChildProcess::Installed("dbus-daemon"); }

  /// The value of DBUS_SESSION_BUS_ADDRESS that leads to it.
  [[nodiscard]] const std::string& Address() const { return address_; }
  /// Where it writes what it has to say.
  [[nodiscard]] const std::string& Log() const { return log_; }

 private:
  std::string log_;
  std::string address_;
  ChildProcess daemon_;
};

}  // namespace kestrune::test
