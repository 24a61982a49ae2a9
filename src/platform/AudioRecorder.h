#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/CaptureSound.h"
#include "platform/NumberedResult.h"
#include "platform/PcmFormat.h"

namespace kestrune::platform {

/// The sound-card recorder. All calls and both handlers run on the main thread; no call but DeviceCount and
/// DeviceUsable waits for a device for more than a second.
///
/// 1. Blocks come through the block handler, each of the block size but the last of a capture, which may be
///    shorter; the handler reads it with GetBlock.
/// 2. Stop first hands over everything captured up to the call, the part block last, and then goes quiet. The
///    device runs on: what it brings until the next Start opens that capture, if device and format stay the
///    same.
/// 3. So the blocks of an unbroken row of captures, laid end to end, are the sound that came in. What is lost
///    all the same is counted in FramesLost, and for each capture in Sound.
/// 4. A device that cannot be opened, or that goes away, ends no capture: it is tried again each second, and the
///    capture goes on with what comes then.
class AudioRecorder {
 public:
  virtual ~AudioRecorder() = default;

  [[nodiscard]] virtual std::int16_t DeviceCount() = 0;
  /// Selects the input device for what follows; an index out of range selects an unusable one.
  virtual void SetDeviceIndex(std::int16_t index) = 0;
  [[nodiscard]] virtual bool DeviceUsable() = 0;
  /// Name of the selected device, empty if there is none.
  [[nodiscard]] virtual std::string DeviceName() = 0;
  /// The same device for other parts of the sound system, as the mixer; empty if there is none.
  [[nodiscard]] virtual std::string DeviceId() = 0;

  virtual void SetAgcEnabled(bool enabled) = 0;
  virtual void SetAgcAttackTime(std::int16_t milliseconds) = 0;
  virtual void SetAgcHighLevel(std::int16_t decibels) = 0;
  virtual void SetAgcLowLevel(std::int16_t decibels) = 0;

  virtual void SetFormat(const PcmFormat& format) = 0;
  /// Bytes that the time takes in the set format, whole frames only.
  [[nodiscard]] virtual std::int32_t TimeToBytes(std::int32_t milliseconds) const = 0;
  virtual void SetBlockSize(std::int32_t bytes) = 0;
  virtual void Prepare() = 0;
  /// Begins a capture. Fails if there is no such device or format. A device that does not open now is no failure;
  /// OpenError says what is wrong with it.
  virtual NumberedResult StartRecording() = 0;
  virtual void Stop() = 0;
  /// The id of the device that it has open or is trying to open, empty if there is none; after Stop too, while the device
  /// runs on.
  [[nodiscard]] virtual std::string OpenDeviceId() const = 0;
  /// Why the device could not be opened when it was tried last, for people; empty if it could.
  [[nodiscard]] virtual std::string OpenError() const = 0;

  /// Valid within the block handler.
  [[nodiscard]] virtual std::span<const std::int16_t> GetBlock() const = 0;
  /// The newest samples, at most `count`.
  [[nodiscard]] virtual std::vector<std::int16_t> GetDisplaySamples(std::int32_t count) const = 0;

  /// EndArrayRecord: a block is complete.
  virtual void SetBlockHandler(std::function<void()> handler) = 0;
  /// Timer: periodically while recording, for the level display.
  virtual void SetTimerHandler(std::function<void()> handler) = 0;

  /// The sound of the capture that StartRecording began last; complete once Stop has returned, and kept until
  /// the next StartRecording. Missing is what did not come from StartRecording to Stop: before the device ran,
  /// while it or its server was gone, while the machine slept, and what the main thread took too late.
  [[nodiscard]] virtual const CaptureSound& Sound() const = 0;

  /// Sample frames handed over, and lost on the way, since the program started.
  [[nodiscard]] virtual std::int64_t FramesCaptured() const = 0;
  [[nodiscard]] virtual std::int64_t FramesLost() const = 0;
  /// Sample frames that have come from the device and are not handed over yet.
  [[nodiscard]] virtual std::int64_t FramesWaiting() const = 0;
};

}  // namespace kestrune::platform
