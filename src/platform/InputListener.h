#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Result.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// Listens to one sound input at a time beside the recorder of the run, so that a user can try an input before it is
/// chosen. Used from the main thread.
class InputListener {
 public:
  virtual ~InputListener() = default;

  /// Whether it gets a device that the recorder has open, without disturbing it.
  [[nodiscard]] virtual bool Shares() const = 0;
  /// Listens to the device with that id, and to no other any more, in that format. Waits a second at most. A device
  /// that does not open is tried again each second, until Close or another Open; the cause says why it did not.
  virtual base::Result Open(const std::string& id, const PcmFormat& format) = 0;
  /// The device is free when it returns.
  virtual void Close() = 0;
  /// What has come since the last Take, or since Open: whole frames, interleaved, in their order. More than 30 seconds
  /// of it are not kept.
  [[nodiscard]] virtual std::vector<std::int16_t> Take() = 0;
};

}  // namespace kestrune::platform
