#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/settings/SettingsSection.h"
#include "support/FakeHistoryStore.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingShell.h"
#include "support/SimulatedEventLoop.h"
#include "windows/Controls.h"
#include "windows/frmReport.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class frmReportTest : public ::testing::Test {
 protected:
  frmReportTest() {
    const DateValue evening = DateValue::FromCivil(2026, 11, 20, 22);
    loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(loop.Now(), evening)));
    AddSong(evening.AddHours(-1), "Rain & Wind", "/music/Folk/Rain.mp3");
    AddSong(evening.AddDays(-1), "<b>Old</b>", "/music/Old/Old.mp3");
    store.Rows.Incidents.push_back({.Kind = platform::IncidentKind::Sound,
                                    .Began = evening.AddHours(-2),
                                    .Ended = evening.AddHours(-2).AddSeconds(75),
                                    .Seconds = 75,
                                    .Cause = "nothing comes from it"});
    store.Rows.Plays.push_back({.Channel = 44,
                                .Station = "Harbour",
                                .Genre = {},
                                .Artist = "<i>Salt</i> & Sun",
                                .Title = "Rain & Wind",
                                .From = evening.AddHours(-1),
                                .To = evening});
    window = std::make_unique<windows::frmReport>(rules, played, section);
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->Closed = [this] { ++closed; };
    window->show();
    loop.Run(1s);
    window->Refresh();
  }
  void AddSong(DateValue began, const char* title, const char* file) {
    platform::HistorySong song;
    song.Began = began;
    song.Ended = began.AddMinutes(3);
    song.Artist = "Salt";
    song.Title = title;
    song.LengthMs = 180000;
    song.File = file;
    store.Rows.Songs.push_back(song);
  }
  template <typename Control>
  [[nodiscard]] Control& Find(const char* name) {
    return *window->findChild<Control*>(QLatin1String(name));
  }
  [[nodiscard]] QListWidget& Nights() { return Find<QListWidget>("lstNights"); }
  [[nodiscard]] QTreeWidget& Story() { return Find<QTreeWidget>("lstStory"); }
  /// The item with this text in its column of texts.
  [[nodiscard]] QTreeWidgetItem* Item(const char* text) {
    const auto found = Story().findItems(QString::fromUtf8(text), Qt::MatchExactly | Qt::MatchRecursive, 2);
    return found.isEmpty() ? nullptr : found.constFirst();
  }

  SimulatedEventLoop loop;
  FakeHistoryStore store{loop};
  history::History history{store, loop};
  RecordingShell shell;
  MemorySettingsStore settings;
  config::SettingsSection section{settings};
  presenters::RecordingReport rules{history, shell, loop};
  presenters::MostPlayed played{
      history, loop,
      [] { return std::vector<schedule::SchedulerChannel>{{.Number = 44, .Station = "R & B"}}; }};
  std::unique_ptr<windows::frmReport> window;
  int closed = 0;
};

TEST_F(frmReportTest, ShowsTheNightsAndTheStoryOfTheNewest) {
  EXPECT_EQ(window->windowTitle(), "Kestrune Recording Report");
  ASSERT_EQ(Nights().count(), 2);
  EXPECT_EQ(Nights().item(0)->text(), "Fri, Nov 20\n1 song, 1 problem");
  EXPECT_EQ(Nights().item(1)->text(), "Thu, Nov 19\n1 song");
  EXPECT_NE(Nights().item(0)->foreground(), Nights().item(1)->foreground()) << "problems catch the eye";
  ASSERT_GE(Story().topLevelItemCount(), 2);
  EXPECT_EQ(Story().topLevelItem(0)->text(0), "What went wrong");
  EXPECT_EQ(Story().topLevelItem(0)->child(0)->text(2), "nothing comes from it");
  EXPECT_TRUE(Story().topLevelItem(0)->isExpanded());
  ASSERT_NE(Item("Salt - Rain & Wind"), nullptr);
  EXPECT_EQ(Item("Salt - Rain & Wind")->text(1), "3:00");
}

TEST_F(frmReportTest, AnAdviceHasTheWholeRow) {
  const auto headings = Story().findItems("What to do", Qt::MatchExactly, 0);
  ASSERT_EQ(headings.size(), 1);
  ASSERT_EQ(headings.constFirst()->childCount(), 1);
  const QTreeWidgetItem* const advice = headings.constFirst()->child(0);
  EXPECT_TRUE(advice->text(0).startsWith("The sound failed: look at the sound cable"));
  EXPECT_TRUE(advice->isFirstColumnSpanned());
  EXPECT_FALSE(Item("nothing comes from it")->isFirstColumnSpanned());
}

TEST_F(frmReportTest, AnotherNightIsChosenByKey) {
  QTest::keyClick(&Nights(), Qt::Key_Down);
  EXPECT_EQ(rules.Selected(), 1);
  EXPECT_NE(Item("Salt - <b>Old</b>"), nullptr) << "a stranger's text is shown as it is";
  EXPECT_EQ(Item("Salt - Rain & Wind"), nullptr);
}

