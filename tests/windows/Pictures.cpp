// Takes a picture of every window with sample records, for people to look at:
//
//   windows_pictures FOLDER     short and extreme texts, light and dark, at single, 1.25-fold and double scale
//   windows_pictures --check    at single scale, kept nowhere
//
// Prints each text that is too faint to be read, and then exits with 1.
// A new window needs a line in kPictures.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFont>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPalette>
#include <QPixmap>
#include <QProcess>
#include <QPushButton>
#include <QStyle>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "support/FakeAutostart.h"
#include "support/FakeInputListener.h"
#include "support/FakeMixer.h"
#include "windows/Binding.h"
#include "windows/Contrast.h"
#include "windows/Controls.h"
#include "windows/DesktopRig.h"
#include "windows/FaintTexts.h"
#include "windows/QtDialogs.h"
#include "windows/RowMenu.h"
#include "windows/UnitWindows.h"
#include "windows/frmLegal.h"
#include "windows/frmPleaseWait.h"
#include "windows/frmSplash.h"
#include "windows/frmUpdating.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

using recorder::WindowName;

/// What a picture is taken of: a unit with the desktop's windows, and either short or extreme texts in its
/// records.
struct Stage {
  Stage() = default;
  ~Stage() { Rig.Desktop.Detach(); }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  DesktopRig Rig;
  FakeMixer Mixer;
  FakeAutostart Autostart;
  FakeInputListener Inputs;
  windows::UnitWindows Windows{Rig.Desktop,
                               *Rig.Unit.Rules,
                               {.Loop = Rig.Unit.Loop,
                                .Files = Rig.Unit.Files,
                                .Environment = Rig.Unit.Environment,
                                .Dialogs = Rig.Unit.Dialogs,
                                .Shell = Rig.Shell,
                                .Mixer = Mixer,
                                .Autostart = Autostart,
                                .Audio = Rig.Unit.Audio,
                                .InputListener = Inputs}};
  bool Extreme = false;
  QString Folder;
  QString Look;
  mutable int Faint = 0;  ///< texts of its windows that cannot be read

  void Take(QWidget& window, const QString& name) const {
    window.ensurePolished();
    if (!window.isVisible()) window.show();
    QCoreApplication::processEvents();
    const QImage picture = window.grab().toImage();
    const QString shown = name + QLatin1Char('-') + Look;
    if (!Folder.isEmpty()) picture.save(Folder + QLatin1Char('/') + shown + QStringLiteral(".png"));
    for (const QString& text : FaintTexts(window, picture)) {
      fmt::print("{}: {}\n", windows::FromQt(shown), windows::FromQt(text));
      ++Faint;
    }
  }

  /// Opens a window as the program does.
  QWidget& Open(WindowName name) {
    Rig.Desktop.Show(name);
    Rig.Run(200ms);
    return *Rig.Desktop.WidgetOf(name);
  }
  void TakeOpened(WindowName name, const QString& picture) { Take(Open(name), picture); }
  /// For a window that blocks its caller: `open` returns once the picture is taken.
  void TakeBlocking(const std::function<void()>& open, const QString& name) {
    QTimer::singleShot(0, qApp, [this, name] {
      QWidget* window = QApplication::activeModalWidget();
      if (window == nullptr) return;
      Take(*window, name);
      window->close();
    });
    open();
  }
};

/// Picks the item as a user does.
void Choose(QComboBox& list, int row) {
  list.setCurrentIndex(row);
  emit list.activated(row);
}

