#include "windows/frmConfig.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>

#include "windows/Binding.h"
#include "windows/Choosing.h"
#include "windows/Colours.h"
#include "windows/ConfigPlace.h"
#include "windows/FittedPage.h"
#include "windows/OptionWindows.h"
#include "windows/Placement.h"
#include "windows/UpDown.h"
#include "windows/frmFilenameFormatSelect.h"

namespace kestrune::windows {
namespace {

using presenters::Configuration;

constexpr int kLengthCharacters = 10;
constexpr int kPlacementCharacters = 22;
constexpr int kDeviceCharacters = 40;
constexpr int kNumberCharacters = 6;
constexpr int kMegabytesCharacters = 8;
constexpr int kBarCharacters = 24;
constexpr int kLevelSteps = 60;  // of a decibel
constexpr int kTestSteps = 50;   // of a tenth of a second

/// The nearest existing folder at or above the path.
QString ExistingFolder(const QString& path) {
  QFileInfo folder(path);
  while (!folder.isDir() && !folder.isRoot() && folder.filePath() != folder.path()) {
    folder.setFile(folder.path());
  }
  return folder.filePath();
}

/// A warning has a colour of its own.
void ShowLine(QLabel& label, const std::string& text, bool warning) {
  ShowText(label, text);
  const QPalette& plain = label.parentWidget()->palette();
  const QColor colour = warning ? WarningColour(plain) : plain.color(QPalette::WindowText);
  if (label.palette().color(QPalette::WindowText) == colour) return;
  QPalette palette = label.palette();
  palette.setColor(QPalette::WindowText, colour);
  label.setPalette(palette);
}

}  // namespace

frmConfig::frmConfig(Configuration& configuration, presenters::InputTrial& trial, QWidget* parent)
    : QDialog(parent), configuration_(configuration), trial_(trial) {
  setObjectName(QStringLiteral("frmConfig"));
  setWindowTitle(QStringLiteral("Kestrune Configuration"));
  auto* whole = new QVBoxLayout(this);
  lblWelcome_ = MakeLabel("");
  Name(*lblWelcome_, "lblWelcome");
  lblWelcome_->setWordWrap(true);
  whole->addWidget(lblWelcome_);
  pages_ = new QTabWidget(this);
  Name(*pages_, "tabConfig", {}, "Pages of the configuration");
  whole->addWidget(pages_);
  AddPage("&Input and Files");
  FillInput();
  FillFiles();
  AddPage("S&ongs");
  FillSongs();
  FillFormat();
  FillShelf();
  AddPage("&Program");
  FillWindow();
  FillWatch();
  FillNotices();
  for (QVBoxLayout* page : pageLayouts_) page->addStretch();
  AddButtons();
  AlignLabels();
}

void frmConfig::AddPage(const char* title) {
  auto* page = new FittedPage(pages_);
  page->viewport()->setAutoFillBackground(false);
  page->Content().setAutoFillBackground(false);
  pageLayouts_.push_back(new QVBoxLayout(&page->Content()));
  pages_->addTab(page, QLatin1String(title));
}

QGridLayout& frmConfig::AddGroup(const char* title, const char* purpose) {
  auto* group = new QGroupBox(QLatin1String(title), this);
  auto* whole = new QVBoxLayout(group);
  whole->addWidget(MakeLabel(purpose));
  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  whole->addLayout(grid);
  group->setAccessibleDescription(QLatin1String(purpose));
  pageLayouts_.back()->addWidget(group);
  return *grid;
}

QLabel* frmConfig::MakeLabel(const char* caption) {
  auto* label = new QLabel(QLatin1String(caption), this);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QLabel* frmConfig::AddLabel(QGridLayout& grid, int row, const char* caption) {
  QLabel* label = MakeLabel(caption);
  grid.addWidget(label, row, 0);
  labels_.push_back(label);
  return label;
}

QLabel* frmConfig::AddRoom(QGridLayout& grid, int row, const char* name) {
  QLabel* room = MakeLabel("");
  Name(*room, name);
  KeepRoom(*room);
  grid.addWidget(room, row, 1, 1, 2);
  return room;
}

QComboBox* frmConfig::AddList(const char* name, std::string_view tip, int characters, Choose choose) {
  auto* list = new ElidedList(this);
  Name(*list, name, tip);
  Restrain(*list, characters);
  connect(list, &QComboBox::activated, this, [this, choose](int row) {
    (configuration_.*choose)(row);
    Refresh();
  });
  return list;
}

QLineEdit* frmConfig::AddText(const char* name, std::string_view tip, Type type) {
  auto* line = new QLineEdit(this);
  Name(*line, name, tip);
  connect(line, &QLineEdit::textEdited, this, [this, type](const QString& text) {
    const std::string typed = FromQt(text);
    (configuration_.*type)(typed);
  });
  return line;
}

QCheckBox* frmConfig::AddBox(const char* name, const char* caption, std::string_view tip, Check check) {
  auto* box = new QCheckBox(QLatin1String(caption), this);
  Name(*box, name, tip);
  connect(box, &QCheckBox::clicked, this, [this, check](bool checked) {
    (configuration_.*check)(checked);
    Refresh();
  });
  return box;
}

QPushButton* frmConfig::AddButton(const char* name, const char* caption, std::string_view tip,
                                  void (frmConfig::*press)()) {
  auto* button = new QPushButton(QLatin1String(caption), this);
  Name(*button, name, tip);
  connect(button, &QPushButton::clicked, this, press);
  return button;
}

void frmConfig::FillSongs() {
  QGridLayout& grid = AddGroup("Songs", "Which songs are kept, and where one ends and the next one begins.");
  const auto add = [&](int row, const char* caption, QComboBox* list) {
    AddLabel(grid, row, caption)->setBuddy(list);
    auto* line = new QHBoxLayout;
    line->addWidget(list);
    grid.addLayout(line, row, 1);
    return line;
  };
  cboMinLength_ = AddList("cboMinLength", "Do not record any songs shorter than this", kLengthCharacters,
                          &Configuration::cboMinLength);
  QHBoxLayout* lengths = add(0, "Minimum Song Length:", cboMinLength_);
  cboMaxLength_ = AddList("cboMaxLength", "Do not record any songs longer than this", kLengthCharacters,
                          &Configuration::cboMaxLength);
  QLabel* longest = MakeLabel("Maximum Song Length:");
  longest->setBuddy(cboMaxLength_);
  lengths->addStretch();
  lengths->addWidget(longest);
  lengths->addWidget(cboMaxLength_);
  cboSongDelay_ = AddList("cboSongDelay",
                          "Wait this many milliseconds after song changes before stopping recording "
                          "(recommended=600)",
                          kLengthCharacters, &Configuration::cboSongDelay);
  QHBoxLayout* delay = add(1, "Song Change Delay:", cboSongDelay_);
  auto* unit = new QLabel(QStringLiteral("ms   (1000 ms = 1 second)"), this);
  Name(*unit, "lblMS");
  unit->setTextFormat(Qt::PlainText);
  delay->addWidget(unit);
  delay->addStretch();
  cboCutPlacement_ =
      AddList("cboCutPlacement",
              "Cut songs when the delay after their text is over, or where the new song is heard "
              "to begin",
              kPlacementCharacters, &Configuration::cboCutPlacement);
  add(2, "Songs Are Cut:", cboCutPlacement_)->addStretch();
  auto* explanation = new QLabel(
      QStringLiteral("By listening, Kestrune finds where each song begins, and learns each station's delay."),
      this);
  Name(*explanation, "lblCutExplanation");
  explanation->setTextFormat(Qt::PlainText);
  grid.addWidget(explanation, 3, 1);
}

void frmConfig::FillFiles() {
  QGridLayout& grid = AddGroup("Files", "Where recorded songs go, and how they are named.");
  txtFileDir_ = AddText("txtFileDir", {}, &Configuration::txtFileDir);
  AddLabel(grid, 0, "File Save Folder:")->setBuddy(txtFileDir_);
  grid.addWidget(txtFileDir_, 0, 1);
  QPushButton* browse =
      AddButton("cmdBrowse", "&Browse", "Click to select folder files are saved into", &frmConfig::cmdBrowse);
  browse->setAccessibleName(QStringLiteral("Browse for the File Save Folder"));
  grid.addWidget(browse, 0, 2);
  lblFileRoom_ = AddRoom(grid, 1, "lblFileRoom");
  txtFilenameFormat_ = AddText("txtFilenameFormat", "Format to use when writing filenames of recorded files",
                               &Configuration::txtFilenameFormat);
  AddLabel(grid, 2, "Filename Format:")->setBuddy(txtFilenameFormat_);
  grid.addWidget(txtFilenameFormat_, 2, 1);
  QPushButton* select = AddButton("cmdFilenameFormat", "&Select", "Click for preset filename formats",
                                  &frmConfig::cmdFilenameFormat);
  // Its letter is that of Save, which has to answer to it.
  select->setShortcut({});
  select->setAccessibleName(QStringLiteral("Select a Filename Format"));
  grid.addWidget(select, 2, 2);
  auto* explanation = new QLabel(
      QStringLiteral(
          "Artist: %a   Song: %s   Channel: %c   Station: %t   Genre: %g   Datestamp: %d  Counter: %n"),
      this);
  Name(*explanation, "lblFileExplanation");
  explanation->setTextFormat(Qt::PlainText);
  explanation->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid.addWidget(explanation, 3, 1, 1, 2);
  chkDuplicates_ = AddBox("chkDuplicates", "Save duplicate files",
                          "When checked, duplicate songs will be renamed so as to avoid conflict. When "
                          "unchecked, duplicate songs will not be saved. ",
                          &Configuration::chkDuplicates);
  AddLabel(grid, 4, "Duplicate Files:");
  grid.addWidget(chkDuplicates_, 4, 1, 1, 2, Qt::AlignLeft);
}

void frmConfig::FillFormat() {
  QGridLayout& grid = AddGroup("Format", "In which format songs are stored.");
  cboFileFormat_ = AddList("cboFileFormat", "Select raw, uncompressed WAV files or encoded MP3 files",
                           kLengthCharacters, &Configuration::cboFileFormat);
  AddLabel(grid, 0, "File Format:")->setBuddy(cboFileFormat_);
  grid.addWidget(cboFileFormat_, 0, 1, Qt::AlignLeft);
  grid.addWidget(
      AddButton("cmdChangeFormatSpecs", "Change Format Specifications", {}, &frmConfig::cmdChangeFormatSpecs),
      0, 2);
  AddLabel(grid, 1, "Format Specifications:")->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  lblFormatSpecifications_ = new QLabel(this);
  Name(*lblFormatSpecifications_, "lblFormatSpecifications");
  lblFormatSpecifications_->setTextFormat(Qt::PlainText);
  lblFormatSpecifications_->setWordWrap(true);
  lblFormatSpecifications_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  lblFormatSpecifications_->setMinimumHeight(2 * lblFormatSpecifications_->fontMetrics().lineSpacing());
  grid.addWidget(lblFormatSpecifications_, 1, 1, 1, 2);
}

void frmConfig::FillInput() {
  QGridLayout& grid = AddGroup("Input", "The sound input that the radio is connected to.");
  cboDevice_ = AddList("cboDevice", "Select device to record XM PCR audio from (usually your sound card)",
                       kDeviceCharacters, &Configuration::cboDevice);
  AddLabel(grid, 0, "Recording Device:")->setBuddy(cboDevice_);
  grid.addWidget(cboDevice_, 0, 1, 1, 2);
  FillTrial(grid);
  chkAGCEnabled_ = AddBox("chkAGCEnabled", "Enabled", "Click to enable or disable the automatic gain control",
                          &Configuration::chkAGCEnabled);
  AddLabel(grid, 3, "Automatic Gain Control:");
  chkAGCEnabled_->setAccessibleName(QStringLiteral("Automatic Gain Control enabled"));
  lowLevel_ =
      AddGainNumber("txtAGCLowLevel", "udAGCLowLevel",
                    "Low Level:", "Lowest allowable value, in db. Range from 0 to -92 db. Default is -40 db.",
                    &Configuration::txtAGCLowLevel, &Configuration::StepAGCLowLevel);
  highLevel_ = AddGainNumber("txtAGCHighLevel", "udAGCHighLevel", "High Level:",
                             "Maximum allowable value, in db. Range from 0 to -92 db. Default is -10 db.",
                             &Configuration::txtAGCHighLevel, &Configuration::StepAGCHighLevel);
  attackTime_ =
      AddGainNumber("txtAGCAttackTime", "udAGCAttackTime",
                    "AttackTime:", "The amount of time in ms to change levels 20 db (from 50 to 200 ms)",
                    &Configuration::txtAGCAttackTime, &Configuration::StepAGCAttackTime);
  auto* line = new QHBoxLayout;
  line->addWidget(chkAGCEnabled_);
  for (const SpunNumber& number : {lowLevel_, highLevel_, attackTime_}) {
    line->addStretch();
    line->addWidget(number.Label);
    line->addLayout(WithArrows(*number.Line, *number.Arrows));
  }
  grid.addLayout(line, 3, 1, 1, 2);
}

void frmConfig::FillTrial(QGridLayout& grid) {
  const auto addBar = [this](const char* name, const char* accessible, int steps) {
    auto* bar = new QProgressBar(this);
    Name(*bar, name, {}, accessible);
    bar->setRange(0, steps);
    bar->setValue(0);
    bar->setTextVisible(false);
    bar->setFixedSize(bar->fontMetrics().averageCharWidth() * kBarCharacters,
                      bar->fontMetrics().lineSpacing());
    return bar;
  };
  const auto add = [&](int row, const char* caption, std::initializer_list<QWidget*> widgets) {
    AddLabel(grid, row, caption);
    auto* line = new QHBoxLayout;
    for (QWidget* widget : widgets) line->addWidget(widget);
    line->addStretch();
    grid.addLayout(line, row, 1, 1, 2);
  };
  pbrInputLevel_ = addBar("pbrInputLevel", "Level of the recording device", kLevelSteps);
  lblInputLevel_ = MakeLabel("");
  Name(*lblInputLevel_, "lblInputLevel");
  add(1, "Level:", {pbrInputLevel_, lblInputLevel_});
  cmdTest_ =
      AddButton("cmdTest", "&Test Recording",
                "Record five seconds of this device, and play them; the file is gone when this window closes",
                &frmConfig::cmdTest);
  pbrTest_ = addBar("pbrTest", "Progress of the test recording", kTestSteps);
  lblTest_ = MakeLabel("");
  Name(*lblTest_, "lblTest");
  add(2, "Test:", {cmdTest_, pbrTest_, lblTest_});
}

frmConfig::SpunNumber frmConfig::AddGainNumber(const char* line, const char* arrows, const char* caption,
                                               std::string_view tip, Type type, Choose step) {
  QLabel* label = MakeLabel(caption);
  KeepRoom(*label);
  SpunNumber number = AddNumber(line, arrows, tip, kNumberCharacters, type, step);
  number.Label = label;
  label->setBuddy(number.Line);
  KeepRoom(*number.Arrows);
  return number;
}

frmConfig::SpunNumber frmConfig::AddNumber(const char* line, const char* arrows, std::string_view tip,
                                           int characters, Type type, Choose step) {
  SpunNumber number;
  number.Line = AddText(line, tip, type);
  number.Line->setFixedWidth(number.Line->fontMetrics().averageCharWidth() * (characters + 2));
  number.Arrows = new UpDown(
      *number.Line,
      [this, step](int direction) {
        (configuration_.*step)(direction);
        Refresh();
      },
      this);
  Name(*number.Arrows, arrows, tip);
  return number;
}

void frmConfig::FillShelf() {
  QGridLayout& grid =
      AddGroup("Shelf", "Songs that were not kept lie here for a while, and can still be kept.");
  txtShelfFolder_ = AddText("txtShelfFolder",
                            "Folder in which songs that were not kept lie for a while; on the disk of the "
                            "recordings, and empty at first",
                            &Configuration::txtShelfFolder);
  txtShelfFolder_->setPlaceholderText(QStringLiteral("Kestrune/Shelf in the File Save Folder"));
  AddLabel(grid, 0, "Shelf Folder:")->setBuddy(txtShelfFolder_);
  grid.addWidget(txtShelfFolder_, 0, 1);
  QPushButton* browse = AddButton("cmdBrowseShelf", "B&rowse", "Click to select the folder of the shelf",
                                  &frmConfig::cmdBrowseShelf);
  browse->setAccessibleName(QStringLiteral("Browse for the Shelf Folder"));
  grid.addWidget(browse, 0, 2);
  lblShelfRoom_ = AddRoom(grid, 1, "lblShelfRoom");
  shelfSongs_ =
      AddNumber("txtShelfSongs", "udShelfSongs",
                "At most this many songs lie there, from 0 to 1000. With 0 songs there is no shelf.",
                kNumberCharacters, &Configuration::txtShelfSongs, &Configuration::StepShelfSongs);
  shelfMegabytes_ =
      AddNumber("txtShelfMegabytes", "udShelfMegabytes",
                "The songs there take at most this many megabytes, from 1 to 1000000", kMegabytesCharacters,
                &Configuration::txtShelfMegabytes, &Configuration::StepShelfMegabytes);
  shelfSongs_.Line->setAccessibleName(QStringLiteral("Songs on the shelf at most"));
  shelfMegabytes_.Line->setAccessibleName(QStringLiteral("Megabytes on the shelf at most"));
  AddLabel(grid, 2, "Shelf Holds:")->setBuddy(shelfSongs_.Line);
  auto* line = new QHBoxLayout;
  line->addWidget(shelfSongs_.Line);
  line->addWidget(shelfSongs_.Arrows);
  line->addWidget(MakeLabel("songs at most (0: there is none), and "));
  line->addWidget(shelfMegabytes_.Line);
  line->addWidget(shelfMegabytes_.Arrows);
  line->addWidget(MakeLabel("MB at most"));
  line->addStretch();
  grid.addLayout(line, 2, 1, 1, 2);
}

void frmConfig::FillWindow() {
  QGridLayout& grid = AddGroup("Start and Window", "When Kestrune starts, and where it shows itself.");
  chkAutostart_ =
      AddBox("chkAutostart", "Start with the desktop",
             "When checked, the desktop starts Kestrune whenever you log in.", &Configuration::chkAutostart);
  AddLabel(grid, 0, "Start:");
  grid.addWidget(chkAutostart_, 0, 1, Qt::AlignLeft);
  chkTaskBarMinimized_ =
      AddBox("chkTaskBarMinimized", "Show when minimized",
             "When checked, Kestrune will show in the taskbar when minimized. When unchecked, Kestrune will "
             "show only as an icon in the task tray (near the clock).",
             &Configuration::chkTaskBarMinimized);
  AddLabel(grid, 1, "Show in Taskbar:");
  grid.addWidget(chkTaskBarMinimized_, 1, 1, Qt::AlignLeft);
}

void frmConfig::FillWatch() {
  QGridLayout& grid = AddGroup("Watch and Hints", "What Kestrune does by itself.");
  chkWatch_ =
      AddBox("chkWatch", "Report and repair failures",
             "When checked, Kestrune reports a radio, a sound or a disk that fails, and goes on by itself "
             "as soon as it can.",
             &Configuration::chkWatch);
  chkHints_ =
      AddBox("chkHints", "Show songs of the Grab lists on other channels",
             "When checked, a song of the Grab lists that begins on another channel is shown in the main "
             "window and the tray.",
             &Configuration::chkHints);
  chkFollowHints_ =
      AddBox("chkFollowHints", "Tune to them while idle",
             "When checked, Kestrune tunes to such a song while nothing is recorded, keeps it, and "
             "comes back.",
             &Configuration::chkFollowHints);
  const auto add = [&](int row, const char* caption, QCheckBox* box) {
    AddLabel(grid, row, caption);
    grid.addWidget(box, row, 1, Qt::AlignLeft);
  };
  add(0, "Watch:", chkWatch_);
  add(1, "Hints:", chkHints_);
  add(2, "Follow:", chkFollowHints_);
}

void frmConfig::FillNotices() {
  QGridLayout& grid =
      AddGroup("Notifications", "What the desktop tells you while no window of Kestrune is in front.");
  chkNotifyEvents_ = AddBox("chkNotifyEvents", "Events",
                            "When checked, a notification of the desktop tells when a scheduled event begins "
                            "and ends, while no window of Kestrune is in front.",
                            &Configuration::chkNotifyEvents);
  chkNotifyProblems_ = AddBox("chkNotifyProblems", "Problems",
                              "When checked, a notification of the desktop tells of a radio, a sound or a "
                              "disk that fails, while no window of Kestrune is in front.",
                              &Configuration::chkNotifyProblems);
  chkNotifyHints_ = AddBox("chkNotifyHints", "Hints",
                           "When checked, a notification of the desktop offers to tune to a song of the Grab "
                           "lists, while no window of Kestrune is in front.",
                           &Configuration::chkNotifyHints);
  chkNotifySongs_ = AddBox("chkNotifySongs", "Songs",
                           "When checked, a notification of the desktop tells of each song that is kept, "
                           "while no window of Kestrune is in front.",
                           &Configuration::chkNotifySongs);
  AddLabel(grid, 0, "Notifications:");
  auto* line = new QHBoxLayout;
  for (QCheckBox* box : {chkNotifyEvents_, chkNotifyProblems_, chkNotifyHints_, chkNotifySongs_}) {
    box->setAccessibleName(QStringLiteral("Notifications: ") + box->text());
    line->addWidget(box);
  }
  line->addStretch();
  grid.addLayout(line, 0, 1);
}

void frmConfig::AddButtons() {
  auto* row = new QHBoxLayout;
  row->addWidget(AddButton("cmdDefault", "&Default Settings", "Return all values to default settings",
                           &frmConfig::cmdDefault));
  row->addStretch();
  QPushButton* save = AddButton("cmdSave", "&Save", "Save changes and exit", &frmConfig::cmdSave);
  save->setDefault(true);
  row->addWidget(save);
  cmdCancel_ = AddButton("cmdCancel", "&Cancel", "Cancel without saving changes", &frmConfig::cmdCancel);
  row->addWidget(cmdCancel_);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
}

// Each group has a grid of its own, so their first columns are made equally wide here.
void frmConfig::AlignLabels() {
  int width = 0;
  for (const QLabel* label : labels_) width = std::max(width, label->sizeHint().width());
  for (QLabel* label : labels_) label->setMinimumWidth(width);
}

void frmConfig::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) AlignLabels();
}

