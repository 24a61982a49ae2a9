#include "presenters/SongProgress.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include <fmt/format.h>

#include "base/Numbers.h"
#include "recorder/Modes.h"

namespace kestrune::presenters {
namespace {

// What a song was captured for when it was heard only in part is no length.
constexpr std::int64_t kLeastLength = 30'000;

std::string Minutes(std::int64_t milliseconds) {
  return base::SixtiesText(milliseconds / 1000);
}

}  // namespace

SongProgress ProgressOf(const recorder::State& state, const RecentSongs& songs) {
  const recorder::RecordingState& recording = state.Recording;
  const auto& capture = recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot));
  const bool alone = recorder::Modes(state).CheckCleftune() || !recording.IsRecording();
  if (capture.FileName.empty() || capture.Piece || !alone) return {};
  const std::int64_t elapsed = capture.LengthMs;
  const std::optional<std::int64_t> length = songs.LengthOf(capture.Artist, capture.Song);
  if (!length || *length < kLeastLength || elapsed > *length)
    return {.Shown = true, .Text = Minutes(elapsed)};
  return {.Shown = true,
          .LengthKnown = true,
          .Text = fmt::format("{} of {}", Minutes(elapsed), Minutes(*length)),
          .Value = static_cast<int>(elapsed * SongProgress::kEnd / *length)};
}

}  // namespace kestrune::presenters
