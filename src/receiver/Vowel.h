#pragma once

#include "receiver/WaveTable.h"

namespace kestrune::receiver {

inline constexpr int kVowels = 5;

/// One period of a vowel, 0 to 4, sung or spoken at about that pitch, in Hz.
[[nodiscard]] WaveTable MakeVowel(int vowel, double pitch);

}  // namespace kestrune::receiver
