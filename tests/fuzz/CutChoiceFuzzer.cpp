// Sound and the stamps of changed texts come from outside in any order. The first three bytes of the input choose rate, channels and
// how the sound is divided; then two bytes each are a stretch of sound, or a stamp in what was heard. However the sound is divided, the
// same stamp gives the same cut; a cut lies where a lag can lead, and the station's model stays a good one.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "cut/LagModel.h"
#include "cut/Lags.h"
#include "cut/Listener.h"

namespace {

using namespace kestrune::cut;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// A tenth of a second of silence, a tone, noise, a square of full scale or clicks.
std::vector<std::int16_t> Stretch(std::uint8_t kind, std::uint8_t level, int rate, int channels) {
  std::vector<std::int16_t> sound;
  std::uint32_t noise = level + 1U;
  const int loud = level * 128;
  for (int frame = 0; frame < rate / 10; ++frame) {
    noise = noise * 1664525U + 1013904223U;
    std::array<int, 2> both{};
    switch (kind % 5) {
      case 1:
        both.fill(static_cast<int>(loud * std::sin(frame * (kind + 5) * 0.002)));
        break;
      case 2:
        both = {static_cast<int>(noise >> 16U) * loud / 65536, -static_cast<int>(noise >> 24U) * loud / 256};
        break;
      case 3:
        both = {frame / 20 % 2 == 0 ? 32767 : -32768, -32768};
        break;
      case 4:
        both.fill(frame % (50 + kind) == 0 ? loud : 0);
        break;
      default:
        break;
    }
    for (int channel = 0; channel < channels; ++channel)
      sound.push_back(static_cast<std::int16_t>(both.at(static_cast<std::size_t>(channel))));
  }
  return sound;
}

void RequireGood(const LagModel& model) {
  double sum = 0;
  for (const float value : model.Expected()) {
    Require(std::isfinite(value) && value > 0);
    sum += value;
  }
  Require(std::abs(sum - 1) < 1e-2);
}

class Run {
 public:
  Run(int rate, int channels, std::uint8_t division)
      : rate_(rate),
        channels_(channels),
        division_(division + 1U),
        whole_(rate, channels, kFirst),
        divided_(rate, channels, kFirst) {}

  void Hear(const std::vector<std::int16_t>& sound) {
    whole_.Hear(sound);
    std::span<const std::int16_t> rest(sound);
    while (!rest.empty()) {
      division_ = division_ * 1664525U + 1013904223U;
      const std::size_t frames = 1 + (division_ >> 24U) * 5;
      const std::size_t samples = std::min(rest.size(), frames * static_cast<std::size_t>(channels_));
      divided_.Hear(rest.first(samples));
      rest = rest.subspan(samples);
    }
    Require(whole_.End() == divided_.End());
  }

  /// A stamp so many tenths of a second from what was heard last.
  void Choose(int tenths) {
    const std::int64_t stamp = whole_.End() + static_cast<std::int64_t>(tenths) * rate_ / 10;
    LagModel same = station_;
    const Cut cut = whole_.Choose(stamp, station_);
    Require(divided_.Choose(stamp, same) == cut && same.Text() == station_.Text());
    // A rise of the sound is looked for within 30 ms of a lag's block.
    Require(cut.LagMs >= kLowestLag - 60 && cut.LagMs <= kHighestLag + 60);
    Require(std::abs(cut.Frame - stamp - cut.LagMs * rate_ / 1000) <= rate_ / 500);
    Require(cut.Confidence >= 0 && cut.Confidence <= 1.001F);
    Require(cut.Heard == stamp || cut.Heard < whole_.End());
    Require(cut.Candidates.size() <= kCandidates);
    Require(std::is_sorted(
        cut.Candidates.begin(), cut.Candidates.end(),
        [](const Candidate& one, const Candidate& other) { return one.Chance > other.Chance; }));
    RequireGood(station_);
  }

 private:
  static constexpr std::int64_t kFirst = 12345;

  int rate_;
  int channels_;
  std::uint32_t division_;
  Listener whole_;
  Listener divided_;
  LagModel station_{600};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  constexpr std::array kRates{8000, 11025};
  const int rate = kRates.at(data[0] % kRates.size());
  const int channels = 1 + data[1] % 2;
  Run run(rate, channels, data[2]);
  // Three seconds, since measuring them is what takes long.
  constexpr int kMostStretches = 30;
  int stretches = 0;
  int choices = 0;
  for (std::size_t at = 3; at + 1 < size; at += 2) {
    if (data[at] < 0xF0) {
      if (++stretches <= kMostStretches) run.Hear(Stretch(data[at], data[at + 1], rate, channels));
    } else if (++choices <= 1) {
      run.Choose(data[at + 1] - 160);
    }
  }
  run.Choose(-100);
  return 0;
}