TEST_F(frmReportTest, ASongOpensItsFolderByEnterAndByTheButton) {
  auto& button = Find<QPushButton>("cmdShowInFolder");
  Story().setCurrentItem(Story().topLevelItem(0));
  EXPECT_FALSE(button.isEnabled());
  QTest::keyClick(&Story(), Qt::Key_Return);
  EXPECT_THAT(shell.Opened, IsEmpty());
  Story().setCurrentItem(Item("Salt - Rain & Wind"));
  EXPECT_TRUE(button.isEnabled());
  QTest::keyClick(&Story(), Qt::Key_Return);
  button.click();
  EXPECT_THAT(shell.Opened, ElementsAre("/music/Folk/", "/music/Folk/"));
}

TEST_F(frmReportTest, TheChosenLineStaysChosenWhenTheNightIsReadAgain) {
  Story().setCurrentItem(Item("Salt - Rain & Wind"));
  loop.Run(2min);
  window->Refresh();
  ASSERT_NE(Story().currentItem(), nullptr);
  EXPECT_EQ(Story().currentItem()->text(2), "Salt - Rain & Wind");
}

TEST_F(frmReportTest, EscapeClosesItAndItsPlaceIsRemembered) {
  QTest::keyClick(&Story(), Qt::Key_Escape);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(closed, 1);
  EXPECT_NE(settings.Stored("Lorimel", "Kestrune", "ReportTop"), "");
  EXPECT_NE(settings.Stored("Lorimel", "Kestrune", "ReportWidth"), "");
}

TEST_F(frmReportTest, WhatWasPlayedMostHasAPageOfItsOwnAndIsCountedOnceItIsShown) {
  EXPECT_EQ(played.Changes(), 0U);
  Find<QTabWidget>("tabReport").setCurrentIndex(1);
  EXPECT_EQ(Find<QLabel>("lblPlayed").text(), "Counting...");
  loop.Run(1s);
  window->Refresh();
  auto& list = Find<QTreeWidget>("lstPlayed");
  ASSERT_EQ(list.topLevelItemCount(), 1);
  EXPECT_EQ(list.topLevelItem(0)->text(0), "1");
  EXPECT_EQ(list.topLevelItem(0)->text(1), "<i>Salt</i> & Sun");
  EXPECT_TRUE(list.isColumnHidden(2)) << "artists have no titles";
  EXPECT_EQ(Find<QLabel>("lblPlayed").text(), "1 artist");
  EXPECT_EQ(Find<QComboBox>("cboPlayedChannel").itemText(1), "44 - R & B");
}

TEST_F(frmReportTest, EachChoiceCountsAnew) {
  Find<QTabWidget>("tabReport").setCurrentIndex(1);
  ChooseRow(Find<QComboBox>("cboPlayedAs"), 1);
  ChooseRow(Find<QComboBox>("cboPlayedChannel"), 1);
  ChooseRow(Find<QComboBox>("cboPlayedDays"), 3);
  EXPECT_EQ(store.LastCount.As, platform::PlayedAs::Song);
  EXPECT_EQ(store.LastCount.Channel, 44);
  EXPECT_FALSE(store.LastCount.Since.has_value());
  loop.Run(1s);
  window->Refresh();
  auto& list = Find<QTreeWidget>("lstPlayed");
  EXPECT_FALSE(list.isColumnHidden(2));
  ASSERT_EQ(list.topLevelItemCount(), 1);
  EXPECT_EQ(list.topLevelItem(0)->text(2), "Rain & Wind");
}

TEST_F(frmReportTest, AWindowThatClosesWhileItCountsHearsNoMore) {
  Find<QTabWidget>("tabReport").setCurrentIndex(1);
  QTest::keyClick(window.get(), Qt::Key_Escape);
  const std::uint32_t changes = played.Changes();
  window.reset();
  loop.Run(5s);
  EXPECT_EQ(played.Changes(), changes);
  windows::frmReport again(rules, played, section);
  again.setAttribute(Qt::WA_DeleteOnClose, false);
  again.findChild<QTabWidget*>()->setCurrentIndex(1);
  loop.Run(1s);
  again.Refresh();
  EXPECT_EQ(again.findChild<QTreeWidget*>(QStringLiteral("lstPlayed"))->topLevelItemCount(), 1);
}

TEST_F(frmReportTest, TheTabKeyGoesFromTheNightsToTheStoryAndTheButton) {
  Story().setCurrentItem(Item("Salt - Rain & Wind"));
  Nights().setFocus();
  QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(window->focusWidget()->objectName(), "lstStory");
  QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(window->focusWidget()->objectName(), "cmdShowInFolder");
}

}  // namespace
}  // namespace kestrune::test
