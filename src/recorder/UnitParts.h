#pragma once

#include "base/EventLoop.h"
#include "config/formats/FileSpecs.h"
#include "config/settings/SettingsDoor.h"
#include "config/settings/SettingsSection.h"
#include "history/History.h"
#include "radio/channels/Channels.h"
#include "recorder/Boxes.h"
#include "recorder/InputDevices.h"
#include "recorder/Shelving.h"
#include "recorder/StationLags.h"
#include "schedule/entries/EntryEditors.h"
#include "schedule/lists/Restrictions.h"
#include "schedule/log/Log.h"

namespace kestrune::recorder {

/// The parts of a unit that the rules of windows and the commands of the control socket work on. All live as long as
/// the unit.
struct UnitParts {
  radio::Channels& Channels;
  schedule::Log& Log;
  /// The record of what happened.
  history::History& History;
  /// How far the text of each channel runs ahead of its sound.
  recorder::StationLags& StationLags;
  /// What just played and was not kept.
  recorder::Shelving& Shelving;
  schedule::Restrictions& Restrictions;
  /// The open editors of the schedule's entries.
  schedule::EntryEditors& EntryEditors;
  /// The stored settings of the unit, where windows keep their places and the schedule its entries.
  const config::SettingsSection& Section;
  config::SettingsDoor& Settings;
  config::FileSpecs& FileSpecs;
  recorder::Boxes& Boxes;
  const recorder::InputDevices& InputDevices;
  /// Off while the update cycle runs.
  const base::Timer& tmrUpdate;
};

}  // namespace kestrune::recorder
