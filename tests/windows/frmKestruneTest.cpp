#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <chrono>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "windows/AudioDisplay.h"
#include "windows/Binding.h"
#include "windows/Contrast.h"
#include "windows/DesktopRig.h"
#include "windows/ElidedLabel.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class frmKestruneTest : public ::testing::Test {
 protected:
  /// What a click asks for is carried out by the loop, and shown by the next refresh.
  void Settle() { rig.Run(110ms); }
  void Press(const char* button) {
    QTest::mouseClick(&rig.Find<QPushButton>(button), Qt::LeftButton);
    Settle();
  }
  void Tick(const char* box) {
    // At the box itself, not in the middle of the row that it may fill.
    auto& control = rig.Find<QCheckBox>(box);
    QTest::mouseClick(&control, Qt::LeftButton, {}, QPoint(8, control.height() / 2));
    Settle();
  }
  void Choose(const char* entry) {
    rig.Find<QAction>(entry).trigger();
    Settle();
  }
  [[nodiscard]] std::string Text(const char* label) {
    return windows::FromQt(rig.Find<QLabel>(label).text());
  }
  [[nodiscard]] bool Hidden(const char* control) { return rig.Find<QWidget>(control).isHidden(); }

  /// What a screen reader says of a control.
  [[nodiscard]] std::string Spoken(const char* control) {
    return Interface(control).text(QAccessible::Name).toStdString();
  }
  [[nodiscard]] QAccessibleInterface& Interface(const char* control) {
    return *QAccessible::queryAccessibleInterface(&rig.Find<QWidget>(control));
  }

  DesktopRig rig;
};

struct Row {
  const char* Name;
  const char* Caption;  ///< null: filled at run time
  const char* Tip;
};

TEST_F(frmKestruneTest, EveryControlIsThereWithItsCaptionAndTip) {
  constexpr Row kControls[] = {
      {"lblcChannel", "Channel:", ""},
      {"lblChannel", nullptr, ""},
      {"lblcGenre", "Genre:", ""},
      {"lblGenre", nullptr, ""},
      {"lblcArtist", "Artist:", ""},
      {"lblArtist", nullptr, "Click to add this artist to the Grab/Kill list"},
      {"lblcSong", "Song:", ""},
      {"lblSong", nullptr, "Click to add this song to the Grab or Kill list"},
      {"lblRecording", nullptr, ""},
      {"lblClock", nullptr, ""},
      {"lblcRemaining", nullptr, ""},
      {"lblRemaining", nullptr, ""},
      {"pctTimer", "Recording Scheduled Event", ""},
      {"lblcRecorded", "Recorded:", ""},
      {"lblRecorded", "0", ""},
      {"lblcTooShort", "Too Short:", ""},
      {"lblTooShort", "0", ""},
      {"lblcTooLong", "Too Long:", ""},
      {"lblTooLong", "0", ""},
      {"lblcRestricted", "Restricted:", ""},
      {"lblRestricted", "0", ""},
      {"lblSat_0", "Sat 1:", ""},
      {"lblSat_1", "Sat 2:", ""},
      {"lblGround", "Ground:", ""},
      {"pbrSatSignal_0", nullptr, ""},
      {"pbrSatSignal_1", nullptr, ""},
      {"pbrTerSignal", nullptr, ""},
      {"AudioDisplay", nullptr, ""},
      {"cmdRecord", "Record", "Start Recording"},
      {"cmdStop", "Stop", "Stop Recording"},
      {"cmdKeep", "Keep This Song", "Keep the song that plays, at its end"},
      {"cmdVUType", "VU Type", "Change type of VU meter"},
      {"cmdMixer", "Record Levels", "Show the recording mixer to adjust recording levels"},
      {"chkIntegrel", "Integrel", "Ensure only complete songs are recorded"},
      {"chkSievanceGrab", "Grab List On",
       "Check to cause Kestrune to record only those artists or songs which appear in the grab lists"},
      {"chkSievanceKill", "Kill List On",
       "Check to cause Kestrune to never record those artists or songs which appear in the kill lists"},
      {"chkRadioOnAtExit", "Radio On At Exit",
       "Check to cause Kestrune to leave the radio on and playing when exiting"},
      {"chkChannelListing", "Channel Listing", "Show/Hide channel listing"},
      {"chkRecordLog", "Recording Log", "Show/Hide songs recorded log"},
      {"chkSchedule", "Timer Schedule", "Show/Hide timer schedule screen"},
      {"chkRestrictList", "Grab/Kill Lists", "Show/Hide grab/kill list screen"},
      {"chkKestruneNow", "Kestrune Now", "Show/HideKestrune Now Screen"},
      {"chkReport", "Recording Report", "Show/Hide what was recorded and what went wrong"},
  };
  for (const Row& row : kControls) {
    SCOPED_TRACE(row.Name);
    const auto& control = rig.Find<QWidget>(row.Name);
    EXPECT_EQ(control.toolTip().toStdString(), row.Tip);
    if (row.Caption == nullptr) continue;
    EXPECT_EQ(control.property("text").toString().toStdString(), row.Caption);
  }
}

