#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "windows/Announcer.h"
#include "windows/Attention.h"
#include "windows/DesktopRig.h"
#include "windows/ProgramIcon.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using recorder::StartOutcome;
using recorder::WindowName;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

struct Diary {
  std::vector<std::string> Lines;
  bool RefusesClose = false;
  std::function<void()> OnClose = [] {};
};

/// Records what happens to it.
class PlainWindow : public QWidget {
 public:
  PlainWindow(Diary& diary, std::string name) : diary_(diary), name_(std::move(name)) { Note("made"); }
  ~PlainWindow() override { Note("gone"); }
  PlainWindow(const PlainWindow&) = delete;
  PlainWindow& operator=(const PlainWindow&) = delete;

  void Refresh() { ++Refreshed; }
  int Refreshed = 0;
  bool QuitFlag = false;

 protected:
  void closeEvent(QCloseEvent* event) override {
    Note(QuitFlag ? "closes for good" : "closes");
    diary_.OnClose();
    event->setAccepted(!diary_.RefusesClose || QuitFlag);
  }

 protected:
  void Note(const char* what) { diary_.Lines.push_back(name_ + " " + what); }

 private:
  Diary& diary_;
  std::string name_;
};

/// Whether the windows that are shown while it lives want the focus.
class ShownWindows final : public QObject {
 public:
  ShownWindows() { QCoreApplication::instance()->installEventFilter(this); }
  std::map<QObject*, bool> WantFocus;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Show && widget != nullptr && widget->isWindow())
      WantFocus[watched] = !widget->testAttribute(Qt::WA_ShowWithoutActivating);
    return false;
  }
};

class DesktopTest : public ::testing::Test {
 protected:
  void Plug(WindowName name, const std::string& told) {
    rig.Desktop.SetMaker(name, [this, told] {
      auto window = std::make_unique<PlainWindow>(diary, told);
      last = window.get();
      return windows::Opened(std::move(window));
    });
  }
  /// Of the tray icon's menu, which no window has.
  [[nodiscard]] static QAction* TrayEntry(const char* name) {
    // The menus of earlier desktops go first.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (const QWidget* window : QApplication::topLevelWidgets())
      if (const auto* menu = qobject_cast<const QMenu*>(window))
        if (auto* entry = menu->findChild<QAction*>(QLatin1String(name))) return entry;
    return nullptr;
  }
  void Minimise(bool on = true) {
    rig.Main().setWindowState(on ? Qt::WindowMinimized : Qt::WindowNoState);
    rig.Run(100ms);
  }

  Diary diary;
  PlainWindow* last = nullptr;
  DesktopRig rig;
};

TEST_F(DesktopTest, TheMainWindowIsHiddenThenSeenButDeafThenOpen) {
  EXPECT_TRUE(rig.Main().isHidden());
  bool seenDisabled = false;
  rig.Unit.Loop.AtHardware(4s, [&] { seenDisabled = rig.Main().isVisible() && !rig.Main().isEnabled(); });
  rig.Unit.Start();
  EXPECT_TRUE(seenDisabled);
  EXPECT_TRUE(rig.Main().isVisible());
  EXPECT_TRUE(rig.Main().isEnabled());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the busy pointer is taken off";
}

TEST_F(DesktopTest, TheWindowStandsWhereItStood) {
  rig.Unit.Set("MainTop", "1500");
  rig.Unit.Set("MainLeft", "3000");
  rig.Unit.Start();
  EXPECT_EQ(rig.Main().pos(), QPoint(200, 100));
  rig.Main().move(40, 60);
  rig.Run(200ms);
  rig.Unit.CloseAndWait();
  EXPECT_EQ(rig.Unit.Setting("MainTop"), "900");
  EXPECT_EQ(rig.Unit.Setting("MainLeft"), "600");
}

TEST_F(DesktopTest, AMinimisedWindowKeepsTheStoredPlace) {
  rig.Unit.Set("MainTop", "1500");
  rig.Unit.Set("MainLeft", "3000");
  rig.Unit.Start();
  Minimise();
  rig.Unit.CloseAndWait();
  EXPECT_EQ(rig.Unit.Setting("MainTop"), "1500");
}

