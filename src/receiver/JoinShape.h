#pragma once

#include "receiver/LineUp.h"

namespace kestrune::receiver {

/// How one song gives way to the next, in seconds.
struct JoinShape {
  double Fade = 0;        ///< over its last seconds the song fades out
  double Silence = 0;     ///< between its end and the start of the next song
  double Overlap = 0;     ///< so long it goes on after that start
  double FadeIn = 0;      ///< of the next song
  double TalkBefore = 0;  ///< an announcer talks from so long before that start ...
  double TalkAfter = 0;   ///< ... until so long after it
  double Ducked = 1;      ///< what is left of the music's amplitude meanwhile

  /// The amplitude of a song that has faded for so much of its fade, 0 to 1.
  [[nodiscard]] static double FadedBy(double share);
  /// So long before the start of the next song, nothing of the song is heard any more.
  [[nodiscard]] double QuietBefore() const;
};

/// The shape of a song's join. Each song has its own, which follows from its texts and its join; no part of it is
/// longer than a third of the song.
[[nodiscard]] JoinShape ShapeOf(const Song& song);

}  // namespace kestrune::receiver
