#pragma once

#include <cstdint>
#include <string>

#include "config/formats/Formats.h"
#include "config/settings/CutPlacement.h"

namespace kestrune::config {

/// In milliseconds.
inline constexpr std::int16_t kLongestCutOverlap = 5000;

inline constexpr std::int16_t kMostShelfSongs = 1000;
inline constexpr std::int32_t kMostShelfMegabytes = 1'000'000;

/// The settings of the running program, with the defaults of a fresh installation, which stand nowhere else. They
/// are read from the store once, at the start; from then on this record is what counts. It changes through the
/// SettingsDoor alone.
struct Settings : FormatSettings {
  std::int16_t Channel = 44;        ///< channel tuned at the start
  std::int16_t SievanceGrab = 0;    ///< check state of the Grab lists, 0 or 1
  std::int16_t SievanceKill = 0;    ///< check state of the Kill lists, 0 or 1
  std::int16_t MinSongLength = 45;  ///< seconds
  std::int16_t MaxSongLength = 0;   ///< seconds, 0 is no limit
  std::int16_t SongDelay = 600;     ///< milliseconds
  std::string FileDir = "C:\\";     ///< once loaded, a folder that ends in "/"
  bool RadioOnAtExit = false;
  std::string FilenameFormat = "%g\\%c - %t\\%a - %s";
  bool SaveDuplicates = true;
  bool TaskBarMinimized = true;
  bool Integrel = true;          ///< whole songs only
  std::int16_t InputDevice = 0;  ///< index of the recorder's device
  std::string InputDeviceId;     ///< the same device, whatever its index is at the next start; may be empty
  bool AGCEnabled = false;
  // These defaults are intended: the low level is above the high one, and the attack time is below the window's
  // range.
  std::int16_t AGCLowLevel = -10;   ///< dB
  std::int16_t AGCHighLevel = -40;  ///< dB
  std::int16_t AGCAttackTime = 4;   ///< milliseconds
  std::int16_t PortNum = 0;         ///< serial port, 0 is unknown
  bool Cleftune = true;             ///< one file a song
  bool CheckUpdatesAtStartup = true;
  /// Failures of radio, sound and disk are noticed, reported and, as far as possible, repaired.
  bool Watch = true;
  /// A capture that nobody asked for is begun anew after this many minutes; 0 is never.
  std::int16_t IdleCaptureMinutes = 60;
  config::CutPlacement CutPlacement = config::CutPlacement::Text;
  /// Milliseconds of sound that the files of two songs share around a cut that was found by listening with low
  /// confidence, 0 to kLongestCutOverlap.
  std::int16_t CutOverlap = 0;
  /// A song of the Grab lists that begins on another channel is pointed out.
  bool Hints = false;
  /// An idle program goes after such a song, keeps it and comes back.
  bool FollowHints = false;
  // What the desktop's notifications say while no window of the program is in front.
  bool NotifySongs = false;    ///< each song that is kept, or dropped for its length
  bool NotifyEvents = true;    ///< a scheduled event begins or ends
  bool NotifyProblems = true;  ///< the watch has noticed something, or it is over
  bool NotifyHints = true;     ///< a song is pointed out; needs Hints
  /// Where songs that were not kept lie for a while: a folder that ends in "/"; empty is Kestrune/Shelf in FileDir.
  std::string ShelfFolder;
  std::int16_t ShelfSongs = 20;       ///< at most so many lie there, 0 to kMostShelfSongs; 0 is none, ever
  std::int32_t ShelfMegabytes = 500;  ///< of at most so many million bytes, 1 to kMostShelfMegabytes
  std::string Favourites;             ///< channel numbers with blanks between
  bool FavouritesFirst = false;       ///< the channels window lists them before the others

  bool LegalAgreement = false;       ///< the user has accepted the agreement
  std::int16_t ChannelListing = 1;   ///< check state: the channels window is open
  std::int16_t RecordLog = 0;        ///< check state: the log window is open
  std::int16_t KestruneNow = 0;      ///< check state: the now window is open
  std::int16_t RecordingReport = 0;  ///< check state: the recording report is open

  bool operator==(const Settings&) const = default;
};

}  // namespace kestrune::config
