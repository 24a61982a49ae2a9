#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "base/Ignored.h"
#include "presenters/ConfigurationRig.h"
#include "support/FakeInputListener.h"
#include "support/RecordingShell.h"
#include "support/Repetitions.h"
#include "support/SimulatedEventLoop.h"
#include "support/TrialAudio.h"
#include "windows/Controls.h"
#include "windows/frmConfig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::IsEmpty;
using ::testing::Not;

class FrmConfigTest : public ::testing::Test {
 protected:
  FrmConfigTest() {
    rig_.Settings.FileDir = "/music/";
    base::Ignored(rig_.Files.CreateFolder("/tmp"));
    window_.FocusMainWindow = [this] { ++focused_; };
  }

  [[nodiscard]] QDialog* Opened() {
    const QList<QDialog*> dialogs = window_.findChildren<QDialog*>(Qt::FindDirectChildrenOnly);
    return dialogs.isEmpty() ? nullptr : dialogs.constFirst();
  }
  /// The open input brings a sound that is this loud.
  void Play(std::chrono::milliseconds time, std::int16_t amplitude) {
    for (auto left = time; left > 0ms; left -= 100ms) {
      inputs_.Waiting.assign(1600, amplitude);
      loop_.Run(100ms);
      window_.Refresh();
    }
  }
  /// Lets closed windows be destroyed.
  static void Settle() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }
  [[nodiscard]] bool PlaceSaved() const {
    return rig_.Store.Stored("Lorimel", "Kestrune", "ConfigTop") != "(absent)" &&
           rig_.Store.Stored("Lorimel", "Kestrune", "ConfigLeft") != "(absent)";
  }

  ConfigurationRig rig_;
  SimulatedEventLoop loop_;
  FakeInputListener inputs_;
  RecordingShell shell_;
  TrialAudio audio_{rig_.Files};
  presenters::InputTrial trial_{
      {.Loop = loop_,
       .Listener = inputs_,
       .Captured = [] { return std::string(); },
       .Configured = [] { return std::string(); },
       .Recording = [this] { return recording_; },
       .Format = [] { return platform::WavFormat{.Frequency = 8000, .Channels = 2, .Bits = 16}; },
       .Extension = [] { return std::string("wav"); },
       .Test = {.Audio = audio_, .Files = rig_.Files, .Environment = rig_.Environment, .Shell = shell_}}};
  bool recording_ = false;
  windows::frmConfig window_{rig_.Window, trial_};
  int focused_ = 0;
};

