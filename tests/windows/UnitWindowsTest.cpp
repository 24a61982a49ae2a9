#include <QAbstractItemModel>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QWindow>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "presenters/WindowTable.h"
#include "windows/Controls.h"
#include "windows/UnitWindowsRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::MessageAnswer;
using presenters::DesktopRecord;
using recorder::StartOutcome;
using recorder::WindowName;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A check box of the main window, its entry in the menu, and the window of both.
struct Switch {
  const char* Box;
  const char* Entry;
  WindowName Name;
  const char* Window;
  bool DesktopRecord::*Checked;
};

constexpr Switch kSwitches[] = {
    {"chkChannelListing", "mnuChannels", WindowName::Channels, "frmChannels",
     &DesktopRecord::chkChannelListing},
    {"chkRecordLog", "mnuLog", WindowName::Log, "frmLog", &DesktopRecord::chkRecordLog},
    {"chkSchedule", "mnuSchedule", WindowName::Schedule, "frmSchedule", &DesktopRecord::chkSchedule},
    {"chkRestrictList", "mnuRestrictList", WindowName::RestrictList, "frmRestrictList",
     &DesktopRecord::chkRestrictList},
    {"chkKestruneNow", "mnuKestruneNow", WindowName::KestruneNow, "frmKestruneNow",
     &DesktopRecord::chkKestruneNow},
    {"chkReport", "mnuReport", WindowName::Report, "frmReport", &DesktopRecord::chkReport},
};

class UnitWindowsTest : public ::testing::Test {
 protected:
  UnitWindowsTest() {
    for (const char* key : {"ChannelListing", "RecordLog", "KestruneNow", "RecordingReport"})
      rig.Unit.Set(key, "0");
  }

  /// The box, the mark of the entry, the record and the window all say the same.
  void ExpectOpen(const Switch& each, bool open) {
    rig.Run(200ms);
    EXPECT_EQ(rig.Find<QCheckBox>(each.Box).isChecked(), open);
    EXPECT_EQ(rig.Main().Entry(each.Entry)->isChecked(), open);
    EXPECT_EQ(rig.Record().*each.Checked, open);
    EXPECT_EQ(rig.Shows(each.Name), open);
    if (open) {
      EXPECT_EQ(rig.Window(each.Name).objectName(), QLatin1String(each.Window));
    }
  }
  void PressBox(const Switch& each) { QTest::keyClick(&rig.Find<QCheckBox>(each.Box), Qt::Key_Space); }
  void OpenAll() {
    for (const Switch& each : kSwitches) PressBox(each);
    rig.Choose("mnuShelf");
    rig.Choose("mnuPresets");
    rig.Choose("mnuPreferences");
    rig.Find<QPushButton>("cmdMixer").click();
    for (const presenters::WindowRow& row : presenters::WindowTable()) ASSERT_TRUE(rig.Shows(row.Name));
  }
  /// Changes an entry of the scheduler that then waits for its save.
  void ChangeTheSchedule() { Find<QCheckBox>(rig.Window(WindowName::Schedule), "chkGrab_2").click(); }
  void ChangeTheLists() {
    QWidget& lists = rig.Window(WindowName::RestrictList);
    QTest::keyClicks(&Find<QLineEdit>(lists, "txtRestrict_2"), "Polka");
    Press(lists, "cmdAdd_2");
  }
  void ChangeTheConfiguration() {
    auto& folder = Find<QLineEdit>(rig.Window(WindowName::Config), "txtFileDir");
    folder.selectAll();
    QTest::keyClicks(&folder, "/elsewhere/");
  }
  [[nodiscard]] std::string ListFile() {
    return rig.Unit.Files.Read(rig.Unit->Parts().Restrictions.RestrictionFile()).value_or("");
  }
  [[nodiscard]] bool IsStored(const char* key) { return rig.Unit.Setting(key) != "(absent)"; }
  /// Asks for the list from a text and answers, as a user does.
  QString DoubleClickAndAnswer(QWidget& label, const char* answer) {
    QString question;
    EXPECT_EQ(rig.WithinModal([&] { QTest::mouseDClick(&label, Qt::LeftButton); },
                              [&](QWidget& dialog) {
                                question = Find<QLabel>(dialog, "lblQuestion").text();
                                Press(dialog, answer);
                              }),
              "frmGrabKill");
    return question;
  }
  /// Closes the unit from within the modal window that `opens` opens; the unit still ends as usual.
  template <typename Opens>
  QString CloseWithin(Opens opens) {
    QString name = rig.WithinModal(opens, [this](QWidget&) { rig.Unit->Close(); });
    EXPECT_TRUE(rig.Unit->State().Run.ShuttingDown) << "no modal window came";
    ExpectEnd();
    return name;
  }
  void ExpectEnd() {
    for (const QWidget* window : QApplication::topLevelWidgets())
      EXPECT_FALSE(window->isVisible()) << window->objectName().toStdString();
    EXPECT_TRUE(rig.Unit.Loop.RunUntil([this] { return rig.Unit.Closed; }, 20s));
    QCoreApplication::processEvents();
    for (const QWidget* window : QApplication::topLevelWidgets())
      EXPECT_FALSE(window->isVisible()) << window->objectName().toStdString();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  }

