#include "windows/frmFormatMP3.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>

#include "windows/Binding.h"
#include "windows/Choosing.h"
#include "windows/UpDown.h"

namespace kestrune::windows {
namespace {

using presenters::FilterNumber;
using presenters::Mp3Controls;
using presenters::Mp3Options;

constexpr int kListCharacters = 14;
constexpr int kNumberCharacters = 8;
constexpr int kMostQuality = 9;

QGroupBox* AddFrame(const char* name, const char* caption, QWidget& page) {
  auto* frame = new QGroupBox(QLatin1String(caption), &page);
  if (name != nullptr) frame->setObjectName(QLatin1String(name));
  return frame;
}

QLabel* AddLabel(const char* caption, QWidget& parent, const char* name = nullptr) {
  auto* label = new QLabel(QLatin1String(caption), &parent);
  label->setTextFormat(Qt::PlainText);
  if (name != nullptr) label->setObjectName(QLatin1String(name));
  KeepRoom(*label);
  return label;
}

/// The texts at both ends of a slider, in the row below it.
void AddEnds(QGridLayout& grid, int row, const char* left, const char* right, QWidget& parent) {
  grid.addWidget(AddLabel(left, parent), row, 0, Qt::AlignLeft);
  grid.addWidget(AddLabel(right, parent), row, 1, Qt::AlignRight);
}

}  // namespace

frmFormatMP3::frmFormatMP3(Mp3Options& options, QWidget* parent)
    : OptionDialog("frmFormatMP3", "MP3 Options", parent), options_(options), tabMP3_(new QTabWidget(this)) {
  options_.Load();
  Name(*tabMP3_, "tabMP3");
  Body().addWidget(tabMP3_, 1);
  FillSoundPage(*AddPage("Sound"));
  FillBitratePage(*AddPage("Variable Bitrate"));
  FillFilterPage(*AddPage("Filters"));
  FillStreamPage(*AddPage("Expert"));
  AddButtons();
  Refresh();
}

QWidget* frmFormatMP3::AddPage(const char* title) {
  auto* page = new QWidget(tabMP3_);
  tabMP3_->addTab(page, QLatin1String(title));
  return page;
}

void frmFormatMP3::FillSoundPage(QWidget& page) {
  auto* grid = new QGridLayout(&page);

  QGroupBox* rate = AddFrame(nullptr, "Sample Rate", page);
  auto* rateColumn = new QVBoxLayout(rate);
  rateColumn->addWidget(AddChoice("cboFrequency", "Select sample frequency to use", "Sample Rate",
                                  &Mp3Controls::cboFrequency, &Mp3Options::cboFrequency, *rate));
  rateColumn->addStretch();
  grid->addWidget(rate, 0, 0);

  QGroupBox* channels = AddFrame(nullptr, "Channels", page);
  auto* channelsColumn = new QVBoxLayout(channels);
  channelsColumn->addWidget(AddChoice("cboChannels", "Select number of channels to record", "Channels",
                                      &Mp3Controls::cboChannels, &Mp3Options::cboChannels, *channels));
  channelsColumn->addWidget(AddChoice("cboTypeStereo", "Select type of stereo encoding to use",
                                      "Type of stereo", &Mp3Controls::cboTypeStereo,
                                      &Mp3Options::cboTypeStereo, *channels));
  grid->addWidget(channels, 0, 1);

  QGroupBox* bitrate = AddFrame(nullptr, "Bitrate", page);
  auto* bitrateGrid = new QGridLayout(bitrate);
  lblCurrentBitrate_ = AddLabel("", *bitrate, "lblCurrentBitrate");
  sldCurrentBitrate_ = AddSlider("sldCurrentBitrate", "Select bitrate to record",
                                 presenters::Mp3Bitrates().Last(), &Mp3Options::CurrentBitrate, *bitrate);
  lblCurrentBitrate_->setBuddy(sldCurrentBitrate_);
  bitrateGrid->addWidget(lblCurrentBitrate_, 0, 0, 1, 2);
  bitrateGrid->addWidget(sldCurrentBitrate_, 1, 0, 1, 2);
  AddEnds(*bitrateGrid, 2, "small file", "big file", *bitrate);
  AddEnds(*bitrateGrid, 3, "poor quality ", "good quality ", *bitrate);
  grid->addWidget(bitrate, 1, 0, 1, 2);

  QGroupBox* quality = AddFrame(nullptr, "Encoder Quality", page);
  auto* qualityGrid = new QGridLayout(quality);
  sldEncoderQuality_ = AddSlider("sldEncoderQuality",
                                 "Select the quality of encoding to use (use lower quality for slower PCs)",
                                 kMostQuality, &Mp3Options::EncoderQuality, *quality);
  sldEncoderQuality_->setAccessibleName(QStringLiteral("Encoder Quality"));
  qualityGrid->addWidget(sldEncoderQuality_, 0, 0, 1, 2);
  AddEnds(*qualityGrid, 1, "better", "faster", *quality);
  grid->addWidget(quality, 2, 0, 1, 2);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(3, 1);
}

void frmFormatMP3::FillBitratePage(QWidget& page) {
  auto* column = new QVBoxLayout(&page);
  auto* grid = new QGridLayout;
  column->addLayout(grid);
  QLabel* method = AddLabel("Coding Method:", page);
  QComboBox* list = AddChoice("cboCodingMethod", "Select variable bit rate encoding method", {},
                              &Mp3Controls::cboCodingMethod, &Mp3Options::cboCodingMethod, page);
  method->setBuddy(list);
  grid->addWidget(method, 0, 0);
  grid->addWidget(list, 0, 1);
  lblVBRQuality_ = AddLabel("VBR Quality:", page, "lblVBRQuality");
  vbrQuality_ = AddSpinValue("txtVbrQ", "udVbrQ", "Select the quality of VBR encoding", *lblVBRQuality_,
                             &Mp3Options::txtVbrQ, &Mp3Options::StepVbrQ, page);
  grid->addWidget(lblVBRQuality_, 1, 0);
  grid->addLayout(WithArrows(*vbrQuality_.Line, *vbrQuality_.Arrows), 1, 1, Qt::AlignLeft);
  lblABR_ = AddLabel("Target bitrate for ABR:", page, "lblABR");
  abr_ = AddSpinValue("txtABR", "udABR", "Select target ABR bitrate", *lblABR_, &Mp3Options::txtABR,
                      &Mp3Options::StepABR, page);
  grid->addWidget(lblABR_, 2, 0);
  grid->addLayout(WithArrows(*abr_.Line, *abr_.Arrows), 2, 1, Qt::AlignLeft);
  grid->setColumnStretch(2, 1);

  frmMaxVBR_ = AddFrame("frmMaxVBR", "Maximum VBR Bitrate", page);
  KeepRoom(*frmMaxVBR_);
  auto* most = new QVBoxLayout(frmMaxVBR_);
  lblMaxVBRBitrate_ = AddLabel("", *frmMaxVBR_, "lblMaxVBRBitrate");
  sldMaxVBRBitrate_ = AddSlider("sldMaxVBRBitrate", "Select the maximum bitrate to encode at",
                                presenters::Mp3Bitrates().Last(), &Mp3Options::MaxVBRBitrate, *frmMaxVBR_);
  lblMaxVBRBitrate_->setBuddy(sldMaxVBRBitrate_);
  most->addWidget(lblMaxVBRBitrate_);
  most->addWidget(sldMaxVBRBitrate_);
  column->addWidget(frmMaxVBR_);

  frmAdvanced_ = AddFrame("frmAdvanced", "Advanced", page);
  KeepRoom(*frmAdvanced_);
  auto* advanced = new QVBoxLayout(frmAdvanced_);
  chkWriteVBRHeader_ = AddBox("chkWriteVBRHeader", "Write VBR Header", "Write VBR header into MP3 file",
                              &Mp3Controls::chkWriteVBRHeader, &Mp3Options::chkWriteVBRHeader, *frmAdvanced_);
  chkEnforceVBRMinBitrate_ =
      AddBox("chkEnforceVBRMinBitrate", "Strictly enforce minimum bitrate", "Enforce minimum bitrate",
             &Mp3Controls::chkEnforceVBRMinBitrate, &Mp3Options::chkEnforceVBRMinBitrate, *frmAdvanced_);
  advanced->addWidget(chkWriteVBRHeader_);
  advanced->addWidget(chkEnforceVBRMinBitrate_);
  column->addWidget(frmAdvanced_);
  column->addStretch();
}

void frmFormatMP3::FillFilterPage(QWidget& page) {
  auto* column = new QVBoxLayout(&page);
  QGroupBox* high = AddFrame(nullptr, "HighPass Filter", page);
  QCheckBox* highBox = AddBox("chkHFilt", "Highpass filtering frequency (in Hz):", "Enable high pass filter",
                              &Mp3Controls::chkHFilt, &Mp3Options::chkHFilt, *high);
  highPass_ =
      AddFilter(*high, *highBox, "lblHighWidth", "Width of Highpass filter (in Hz):", "high pass filter",
                {"txtHFiltF", "udHFiltF", "txtHFiltW", "udHFiltW"}, FilterNumber::HFiltF);
  column->addWidget(high);
  QGroupBox* low = AddFrame(nullptr, "LowPass Filter", page);
  QCheckBox* lowBox = AddBox("chkLFilt", "Lowpass filtering frequency (in Hz):", "Enable low pass filter",
                             &Mp3Controls::chkLFilt, &Mp3Options::chkLFilt, *low);
  lowPass_ = AddFilter(*low, *lowBox, "lblLowWidth", "Width of Lowpass filter (in Hz):", "low pass filter",
                       {"txtLFiltF", "udLFiltF", "txtLFiltW", "udLFiltW"}, FilterNumber::LFiltF);
  column->addWidget(low);
  column->addStretch();
  // Two grids, one column of text boxes.
  const int width = std::max(highBox->sizeHint().width(), lowBox->sizeHint().width());
  highBox->setMinimumWidth(width);
  lowBox->setMinimumWidth(width);
}

void frmFormatMP3::FillStreamPage(QWidget& page) {
  auto* column = new QVBoxLayout(&page);
  auto* grid = new QGridLayout;
  column->addLayout(grid);
  QLabel* ath = AddLabel("ATH Control:", page);
  QComboBox* athList = AddChoice("cboATHControl", "Select type of ATH control", {},
                                 &Mp3Controls::cboATHControl, &Mp3Options::cboATHControl, page);
  ath->setBuddy(athList);
  grid->addWidget(ath, 0, 0);
  grid->addWidget(athList, 0, 1);
  QLabel* emphasis = AddLabel("De-emphasis :", page);
  QComboBox* emphasisList = AddChoice("cboDeEmphasis", "Select type of de-emphasis encoding", {},
                                      &Mp3Controls::cboDeEmphasis, &Mp3Options::cboDeEmphasis, page);
  emphasis->setBuddy(emphasisList);
  grid->addWidget(emphasis, 1, 0);
  grid->addWidget(emphasisList, 1, 1);
  grid->setColumnStretch(2, 1);
  column->addWidget(AddBox("chkCRCChecksums", "Include CRC Checksums",
                           "Include CRC error checking in MP3 file", &Mp3Controls::chkCRCChecksums,
                           &Mp3Options::chkCRCChecksums, page));
  column->addWidget(AddBox("chkISOComply", "Comply as much as possible to ISO MPEG spec",
                           "Select maximum ISO compliance", &Mp3Controls::chkISOComply,
                           &Mp3Options::chkISOComply, page));
  column->addWidget(AddBox("chkDiffBlockTypes", "Allow block types to differ between channels",
                           "Allow different block types in L/R channels", &Mp3Controls::chkDiffBlockTypes,
                           &Mp3Options::chkDiffBlockTypes, page));
  column->addWidget(AddBox("chkShortBlocks", "Short blocks", "Allow short blocks",
                           &Mp3Controls::chkShortBlocks, &Mp3Options::chkShortBlocks, page));
  column->addWidget(AddBox("chkBitReservoir", "Bit reservoir", "Allow bit reservoir in MP3 file",
                           &Mp3Controls::chkBitReservoir, &Mp3Options::chkBitReservoir, page));
  column->addStretch();
}

QComboBox* frmFormatMP3::AddChoice(const char* name, std::string_view tip, std::string_view accessible,
                                   presenters::ChoiceList Mp3Controls::*shown,
                                   void (Mp3Options::*choose)(int), QWidget& parent) {
  auto* list = new QComboBox(&parent);
  Name(*list, name, tip, accessible);
  Restrain(*list, kListCharacters);
  connect(list, &QComboBox::activated, this, [this, choose](int row) {
    (options_.*choose)(row);
    Refresh();
  });
  choices_.push_back({list, shown});
  return list;
}

QCheckBox* frmFormatMP3::AddBox(const char* name, const char* caption, std::string_view tip,
                                bool Mp3Controls::*shown, void (Mp3Options::*check)(bool), QWidget& parent) {
  auto* box = new QCheckBox(QLatin1String(caption), &parent);
  Name(*box, name, tip);
  connect(box, &QCheckBox::clicked, this, [this, check](bool checked) {
    (options_.*check)(checked);
    Refresh();
  });
  boxes_.push_back({box, shown});
  return box;
}

QSlider* frmFormatMP3::AddSlider(const char* name, std::string_view tip, int most,
                                 void (Mp3Options::*slide)(int), QWidget& parent) {
  auto* slider = new QSlider(Qt::Horizontal, &parent);
  Name(*slider, name, tip);
  slider->setRange(0, most);
  slider->setPageStep(1);
  slider->setTickInterval(1);
  slider->setTickPosition(QSlider::TicksBelow);
  OnMoved(*slider, [this, slide](int position) {
    (options_.*slide)(position);
    Refresh();
  });
  return slider;
}

frmFormatMP3::Number frmFormatMP3::AddNumber(const char* line, const char* arrows, std::string_view tip,
                                             std::string_view accessible,
                                             const std::function<void(std::string_view)>& typed,
                                             const std::function<void(int)>& step, QWidget& parent) {
  Number number;
  number.Line = new QLineEdit(&parent);
  Name(*number.Line, line, tip, accessible);
  number.Line->setFixedWidth(number.Line->fontMetrics().averageCharWidth() * (kNumberCharacters + 2));
  connect(number.Line, &QLineEdit::textEdited, this, [this, typed](const QString& text) {
    typed(FromQt(text));
    Refresh();
  });
  number.Arrows = new UpDown(
      *number.Line,
      [this, step](int direction) {
        step(direction);
        Refresh();
      },
      &parent);
  Name(*number.Arrows, arrows, tip);
  KeepRoom(*number.Arrows);
  return number;
}

frmFormatMP3::Number frmFormatMP3::AddSpinValue(const char* line, const char* arrows, std::string_view tip,
                                                QLabel& label, void (Mp3Options::*typed)(std::string_view),
                                                void (Mp3Options::*step)(int), QWidget& parent) {
  const Number number = AddNumber(
      line, arrows, tip, {}, [this, typed](std::string_view text) { (options_.*typed)(text); },
      [this, step](int direction) { (options_.*step)(direction); }, parent);
  label.setBuddy(number.Line);
  connect(number.Line, &QLineEdit::editingFinished, this, [this] {
    options_.ShowSpinValues();
    Refresh();
  });
  return number;
}

frmFormatMP3::FilterControls frmFormatMP3::AddFilter(QGroupBox& frame, QCheckBox& box, const char* widthName,
                                                     const char* widthCaption, std::string_view which,
                                                     const std::array<const char*, 4>& names,
                                                     FilterNumber first) {
  const std::string of(which);
  const auto second = static_cast<FilterNumber>(static_cast<int>(first) + 1);
  const auto add = [&](std::size_t i, FilterNumber number, const std::string& what) {
    return AddNumber(
        names[i], names[i + 1], "Select " + what + " of " + of, what + " of " + of,
        [this, number](std::string_view text) { options_.txtFilter(number, text); },
        [this, number](int direction) { options_.StepFilter(number, direction); }, frame);
  };
  FilterControls filter;
  filter.Numbers[0] = add(0, first, "cutoff frequency");
  filter.Width = AddLabel(widthCaption, frame, widthName);
  filter.Numbers[1] = add(2, second, "width");

  auto* grid = new QGridLayout(&frame);
  grid->addWidget(&box, 0, 0);
  grid->addWidget(filter.Width, 1, 0);
  for (int row = 0; row < 2; ++row) {
    const Number& number = filter.Numbers[static_cast<std::size_t>(row)];
    grid->addLayout(WithArrows(*number.Line, *number.Arrows), row, 1);
  }
  grid->setColumnStretch(2, 1);
  return filter;
}

void frmFormatMP3::ShowFilter(const FilterControls& filter, FilterNumber first, bool visible) {
  ShowVisible(*filter.Width, visible);
  for (std::size_t i = 0; i < filter.Numbers.size(); ++i) {
    const presenters::NumberText& shown = options_.Controls().Filters[static_cast<std::size_t>(first) + i];
    ShowText(*filter.Numbers[i].Line, shown.Text);
    ShowEnabled(*filter.Numbers[i].Line, shown.Enabled);
    ShowVisible(*filter.Numbers[i].Arrows, visible);
  }
}

void frmFormatMP3::Refresh() {
  const Mp3Controls& controls = options_.Controls();
  for (const Choice& choice : choices_) ShowChoices(*choice.List, controls.*choice.Shown);
  for (const Box& box : boxes_) ShowChecked(*box.Check, controls.*box.Shown);
  ShowPosition(*sldCurrentBitrate_, controls.CurrentBitrate);
  ShowText(*lblCurrentBitrate_, controls.lblCurrentBitrate);
  ShowPosition(*sldEncoderQuality_, controls.EncoderQuality);
  ShowPosition(*sldMaxVBRBitrate_, controls.MaxVBRBitrate);
  ShowText(*lblMaxVBRBitrate_, controls.lblMaxVBRBitrate);

  ShowText(*vbrQuality_.Line, controls.txtVbrQ.Text);
  ShowEnabled(*vbrQuality_.Line, controls.txtVbrQ.Enabled);
  ShowVisible(*vbrQuality_.Arrows, controls.VbrQualityVisible);
  ShowVisible(*lblVBRQuality_, controls.VbrQualityVisible);
  ShowText(*abr_.Line, controls.txtABR.Text);
  ShowEnabled(*abr_.Line, controls.txtABR.Enabled);
  ShowVisible(*abr_.Arrows, controls.AbrVisible);
  ShowVisible(*lblABR_, controls.AbrVisible);
  for (QWidget* widget :
       std::initializer_list<QWidget*>{frmMaxVBR_, sldMaxVBRBitrate_, lblMaxVBRBitrate_, frmAdvanced_,
                                       chkWriteVBRHeader_, chkEnforceVBRMinBitrate_}) {
    ShowVisible(*widget, controls.VbrVisible);
  }
  ShowFilter(highPass_, FilterNumber::HFiltF, controls.HighPassVisible);
  ShowFilter(lowPass_, FilterNumber::LFiltF, controls.LowPassVisible);
}

bool frmFormatMP3::cmdOK() {
  if (options_.cmdOK()) return true;
  Refresh();
  if (options_.FieldToMend().empty()) return false;
  auto* field = findChild<QLineEdit*>(ToQt(options_.FieldToMend()));
  for (int page = 0; page < tabMP3_->count(); ++page) {
    if (tabMP3_->widget(page)->isAncestorOf(field)) tabMP3_->setCurrentIndex(page);
  }
  field->setFocus();
  field->selectAll();
  return false;
}

}  // namespace kestrune::windows
