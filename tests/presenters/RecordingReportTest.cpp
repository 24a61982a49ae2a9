#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/RecordingReport.h"
#include "support/FakeHistoryStore.h"
#include "support/RecordingShell.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using platform::HistorySong;
using platform::IncidentKind;
using platform::SongFate;
using presenters::RecordingReport;
using presenters::ReportLine;
using presenters::ReportNight;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RecordingReportTest : public ::testing::Test {
 protected:
  // Noon is when a night begins.
  RecordingReportTest() { SetClock(Day(20).AddHours(22)); }

  [[nodiscard]] static DateValue Day(int day) { return DateValue::FromCivil(2026, 11, day); }
  void SetClock(DateValue wall) {
    loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(loop.Now(), wall)));
  }
  void Song(DateValue began, const char* title, SongFate fate = SongFate::Kept) {
    HistorySong song;
    song.Began = began;
    song.Ended = began.AddMinutes(3);
    song.Channel = 47;
    song.Artist = "Salt & Sun";
    song.Title = title;
    song.LengthMs = 180000;
    song.Fate = fate;
    song.File = std::string("/music/Folk/") + title + ".mp3";
    store.Rows.Songs.push_back(song);
  }
  void Incident(DateValue began, const char* cause) {
    store.Rows.Incidents.push_back({.Kind = IncidentKind::Sound,
                                    .Began = began,
                                    .Ended = began.AddSeconds(75),
                                    .Seconds = 75,
                                    .Cause = cause});
  }
  void Open() {
    report.Load();
    loop.Run(1s);
  }
  [[nodiscard]] std::vector<std::string> Titles() const {
    std::vector<std::string> titles;
    for (const ReportNight& night : report.Nights()) titles.push_back(night.Title);
    return titles;
  }
  [[nodiscard]] std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const ReportLine& line : report.Story()) texts.push_back(line.Text);
    return texts;
  }

  SimulatedEventLoop loop;
  FakeHistoryStore store{loop};
  history::History history{store, loop};
  RecordingShell shell;
  RecordingReport report{history, shell, loop};
};

TEST_F(RecordingReportTest, TheNightsWithAnythingInThemAreListedNewestFirst) {
  Song(Day(18).AddHours(23), "Old");
  Song(Day(15).AddHours(11), "Before noon");
  Open();
  EXPECT_THAT(Titles(), ElementsAre("Fri, Nov 20", "Wed, Nov 18", "Sat, Nov 14"));
  EXPECT_EQ(report.Selected(), 0);
  EXPECT_EQ(report.Nights()[0].Summary, "0 songs");
  EXPECT_EQ(report.Nights()[1].Summary, "1 song");
  EXPECT_THAT(Texts(), ElementsAre("Nothing was recorded, and nothing failed."));
}

TEST_F(RecordingReportTest, ThePresentNightIsThereBeforeAnyAnswer) {
  report.Load();
  EXPECT_THAT(Titles(), ElementsAre("Fri, Nov 20"));
}

TEST_F(RecordingReportTest, InTheMorningTheNightIsStillThatOfTheDayBefore) {
  SetClock(Day(21).AddHours(8));
  Open();
  EXPECT_THAT(Titles(), ElementsAre("Fri, Nov 20"));
  SetClock(Day(21).AddHours(12));
  Open();
  EXPECT_THAT(Titles(), ElementsAre("Sat, Nov 21"));
}

TEST_F(RecordingReportTest, ProblemsComeFirst) {
  Song(Day(20).AddHours(21), "Rain");
  Incident(Day(20).AddHours(20), "nothing comes from it");
  Open();
  EXPECT_EQ(report.Nights()[0].Summary, "1 song, 1 problem");
  EXPECT_TRUE(report.Nights()[0].Problems);
  const std::vector<ReportLine>& story = report.Story();
  ASSERT_GE(story.size(), 4U);
  EXPECT_EQ(story[0].Text, "What went wrong");
  EXPECT_TRUE(story[0].Heading);
  EXPECT_TRUE(story[0].Problem);
  EXPECT_EQ(story[1].Time, "20:00:00");
  EXPECT_EQ(story[1].Length, "1:15");
  EXPECT_EQ(story[1].Text, "nothing comes from it");
  EXPECT_EQ(story[1].Note, "sound");
  const ReportLine& song = story.back();
  EXPECT_EQ(song.Text, "Salt & Sun - Rain");
  EXPECT_EQ(song.Note, "kept");
  EXPECT_EQ(song.Length, "3:00");
  EXPECT_FALSE(song.Problem);
}