TEST_F(frmKestruneTest, ALargeWindowShowsTheSongLargerAndTheLastKeptSongs) {
  platform::HistorySong kept;
  kept.Ended = rig.Unit.Loop.Now().AddMinutes(-20);
  kept.Began = kept.Ended.AddMinutes(-4);
  kept.Artist = "Abigail Wren";
  kept.Title = "Winter Apples";
  kept.LengthMs = 200'000;
  kept.File = "/music/Folk/Winter Apples.mp3";
  rig.Unit.History.Rows.Songs.push_back(kept);
  rig.Unit.Set("MainTop", "0");  // or it would be the first run
  rig.Unit.StartIdle();
  rig.Main().show();
  const QSize usual = rig.Main().size();
  const double letters = rig.Find<QLabel>("lblSong").font().pointSizeF();
  EXPECT_FALSE(rig.Find<QTreeWidget>("lstKept").isVisible());

  rig.Main().resize(usual * 2);
  Settle();  // the window has its size
  Settle();  // and its controls have theirs
  auto& list = rig.Find<QTreeWidget>("lstKept");
  EXPECT_GT(rig.Find<QLabel>("lblSong").font().pointSizeF(), letters * 2);
  EXPECT_GE(rig.Find<QLabel>("lblSong").height(), rig.Find<QLabel>("lblSong").fontMetrics().height());
  EXPECT_GT(rig.Find<QLabel>("lblChannel").font().pointSizeF(), letters);
  ASSERT_TRUE(list.isVisible());
  ASSERT_EQ(list.topLevelItemCount(), 1);
  EXPECT_EQ(list.topLevelItem(0)->text(2).toStdString(), "Winter Apples");
  EXPECT_FALSE(rig.Find<QPushButton>("cmdShowKept").isEnabled());
  list.setCurrentItem(list.topLevelItem(0));
  Press("cmdShowKept");
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_THAT(rig.Shell.Opened, ElementsAre("/music/Folk/", "/music/Folk/Winter Apples.mp3"));

  rig.Main().resize(usual);
  Settle();
  EXPECT_FALSE(list.isVisible());
  EXPECT_EQ(rig.Find<QLabel>("lblSong").font().pointSizeF(), letters);
}

TEST_F(frmKestruneTest, HowFarTheSongIsStandsBesideTheGenre) {
  rig.Unit.Set("MainTop", "0");
  rig.Unit.StartIdle();
  rig.Unit.NextSong("Queen", "Innuendo");
  rig.Run(10s);
  EXPECT_TRUE(Hidden("pbrSong"));
  EXPECT_THAT(Text("lblSoFar"), ::testing::StartsWith("0:1"));
  rig.Run(50s);
  rig.Unit.NextSong("Queen", "Bicycle Race");
  rig.Unit.NextSong("Queen", "Innuendo");
  rig.Run(30s);
  EXPECT_FALSE(Hidden("pbrSong"));
  EXPECT_EQ(Text("lblSoFar"), "");
  const auto& bar = rig.Find<QProgressBar>("pbrSong");
  EXPECT_THAT(bar.text().toStdString(), ::testing::MatchesRegex("0:3. of 1:0."));
  EXPECT_GT(bar.value(), 300);
  EXPECT_LT(bar.value(), 700);
}

TEST_F(frmKestruneTest, TheTwelvePresetButtonsHaveTheirNumbersAndKeysInTheTip) {
  for (int i = 0; i < 12; ++i) {
    const std::string number = std::to_string(i + 1);
    const auto& button = rig.Find<QPushButton>(("cmdPresetStation_" + std::to_string(i)).c_str());
    EXPECT_EQ(button.text().toStdString(), "Preset " + number);
    EXPECT_EQ(button.toolTip().toStdString(), fmt::format("Preset {0} (CTRL-F{0})", number));
  }
}