void Play(Stage& stage) {
  UnitRig& unit = stage.Rig.Unit;
  unit.Set("MainTop", "0");  // or it would be the first run
  if (stage.Extreme) {
    // As wide as 16 characters get, and texts that could be mistaken for markup.
    for (int channel = 100; channel <= 220; ++channel) {
      unit.Radio.Channels[channel] = {"WWWWWWWWWWWWWWWW", "WWWWWWWWWWWWWWWW", "WWWWWWWWWWWWWWWW",
                                      "WWWWWWWWWWWWWWWW"};
    }
    unit.Radio.Channels[44] = {"Rock & Roll & So", "<b>Rock&amp;</b>", "W. & W. && Wombs",
                               "<i>Wwww</i> & Ww"};
  }
  for (int i = 1; i <= 12; ++i) {
    if (i % 4 == 0) continue;
    unit.Set("Preset" + std::to_string(i),
             stage.Extreme ? fmt::format("{} - A Station & Its Very Long Name, Number {}", 40 + i, i)
                           : fmt::format("{} - Station {}", 40 + i, 40 + i));
  }
  unit.StartIdle();
}

void TakeMain(Stage& stage) {
  Play(stage);
  presenters::MainWindow record = stage.Rig.Unit.Window();
  const auto take = [&stage, &record](const char* name) {
    // Longer than any radio sends.
    if (stage.Extreme) {
      record.lblChannel.Caption = "255: The Longest Name of Any && All Stations in the Sky";
      record.lblGenre.Caption = "Rock && Roll && Rhythm && Blues && Everything Else Under the Sun";
      record.lblArtist.Caption = "W. W. Wolfgang and the Widely Wandering Wailers && Friends";
      record.lblSong.Caption = "<b>What Would We Want</b> With Wild && Windy Weather (Live)";
    }
    stage.Rig.Main().Refresh(record);
    stage.Take(stage.Rig.Main(), QLatin1String(name));
  };
  take("frmKestrune-idle");
  stage.Rig.Unit->cmdRecord();
  stage.Rig.Run(12345ms);
  record = stage.Rig.Unit.Window();
  record.lblRecording.Visible = true;
  record.pctTimer.Visible = true;
  record.lblRemaining = {.Caption = "01:23:45", .Visible = true};
  if (stage.Extreme) {
    record.lblRecording.Caption = "Waiting for channel load";
    record.lblRecorded.Caption = record.lblTooShort.Caption = "32767";
    record.lblTooLong.Caption = record.lblRestricted.Caption = "32767";
    record.pbrTerSignal = {.Value = 7650, .Caption = "255%"};
  }
  take("frmKestrune-recording");
  std::vector<std::int16_t> sound;
  std::uint32_t noise = 1;
  for (int step = 0; step < 200; ++step) {
    sound.clear();
    for (int i = 0; i < 4800; ++i) {
      noise = noise * 1664525U + 1013904223U;
      const double hum = 9000 * std::sin(i * 0.03) + 5000 * std::sin(i * 0.31);
      sound.push_back(static_cast<std::int16_t>(hum + static_cast<double>(noise >> 20U)));
      sound.push_back(static_cast<std::int16_t>(hum * 0.4 * std::sin(step * 0.1)));
    }
    stage.Rig.Unit.Rules->AudioDisplay().Draw(sound, {.SampleRate = 48000, .Channels = 2});
  }
  for (const char* type : {"bars", "needles", "wave", "spectrum", "history"}) {
    stage.Take(*stage.Rig.Main().findChild<QWidget*>(QStringLiteral("AudioDisplay")),
               QStringLiteral("AudioDisplay-") + QLatin1String(type));
    stage.Rig.Unit.Rules->AudioDisplay().NextType();
  }
  for (const char* menu : {"mnuFile", "mnuOptions", "mnuHelp"}) {
    stage.Take(*stage.Rig.Main().findChild<QMenu*>(QLatin1String(menu)), QLatin1String(menu));
  }
}

