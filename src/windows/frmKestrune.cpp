#include "windows/frmKestrune.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QMargins>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "presenters/WindowTable.h"
#include "windows/AudioDisplay.h"
#include "windows/Binding.h"
#include "windows/Choosing.h"
#include "windows/Colours.h"
#include "windows/Contrast.h"
#include "windows/ElidedLabel.h"
#include "windows/FittedPage.h"
#include "windows/HotKeys.h"
#include "windows/KeptList.h"
#include "windows/LockMark.h"
#include "windows/MarkIcon.h"

namespace kestrune::windows {
namespace {

using presenters::MainWindow;
using recorder::WindowName;

constexpr int kSongLetters = 34;
constexpr int kLoadLetters = 14;  ///< as wide as the bar of the load
constexpr int kPresetColumns = 3;
// Artist and song grow more than the window, what stands around them less.
constexpr double kSongGrowth = 1.6;
constexpr double kSideGrowth = 0.5;
// By so many lines the window must be higher than usual to list the last songs.
constexpr int kLinesForList = 10;
constexpr int kBarEnd = 3000;
constexpr int kHotKeyF1 = 112;
constexpr int kHotKeyF12 = 123;

QLabel* MakeLabel(const char* name, const char* caption, QWidget* parent) {
  auto* label = new QLabel(QString::fromUtf8(caption), parent);
  label->setTextFormat(Qt::PlainText);
  Name(*label, name);
  return label;
}

ElidedLabel* MakeElided(const char* name, int letters, QWidget* parent, const char* caption,
                        const char* tip = "") {
  auto* label = new ElidedLabel(letters, parent, QString::fromUtf8(caption));
  Name(*label, name, tip);
  return label;
}

/// A label for a text of known width. It keeps its space whatever it shows, and while it is hidden.
QLabel* MakeFixed(const char* name, const char* widest, QWidget* parent) {
  QLabel* label = MakeLabel(name, "", parent);
  label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QString::fromUtf8(widest)));
  KeepRoom(*label);
  return label;
}

void Enlarge(QWidget& widget, double factor, bool bold) {
  QFont font = widget.font();
  font.setPointSizeF(font.pointSizeF() * factor);
  font.setBold(bold);
  widget.setFont(font);
}

QProgressBar* MakeBar(const char* name, const char* accessible, QWidget* parent) {
  auto* bar = new QProgressBar(parent);
  bar->setAlignment(Qt::AlignCenter);
  bar->setPalette(Readable(bar->palette()));
  Name(*bar, name, {}, accessible);
  return bar;
}

QPushButton* MakeButton(const char* name, const char* caption, const char* tip, QWidget* parent) {
  auto* button = new QPushButton(QString::fromUtf8(caption), parent);
  Name(*button, name, tip);
  return button;
}

}  // namespace

frmKestrune::frmKestrune(presenters::UnitPresenters& rules) : rules_(rules), unit_(rules.Unit()) {
  setObjectName(QStringLiteral("frmKestrune"));
  setContextMenuPolicy(Qt::NoContextMenu);
  MakeMenus();
  MakeControls();
  Refresh();
  usual_ = sizeHint();
  FitToScreen(*this);
}

QAction* frmKestrune::AddEntry(QMenu& menu, const char* name, const char* caption,
                               std::function<void()> chosen, const char* key) {
  QAction* action = menu.addAction(QString::fromUtf8(caption));
  action->setObjectName(QLatin1String(name));
  action->setShortcut(QKeySequence(QLatin1String(key)));
  action->setMenuRole(QAction::NoRole);
  entries_[name] = action;
  connect(action, &QAction::triggered, this, [this, chosen = std::move(chosen)] {
    if (chosen) chosen();
    Refresh();
  });
  return action;
}

