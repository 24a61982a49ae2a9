#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/Bytes.h"

namespace kestrune::test {

/// A text field of a reply: 16 bytes, filled up with zeros.
[[nodiscard]] inline std::string RadioField(std::string_view text) {
  std::string field(text.substr(0, 16));
  field.resize(16, '\0');
  return field;
}

/// A channel info reply of 79 bytes; the texts are bytes of the radio's character set.
[[nodiscard]] inline std::string ChannelInfoFrame(std::uint8_t channel, std::string_view station,
                                                  std::string_view genre, std::string_view artist,
                                                  std::string_view song) {
  return Bytes("5A A5 00 49 A5 00 00") + static_cast<char>(channel) + Bytes("00 00") + RadioField(station) +
         Bytes("00 00") + RadioField(genre) + Bytes("00") + RadioField(artist) + RadioField(song) +
         Bytes("ED ED");
}

/// The end of the radio's list.
[[nodiscard]] inline std::string EndOfListFrame() {
  return ChannelInfoFrame(0, "", "", "", "");
}

}  // namespace kestrune::test
