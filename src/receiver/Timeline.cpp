#include "receiver/Timeline.h"

#include <algorithm>

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

Playing TextAt(const Station& station, std::chrono::milliseconds time, std::chrono::milliseconds lead) {
  std::chrono::milliseconds farthest = lead;
  for (const Song& song : station.Songs) farthest = std::max(farthest, song.Lead.value_or(lead));
  // Back from the last song that can show, to the last one whose text has come.
  Playing shown = PlayingAt(station, time + farthest);
  while (shown.What != nullptr && shown.Start - shown.What->Lead.value_or(lead) > time)
    shown = PlayingAt(station, shown.Start - std::chrono::milliseconds(1));
  return shown;
}

}  // namespace kestrune::receiver