void frmKestrune::MakeMenus() {
  const auto addMenu = [this](const char* name, const char* caption) -> QMenu& {
    QMenu* menu = menuBar()->addMenu(QString::fromUtf8(caption));
    menu->setObjectName(QLatin1String(name));
    menu->menuAction()->setObjectName(QLatin1String(name) + QLatin1String("Action"));
    return *menu;
  };
  /// An entry that flips the check box of the same name, which then does the work.
  const auto flip = [this](const char* box) {
    return [this, box] {
      auto* control = findChild<QCheckBox*>(QLatin1String(box));
      if (control != nullptr && control->isEnabled()) control->click();
    };
  };
  const auto show = [this](WindowName name) {
    return [this, name] {
      if (Show) Show(name);
    };
  };
  // By reference to the member, which is set after the window has been created.
  const auto leave = [](std::function<void()>& way) {
    return [&way] {
      if (way) way();
    };
  };

  QMenu& file = addMenu("mnuFile", "&File");
  AddEntry(
      file, "mnuRecord", "&Record", [this] { unit_.Wishes().Record(); }, "Ctrl+R");
  AddEntry(
      file, "mnuStop", "&Stop", [this] { unit_.Wishes().Stop(); }, "Ctrl+S");
  AddEntry(file, "mnuExit", "E&xit", leave(CloseAsked), "Ctrl+Q");

  QMenu& options = addMenu("mnuOptions", "&Options");
  const auto addWindow = [&](WindowName name) {
    const presenters::WindowRow& window = presenters::RowOf(name);
    std::string key;
    if (window.Key != '\0') key = std::string("Ctrl+") + window.Key;
    std::function<void()> chosen = show(name);
    if (window.Checked != nullptr) chosen = flip(window.Box);
    AddEntry(options, window.Entry, window.EntryText, std::move(chosen), key.c_str());
  };
  addWindow(WindowName::Channels);
  AddEntry(options, "mnuReload", "&Reload Channel Listing", [this] { unit_.Wishes().ReloadChannels(); });
  addWindow(WindowName::Log);
  addWindow(WindowName::Schedule);
  addWindow(WindowName::KestruneNow);
  addWindow(WindowName::RestrictList);
  addWindow(WindowName::Report);
  addWindow(WindowName::Shelf);
  options.addSeparator()->setObjectName(QStringLiteral("mnuBar1"));
  AddEntry(options, "mnuIntegrel", "&Integrel On", flip("chkIntegrel"), "Ctrl+Y");
  AddEntry(options, "mnuSievanceGrab", "&Grab List On", flip("chkSievanceGrab"), "Ctrl+G");
  AddEntry(options, "mnuSievanceKill", "&Kill List On", flip("chkSievanceKill"), "Ctrl+K");
  AddEntry(options, "mnuCleftune", "&Cleftune On", [this] {
    AskFor([&rules = rules_.Options()] { rules.mnuCleftune_Click(); });
  })->setCheckable(true);
  AddEntry(
      options, "mnuMute", "Mute Au&dio", [this] { unit_.Wishes().ToggleMute(); }, "Ctrl+D")
      ->setCheckable(true);
  AddEntry(options, "mnuRadioOnAtExit", "Radio On At E&xit", flip("chkRadioOnAtExit"));
  addWindow(WindowName::Presets);
  AddEntry(options, "mnuCheckUpdatesAtStartup", "Check for &Updates at Startup", [this] {
    AskFor([&rules = rules_.Options()] { rules.mnuCheckUpdatesAtStartup_Click(); });
  })->setCheckable(true);
  addWindow(WindowName::Config);

  QMenu& help = addMenu("mnuHelp", "&Help");
  AddEntry(help, "mnuHelpWith", "Kestrune &Help", leave(mnuHelpWith));
  AddEntry(help, "mnuAbout", "&About", leave(mnuAbout));
  AddEntry(help, "mnuIntent", "&Statement of Intent", leave(mnuIntent));
  AddEntry(help, "mnuCheckUpdate", "Check for &Update", leave(mnuCheckUpdate), "Ctrl+U");
  AddEntry(help, "mnuRadioID", "My Radio &ID", leave(mnuRadioID));
}