  UnitWindowsRig rig;
};

// Boxes, marks and windows.

TEST_F(UnitWindowsTest, EachBoxOpensItsWindowAndClosesItAgain) {
  rig.Unit.StartIdle();
  for (const Switch& each : kSwitches) {
    SCOPED_TRACE(each.Box);
    ExpectOpen(each, false);
    for (int round = 0; round < 2; ++round) {
      PressBox(each);
      ExpectOpen(each, true);
      PressBox(each);
      ExpectOpen(each, false);
    }
  }
}

TEST_F(UnitWindowsTest, EachEntryOpensItsWindowAndClosesItAgain) {
  rig.Unit.StartIdle();
  for (const Switch& each : kSwitches) {
    SCOPED_TRACE(each.Entry);
    for (int round = 0; round < 2; ++round) {
      rig.Choose(each.Entry);
      ExpectOpen(each, true);
      rig.Choose(each.Entry);
      ExpectOpen(each, false);
    }
  }
}

TEST_F(UnitWindowsTest, AWindowThatIsClosedByItselfTakesItsMarksAlong) {
  rig.Unit.StartIdle();
  for (const Switch& each : kSwitches) {
    SCOPED_TRACE(each.Window);
    PressBox(each);
    rig.Window(each.Name).close();
    ExpectOpen(each, false);
    PressBox(each);
    ExpectOpen(each, true);
    ClickCloseBox(rig.Window(each.Name));
    // After an accepted close the window system does what close() does, apart from the event's mark.
    if (QWidget* window = rig.Desktop.WidgetOf(each.Name); window != nullptr) window->hide();
    ExpectOpen(each, false);
  }
}

TEST_F(UnitWindowsTest, EscapeClosesEachWindow) {
  rig.Unit.StartIdle();
  for (const Switch& each : kSwitches) {
    SCOPED_TRACE(each.Window);
    PressBox(each);
    QTest::keyClick(&rig.Window(each.Name), Qt::Key_Escape);
    ExpectOpen(each, false);
  }
}

TEST_F(UnitWindowsTest, ARefusedCloseLeavesTheMarks) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Answer = MessageAnswer::Cancel;
  const std::pair<const Switch&, std::function<void()>> refusing[] = {
      {kSwitches[2], [this] { ChangeTheSchedule(); }}, {kSwitches[3], [this] { ChangeTheLists(); }}};
  for (const auto& [each, change] : refusing) {
    SCOPED_TRACE(each.Window);
    PressBox(each);
    change();
    const std::size_t asked = rig.Unit.Dialogs.Shown.size();
    PressBox(each);
    ExpectOpen(each, true);
    rig.Choose(each.Entry);
    ExpectOpen(each, true);
    rig.Window(each.Name).close();
    ExpectOpen(each, true);
    EXPECT_EQ(rig.Unit.Dialogs.Shown.size(), asked + 3) << "each close is one question";
    rig.Unit.Dialogs.Answer = MessageAnswer::No;
    PressBox(each);
    ExpectOpen(each, false);
    rig.Unit.Dialogs.Answer = MessageAnswer::Cancel;
  }
}

