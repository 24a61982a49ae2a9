#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/EventLoop.h"
#include "platform/AudioRecorder.h"
#include "platform/SoundSource.h"
#include "platform/ring/GainControl.h"
#include "platform/ring/SampleRing.h"
#include "platform/ring/SoundLedger.h"

namespace kestrune::platform {

/// The recorder over a sound source: the source's thread pushes into a ring, and a timer of the main thread
/// takes whole blocks from it.
///
/// 1. The ring holds 30 s. For so long the main thread may sleep without losing a sample; what came meanwhile
///    belongs to the capture that runs.
/// 2. DeviceCount takes the device list, which stays until it is taken again, so that an index means the same
///    device from the listing to the recording. After the devices of the source comes one more, the mapper: the
///    first device that is usable when the mapper is first asked for. From then on it is that device, until the
///    list is taken again. The count of available devices at the start is one short of the usable ones, as it
///    takes the mapper for granted: without it a machine with a single input would be a machine with none.
/// 3. Between Stop and StartRecording the device runs on. If another device or format is asked for then, it is
///    opened anew, and what the ring still held is counted as lost. What came while nothing recorded must not
///    open a later capture: a Stop without a recording forgets it, and if no capture starts for 10 s while the
///    main thread serves its events, the device is closed.
/// 4. The block handler may call Stop; its block is gone then.
class RingRecorder final : public AudioRecorder, private SampleSink {
 public:
  /// What StartRecording returns.
  static constexpr std::int16_t kStarted = 0;
  static constexpr std::int16_t kNoSuchDevice = -1;
  static constexpr std::int16_t kBadFormat = -2;

  static constexpr const char* kMapperName = "Sound Mapper";

  static constexpr int kRingSeconds = 30;
  /// Of looks at the ring, and of calls of the timer handler: a block is as long.
  static constexpr std::chrono::milliseconds kInterval{100};
  static constexpr std::chrono::milliseconds kIdleLimit{10000};

  /// Both must outlive the recorder.
  RingRecorder(base::EventLoop& loop, SoundSource& source);
  /// Closes the source; hands over nothing more.
  ~RingRecorder() override;
  RingRecorder(const RingRecorder&) = delete;
  RingRecorder& operator=(const RingRecorder&) = delete;

  [[nodiscard]] std::int16_t DeviceCount() override;
  void SetDeviceIndex(std::int16_t index) override { deviceIndex_ = index; }
  [[nodiscard]] bool DeviceUsable() override;
  [[nodiscard]] std::string DeviceName() override;
  [[nodiscard]] std::string DeviceId() override;

  void SetAgcEnabled(bool enabled) override { gainControl_.SetEnabled(enabled); }
  void SetAgcAttackTime(std::int16_t milliseconds) override { gainControl_.SetAttackTime(milliseconds); }
  void SetAgcHighLevel(std::int16_t decibels) override { gainControl_.SetHighLevel(decibels); }
  void SetAgcLowLevel(std::int16_t decibels) override { gainControl_.SetLowLevel(decibels); }

  void SetFormat(const PcmFormat& format) override { format_ = format; }
  [[nodiscard]] std::int32_t TimeToBytes(std::int32_t milliseconds) const override;
  void SetBlockSize(std::int32_t bytes) override { blockBytes_ = bytes; }
  /// Does nothing: StartRecording prepares what is needed.
  void Prepare() override {}
  NumberedResult StartRecording() override;
  void Stop() override;

  [[nodiscard]] std::span<const std::int16_t> GetBlock() const override { return block_; }
  [[nodiscard]] std::vector<std::int16_t> GetDisplaySamples(std::int32_t count) const override;

  void SetBlockHandler(std::function<void()> handler) override { blockHandler_ = std::move(handler); }
  void SetTimerHandler(std::function<void()> handler) override { timerHandler_ = std::move(handler); }

  [[nodiscard]] std::string OpenDeviceId() const override { return open_ ? openId_ : std::string(); }
  [[nodiscard]] std::string OpenError() const override { return openError_; }
  [[nodiscard]] const CaptureSound& Sound() const override { return ledger_.Sound(); }
  [[nodiscard]] std::int64_t FramesCaptured() const override { return framesCaptured_; }
  [[nodiscard]] std::int64_t FramesLost() const override;
  [[nodiscard]] std::int64_t FramesWaiting() const override;

  [[nodiscard]] bool Recording() const { return recording_; }

 private:
  void OnSamples(std::span<const std::int16_t> interleaved) override;
  void OnLost(std::int64_t frames) override;

  [[nodiscard]] bool MapperSelected();
  [[nodiscard]] const SoundDevice* MappedDevice();
  [[nodiscard]] const SoundDevice* SelectedDevice();
  [[nodiscard]] std::int64_t LostBySource() const;
  void OpenSource(const SoundDevice& device);
  void CloseSource();
  void Poll();
  void Look();
  void HandOver(std::size_t samples);
  void Forget();

  SoundSource& source_;
  base::EventLoop& loop_;
  GainControl gainControl_;

  bool devicesKnown_ = false;
  std::vector<SoundDevice> devices_;
  std::optional<std::size_t> mapped_;  // the mapper's device, once it is known
  std::int16_t deviceIndex_ = 0;

  PcmFormat format_;
  std::int32_t blockBytes_ = 0;  // 0: 100 ms
  std::size_t blockSamples_ = 0;

  bool open_ = false;
  std::string openId_;
  PcmFormat openFormat_;
  std::string openError_;
  // Replaced only while the source is closed, when no other thread uses it.
  std::unique_ptr<SampleRing> ring_;
  std::atomic<std::int64_t> lostBySource_{0};
  std::int64_t lostByRings_ = 0;  // frames, of rings that are closed
  SoundLedger ledger_;

  bool recording_ = false;
  std::chrono::milliseconds stoppedAt_{0};
  std::vector<std::int16_t> block_;
  std::vector<std::int16_t> newest_;
  std::int64_t framesCaptured_ = 0;

  std::function<void()> blockHandler_;
  std::function<void()> timerHandler_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace kestrune::platform