void frmKestrune::MakeControls() {
  auto* page = new FittedPage(this);
  auto* grid = new QGridLayout(&page->Content());
  // Close, so that the window has room on a small screen.
  constexpr int kGap = 4;
  grid->setVerticalSpacing(kGap);
  QMargins margins = grid->contentsMargins();
  margins.setTop(kGap);
  margins.setBottom(kGap);
  grid->setContentsMargins(margins);
  grid->addWidget(MakeSong(), 0, 0);
  grid->addWidget(MakeSignal(), 0, 1);
  grid->addWidget(MakeRecording(), 1, 0);
  grid->addWidget(MakeLevels(), 1, 1);
  grid->addWidget(MakePresets(), 2, 0, 1, 2);
  grid->addWidget(MakeBoxes(), 3, 0, 1, 2);
  grid->setColumnStretch(0, 3);
  grid->setColumnStretch(1, 2);
  grid->setRowStretch(1, 1);
  setCentralWidget(page);
  cmdRecord_->setFocus();
}

QWidget* frmKestrune::MakeSong() {
  auto* group = new QGroupBox(tr("Now playing"), this);
  auto* grid = new QGridLayout(group);
  grid->setColumnStretch(1, 1);
  int row = 0;
  const auto add = [&](const char* captionName, const char* caption, ElidedLabel* label) {
    QLabel* const before = MakeLabel(captionName, caption, group);
    grid->addWidget(before, row, 0, Qt::AlignLeft | Qt::AlignVCenter);
    // The padlock stands beside the channel, how far the song has come beside the genre.
    constexpr int kRowsBeside = 2;
    grid->addWidget(label, row, 1, 1, row < kRowsBeside ? 1 : 2);
    growth_.Add(*before, kSideGrowth);
    ++row;
    return label;
  };
  lblChannel_ = add("lblcChannel", "Channel:", MakeElided("lblChannel", kSongLetters, group, "Channel"));
  lblGenre_ = add("lblcGenre", "Genre:", MakeElided("lblGenre", kSongLetters, group, "Genre"));
  lblArtist_ = add("lblcArtist", "Artist:",
                   MakeElided("lblArtist", kSongLetters, group, "Artist",
                              "Click to add this artist to the Grab/Kill list"));
  lblSong_ = add(
      "lblcSong", "Song:",
      MakeElided("lblSong", kSongLetters, group, "Song", "Click to add this song to the Grab or Kill list"));
  boxLock_ = new LockMark(group);
  KeepRoom(*boxLock_);
  grid->addWidget(boxLock_, 0, 2);
  pbrSong_ = MakeBar("pbrSong", "Song so far", group);
  pbrSong_->setRange(0, presenters::SongProgress::kEnd);
  KeepRoom(*pbrSong_);
  // As high as the line that it stands in.
  pbrSong_->hide();
  pbrSong_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  lblSoFar_ = MakeLabel("lblSoFar", "", group);
  lblSoFar_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  grid->addWidget(pbrSong_, 1, 2);
  grid->addWidget(lblSoFar_, 1, 2);
  growth_.Add(*lblSoFar_, kSideGrowth);
  for (ElidedLabel* label : {lblArtist_, lblSong_}) {
    Enlarge(*label, 1.3, true);
    growth_.Add(*label, kSongGrowth);
  }
  for (QWidget* widget : {static_cast<QWidget*>(lblChannel_), static_cast<QWidget*>(lblGenre_),
                          static_cast<QWidget*>(pbrSong_)})
    growth_.Add(*widget, kSideGrowth);
  lblArtist_->SetActivated([this] {
    if (OfferForList) OfferForList("Artist", rules_.Window().lblArtist.Caption);
  });
  lblSong_->SetActivated([this] {
    if (OfferForList) OfferForList("Song", rules_.Window().lblSong.Caption);
  });
  return group;
}

