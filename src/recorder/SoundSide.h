#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "config/formats/FileSpecs.h"
#include "recorder/Announcer.h"
#include "recorder/AudioObjects.h"
#include "recorder/Capture.h"
#include "recorder/Disposition.h"
#include "recorder/InputDevices.h"
#include "recorder/Outside.h"
#include "recorder/Shelving.h"
#include "recorder/SongBoundary.h"
#include "recorder/SongFiles.h"
#include "recorder/SoundMeter.h"
#include "recorder/State.h"
#include "schedule/lists/Restrictions.h"
#include "schedule/log/Log.h"

namespace kestrune::recorder {

/// The sound's side of a unit: from the input to the file under its final name.
struct SoundSide {
  /// What the cut between two songs follows. All must outlive the object.
  struct Sources {
    radio::Channels& Channels;
    const schedule::Restrictions& Restrictions;
    recorder::Announcer& Announcer;
    recorder::Chronicle& Chronicle;
    history::History& History;
    StationLags& Lags;
  };

  SoundSide(const Outside& outside, State& state, const Sources& sources, schedule::Log& log);

  /// Makes the audio objects anew.
  void Create(platform::AudioLibrary& library);
  /// Moves to the input that the settings ask for, if there are audio objects.
  void FollowInputDevice(std::int16_t index);

  AudioObjects Audio;
  SoundMeter Meter;
  CutChooser Cuts;
  InputDevices Devices;
  /// Name of the device that the settings ask for, empty if it was not usable.
  std::string InputDeviceName;
  config::FileSpecs FileSpecs;
  recorder::SongFiles SongFiles;
  recorder::Shelving Shelving;
  recorder::Capture Capture;
  recorder::Disposition Disposition;
  SongBoundary Boundary;
};

}  // namespace kestrune::recorder
