#include "receiver/SongSignal.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "receiver/Dice.h"
#include "receiver/MusicSignal.h"
#include "receiver/TunePlayer.h"

namespace kestrune::receiver {
namespace {

class TuneSignal final : public SongSignal {
 public:
  explicit TuneSignal(int sampleRate) : sampleRate_(sampleRate) {}

  void Render(const SongPlace& place, std::int64_t firstFrame, std::span<std::int16_t> interleaved) override {
    if (!player_ || ordinal_ != place.Ordinal) {
      player_.emplace(HashOf(place.What->Artist + '\n' + place.What->Title), sampleRate_);
      ordinal_ = place.Ordinal;
    }
    player_->Render(firstFrame - place.StartFrame, interleaved);
    // A song fades in quickly and fades out at its end, so that a good cut falls into quiet.
    const double fadeIn = 0.02 * sampleRate_;
    const double fadeOut = 0.8 * sampleRate_;
    for (std::size_t i = 0; i < interleaved.size(); ++i) {
      const std::int64_t frame = firstFrame + static_cast<std::int64_t>(i / 2);
      const double gain = std::min({1.0, static_cast<double>(frame - place.StartFrame) / fadeIn,
                                    static_cast<double>(place.EndFrame - frame) / fadeOut});
      if (gain < 1) interleaved[i] = static_cast<std::int16_t>(std::lround(interleaved[i] * gain));
    }
  }

 private:
  int sampleRate_;
  int ordinal_ = 0;
  std::optional<TunePlayer> player_;
};

class ToneSignal final : public SongSignal {
 public:
  explicit ToneSignal(int sampleRate) : sampleRate_(sampleRate) {}

  void Render(const SongPlace& place, std::int64_t firstFrame, std::span<std::int16_t> interleaved) override {
    const double turnsAFrame = ToneFrequency(place.Ordinal) / sampleRate_;
    for (std::size_t i = 0; i < interleaved.size(); ++i) {
      const std::int64_t position = firstFrame - place.StartFrame + static_cast<std::int64_t>(i / 2);
      const double turns = std::fmod(static_cast<double>(position) * turnsAFrame, 1.0);
      interleaved[i] =
          static_cast<std::int16_t>(std::lround(kAmplitude * std::sin(2 * std::numbers::pi * turns)));
    }
  }

 private:
  static constexpr double kAmplitude = 16384;
  int sampleRate_;
};

class CounterSignal final : public SongSignal {
 public:
  void Render(const SongPlace& /*place*/, std::int64_t firstFrame,
              std::span<std::int16_t> interleaved) override {
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2, ++firstFrame) {
      interleaved[i] = CounterLeft(firstFrame);
      interleaved[i + 1] = CounterRight(firstFrame);
    }
  }
};

}  // namespace

double ToneFrequency(int ordinal) {
  constexpr int kFrequencies = 400;
  return 200.0 + 20.0 * (ordinal * 7 % kFrequencies);
}

std::unique_ptr<SongSignal> MakeSongSignal(SignalKind kind, int sampleRate) {
  switch (kind) {
    case SignalKind::Tones:
      return std::make_unique<ToneSignal>(sampleRate);
    case SignalKind::Counter:
      return std::make_unique<CounterSignal>();
    case SignalKind::Music:
      return MakeMusicSignal(sampleRate);
    case SignalKind::Tunes:
      break;
  }
  return std::make_unique<TuneSignal>(sampleRate);
}

}  // namespace kestrune::receiver
