#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/Text.h"

namespace kestrune::config {

/// Where the cut between two songs falls.
enum class CutPlacement : std::uint8_t {
  Text,    ///< SongDelay after the text has changed
  Listen,  ///< where the new song is heard to begin, around the change of the text
};

/// The word that the store holds, and a person types.
[[nodiscard]] constexpr std::string_view NameOf(CutPlacement placement) {
  return placement == CutPlacement::Listen ? "Listen" : "Text";
}

/// Case does not matter. Nothing for any other word.
[[nodiscard]] inline std::optional<CutPlacement> ToCutPlacement(std::string_view word) {
  for (const CutPlacement placement : {CutPlacement::Text, CutPlacement::Listen}) {
    if (base::EqualsNoCase(word, NameOf(placement))) return placement;
  }
  return std::nullopt;
}

}  // namespace kestrune::config