TEST_F(FrmConfigTest, EveryControlHasItsTextsAndTips) {
  struct Row {
    const char* Name;
    const char* Caption;
    const char* Tip;
  };
  const std::vector<Row> rows{
      {"cboMinLength", "", "Do not record any songs shorter than this"},
      {"cboMaxLength", "", "Do not record any songs longer than this"},
      {"cboSongDelay", "",
       "Wait this many milliseconds after song changes before stopping recording (recommended=600)"},
      {"lblMS", "ms   (1000 ms = 1 second)", ""},
      {"cboCutPlacement", "",
       "Cut songs when the delay after their text is over, or where the new song is heard to begin"},
      {"lblCutExplanation",
       "By listening, Kestrune finds where each song begins, and learns each station's delay.", ""},
      {"txtFileDir", "", ""},
      {"cmdBrowse", "&Browse", "Click to select folder files are saved into"},
      {"txtFilenameFormat", "", "Format to use when writing filenames of recorded files"},
      {"cmdFilenameFormat", "&Select", "Click for preset filename formats"},
      {"lblFileExplanation",
       "Artist: %a   Song: %s   Channel: %c   Station: %t   Genre: %g   Datestamp: %d  Counter: %n", ""},
      {"cboFileFormat", "", "Select raw, uncompressed WAV files or encoded MP3 files"},
      {"lblFormatSpecifications", "SetFormatMP3 44100 2 160", ""},
      {"cmdChangeFormatSpecs", "Change Format Specifications", ""},
      {"cboDevice", "", "Select device to record XM PCR audio from (usually your sound card)"},
      {"cmdTest", "&Test Recording",
       "Record five seconds of this device, and play them; the file is gone when this window closes"},
      {"chkAGCEnabled", "Enabled", "Click to enable or disable the automatic gain control"},
      {"txtAGCLowLevel", "", "Lowest allowable value, in db. Range from 0 to -92 db. Default is -40 db."},
      {"udAGCLowLevel", "", "Lowest allowable value, in db. Range from 0 to -92 db. Default is -40 db."},
      {"txtAGCHighLevel", "", "Maximum allowable value, in db. Range from 0 to -92 db. Default is -10 db."},
      {"udAGCHighLevel", "", "Maximum allowable value, in db. Range from 0 to -92 db. Default is -10 db."},
      {"txtAGCAttackTime", "", "The amount of time in ms to change levels 20 db (from 50 to 200 ms)"},
      {"udAGCAttackTime", "", "The amount of time in ms to change levels 20 db (from 50 to 200 ms)"},
      {"chkDuplicates", "Save duplicate files",
       "When checked, duplicate songs will be renamed so as to avoid conflict. When unchecked, duplicate "
       "songs will not be saved. "},
      {"chkAutostart", "Start with the desktop",
       "When checked, the desktop starts Kestrune whenever you log in."},
      {"chkTaskBarMinimized", "Show when minimized",
       "When checked, Kestrune will show in the taskbar when minimized. When unchecked, Kestrune will show "
       "only as an icon in the task tray (near the clock)."},
      {"chkWatch", "Report and repair failures",
       "When checked, Kestrune reports a radio, a sound or a disk that fails, and goes on by itself as soon "
       "as it "
       "can."},
      {"txtShelfFolder", "",
       "Folder in which songs that were not kept lie for a while; on the disk of the recordings, and empty "
       "at "
       "first"},
      {"cmdBrowseShelf", "B&rowse", "Click to select the folder of the shelf"},
      {"txtShelfSongs", "",
       "At most this many songs lie there, from 0 to 1000. With 0 songs there is no shelf."},
      {"udShelfSongs", "",
       "At most this many songs lie there, from 0 to 1000. With 0 songs there is no shelf."},
      {"txtShelfMegabytes", "", "The songs there take at most this many megabytes, from 1 to 1000000"},
      {"udShelfMegabytes", "", "The songs there take at most this many megabytes, from 1 to 1000000"},
      {"chkHints", "Show songs of the Grab lists on other channels",
       "When checked, a song of the Grab lists that begins on another channel is shown in the main window "
       "and "
       "the tray."},
      {"chkFollowHints", "Tune to them while idle",
       "When checked, Kestrune tunes to such a song while nothing is recorded, keeps it, and comes back."},
      {"chkNotifyEvents", "Events",
       "When checked, a notification of the desktop tells when a scheduled event begins and ends, while no "
       "window of Kestrune is in front."},
      {"chkNotifyProblems", "Problems",
       "When checked, a notification of the desktop tells of a radio, a sound or a disk that fails, while no "
       "window of Kestrune is in front."},
      {"chkNotifyHints", "Hints",
       "When checked, a notification of the desktop offers to tune to a song of the Grab lists, while no "
       "window of Kestrune is in front."},
      {"chkNotifySongs", "Songs",
       "When checked, a notification of the desktop tells of each song that is kept, while no window of "
       "Kestrune is in front."},
      {"cmdDefault", "&Default Settings", "Return all values to default settings"},
      {"cmdSave", "&Save", "Save changes and exit"},
      {"cmdCancel", "&Cancel", "Cancel without saving changes"},
  };
  window_.ShowModeless();
  EXPECT_EQ(window_.windowTitle(), "Kestrune Configuration");
  for (const Row& row : rows) {
    auto& control = Find<QWidget>(window_, row.Name);
    EXPECT_EQ(control.toolTip(), row.Tip) << row.Name;
    if (*row.Caption != '\0') {
      EXPECT_EQ(control.property("text").toString(), row.Caption) << row.Name;
    }
  }
  for (const char* caption : {"Minimum Song Length:",
                              "Maximum Song Length:",
                              "Song Change Delay:",
                              "Songs Are Cut:",
                              "File Save Folder:",
                              "Filename Format:",
                              "File Format:",
                              "Format Specifications:",
                              "Recording Device:",
                              "Level:",
                              "Test:",
                              "Automatic Gain Control:",
                              "Low Level:",
                              "High Level:",
                              "AttackTime:",
                              "Duplicate Files:",
                              "Start:",
                              "Show in Taskbar:",
                              "Watch:",
                              "Shelf Folder:",
                              "Shelf Holds:",
                              "Hints:",
                              "Follow:",
                              "Notifications:"}) {
    EXPECT_TRUE(HasLabel(window_, caption)) << caption;
  }
}

TEST_F(FrmConfigTest, TheListsShowTheRulesRows) {
  window_.ShowModeless();
  const presenters::ConfigurationControls& shown = rig_.Window.Controls();
  const std::vector<std::pair<const char*, const presenters::ChoiceList*>> lists{
      {"cboMinLength", &shown.cboMinLength}, {"cboMaxLength", &shown.cboMaxLength},
      {"cboSongDelay", &shown.cboSongDelay}, {"cboFileFormat", &shown.cboFileFormat},
      {"cboDevice", &shown.cboDevice},       {"cboCutPlacement", &shown.cboCutPlacement},
  };
  for (const auto& [name, list] : lists) {
    const auto& box = Find<QComboBox>(window_, name);
    ASSERT_EQ(static_cast<std::size_t>(box.count()), list->Rows.size()) << name;
    EXPECT_GT(box.count(), 1) << name;
    for (int row = 0; row < box.count(); ++row) {
      EXPECT_EQ(box.itemText(row).toStdString(), list->Rows[static_cast<std::size_t>(row)].Text);
    }
    EXPECT_EQ(box.currentIndex(), list->Row) << name;
    EXPECT_FALSE(box.isEditable()) << name;
  }
}

