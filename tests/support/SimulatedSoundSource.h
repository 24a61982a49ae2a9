#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "platform/SoundSource.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// A sound source on simulated time whose frames are numbered, so that a test sees which of them arrived, in
/// which order and how often.
///
/// 1. The radio plays all the time: frame n sounds at n / rate seconds of the loop's steady clock, whether
///    anybody listens or not. What is heard while it is open is delivered each period, also while the program
///    sleeps.
/// 2. A stereo frame holds its number whole: the low 16 bits on the left, the high 16 bits on the right. A mono
///    frame holds the low 16 bits. SetSignal plays something else instead.
/// 3. A fault is asked for by name and happens at once.
class SimulatedSoundSource final : public platform::SoundSource {
 public:
  using Duration = SimulatedEventLoop::Duration;
  using Signal = std::function<std::int16_t(std::uint64_t frame, int channel)>;

  /// Has one device, named "Radio", with the id "radio".
  explicit SimulatedSoundSource(SimulatedEventLoop& loop, Duration period = Duration(10));
  ~SimulatedSoundSource() override;

  [[nodiscard]] std::vector<platform::SoundDevice> Devices() override { return devices_; }
  [[nodiscard]] bool Usable(const std::string& id) override;
  [[nodiscard]] std::string Open(const std::string& id, const platform::PcmFormat& format,
                                 platform::SampleSink& sink) override;
  void Close() override;

  void SetDevices(std::vector<platform::SoundDevice> devices) { devices_ = std::move(devices); }
  void SetUsable(const std::string& id, bool usable);
  /// From now on the device does not open, for this reason; an empty one ends that.
  void FailOpening(std::string error) { openingError_ = std::move(error); }
  void SetSignal(Signal signal) { signal_ = std::move(signal); }

  /// The next frames go missing, and the source reports them as lost.
  void Drop(std::int64_t frames);
  /// Nothing comes for that long; then all of it at once.
  void Stall(Duration duration);
  /// The machine has slept for that long, as SleepMachine has it: the sound of that time is reported as lost.
  void Slept(Duration duration);
  /// The device is gone for that long; then it is back, and the gap is reported as lost.
  void Die(Duration duration);

  [[nodiscard]] bool IsOpen() const { return sink_ != nullptr; }
  [[nodiscard]] const std::string& OpenId() const { return openId_; }
  [[nodiscard]] const platform::PcmFormat& OpenFormat() const { return format_; }
  [[nodiscard]] int TimesOpened() const { return timesOpened_; }
  [[nodiscard]] int TimesClosed() const { return timesClosed_; }
  [[nodiscard]] std::int64_t FramesDelivered() const { return framesDelivered_; }
  [[nodiscard]] std::int64_t FramesDropped() const { return framesDropped_; }

  /// Number of the frame that sounds at the moment, which is also how many have sounded before it.
  [[nodiscard]] static std::uint64_t FrameAt(Duration moment, std::int32_t sampleRate);
  /// Numbers of the frames in samples of a stereo source.
  [[nodiscard]] static std::vector<std::uint32_t> FrameNumbers(std::span<const std::int16_t> stereo);

 private:
  static constexpr Duration kRetryInterval{1000};

  void Tick();
  void Schedule();
  [[nodiscard]] std::string OpeningError();
  /// Tries again to open the device, if it is time to; true if that succeeded.
  bool Retry(Duration now);

  SimulatedEventLoop& loop_;
  Duration period_;
  std::vector<platform::SoundDevice> devices_{{"Radio", "radio"}};
  std::set<std::string> unusable_;
  std::string openingError_;
  Signal signal_;

  // Replaced by each Open and Close, so that a tick of an earlier opening knows that it is outdated.
  std::shared_ptr<int> session_ = std::make_shared<int>(0);
  platform::SampleSink* sink_ = nullptr;
  std::string openId_;
  platform::PcmFormat format_;
  std::uint64_t nextFrame_ = 0;
  Duration silentUntil_{0};
  bool running_ = false;
  Duration retryAt_{0};
  bool dead_ = false;
  std::int64_t toDrop_ = 0;
  Duration slept_{0};
  std::vector<std::int16_t> samples_;

  int timesOpened_ = 0;
  int timesClosed_ = 0;
  std::int64_t framesDelivered_ = 0;
  std::int64_t framesDropped_ = 0;
};

}  // namespace kestrune::test