TEST_F(DesktopTest, AWindowIsMadeWhenShownAndGoneWhenClosed) {
  Plug(WindowName::Schedule, "schedule");
  rig.Unit.StartIdle();
  EXPECT_THAT(diary.Lines, IsEmpty());
  rig.Unit.Rules->Switches().Click(WindowName::Schedule, true);
  ASSERT_NE(last, nullptr);
  EXPECT_TRUE(last->isVisible());
  rig.Unit.Rules->Switches().Click(WindowName::Schedule, false);
  rig.Run(200ms);
  EXPECT_THAT(diary.Lines, ElementsAre("schedule made", "schedule closes", "schedule gone"));
  EXPECT_FALSE(rig.Desktop.IsLoaded(WindowName::Schedule));
}

TEST_F(DesktopTest, AWindowThatClearsItsBoxWhileItClosesIsClosedOnce) {
  Plug(WindowName::KestruneNow, "now");
  rig.Unit.StartIdle();
  rig.Unit.Rules->Switches().Click(WindowName::KestruneNow, true);
  diary.OnClose = [this] { rig.Unit.Rules->Switches().Click(WindowName::KestruneNow, false); };
  last->close();
  rig.Run(200ms);
  EXPECT_THAT(diary.Lines, ElementsAre("now made", "now closes", "now gone"));
  EXPECT_FALSE(rig.Record().chkKestruneNow);
}

TEST_F(DesktopTest, AWindowMayRefuseToClose) {
  Plug(WindowName::RestrictList, "lists");
  diary.RefusesClose = true;
  rig.Unit.StartIdle();
  rig.Unit.Rules->Switches().Click(WindowName::RestrictList, true);
  last->close();
  rig.Run(200ms);
  EXPECT_TRUE(last->isVisible());
  EXPECT_TRUE(rig.Desktop.IsLoaded(WindowName::RestrictList));
}

TEST_F(DesktopTest, AWindowOfTheLastRunTakesNoFocusAndOneThatIsAskedForDoes) {
  Plug(WindowName::Channels, "channels");
  rig.Unit.Set("ChannelListing", "1");
  const ShownWindows shown;
  rig.Unit.StartIdle();
  ASSERT_TRUE(last->isVisible());
  EXPECT_FALSE(shown.WantFocus.at(last));
  rig.Unit.Rules->Switches().Click(WindowName::Channels, false);
  rig.Unit.Rules->Switches().Click(WindowName::Channels, true);
  EXPECT_TRUE(shown.WantFocus.at(last));
}

TEST_F(DesktopTest, AWindowClosedAndShownAtOnceIsANewOne) {
  Plug(WindowName::Presets, "presets");
  rig.Unit.StartIdle();
  rig.Desktop.Show(WindowName::Presets);
  last->close();
  rig.Desktop.Show(WindowName::Presets);
  rig.Run(200ms);
  EXPECT_TRUE(last->isVisible());
  EXPECT_THAT(diary.Lines, ElementsAre("presets made", "presets closes", "presets gone", "presets made"));
}

TEST_F(DesktopTest, TheChannelsWindowLivesFromTheLoadAndIsOnlyHidden) {
  Plug(WindowName::Channels, "channels");
  diary.RefusesClose = true;
  rig.Unit.Set("ChannelListing", "0");
  rig.Unit.Start();
  ASSERT_NE(last, nullptr);
  EXPECT_TRUE(last->isHidden());
  rig.Unit.Rules->Switches().Click(WindowName::Channels, true);
  EXPECT_TRUE(last->isVisible());
  diary.OnClose = [this] { rig.Unit.Rules->Switches().Click(WindowName::Channels, false); };
  last->close();
  EXPECT_TRUE(last->isHidden());
  EXPECT_FALSE(rig.Record().chkChannelListing);
  rig.Run(200ms);
  rig.Unit.Rules->Switches().Click(WindowName::Channels, true);
  EXPECT_TRUE(last->isVisible());
  rig.Unit.CloseAndWait();
  EXPECT_THAT(diary.Lines, ElementsAre("channels made", "channels closes", "channels closes for good"));
}

TEST_F(DesktopTest, OnlyVisibleWindowsAreRefreshed) {
  Plug(WindowName::Schedule, "schedule");
  Plug(WindowName::Channels, "channels");
  rig.Unit.Set("ChannelListing", "0");
  rig.Unit.StartIdle();
  const PlainWindow* const hidden = last;
  rig.Desktop.Show(WindowName::Schedule);
  const int before = last->Refreshed;
  rig.Run(1s);
  EXPECT_GT(last->Refreshed, before);
  EXPECT_EQ(hidden->Refreshed, 0);
}

