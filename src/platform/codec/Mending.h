#pragma once

#include <cstdint>
#include <stop_token>
#include <string>

#include "platform/CaptureMender.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {

/// More than this after the last whole piece of sound is no broken end but damage of another kind, and is not cut off.
inline constexpr std::int64_t kMostCutOff = std::int64_t{1} << 20;

/// Gives a file of one format an end; see CaptureMender. The file is open, and is put right on the spot. `Written` is left
/// out. It looks at `stop` now and then, and a file whose mending it breaks off can be mended again.
using MendFile = MendedCapture (*)(DiskFile& file, const std::stop_token& stop);

[[nodiscard]] inline MendedCapture NotMended(std::string cause) {
  return {.Is = MendedCapture::State::Not, .Cause = std::move(cause)};
}
[[nodiscard]] inline MendedCapture NoCapture() {
  return NotMended("it is not a capture of its format");
}
[[nodiscard]] inline MendedCapture NotWritten(const DiskFile& file) {
  return NotMended(file.Failure().Cause());
}
[[nodiscard]] inline MendedCapture NoSound() {
  return {.Is = MendedCapture::State::Empty};
}
[[nodiscard]] inline MendedCapture Mended(std::int64_t lengthMs, FoundTags tags = {}) {
  return {.Is = MendedCapture::State::Whole,
          .LengthMs = lengthMs,
          .Artist = std::move(tags.Artist),
          .Title = std::move(tags.Title)};
}

}  // namespace kestrune::platform
