#pragma once

#include <string>
#include <string_view>

namespace kestrune::receiver {

/// A command as it came, cut into its two parts.
struct Command {
  std::string Payload;  ///< at least one byte, which is the type
  std::string Trailer;  ///< two bytes
};

/// What is wrong with a payload, in words; empty for the commands that a receiver knows, byte by byte. A channel may
/// be any byte.
[[nodiscard]] std::string FaultOfPayload(std::string_view payload);

/// What is wrong with a trailer, in words; empty for the filler ED ED and for 01 with the sum of the payload. The
/// command that selects a channel always carries the sum for channel 1.
[[nodiscard]] std::string FaultOfTrailer(const Command& command);

/// "5A A5" for the bytes of that value.
[[nodiscard]] std::string HexOf(std::string_view bytes);

}  // namespace kestrune::receiver
