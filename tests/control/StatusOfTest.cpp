#include <gtest/gtest.h>

#include "control/StatusOf.h"

namespace kestrune::control {
namespace {

using recorder::Phase;

TEST(StatusOf, EveryFieldComesFromItsPlaceInTheSnapshot) {
  recorder::State state;
  state.Run.FormLoading = true;
  state.Settings.PortNum = 3;
  state.Settings.FileFormat = "OGG";
  state.Settings.FileDir = "/music/";
  state.Radio.RadioID = "ABCD1234";
  state.Radio.ChannelNumber = 47;
  state.Radio.CurrentArtist = "Salt & Sun";
  state.Radio.CurrentSong = "You & I";
  state.Radio.ChannelsLoading = true;
  state.Recording.Phase = Phase::WaitingForNextSong;
  state.Recording.RecordRequested = true;
  state.Recording.WaitingForNextSong = true;
  state.Recording.CaptureSlot = 1;
  state.Recording.CaptureSlots[0].LengthMs = 1;
  state.Recording.CaptureSlots[1].LengthMs = 61000;
  state.Recording.CaptureSlots[1].Outcome.WriteFailure = "No space left on device";
  state.Watch.Silent = true;
  state.Recording.RecordedCount = 4;
  state.Recording.TooShortCount = 5;
  state.Recording.TooLongCount = 6;
  state.Recording.RestrictedCount = 7;
  state.Schedule.ActiveSchedule = 8;
  state.Announcement.Signal = recorder::Signal{.Satellite1 = 80, .Satellite2 = 81, .Terrestrial = 82};
  const radio::ChannelEntry tuned{
      .Number = 47, .Station = "Campfire", .Genre = "Folk", .Artist = "x", .Song = "y"};
  const std::string unit = "2";
  const std::string device = "Line In";
  const StatusReport report = StatusOf({.State = state,
                                        .MultiUnit = unit,
                                        .Tuned = tuned,
                                        .ChannelCount = 120,
                                        .FormatDescription = "Ogg Vorbis",
                                        .InputDeviceName = device,
                                        .FramesCaptured = 5000000000,
                                        .FramesLost = 9});
  EXPECT_TRUE(report.Loading);
  EXPECT_EQ(report.Unit, "2");
  EXPECT_EQ(report.Version, "3.0.29");
  EXPECT_EQ(report.Port, 3);
  EXPECT_EQ(report.RadioID, "ABCD1234");
  EXPECT_EQ(report.ChannelNumber, 47);
  EXPECT_EQ(report.Station, "Campfire");
  EXPECT_EQ(report.Genre, "Folk");
  EXPECT_EQ(report.Artist, "Salt & Sun") << "single ampersands: this is no label";
  EXPECT_EQ(report.Song, "You & I");
  EXPECT_EQ(report.Recording, "Waiting for next song");
  EXPECT_TRUE(report.RecordRequested);
  EXPECT_TRUE(report.WaitingForNextSong);
  EXPECT_EQ(report.CaptureLengthMs, 61000);
  EXPECT_EQ(report.CaptureFailure, "No space left on device");
  EXPECT_EQ(report.Warning, "No sound comes from the radio: check the cable and the input device.");
  EXPECT_EQ(report.RecordedCount, 4);
  EXPECT_EQ(report.TooShortCount, 5);
  EXPECT_EQ(report.TooLongCount, 6);
  EXPECT_EQ(report.RestrictedCount, 7);
  EXPECT_TRUE(report.ChannelsLoading);
  EXPECT_EQ(report.ChannelCount, 120);
  EXPECT_EQ(report.ActiveSchedule, 8);
  EXPECT_EQ(report.FileFormat, "OGG");
  EXPECT_EQ(report.FormatDescription, "Ogg Vorbis");
  EXPECT_EQ(report.FileDir, "/music/");
  EXPECT_EQ(report.InputDevice, "Line In");
  EXPECT_EQ(report.Satellite1, 80);
  EXPECT_EQ(report.Satellite2, 81);
  EXPECT_EQ(report.Terrestrial, 82);
  EXPECT_EQ(report.SamplesCaptured, 5000000000);
  EXPECT_EQ(report.SamplesLost, 9);
}

TEST(StatusOf, ALostRadioHasNoPortAndNoSignal) {
  recorder::State state;
  state.Settings.PortNum = 3;
  state.Announcement.Signal = recorder::Signal{.Satellite1 = 80, .Satellite2 = 81, .Terrestrial = 82};
  state.Link = {.State = radio::LinkState::Silent, .Cause = "it does not answer", .Port = 3};
  const std::string none;
  const StatusReport report = StatusOf(
      {.State = state, .MultiUnit = none, .Tuned = {}, .FormatDescription = {}, .InputDeviceName = none});
  EXPECT_EQ(report.Port, 0);
  EXPECT_EQ(report.RadioLost, "it does not answer");
  EXPECT_EQ(report.Satellite1 + report.Satellite2 + report.Terrestrial, 0);
}

}  // namespace
}  // namespace kestrune::control
