#pragma once

#include "platform/Sounds.h"

namespace kestrune::windows {

/// The desktop's alert, whatever sound is asked for: Linux knows no system sounds by the product's names.
class QtSounds final : public platform::Sounds {
 public:
  void Play(std::string_view name) override;
};

}  // namespace kestrune::windows
