#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "receiver/WaveTable.h"

namespace kestrune::receiver {

/// A band: chords, a bass and a melody, with drums and a singer in many songs. Each seed has its own tempo, key,
/// instruments and loudness. A pure function of the position, so that any part of it can be rendered.
class BandPlayer {
 public:
  BandPlayer(std::uint64_t seed, int sampleRate);

  /// Stereo frames from a position on, most of them within -0.7 to 0.7; the position is in frames from the start of the
  /// song, 0 or later.
  void Render(std::int64_t position, std::span<double> interleaved) const;

 private:
  static constexpr std::size_t kStepsABar = 8;
  static constexpr std::size_t kBars = 8;
  static constexpr std::size_t kChordNotes = 3;

  struct Note {
    double Frequency = 0;  ///< Hz; 0 is a rest
    std::size_t Vowel = 0;
  };
  struct Bar {
    std::array<double, kChordNotes> Chord{};  ///< Hz
    double Bass = 0;                          ///< Hz
    std::array<Note, kStepsABar> Melody;
  };

  void Compose(std::uint64_t seed);
  /// Adds what begins with one step, at so many seconds after it.
  void AddMelody(const Note& note, double seconds, double& left, double& right, double& middle) const;
  [[nodiscard]] double Drums(std::int64_t step, double seconds, std::int64_t position) const;

  double sampleRate_;
  double stepSeconds_ = 0;
  double loudness_ = 1;
  double melodyPan_ = 0.5;
  double attackSeconds_ = 0.01;
  bool sings_ = false;
  double drums_ = 0;            ///< gain; 0 is a band without
  std::int64_t drumsFrom_ = 0;  ///< step
  std::array<Bar, kBars> bars_;
  std::vector<WaveTable> instruments_;  ///< chords, melody, bass
  std::vector<WaveTable> vowels_;
};

}  // namespace kestrune::receiver
