#pragma once

#include <string>

#include "platform/posix/TemporaryFolder.h"
#include "support/ChildProcess.h"

namespace kestrune::test {

/// A desktop session of a test's own, with a session manager that obeys the test.
class PrivateSession {
 public:
  PrivateSession();

  /// The value of SESSION_MANAGER that leads to it; empty if it could not be started.
  [[nodiscard]] const std::string& Address() const { return address_; }

  /// "end", "save", "cancel" or "die", said to all clients.
  void Tell(const std::string& word) const;
  /// How often it has printed a line: "N registered", "N restarts by COMMAND", "N saved", "N closed", with clients
  /// numbered from 1.
  [[nodiscard]] int Heard(const std::string& line) const;
  /// False if it does not print it so often in time.
  [[nodiscard]] bool WaitToHear(const std::string& line, int times = 1) const;
  /// At once, as a crash would.
  void Kill() { manager_.Kill(); }

 private:
  TemporaryFolder folder_;
  ChildProcess manager_;
  std::string address_;
};

}  // namespace kestrune::test
