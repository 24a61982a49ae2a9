#pragma once

#include <string_view>

namespace kestrune::platform {

/// Short system sounds. Main thread; returns at once, and silence is no failure.
class Sounds {
 public:
  virtual ~Sounds() = default;

  /// A sound of the desktop by the product's name, such as "SystemAsterisk".
  virtual void Play(std::string_view name) = 0;
};

}  // namespace kestrune::platform