QWidget* frmKestrune::MakeSignal() {
  auto* group = new QGroupBox(tr("Signal"), this);
  auto* grid = new QGridLayout(group);
  struct Row {
    const char* Label;
    const char* Caption;
    const char* Bar;
  };
  constexpr Row kRows[] = {{"lblSat_0", "Sat 1:", "pbrSatSignal_0"},
                           {"lblSat_1", "Sat 2:", "pbrSatSignal_1"},
                           {"lblGround", "Ground:", "pbrTerSignal"}};
  int row = 0;
  for (const Row& each : kRows) {
    QProgressBar* bar = MakeBar(each.Bar, each.Caption, group);
    bar->setRange(0, kBarEnd);
    grid->addWidget(MakeLabel(each.Label, each.Caption, group), row, 0);
    grid->addWidget(bar, row++, 1);
    signals_.push_back(bar);
  }
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(row, 1);
  return group;
}

QWidget* frmKestrune::MakeLoad(QWidget* parent) {
  pbrLoad_ = new QProgressBar(parent);
  Name(*pbrLoad_, "pbrLoad", {}, "Loading of the radio's channels");
  // The text beside it has the numbers; it is no higher than that, so that nothing moves when it goes.
  pbrLoad_->setTextVisible(false);
  pbrLoad_->setFixedHeight(fontMetrics().height());
  pbrLoad_->setFixedWidth(fontMetrics().averageCharWidth() * kLoadLetters);
  pbrLoad_->hide();
  return pbrLoad_;
}