TEST_F(frmKestruneTest, EveryMenuHasItsEntriesInOrder) {
  using Entries = std::vector<std::pair<std::string, std::string>>;
  const std::vector<std::pair<std::string, Entries>> kMenus = {
      {"&File", {{"mnuRecord", "&Record"}, {"mnuStop", "&Stop"}, {"mnuExit", "E&xit"}}},
      {"&Options",
       {{"mnuChannels", "&Channel Listing"},
        {"mnuReload", "&Reload Channel Listing"},
        {"mnuLog", "Recording &Log"},
        {"mnuSchedule", "&Timer Schedule"},
        {"mnuKestruneNow", "Kestrune &Now"},
        {"mnuRestrictList", "Grab/Kill &Lists"},
        {"mnuReport", "Recording Rep&ort"},
        {"mnuShelf", "Sh&elf"},
        {"mnuBar1", ""},
        {"mnuIntegrel", "&Integrel On"},
        {"mnuSievanceGrab", "&Grab List On"},
        {"mnuSievanceKill", "&Kill List On"},
        {"mnuCleftune", "&Cleftune On"},
        {"mnuMute", "Mute Au&dio"},
        {"mnuRadioOnAtExit", "Radio On At E&xit"},
        {"mnuPresets", "Edit &Presets"},
        {"mnuCheckUpdatesAtStartup", "Check for &Updates at Startup"},
        {"mnuPreferences", "&Configuration"}}},
      {"&Help",
       {{"mnuHelpWith", "Kestrune &Help"},
        {"mnuAbout", "&About"},
        {"mnuIntent", "&Statement of Intent"},
        {"mnuCheckUpdate", "Check for &Update"},
        {"mnuRadioID", "My Radio &ID"}}},
  };
  const auto menus = rig.Main().menuBar()->actions();
  ASSERT_EQ(static_cast<std::size_t>(menus.size()), kMenus.size());
  for (std::size_t i = 0; i < kMenus.size(); ++i) {
    const QAction* menu = menus[static_cast<qsizetype>(i)];
    EXPECT_EQ(menu->text().toStdString(), kMenus[i].first);
    Entries found;
    for (const QAction* entry : menu->menu()->actions()) {
      found.emplace_back(entry->objectName().toStdString(), entry->text().toStdString());
    }
    EXPECT_EQ(found, kMenus[i].second);
  }
}

TEST_F(frmKestruneTest, EachLetterThatOtherWindowsPassOnIsAKeyOfOneEntry) {
  std::multiset<std::string> letters;
  for (const QAction* entry : rig.Main().findChildren<QAction*>()) {
    const QString key = entry->shortcut().toString();
    if (!key.isEmpty()) letters.insert(key.toStdString());
  }
  std::multiset<std::string> wanted;
  for (const char letter : std::string("BDEGHKLQRSTUWY")) wanted.insert(std::string("Ctrl+") + letter);
  EXPECT_EQ(letters, wanted);
}

TEST_F(frmKestruneTest, ShowsWhatPlaysWithSingleAmpersands) {
  rig.Unit.Radio.Channels[44] = {"Rock & Roll", "R&B", "Salt & Sand", "You & I"};
  rig.Unit.StartIdle();
  rig.Run(200ms);
  EXPECT_EQ(Text("lblChannel"), "44: Rock & Roll");
  EXPECT_EQ(Text("lblGenre"), "R&B");
  EXPECT_EQ(Text("lblArtist"), "Salt & Sand");
  EXPECT_EQ(Text("lblSong"), "You & I");
  EXPECT_EQ(rig.Main().windowTitle(), QStringLiteral("Kestrune: Salt & Sand"));
}

TEST_F(frmKestruneTest, MarkupFromTheRadioIsShownLetterByLetter) {
  rig.Unit.Radio.Channels[44] = {"<b>S</b>", "G", "<i>A</i>[*]", "<img src=x>"};
  rig.Unit.StartIdle();
  rig.Run(200ms);
  EXPECT_EQ(rig.Find<QLabel>("lblArtist").textFormat(), Qt::PlainText);
  EXPECT_EQ(Text("lblArtist"), "<i>A</i>[*]");
  EXPECT_EQ(rig.Main().windowTitle(), QStringLiteral("Kestrune: <i>A</i>[*][*]")) << "doubled, it shows once";
}

TEST_F(frmKestruneTest, NothingMovesWhenTextsChangeTheirLength) {
  rig.Unit.StartIdle();
  rig.Run(200ms);
  const auto places = [this] {
    std::vector<QRect> all;
    for (const QWidget* child : rig.Main().findChildren<QWidget*>()) {
      if (!child->objectName().isEmpty() && !child->isHidden()) all.push_back(child->geometry());
    }
    return all;
  };
  presenters::MainWindow record = rig.Unit.Window();
  record.lblRecording = {.Caption = "x", .Visible = true};
  rig.Main().Refresh(record);
  QCoreApplication::processEvents();
  const auto before = places();
  const std::string longText(300, 'W');
  for (auto* label : {&record.lblChannel, &record.lblGenre, &record.lblArtist, &record.lblSong}) {
    label->Caption = longText;
  }
  record.lblRecording.Caption = "Waiting for channel load";
  record.lblClock = {.Caption = "00:00:00", .Visible = true};
  rig.Main().Refresh(record);
  QCoreApplication::processEvents();
  EXPECT_EQ(places(), before);
  record.lblRecording.Visible = false;  // the blink
  rig.Main().Refresh(record);
  QCoreApplication::processEvents();
  EXPECT_EQ(rig.Find<QWidget>("lblClock").geometry().isValid(), true);
  record.lblRecording.Visible = true;
  rig.Main().Refresh(record);
  QCoreApplication::processEvents();
  EXPECT_EQ(places(), before);
}