TEST_F(FrmConfigTest, WhatTheUserDoesIsSaved) {
  window_.ShowModeless();
  ChooseRow(Find<QComboBox>(window_, "cboMinLength"), 1);
  ChooseRow(Find<QComboBox>(window_, "cboMaxLength"), 30);
  ChooseRow(Find<QComboBox>(window_, "cboSongDelay"), 7);
  ChooseRow(Find<QComboBox>(window_, "cboCutPlacement"), 1);
  ChooseRow(Find<QComboBox>(window_, "cboDevice"), 1);
  auto& folder = Find<QLineEdit>(window_, "txtFileDir");
  folder.selectAll();
  QTest::keyClicks(&folder, "/data/Lieder");
  auto& format = Find<QLineEdit>(window_, "txtFilenameFormat");
  format.selectAll();
  QTest::keyClicks(&format, "%a/%s");
  Press(window_, "chkAGCEnabled");
  auto& low = Find<QLineEdit>(window_, "txtAGCLowLevel");
  QTest::keyClick(&low, Qt::Key_Down);
  Find<QWidget>(window_, "udAGCHighLevel").findChildren<QToolButton*>().constFirst()->click();
  Press(window_, "chkDuplicates");
  Press(window_, "chkTaskBarMinimized");
  Press(window_, "chkAutostart");
  Press(window_, "chkNotifyProblems");
  Press(window_, "chkWatch");
  QTest::keyClicks(&Find<QLineEdit>(window_, "txtShelfFolder"), "/data/Shelf");
  QTest::keyClick(&Find<QLineEdit>(window_, "txtShelfSongs"), Qt::Key_Up);
  Find<QWidget>(window_, "udShelfMegabytes").findChildren<QToolButton*>().constFirst()->click();
  Press(window_, "chkHints");
  Press(window_, "chkFollowHints");
  Press(window_, "chkNotifyHints");
  Press(window_, "chkNotifyEvents");
  Press(window_, "chkNotifySongs");
  EXPECT_EQ(Find<QLineEdit>(window_, "txtShelfSongs").text(), "21");
  EXPECT_EQ(Find<QLineEdit>(window_, "txtShelfMegabytes").text(), "550");
  EXPECT_TRUE(Find<QCheckBox>(window_, "chkFollowHints").isChecked());
  Press(window_, "cmdSave");
  const config::Settings& saved = rig_.Settings;
  EXPECT_EQ(saved.MinSongLength, 2);
  EXPECT_EQ(saved.MaxSongLength, 900);
  EXPECT_EQ(saved.SongDelay, 700);
  EXPECT_EQ(saved.CutPlacement, config::CutPlacement::Listen);
  EXPECT_EQ(saved.InputDevice, 3);
  EXPECT_EQ(saved.FileDir, "/data/Lieder/");
  EXPECT_EQ(saved.FilenameFormat, "%a\\%s");
  EXPECT_TRUE(saved.AGCEnabled);
  EXPECT_EQ(saved.AGCLowLevel, -11);
  EXPECT_EQ(saved.AGCHighLevel, -39);
  EXPECT_FALSE(saved.SaveDuplicates);
  EXPECT_FALSE(saved.TaskBarMinimized);
  EXPECT_TRUE(rig_.Autostart.State.Starts);
  EXPECT_FALSE(saved.Watch);
  EXPECT_EQ(saved.ShelfFolder, "/data/Shelf/");
  EXPECT_EQ(saved.ShelfSongs, 21);
  EXPECT_EQ(saved.ShelfMegabytes, 550);
  EXPECT_TRUE(saved.Hints);
  EXPECT_TRUE(saved.FollowHints);
  EXPECT_FALSE(saved.NotifyProblems);
  EXPECT_FALSE(saved.NotifyHints);
  EXPECT_FALSE(saved.NotifyEvents);
  EXPECT_TRUE(saved.NotifySongs);
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(focused_, 1);
  EXPECT_TRUE(PlaceSaved());
}

TEST_F(FrmConfigTest, OpensWhereItWasClosed) {
  window_.ShowModeless();
  window_.move(120, 80);
  Press(window_, "cmdCancel");
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "ConfigTop"), "1200");
  EXPECT_EQ(rig_.Store.Stored("Lorimel", "Kestrune", "ConfigLeft"), "1800");
  window_.move(5, 5);
  window_.ShowModeless();
  EXPECT_EQ(window_.pos(), QPoint(120, 80));
}

TEST_F(FrmConfigTest, AMaximisedWindowsPlaceIsNotSaved) {
  window_.ShowModeless();
  window_.showMaximized();
  Press(window_, "cmdCancel");
  EXPECT_FALSE(PlaceSaved());
}

TEST_F(FrmConfigTest, CancelAndEscapeCloseWithoutAQuestion) {
  window_.ShowModeless();
  Press(window_, "chkDuplicates");
  Press(window_, "cmdCancel");
  EXPECT_FALSE(window_.isVisible());
  window_.ShowModeless();
  Press(window_, "chkDuplicates");
  QTest::keyClick(&window_, Qt::Key_Escape);
  EXPECT_FALSE(window_.isVisible());
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
  EXPECT_TRUE(rig_.Settings.SaveDuplicates);
}

TEST_F(FrmConfigTest, TheCloseBoxAsksAfterAChange) {
  window_.ShowModeless();
  Press(window_, "chkDuplicates");
  rig_.Dialogs.Answer = platform::MessageAnswer::Cancel;
  EXPECT_FALSE(ClickCloseBox(window_));
  EXPECT_TRUE(window_.isVisible());
  EXPECT_TRUE(PlaceSaved()) << "the place is saved before the question";
  rig_.Dialogs.Answer = platform::MessageAnswer::Yes;
  EXPECT_TRUE(ClickCloseBox(window_));
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(rig_.Dialogs.Shown.size(), 2U);
  EXPECT_FALSE(rig_.Settings.SaveDuplicates);
  EXPECT_EQ(focused_, 1);
}