QWidget* frmKestrune::MakeRecording() {
  auto* group = new QGroupBox(tr("Recording"), this);
  auto* column = new QVBoxLayout(group);

  auto* status = new QHBoxLayout;
  lblRecording_ = MakeElided("lblRecording", 22, group, "Status");
  Enlarge(*lblRecording_, 1.3, true);
  lblClock_ = MakeLabel("lblClock", "", group);
  Enlarge(*lblClock_, 1.3, true);
  lblClock_->setMinimumWidth(lblClock_->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")));
  lblClock_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  lblClock_->setAccessibleName(QStringLiteral("Length of the recording"));
  status->addWidget(lblRecording_, 1);
  status->addWidget(lblClock_);
  column->addLayout(status);

  for (QWidget* widget : {static_cast<QWidget*>(lblRecording_), static_cast<QWidget*>(lblClock_)})
    growth_.Add(*widget, kSideGrowth);

  lblExplanation_ = MakeElided("lblExplanation", kSongLetters, group, "");
  auto* explanation = new QHBoxLayout;
  explanation->addWidget(lblExplanation_, 1);
  explanation->addWidget(MakeLoad(group));
  column->addLayout(explanation);

  auto* event = new QHBoxLayout;
  constexpr const char* kTimer = "Recording Scheduled Event";
  pctTimer_ = MakeElided("pctTimer", static_cast<int>(std::string_view(kTimer).size()), group, "");
  pctTimer_->setText(QString::fromUtf8(kTimer));
  KeepRoom(*pctTimer_);
  lblcRemaining_ = MakeFixed("lblcRemaining", "Time remaining:", group);
  lblcRemaining_->setText(QStringLiteral("Time remaining:"));
  lblRemaining_ = MakeFixed("lblRemaining", "00:00:00", group);
  event->addWidget(pctTimer_, 1);
  event->addWidget(lblcRemaining_);
  event->addWidget(lblRemaining_);
  column->addLayout(event);

  auto* buttons = new QHBoxLayout;
  cmdRecord_ = MakeButton("cmdRecord", "Record", "Start Recording", group);
  cmdStop_ = MakeButton("cmdStop", "Stop", "Stop Recording", group);
  cmdKeep_ = MakeButton("cmdKeep", "Keep This Song", "Keep the song that plays, at its end", group);
  cmdRecord_->setIcon(MarkIcon(Mark::Disc, WarningColour(palette())));
  cmdStop_->setIcon(MarkIcon(Mark::Square, palette().color(QPalette::ButtonText)));
  cmdKeep_->setIcon(MarkIcon(Mark::Ribbon, palette().color(QPalette::ButtonText)));
  connect(cmdRecord_, &QPushButton::clicked, this, [this] {
    unit_.Wishes().Record();
    Refresh();
  });
  connect(cmdStop_, &QPushButton::clicked, this, [this] {
    unit_.Wishes().Stop();
    Refresh();
  });
  connect(cmdKeep_, &QPushButton::clicked, this, [this] {
    unit_.Wishes().KeepCurrent();
    Refresh();
  });
  buttons->addWidget(cmdRecord_);
  buttons->addWidget(cmdStop_);
  buttons->addWidget(cmdKeep_);
  column->addLayout(buttons);
  column->addWidget(MakeCounters());
  kept_ = new KeptList(rules_.RecentSongs(), group);
  kept_->Open = [this](const std::string& path) {
    if (OpenPath) OpenPath(path);
  };
  kept_->hide();
  constexpr int kMostOfIt = 1000;
  column->addWidget(kept_, kMostOfIt);
  column->addStretch(1);
  return group;
}

QWidget* frmKestrune::MakeCounters() {
  auto* counters = new QWidget(this);
  auto* row = new QHBoxLayout(counters);
  row->setContentsMargins(0, 0, 0, 0);
  const auto add = [&](const char* captionName, const char* caption, const char* name) {
    if (row->count() > 0) row->addStretch();
    row->addWidget(MakeLabel(captionName, caption, counters));
    QLabel* label = MakeFixed(name, "00000", counters);
    row->addWidget(label);
    return label;
  };
  lblRecorded_ = add("lblcRecorded", "Recorded:", "lblRecorded");
  lblTooShort_ = add("lblcTooShort", "Too Short:", "lblTooShort");
  lblTooLong_ = add("lblcTooLong", "Too Long:", "lblTooLong");
  lblRestricted_ = add("lblcRestricted", "Restricted:", "lblRestricted");
  return counters;
}

QWidget* frmKestrune::MakeLevels() {
  auto* group = new QGroupBox(tr("Level"), this);
  auto* column = new QVBoxLayout(group);
  audioDisplay_ = new AudioDisplay(rules_.AudioDisplay(), group);
  audioDisplay_->setObjectName(QStringLiteral("AudioDisplay"));
  column->addWidget(audioDisplay_, 1);
  auto* buttons = new QHBoxLayout;
  QPushButton* type = MakeButton("cmdVUType", "VU Type", "Change type of VU meter", group);
  QPushButton* mixer =
      MakeButton("cmdMixer", "Record Levels", "Show the recording mixer to adjust recording levels", group);
  connect(type, &QPushButton::clicked, this, [this] {
    rules_.AudioDisplay().NextType();
    audioDisplay_->Refresh();
  });
  connect(mixer, &QPushButton::clicked, this, [this] { rules_.Switches().cmdMixer_Click(); });
  buttons->addWidget(type);
  buttons->addWidget(mixer);
  column->addLayout(buttons);
  return group;
}

QWidget* frmKestrune::MakePresets() {
  auto* group = new QGroupBox(tr("Presets"), this);
  auto* grid = new QGridLayout(group);
  for (int i = 0; i < presenters::Presets::kCount; ++i) {
    auto* button = new QPushButton(group);
    Name(*button, ("cmdPresetStation_" + std::to_string(i)).c_str());
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(button, &QPushButton::clicked, this, [this, i] {
      rules_.PresetButtons().cmdPresetStation_Click(i);
      Refresh();
    });
    // Column by column, as in the now window.
    constexpr int kRows = presenters::Presets::kCount / kPresetColumns;
    grid->addWidget(button, i % kRows, i / kRows);
    presets_.push_back(button);
  }
  for (int c = 0; c < kPresetColumns; ++c) grid->setColumnStretch(c, 1);
  return group;
}

QCheckBox* frmKestrune::AddBox(const char* name, const char* caption, const char* tip, const char* entry,
                               bool MainWindow::*checked, std::function<void(bool)> rule) {
  auto* box = new QCheckBox(QString::fromUtf8(caption), this);
  Name(*box, name, tip);
  connect(box, &QCheckBox::clicked, this, [this, rule = std::move(rule)](bool on) {
    rule(on);
    Refresh();
  });
  QAction* action = Entry(entry);
  action->setCheckable(true);
  boxes_.push_back({box, action, checked});
  return box;
}

QWidget* frmKestrune::MakeBoxes() {
  auto* both = new QWidget(this);
  auto* row = new QHBoxLayout(both);
  row->setContentsMargins(0, 0, 0, 0);
  /// The box of an option: what the user did is a wish.
  const auto option = [this](void (presenters::OptionRules::*rule)(bool)) {
    return [this, rule](bool on) { AskFor([&rules = rules_.Options(), rule, on] { (rules.*rule)(on); }); };
  };
  presenters::WindowSwitches& switches = rules_.Switches();

  auto* options = new QGroupBox(tr("Options"), both);
  auto* left = new QGridLayout(options);
  left->addWidget(AddBox("chkIntegrel", "Integrel", "Ensure only complete songs are recorded", "mnuIntegrel",
                         &MainWindow::chkIntegrel, option(&presenters::OptionRules::chkIntegrel_Click)),
                  0, 0);
  left->addWidget(AddBox("chkSievanceGrab", "Grab List On",
                         "Check to cause Kestrune to record only those artists or songs which appear in the "
                         "grab lists",
                         "mnuSievanceGrab", &MainWindow::chkSievanceGrab,
                         option(&presenters::OptionRules::chkSievanceGrab_Click)),
                  1, 0);
  left->addWidget(AddBox("chkSievanceKill", "Kill List On",
                         "Check to cause Kestrune to never record those artists or songs which appear in the "
                         "kill lists",
                         "mnuSievanceKill", &MainWindow::chkSievanceKill,
                         option(&presenters::OptionRules::chkSievanceKill_Click)),
                  0, 1);
  left->addWidget(
      AddBox("chkRadioOnAtExit", "Radio On At Exit",
             "Check to cause Kestrune to leave the radio on and playing when exiting", "mnuRadioOnAtExit",
             &MainWindow::chkRadioOnAtExit, option(&presenters::OptionRules::chkRadioOnAtExit_Click)),
      1, 1);

  auto* windows = new QGroupBox(tr("Windows"), both);
  auto* right = new QGridLayout(windows);
  constexpr int kRows = 2;
  int place = 0;
  for (const presenters::WindowRow& window : presenters::WindowTable()) {
    if (window.Checked == nullptr) continue;
    QCheckBox* box = AddBox(window.Box, window.BoxText, window.BoxTip, window.Entry, window.Checked,
                            [&switches, name = window.Name](bool on) { switches.Click(name, on); });
    right->addWidget(box, place % kRows, place / kRows);
    ++place;
  }
  row->addWidget(options, 2);
  row->addWidget(windows, 3);
  return both;
}

void frmKestrune::AskFor(std::function<void()> wish) {
  unit_.Wishes().Ask([wish = std::move(wish)] {
    wish();
    return base::Result::Done();
  });
}

QAction* frmKestrune::Entry(std::string_view name) const {
  return entries_.find(name)->second;
}

void frmKestrune::Refresh() {
  Refresh(rules_.Window());
}

void frmKestrune::Refresh(const MainWindow& record) {
  // In a title "[*]" would stand for unsaved changes, unless it is doubled.
  const QString title = ToQt(record.Title).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
  if (windowTitle() != title) setWindowTitle(title);
  ShowText(*lblChannel_, Undoubled(record.lblChannel.Caption));
  ShowText(*lblGenre_, Undoubled(record.lblGenre.Caption));
  ShowText(*lblArtist_, Undoubled(record.lblArtist.Caption));
  ShowText(*lblSong_, Undoubled(record.lblSong.Caption));
  ShowStatus(record);

  const std::array<const presenters::SignalBar*, 3> bars = {&record.pbrSatSignal[0], &record.pbrSatSignal[1],
                                                            &record.pbrTerSignal};
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const int value = std::clamp(bars.at(i)->Value, 0, kBarEnd);
    const QString caption = ToQt(bars.at(i)->Caption);
    if (signals_[i]->value() != value) signals_[i]->setValue(value);
    if (signals_[i]->format() != caption) signals_[i]->setFormat(caption);
  }
  ShowProgress();
  kept_->Refresh();
  ShowText(*lblRecorded_, record.lblRecorded.Caption);
  ShowText(*lblTooShort_, record.lblTooShort.Caption);
  ShowText(*lblTooLong_, record.lblTooLong.Caption);
  ShowText(*lblRestricted_, record.lblRestricted.Caption);
  audioDisplay_->Refresh();

  ShowPresets();
  ShowMenus(record);
}