TEST_F(frmKestruneTest, ItFitsASmallScreenAndScrollsOnASmallerOne) {
  constexpr QSize kRoom(1014, 570);  // 1024 x 600 without a frame
  EXPECT_LE(rig.Main().sizeHint().width(), kRoom.width());
  EXPECT_LE(rig.Main().sizeHint().height(), kRoom.height());
  rig.Main().resize(500, 400);
  rig.Run(100ms);
  EXPECT_EQ(rig.Main().size(), QSize(500, 400));
}

TEST_F(frmKestruneTest, TheButtonsSwap) {
  rig.Unit.StartIdle();
  EXPECT_TRUE(rig.Find<QPushButton>("cmdRecord").isEnabled());
  EXPECT_FALSE(rig.Find<QPushButton>("cmdStop").isEnabled());
  Press("cmdRecord");
  EXPECT_FALSE(rig.Find<QPushButton>("cmdRecord").isEnabled());
  EXPECT_TRUE(rig.Find<QPushButton>("cmdStop").isEnabled());
  EXPECT_EQ(Text("lblRecording"), "Recording");
  EXPECT_EQ(Text("lblExplanation"), "This song is kept from its beginning.");
  Press("cmdStop");
  EXPECT_EQ(Text("lblRecording"), "");
}

TEST_F(frmKestruneTest, AScreenReaderSaysWhatPlaysAndWhatHappens) {
  rig.Unit.Radio.Channels[44] = {"Harbour", "Rock", "Salt & Sand", "Tide"};
  rig.Unit.StartIdle();
  rig.Run(200ms);
  EXPECT_EQ(Spoken("lblChannel"), "Channel: 44: Harbour");
  EXPECT_EQ(Spoken("lblGenre"), "Genre: Rock");
  EXPECT_EQ(Spoken("lblArtist"), "Artist: Salt & Sand");
  EXPECT_EQ(Spoken("lblSong"), "Song: Tide");
  EXPECT_EQ(Spoken("lblExplanation"), "Not recording.");
  EXPECT_EQ(Spoken("lblRecording"), "Status");
  EXPECT_EQ(Interface("lblSong").role(), QAccessible::Button);
  EXPECT_EQ(Interface("lblGenre").role(), QAccessible::StaticText);
}

TEST_F(frmKestruneTest, ANewSongIsNewsToAScreenReader) {
  // Qt announces a new text only of a label that has no name of its own.
  for (const char* const label : {"lblChannel", "lblArtist", "lblSong", "lblRecording", "lblExplanation"})
    EXPECT_TRUE(rig.Find<QLabel>(label).accessibleName().isEmpty()) << label;
}

TEST_F(frmKestruneTest, AScreenReaderPressesTheArtistLikeAButton) {
  int offered = 0;
  rig.Desktop.OfferForList = [&](auto, const auto&) { ++offered; };
  rig.Unit.StartIdle();
  rig.Run(200ms);
  QAccessibleActionInterface* const actions = Interface("lblArtist").actionInterface();
  ASSERT_NE(actions, nullptr);
  ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(offered, 0) << "the reader would wait for the answer";
  QCoreApplication::processEvents();
  EXPECT_EQ(offered, 1);
  EXPECT_FALSE(Interface("lblGenre")
                   .actionInterface()
                   ->actionNames()
                   .contains(QAccessibleActionInterface::pressAction()));
}

TEST_F(frmKestruneTest, APadlockStandsAtTheChannelWhileItIsKept) {
  rig.Unit.StartIdle();
  EXPECT_TRUE(Hidden("boxLock"));
  Press("cmdRecord");
  EXPECT_FALSE(Hidden("boxLock"));
  EXPECT_EQ(Text("lblLock"), "Locked while recording");
  EXPECT_EQ(rig.Find<QWidget>("boxLock").toolTip(),
            "The channel, the presets and the mute stay as they are until the recording stops.");
  Press("cmdStop");
  rig.Unit.NextSong("New", "Song");
  rig.Run(15s);
  EXPECT_TRUE(Hidden("boxLock"));
}

