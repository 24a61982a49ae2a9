#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <span>

namespace kestrune::receiver {

/// One period of a sound that repeats itself. Its root mean square is 1.
class WaveTable {
 public:
  /// `harmonics`: the amplitudes of the fundamental and its multiples.
  explicit WaveTable(std::span<const double> harmonics);

  /// `turns`: periods since its beginning.
  [[nodiscard]] double At(double turns) const {
    const double place = (turns - std::floor(turns)) * kSize;
    const auto index = static_cast<std::size_t>(place);
    const double share = place - static_cast<double>(index);
    return samples_[index] + share * (samples_[index + 1] - samples_[index]);
  }

 private:
  static constexpr std::size_t kSize = 1024;
  std::array<double, kSize + 1> samples_{};
};

}  // namespace kestrune::receiver
