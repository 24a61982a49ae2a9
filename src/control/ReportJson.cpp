#include "control/ReportJson.h"

#include "control/JsonMembers.h"

namespace kestrune::control {

// The members of each report are listed once, here; the visitor writes them or reads them. docs/json.md describes them.

static void ForEachMember(EitherConst<StatusReport> auto& report, auto& visit) {
  visit("unit", report.Unit);
  visit("version", report.Version);
  visit("loading", report.Loading);
  visit("port", report.Port);
  visit("radioID", report.RadioID);
  visit("radioLost", report.RadioLost);
  visit("radioDoubt", report.RadioDoubt);
  visit("channelNumber", report.ChannelNumber);
  visit("station", report.Station);
  visit("genre", report.Genre);
  visit("artist", report.Artist);
  visit("song", report.Song);
  visit("recording", report.Recording);
  visit("recordRequested", report.RecordRequested);
  visit("waitingForNextSong", report.WaitingForNextSong);
  visit("captureLengthMs", report.CaptureLengthMs);
  visit("keep", report.Keep);
  visit("warning", report.Warning);
  visit("captureFailure", report.CaptureFailure);
  visit("recordedCount", report.RecordedCount);
  visit("tooShortCount", report.TooShortCount);
  visit("tooLongCount", report.TooLongCount);
  visit("restrictedCount", report.RestrictedCount);
  visit("channelsLoading", report.ChannelsLoading);
  visit("channelCount", report.ChannelCount);
  visit("activeSchedule", report.ActiveSchedule);
  visit("fileFormat", report.FileFormat);
  visit("formatDescription", report.FormatDescription);
  visit("fileDir", report.FileDir);
  visit("inputDevice", report.InputDevice);
  visit("satellite1", report.Satellite1);
  visit("satellite2", report.Satellite2);
  visit("terrestrial", report.Terrestrial);
  visit("samplesCaptured", report.SamplesCaptured);
  visit("samplesLost", report.SamplesLost);
}

static void ForEachMember(EitherConst<ChannelReport> auto& report, auto& visit) {
  visit("number", report.Number);
  visit("station", report.Station);
  visit("genre", report.Genre);
  visit("artist", report.Artist);
  visit("song", report.Song);
}

static void ForEachMember(EitherConst<UpdateReport> auto& report, auto& visit) {
  visit("running", report.Running);
  visit("newer", report.Newer);
  visit("downloadAddress", report.DownloadAddress);
}

static void ForEachMember(EitherConst<ScheduleReport> auto& report, auto& visit) {
  visit("number", report.Number);
  visit("set", report.Set);
  visit("enabled", report.Enabled);
  visit("on", report.On);
  visit("at", report.At);
  visit("minutes", report.Minutes);
  visit("channel", report.Channel);
  visit("station", report.Station);
  visit("integrel", report.Integrel);
  visit("cleftune", report.Cleftune);
  visit("grab", report.Grab);
  visit("kill", report.Kill);
  visit("bitrate", report.BitRate);
  visit("nextRun", report.NextRun);
  visit("running", report.Running);
  visit("secondsLeft", report.SecondsLeft);
}

static void ForEachMember(EitherConst<ListsReport> auto& report, auto& visit) {
  visit("grabArtists", report.GrabArtists);
  visit("grabSongs", report.GrabSongs);
  visit("killArtists", report.KillArtists);
  visit("killSongs", report.KillSongs);
}

Json ToJson(const StatusReport& report) {
  return ObjectOf(report);
}

Json ToJson(const std::vector<ChannelReport>& channels) {
  return ArrayOf(channels);
}

Json ToJson(const UpdateReport& report) {
  return ObjectOf(report);
}

Json ToJson(const std::vector<ScheduleReport>& entries) {
  return ArrayOf(entries);
}

Json ToJson(const ListsReport& lists) {
  return ObjectOf(lists);
}

std::optional<StatusReport> StatusFromJson(const Json& json) {
  return FromObject<StatusReport>(json);
}

std::optional<std::vector<ChannelReport>> ChannelsFromJson(const Json& json) {
  return FromArray<ChannelReport>(json);
}

std::optional<UpdateReport> UpdateFromJson(const Json& json) {
  return FromObject<UpdateReport>(json);
}

std::optional<std::vector<ScheduleReport>> ScheduleFromJson(const Json& json) {
  return FromArray<ScheduleReport>(json);
}

std::optional<ListsReport> ListsFromJson(const Json& json) {
  return FromObject<ListsReport>(json);
}

}  // namespace kestrune::control