/// Main window and now window at the full size of common screens, a song playing that was heard before.
void TakeLarge(Stage& stage) {
  UnitRig& unit = stage.Rig.Unit;
  for (int song = 0; song < (stage.Extreme ? 60 : 7); ++song) {
    platform::HistorySong row;
    row.Ended = unit.Loop.Now().AddMinutes(-4 * song);
    row.Began = row.Ended.AddMinutes(-4);
    row.Artist = stage.Extreme ? "<b>Wwwwwwwwwwwwwwwwwww</b> & " + std::string(80, 'W') : "Abigail Wren";
    row.Title = fmt::format("Winter Song {}", song + 1);
    row.LengthMs = 240000 + 5000 * song;
    row.File = fmt::format("/music/Folk/song {}.mp3", song);
    unit.History.Rows.Songs.push_back(row);
  }
  Play(stage);
  unit.Unit->cmdRecord();
  unit.NextSong("Abigail Wren", "Winter Song 3");
  stage.Rig.Run(100s);
  QWidget& now = stage.Open(WindowName::KestruneNow);
  for (const QSize screen : {QSize(1024, 600), QSize(1366, 768), QSize(1920, 1080), QSize(3840, 2160)}) {
    const QString size = QStringLiteral("-%1").arg(screen.width());
    stage.Rig.Main().resize(screen);
    stage.Rig.Run(1s);
    stage.Take(stage.Rig.Main(), QLatin1String("frmKestrune") + size);
    now.resize(screen);
    stage.Take(now, QLatin1String("frmKestruneNow") + size);
  }
}

/// In the middle of the first pass through 120 channels, or with none that is known to be expected.
void TakeLoad(Stage& stage) {
  UnitRig& unit = stage.Rig.Unit;
  unit.Set("MainTop", "0");
  std::string list;
  for (int channel = 3; channel < 123; ++channel) {
    unit.Radio.Channels[channel] = {fmt::format("Station {}", channel), "Folk", "Abigail Wren",
                                    "Winter Apples"};
    list += fmt::format("{}\tStation {}\t\t\tFolk\n", channel, channel);
  }
  if (!stage.Extreme) {
    unit.Files.MakeFolders("/home/user/Application Data/Kestrune");
    unit.Files.Put("/home/user/Application Data/Kestrune/ChannelList.txt", list);
  }
  unit.Start();
  static_cast<void>(unit.Loop.RunUntil([&] { return unit->State().Radio.Load.Done == 37; }, 60s));
  stage.Rig.Main().Refresh();
  stage.Take(stage.Rig.Main(), QStringLiteral("frmKestrune-loading"));
}

/// An event that lost something, songs of several fates, and what went wrong.
void TakeReport(Stage& stage) {
  UnitRig& unit = stage.Rig.Unit;
  const base::DateValue began = unit.Loop.Now().AddHours(-1);
  platform::HistoryRows& rows = unit.History.Rows;
  rows.Incidents.push_back({.Kind = platform::IncidentKind::Line,
                            .Began = began.AddMinutes(20),
                            .Ended = began.AddMinutes(24),
                            .Seconds = 240,
                            .Cause = "the device is gone"});
  rows.Events.push_back({.Entry = 3,
                         .Due = began,
                         .PlannedSeconds = 2400,
                         .Channel = 47,
                         .Station = "Campfire Folk",
                         .Began = began,
                         .Ended = began.AddMinutes(40),
                         .WhyNot = {}});
  for (int song = 0; song < (stage.Extreme ? 60 : 6); ++song) {
    platform::HistorySong row;
    row.Began = began.AddMinutes(4 * song);
    row.Ended = row.Began.AddMinutes(4);
    row.Channel = 47;
    row.Artist = stage.Extreme ? "<b>Wwwwwwwwwwwwwwwwwww</b> & " + std::string(80, 'W') : "Abigail Wren";
    row.Title = fmt::format("Winter Apples, part {}", song + 1);
    row.LengthMs = 240000;
    row.Fate = song % 3 == 2 ? platform::SongFate::TooShort : platform::SongFate::Kept;
    row.File = "/music/Folk/song.mp3";
    row.Event = song < 5 ? 3 : 0;
    rows.Songs.push_back(row);
  }
  QWidget& window = stage.Open(WindowName::Report);
  stage.Rig.Run(std::chrono::seconds(2));
  Find<QListWidget>(window, "lstNights").setCurrentRow(1);
  stage.Take(window, QStringLiteral("frmReport"));
  for (int play = 0; play < (stage.Extreme ? 300 : 12); ++play) {
    rows.Plays.push_back({.Channel = 47,
                          .Station = "Campfire Folk",
                          .Genre = {},
                          .Artist = stage.Extreme
                                        ? fmt::format("W. & <b>W</b> Wwwwwwwwwwwwwwwwwww {}", play % 250)
                                        : "Abigail Wren",
                          .Title = fmt::format("Winter Apples, part {}", play % 5),
                          .From = began.AddMinutes(play),
                          .To = began.AddMinutes(play + 1)});
  }
  Find<QTabWidget>(window, "tabReport").setCurrentIndex(1);
  stage.Rig.Run(std::chrono::seconds(1));
  stage.Take(window, QStringLiteral("frmReport-artists"));
  Choose(Find<QComboBox>(window, "cboPlayedAs"), 1);
  stage.Rig.Run(std::chrono::seconds(1));
  stage.Take(window, QStringLiteral("frmReport-songs"));
}

