#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace kestrune::test {

/// What may come over a radio's line: whole replies, broken ones and noise, by seed and without end.
class RadioTraffic {
 public:
  explicit RadioTraffic(std::uint64_t seed) : dice_(seed) {}

  /// Some bytes more: one reply, one that is spoilt, or noise.
  [[nodiscard]] std::string Next();
  /// From 0 to `most`.
  [[nodiscard]] std::size_t Roll(std::size_t most);

 private:
  [[nodiscard]] char Byte() { return static_cast<char>(Roll(255)); }
  [[nodiscard]] std::string Noise();
  [[nodiscard]] std::string Field();
  [[nodiscard]] std::string Reply();
  void Spoil(std::string& frame);

  std::mt19937_64 dice_;
};

}  // namespace kestrune::test