TEST_F(frmKestruneTest, TheFocusGoesFromRecordToStopAndBack) {
  rig.Unit.Set("Integrel", "False");
  rig.Unit.StartIdle();
  rig.Find<QPushButton>("cmdRecord").setFocus();
  Press("cmdRecord");
  EXPECT_EQ(rig.Main().focusWidget(), &rig.Find<QPushButton>("cmdStop"));
  Press("cmdStop");
  rig.Run(1s);
  EXPECT_EQ(rig.Main().focusWidget(), &rig.Find<QPushButton>("cmdRecord"));
}

TEST_F(frmKestruneTest, AFocusElsewhereStaysWhereItIs) {
  rig.Unit.StartIdle();
  rig.Find<QPushButton>("cmdMixer").setFocus();
  Choose("mnuRecord");
  EXPECT_EQ(rig.Main().focusWidget(), &rig.Find<QPushButton>("cmdMixer"));
}

TEST_F(frmKestruneTest, TheKeyOfStopIsTakenRightAfterThatOfRecord) {
  rig.Unit.StartIdle();
  rig.Main().activateWindow();
  QTest::keyClick(&rig.Main(), Qt::Key_R, Qt::ControlModifier);
  rig.Unit.Loop.PumpEvents();  // the wish is carried out, and the window has not been refreshed yet
  QTest::keyClick(&rig.Main(), Qt::Key_S, Qt::ControlModifier);
  Settle();
  EXPECT_FALSE(rig.Unit->State().Recording.RecordRequested);
}

TEST_F(frmKestruneTest, TextOnPresetsAndBarsIsReadable) {
  rig.Unit.StartIdle();
  rig.Run(200ms);
  const QPalette preset = rig.Find<QPushButton>("cmdPresetStation_0").palette();
  EXPECT_GE(windows::Contrast(preset.color(QPalette::ButtonText), preset.color(QPalette::Button)), 4.5);
  const QPalette bar = rig.Find<QProgressBar>("pbrTerSignal").palette();
  EXPECT_GE(windows::Contrast(bar.color(QPalette::HighlightedText), bar.color(QPalette::Highlight)), 4.5);
}

TEST_F(frmKestruneTest, TheSongThatPlaysIsKeptByAButtonOnce) {
  EXPECT_FALSE(rig.Find<QPushButton>("cmdKeep").isEnabled()) << "nothing is captured yet";
  rig.Unit.StartIdle();
  EXPECT_TRUE(rig.Find<QPushButton>("cmdKeep").isEnabled());
  Press("cmdKeep");
  EXPECT_FALSE(rig.Find<QPushButton>("cmdKeep").isEnabled());
  EXPECT_EQ(Text("lblExplanation"), "This song is kept at its end, because you asked.");
  EXPECT_TRUE(rig.Find<QPushButton>("cmdRecord").isEnabled()) << "nothing is recorded for it";
  rig.Unit.NextSong("New", "Song");
  rig.Run(15s);
  EXPECT_TRUE(rig.Find<QPushButton>("cmdKeep").isEnabled());
  EXPECT_EQ(Text("lblExplanation"), "Not recording.");
}

TEST_F(frmKestruneTest, ADoubleClickOnAHintTunesToIt) {
  rig.Unit.Set("Hints", "True");
  rig.Unit.Files.MakeFolders("/home/user/Application Data/Kestrune");
  rig.Unit.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
  rig.Unit.StartIdle();
  auto& line = rig.Find<QLabel>("lblExplanation");
  QTest::mouseDClick(&line, Qt::LeftButton);
  EXPECT_EQ(line.focusPolicy(), Qt::NoFocus) << "it says what becomes of the song, and nothing else";
  rig.Run(12s);
  rig.Unit.Radio.Play(47, "Abigail Wren", "Winter Apples");
  rig.Run(12s);
  EXPECT_EQ(Text("lblExplanation"), "Now on 47 Station 47: Abigail Wren - Winter Apples");
  EXPECT_EQ(line.toolTip(), "Click to tune to this channel");
  EXPECT_EQ(line.focusPolicy(), Qt::StrongFocus);
  EXPECT_EQ(rig.Unit.Radio.TunedChannel, 44);
  QTest::mouseDClick(&line, Qt::LeftButton);
  rig.Run(3s);
  EXPECT_EQ(rig.Unit.Radio.TunedChannel, 47);
  EXPECT_EQ(Text("lblExplanation"), "Not recording.");
  EXPECT_EQ(line.focusPolicy(), Qt::NoFocus);
  EXPECT_EQ(line.toolTip(), "");
}