TEST_F(DesktopTest, WindowsAreRefreshedLessOftenWhileNobodyIsThere) {
  Plug(WindowName::Schedule, "schedule");
  rig.Unit.StartIdle();
  rig.Desktop.Show(WindowName::Schedule);
  const auto refreshesInASecond = [this] {
    const int before = last->Refreshed;
    rig.Run(1s);
    return last->Refreshed - before;
  };
  QTest::keyClick(last, Qt::Key_Shift);
  rig.Run(200ms);
  EXPECT_NEAR(refreshesInASecond(), 10, 1);
  rig.Run(windows::Attention::kLasts);
  EXPECT_NEAR(refreshesInASecond(), 4, 1);
}

TEST_F(DesktopTest, TheOthersFollowTheMainWindowDownAndUp) {
  Plug(WindowName::Schedule, "schedule");
  rig.Unit.StartIdle();
  rig.Unit.Rules->Switches().Click(WindowName::Schedule, true);
  Minimise();
  rig.Run(200ms);
  EXPECT_TRUE(last->isHidden());
  EXPECT_TRUE(rig.Desktop.IsLoaded(WindowName::Schedule)) << "hidden, not closed";
  Minimise(false);
  rig.Run(200ms);
  EXPECT_TRUE(last->isVisible());
  EXPECT_THAT(diary.Lines, ElementsAre("schedule made"));
}

TEST_F(DesktopTest, TheTipOfTheTrayIconFollowsTheSong) {
  rig.Unit.StartIdle();
  rig.Run(200ms);
  EXPECT_EQ(rig.Desktop.TrayTip(), QStringLiteral("Kestrune: \nMoonlighters - Slow Tide"));
  rig.Unit->cmdRecord();
  rig.Unit.NextSong("Salt & Sun", "You & I");
  rig.Run(200ms);
  EXPECT_EQ(rig.Desktop.TrayTip(), QStringLiteral("Kestrune: Recording\nSalt & Sun - You & I"));
}

TEST_F(DesktopTest, AReaderSaysTheNewSongWhileAWindowIsInFront) {
  rig.Unit.StartIdle();
  rig.Main().activateWindow();
  rig.Run(2s);
  const auto& announcer = dynamic_cast<const windows::Announcer&>(rig.Find<QObject>("announcer"));
  EXPECT_EQ(announcer.Said(), QString());
  ASSERT_NE(QApplication::activeWindow(), nullptr);
  rig.Unit.NextSong("Salt & Sun", "You & I");
  rig.Run(2s);
  EXPECT_EQ(announcer.Said(), QStringLiteral("You & I by Salt & Sun."));
  rig.Main().hide();
  QCoreApplication::processEvents();
  ASSERT_EQ(QApplication::activeWindow(), nullptr);
  rig.Unit.NextSong("Moonlighters", "Slow Tide");
  rig.Run(2s);
  EXPECT_EQ(announcer.Said(), QStringLiteral("You & I by Salt & Sun.")) << "the user is elsewhere";
}

TEST(Announcer, IsANotificationThatReadsWhatIsSaid) {
  QWidget window;
  windows::Announcer& announcer = *new windows::Announcer(window);
  announcer.Say(QStringLiteral("Recording."));
  const QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&announcer);
  ASSERT_NE(spoken, nullptr);
  EXPECT_EQ(spoken->role(), QAccessible::Notification);
  EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Recording."));
  EXPECT_FALSE(spoken->state().invisible);
  ASSERT_NE(spoken->parent(), nullptr);
  EXPECT_EQ(spoken->parent()->object(), &window);
}