/// Songs of several fates under the one that plays, one of them chosen.
void TakeShelf(Stage& stage) {
  UnitRig& unit = stage.Rig.Unit;
  unit.Set("ShelfSongs", "20");
  unit.Set("MinSongLength", "30");
  Play(stage);
  stage.Rig.Unit->cmdRecord();
  for (int song = 0; song < (stage.Extreme ? 30 : 5); ++song) {
    if (song == 3) stage.Rig.Unit->cmdStop();
    const std::string number = std::to_string(song + 1);
    unit.NextSong(stage.Extreme ? "W. & <b>W</b> " + number : "Abigail Wren", "Winter Apples " + number);
    stage.Rig.Run(std::chrono::seconds(song % 2 == 0 ? 62 : 25));
  }
  QWidget& window = stage.Open(WindowName::Shelf);
  auto& songs = Find<QTreeWidget>(window, "lstSongs");
  songs.setCurrentItem(songs.topLevelItem(2));
  stage.Take(window, QStringLiteral("frmShelf"));
  songs.setCurrentItem(songs.topLevelItem(0));
  Find<QPushButton>(window, "cmdKeep").click();
  stage.Rig.Run(std::chrono::seconds(1));
  stage.Take(window, QStringLiteral("frmShelf-kept"));
}

/// As it opens, sorted with favourites first, after a search, and with the menu of a row.
void TakeChannels(Stage& stage) {
  QWidget& window = stage.Open(WindowName::Channels);
  stage.Take(window, QStringLiteral("frmChannels"));
  for (const std::int16_t channel : {44, 47, 110})
    stage.Rig.Unit.Rules->ChannelMenu().ToggleFavourite(channel);
  stage.Rig.Unit->cmdStop();
  stage.Rig.Unit.Rules->ChannelsWindow().ClickTitle(1);
  Find<QCheckBox>(window, "chkFavouritesFirst").click();
  stage.Take(window, QStringLiteral("frmChannels-favourites"));
  auto& search = Find<QLineEdit>(window, "txtSearch");
  search.setText(stage.Extreme ? QStringLiteral("wwwwwwww 1") : QStringLiteral("4"));
  stage.Take(window, QStringLiteral("frmChannels-search"));
  search.clear();
  auto& menu = Find<windows::RowMenu>(window, "mnuRow");
  menu.Open(1, QPoint(20, 20));
  stage.Take(menu, QStringLiteral("frmChannels-menu"));
  menu.close();
  for (QMenu* list : menu.findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) {
    if (list->title() == QLatin1String("&Preset")) stage.Take(*list, QStringLiteral("frmChannels-presets"));
    list->close();
  }
}

