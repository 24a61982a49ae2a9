#include "control/StatusOf.h"

#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "base/Version.h"

namespace kestrune::control {

StatusReport StatusOf(const recorder::Snapshot& unit) {
  const recorder::RecordingState& recording = unit.State.Recording;
  const recorder::CaptureRecord& capture =
      recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot));
  const radio::RadioState& radio = unit.State.Radio;
  const radio::LinkStatus& link = unit.State.Link;
  const recorder::Signal signal =
      link.Up() ? unit.State.Announcement.Signal.value_or(recorder::Signal{}) : recorder::Signal{};
  StatusReport report;
  report.Loading = unit.State.Run.FormLoading;
  report.Unit = unit.MultiUnit;
  report.Version = fmt::format("{}.{}.{}", base::kVersionMajor, base::kVersionMinor, base::kVersionRevision);
  report.Port = link.Up() ? unit.State.Settings.PortNum : std::int16_t{0};
  report.RadioLost = link.Cause;
  report.RadioDoubt = link.Doubt;
  report.RadioID = radio.RadioID;
  report.ChannelNumber = radio.ChannelNumber;
  report.Station = unit.Tuned.Station;
  report.Genre = unit.Tuned.Genre;
  report.Artist = radio.CurrentArtist;
  report.Song = radio.CurrentSong;
  report.Recording = recorder::StatusText(recording.Phase);
  report.RecordRequested = recording.RecordRequested;
  report.WaitingForNextSong = recording.WaitingForNextSong;
  report.CaptureLengthMs = capture.LengthMs;
  report.Keep = capture.KeepAtEnd;
  report.Warning = unit.State.Watch.Warning();
  report.CaptureFailure = capture.Outcome.Failure();
  report.RecordedCount = recording.RecordedCount;
  report.TooShortCount = recording.TooShortCount;
  report.TooLongCount = recording.TooLongCount;
  report.RestrictedCount = recording.RestrictedCount;
  report.ChannelsLoading = radio.ChannelsLoading;
  report.ChannelCount = unit.ChannelCount;
  report.ActiveSchedule = unit.State.Schedule.ActiveSchedule;
  report.FileFormat = unit.State.Settings.FileFormat;
  report.FormatDescription = unit.FormatDescription;
  report.FileDir = unit.State.Settings.FileDir;
  report.InputDevice = unit.InputDeviceName;
  report.Satellite1 = signal.Satellite1;
  report.Satellite2 = signal.Satellite2;
  report.Terrestrial = signal.Terrestrial;
  report.SamplesCaptured = unit.FramesCaptured;
  report.SamplesLost = unit.FramesLost;
  return report;
}

}  // namespace kestrune::control
