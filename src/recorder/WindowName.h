#pragma once

#include <cstdint>

namespace kestrune::recorder {

/// The windows that the main window opens, by what they are for.
enum class WindowName : std::uint8_t {
  Channels,      ///< frmChannels; lives as long as the program and is only hidden
  Log,           ///< frmLog; the same
  Schedule,      ///< frmSchedule
  RestrictList,  ///< frmRestrictList
  KestruneNow,   ///< frmKestruneNow
  Presets,       ///< frmPresets
  Config,        ///< frmConfig
  Mixer,         ///< frmMixer
};

inline constexpr WindowName kWindowNames[] = {
    WindowName::Channels,    WindowName::Log,     WindowName::Schedule, WindowName::RestrictList,
    WindowName::KestruneNow, WindowName::Presets, WindowName::Config,   WindowName::Mixer,
};

}  // namespace kestrune::recorder