TEST_F(FrmConfigTest, TheCloseBoxOfAnUnchangedWindowCloses) {
  window_.ShowModeless();
  EXPECT_TRUE(ClickCloseBox(window_));
  EXPECT_FALSE(window_.isVisible());
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
}

TEST_F(FrmConfigTest, ACloseByTheProgramAsksNothingAndTakesOpenedWindowsAlong) {
  window_.ShowModeless();
  Press(window_, "chkDuplicates");
  Press(window_, "cmdChangeFormatSpecs");
  ASSERT_NE(Opened(), nullptr);
  window_.close();
  Settle();
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(Opened(), nullptr);
  EXPECT_THAT(rig_.Dialogs.Shown, IsEmpty());
  EXPECT_TRUE(PlaceSaved());
}

TEST_F(FrmConfigTest, ARefusedLengthKeepsItOpen) {
  window_.ShowModeless();
  ChooseRow(Find<QComboBox>(window_, "cboMinLength"), 35);
  ChooseRow(Find<QComboBox>(window_, "cboMaxLength"), 4);
  Press(window_, "cmdSave");
  EXPECT_TRUE(window_.isVisible());
  EXPECT_EQ(rig_.Dialogs.Shown.size(), 1U);
  EXPECT_EQ(focused_, 0);
}

TEST_F(FrmConfigTest, AGainTextThatIsNotANumberGetsTheFocus) {
  window_.ShowModeless();
  auto& attack = Find<QLineEdit>(window_, "txtAGCAttackTime");
  attack.selectAll();
  QTest::keyClicks(&attack, "soon");
  Press(window_, "cmdSave");
  EXPECT_TRUE(window_.isVisible());
  EXPECT_EQ(window_.focusWidget(), &attack);
  EXPECT_EQ(attack.text(), "soon");
}

TEST_F(FrmConfigTest, TheGainBoxHidesSpinsAndLabelsAndNotTheTexts) {
  window_.ShowModeless();
  for (const bool on : {true, false}) {
    Press(window_, "chkAGCEnabled");
    for (const char* name : {"udAGCLowLevel", "udAGCHighLevel", "udAGCAttackTime"}) {
      EXPECT_EQ(Find<QWidget>(window_, name).isVisible(), on) << name;
    }
    for (const char* name : {"txtAGCLowLevel", "txtAGCHighLevel", "txtAGCAttackTime"}) {
      EXPECT_TRUE(Find<QWidget>(window_, name).isVisible()) << name;
      EXPECT_TRUE(Find<QWidget>(window_, name).isEnabled()) << name;
    }
  }
}

TEST_F(FrmConfigTest, NothingMovesWhenTheGainBoxIsClicked) {
  window_.ShowModeless();
  const QPoint before = Find<QWidget>(window_, "txtAGCHighLevel").pos();
  const QSize size = window_.sizeHint();
  Press(window_, "chkAGCEnabled");
  Settle();
  EXPECT_EQ(Find<QWidget>(window_, "txtAGCHighLevel").pos(), before);
  EXPECT_EQ(window_.sizeHint(), size);
}

TEST_F(FrmConfigTest, AFormatIsDescribedOnceChosen) {
  window_.ShowModeless();
  ChooseRow(Find<QComboBox>(window_, "cboFileFormat"), 1);
  EXPECT_EQ(Find<QLabel>(window_, "lblFormatSpecifications").text(), "SetFormatWAV 44100 2 16");
  EXPECT_EQ(rig_.Settings.FileFormat, "WAV");
}

TEST_F(FrmConfigTest, EachFormatOpensItsOptionsModallyAndShowsWhatTheySaved) {
  struct Row {
    const char* Code;
    const char* Window;
    const char* Change;
    const char* Description;
  };
  const std::vector<Row> rows{
      {"MP3", "frmFormatMP3", nullptr, "SetFormatMP3 44100 2 160"},
      {"WAV", "frmFormatWAV", "optBits_1", "SetFormatWAV 44100 2 8"},
      {"VOX", "frmFormatVOX", "optFrequency_0", "SetFormatVOX 8000"},
      {"RAW", "frmFormatRAW", "optCompression_0", "SetFormatRAW 3 44100 2 16"},
      {"G726", "frmFormatG726", "optADPCM_3", "SetFormatG726 44100 5"},
      {"OGG", "frmFormatOgg", "chkQuality", "SetFormatOgg 44100 2 128 0 0 0"},
      {"FLAC", "frmFormatFLAC", "optLevel_8", "SetFormatFLAC 44100 2 8"},
      {"OPUS", "frmFormatOPUS", "optApplication_1", "SetFormatOpus 48000 2 128 1"},
  };
  for (std::size_t i = 0; i < rows.size(); ++i) {
    window_.ShowModeless();
    ChooseRow(Find<QComboBox>(window_, "cboFileFormat"), static_cast<int>(i));
    Press(window_, "cmdChangeFormatSpecs");
    QDialog* opened = Opened();
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->objectName(), rows[i].Window);
    EXPECT_TRUE(opened->isModal());
    EXPECT_TRUE(opened->isVisible());
    if (rows[i].Change != nullptr) Press(*opened, rows[i].Change);
    Press(*opened, "cmdOK");
    Settle();
    EXPECT_EQ(Opened(), nullptr);
    EXPECT_EQ(Find<QLabel>(window_, "lblFormatSpecifications").text(), rows[i].Description);
    Press(window_, "cmdCancel");
  }
}

