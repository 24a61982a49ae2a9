#include "receiver/Timeline.h"

namespace kestrune::receiver {

Playing PlayingAt(const Station& station, std::chrono::milliseconds time) {
  std::chrono::milliseconds round{0};
  for (const Song& song : station.Songs) round += song.Length;
  if (round.count() <= 0) return {};

  const std::chrono::milliseconds sinceFirst = time + station.Phase;
  std::chrono::milliseconds intoRound = sinceFirst % round;
  if (intoRound.count() < 0) intoRound += round;
  std::chrono::milliseconds start = time - intoRound;
  std::size_t index = 0;
  while (time - start >= station.Songs[index].Length) start += station.Songs[index++].Length;
  return {&station.Songs[index], index, start, start + station.Songs[index].Length};
}

}  // namespace kestrune::receiver
