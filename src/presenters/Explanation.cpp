#include "presenters/Explanation.h"

#include <cstddef>

#include <fmt/format.h>

#include "presenters/HintLine.h"
#include "presenters/LoadProgress.h"
#include "recorder/Modes.h"

namespace kestrune::presenters {

std::string ExplainRecording(const recorder::State& state, const schedule::Restrictions& restrictions) {
  const recorder::RecordingState& recording = state.Recording;
  const recorder::Modes modes(state);
  if (state.Run.FormLoading) return "Starting...";
  if (std::string warning = state.Watch.Warning(); !warning.empty()) return warning;
  if (recording.Phase == recorder::Phase::WaitingForChannelLoad) {
    return "Recording begins once the channels are loaded.";
  }
  if (LoadProgress load = ShowLoad(state.Radio); load.Visible) return load.Text;
  if (state.HintHome != 0)
    return fmt::format("Following a hint: back to channel {} after this song.", state.HintHome);
  if (const recorder::Hint* const hint = ShownHint(state)) return recorder::HintText(*hint);
  if (recording.StopPending) return "Finishing the song in hand.";
  const recorder::CaptureRecord& capture =
      recording.CaptureSlots[static_cast<std::size_t>(recording.CaptureSlot)];
  const std::string why = capture.Outcome.Failure();
  if (capture.KeepAtEnd && why.empty()) return "This song is kept at its end, because you asked.";
  if (!recording.RecordRequested) return "Not recording.";
  if (recording.WaitingForNextSong) {
    return modes.CheckCleftune() ? "Whole songs only: it begins with the next song."
                                 : "Whole songs only, but songs are not split: press Stop.";
  }
  if (!why.empty()) return "This song is not being written: " + why + ".";
  // What the lists are asked about at the end is the song with which the capture began.
  const bool known = recording.LastArtist != recorder::kNoSong || recording.LastSong != recorder::kNoSong;
  if (known && modes.CheckGrab() && !restrictions.IsInGrabList(recording.LastArtist, recording.LastSong)) {
    return "Not in the Grab list: it will be deleted at its end.";
  }
  if (known && modes.CheckKill() && restrictions.IsInKillList(recording.LastArtist, recording.LastSong)) {
    return "In the Kill list: it will be deleted at its end.";
  }
  if (capture.Outcome.RadioLost)
    return "The radio was lost within this song: its name will say (Incomplete).";
  if (recording.Incomplete || recording.StartPending) {
    return "Begun within the song: its name will say (Incomplete).";
  }
  return modes.CheckCleftune() ? "This song is kept from its beginning." : "All songs go into one file.";
}

}  // namespace kestrune::presenters
