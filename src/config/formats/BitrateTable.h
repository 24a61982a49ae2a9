#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

namespace kestrune::config {

/// The bitrates over which a slider runs, one a position.
class BitrateTable {
 public:
  /// `kbit` in kbit/s; its first stands at position `first`.
  constexpr BitrateTable(std::span<const std::int16_t> kbit, int first) : kbit_(kbit), first_(first) {}

  [[nodiscard]] constexpr int First() const { return first_; }
  [[nodiscard]] constexpr int Last() const { return first_ + static_cast<int>(kbit_.size()) - 1; }

  /// 0 for a bitrate that is not on the table, also where the table begins at 1.
  [[nodiscard]] constexpr int Position(std::int16_t bitrate) const {
    const auto found = std::ranges::find(kbit_, bitrate);
    return found == kbit_.end() ? 0 : first_ + static_cast<int>(found - kbit_.begin());
  }
  /// 0 for a position that is not on the table.
  [[nodiscard]] constexpr std::int16_t Bitrate(int position) const {
    if (position < First() || position > Last()) return 0;
    return kbit_[static_cast<std::size_t>(position - first_)];
  }

 private:
  std::span<const std::int16_t> kbit_;
  int first_;
};

}  // namespace kestrune::config
