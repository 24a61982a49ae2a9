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
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <string>

#include "windows/Binding.h"
#include "windows/Choosing.h"
#include "windows/ConfigPlace.h"
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

/// The nearest existing folder at or above the path.
QString ExistingFolder(const QString& path) {
  QFileInfo folder(path);
  while (!folder.isDir() && !folder.isRoot() && folder.filePath() != folder.path()) {
    folder.setFile(folder.path());
  }
  return folder.filePath();
}

}  // namespace

frmConfig::frmConfig(Configuration& configuration, QWidget* parent)
    : QDialog(parent), configuration_(configuration) {
  setObjectName(QStringLiteral("frmConfig"));
  setWindowTitle(QStringLiteral("Kestrune Configuration"));
  new QVBoxLayout(this);
  FillSongs();
  FillFiles();
  FillFormat();
  FillRecording();
  FillWindow();
  static_cast<QVBoxLayout*>(layout())->addStretch();
  AddButtons();
  AlignLabels();
}

QGridLayout& frmConfig::AddGroup(const char* title) {
  auto* group = new QGroupBox(QLatin1String(title), this);
  auto* grid = new QGridLayout(group);
  grid->setColumnStretch(1, 1);
  layout()->addWidget(group);
  return *grid;
}

QLabel* frmConfig::AddLabel(QGridLayout& grid, int row, const char* caption) {
  auto* label = new QLabel(QLatin1String(caption), this);
  label->setTextFormat(Qt::PlainText);
  grid.addWidget(label, row, 0);
  labels_.push_back(label);
  return label;
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
  QGridLayout& grid = AddGroup("Songs");
  const auto add = [&](int row, const char* caption, QComboBox* list) {
    AddLabel(grid, row, caption)->setBuddy(list);
    auto* line = new QHBoxLayout;
    line->addWidget(list);
    grid.addLayout(line, row, 1);
    return line;
  };
  cboMinLength_ = AddList("cboMinLength", "Do not record any songs shorter than this", kLengthCharacters,
                          &Configuration::cboMinLength);
  add(0, "Minimum Song Length:", cboMinLength_)->addStretch();
  cboMaxLength_ = AddList("cboMaxLength", "Do not record any songs longer than this", kLengthCharacters,
                          &Configuration::cboMaxLength);
  add(1, "Maximum Song Length:", cboMaxLength_)->addStretch();
  cboSongDelay_ = AddList("cboSongDelay",
                          "Wait this many milliseconds after song changes before stopping recording "
                          "(recommended=600)",
                          kLengthCharacters, &Configuration::cboSongDelay);
  QHBoxLayout* delay = add(2, "Song Change Delay:", cboSongDelay_);
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
  add(3, "Songs Are Cut:", cboCutPlacement_)->addStretch();
  auto* explanation = new QLabel(
      QStringLiteral("By listening, Kestrune finds where each song begins, and learns each station's delay."),
      this);
  Name(*explanation, "lblCutExplanation");
  explanation->setTextFormat(Qt::PlainText);
  grid.addWidget(explanation, 4, 1);
}

void frmConfig::FillFiles() {
  QGridLayout& grid = AddGroup("Files");
  txtFileDir_ = AddText("txtFileDir", {}, &Configuration::txtFileDir);
  AddLabel(grid, 0, "File Save Folder:")->setBuddy(txtFileDir_);
  grid.addWidget(txtFileDir_, 0, 1);
  grid.addWidget(
      AddButton("cmdBrowse", "&Browse", "Click to select folder files are saved into", &frmConfig::cmdBrowse),
      0, 2);
  txtFilenameFormat_ = AddText("txtFilenameFormat", "Format to use when writing filenames of recorded files",
                               &Configuration::txtFilenameFormat);
  AddLabel(grid, 1, "Filename Format:")->setBuddy(txtFilenameFormat_);
  grid.addWidget(txtFilenameFormat_, 1, 1);
  grid.addWidget(AddButton("cmdFilenameFormat", "&Select", "Click for preset filename formats",
                           &frmConfig::cmdFilenameFormat),
                 1, 2);
  auto* explanation = new QLabel(
      QStringLiteral(
          "Artist: %a   Song: %s   Channel: %c   Station: %t   Genre: %g   Datestamp: %d  Counter: %n"),
      this);
  Name(*explanation, "lblFileExplanation");
  explanation->setTextFormat(Qt::PlainText);
  explanation->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid.addWidget(explanation, 2, 1, 1, 2);
  chkDuplicates_ = AddBox("chkDuplicates", "Save duplicate files",
                          "When checked, duplicate songs will be renamed so as to avoid conflict. When "
                          "unchecked, duplicate songs will not be saved. ",
                          &Configuration::chkDuplicates);
  AddLabel(grid, 3, "Duplicate Files:");
  grid.addWidget(chkDuplicates_, 3, 1, 1, 2, Qt::AlignLeft);
}

