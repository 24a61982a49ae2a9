#pragma once

#include <string_view>

namespace kestrune::platform {

/// Opens files and addresses as the desktop does. Used from the main thread; a call returns at once and does not wait
/// for what it started.
class Shell {
 public:
  virtual ~Shell() = default;

  /// The verb "open": hands a file (by its full path) or an address (with its scheme) to the program that the
  /// user has chosen for its kind. False if nothing could be started.
  [[nodiscard]] virtual bool Open(std::string_view target) = 0;
};

}  // namespace kestrune::platform