void TakeLists(Stage& stage) {
  Play(stage);
  stage.Rig.Unit->cmdRecord();
  for (int song = 1; song <= 4; ++song) {
    stage.Rig.Unit.NextSong("Moonlighters & Co", "Song " + std::to_string(song));
    stage.Rig.Run(20s);
  }
  if (stage.Extreme) {
    for (int line = 0; line < 200; ++line) {
      stage.Rig.Unit->Parts().Log.DoLog(fmt::format("<b>Line</b> {} & {:->200}", line, ">"));
    }
  }
  TakeChannels(stage);
  stage.TakeOpened(WindowName::Log, QStringLiteral("frmLog"));
  stage.TakeOpened(WindowName::KestruneNow, QStringLiteral("frmKestruneNow"));
  stage.TakeOpened(WindowName::Presets, QStringLiteral("frmPresets"));
  TakeReport(stage);

  using schedule::RestrictList;
  schedule::Restrictions& lists = stage.Rig.Unit->Parts().Restrictions;
  for (const RestrictList list : {RestrictList::GrabArtists, RestrictList::GrabSongs,
                                  RestrictList::KillArtists, RestrictList::KillSongs}) {
    for (const char* fragment : {"Moonlighters", "Rock & Roll", "<b>Bold</b>"}) {
      static_cast<void>(lists.Add(list, fragment));
    }
    for (int i = 0; stage.Extreme && i < 100; ++i) {
      static_cast<void>(lists.Add(list, fmt::format("{:W>60} {}", "", i)));
    }
  }
  stage.TakeOpened(WindowName::RestrictList, QStringLiteral("frmRestrictList"));
  stage.TakeBlocking(
      [&stage] {
        stage.Rig.Desktop.OfferForList(
            "Artist", stage.Extreme ? "W. && W. <b>Wwwwwwwwwwwwwwwwwww</b> && Wailers" : "Moonlighters");
      },
      QStringLiteral("frmGrabKill"));
  stage.Rig.Desktop.ShowRadioID();
  stage.Rig.Run(std::chrono::milliseconds(100));
  if (QWidget* window = QApplication::activeModalWidget()) {
    stage.Take(*window, QStringLiteral("frmRadioID"));
    window->close();
  }
}

/// As on a large screen: weekly and daily entries, overlaps, and entries that cannot record.
void TakeWholeSchedule(Stage& stage, QWidget& window) {
  window.resize(1420, 640);
  stage.Take(window, QStringLiteral("frmSchedule-wide"));
  stage.Rig.Desktop.Close(WindowName::Schedule);
  const auto put = [&stage](int number, const char* start, const char* duration, const char* rate,
                            int channel) {
    const std::string entry = std::to_string(number);
    stage.Rig.Unit.Set("ScheduleEnabled" + entry, "1");
    stage.Rig.Unit.Set("ScheduleStartDate" + entry, start);
    stage.Rig.Unit.Set("ScheduleDuration" + entry, duration);
    stage.Rig.Unit.Set("ScheduleChannel" + entry, std::to_string(channel));
    stage.Rig.Unit.Set("ScheduleMP3BitRate" + entry, rate);
  };
  put(1, "Jan 15, 1967 8:00 PM", "2:00", "128 Stereo", 44);
  put(2, "Jan 7, 1967 11:00 PM", "3:30", "128 Stereo", 45);
  put(3, "Jan 2, 1967 9:00 PM", "1:30", " ", 46);
  put(4, "Jan 4, 2005 6:00 AM", "12:00", "64 Mono", 251);
  put(5, "Jan 7, 2005 9:00 AM", "0:20", "128 Stereo", 47);
  put(7, "Jan 15, 1967 11:30 AM", "1:00", "128 Stereo", 44);
  QWidget& again = stage.Open(WindowName::Schedule);
  again.resize(1420, 640);
  stage.Take(again, QStringLiteral("frmSchedule-week"));
  again.resize(780, 500);
  stage.Take(again, QStringLiteral("frmSchedule-week-narrow"));
}

