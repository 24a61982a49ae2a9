#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "radio/line/ChannelInfo.h"

namespace kestrune::radio {

/// The types that the program knows, byte 4 of a frame.
enum class ReplyType : std::uint8_t {
  PowerOn = 0x80,
  PowerOff = 0x81,
  ChannelSet = 0x90,
  Mute = 0x93,
  ChannelInfo = 0xA5,
  RadioID = 0xB1,
  Signal = 0xC3,
  Silent = 0xE3,      ///< counts as a message, and is otherwise ignored
  SetupAgain = 0xF2,  ///< the radio asks for setup again
  PowerIsOff = 0xFF,  ///< the radio refuses a command because it is off
};

struct SignalQuality {
  std::int16_t Satellite1 = 0;   ///< 0 to 99
  std::int16_t Satellite2 = 0;   ///< 0 to 99
  std::int16_t Terrestrial = 0;  ///< 0 to 100 in tens
};

// All of these take a whole frame, header and trailer included. Offsets count from the first header byte;
// a field beyond the frame's end reads as 0 or as empty.

[[nodiscard]] std::uint8_t ByteAt(std::string_view frame, std::size_t offset);

/// Whether it is a reply of a type that the program knows. Noise that was cut like a frame has no header, and is none.
[[nodiscard]] bool IsReply(std::string_view frame);

/// The eight characters of the identifier, unchanged.
[[nodiscard]] std::string DecodePowerOnRadioID(std::string_view frame);
[[nodiscard]] std::string DecodeRadioID(std::string_view frame);

/// The channel that the radio has tuned to, nothing if it refused.
[[nodiscard]] std::optional<std::int16_t> DecodeChannelSet(std::string_view frame);

/// The radio's byte is read as a digit's character, so the raw values 0 and 1 are both False.
[[nodiscard]] bool DecodeMute(std::string_view frame);

/// The texts are without zero bytes and surrounding blanks; artist and song have their case repaired.
[[nodiscard]] ChannelInfo DecodeChannelInfo(std::string_view frame);

[[nodiscard]] SignalQuality DecodeSignal(std::string_view frame);

/// A satellite's raw value, a byte, as a percentage from 0 to 99.9.
[[nodiscard]] double pcrSignalPercent(std::int16_t raw);

}  // namespace kestrune::radio
