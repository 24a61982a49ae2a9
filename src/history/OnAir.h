#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "platform/HistoryRows.h"

namespace kestrune::history {

/// What the radio says of a channel.
struct Playing {
  std::string_view Station;
  std::string_view Genre;
  std::string_view Artist;
  std::string_view Title;
};

/// What each channel plays now, and since when. A change of artist or title ends what was played before it.
class OnAir {
 public:
  /// A channel that was not heard of for longer than this may have played anything meanwhile: what it played before
  /// ends with the last moment when it was heard of.
  static constexpr std::int64_t kLongestGapSeconds = 300;

  /// What has ended with this, if anything. A channel below 1 or above 255 plays nothing; nor does one without artist
  /// and title.
  [[nodiscard]] std::optional<platform::HistoryPlay> Heard(std::int16_t channel, const Playing& playing,
                                                           base::DateValue now);

  /// Ends all of it.
  [[nodiscard]] std::vector<platform::HistoryPlay> End();

 private:
  struct Entry {
    platform::HistoryPlay Play;  // To: when it was last heard of
    bool Playing = false;
  };

  std::array<Entry, 256> entries_;
};

}  // namespace kestrune::history
