#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/StatusLine.h"

namespace kestrune::control {
namespace {

StatusReport Recording() {
  StatusReport report;
  report.Port = 1;
  report.ChannelNumber = 44;
  report.ChannelCount = 120;
  report.Station = "Fred";
  report.Artist = "Moon";
  report.Song = "River";
  report.Recording = "Recording";
  report.RecordedCount = 3;
  return report;
}

TEST(StatusLine, ARecordingSaysWhatOfWhatAndHowMany) {
  EXPECT_EQ(StatusLine(Recording()), "Recording; channel 44 Fred; Moon - River; 3 recorded");
}

TEST(StatusLine, AnIdleUnitSaysSo) {
  StatusReport report = Recording();
  report.Recording.clear();
  report.RecordedCount = 0;
  report.Song.clear();
  EXPECT_EQ(StatusLine(report), "not recording; channel 44 Fred; Moon");
}

TEST(StatusLine, AnEventIsNamed) {
  StatusReport report = Recording();
  report.ActiveSchedule = 7;
  EXPECT_EQ(StatusLine(report), "Recording, entry 7; channel 44 Fred; Moon - River; 3 recorded");
}

TEST(StatusLine, AStartSaysHowFarItIs) {
  StatusReport report;
  report.Loading = true;
  EXPECT_EQ(StatusLine(report), "starting");
  report.ChannelCount = 37;
  EXPECT_EQ(StatusLine(report), "loading channels, 37 so far");
}

TEST(StatusLine, WhatIsWrongComesFirstAndOnlyTheWorstOfIt) {
  StatusReport report = Recording();
  report.CaptureFailure = "No space left on device";
  EXPECT_THAT(StatusLine(report),
              testing::StartsWith("not being written: No space left on device; Recording"));
  report.RadioLost = "the device is gone";
  EXPECT_THAT(StatusLine(report), testing::StartsWith("radio lost: the device is gone; Recording"));
  report.Warning = "The radio is lost: the device is gone.";
  EXPECT_THAT(StatusLine(report), testing::StartsWith("The radio is lost: the device is gone; Recording"));
}

TEST(StatusLine, ItDoesNotChangeWithTheSeconds) {
  StatusReport later = Recording();
  later.CaptureLengthMs = 100000;
  later.SamplesCaptured = 4410000;
  later.Satellite1 = 80;
  EXPECT_EQ(StatusLine(later), StatusLine(Recording()));
}

TEST(StatusLine, AStrangersTextStaysOneLine) {
  StatusReport report = Recording();
  report.Song = "River\nWATCHDOG=1";
  EXPECT_EQ(StatusLine(report).find('\n'), std::string::npos);
}

}  // namespace
}  // namespace kestrune::control