TEST_F(FrmConfigTest, WithoutAChosenFormatThereAreNoOptions) {
  rig_.Settings.FileFormat = "mp3";
  window_.ShowModeless();
  EXPECT_EQ(Find<QComboBox>(window_, "cboFileFormat").currentIndex(), -1);
  Press(window_, "cmdChangeFormatSpecs");
  EXPECT_EQ(Opened(), nullptr);
}

TEST_F(FrmConfigTest, AReadyMadeFormatComesIntoTheText) {
  window_.ShowModeless();
  Press(window_, "cmdFilenameFormat");
  QDialog* opened = Opened();
  ASSERT_NE(opened, nullptr);
  EXPECT_TRUE(opened->isModal());
  EXPECT_EQ(Find<QAbstractButton>(*opened, "cmdSelect_6").text(), "== Selected ==");
  Press(*opened, "cmdSelect_3");
  Settle();
  EXPECT_EQ(Find<QLineEdit>(window_, "txtFilenameFormat").text(), "%g\\%a - %s");
  EXPECT_FALSE(rig_.Window.Dirty());
}

TEST_F(FrmConfigTest, TheFolderChooserStartsWhereTheTextPoints) {
  const QTemporaryDir folder;
  ASSERT_TRUE(QDir(folder.path()).mkdir("songs"));
  rig_.Settings.FileDir = folder.path().toStdString() + "/songs/";
  window_.ShowModeless();
  Press(window_, "cmdBrowse");
  auto* chooser = qobject_cast<QFileDialog*>(Opened());
  ASSERT_NE(chooser, nullptr);
  EXPECT_EQ(chooser->windowTitle(), "Pre-selecting folder using the folder's string.");
  EXPECT_EQ(chooser->directory().canonicalPath(), QDir(folder.path() + "/songs").canonicalPath());
  EXPECT_TRUE(rig_.Window.Dirty());
  chooser->setDirectory(folder.path());
  chooser->findChild<QLineEdit*>()->setText(folder.path());
  static_cast<QDialog*>(chooser)->accept();
  Settle();
  EXPECT_EQ(Find<QLineEdit>(window_, "txtFileDir").text(), folder.path());
}

TEST_F(FrmConfigTest, TheFolderOfTheShelfHasAChooserOfItsOwn) {
  const QTemporaryDir folder;
  ASSERT_TRUE(QDir(folder.path()).mkdir("shelf"));
  rig_.Settings.FileDir = folder.path().toStdString() + "/";
  window_.ShowModeless();
  Press(window_, "cmdBrowseShelf");
  auto* chooser = qobject_cast<QFileDialog*>(Opened());
  ASSERT_NE(chooser, nullptr);
  EXPECT_EQ(chooser->windowTitle(), "Folder of the shelf");
  EXPECT_EQ(chooser->directory().canonicalPath(), QDir(folder.path()).canonicalPath());
  chooser->findChild<QLineEdit*>()->setText(folder.path() + "/shelf");
  static_cast<QDialog*>(chooser)->accept();
  Settle();
  EXPECT_EQ(Find<QLineEdit>(window_, "txtShelfFolder").text(), folder.path() + "/shelf");
  EXPECT_EQ(Find<QLineEdit>(window_, "txtFileDir").text().toStdString(), rig_.Settings.FileDir);
}

TEST_F(FrmConfigTest, ANumberOfTheShelfThatIsRefusedGetsTheFocus) {
  window_.ShowModeless();
  auto& songs = Find<QLineEdit>(window_, "txtShelfSongs");
  ASSERT_FALSE(songs.isVisible()) << "it is on another page";
  songs.selectAll();
  QTest::keyClicks(&songs, "1001");
  Press(window_, "cmdSave");
  EXPECT_TRUE(window_.isVisible());
  EXPECT_EQ(window_.focusWidget(), &songs);
  EXPECT_EQ(rig_.Dialogs.Shown.size(), 1U);
  EXPECT_TRUE(songs.isVisible());
}

TEST_F(FrmConfigTest, OnASmallScreenARefusedFieldIsScrolledIntoView) {
  window_.ShowModeless();
  window_.resize(400, 300);
  Settle();
  auto& songs = Find<QLineEdit>(window_, "txtShelfSongs");
  songs.setText("");
  QTest::keyClicks(&songs, "1001");
  Press(window_, "cmdSave");
  Settle();
  EXPECT_FALSE(songs.visibleRegion().isEmpty());
}

TEST_F(FrmConfigTest, WithoutHintsThereIsNothingToFollow) {
  rig_.Settings.FollowHints = true;
  window_.ShowModeless();
  auto& follow = Find<QCheckBox>(window_, "chkFollowHints");
  EXPECT_FALSE(follow.isEnabled());
  EXPECT_TRUE(follow.isChecked()) << "the setting stays";
  Press(window_, "chkHints");
  EXPECT_TRUE(follow.isEnabled());
}