TEST_F(UnitWindowsTest, ASaveClosesItsWindowAndTakesTheMarksAlong) {
  rig.Unit.StartIdle();
  PressBox(kSwitches[2]);
  ChangeTheSchedule();
  Press(rig.Window(WindowName::Schedule), "cmdSave");
  ExpectOpen(kSwitches[2], false);
  EXPECT_EQ(rig.Unit.Setting("ScheduleMatchGrab3"), "1");
  PressBox(kSwitches[3]);
  ChangeTheLists();
  Press(rig.Window(WindowName::RestrictList), "cmdSave");
  ExpectOpen(kSwitches[3], false);
  EXPECT_EQ(ListFile(), "2Polka\n");
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
}

TEST_F(UnitWindowsTest, WhatWasOpenIsOpenAgainAtTheNextStart) {
  for (const char* key : {"ChannelListing", "RecordLog", "KestruneNow", "RecordingReport"})
    rig.Unit.Set(key, "1");
  rig.Unit.StartIdle();
  for (const Switch& each : {kSwitches[0], kSwitches[1], kSwitches[4], kSwitches[5]}) ExpectOpen(each, true);
  for (const Switch& each : {kSwitches[2], kSwitches[3]}) ExpectOpen(each, false);
  rig.Unit->Close();
  ExpectEnd();
  for (const char* key : {"ChannelListing", "RecordLog", "KestruneNow", "RecordingReport"})
    EXPECT_EQ(rig.Unit.Setting(key), "1");
}

TEST_F(UnitWindowsTest, AllWindowsFollowTheMainWindowDownAndUp) {
  rig.Unit.StartIdle();
  OpenAll();
  rig.Main().setWindowState(Qt::WindowMinimized);
  rig.Run(300ms);
  for (const WindowName name :
       {WindowName::Channels, WindowName::Log, WindowName::Schedule, WindowName::RestrictList,
        WindowName::KestruneNow, WindowName::Report, WindowName::Shelf}) {
    EXPECT_FALSE(rig.Shows(name)) << static_cast<int>(name);
    EXPECT_TRUE(rig.Desktop.IsLoaded(name)) << static_cast<int>(name);
  }
  rig.Main().setWindowState(Qt::WindowNoState);
  rig.Run(300ms);
  for (const Switch& each : kSwitches) ExpectOpen(each, true);
}

TEST_F(UnitWindowsTest, TheArrowKeysWalkTheChannelsWithoutAClickBefore) {
  rig.Unit.Set("ChannelListing", "1");
  rig.Unit.StartIdle();
  QWidget& channels = rig.Window(WindowName::Channels);
  ASSERT_NE(channels.focusWidget(), nullptr);
  const std::int16_t before = rig.Unit->State().Radio.ChannelNumber;
  QTest::keyClick(channels.focusWidget(), Qt::Key_Down);
  rig.Run(1s);
  EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, before + 1);
}

TEST_F(UnitWindowsTest, TheMainWindowsFocusIsOnRecordFromTheStart) {
  rig.Unit.StartIdle();
  ASSERT_NE(rig.Main().focusWidget(), nullptr);
  EXPECT_EQ(rig.Main().focusWidget()->objectName(), "cmdRecord");
}

// The other ways to a window.

TEST_F(UnitWindowsTest, TheMixerButtonOpensAndCloses) {
  rig.Unit.StartIdle();
  auto& button = rig.Find<QPushButton>("cmdMixer");
  for (int round = 0; round < 2; ++round) {
    button.click();
    rig.Run(200ms);
    ASSERT_TRUE(rig.Shows(WindowName::Mixer));
    EXPECT_EQ(Find<QLabel>(rig.Window(WindowName::Mixer), "Label_1").text(), "Microphone");
    button.click();
    rig.Run(200ms);
    EXPECT_FALSE(rig.Shows(WindowName::Mixer));
    EXPECT_EQ(rig.Mixer.Device, "(closed)");
  }
  button.click();
  rig.Window(WindowName::Mixer).close();
  button.click();
  rig.Run(200ms);
  EXPECT_TRUE(rig.Shows(WindowName::Mixer)) << "one that was closed by itself needs one press";
  EXPECT_NE(rig.Mixer.Device, "(closed)");
}

