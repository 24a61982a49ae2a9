#pragma once

#include <string>

#include "presenters/ChoiceList.h"
#include "presenters/FolderRoom.h"

namespace kestrune::presenters {

/// What the configuration window shows.
struct ConfigurationControls {
  std::string lblWelcome;    ///< one sentence for a new user; empty after the first run
  ChoiceList cboMinLength;   ///< seconds
  ChoiceList cboMaxLength;   ///< seconds
  ChoiceList cboSongDelay;   ///< milliseconds
  ChoiceList cboFileFormat;  ///< the codes as texts
  ChoiceList cboDevice;      ///< indexes of the recorder's devices
  std::string txtFileDir;
  FolderRoom lblFileRoom;
  std::string txtFilenameFormat;
  std::string lblFormatSpecifications;
  bool chkAGCEnabled = false;
  /// The spin controls and labels of the three numbers; the text boxes stay.
  bool AGCSpinsVisible = false;
  std::string txtAGCLowLevel;
  std::string txtAGCHighLevel;
  std::string txtAGCAttackTime;
  bool chkDuplicates = false;
  bool chkTaskBarMinimized = false;
  bool chkAutostart = false;
  bool chkWatch = false;
  ChoiceList cboCutPlacement;  ///< the values of config::CutPlacement
  std::string txtShelfFolder;
  FolderRoom lblShelfRoom;  ///< nothing while the shelf has no folder of its own
  std::string txtShelfSongs;
  std::string txtShelfMegabytes;
  bool chkHints = false;
  bool chkFollowHints = false;
  bool chkNotifySongs = false;
  bool chkNotifyEvents = false;
  bool chkNotifyProblems = false;
  bool chkNotifyHints = false;
};

}  // namespace kestrune::presenters
