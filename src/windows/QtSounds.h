#pragma once

#include "platform/Sounds.h"

namespace kestrune::windows {

/// Plays the desktop's alert for every sound: Linux has no system sounds of the product's names.
class QtSounds final : public platform::Sounds {
 public:
  void Play(std::string_view name) override;
};

}  // namespace kestrune::windows
