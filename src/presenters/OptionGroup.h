#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "config/settings/Settings.h"

namespace kestrune::presenters {

/// One of a group's buttons; all its text is shown unchanged.
struct OptionButton {
  std::string_view Caption;
  std::int32_t Value = 0;
  std::string_view Tip;
};

/// A group of option buttons for one field of a format record.
struct OptionGroup {
  std::string_view Name;   ///< of the control array, such as "optBits"
  std::string_view Frame;  ///< caption of the frame around it
  std::span<const OptionButton> Buttons;
  std::int32_t (*Read)(const config::Settings& settings) = nullptr;
  void (*Write)(config::Settings& settings, std::int32_t value) = nullptr;
};

}  // namespace kestrune::presenters
