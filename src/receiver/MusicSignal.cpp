#include "receiver/MusicSignal.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "receiver/BandPlayer.h"
#include "receiver/Dice.h"
#include "receiver/JoinShape.h"
#include "receiver/Noise.h"
#include "receiver/TalkPlayer.h"

namespace kestrune::receiver {
namespace {

// The music sinks and rises again within so many seconds of an announcer.
constexpr double kDuckingSeconds = 0.3;
// As every analogue way has it: -75 dB.
constexpr double kHiss = 0.00018;

/// A song with all that belongs to its sound, and the announcer at its end.
class PlayedSong {
 public:
  PlayedSong(const Song& song, int sampleRate)
      : Shape(ShapeOf(song)),
        what_(&song),
        sampleRate_(sampleRate),
        band_(HashOf(song.Artist + '\n' + song.Title), sampleRate),
        talk_(HashOf(song.Title), Shape.TalkBefore + Shape.TalkAfter, sampleRate) {}

  [[nodiscard]] const Song* What() const { return what_; }

  /// Adds the music of frames from `frame` on. The song begins with frame `start`, over `fadeIn` seconds, and the next
  /// one with frame `end`.
  void AddMusic(std::int64_t frame, std::int64_t start, std::int64_t end, double fadeIn,
                std::span<double> mix) {
    music_.resize(mix.size());
    band_.Render(frame - start, music_);
    const double last = Shape.Overlap - Shape.Silence;
    for (std::size_t i = 0; i + 1 < mix.size(); i += 2, ++frame) {
      const double untilEnd = Seconds(end - frame) + last;
      if (untilEnd <= 0) break;
      double gain = JoinShape::FadedBy(1 - untilEnd / Shape.Fade);
      const double sinceStart = Seconds(frame - start);
      if (sinceStart < fadeIn) gain *= std::sin(sinceStart / fadeIn * std::numbers::pi / 2);
      mix[i] += gain * music_[i];
      mix[i + 1] += gain * music_[i + 1];
    }
  }

  /// The announcer over the join with the song that begins with frame `next`.
  void AddTalk(std::int64_t frame, std::int64_t next, std::span<double> mix) const {
    const double length = Shape.TalkBefore + Shape.TalkAfter;
    if (length == 0) return;
    const std::int64_t from = next - std::llround(Shape.TalkBefore * sampleRate_);
    for (std::size_t i = 0; i + 1 < mix.size(); i += 2, ++frame) {
      const double into = Seconds(frame - from);
      const double within = std::min(into, length - into) / kDuckingSeconds + 1;
      if (within <= 0) continue;
      const double factor = 1 - (1 - Shape.Ducked) * std::min(1.0, within);
      const double voice = into >= 0 && into < length ? talk_.At(frame - from) : 0;
      mix[i] = mix[i] * factor + voice;
      mix[i + 1] = mix[i + 1] * factor + voice;
    }
  }

  JoinShape Shape;

 private:
  [[nodiscard]] double Seconds(std::int64_t frames) const {
    return static_cast<double>(frames) / sampleRate_;
  }

  const Song* what_;
  double sampleRate_;
  BandPlayer band_;
  TalkPlayer talk_;
  std::vector<double> music_;
};

class MusicSignal final : public SongSignal {
 public:
  explicit MusicSignal(int sampleRate) : sampleRate_(sampleRate) {}

  void Render(const SongPlace& place, std::int64_t firstFrame, std::span<std::int16_t> interleaved) override {
    if (before_ && own_ && before_->What() != place.Before && own_->What() == place.Before)
      before_ = std::exchange(own_, nullptr);
    Follow(before_, *place.Before);
    Follow(own_, *place.What);

    mix_.assign(interleaved.size(), 0);
    own_->AddMusic(firstFrame, place.StartFrame, place.EndFrame, before_->Shape.FadeIn, mix_);
    if (static_cast<double>(firstFrame - place.StartFrame) <= before_->Shape.Overlap * sampleRate_)
      before_->AddMusic(firstFrame, place.BeforeFrame, place.StartFrame, 0, mix_);
    before_->AddTalk(firstFrame, place.StartFrame, mix_);
    own_->AddTalk(firstFrame, place.EndFrame, mix_);
    WriteMarked(firstFrame, interleaved);
  }

 private:
  void Follow(std::unique_ptr<PlayedSong>& song, const Song& what) const {
    if (song == nullptr || song->What() != &what) song = std::make_unique<PlayedSong>(what, sampleRate_);
  }

  void WriteMarked(std::int64_t frame, std::span<std::int16_t> interleaved) const {
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2, ++frame) {
      interleaved[i] = Marked(mix_[i] + kHiss * NoiseAt(2 * frame), MarkLeft(frame));
      interleaved[i + 1] = Marked(mix_[i + 1] + kHiss * NoiseAt(2 * frame + 1), MarkRight(frame));
    }
  }
  static std::int16_t Marked(double value, bool mark) {
    const auto sample = std::lround(std::clamp(value, -0.99, 0.99) * 32767);
    return static_cast<std::int16_t>((sample & ~1L) | (mark ? 1 : 0));
  }

  int sampleRate_;
  std::unique_ptr<PlayedSong> before_;
  std::unique_ptr<PlayedSong> own_;
  std::vector<double> mix_;
};

}  // namespace

std::unique_ptr<SongSignal> MakeMusicSignal(int sampleRate) {
  return std::make_unique<MusicSignal>(sampleRate);
}

}  // namespace kestrune::receiver