TEST_F(UnitWindowsTest, AnEmptyPresetButtonOpensThePresets) {
  rig.Unit.StartIdle();
  rig.Find<QPushButton>("cmdPresetStation_4").click();
  ASSERT_TRUE(rig.Shows(WindowName::Presets));
  auto& list = Find<QComboBox>(rig.Window(WindowName::Presets), "cboPreset_4");
  const int harbour = list.findText("Harbour", Qt::MatchContains);
  ASSERT_GE(harbour, 0);
  ChooseRow(list, harbour);
  Press(rig.Window(WindowName::Presets), "cmdSave");
  rig.Run(200ms);
  EXPECT_FALSE(rig.Desktop.IsLoaded(WindowName::Presets));
  EXPECT_THAT(rig.Unit.Setting("Preset5"), HasSubstr("Harbour"));
  EXPECT_THAT(rig.Find<QPushButton>("cmdPresetStation_4").accessibleName().toStdString(),
              HasSubstr("Harbour"));
  rig.Find<QPushButton>("cmdPresetStation_4").click();
  EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, 44);
  EXPECT_FALSE(rig.Shows(WindowName::Presets));
}

TEST_F(UnitWindowsTest, ThePresetsAndTheConfigurationOpenFromTheMenu) {
  rig.Unit.StartIdle();
  for (const auto& [entry, name] :
       {std::pair{"mnuPresets", WindowName::Presets}, std::pair{"mnuPreferences", WindowName::Config}}) {
    SCOPED_TRACE(entry);
    for (int round = 0; round < 2; ++round) {
      rig.Choose(entry);
      rig.Run(200ms);
      ASSERT_TRUE(rig.Shows(name));
      rig.Choose(entry);
      ASSERT_TRUE(rig.Shows(name)) << "it comes to the front";
      Press(rig.Window(name), "cmdCancel");
      rig.Run(200ms);
      EXPECT_FALSE(rig.Desktop.IsLoaded(name));
    }
  }
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
}

TEST_F(UnitWindowsTest, ASavedConfigurationTakesEffect) {
  rig.Unit.StartIdle();
  rig.Choose("mnuPreferences");
  auto& format = Find<QComboBox>(rig.Window(WindowName::Config), "cboFileFormat");
  ChooseRow(format, format.findText("OGG"));
  Press(rig.Window(WindowName::Config), "cmdSave");
  rig.Run(200ms);
  EXPECT_FALSE(rig.Desktop.IsLoaded(WindowName::Config));
  EXPECT_EQ(rig.Unit.Setting("FileFormat"), "OGG");
  EXPECT_EQ(rig.Unit->State().Settings.FileFormat, "OGG");
}

TEST_F(UnitWindowsTest, AnInputThatCannotBeHadTwiceIsTestedThroughTheRecorderWhichLosesNothing) {
  rig.Inputs.Sharing = false;
  rig.Unit.StartIdle();
  rig.Choose("mnuPreferences");
  rig.Run(1s);
  QWidget& window = rig.Window(WindowName::Config);
  EXPECT_TRUE(Find<QLabel>(window, "lblInputLevel").text().endsWith("dB") ||
              Find<QLabel>(window, "lblInputLevel").text().startsWith("Too loud"));
  EXPECT_THAT(rig.Inputs.Opened, IsEmpty());
  Press(window, "cmdTest");
  rig.Run(6s);
  ASSERT_EQ(rig.Shell.Opened.size(), 1U);
  EXPECT_EQ(Find<QLabel>(window, "lblTest").text(), "Recorded; your player plays it.");
  EXPECT_EQ(rig.Unit.Sound.TimesOpened(), 1);
  EXPECT_EQ(rig.Unit.Sound.FramesDropped(), 0);
  Press(window, "cmdCancel");
  rig.Run(200ms);
  EXPECT_FALSE(rig.Unit.Files.Exists(rig.Shell.Opened.front()));
}

TEST_F(UnitWindowsTest, WhileSomethingIsRecordedTheConfigurationTestsNoInput) {
  rig.Unit.StartIdle();
  rig.Unit->cmdRecord();
  rig.Choose("mnuPreferences");
  rig.Run(1s);
  EXPECT_EQ(rig.Inputs.OpenId, "radio") << "its level is shown all the same";
  EXPECT_FALSE(Find<QWidget>(rig.Window(WindowName::Config), "cmdTest").isEnabled());
}