TEST_F(frmKestruneTest, TheStatusBlinksOnceASecondAndTheClockRuns) {
  rig.Unit.StartIdle();
  Press("cmdRecord");
  int changes = 0;
  const auto& status = dynamic_cast<windows::ElidedLabel&>(rig.Find<QLabel>("lblRecording"));
  bool blank = status.IsBlank();
  for (int i = 0; i < 30; ++i) {
    rig.Run(100ms);
    changes += std::exchange(blank, status.IsBlank()) != blank ? 1 : 0;
    EXPECT_FALSE(status.isHidden()) << "the blink is nothing to a screen reader";
    EXPECT_EQ(Spoken("lblRecording"), "Status: Recording");
  }
  EXPECT_NEAR(changes, 6, 1);
  EXPECT_EQ(Text("lblClock").size(), 8U);
  EXPECT_NE(Text("lblClock"), "00:00:00");
}

TEST_F(frmKestruneTest, TheMenusRecordAndStopDoNothingWhereTheirButtonIsDisabled) {
  rig.Unit.StartIdle();
  EXPECT_TRUE(rig.Find<QAction>("mnuRecord").isEnabled());
  EXPECT_FALSE(rig.Find<QAction>("mnuStop").isEnabled());
  Choose("mnuStop");
  EXPECT_FALSE(rig.Unit->State().Recording.StopPending);
  Choose("mnuRecord");
  EXPECT_TRUE(rig.Unit->State().Recording.RecordRequested);
  EXPECT_FALSE(rig.Find<QAction>("mnuRecord").isEnabled());
  EXPECT_TRUE(rig.Find<QAction>("mnuStop").isEnabled());
  Choose("mnuRecord");
  EXPECT_EQ(Text("lblRecording"), "Recording");
  Choose("mnuStop");
  EXPECT_FALSE(rig.Unit->State().Recording.RecordRequested);
}

TEST_F(frmKestruneTest, TheSignalBarsTakeThirtyForEachPercent) {
  rig.Unit.Start();
  rig.Run(200ms);
  const auto& bar = rig.Find<QProgressBar>("pbrSatSignal_0");
  EXPECT_EQ(bar.value(), 80 * 30);
  EXPECT_EQ(bar.text(), QStringLiteral("80%"));
  EXPECT_EQ(rig.Find<QProgressBar>("pbrSatSignal_1").text(), QStringLiteral("99%"));
  EXPECT_EQ(rig.Find<QProgressBar>("pbrTerSignal").value(), 3000);
}

TEST_F(frmKestruneTest, ASignalBeyondTheBarFillsIt) {
  rig.Unit.Start();
  presenters::MainWindow record = rig.Unit.Window();
  record.pbrTerSignal = {.Value = 255 * 30, .Caption = "255%"};
  rig.Main().Refresh(record);
  EXPECT_EQ(rig.Find<QProgressBar>("pbrTerSignal").value(), 3000);
  EXPECT_EQ(rig.Find<QProgressBar>("pbrTerSignal").text(), QStringLiteral("255%"));
}

TEST_F(frmKestruneTest, ChkIntegrelSetByTheLoadAsksNothing) {
  rig.Unit.Set("Integrel", "False");
  rig.Unit.Start();
  EXPECT_FALSE(rig.Find<QCheckBox>("chkIntegrel").isChecked());
  EXPECT_FALSE(rig.Find<QAction>("mnuIntegrel").isChecked());
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
}

TEST_F(frmKestruneTest, UncheckingIntegrelAsksAndNoChecksItAgain) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Shown.clear();
  rig.Unit.Dialogs.Answer = platform::MessageAnswer::No;
  Tick("chkIntegrel");
  ASSERT_THAT(rig.Unit.Dialogs.Shown, SizeIs(1));
  EXPECT_TRUE(rig.Find<QCheckBox>("chkIntegrel").isChecked());
  rig.Unit.Dialogs.Answer = platform::MessageAnswer::Yes;
  Choose("mnuIntegrel");
  EXPECT_FALSE(rig.Find<QCheckBox>("chkIntegrel").isChecked());
  EXPECT_FALSE(rig.Find<QAction>("mnuIntegrel").isChecked());
  EXPECT_EQ(rig.Unit.Setting("Integrel"), "False");
}