void frmConfig::Place() {
  trial_.Choose(configuration_.ChosenInputId());
  trial_.Load();
  Refresh();
  FitToScreen(*this);
  MoveToConfigPlace(*this, configuration_.Section());
  pages_->setCurrentIndex(0);
  cboDevice_->setFocus();
}

void frmConfig::ShowModeless() {
  if (!isVisible()) {
    configuration_.Load();
    Place();
    show();
  }
  raise();
  activateWindow();
}

void frmConfig::ShowFirst() {
  if (isVisible()) return;
  configuration_.LoadFirst();
  Place();
  cmdCancel_->hide();
  exec();
  cmdCancel_->show();
}

void frmConfig::ShowTrial() {
  trial_.Choose(configuration_.ChosenInputId());
  const presenters::InputTrialControls& controls = trial_.Controls();
  pbrInputLevel_->setValue(static_cast<int>(std::lround(controls.Level * kLevelSteps)));
  ShowLine(*lblInputLevel_, controls.lblLevel, controls.Doubtful);
  ShowEnabled(*cmdTest_, controls.cmdTestEnabled);
  if (const QString why = ToQt(controls.lblTest); cmdTest_->accessibleDescription() != why) {
    cmdTest_->setAccessibleDescription(why);
  }
  ShowVisible(*pbrTest_, controls.TestPart > 0);
  pbrTest_->setValue(static_cast<int>(controls.TestPart * kTestSteps));
  ShowText(*lblTest_, controls.lblTest);
}