TEST_F(UnitWindowsTest, TheRadioIdIsShownUntilItIsAnswered) {
  rig.Unit.Radio.Identifier = "AB<2&CD3";
  rig.Unit.StartIdle();
  rig.Choose("mnuRadioID");
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "the radio has not been asked yet";
  rig.Run(100ms);
  QWidget* window = QApplication::activeModalWidget();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->objectName(), "frmRadioID");
  ASSERT_NE(window->windowHandle(), nullptr);
  EXPECT_EQ(window->windowHandle()->transientParent(), rig.Main().windowHandle())
      << "the desktop keeps it above";
  EXPECT_EQ(Find<QLabel>(*window, "lblID").text(), "AB<2&CD3");
  Press(*window, "cmdOK");
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

// Texts for the lists.

TEST_F(UnitWindowsTest, ADoubleClickOnTheArtistAsksForTheList) {
  rig.Unit.StartIdle();
  rig.Unit.NextSong("Wind & Water", "Salt && Sand");
  QWidget& artist = rig.Find<QWidget>("lblArtist");
  EXPECT_EQ(
      DoubleClickAndAnswer(artist, "cmdResult_2"),
      "Do you want to add the Artist \"Wind & Water\" to the Grab list (always record) or the Kill list "
      "(never record)?");
  EXPECT_EQ(ListFile(), "2Wind & Water\n");
  EXPECT_TRUE(rig.Unit->Parts().Restrictions.IsInKillList("Wind & Water", ""));
  EXPECT_THAT(DoubleClickAndAnswer(artist, "cmdResult_0").toStdString(), HasSubstr("\"Wind & Water\""));
  EXPECT_EQ(ListFile(), "2Wind & Water\n") << "a cancel adds nothing";
}

TEST_F(UnitWindowsTest, EnterOnTheSongAsksForTheList) {
  rig.Unit.StartIdle();
  rig.Unit.NextSong("Wind & Water", "Salt & Sand");
  QString question;
  EXPECT_EQ(rig.WithinModal([this] { QTest::keyClick(&rig.Find<QWidget>("lblSong"), Qt::Key_Return); },
                            [&](QWidget& dialog) {
                              question = Find<QLabel>(dialog, "lblQuestion").text();
                              Press(dialog, "cmdResult_1");
                            }),
            "frmGrabKill");
  EXPECT_THAT(question.toStdString(), HasSubstr("the Song \"Salt & Sand\" to"));
  EXPECT_EQ(ListFile(), "1Salt & Sand\n");
}

TEST_F(UnitWindowsTest, NothingIsAskedWhereNothingPlays) {
  rig.Unit.StartIdle();
  rig.Unit.NextSong("", "");
  for (const char* label : {"lblArtist", "lblSong"}) {
    EXPECT_EQ(rig.WithinModal([&] { QTest::mouseDClick(&rig.Find<QWidget>(label), Qt::LeftButton); },
                              [](QWidget& window) { window.close(); }),
              "");
  }
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
}

TEST_F(UnitWindowsTest, TheHistoryOfAChannelIsThePageOfTheReportWithItsSongs) {
  rig.Unit.StartIdle();
  rig.Unit.Rules->ChannelMenu().ShowHistory(45);
  rig.Run(1s);
  QWidget& report = rig.Window(WindowName::Report);
  EXPECT_TRUE(report.isVisible());
  EXPECT_TRUE(rig.Record().chkReport);
  auto& channel = Find<QComboBox>(report, "cboPlayedChannel");
  EXPECT_TRUE(channel.isVisible());
  EXPECT_TRUE(channel.currentText().startsWith(QStringLiteral("45 - ")))
      << channel.currentText().toStdString();
  EXPECT_EQ(Find<QComboBox>(report, "cboPlayedAs").currentText(), QStringLiteral("Songs"));
  // Once more for another channel, with the report open.
  rig.Unit.Rules->ChannelMenu().ShowHistory(46);
  rig.Run(1s);
  EXPECT_TRUE(channel.currentText().startsWith(QStringLiteral("46 - ")));
}

