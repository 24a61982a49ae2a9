#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "base/Journal.h"
#include "recorder/AudioObjects.h"
#include "recorder/SoundMeter.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Notices that the sound has failed: an input that is gone, silence where a song should be, a level that is too high.
/// Each is said once when it begins, and once when it is over. Does nothing while the setting Watch is off.
class SoundWatch {
 public:
  /// So many looks in a row without any sound, not even silence, and the input is lost. Looks are counted, not seconds,
  /// so that a program that was held up does not blame the input.
  static constexpr int kLooksWithoutSound = 4;
  /// A station may be silent for a moment, and people who talk pause for a few seconds.
  static constexpr std::chrono::seconds kSilence{20};

  /// All must outlive the object.
  SoundWatch(State& state, const AudioObjects& audio, const SoundMeter& meter, base::EventLoop& loop,
             base::Journal& journal);

  /// Looks once a second.
  void Start() { tmrLook_->SetEnabled(true); }
  void Stop() { tmrLook_->SetEnabled(false); }

 private:
  using Milliseconds = std::chrono::milliseconds;

  void Look();
  void LookForInput();
  void LookForSilence();
  void LookForOverload();
  /// Whether sound is taken from the input: without a file to write it is not.
  [[nodiscard]] bool Listening() const;
  /// Whether there should be sound: somebody wants it, and the radio is not muted.
  [[nodiscard]] bool SoundWanted() const;
  void Forget();

  State& state_;
  const AudioObjects& audio_;
  const SoundMeter& meter_;
  base::EventLoop& loop_;
  base::Journal& journal_;

  std::int64_t frames_ = 0;
  Milliseconds lastFrames_{0};
  int looksWithoutFrames_ = 0;
  std::uint64_t loudBlocks_ = 0;
  Milliseconds lastLoud_{0};
  std::optional<base::DateValue> overloadSaid_;  // the day
  std::unique_ptr<base::Timer> tmrLook_;
};

}  // namespace kestrune::recorder