void TakeSchedule(Stage& stage) {
  Play(stage);
  QWidget& window = stage.Open(WindowName::Schedule);
  const int rows = stage.Extreme ? 10 : 2;
  for (int row = 0; row < rows; ++row) {
    const auto list = [&window, row](const char* name) -> QComboBox& {
      return Find<QComboBox>(window, (std::string(name) + "_" + std::to_string(row)).c_str());
    };
    Choose(list("cboChannel"), stage.Extreme ? 20 + row : 4);
    Choose(list("cboDurationHour"), 10 + row);
    Choose(list("cboMP3BitRate"), 3);
  }
  stage.Take(window, QStringLiteral("frmSchedule"));
  stage.TakeBlocking([&window] { Find<QPushButton>(window, "cmdStartDate_0").click(); },
                     QStringLiteral("frmDateSelect"));
  TakeWholeSchedule(stage, window);
}

void TakeConfig(Stage& stage) {
  if (stage.Extreme) {
    stage.Rig.Unit.Set("FileDir", "/music/" + std::string(120, 'w'));
    stage.Rig.Unit.Set("FilenameFormat", std::string(120, 'W') + "%a");
    stage.Rig.Unit.Set("AGCEnabled", "True");
    stage.Rig.Unit.Set("ShelfFolder", "/music/" + std::string(120, 'v') + "/");
    stage.Rig.Unit.Set("ShelfSongs", "1000");
    stage.Rig.Unit.Set("ShelfMegabytes", "1000000");
    stage.Rig.Unit.Set("Hints", "True");
  }
  Play(stage);
  QWidget& window = stage.Open(WindowName::Config);
  auto& pages = Find<QTabWidget>(window, "tabConfig");
  for (int page = pages.count() - 1; page >= 0; --page) {
    pages.setCurrentIndex(page);
    stage.Take(window, QStringLiteral("frmConfig%1").arg(page));
  }
  const auto opened = [&window](const char* button) -> QDialog& {
    Find<QPushButton>(window, button).click();
    QCoreApplication::processEvents();
    return *window.findChildren<QDialog*>(Qt::FindDirectChildrenOnly).constLast();
  };
  const auto close = [](QDialog& dialog) {
    dialog.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  };
  QDialog& names = opened("cmdFilenameFormat");
  stage.Take(names, QStringLiteral("frmFilenameFormatSelect"));
  close(names);
  auto& formats = Find<QComboBox>(window, "cboFileFormat");
  for (int row = 0; row < formats.count(); ++row) {
    Choose(formats, row);
    QDialog& options = opened("cmdChangeFormatSpecs");
    if (auto* tabs = options.findChild<QTabWidget*>()) {
      for (int page = 0; page < tabs->count(); ++page) {
        tabs->setCurrentIndex(page);
        for (auto* box : tabs->currentWidget()->findChildren<QCheckBox*>()) {
          if (stage.Extreme && box->isVisible() && box->isEnabled() && !box->isChecked()) box->click();
        }
        stage.Take(options, options.objectName() + QString::number(page));
      }
    } else {
      for (auto* box : options.findChildren<QCheckBox*>()) {
        if (stage.Extreme && box->isVisible() && box->isEnabled()) box->click();
      }
      stage.Take(options, options.objectName());
    }
    close(options);
  }
}

