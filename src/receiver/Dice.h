#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>

namespace kestrune::receiver {

/// FNV-1a: the same number for the same text on every machine.
[[nodiscard]] constexpr std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (const char byte : text) hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100000001B3ULL;
  return hash;
}

/// Chance that is the same for the same seed, with every compiler and library.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}

  /// 0 to below 1.
  [[nodiscard]] double Fraction() { return static_cast<double>(engine_() >> 11U) * 0x1p-53; }
  /// `low` to `high`, both included.
  [[nodiscard]] int Between(int low, int high) {
    return low + static_cast<int>(engine_() % static_cast<std::uint64_t>(high - low + 1));
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace kestrune::receiver