TEST_F(FrmConfigTest, WhatIsNotNoticedCannotBeNotified) {
  window_.ShowModeless();
  EXPECT_FALSE(Find<QCheckBox>(window_, "chkNotifyHints").isEnabled());
  EXPECT_TRUE(Find<QCheckBox>(window_, "chkNotifyProblems").isEnabled());
  Press(window_, "chkHints");
  Press(window_, "chkWatch");
  EXPECT_TRUE(Find<QCheckBox>(window_, "chkNotifyHints").isEnabled());
  EXPECT_FALSE(Find<QCheckBox>(window_, "chkNotifyProblems").isEnabled());
  EXPECT_TRUE(Find<QCheckBox>(window_, "chkNotifyProblems").isChecked()) << "the setting stays";
}

TEST_F(FrmConfigTest, ItFitsASmallScreenWithoutScrolling) {
  const QSize screen(1024, 600);
  const QSize frame(10, 40);
  window_.ShowModeless();
  EXPECT_EQ(window_.sizeHint().boundedTo(screen - frame), window_.sizeHint());
  QTimer::singleShot(0, &window_, [&] {
    EXPECT_TRUE(Find<QLabel>(window_, "lblWelcome").isVisible());
    EXPECT_EQ(window_.sizeHint().boundedTo(screen - frame), window_.sizeHint());
    window_.close();
  });
  window_.close();
  window_.ShowFirst();
}

TEST_F(FrmConfigTest, EachGroupSaysWhatItIsFor) {
  window_.ShowModeless();
  const QList<QGroupBox*> groups = window_.findChildren<QGroupBox*>();
  EXPECT_EQ(groups.size(), 8);
  for (const QGroupBox* group : groups) {
    EXPECT_TRUE(group->accessibleDescription().endsWith('.')) << group->title().toStdString();
    EXPECT_TRUE(HasLabel(*group, group->accessibleDescription().toUtf8().constData()));
  }
}

TEST_F(FrmConfigTest, NoTwoControlsAnswerToOneKey) {
  window_.ShowModeless();
  auto& pages = Find<QTabWidget>(window_, "tabConfig");
  QStringList keys;
  for (const auto* button : window_.findChildren<QAbstractButton*>()) {
    if (!button->shortcut().isEmpty()) keys.append(button->shortcut().toString());
  }
  for (int page = 0; page < pages.count(); ++page) {
    keys.append(QKeySequence::mnemonic(pages.tabText(page)).toString());
  }
  EXPECT_TRUE(keys.contains("Alt+S"));
  EXPECT_EQ(keys.removeDuplicates(), 0) << keys.join(' ').toStdString();
}

TEST_F(FrmConfigTest, TheRoomStandsBesideTheFoldersAndLittleOfItIsMarked) {
  rig_.Settings.ShelfFolder = "/shelf/";
  window_.ShowModeless();
  const auto& room = Find<QLabel>(window_, "lblFileRoom");
  EXPECT_EQ(room.text(), "100.0 GB free");
  EXPECT_EQ(Find<QLabel>(window_, "lblShelfRoom").text(), "100.0 GB free");
  const QColor plain = window_.palette().color(QPalette::WindowText);
  EXPECT_EQ(room.palette().color(QPalette::WindowText), plain);
  rig_.Files.Free = 900e6;
  QTest::keyClicks(&Find<QLineEdit>(window_, "txtFileDir"), "x");
  window_.Refresh();
  EXPECT_EQ(room.text(), "900 MB free, which is little");
  EXPECT_NE(room.palette().color(QPalette::WindowText), plain);
}

TEST_F(FrmConfigTest, TheLevelOfTheChosenInputIsShown) {
  window_.ShowModeless();
  EXPECT_EQ(inputs_.OpenId, "built-in");
  Play(1s, 3277);
  const auto& bar = Find<QProgressBar>(window_, "pbrInputLevel");
  const auto& words = Find<QLabel>(window_, "lblInputLevel");
  EXPECT_EQ(bar.value(), 40) << "of 60 dB";
  EXPECT_EQ(words.text(), "-20 dB");
  ChooseRow(Find<QComboBox>(window_, "cboDevice"), 1);
  EXPECT_EQ(inputs_.OpenId, "usb") << "before any save";
  Play(5s, 0);
  EXPECT_EQ(bar.value(), 0);
  EXPECT_TRUE(words.text().startsWith("Silence"));
  EXPECT_NE(words.palette().color(QPalette::WindowText), window_.palette().color(QPalette::WindowText));
  Press(window_, "cmdCancel");
  EXPECT_EQ(inputs_.OpenId, "");
}

TEST_F(FrmConfigTest, ATestRecordingShowsItsProgressAndGoesWithTheWindow) {
  window_.ShowModeless();
  Play(1s, 3277);
  Press(window_, "cmdTest");
  Play(2500ms, 3277);
  const auto& bar = Find<QProgressBar>(window_, "pbrTest");
  EXPECT_TRUE(bar.isVisible());
  EXPECT_EQ(bar.value(), bar.maximum() / 2);
  EXPECT_EQ(Find<QLabel>(window_, "lblTest").text(), "Recording: 2 of 5 seconds");
  EXPECT_FALSE(Find<QWidget>(window_, "cmdTest").isEnabled());
  Play(2500ms, 3277);
  EXPECT_FALSE(bar.isVisible());
  ASSERT_EQ(shell_.Opened.size(), 1U);
  EXPECT_TRUE(rig_.Files.Exists(shell_.Opened.front()));
  ClickCloseBox(window_);
  EXPECT_FALSE(rig_.Files.Exists(shell_.Opened.front()));
}