/// The picture that a desktop shows of an icon at this size.
QImage PictureOf(const QIcon& icon, int size = 32) {
  return icon.pixmap(QSize(size, size), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
}

TEST_F(DesktopTest, WhileASongIsRecordedTrayAndWindowsAreMarked) {
  Plug(WindowName::Schedule, "schedule");
  rig.Unit.StartIdle();
  rig.Desktop.Show(WindowName::Schedule);
  const PlainWindow* const open = last;
  const QImage plain = PictureOf(rig.Desktop.TrayIcon());
  EXPECT_EQ(PictureOf(open->windowIcon()), plain);
  rig.Unit->cmdRecord();
  rig.Run(200ms);
  const QImage marked = PictureOf(rig.Desktop.TrayIcon());
  EXPECT_NE(marked, plain);
  EXPECT_EQ(PictureOf(rig.Main().windowIcon()), marked);
  EXPECT_EQ(PictureOf(open->windowIcon()), marked);
  Plug(WindowName::Presets, "presets");
  rig.Desktop.Show(WindowName::Presets);
  EXPECT_EQ(PictureOf(last->windowIcon()), marked) << "opened within the recording";
  rig.Unit->cmdStop();
  rig.Run(200ms);
  EXPECT_EQ(PictureOf(rig.Desktop.TrayIcon()), plain);
  EXPECT_EQ(PictureOf(rig.Main().windowIcon()), plain);
}

TEST_F(DesktopTest, AWaitForTheNextSongIsNoRecordingYet) {
  rig.Unit.StartIdle();
  rig.Unit->SetChannelNumber(45);
  rig.Run(200ms);
  const QImage plain = PictureOf(rig.Desktop.TrayIcon());
  rig.Unit->cmdRecord();
  rig.Run(200ms);
  EXPECT_EQ(PictureOf(rig.Desktop.TrayIcon()), plain);
}

TEST(ProgramIcon, TheMarkIsRedOnTheLowerRightAtEverySizeOfATray) {
  for (const int size : {16, 22, 24, 32, 48}) {
    const QImage plain = PictureOf(windows::ProgramIcon(), size);
    const QImage marked = PictureOf(windows::RecordingIcon(), size);
    ASSERT_EQ(marked.size(), plain.size()) << size;
    const int side = marked.width();
    const QColor middle = marked.pixelColor(side * 3 / 4 - 1, side * 3 / 4 - 1);
    EXPECT_GT(middle.red(), 180) << size;
    EXPECT_LT(middle.green(), 90) << size;
    if (size == 22) continue;  // scaled from a larger one
    EXPECT_EQ(marked.copy(0, 0, side, side / 3), plain.copy(0, 0, side, side / 3)) << size;
  }
}

/// Calls this with Please Wait at a moment of the search.
void AtSearch(DesktopRig& rig, std::chrono::milliseconds when, std::function<void(QWidget&)> look) {
  rig.Unit.Loop.AtHardware(when, [look = std::move(look)] {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->objectName() == QLatin1String("frmPleaseWait")) return look(*window);
    ADD_FAILURE() << "Please Wait is not there";
  });
}

TEST_F(DesktopTest, TheSearchForTheRadioStandsInFrontOfTheAboutWindow) {
  rig.Unit.Radio.Answers = false;
  AtSearch(rig, 1s, [](QWidget& window) {
    QCoreApplication::processEvents();
    // In front is who was raised last, which has the keys too, among those that stay above all others.
    EXPECT_TRUE(window.isActiveWindow());
    EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
  });
  rig.Unit.Start(StartOutcome::Failed);
}

TEST_F(DesktopTest, TheSearchNamesThePortFromItsFirstMomentOn) {
  rig.Unit.Radio.Answers = false;
  // The first second and a half are a sleep, in which nothing is refreshed.
  AtSearch(rig, 100ms, [](QWidget& window) {
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblPort"))->text(), QStringLiteral("1"));
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblStep"))->text(),
              QStringLiteral("Trying /dev/radio1: attempt 1 of 2"));
  });
  int early = -1;
  AtSearch(rig, 3s, [&early](QWidget& window) {
    early = window.findChild<QProgressBar*>(QStringLiteral("pbrSearch"))->value();
  });
  AtSearch(rig, 5s, [&early](QWidget& window) {
    EXPECT_GT(window.findChild<QProgressBar*>(QStringLiteral("pbrSearch"))->value(), early);
  });
  rig.Unit.Start(StartOutcome::Failed);
  EXPECT_GT(early, 0);
}

