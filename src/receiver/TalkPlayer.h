#pragma once

#include <cstdint>
#include <vector>

#include "receiver/WaveTable.h"

namespace kestrune::receiver {

/// An announcer: syllables of buzzes and hisses, with pauses between words; each seed has its own. A pure function of
/// the position.
class TalkPlayer {
 public:
  TalkPlayer(std::uint64_t seed, double seconds, int sampleRate);

  /// -1 to 1, loud for a voice; 0 outside the talk. Frames count from its beginning.
  [[nodiscard]] double At(std::int64_t frame) const;

 private:
  struct Syllable {
    double Start = 0;   ///< seconds
    double Length = 0;  ///< seconds
    double Pitch = 0;   ///< Hz; 0 is a hiss
    std::size_t Vowel = 0;
  };

  double sampleRate_;
  std::vector<WaveTable> vowels_;
  std::vector<Syllable> syllables_;
};

}  // namespace kestrune::receiver
