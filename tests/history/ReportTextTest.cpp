#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/ReportText.h"

namespace kestrune::history {
namespace {

using base::DateValue;
using platform::HistorySong;
using platform::SongFate;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

const DateValue kDue = DateValue::FromCivil(2026, 11, 21, 20, 0, 0);

HistorySong Song(std::int64_t minute, std::int64_t seconds, SongFate fate, std::string artist,
                 std::string title) {
  HistorySong song;
  song.Began = kDue.AddMinutes(minute);
  song.Ended = song.Began.AddSeconds(seconds);
  song.LengthMs = seconds * 1000;
  song.Fate = fate;
  song.Artist = std::move(artist);
  song.Title = std::move(title);
  return song;
}

Report Night() {
  EventStory whole;
  whole.Entry = 2;
  whole.Channel = 7;
  whole.Due = kDue.AddHours(2);
  whole.Until = kDue.AddHours(5);
  whole.Began = whole.Due;
  whole.Ended = whole.Until;

  EventStory broken;
  broken.Entry = 1;
  broken.Channel = 44;
  broken.Station = "Harbour";
  broken.Due = kDue;
  broken.Until = kDue.AddHours(1);
  broken.Began = broken.Due;
  broken.Ended = broken.Until;
  broken.Kept = 1;
  broken.Dropped = 2;
  broken.MissingSeconds = 728;
  broken.Missing = {{.From = kDue.AddSeconds(1862),
                     .To = kDue.AddSeconds(2590),
                     .Seconds = 728,
                     .Why = "radio: the device is gone",
                     .Intended = false}};
  broken.Songs = {Song(0, 3725, SongFate::KeptIncomplete, "Moon", "River"),
                  Song(4, 20, SongFate::TooShort, "Sun", "Lake"), Song(5, 21, SongFate::TooShort, "", "")};

  Report report;
  report.From = kDue.AddHours(-2);
  report.To = kDue.AddHours(11);
  report.Events = {whole, broken};
  report.OtherSongs = {Song(-60, 200, SongFate::Kept, "Rain", "Cloud")};
  report.Incidents = {{.Kind = platform::IncidentKind::Line,
                       .Began = kDue.AddSeconds(1862),
                       .Ended = kDue.AddSeconds(2590),
                       .Seconds = 728,
                       .Cause = "the device is gone"},
                      {.Kind = platform::IncidentKind::Disk,
                       .Began = kDue.AddHours(10),
                       .Ended = {},
                       .Seconds = 0,
                       .Cause = "the disk is full"}};
  report.Advice = {"Look at the cable."};
  return report;
}

TEST(ReportText, TellsProblemsFirstAndThenTheRest) {
  EXPECT_EQ(ReportText(Night()),
            "Kestrune, Sat, Nov 21, 18:00 to Sun, Nov 22, 07:00\n"
            "\n"
            "2 events, 2 songs kept, 2 dropped, 12 minutes are missing, 2 incidents.\n"
            "\n"
            "What went wrong:\n"
            "  Sat, Nov 21, 20:31:02 to 20:43:10    12:08  radio: the device is gone\n"
            "  Sun, Nov 22, 06:00:00 and still             disk: the disk is full\n"
            "\n"
            "What to do about it:\n"
            "  - Look at the cable.\n"
            "\n"
            "Event 1, channel 44 - Harbour, Sat, Nov 21, 20:00 to 21:00: 12 minutes are missing\n"
            "  1 song kept, 2 dropped (2 too short)\n"
            "  Not in a file:\n"
            "    20:31:02 to 20:43:10    12:08  radio: the device is gone\n"
            "  Songs:\n"
            "    20:00:00  1:02:05  Moon - River  [kept, incomplete]\n"
            "    20:04:00     0:20  Sun - Lake  [too short]\n"
            "    20:05:00     0:21  (no text)  [too short]\n"
            "\n"
            "Event 2, channel 7, Sat, Nov 21, 22:00 to Sun, Nov 22, 01:00: nothing is missing\n"
            "  0 songs kept, 0 dropped\n"
            "\n"
            "Recorded by hand:\n"
            "    19:00:00     3:20  Rain - Cloud\n");
}

TEST(ReportText, MomentsThatAreMissingAreNotCalledNothing) {
  Report report = Night();
  EventStory& event = report.Events[1];
  event.MissingSeconds = 0;
  event.Missing[0].Seconds = 16;
  EXPECT_THAT(ReportText(report),
              AllOf(HasSubstr("2 dropped, less than a minute is missing, 2 incidents"),
                    HasSubstr("Nov 21, 20:00 to 21:00: less than a minute is missing\n")));
  event.Missing[0].Intended = true;
  EXPECT_THAT(ReportText(report), Not(HasSubstr("less than")));
  event.Missing[0].Intended = false;
  event.Missing[0].Seconds = 3600;
  EXPECT_THAT(ReportText(report), Not(HasSubstr("less than"))) << "a clock that was set";
}

TEST(ReportText, ANightWithoutAnythingIsShort) {
  Report report;
  report.From = kDue;
  report.To = kDue.AddHours(11);
  EXPECT_EQ(ReportText(report),
            "Kestrune, Sat, Nov 21, 20:00 to Sun, Nov 22, 07:00\n"
            "\n"
            "0 events, 0 songs kept, 0 dropped, nothing is missing, 0 incidents.\n");
}

TEST(ReportText, WhatAUserKeptLaterIsCountedApart) {
  Report report = Night();
  report.Events[1].Kept = 3;
  report.Events[1].KeptLater = 2;
  report.OtherSongs.emplace_back().Fate = platform::SongFate::KeptLater;
  EXPECT_THAT(ReportText(report),
              AllOf(HasSubstr("(3 of them later), "), HasSubstr("3 songs kept (2 of them later), "),
                    HasSubstr("  [kept later]\n")));
}

TEST(ReportText, EventsThatDidNotRunAsPlannedSayWhy) {
  Report report = Night();
  report.Events[0].State = EventState::Missed;
  report.Events[0].Why = "the clock went past it";
  report.Events[1].State = EventState::BrokenOff;
  report.Events[1].Why = "the program was closed";
  const std::string text = ReportText(report);
  EXPECT_NE(text.find("  missed: the clock went past it\n"), std::string::npos) << text;
  EXPECT_NE(text.find("  broke off: the program was closed\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("0 songs kept"), std::string::npos) << "a missed event has no songs to count";
  report.Events[1].State = EventState::Running;
  EXPECT_NE(ReportText(report).find("  is still running\n"), std::string::npos);
}

TEST(ReportText, AStrangersTextNeitherBeginsALineNorControlsATerminal) {
  const std::string evil =
      "a\x1B[2J\r\n\xC2\x9B"
      "b";
  Report report = Night();
  for (EventStory& event : report.Events) {
    event.Station = event.Why = evil;
    event.State = EventState::BrokenOff;
    for (HistorySong& song : event.Songs) song.Artist = song.Title = evil;
    for (MissingPart& part : event.Missing) part.Why = evil;
  }
  for (HistorySong& song : report.OtherSongs) song.Artist = evil;
  for (auto& incident : report.Incidents) incident.Cause = evil;
  report.Advice = {evil};
  const std::string text = ReportText(report);
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_EQ(text.find('\r'), std::string::npos);
  EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos);
  EXPECT_EQ(text.find("\n b"), std::string::npos);
}

}  // namespace
}  // namespace kestrune::history