TEST_F(UnitWindowsTest, TheSchedulerWarnsOfAMissingBitRateOnlyWhileMP3IsRecorded) {
  rig.Unit.Set("ScheduleEnabled1", "1");
  rig.Unit.Set("ScheduleChannel1", "44");
  rig.Unit.Set("ScheduleStartDate1", "Jan 15, 1967 3:00 AM");
  rig.Unit.Set("FileFormat", "WAV");
  rig.Unit.StartIdle();
  PressBox(kSwitches[2]);
  const auto& warning = Find<QLabel>(rig.Window(WindowName::Schedule), "lblWarning_0");
  EXPECT_EQ(warning.text(), QString());
  ASSERT_TRUE(rig.Unit->Parts().Settings.Set("FileFormat", "MP3").Done());
  rig.Run(1s);
  EXPECT_EQ(warning.text(), QStringLiteral("It has no bit rate: 128 Stereo is used."));
}

TEST_F(UnitWindowsTest, ADoubleClickInTheChannelsAsksForTheList) {
  rig.Unit.StartIdle();
  rig.Unit.NextSong("Wind & Water", "Salt & Sand");
  PressBox(kSwitches[0]);
  auto& grid = Find<QTableView>(rig.Window(WindowName::Channels), "grdChannels");
  const int row = rig.Unit.Rules->ChannelsWindow().Grid().FindRow(rig.Unit->State().Radio.ChannelNumber) - 1;
  ASSERT_GE(row, 0);
  const std::int16_t before = rig.Unit->State().Radio.ChannelNumber;
  struct Cell {
    int Column;
    const char* Question;
    const char* Line;
  };
  for (const Cell& cell :
       {Cell{radio::ChannelGrid::Artist, "the Artist \"Wind & Water\" to", "0Wind & Water\n"},
        Cell{radio::ChannelGrid::Song, "the Song \"Salt & Sand\" to", "1Salt & Sand\n"}}) {
    const QModelIndex index = grid.model()->index(row, cell.Column);
    grid.scrollTo(index);
    QString question;
    EXPECT_EQ(
        rig.WithinModal(
            [&] { QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(index).center()); },
            [&](QWidget& dialog) {
              question = Find<QLabel>(dialog, "lblQuestion").text();
              Press(dialog, "cmdResult_1");
            }),
        "frmGrabKill");
    EXPECT_THAT(question.toStdString(), HasSubstr(cell.Question));
    EXPECT_THAT(ListFile(), HasSubstr(cell.Line));
  }
  rig.Run(1s);
  EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, before);
}

TEST_F(UnitWindowsTest, AnAdditionReachesTheEditorThatIsOpen) {
  rig.Unit.StartIdle();
  rig.Unit.NextSong("Wind & Water", "Salt & Sand");
  PressBox(kSwitches[3]);
  DoubleClickAndAnswer(rig.Find<QWidget>("lblArtist"), "cmdResult_2");
  ChangeTheLists();
  Press(rig.Window(WindowName::RestrictList), "cmdSave");
  EXPECT_THAT(ListFile(), HasSubstr("2Polka\n"));
  EXPECT_THAT(ListFile(), HasSubstr("2Wind & Water\n")) << "the editor's save has undone the addition";
}

// Keys of the main window, pressed in others.

TEST_F(UnitWindowsTest, TheKeysOfTheMainWindowWorkInTheOthers) {
  rig.Unit.Set("Preset2", "51 - Station 51");
  rig.Unit.Set("Preset3", "52 - Station 52");
  rig.Unit.StartIdle();
  const std::pair<const Switch&, const char*> forwarding[] = {
      {kSwitches[0], "grdChannels"}, {kSwitches[1], "lstLog"}, {kSwitches[4], "cmdPresetStation_11"}};
  for (const auto& [each, control] : forwarding) {
    SCOPED_TRACE(each.Window);
    PressBox(each);
    rig.Run(200ms);
    auto& focus = Find<QWidget>(rig.Window(each.Name), control);
    QTest::keyClick(&focus, Qt::Key_F2, Qt::ControlModifier);
    rig.Run(2s);
    EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, 51);
    QTest::keyClick(&focus, Qt::Key_R, Qt::ControlModifier);
    rig.Run(10ms);
    EXPECT_TRUE(rig.Unit->State().Recording.RecordRequested);
    QTest::keyClick(&focus, Qt::Key_S, Qt::ControlModifier);
    rig.Run(10ms);
    EXPECT_FALSE(rig.Unit->State().Recording.RecordRequested);
    QTest::keyClick(&focus, Qt::Key_F3, Qt::ControlModifier);
    rig.Run(2s);
    EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, 52);
    QTest::keyClick(&focus, Qt::Key_T, Qt::ControlModifier);
    ExpectOpen(kSwitches[2], true);
    QTest::keyClick(&focus, Qt::Key_T, Qt::ControlModifier);
    ExpectOpen(kSwitches[2], false);
  }
}

