#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "receiver/Dice.h"

namespace kestrune::cutlab {

inline constexpr int kRate = 44100;

/// Two channels of sound, -1 to 1.
struct Stereo {
  std::vector<float> Left;
  std::vector<float> Right;
};

/// A piece of music: its beginning, and its end as it ends of itself.
struct Piece {
  Stereo Head;
  Stereo Tail;
};

/// What stations are made from.
class Pieces {
 public:
  Pieces() = default;
  Pieces(const Pieces&) = delete;
  Pieces& operator=(const Pieces&) = delete;
  virtual ~Pieces() = default;

  [[nodiscard]] virtual std::size_t Count() const = 0;
  /// `index` is below Count.
  [[nodiscard]] virtual Piece Music(std::size_t index) = 0;
  /// Some seconds of an announcer, alone.
  [[nodiscard]] virtual std::vector<float> Voice(receiver::Dice& dice) = 0;
};

/// Music made of chords, drums and a melody, and an announcer made of buzzes and hisses: the same for the
/// same seed, with nothing to install.
class SyntheticPieces final : public Pieces {
 public:
  /// `seconds`: of each head and tail.
  explicit SyntheticPieces(std::uint64_t seed, std::size_t count, int seconds = 40)
      : seed_(seed), count_(count), seconds_(seconds) {}

  [[nodiscard]] std::size_t Count() const override { return count_; }
  [[nodiscard]] Piece Music(std::size_t index) override;
  [[nodiscard]] std::vector<float> Voice(receiver::Dice& dice) override;

 private:
  std::uint64_t seed_;
  std::size_t count_;
  int seconds_;
};

}  // namespace kestrune::cutlab