TEST_F(FrmConfigTest, AScreenReaderGetsNameRoleAndValueOfEveryControl) {
  window_.ShowModeless();
  Play(1s, 3277);
  auto& pages = Find<QTabWidget>(window_, "tabConfig");
  QStringList names;
  for (int page = 0; page < pages.count(); ++page) {
    pages.setCurrentIndex(page);
    for (auto* control : pages.widget(page)->findChildren<QWidget*>()) {
      if (control->focusPolicy() == Qt::NoFocus || control->objectName().isEmpty()) continue;
      const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(control);
      ASSERT_NE(spoken, nullptr);
      EXPECT_NE(spoken->text(QAccessible::Name), "") << control->objectName().toStdString();
      EXPECT_NE(spoken->role(), QAccessible::Client) << control->objectName().toStdString();
      names.append(spoken->text(QAccessible::Name));
      // A list is called by what it shows, and by the label that belongs to it.
      if (spoken->role() == QAccessible::ComboBox) {
        EXPECT_FALSE(spoken->relations(QAccessible::Label).isEmpty()) << control->objectName().toStdString();
      }
    }
  }
  EXPECT_EQ(names.removeDuplicates(), 0) << names.join('|').toStdString();
  QAccessibleInterface* level =
      QAccessible::queryAccessibleInterface(&Find<QProgressBar>(window_, "pbrInputLevel"));
  EXPECT_EQ(level->text(QAccessible::Name), "Level of the recording device");
  EXPECT_EQ(level->role(), QAccessible::ProgressBar);
  EXPECT_EQ(level->valueInterface()->currentValue().toInt(), 40);
  for (const char* label : {"lblInputLevel", "lblFileRoom"}) {
    auto& shown = Find<QLabel>(window_, label);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&shown)->text(QAccessible::Name), shown.text()) << label;
  }
}

TEST_F(FrmConfigTest, TheBoxForTheStartWithTheDesktopShowsWhatIsThere) {
  rig_.Autostart.State.Starts = true;
  window_.ShowModeless();
  EXPECT_TRUE(Find<QCheckBox>(window_, "chkAutostart").isChecked());
}

TEST_F(FrmConfigTest, WhyThereIsNoTestIsSaidOfItsButton) {
  recording_ = true;
  window_.ShowModeless();
  Play(500ms, 3277);
  const auto& test = Find<QPushButton>(window_, "cmdTest");
  EXPECT_FALSE(test.isEnabled());
  EXPECT_EQ(test.accessibleDescription(), "Something is being recorded; test when that is over.");
  EXPECT_EQ(Find<QLabel>(window_, "lblTest").text(), test.accessibleDescription());
}

TEST_F(FrmConfigTest, OnlyTheFirstRunShowsAWelcome) {
  QTimer::singleShot(0, &window_, [&] {
    const auto& welcome = Find<QLabel>(window_, "lblWelcome");
    EXPECT_TRUE(welcome.isVisible());
    EXPECT_TRUE(welcome.text().startsWith("Welcome to Kestrune!"));
    Press(window_, "cmdSave");
  });
  window_.ShowFirst();
  window_.ShowModeless();
  EXPECT_FALSE(Find<QLabel>(window_, "lblWelcome").isVisible());
}

TEST_F(FrmConfigTest, OnASmallerScreenItScrollsAndItsButtonsStay) {
  window_.ShowModeless();
  window_.resize(640, 400);
  Settle();
  EXPECT_EQ(window_.height(), 400);
  for (const char* const button : {"cmdDefault", "cmdSave", "cmdCancel"}) {
    const auto& shown = Find<QWidget>(window_, button);
    EXPECT_TRUE(window_.rect().contains(QRect(shown.mapTo(&window_, QPoint(0, 0)), shown.size()))) << button;
  }
}

TEST_F(FrmConfigTest, AFolderThatIsNotThereStartsTheChooserAtTheNearestAbove) {
  const QTemporaryDir folder;
  rig_.Settings.FileDir = folder.path().toStdString() + "/not/there/";
  window_.ShowModeless();
  Press(window_, "cmdBrowse");
  auto* chooser = qobject_cast<QFileDialog*>(Opened());
  ASSERT_NE(chooser, nullptr);
  EXPECT_EQ(chooser->directory().canonicalPath(), QDir(folder.path()).canonicalPath());
  chooser->reject();
  Settle();
  EXPECT_EQ(Find<QLineEdit>(window_, "txtFileDir").text().toStdString(), rig_.Settings.FileDir);
}

TEST_F(FrmConfigTest, OddFolderTextsStillOpenTheChooser) {
  for (const char* text : {"", "/", "relative/nowhere", "~", "//", "\xC3\xA9\xFF", "%s"}) {
    rig_.Settings.FileDir = text;
    window_.ShowModeless();
    Press(window_, "cmdBrowse");
    ASSERT_NE(Opened(), nullptr) << text;
    Opened()->reject();
    Settle();
    Press(window_, "cmdCancel");
  }
}

