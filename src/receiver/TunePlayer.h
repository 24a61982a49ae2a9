#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace kestrune::receiver {

/// A short melody on a five-note scale, with a bass and a soft start to each note; each seed has its own. A pure
/// function of the position, so that any part of it can be rendered. It never reaches full scale.
class TunePlayer {
 public:
  TunePlayer(std::uint64_t seed, int sampleRate);

  /// Stereo frames from a position on; the position is in frames from the start of the tune.
  void Render(std::int64_t position, std::span<std::int16_t> interleaved) const;

 private:
  static constexpr std::size_t kSteps = 64;

  struct Note {
    double Frequency = 0;  ///< Hz; 0 is a rest
    double Left = 0;
    double Right = 0;
  };

  [[nodiscard]] double Voice(const Note& note, double seconds) const;

  double sampleRate_;
  double stepSeconds_;
  std::array<Note, kSteps> melody_;
  std::array<double, kSteps / 8> bass_{};
};

}  // namespace kestrune::receiver