void frmConfig::Refresh() {
  configuration_.Follow();
  ShowTrial();
  const presenters::ConfigurationControls& controls = configuration_.Controls();
  ShowText(*lblWelcome_, controls.lblWelcome);
  ShowVisible(*lblWelcome_, !controls.lblWelcome.empty());
  ShowChoices(*cboMinLength_, controls.cboMinLength);
  ShowChoices(*cboMaxLength_, controls.cboMaxLength);
  ShowChoices(*cboSongDelay_, controls.cboSongDelay);
  ShowChoices(*cboCutPlacement_, controls.cboCutPlacement);
  ShowText(*txtFileDir_, controls.txtFileDir);
  ShowLine(*lblFileRoom_, controls.lblFileRoom.Text, controls.lblFileRoom.Scarce);
  ShowText(*txtFilenameFormat_, controls.txtFilenameFormat);
  ShowChoices(*cboFileFormat_, controls.cboFileFormat);
  ShowText(*lblFormatSpecifications_, controls.lblFormatSpecifications);
  ShowChoices(*cboDevice_, controls.cboDevice);
  ShowChecked(*chkAGCEnabled_, controls.chkAGCEnabled);
  ShowText(*lowLevel_.Line, controls.txtAGCLowLevel);
  ShowText(*highLevel_.Line, controls.txtAGCHighLevel);
  ShowText(*attackTime_.Line, controls.txtAGCAttackTime);
  for (const SpunNumber& number : {lowLevel_, highLevel_, attackTime_}) {
    ShowVisible(*number.Label, controls.AGCSpinsVisible);
    ShowVisible(*number.Arrows, controls.AGCSpinsVisible);
  }
  ShowChecked(*chkDuplicates_, controls.chkDuplicates);
  ShowChecked(*chkAutostart_, controls.chkAutostart);
  ShowChecked(*chkTaskBarMinimized_, controls.chkTaskBarMinimized);
  ShowChecked(*chkWatch_, controls.chkWatch);
  ShowText(*txtShelfFolder_, controls.txtShelfFolder);
  ShowLine(*lblShelfRoom_, controls.lblShelfRoom.Text, controls.lblShelfRoom.Scarce);
  ShowText(*shelfSongs_.Line, controls.txtShelfSongs);
  ShowText(*shelfMegabytes_.Line, controls.txtShelfMegabytes);
  ShowChecked(*chkHints_, controls.chkHints);
  ShowChecked(*chkFollowHints_, controls.chkFollowHints);
  ShowEnabled(*chkFollowHints_, controls.chkHints);
  ShowChecked(*chkNotifySongs_, controls.chkNotifySongs);
  ShowChecked(*chkNotifyEvents_, controls.chkNotifyEvents);
  ShowChecked(*chkNotifyProblems_, controls.chkNotifyProblems);
  ShowEnabled(*chkNotifyProblems_, controls.chkWatch);
  ShowChecked(*chkNotifyHints_, controls.chkNotifyHints);
  ShowEnabled(*chkNotifyHints_, controls.chkHints);
}

