#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/codec/DiskFile.h"

namespace kestrune::platform {

/// Turns the samples of one capture into the bytes of one file. Calls come in the order below; an encoder is
/// used once.
class Encoder {
 public:
  virtual ~Encoder() = default;

  /// Checks the parameters and readies the encoder, before there is a file. kCreated or a negative result.
  [[nodiscard]] virtual std::int16_t Prepare() = 0;
  /// Writes what precedes the sound. The file outlives the encoder. False if the file fails.
  [[nodiscard]] virtual bool Begin(DiskFile& file) = 0;
  /// Encodes whole frames. After a failure nothing more is written, and only Finish may follow.
  [[nodiscard]] virtual bool Write(std::span<const std::int16_t> samples) = 0;
  /// Writes what the encoder still holds and puts the header right. Called once; also after a failure, when
  /// it closes off what the file did take.
  [[nodiscard]] virtual bool Finish() = 0;
};

/// As descriptions say it.
[[nodiscard]] constexpr std::string_view ChannelsText(std::int16_t channels) {
  return channels == 1 ? "mono" : "stereo";
}

}  // namespace kestrune::platform