TEST_F(RecordingReportTest, AnEventHasItsOwnHeadingAndWhatIsMissing) {
  store.Rows.Events.push_back({.Entry = 3,
                               .Due = Day(20).AddHours(20),
                               .PlannedSeconds = 3600,
                               .Channel = 47,
                               .Station = "Campfire Folk",
                               .Began = {},
                               .Ended = {},
                               .WhyNot = "the program was not running"});
  Open();
  EXPECT_THAT(Texts(), ::testing::Contains("Event 3: the program was not running"));
  EXPECT_THAT(Texts(),
              ::testing::Contains("Event 3, channel 47 - Campfire Folk, 20:00 to 21:00: 0 kept, 0 dropped"));
  EXPECT_EQ(report.Nights()[0].Summary, "0 songs, 1 problem");
}

TEST_F(RecordingReportTest, ASongsFolderIsOpened) {
  Song(Day(20).AddHours(21), "Rain");
  Song(Day(20).AddHours(21).AddMinutes(5), "Short", SongFate::TooShort);
  Open();
  ASSERT_THAT(report.Story(), SizeIs(3));
  report.ShowInFolder(0);
  report.ShowInFolder(2);
  report.ShowInFolder(3);
  report.ShowInFolder(-1);
  EXPECT_THAT(shell.Opened, IsEmpty()) << "a heading, a song that is gone, and no line at all";
  report.ShowInFolder(1);
  EXPECT_THAT(shell.Opened, ElementsAre("/music/Folk/"));
}

TEST_F(RecordingReportTest, AnotherNightIsShownWhenItIsChosenAndStaysChosen) {
  Song(Day(18).AddHours(23), "Old");
  Open();
  const std::uint32_t before = report.Changes();
  report.Select(1);
  EXPECT_NE(report.Changes(), before);
  EXPECT_THAT(Texts(), ElementsAre("Recorded by hand", "Salt & Sun - Old"));
  report.Select(7);
  report.Select(-1);
  EXPECT_EQ(report.Selected(), 1);
  Song(Day(20).AddHours(21), "New");
  loop.Run(2min);
  EXPECT_EQ(report.Nights()[0].Summary, "1 song") << "the present night is followed";
  EXPECT_EQ(report.Selected(), 1);
  EXPECT_THAT(Texts(), ElementsAre("Recorded by hand", "Salt & Sun - Old"));
}

TEST_F(RecordingReportTest, AtNoonANewNightBegins) {
  SetClock(Day(21).AddHours(11));
  Song(Day(20).AddHours(21), "Rain");
  Open();
  SetClock(Day(21).AddHours(12));
  loop.Run(2min);
  EXPECT_THAT(Titles(), ElementsAre("Sat, Nov 21", "Fri, Nov 20"));
}

TEST_F(RecordingReportTest, ARecordThatCannotBeReadSaysWhy) {
  store.QuestionFailure = "disk I/O error";
  Open();
  EXPECT_THAT(Texts(), ElementsAre("The record cannot be read: disk I/O error"));
}

TEST_F(RecordingReportTest, AnswersAfterTheCloseAreNotTaken) {
  Song(Day(18).AddHours(23), "Old");
  report.Load();
  report.Unload();
  const std::uint32_t before = report.Changes();
  loop.Run(5min);
  EXPECT_EQ(report.Changes(), before);
}

TEST_F(RecordingReportTest, AStrangersTextIsOneLine) {
  Song(Day(20).AddHours(21), "Rain\n\x1b[31mred");
  Open();
  EXPECT_EQ(report.Story().back().Text.find('\n'), std::string::npos);
  EXPECT_EQ(report.Story().back().Text.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace kestrune::test
