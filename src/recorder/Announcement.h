#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "recorder/Phase.h"

namespace kestrune::recorder {

/// Signal quality in percent.
struct Signal {
  std::int16_t Satellite1 = 0;
  std::int16_t Satellite2 = 0;
  std::int16_t Terrestrial = 0;
};

/// What the recorder announces of the radio, as of the moments at which the labels, the title and the tip of the
/// tray icon change. All texts are as the radio sent them.
struct Announcement {
  /// The tuned channel; 0 before the first one is announced.
  std::int16_t Channel = 0;
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Song;

  /// The artist in the window's title; nothing while no song is known.
  std::optional<std::string> TitleArtist;

  /// The song in the tip of the tray icon, and the phase at the moment at which the tip was set.
  struct Tip {
    recorder::Phase Phase = recorder::Phase::Idle;
    std::string Artist;
    std::string Song;
  };
  /// Nothing while no song is known.
  std::optional<Tip> TrayTip;

  /// Nothing before the first reply, nor after an outage until the radio reports anew.
  std::optional<recorder::Signal> Signal;
};

}  // namespace kestrune::recorder