void TakeFirstRun(Stage& stage) {
  stage.Rig.Unit.Files.Free = stage.Extreme ? 900e6 : 1234.5e9;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, qApp, [&stage] {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr || window->objectName() != QLatin1String("frmConfig")) return;
    // Half a second of the input's sound, and then what a test recording makes of some of it.
    stage.Inputs.Errors.clear();
    const auto sound = [&stage](int tenths) {
      for (int i = 0; i < tenths; ++i) {
        const platform::PcmFormat& format = stage.Inputs.OpenFormat;
        stage.Inputs.Waiting.assign(
            static_cast<std::size_t>(format.SampleRate / 10) * static_cast<std::size_t>(format.Channels),
            stage.Extreme ? 20 : 4000);
        stage.Rig.Run(100ms);
      }
    };
    sound(40);
    stage.Take(*window, QStringLiteral("frmConfig-first"));
    Find<QPushButton>(*window, "cmdTest").click();
    sound(32);
    stage.Take(*window, QStringLiteral("frmConfig-test"));
    window->close();
  });
  poll.start(0);
  stage.Rig.Unit.StartIdle();
}

void TakeMixer(Stage& stage) {
  stage.Mixer.Lines = {{.Name = "Line In"}, {.Name = "Microphone", .Volume = 20000, .Balance = 30}};
  if (stage.Extreme) {
    stage.Mixer.Lines.assign(12, {.Name = "A Microphone & Its <b>Very Long</b> Name", .HasBalance = false});
  }
  stage.Mixer.Lines[1].Selected = true;
  Play(stage);
  stage.TakeOpened(WindowName::Mixer, QStringLiteral("frmMixer"));
}

void TakeUpdating(Stage& stage) {
  config::UpdatingWindow record;
  record.pbrDownload = 40;
  windows::frmUpdating window(record);
  stage.Take(window, QStringLiteral("frmUpdating"));
}

void TakeLegal(Stage& stage) {
  windows::frmLegal window(KESTRUNE_AGREEMENT, stage.Rig.Unit.Dialogs);
  stage.Take(window, QStringLiteral("frmLegal"));
}

void TakeSplash(Stage& stage) {
  windows::frmSplash window(stage.Rig.Unit.Loop, stage.Rig.Shell, stage.Rig.Unit.Dialogs,
                            {.WebSite = "https://radio.example", .Mail = "help@radio.example"});
  stage.Take(window, QStringLiteral("frmSplash"));
}

void TakePleaseWait(Stage& stage) {
  windows::frmPleaseWait window;
  const std::string device = stage.Extreme
                                 ? "/dev/serial/by-id/usb-A_Very_Long_Name_Of_A_Serial_Adapter-if00-port0"
                                 : "/dev/ttyUSB0";
  window.Refresh({.lblPort = "1", .lblStep = "Searching on " + device + ": round 2 of 4", .pbrSearch = 380});
  stage.Take(window, QStringLiteral("frmPleaseWait"));
}

void TakeMessage(Stage& stage) {
  windows::QtDialogs dialogs("", false);
  QTimer::singleShot(0, qApp, [&stage] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    stage.Take(*box, QStringLiteral("message"));
    box->reject();
  });
  static_cast<void>(dialogs.Show({.Title = "Disable Integrel",
                                  .Text = "Unchecking this option will allow Kestrune to record songs that "
                                          "are not complete. Are you sure you want to do this?",
                                  .Icon = platform::MessageIcon::Warning,
                                  .Buttons = platform::MessageButtons::YesNo}));
}

void TakeFailure(Stage& stage) {
  UnitRig& unit = stage.Rig.Unit;
  unit.Radio.Answers = false;
  unit.Radio.Obstacles = {{3, "/dev/ttyUSB2: permission denied; join the group dialout"}};
  for (std::int16_t port = 4; stage.Extreme && port <= 16; ++port)
    unit.Radio.Obstacles[port] = "/dev/radio is in use by gpsd (process 7); close that program first";
  unit.Start(recorder::StartOutcome::Failed);
  windows::QtDialogs dialogs("", false);
  QTimer::singleShot(0, qApp, [&stage] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    for (QAbstractButton* button : box->buttons())
      if (box->buttonRole(button) == QMessageBox::ActionRole) button->click();
    stage.Take(*box, QStringLiteral("message-no-radio"));
    box->reject();
  });
  static_cast<void>(dialogs.Show(unit.Dialogs.Shown.front()));
}