TEST_F(DesktopTest, CancellingTheSearchClosesTheProgramAsACloseDoes) {
  rig.Unit.Radio.Answers = false;
  const auto begun = rig.Unit.Loop.SteadyNow();
  const auto press = rig.Unit.Loop.MakeTimer(3s, [] {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->objectName() == QLatin1String("frmPleaseWait")) QTest::keyClick(window, Qt::Key_Escape);
  });
  press->SetEnabled(true);
  rig.Unit.Start(StartOutcome::Closed);
  EXPECT_LT(rig.Unit.Loop.SteadyNow() - begun, 7s) << "no wait of the search is waited for";
  EXPECT_TRUE(rig.Unit.Loop.RunUntil([&] { return rig.Unit.Closed; }, 20s));
  EXPECT_TRUE(rig.Unit.Logged("Shutting Down"));
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
}

TEST_F(DesktopTest, TheMenuOfTheTrayTunesToAHint) {
  rig.Unit.Set("Hints", "True");
  rig.Unit.Files.MakeFolders("/home/user/Application Data/Kestrune");
  rig.Unit.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "0Wren\n");
  rig.Unit.Radio.Channels[47].Station = "Rock & Rye";
  rig.Unit.StartIdle();
  rig.Run(12s);
  QAction* const tune = TrayEntry("mnuTuneToHint");
  ASSERT_NE(tune, nullptr);
  EXPECT_FALSE(tune->isVisible());
  rig.Unit.Radio.Play(47, "Abigail Wren", "Winter Apples");
  rig.Run(12s);
  EXPECT_TRUE(tune->isVisible());
  EXPECT_EQ(tune->text(), QStringLiteral("Tune to 47 Rock && Rye"));

  rig.Unit->cmdRecord();
  rig.Run(200ms);
  EXPECT_FALSE(tune->isVisible()) << "a recording keeps its channel";
  rig.Unit->cmdStop();
  rig.Run(200ms);
  EXPECT_TRUE(tune->isVisible());
  EXPECT_EQ(rig.Unit.Radio.TunedChannel, 44);
  tune->trigger();
  rig.Run(3s);
  EXPECT_EQ(rig.Unit.Radio.TunedChannel, 47);
  EXPECT_FALSE(tune->isVisible());
}

TEST_F(DesktopTest, WithoutATrayAMinimisedProgramStaysInTheTaskBar) {
  rig.Unit.Set("TaskBarMinimized", "False");
  rig.Unit.StartIdle();
  ASSERT_FALSE(rig.Record().TrayIcon) << "there is none here";
  Minimise();
  rig.Run(1s);
  EXPECT_FALSE(rig.Main().isHidden());
  EXPECT_TRUE(rig.Main().isMinimized());
}

/// A window with a special way to show itself at the program's first run.
class FirstRunWindow final : public PlainWindow {
 public:
  FirstRunWindow(Diary& diary, recorder::Kestrune& unit) : PlainWindow(diary, "config"), unit_(unit) {}
  void ShowFirst() {
    Note(unit_.State().Run.FormLoading ? "first while loading" : "first too late");
    show();
    close();
  }

 private:
  recorder::Kestrune& unit_;
};

TEST_F(DesktopTest, TheFirstRunShowsTheConfigurationInItsOwnWayAndWaitsForIt) {
  rig.Desktop.SetMaker(WindowName::Config,
                       [&] { return windows::Opened(std::make_unique<FirstRunWindow>(diary, *rig.Unit)); });
  rig.Unit.Start();
  EXPECT_THAT(diary.Lines,
              ElementsAre("config made", "config first while loading", "config closes", "config gone"));
}

TEST_F(DesktopTest, AKeyOfAnotherWindowReachesTheMainWindow) {
  rig.Unit.Set("Preset2", "51");
  rig.Unit.StartIdle();
  rig.Desktop.PassKey(113);
  rig.Run(2s);
  EXPECT_EQ(rig.Unit->State().Radio.ChannelNumber, 51);
  rig.Desktop.PassKey('R');
  rig.Run(10ms);
  EXPECT_TRUE(rig.Unit->State().Recording.RecordRequested);
  rig.Desktop.PassKey('S');
  rig.Run(10ms);
  EXPECT_FALSE(rig.Unit->State().Recording.RecordRequested);
}

TEST_F(DesktopTest, AKeyBeforeTheProgramTakesInputDoesNothing) {
  rig.Desktop.HideAndDisableMainWindow();
  rig.Desktop.PassKey('R');
  EXPECT_FALSE(rig.Unit->State().MayStop());
  rig.Desktop.EnableMainWindow();
}

