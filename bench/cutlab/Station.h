#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cutlab/Pieces.h"

namespace kestrune::cutlab {

/// How one song gives way to the next.
enum class JoinKind { Silence, NaturalEnd, Hard, Segue, Talk };
inline constexpr int kJoinKinds = 5;
[[nodiscard]] std::string_view NameOf(JoinKind kind);

/// What is true of one join. Frames count from the beginning of the station's sound.
struct Join {
  JoinKind Kind = JoinKind::Hard;
  std::int64_t GapFrom = 0;  ///< each frame from this one to Start, both included, is a right cut
  std::int64_t Start = 0;    ///< the first frame of the new song
};

/// When the text of a join changes.
struct Stamping {
  double Jitter = 0.3;  ///< standard deviation, in seconds
  double Drift = 0.4;   ///< how far the lead moves from the first song to the last, in seconds
  double OutlierShare = 0.03;
  double PollingSeconds = 0.4;
};

/// A station: its sound, the truth about its joins, and a lead of its own.
struct Station {
  std::vector<std::int16_t> Samples;  ///< two channels, interleaved
  std::vector<Join> Joins;
  double Lag = 0;  ///< true start minus change of the text, in seconds: -1 (late text) to 2.5 (early text)
};

/// A station of so many songs of 30 to 45 s, with the kinds of joins in random order. The same for the same
/// seed.
[[nodiscard]] Station MakeStation(Pieces& pieces, int songs, std::uint64_t seed);

/// The frame at which each change of text is noticed. The same for the same seed.
[[nodiscard]] std::vector<std::int64_t> MakeStamps(const Station& station, const Stamping& stamping,
                                                   std::uint64_t seed);

/// The mean of two interleaved channels.
[[nodiscard]] std::vector<std::int16_t> Mean(std::span<const std::int16_t> samples);

}  // namespace kestrune::cutlab
