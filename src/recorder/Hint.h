#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "base/DateValue.h"

namespace kestrune::recorder {

/// A song of the Grab lists that began on another channel than the tuned one. Texts are as the radio sent them.
struct Hint {
  std::int64_t Number = 0;  ///< from 1, in the order of their beginnings since the start
  base::DateValue Began;    ///< when it was first heard of
  std::int16_t Channel = 0;
  std::string Station;
  std::string Artist;
  std::string Song;
  std::chrono::milliseconds Since{0};  ///< on the clock that never stands still
  bool Fresh = true;                   ///< it has only just begun, and may catch the eye
};

/// Such as "Now on 47 Campfire Folk: Abigail Wren - Winter Apples".
[[nodiscard]] inline std::string HintText(const Hint& hint) {
  const std::string_view dash = hint.Artist.empty() || hint.Song.empty() ? "" : " - ";
  return fmt::format("Now on {}{}{}: {}{}{}", hint.Channel, hint.Station.empty() ? "" : " ", hint.Station,
                     hint.Artist, dash, hint.Song);
}

}  // namespace kestrune::recorder