void frmConfig::FillFormat() {
  QGridLayout& grid = AddGroup("Format");
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

void frmConfig::FillRecording() {
  QGridLayout& grid = AddGroup("Recording");
  cboDevice_ = AddList("cboDevice", "Select device to record XM PCR audio from (usually your sound card)",
                       kDeviceCharacters, &Configuration::cboDevice);
  AddLabel(grid, 0, "Recording Device:")->setBuddy(cboDevice_);
  grid.addWidget(cboDevice_, 0, 1);
  chkAGCEnabled_ = AddBox("chkAGCEnabled", "Enabled", "Click to enable or disable the automatic gain control",
                          &Configuration::chkAGCEnabled);
  AddLabel(grid, 1, "Automatic Gain Control:");
  grid.addWidget(chkAGCEnabled_, 1, 1, Qt::AlignLeft);
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
  for (const GainNumber& number : {lowLevel_, highLevel_, attackTime_}) {
    line->addWidget(number.Label);
    line->addLayout(WithArrows(*number.Line, *number.Arrows));
    line->addStretch();
  }
  grid.addLayout(line, 2, 1);
}

frmConfig::GainNumber frmConfig::AddGainNumber(const char* line, const char* arrows, const char* caption,
                                               std::string_view tip, Type type, Choose step) {
  GainNumber number;
  number.Label = new QLabel(QLatin1String(caption), this);
  number.Label->setTextFormat(Qt::PlainText);
  KeepRoom(*number.Label);
  number.Line = AddText(line, tip, type);
  number.Line->setFixedWidth(number.Line->fontMetrics().averageCharWidth() * (kNumberCharacters + 2));
  number.Label->setBuddy(number.Line);
  number.Arrows = new UpDown(
      *number.Line,
      [this, step](int direction) {
        (configuration_.*step)(direction);
        Refresh();
      },
      this);
  Name(*number.Arrows, arrows, tip);
  KeepRoom(*number.Arrows);
  return number;
}

void frmConfig::FillWindow() {
  QGridLayout& grid = AddGroup("Window");
  chkTaskBarMinimized_ =
      AddBox("chkTaskBarMinimized", "Show when minimized",
             "When checked, Kestrune will show in the taskbar when minimized. When unchecked, Kestrune will "
             "show only as an icon in the task tray (near the clock).",
             &Configuration::chkTaskBarMinimized);
  AddLabel(grid, 0, "Show in Taskbar:");
  grid.addWidget(chkTaskBarMinimized_, 0, 1, Qt::AlignLeft);
  chkWatch_ =
      AddBox("chkWatch", "Report and repair failures",
             "When checked, Kestrune reports a radio, a sound or a disk that fails, and goes on by itself "
             "as soon as it can.",
             &Configuration::chkWatch);
  AddLabel(grid, 1, "Watch:");
  grid.addWidget(chkWatch_, 1, 1, Qt::AlignLeft);
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
  Refresh();
  MoveToConfigPlace(*this, configuration_.Section());
  cboMinLength_->setFocus();
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

void frmConfig::Refresh() {
  configuration_.Follow();
  const presenters::ConfigurationControls& controls = configuration_.Controls();
  ShowChoices(*cboMinLength_, controls.cboMinLength);
  ShowChoices(*cboMaxLength_, controls.cboMaxLength);
  ShowChoices(*cboSongDelay_, controls.cboSongDelay);
  ShowChoices(*cboCutPlacement_, controls.cboCutPlacement);
  ShowText(*txtFileDir_, controls.txtFileDir);
  ShowText(*txtFilenameFormat_, controls.txtFilenameFormat);
  ShowChoices(*cboFileFormat_, controls.cboFileFormat);
  ShowText(*lblFormatSpecifications_, controls.lblFormatSpecifications);
  ShowChoices(*cboDevice_, controls.cboDevice);
  ShowChecked(*chkAGCEnabled_, controls.chkAGCEnabled);
  ShowText(*lowLevel_.Line, controls.txtAGCLowLevel);
  ShowText(*highLevel_.Line, controls.txtAGCHighLevel);
  ShowText(*attackTime_.Line, controls.txtAGCAttackTime);
  for (const GainNumber& number : {lowLevel_, highLevel_, attackTime_}) {
    ShowVisible(*number.Label, controls.AGCSpinsVisible);
    ShowVisible(*number.Arrows, controls.AGCSpinsVisible);
  }
  ShowChecked(*chkDuplicates_, controls.chkDuplicates);
  ShowChecked(*chkTaskBarMinimized_, controls.chkTaskBarMinimized);
  ShowChecked(*chkWatch_, controls.chkWatch);
}

void frmConfig::OpenModal(QDialog& window, const std::function<void()>& closed) {
  window.setAttribute(Qt::WA_DeleteOnClose);
  window.setWindowModality(Qt::ApplicationModal);
  connect(&window, &QDialog::finished, this, closed);
  window.show();
}

void frmConfig::cmdBrowse() {
  const QString start = ExistingFolder(ToQt(configuration_.cmdBrowse()));
  auto* chooser =
      new QFileDialog(this, QStringLiteral("Pre-selecting folder using the folder's string."), start);
  chooser->setFileMode(QFileDialog::Directory);
  chooser->setOption(QFileDialog::ShowDirsOnly);
  OpenModal(*chooser, [this, chooser] {
    if (chooser->result() != QDialog::Accepted || chooser->selectedFiles().isEmpty()) return;
    configuration_.FolderChosen(FromQt(chooser->selectedFiles().constFirst()));
    Refresh();
  });
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
  QDialog::done(QDialog::Rejected);
}

}  // namespace kestrune::windows
