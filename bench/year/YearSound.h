#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/SoundSource.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// Music on simulated time that costs little: beats of noise from one table, with gaps. Mono. It delivers a fifth of a
/// second at a time, also while the program sleeps.
class YearSound final : public platform::SoundSource {
 public:
  using Duration = SimulatedEventLoop::Duration;

  explicit YearSound(SimulatedEventLoop& loop) : loop_(loop) {
    std::uint32_t noise = 1;
    for (int frame = 0; frame < kTableFrames; ++frame) {
      noise = noise * 1664525U + 1013904223U;
      const int loud = 2 + 6 * (kBeatFrames - frame % kBeatFrames) / kBeatFrames;
      table_.push_back(static_cast<std::int16_t>((static_cast<int>(noise >> 20U) - 2048) * loud));
    }
  }

  [[nodiscard]] std::vector<platform::SoundDevice> Devices() override { return {{"Radio", "radio"}}; }
  [[nodiscard]] bool Usable(const std::string& id) override { return id == "radio"; }
  [[nodiscard]] std::string Open(const std::string& /*id*/, const platform::PcmFormat& format,
                                 platform::SampleSink& sink) override {
    sink_ = &sink;
    framesAPeriod_ = static_cast<std::size_t>(format.SampleRate / kPeriodsASecond);
    lost_ = Duration(0);
    session_ = std::make_shared<int>(0);
    Schedule();
    return {};
  }
  void Close() override {
    sink_ = nullptr;
    session_.reset();
  }

  /// Silent from so long from now on, for that long.
  void Gap(Duration after, Duration length) {
    gapFrom_ = loop_.SteadyNow() + after;
    gapTo_ = gapFrom_ + length;
  }
  void SetSilent(bool silent) { silent_ = silent; }
  /// The device is gone for that long.
  void Die(Duration length) { deadUntil_ = loop_.SteadyNow() + length; }
  /// The machine has slept for that long.
  void Slept(Duration length) { lost_ += length; }

 private:
  static constexpr int kPeriodsASecond = 5;
  static constexpr int kTableFrames = 320'000;
  static constexpr int kBeatFrames = 4000;

  void Schedule() {
    loop_.AtHardware(Duration(1000 / kPeriodsASecond), [this, session = std::weak_ptr<int>(session_)] {
      if (session.expired()) return;
      Tick();
      if (!session.expired()) Schedule();
    });
  }
  void Tick() {
    const Duration now = loop_.SteadyNow();
    if (now < deadUntil_) {
      lost_ += Duration(1000 / kPeriodsASecond);
      return;
    }
    if (const Duration lost = std::exchange(lost_, Duration(0)); lost.count() > 0)
      sink_->OnLost(static_cast<std::int64_t>(framesAPeriod_) * kPeriodsASecond * lost.count() / 1000);
    if (at_ + framesAPeriod_ > table_.size()) at_ = 0;
    if (silent_ || (gapFrom_ <= now && now < gapTo_)) {
      nothing_.assign(framesAPeriod_, 0);
      sink_->OnSamples(nothing_);
    } else {
      sink_->OnSamples({table_.data() + at_, framesAPeriod_});
    }
    at_ += framesAPeriod_;
  }

  SimulatedEventLoop& loop_;
  std::vector<std::int16_t> table_;
  std::vector<std::int16_t> nothing_;
  platform::SampleSink* sink_ = nullptr;
  std::shared_ptr<int> session_;  // replaced by each Open and Close, so that a tick knows that it is outdated
  std::size_t framesAPeriod_ = 0;
  std::size_t at_ = 0;
  Duration gapFrom_{0};
  Duration gapTo_{0};
  Duration deadUntil_{0};
  Duration lost_{0};
  bool silent_ = false;
};

}  // namespace kestrune::test
