#pragma once

#include <cstdint>
#include <string>

namespace kestrune::radio {

/// The values of the radio's latest replies. A value stays until the next reply of its kind, whatever happens to
/// the port. Texts are UTF-8; `pcrLastResponse` is bytes.
struct ReplyState {
  std::string pcrLastResponse;  ///< the last whole frame, of a known type or not

  // From one channel info reply, for any channel.
  std::int16_t pcrChannel = 0;
  std::string pcrStation;
  std::string pcrGenre;
  std::string pcrArtist;  ///< after case repair
  std::string pcrSong;    ///< after case repair

  std::string pcrRadioID;  ///< empty while unknown

  std::int16_t pcrSat1SignalQuality = 0;  ///< 0 to 99
  std::int16_t pcrSat2SignalQuality = 0;  ///< 0 to 99
  std::int16_t pcrTerSignalQuality = 0;   ///< 0 to 100 in tens

  bool pcrPowerReplySeen = false;
  bool pcrRadioIDSeen = false;
  bool pcrPowerIsOff = false;  ///< the radio refused a command because it is off

  // Set by the first success and never cleared: one confirmed channel holds for the run.
  bool pcrChannelSetSeen = false;
  std::int16_t pcrChannelSetNumber = 0;
  bool pcrMuteReplySeen = false;
  bool pcrMuteState = false;
};

}  // namespace kestrune::radio