void frmConfig::OpenModal(QDialog& window, const std::function<void()>& closed) {
  window.setAttribute(Qt::WA_DeleteOnClose);
  window.setWindowModality(Qt::ApplicationModal);
  connect(&window, &QDialog::finished, this, closed);
  window.show();
}

void frmConfig::ChooseFolder(const QString& title, const std::string& start,
                             const std::function<void(std::string_view folder)>& chosen) {
  auto* chooser = new QFileDialog(this, title, ExistingFolder(ToQt(start)));
  chooser->setFileMode(QFileDialog::Directory);
  chooser->setOption(QFileDialog::ShowDirsOnly);
  OpenModal(*chooser, [this, chooser, chosen] {
    if (chooser->result() != QDialog::Accepted || chooser->selectedFiles().isEmpty()) return;
    chosen(FromQt(chooser->selectedFiles().constFirst()));
    Refresh();
  });
}

void frmConfig::cmdBrowse() {
  ChooseFolder(QStringLiteral("Pre-selecting folder using the folder's string."), configuration_.cmdBrowse(),
               [this](std::string_view folder) { configuration_.FolderChosen(folder); });
}

void frmConfig::cmdBrowseShelf() {
  ChooseFolder(QStringLiteral("Folder of the shelf"), configuration_.cmdBrowseShelf(),
               [this](std::string_view folder) { configuration_.ShelfFolderChosen(folder); });
}

