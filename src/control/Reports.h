#pragma once

#include <cstdint>
#include <string>

namespace kestrune::control {

/// What a running unit says of itself. Texts are UTF-8, or whatever bytes a folder's name is made of.
struct StatusReport {
  bool Loading = false;   ///< the start still runs
  std::string Unit;       ///< empty for a single unit
  std::string Version;    ///< such as "3.0.29"
  int Port = 0;           ///< 0 while no radio is found
  std::string RadioID;    ///< empty if it could not be read
  int ChannelNumber = 0;  ///< the tuned channel
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Song;
  std::string Recording;  ///< the status text, such as "Waiting for next song"; empty when idle
  bool RecordRequested = false;
  bool WaitingForNextSong = false;
  std::int64_t CaptureLengthMs = 0;  ///< of the capture in hand
  int RecordedCount = 0;
  int TooShortCount = 0;
  int TooLongCount = 0;
  int RestrictedCount = 0;
  bool ChannelsLoading = false;
  int ChannelCount = 0;
  int ActiveSchedule = 0;  ///< 1 to 10, 0 if none runs
  std::string FileFormat;  ///< the code, such as "MP3"
  std::string FormatDescription;
  std::string FileDir;
  std::string InputDevice;  ///< the device's name
  int Satellite1 = 0;       ///< signal in percent, as the next two
  int Satellite2 = 0;
  int Terrestrial = 0;
  std::int64_t SamplesCaptured = 0;  ///< since the start, a sample of each channel counted once
  std::int64_t SamplesLost = 0;
};

/// What the maker's server said of the latest version.
struct UpdateReport {
  std::string Running;          ///< such as "003.000.029"
  bool Newer = false;           ///< there is a newer version
  std::string DownloadAddress;  ///< of its installer; empty if the server told none
};

/// One row of the channel table.
struct ChannelReport {
  int Number = 0;
  std::string Station;
  std::string Genre;
  std::string Artist;
  std::string Song;
};

}  // namespace kestrune::control