TEST_F(frmKestruneTest, EachMenuEntryFlipsTheBoxOfItsName) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Answer = platform::MessageAnswer::Yes;
  constexpr std::pair<const char*, const char*> kPairs[] = {
      {"mnuIntegrel", "chkIntegrel"},         {"mnuSievanceGrab", "chkSievanceGrab"},
      {"mnuSievanceKill", "chkSievanceKill"}, {"mnuRadioOnAtExit", "chkRadioOnAtExit"},
      {"mnuChannels", "chkChannelListing"},   {"mnuLog", "chkRecordLog"},
      {"mnuSchedule", "chkSchedule"},         {"mnuRestrictList", "chkRestrictList"},
      {"mnuKestruneNow", "chkKestruneNow"},   {"mnuReport", "chkReport"},
  };
  for (const auto& [entry, box] : kPairs) {
    SCOPED_TRACE(entry);
    const bool before = rig.Find<QCheckBox>(box).isChecked();
    Choose(entry);
    EXPECT_EQ(rig.Find<QCheckBox>(box).isChecked(), !before);
    EXPECT_EQ(rig.Find<QAction>(entry).isChecked(), !before);
    Tick(box);
    EXPECT_EQ(rig.Find<QCheckBox>(box).isChecked(), before);
    EXPECT_EQ(rig.Find<QAction>(entry).isChecked(), before);
  }
}

TEST_F(frmKestruneTest, TheMarksOfTheMenuAloneFlip) {
  rig.Unit.StartIdle();
  Choose("mnuCleftune");
  EXPECT_FALSE(rig.Find<QAction>("mnuCleftune").isChecked());
  EXPECT_EQ(rig.Unit.Setting("Cleftune"), "False");
  Choose("mnuCheckUpdatesAtStartup");
  EXPECT_TRUE(rig.Find<QAction>("mnuCheckUpdatesAtStartup").isChecked());
  EXPECT_EQ(rig.Unit.Setting("CheckUpdatesAtStartup"), "True");
}

TEST_F(frmKestruneTest, AMuteDuringARecordingIsRefusedWithASound) {
  rig.Unit.StartIdle();
  Press("cmdRecord");
  Choose("mnuMute");
  EXPECT_FALSE(rig.Find<QAction>("mnuMute").isChecked());
  EXPECT_THAT(rig.Unit.Sounds.Played, ElementsAre("SystemAsterisk"));
}

TEST_F(frmKestruneTest, AMuteBeforeARecordingIsLiftedByThePressOfRecord) {
  rig.Unit.StartIdle();
  Choose("mnuMute");
  EXPECT_TRUE(rig.Find<QAction>("mnuMute").isChecked());
  Press("cmdRecord");
  EXPECT_FALSE(rig.Find<QAction>("mnuMute").isChecked());
}

TEST_F(frmKestruneTest, ControlWithAFunctionKeyPressesAPreset) {
  rig.Unit.Set("Preset5", "48 - Harbour");
  rig.Unit.StartIdle();
  rig.Run(200ms);
  EXPECT_EQ(rig.Find<QPushButton>("cmdPresetStation_4").text(), QStringLiteral("48 - Harbour"));
  QTest::keyClick(&rig.Main(), Qt::Key_F5, Qt::ShiftModifier | Qt::ControlModifier);
  EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, 44) << "Control alone";
  QTest::keyClick(&rig.Find<QPushButton>("cmdVUType"), Qt::Key_F5, Qt::ControlModifier);
  rig.Run(2s);
  EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, 48);
}

TEST_F(frmKestruneTest, APresetWithALongNameAndAnAmpersandIsCutOffAndWholeInTheTip) {
  const std::string whole = "48 - " + std::string(120, 'R') + " & R";
  rig.Unit.Set("Preset1", whole);
  rig.Unit.StartIdle();
  rig.Run(200ms);
  const auto& button = rig.Find<QPushButton>("cmdPresetStation_0");
  EXPECT_LT(button.text().size(), 100);
  EXPECT_EQ(button.toolTip().toStdString(), whole + "\nPreset 1 (CTRL-F1)");
  EXPECT_EQ(button.accessibleName().toStdString(), whole);
}

TEST_F(frmKestruneTest, ADoubleClickOrEnterOffersArtistAndSongForTheLists) {
  std::vector<std::string> offered;
  rig.Desktop.OfferForList = [&](std::string_view word, const std::string& caption) {
    offered.push_back(std::string(word) + " " + caption);
  };
  rig.Unit.Radio.Channels[44] = {"Harbour", "Rock", "Salt & Sand", "Tide"};
  rig.Unit.StartIdle();
  rig.Run(200ms);
  QTest::mouseDClick(&rig.Find<QLabel>("lblArtist"), Qt::LeftButton);
  QTest::keyClick(&rig.Find<QLabel>("lblSong"), Qt::Key_Return);
  EXPECT_THAT(offered, ElementsAre("Artist Salt && Sand", "Song Tide"));
}

