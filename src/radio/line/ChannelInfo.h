#pragma once

#include <cstdint>
#include <string>

namespace kestrune::radio {

/// What a channel info reply says. Texts are UTF-8, trimmed, and may hold control characters that came from
/// the radio.
struct ChannelInfo {
  std::int16_t Channel = 0;  ///< 0 to 255; 0 is the end of the radio's list
  std::string Genre = {};
  std::string Station = {};
  std::string Artist = {};
  std::string Song = {};
};

}  // namespace kestrune::radio