void frmConfig::cmdFilenameFormat() {
  OpenModal(*new frmFilenameFormatSelect(configuration_.FilenameFormats(), configuration_.Section(), this),
            [this] { Refresh(); });
}

void frmConfig::cmdChangeFormatSpecs() {
  QDialog* window = MakeOptionWindow(configuration_.Controls().cboFileFormat.Text(), configuration_, this);
  if (window == nullptr) return;
  OpenModal(*window, [this] {
    configuration_.FormatOptionsClosed();
    Refresh();
  });
}

void frmConfig::cmdDefault() {
  configuration_.cmdDefault();
  Refresh();
}

void frmConfig::cmdSave() {
  const bool saved = configuration_.cmdSave();
  Refresh();
  if (!saved) {
    FocusFieldToMend();
    return;
  }
  FocusMainWindow();
  SavePlace();
  CloseWindow();
}

void frmConfig::FocusFieldToMend() {
  if (configuration_.FieldToMend().empty()) return;
  auto* field = findChild<QLineEdit*>(ToQt(configuration_.FieldToMend()));
  for (int page = 0; page < pages_->count(); ++page) {
    auto* scrolled = static_cast<FittedPage*>(pages_->widget(page));
    if (!scrolled->isAncestorOf(field)) continue;
    pages_->setCurrentIndex(page);
    scrolled->ensureWidgetVisible(field);
  }
  field->setFocus();
  field->selectAll();
}