constexpr void (*kPictures[])(Stage&) = {
    TakeMain,  TakeLoad,     TakeLarge, TakeShelf,  TakeLists,      TakeSchedule, TakeConfig,  TakeFirstRun,
    TakeMixer, TakeUpdating, TakeLegal, TakeSplash, TakePleaseWait, TakeMessage,  TakeFailure,
};

QPalette DarkPalette() {
  QPalette dark;
  const QColor window(45, 45, 48);
  const QColor base(30, 30, 32);
  const QColor text(225, 225, 225);
  for (const auto& [role, colour] : std::initializer_list<std::pair<QPalette::ColorRole, QColor>>{
           {QPalette::Window, window},
           {QPalette::WindowText, text},
           {QPalette::Base, base},
           {QPalette::AlternateBase, window},
           {QPalette::Text, text},
           {QPalette::Button, window},
           {QPalette::ButtonText, text},
           {QPalette::BrightText, Qt::white},
           {QPalette::ToolTipBase, window},
           {QPalette::ToolTipText, text},
           {QPalette::Highlight, QColor(42, 130, 218)},
           {QPalette::HighlightedText, Qt::white},
           {QPalette::Link, QColor(90, 160, 240)},
           {QPalette::PlaceholderText, QColor(140, 140, 140)}}) {
    dark.setColor(role, colour);
  }
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    dark.setColor(QPalette::Disabled, role, QColor(120, 120, 120));
  }
  return dark;
}

/// How many texts cannot be read.
int TakeAll(const QString& folder, const QString& scale) {
  int faint = 0;
  for (const bool dark : {false, true}) {
    QApplication::setPalette(
        windows::Readable(dark ? DarkPalette() : QApplication::style()->standardPalette()));
    for (const bool extreme : {false, true}) {
      for (const auto& picture : kPictures) {
        Stage stage;
        stage.Extreme = extreme;
        stage.Folder = folder;
        stage.Look = QLatin1String(dark ? "dark" : "light") + QLatin1String(extreme ? "-extreme" : "-plain") +
                     QLatin1Char('-') + scale + QLatin1Char('x');
        picture(stage);
        faint += stage.Faint;
      }
    }
  }
  return faint;
}

}  // namespace
}  // namespace kestrune::test

int main(int argc, char** argv) {
  if (argc != 2) {
    fmt::print(stderr, "usage: windows_pictures FOLDER | --check\n");
    return 2;
  }
  testing::InitGoogleTest();
  // A process has one scale, so other processes take the other ones.
  const bool first = qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR");
  // The platform's own screen is smaller than some windows.
  const QTemporaryDir settings;
  const QString screen = settings.filePath(QStringLiteral("screen.json"));
  QFile file(screen);
  if (!file.open(QIODevice::WriteOnly)) return 2;
  file.write(R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": 3840, "height": 2160}]})");
  file.close();
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.toLocal8Bit());
  QApplication::setStyle(QStringLiteral("Fusion"));
  const QApplication application(argc, argv);
  const QString word = QString::fromLocal8Bit(argv[1]);
  const bool check = word == QLatin1String("--check");
  const QString folder = check ? QString() : word;
  if (!check) QDir().mkpath(folder);
  bool readable = kestrune::test::TakeAll(
                      folder, first ? QStringLiteral("1") : qEnvironmentVariable("QT_SCALE_FACTOR")) == 0;
  for (const char* scale : {"1.25", "2"}) {
    if (!first || check) break;
    qputenv("QT_SCALE_FACTOR", scale);
    readable = QProcess::execute(QCoreApplication::applicationFilePath(), {folder}) == 0 && readable;
  }
  return readable ? 0 : 1;
}