TEST_F(DesktopTest, AnEmptyPresetOpensThePresetsWindow) {
  Plug(WindowName::Presets, "presets");
  rig.Unit.StartIdle();
  rig.Desktop.PassKey(116);
  EXPECT_THAT(diary.Lines, ElementsAre("presets made"));
}

TEST_F(DesktopTest, WhatIsNotThereIsNoNews) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Shown.clear();
  rig.Desktop.Show(WindowName::Mixer);
  rig.Main().mnuRadioID();
  rig.Main().OfferForList("Artist", "Moonlighters");
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
  EXPECT_FALSE(rig.Desktop.IsLoaded(WindowName::Mixer));
}

TEST_F(DesktopTest, TheHelpIsOpenedAndAFailureIsNoNews) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Shown.clear();
  rig.Shell.Works = false;
  rig.Main().mnuHelpWith();
  EXPECT_THAT(rig.Shell.Opened, ElementsAre("/program/Documentation/Kestrune.html"));
  EXPECT_THAT(rig.Unit.Dialogs.Shown, IsEmpty());
}

TEST_F(DesktopTest, TheStatementOfIntentIsShown) {
  rig.Unit.StartIdle();
  rig.Unit.Dialogs.Shown.clear();
  rig.Main().mnuIntent();
  ASSERT_THAT(rig.Unit.Dialogs.Shown, SizeIs(1));
  EXPECT_EQ(rig.Unit.Dialogs.Shown[0].Title, "Kestrune Statement of Intent");
  EXPECT_EQ(rig.Unit.Dialogs.Shown[0].Text,
            "Kestrune is intended for use as a timeshifting utility for personal use only.\n"
            "Distributing or otherwise making available MP3 files created by Kestrune is a crime.");
}

TEST_F(DesktopTest, TheCloseBoxClosesInTwoPasses) {
  rig.Unit.StartIdle();
  rig.Main().close();
  EXPECT_FALSE(rig.Unit->State().Run.ShuttingDown) << "once the window has returned to the loop";
  rig.Run(100ms);
  EXPECT_TRUE(rig.Unit->State().Run.ShuttingDown);
  EXPECT_TRUE(rig.Main().isHidden());
  EXPECT_EQ(rig.Unit.Dialogs.GivenUp, 1);
  EXPECT_FALSE(rig.Unit.Closed);
  rig.Main().close();
  EXPECT_TRUE(rig.Unit.Loop.RunUntil([this] { return rig.Unit.Closed; }, 20s));
}

TEST_F(DesktopTest, ACloseHidesEveryWindowAndRunsItsClosingRuleAtTheEnd) {
  Plug(WindowName::Schedule, "schedule");
  Plug(WindowName::Mixer, "mixer");
  rig.Unit.StartIdle();
  rig.Desktop.Show(WindowName::Schedule);
  rig.Desktop.Show(WindowName::Mixer);
  rig.Unit->Close();
  rig.Run(500ms);
  for (const QWidget* window : QApplication::topLevelWidgets()) EXPECT_FALSE(window->isVisible());
  EXPECT_THAT(diary.Lines, ElementsAre("schedule made", "mixer made"));
  EXPECT_TRUE(rig.Unit.Loop.RunUntil([this] { return rig.Unit.Closed; }, 20s));
  EXPECT_THAT(diary.Lines, ElementsAre("schedule made", "mixer made", "mixer closes for good",
                                       "schedule closes for good"));
  rig.Desktop.Detach();
  EXPECT_THAT(diary.Lines, Contains("schedule gone"));
}

TEST_F(DesktopTest, ACloseFromAFailedStartGoesTheSameWay) {
  rig.Unit.Radio.Answers = false;
  rig.Unit.Start(StartOutcome::Failed);
  EXPECT_TRUE(rig.Unit.Loop.RunUntil([this] { return rig.Unit.Closed; }, 20s));
  for (const QWidget* window : QApplication::topLevelWidgets()) EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(DesktopTest, ACloseWithinTheLoadEndsIt) {
  rig.Unit.Loop.AtHardware(2s, [this] { rig.Unit->Wishes().Close(); });
  rig.Unit.Start(StartOutcome::Closed);
  EXPECT_TRUE(rig.Unit.Loop.RunUntil([this] { return rig.Unit.Closed; }, 20s));
}

}  // namespace
}  // namespace kestrune::test