void frmConfig::cmdCancel() {
  SavePlace();
  CloseWindow();
}

void frmConfig::reject() {
  if (!cmdCancel_->isHidden()) cmdCancel();
}

void frmConfig::closeEvent(QCloseEvent* event) {
  // A second click while the question is open changes nothing.
  if (asking_) {
    event->ignore();
    return;
  }
  SavePlace();
  if (event->spontaneous()) {
    const bool wasDirty = configuration_.Dirty();
    asking_ = true;
    const bool mayClose = configuration_.CloseBox();
    asking_ = false;
    Refresh();
    if (!mayClose) {
      FocusFieldToMend();
      event->ignore();
      return;
    }
    if (wasDirty && !configuration_.Dirty()) FocusMainWindow();
  }
  event->accept();
  CloseWindow();
}

void frmConfig::SavePlace() {
  if (InNormalState(*this)) SaveConfigPlace(*this, configuration_.Section());
}

void frmConfig::CloseOpened() {
  for (QDialog* opened : findChildren<QDialog*>(Qt::FindDirectChildrenOnly)) {
    opened->disconnect(this);
    opened->close();
  }
}

void frmConfig::CloseWindow() {
  CloseOpened();
  trial_.Unload();
  QDialog::done(QDialog::Rejected);
}

}  // namespace kestrune::windows
