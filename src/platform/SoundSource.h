#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// Takes samples from a source. Called on the source's own thread, one call at a time; must not block.
class SampleSink {
 public:
  virtual ~SampleSink() = default;
  virtual void OnSamples(std::span<const std::int16_t> interleaved) = 0;
  /// Sound that the source knows to have missed, in frames.
  virtual void OnLost(std::int64_t frames) = 0;
};

struct SoundDevice {
  std::string Name;  ///< for people, UTF-8
  std::string Id;    ///< for the source itself, the same from start to start
};

/// A place where sound comes from: a sound server, a sound card, a pipe of raw samples. Used from the main thread.
///
/// 1. Devices lists inputs first, then the monitors of outputs, each group in an order that is the same from
///    start to start.
/// 2. Open delivers in the asked format, whatever the device's own is. A device that cannot be opened, or that
///    goes away later, is tried again each second on the source's own thread, until Close; the caller waits for
///    none of that.
/// 3. Sound that is missing is reported by OnLost just before the sound after it: from Open to the first sound if
///    the device starts late, while the device or its server was gone, and while the machine slept.
/// 4. After Close no further call reaches the sink.
class SoundSource {
 public:
  virtual ~SoundSource() = default;

  [[nodiscard]] virtual std::vector<SoundDevice> Devices() = 0;
  [[nodiscard]] virtual bool Usable(const std::string& id) = 0;
  /// Empty if the device is open or about to be, else why it is not open yet. Waits a second at most.
  [[nodiscard]] virtual std::string Open(const std::string& id, const PcmFormat& format,
                                         SampleSink& sink) = 0;
  virtual void Close() = 0;
};

}  // namespace kestrune::platform
