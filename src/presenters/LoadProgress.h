#pragma once

#include <string>

#include "radio/channels/RadioState.h"

namespace kestrune::presenters {

/// What is shown while the radio's channels are being loaded.
struct LoadProgress {
  static constexpr int kWhole = 1000;

  bool Visible = false;
  std::string Text = {};  ///< one short sentence
  /// The part of the load that is over, 0 to kWhole; without a number of channels to expect, nothing but that it goes on.
  int Value = 0;
  bool Known = false;
};

[[nodiscard]] LoadProgress ShowLoad(const radio::RadioState& state);

}  // namespace kestrune::presenters