void frmKestrune::ShowProgress() {
  presenters::SongProgress progress = rules_.Progress();
  if (progress == progress_) return;
  progress_ = std::move(progress);
  ShowVisible(*pbrSong_, progress_.LengthKnown);
  pbrSong_->setValue(progress_.Value);
  pbrSong_->setFormat(ToQt(progress_.Text));
  ShowText(*lblSoFar_, progress_.LengthKnown ? "" : progress_.Text);
}

void frmKestrune::Grow() {
  if (!usual_.isValid()) return;
  growth_.Fit(size(), usual_);
  lblClock_->setMinimumWidth(lblClock_->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")));
  const int free = height() - usual_.height();
  kept_->setVisible(free >= kLinesForList * fontMetrics().lineSpacing());
}

void frmKestrune::ShowPresets() {
  const auto& presets = rules_.PresetButtons().Buttons();
  const int margin = presets_.front()->fontMetrics().averageCharWidth() * 3;
  for (std::size_t i = 0; i < presets.size(); ++i) {
    const PresetFace face{presets.at(i).Caption, presets.at(i).Tip, presets_[i]->width() - margin,
                          palette().cacheKey()};
    if (std::exchange(presetFaces_.at(i), face) == face) continue;
    ShowPreset(*presets_[i], i + 1, face);
  }
}

void frmKestrune::ShowPreset(QPushButton& button, std::size_t number, const PresetFace& face) const {
  const bool empty = face.Caption.empty();
  const QString whole = empty ? QStringLiteral("Preset %1").arg(number) : ToQt(face.Caption);
  const QString shown = button.fontMetrics().elidedText(whole, Qt::ElideRight, face.Room);
  const QString tip = ToQt(face.Tip);
  button.setToolTip(shown == whole ? tip : PlainTip(whole + QLatin1Char('\n') + tip));
  // A button takes "&" as the mark of its key.
  button.setText(QString(shown).replace(QLatin1Char('&'), QLatin1String("&&")));
  button.setAccessibleName(whole);
  // A preset without a song yet is shown dimmed.
  QPalette colours = palette();
  if (empty) {
    // Of the usable button, also while the window is disabled.
    const QColor text = colours.color(QPalette::Active, QPalette::ButtonText);
    const QColor dimmed = Dimmed(text, colours.color(QPalette::Active, QPalette::Button));
    colours.setColor(QPalette::Active, QPalette::ButtonText, dimmed);
    colours.setColor(QPalette::Inactive, QPalette::ButtonText, dimmed);
  }
  button.setPalette(colours);
}

void frmKestrune::ShowWarning(QWidget& label, bool warning) const {
  const QColor wanted = warning ? WarningColour(palette()) : palette().color(QPalette::WindowText);
  if (label.palette().color(QPalette::WindowText) == wanted) return;
  QPalette colours = label.palette();
  colours.setColor(QPalette::Active, QPalette::WindowText, wanted);
  colours.setColor(QPalette::Inactive, QPalette::WindowText, wanted);
  label.setPalette(colours);
}

void frmKestrune::ShowStatus(const MainWindow& record) {
  // It blinks for the eye alone.
  ShowText(*lblRecording_, record.lblRecording.Caption);
  lblRecording_->SetBlank(!record.lblRecording.Visible);
  ShowWarning(*lblRecording_, record.Recording);
  ShowText(*lblExplanation_, rules_.Explanation());
  ShowWarning(*lblExplanation_, !record.Warning.empty());
  // Nothing but that it goes on: the bar runs to and fro.
  pbrLoad_->setRange(0, record.Load.Known ? presenters::LoadProgress::kWhole : 0);
  pbrLoad_->setValue(record.Load.Value);
  ShowVisible(*pbrLoad_, record.Load.Visible);
  ShowHint(record);
  // The clock keeps its space: its text is cleared and the label is not hidden.
  ShowText(*lblClock_, record.lblClock.Visible ? std::string_view(record.lblClock.Caption) : "");
  ShowVisible(*pctTimer_, record.lblRemaining.Visible);
  pctTimer_->SetBlank(!record.pctTimer.Visible);
  ShowVisible(*lblcRemaining_, record.lblRemaining.Visible);
  ShowVisible(*lblRemaining_, record.lblRemaining.Visible);
  ShowText(*lblRemaining_, record.lblRemaining.Caption);
  ShowVisible(*boxLock_, record.ChannelLocked);
  ShowButtons(record);
}

void frmKestrune::ShowButtons(const MainWindow& record) {
  // A disabled button loses the focus to whatever comes next; the two that swap pass it to each other.
  const QWidget* const focus = focusWidget();
  const bool swaps = focus != nullptr && (focus == cmdRecord_ || focus == cmdStop_);
  ShowEnabled(*cmdRecord_, record.cmdRecord.Enabled);
  ShowEnabled(*cmdStop_, record.cmdStop.Enabled);
  ShowEnabled(*cmdKeep_, record.cmdKeep.Enabled);
  if (swaps && record.cmdRecord.Enabled != record.cmdStop.Enabled)
    (record.cmdRecord.Enabled ? cmdRecord_ : cmdStop_)->setFocus();
}

void frmKestrune::ShowHint(const MainWindow& record) {
  const bool shown = record.HintChannel != 0;
  if (std::exchange(hintShown_, shown) == shown) return;
  lblExplanation_->SetActivated(shown ? std::function<void()>([this] { rules_.TuneToHint(); }) : nullptr);
  lblExplanation_->setToolTip(shown ? PlainTip(tr("Click to tune to this channel")) : QString());
}

void frmKestrune::ShowMenus(const MainWindow& record) {
  for (const Box& box : boxes_) {
    ShowChecked(*box.Control, record.*box.Checked);
    ShowChecked(*box.Entry, record.*box.Checked);
  }
  ShowChecked(*Entry("mnuCleftune"), record.mnuCleftune);
  ShowChecked(*Entry("mnuMute"), record.mnuMute);
  ShowChecked(*Entry("mnuCheckUpdatesAtStartup"), record.mnuCheckUpdatesAtStartup);
  Entry("mnuReload")->setEnabled(record.mnuReload.Enabled);
  Entry("mnuRecord")->setEnabled(record.cmdRecord.Enabled);
  Entry("mnuStop")->setEnabled(record.cmdStop.Enabled);
}

void frmKestrune::PressHotKey(int key) {
  if (!isEnabled()) return;
  if (key >= kHotKeyF1 && key <= kHotKeyF12) {
    rules_.PresetButtons().cmdPresetStation_Click(key - kHotKeyF1);
    return Refresh();
  }
  Refresh();  // an entry that a key has just enabled takes the next one
  const QKeySequence wanted(QKeyCombination(Qt::ControlModifier, static_cast<Qt::Key>(key)));
  for (QAction* action : findChildren<QAction*>()) {
    if (action->shortcut() == wanted) return action->trigger();
  }
}

bool frmKestrune::event(QEvent* event) {
  // An entry that the key before has just enabled takes this one.
  if (event->type() == QEvent::ShortcutOverride) Refresh();
  return QMainWindow::event(event);
}

void frmKestrune::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (CloseAsked) CloseAsked();
}

void frmKestrune::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange && StateChanged) StateChanged();
  // A disabled window loses its focus and does not regain it by itself.
  if (event->type() == QEvent::EnabledChange && isEnabled() && focusWidget() == nullptr)
    cmdRecord_->setFocus();
}

void frmKestrune::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  Grow();
  if (StateChanged) StateChanged();
}

void frmKestrune::keyPressEvent(QKeyEvent* event) {
  const int key = HotKeyOf(*event);
  if (key >= kHotKeyF1 && key <= kHotKeyF12) {
    PressHotKey(key);
  } else {
    QMainWindow::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