TEST_F(UnitWindowsTest, AWindowCanBeClosedByItsOwnKeyOfTheMainWindow) {
  rig.Unit.StartIdle();
  const std::pair<const Switch&, Qt::Key> keys[] = {
      {kSwitches[0], Qt::Key_H}, {kSwitches[1], Qt::Key_L}, {kSwitches[4], Qt::Key_W}};
  for (const auto& [each, key] : keys) {
    SCOPED_TRACE(each.Window);
    PressBox(each);
    QTest::keyClick(&rig.Window(each.Name), key, Qt::ControlModifier);
    ExpectOpen(each, false);
  }
}

TEST_F(UnitWindowsTest, TheShelfOpensByItsEntryAndByItsKeyFromAnotherWindow) {
  rig.Unit.StartIdle();
  rig.Choose("mnuShelf");
  rig.Run(200ms);
  ASSERT_TRUE(rig.Shows(WindowName::Shelf));
  rig.Window(WindowName::Shelf).close();
  EXPECT_FALSE(rig.Desktop.IsLoaded(WindowName::Shelf));
  PressBox(kSwitches[1]);
  rig.Run(200ms);
  QTest::keyClick(&rig.Window(WindowName::Log), Qt::Key_E, Qt::ControlModifier);
  rig.Run(200ms);
  EXPECT_TRUE(rig.Shows(WindowName::Shelf));
}

// Everything is there.

TEST_F(UnitWindowsTest, EveryEntryOpensSomethingThatIsThere) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Answer = MessageAnswer::No;
  for (QAction* entry : rig.Main().findChildren<QAction*>()) {
    const std::string name = entry->objectName().toStdString();
    if (entry->menu() != nullptr || !entry->isEnabled() || name.empty() || name == "mnuExit") continue;
    SCOPED_TRACE(name);
    rig.WithinModal([entry] { entry->trigger(); }, [](QWidget& window) { window.close(); });
  }
  rig.Run(1s);
  for (const platform::Message& message : rig.Unit.Dialogs.Shown)
    EXPECT_THAT(message.Text, Not(HasSubstr("later")));
  for (const presenters::WindowRow& row : presenters::WindowTable()) {
    const recorder::WindowName name = row.Name;
    if (name != WindowName::Mixer) {
      EXPECT_TRUE(rig.Shows(name)) << static_cast<int>(name);
    }
  }
}

// The first run.

TEST_F(UnitWindowsTest, TheFirstRunShowsTheConfigurationUntilItIsSaved) {
  rig.ForgetTheLastRun();
  bool whileLoading = false;
  bool cancel = true;
  const QString name = rig.WithinModal([this] { rig.Unit.Start(); },
                                       [&](QWidget& window) {
                                         whileLoading = rig.Unit->State().Run.FormLoading;
                                         cancel = Find<QPushButton>(window, "cmdCancel").isVisible();
                                         QTest::keyClick(&window, Qt::Key_Escape);
                                         EXPECT_TRUE(window.isVisible()) << "it has to be saved";
                                         Press(window, "cmdSave");
                                       });
  EXPECT_EQ(name, "frmConfig");
  EXPECT_TRUE(whileLoading);
  EXPECT_FALSE(cancel);
  EXPECT_FALSE(rig.Desktop.IsLoaded(WindowName::Config));
  EXPECT_TRUE(rig.Main().isEnabled());
  rig.Choose("mnuPreferences");
  EXPECT_TRUE(Find<QPushButton>(rig.Window(WindowName::Config), "cmdCancel").isVisible());
}

// The end.