TEST_F(frmKestruneTest, AnEmptyTextIsNotOffered) {
  int offered = 0;
  rig.Desktop.OfferForList = [&](auto, const auto&) { ++offered; };
  rig.Unit.Radio.Channels[44].Song = "  ";
  rig.Unit.StartIdle();
  QTest::mouseDClick(&rig.Find<QLabel>("lblSong"), Qt::LeftButton);
  EXPECT_EQ(offered, 0);
}

TEST_F(frmKestruneTest, TheLevelDisplayGoesThroughItsFiveTypes) {
  rig.Unit.StartIdle();
  std::set<int> types;
  for (int i = 0; i < 5; ++i) {
    types.insert(static_cast<int>(rig.Unit.Rules->AudioDisplay().Type()));
    EXPECT_FALSE(rig.Find<QWidget>("AudioDisplay").grab().isNull());
    Press("cmdVUType");
  }
  EXPECT_THAT(types, SizeIs(5));
  EXPECT_EQ(rig.Unit.Rules->AudioDisplay().Type(), presenters::VuType::Bars);
  EXPECT_GT(rig.Unit.Rules->AudioDisplay().Draws(), 10U) << "of the sound that is captured";
}

TEST_F(frmKestruneTest, TheReloadWaitsForTheEndOfTheChannelLoad) {
  rig.Unit.Start();
  rig.Run(200ms);
  EXPECT_FALSE(rig.Find<QAction>("mnuReload").isEnabled());
  rig.Unit.FinishWalk();
  rig.Run(200ms);
  rig.Unit.Dialogs.Shown.clear();
  Choose("mnuReload");
  EXPECT_TRUE(rig.Unit->State().Radio.PoorChannelList);
  ASSERT_THAT(rig.Unit.Dialogs.Shown, SizeIs(1));
  EXPECT_EQ(rig.Unit.Dialogs.Shown[0].Title, "Reload Fresh Listing");
  EXPECT_EQ(rig.Unit.Dialogs.Shown[0].Text,
            "Channel listing will be reloaded next time Kestrune is started.");
}

TEST_F(frmKestruneTest, AScheduledEventShowsItsMarkAndTheTimeLeft) {
  rig.Unit.StartIdle();
  EXPECT_TRUE(Hidden("pctTimer"));
  EXPECT_TRUE(Hidden("lblRemaining"));
  presenters::MainWindow record = rig.Unit.Window();
  record.pctTimer.Visible = true;
  record.lblRemaining = {.Caption = "01:02:03", .Visible = true};
  rig.Main().Refresh(record);
  EXPECT_FALSE(Hidden("pctTimer"));
  EXPECT_FALSE(Hidden("lblcRemaining"));
  EXPECT_EQ(Text("lblRemaining"), "01:02:03");
}

TEST_F(frmKestruneTest, AScreenReaderTogglesABoxLikeAHand) {
  rig.Unit.StartIdle();
  auto& spoken = Interface("chkSievanceGrab");
  EXPECT_EQ(spoken.role(), QAccessible::CheckBox);
  EXPECT_EQ(Spoken("chkSievanceGrab"), "Grab List On");
  EXPECT_FALSE(spoken.state().checked);
  EXPECT_TRUE(spoken.state().focusable);
  spoken.actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  Settle();
  Settle();
  EXPECT_TRUE(rig.Unit->State().Settings.SievanceGrab != 0) << "it was ticked, and nothing came of it";
  EXPECT_TRUE(spoken.state().checked);
}

TEST_F(frmKestruneTest, AScreenReaderTakesWindowsForWindows) {
  EXPECT_EQ(Interface("AudioDisplay").role(), QAccessible::Graphic);
  QWidget window;
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&window)->role(), QAccessible::Window);
  QWidget part(&window);
  EXPECT_NE(QAccessible::queryAccessibleInterface(&part)->role(), QAccessible::Window);
}

TEST_F(frmKestruneTest, EveryControlThatTakesInputIsReachedByTheTabKey) {
  rig.Unit.StartIdle();
  std::set<std::string> reached;
  QWidget* at = &rig.Find<QWidget>("cmdRecord");
  for (int i = 0; i < 120; ++i) {
    if (at->focusPolicy() & Qt::TabFocus) reached.insert(at->objectName().toStdString());
    at = at->nextInFocusChain();
  }
  for (const char* name :
       {"lblArtist", "lblSong", "cmdRecord", "cmdStop", "cmdKeep", "cmdVUType", "cmdMixer",
        "cmdPresetStation_0", "cmdPresetStation_11", "chkIntegrel", "chkKestruneNow", "chkReport"}) {
    EXPECT_TRUE(reached.contains(name)) << name;
  }
}

}  // namespace
}  // namespace kestrune::test
