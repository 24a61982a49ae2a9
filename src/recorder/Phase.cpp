#include "recorder/Phase.h"

namespace kestrune::recorder {

std::string_view StatusText(Phase phase) {
  switch (phase) {
    case Phase::Idle:
      return "";
    case Phase::WaitingForChannelLoad:
      return "Waiting for channel load";
    case Phase::WaitingForNextSong:
      return "Waiting for next song";
    case Phase::Recording:
      return "Recording";
    case Phase::Grabbed:
      return "Recording (Grabbed)";
    case Phase::Killed:
      return "Recording (Killed)";
  }
  return "";
}

}  // namespace kestrune::recorder
