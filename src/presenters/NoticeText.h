#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "base/OneLine.h"

namespace kestrune::presenters {

/// Such as "Abigail Wren - Winter Apples", from texts as the radio sent them.
[[nodiscard]] inline std::string SongText(std::string_view artist, std::string_view song) {
  const std::string_view dash = artist.empty() || song.empty() ? "" : " - ";
  return base::OneLine(fmt::format("{}{}{}", artist, dash, song));
}

/// Such as "47 Campfire Folk".
[[nodiscard]] inline std::string ChannelText(std::int16_t channel, std::string_view station) {
  return base::OneLine(fmt::format("{}{}{}", channel, station.empty() ? "" : " ", station));
}

}  // namespace kestrune::presenters
