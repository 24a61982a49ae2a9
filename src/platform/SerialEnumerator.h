#pragma once

#include <optional>
#include <string>

namespace kestrune::platform {

/// What the system's enumerator of serial lines knows of mice. The class itself serves a system without such an
/// enumerator, as Linux is: there no driver takes a serial line for a mouse unless it is configured to.
class SerialEnumerator {
 public:
  virtual ~SerialEnumerator() = default;

  /// The answer to the question whether a mouse has been found on a serial line, as text; it contains "No
  /// matching" if none has. Nothing if there was no answer.
  [[nodiscard]] virtual std::optional<std::string> MouseStatus() { return "No matching devices found."; }
  /// Disables the mice found; they stay disabled when the program has ended.
  virtual void DisableMouse() {}
};

}  // namespace kestrune::platform