TEST_F(FrmConfigTest, TheFirstRunHasNoCancelAndReturnsOnceItIsSaved) {
  bool looked = false;
  QTimer::singleShot(0, &window_, [&] {
    looked = true;
    EXPECT_TRUE(window_.isModal());
    EXPECT_FALSE(Find<QWidget>(window_, "cmdCancel").isVisible());
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_TRUE(window_.isVisible()) << "Escape is the cancel button's";
    Press(window_, "cmdSave");
  });
  window_.ShowFirst();
  EXPECT_TRUE(looked);
  EXPECT_FALSE(window_.isVisible());
  EXPECT_THAT(rig_.Saves(), Not(IsEmpty()));
  window_.ShowModeless();
  EXPECT_TRUE(Find<QWidget>(window_, "cmdCancel").isVisible());
  EXPECT_FALSE(window_.isModal());
}

TEST_F(FrmConfigTest, TheFirstRunEndsWithTheProgram) {
  QTimer::singleShot(0, &window_, [&] { window_.close(); });
  window_.ShowFirst();
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(FrmConfigTest, ASecondOpeningBringsTheOpenWindowToTheFrontAndKeepsWhatWasTyped) {
  window_.ShowModeless();
  QTest::keyClicks(&Find<QLineEdit>(window_, "txtFileDir"), "x");
  window_.ShowModeless();
  EXPECT_EQ(Find<QLineEdit>(window_, "txtFileDir").text(), "/music/x");
}

TEST_F(FrmConfigTest, DefaultsAreShown) {
  rig_.Settings.SaveDuplicates = false;
  rig_.Settings.FileFormat = "WAV";
  window_.ShowModeless();
  Press(window_, "cmdDefault");
  EXPECT_TRUE(Find<QCheckBox>(window_, "chkDuplicates").isChecked());
  EXPECT_EQ(Find<QComboBox>(window_, "cboFileFormat").currentText(), "MP3");
  EXPECT_TRUE(window_.isVisible());
}

TEST_F(FrmConfigTest, TheTabKeyWalksThroughEveryControlOfAPageInReadingOrder) {
  rig_.Settings.Hints = true;
  window_.ShowModeless();
  auto& pages = Find<QTabWidget>(window_, "tabConfig");
  const std::vector<std::vector<const char*>> order{
      {"cboDevice", "cmdTest", "chkAGCEnabled", "txtAGCLowLevel", "txtAGCHighLevel", "txtAGCAttackTime",
       "txtFileDir", "cmdBrowse", "txtFilenameFormat", "cmdFilenameFormat", "chkDuplicates"},
      {"cboMinLength", "cboMaxLength", "cboSongDelay", "cboCutPlacement", "cboFileFormat",
       "cmdChangeFormatSpecs", "txtShelfFolder", "cmdBrowseShelf", "txtShelfSongs", "txtShelfMegabytes"},
      {"chkAutostart", "chkTaskBarMinimized", "chkWatch", "chkHints", "chkFollowHints", "chkNotifyEvents",
       "chkNotifyProblems", "chkNotifyHints", "chkNotifySongs"}};
  EXPECT_EQ(window_.focusWidget()->objectName(), "cboDevice");
  const auto expectNext = [this](const char* name) {
    QTest::keyClick(window_.focusWidget(), Qt::Key_Tab);
    ASSERT_NE(window_.focusWidget(), nullptr);
    EXPECT_EQ(window_.focusWidget()->objectName(), name);
  };
  for (int page = 0; page < pages.count(); ++page) {
    pages.setCurrentIndex(page);
    pages.tabBar()->setFocus();
    for (const char* name : order[static_cast<std::size_t>(page)]) expectNext(name);
    for (const char* name : {"cmdDefault", "cmdSave", "cmdCancel"}) expectNext(name);
  }
}

TEST_F(FrmConfigTest, TheWheelTurnsNoListThatHasNoFocus) {
  window_.ShowModeless();
  auto& format = Find<QComboBox>(window_, "cboFileFormat");
  QWheelEvent wheel({5, 5}, format.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&format, &wheel);
  EXPECT_EQ(rig_.Settings.FileFormat, "MP3");
  EXPECT_EQ(rig_.Stops(), 0);
}

TEST_F(FrmConfigTest, OpenedAndClosedManyTimesNothingGrows) {
  const auto round = [this] {
    window_.ShowModeless();
    Press(window_, "cmdChangeFormatSpecs");
    Press(*Opened(), "cmdOK");
    Press(window_, "cmdFilenameFormat");
    Opened()->reject();
    Press(window_, "cmdSave");
    Settle();
    rig_.Store.Calls.clear();
    rig_.Idle.Calls.clear();
  };
  for (int i = 0; i < 20; ++i) round();
  const auto children = window_.findChildren<QObject*>().size();
  const auto tops = QApplication::topLevelWidgets().size();
  const std::size_t held = mallinfo2().uordblks;
  const int rounds = Repetitions(100, 1000);
  for (int i = 0; i < rounds; ++i) round();
  EXPECT_EQ(window_.findChildren<QObject*>().size(), children);
  EXPECT_EQ(QApplication::topLevelWidgets().size(), tops);
  EXPECT_LT(mallinfo2().uordblks, held + 200000);
}

}  // namespace
}  // namespace kestrune::test
