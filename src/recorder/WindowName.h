#pragma once

#include <cstdint>

namespace kestrune::recorder {

/// The windows that the main window opens, by what they are for; WindowTable.h has a row for each.
enum class WindowName : std::uint8_t {
  Channels,      ///< frmChannels
  Log,           ///< frmLog
  Schedule,      ///< frmSchedule
  RestrictList,  ///< frmRestrictList
  KestruneNow,   ///< frmKestruneNow
  Presets,       ///< frmPresets
  Config,        ///< frmConfig
  Mixer,         ///< frmMixer
  Report,        ///< frmReport
  Shelf,         ///< frmShelf
};

}  // namespace kestrune::recorder