TEST_F(UnitWindowsTest, AnEndWithEveryWindowOpenAsksNothingAndSavesNothing) {
  rig.Unit.StartIdle();
  const std::string folder = rig.Unit.Setting("FileDir");
  OpenAll();
  ChangeTheSchedule();
  ChangeTheLists();
  ChangeTheConfiguration();
  rig.Unit.Dialogs.Answer = MessageAnswer::Cancel;
  rig.Unit->Close();
  ExpectEnd();
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
  EXPECT_FALSE(IsStored("ScheduleMatchGrab3"));
  EXPECT_EQ(ListFile(), "");
  EXPECT_EQ(rig.Unit.Setting("FileDir"), folder);
  for (const char* key : {"ChannelListing", "RecordLog", "KestruneNow", "RecordingReport"})
    EXPECT_EQ(rig.Unit.Setting(key), "1");
  for (const char* key : {"ChannelTop", "LogTop", "ScheduleTop", "RestrictListTop", "BigFormTop", "PresetTop",
                          "ConfigTop", "MixerTop"})
    EXPECT_TRUE(IsStored(key)) << key;
}

TEST_F(UnitWindowsTest, AnEndWithinTheRadioId) {
  rig.Unit.StartIdle();
  rig.Choose("mnuRadioID");
  rig.Run(100ms);
  ASSERT_NE(QApplication::activeModalWidget(), nullptr);
  rig.Unit->Close();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  ExpectEnd();
}

TEST_F(UnitWindowsTest, AnEndWhileTheRadioIsAskedForItsIdShowsNoWindow) {
  rig.Unit.StartIdle();
  rig.Choose("mnuRadioID");
  rig.Unit->Close();
  rig.Run(100ms);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  ExpectEnd();
}

TEST_F(UnitWindowsTest, AnEndWithinTheQuestionForTheListAddsNothing) {
  rig.Unit.StartIdle();
  rig.Unit.NextSong("Wind & Water", "Salt & Sand");
  EXPECT_EQ(CloseWithin([this] { QTest::mouseDClick(&rig.Find<QWidget>("lblArtist"), Qt::LeftButton); }),
            "frmGrabKill");
  EXPECT_EQ(ListFile(), "");
}

TEST_F(UnitWindowsTest, AnEndWithinTheDatePicker) {
  rig.Unit.StartIdle();
  PressBox(kSwitches[2]);
  EXPECT_EQ(CloseWithin([this] { Press(rig.Window(WindowName::Schedule), "cmdStartDate_0"); }),
            "frmDateSelect");
  EXPECT_FALSE(IsStored("ScheduleStartDate1"));
}

TEST_F(UnitWindowsTest, AnEndWithinWhatTheConfigurationHasOpened) {
  for (const char* button : {"cmdBrowse", "cmdFilenameFormat", "cmdChangeFormatSpecs"}) {
    SCOPED_TRACE(button);
    UnitWindowsRig own;
    own.Unit.StartIdle();
    own.Choose("mnuPreferences");
    Press(own.Window(WindowName::Config), button);
    ASSERT_NE(QApplication::activeModalWidget(), nullptr);
    own.Unit->Close();
    QCoreApplication::processEvents();
    for (const QWidget* window : QApplication::topLevelWidgets())
      EXPECT_FALSE(window->isVisible()) << window->objectName().toStdString();
    EXPECT_TRUE(own.Unit.Loop.RunUntil([&] { return own.Unit.Closed; }, 20s));
  }
}

TEST_F(UnitWindowsTest, AnEndWithinTheFirstConfiguration) {
  rig.ForgetTheLastRun();
  EXPECT_EQ(CloseWithin([this] { rig.Unit.Start(StartOutcome::Closed); }), "frmConfig");
  EXPECT_FALSE(rig.Unit.Logged("Using file format"));
}

TEST_F(UnitWindowsTest, AnEndAtAnyMomentOfTheLoad) {
  for (const char* key : {"ChannelListing", "RecordLog", "KestruneNow", "RecordingReport"})
    rig.Unit.Set(key, "1");
  for (auto moment = 0ms; moment < 8s; moment += 431ms) {
    SCOPED_TRACE(moment.count());
    UnitWindowsRig own;
    own.Unit.Loop.AtHardware(moment, [&] { own.Unit->Wishes().Close(); });
    static_cast<void>(own.Unit->Load());
    EXPECT_TRUE(own.Unit.Loop.RunUntil([&] { return own.Unit.Closed; }, 60s));
    for (const QWidget* window : QApplication::topLevelWidgets())
      EXPECT_FALSE(window->isVisible()) << window->objectName().toStdString();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  }
}

}  // namespace
}  // namespace kestrune::test
