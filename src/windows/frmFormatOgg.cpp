#include "windows/frmFormatOgg.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSlider>
#include <QToolTip>
#include <QVBoxLayout>
#include <string>

#include "windows/Binding.h"
#include "windows/Choosing.h"

namespace kestrune::windows {
namespace {

constexpr int kMostQuality = 1000;
constexpr int kQualityTick = 100;
constexpr int kSliderCharacters = 50;

/// The text at the handle while the user moves it.
void ShowTip(QSlider& slider, std::string_view text) {
  slider.setAccessibleDescription(ToQt(text));
  if (slider.isVisible()) {
    QToolTip::showText(slider.mapToGlobal(QPoint(slider.width() / 2, -slider.height())), ToQt(text), &slider);
  }
}

}  // namespace

frmFormatOgg::frmFormatOgg(presenters::OggOptions& options, QWidget* parent)
    : OptionDialog("frmFormatOgg", "Ogg Vorbis Options", parent),
      options_(options),
      chkVbr_(new QCheckBox(QStringLiteral("VBR Enabled"), this)),
      chkQuality_(new QCheckBox(QStringLiteral("Quality Enabled"), this)),
      frmVbr_(new QGroupBox(QStringLiteral("VBR"), this)),
      frmQuality_(new QGroupBox(QStringLiteral("Quality (Compression)"), this)) {
  options_.Load();

  auto* frmOption = new QGroupBox(QStringLiteral("Options"), this);
  Name(*frmOption, "frmOption");
  auto* boxes = new QVBoxLayout(frmOption);
  Name(*chkVbr_, "chkVbr", "Enable variable bit rate encoding");
  Name(*chkQuality_, "chkQuality", "Enable quality mode");
  KeepRoom(*chkVbr_);
  boxes->addWidget(chkQuality_);
  boxes->addWidget(chkVbr_);
  connect(chkVbr_, &QCheckBox::clicked, this, [this](bool checked) {
    options_.chkVbr(checked);
    Refresh();
  });
  connect(chkQuality_, &QCheckBox::clicked, this, [this](bool checked) {
    options_.chkQuality(checked);
    Refresh();
  });
  Body().addWidget(frmOption);

  // Either the bitrates or the quality are visible, so they share a place.
  auto* place = new QGridLayout;
  Body().addLayout(place);
  auto* bitrates = new QVBoxLayout;
  place->addLayout(bitrates, 0, 0);
  AddBitrates(*bitrates);
  AddQuality();
  place->addWidget(frmQuality_, 0, 0, Qt::AlignTop);
  place->setColumnMinimumWidth(0, fontMetrics().averageCharWidth() * kSliderCharacters);
  Body().addStretch();
  AddButtons();
  Refresh();
}

void frmFormatOgg::AddBitrates(QVBoxLayout& column) {
  nominal_ = AddBitrate("sldrBitrate", "lblBitrate", "Select encoding bitrate",
                        &presenters::OggOptions::NominalBitrate);
  least_ = AddBitrate("sldrMinBitrate", "lblMinBitrate", "Select minimum VBR bitrate",
                      &presenters::OggOptions::MinBitrate);
  most_ = AddBitrate("sldrMaxBitrate", "lblMaxBitrate", "Select maximum VBR bitrate",
                     &presenters::OggOptions::MaxBitrate);
  column.addWidget(nominal_.Label);
  column.addWidget(nominal_.Slider);
  Name(*frmVbr_, "frmVbr");
  KeepRoom(*frmVbr_);
  auto* limits = new QVBoxLayout(frmVbr_);
  limits->addWidget(least_.Label);
  limits->addWidget(least_.Slider);
  limits->addWidget(most_.Label);
  limits->addWidget(most_.Slider);
  column.addWidget(frmVbr_);
}

frmFormatOgg::Bitrate frmFormatOgg::AddBitrate(const char* slider, const char* label, std::string_view tip,
                                               Move slide) {
  const Bitrate controls{new QSlider(Qt::Horizontal, this), new QLabel(this)};
  Name(*controls.Label, label);
  controls.Label->setTextFormat(Qt::PlainText);
  controls.Label->setBuddy(controls.Slider);
  Name(*controls.Slider, slider, tip);
  controls.Slider->setRange(presenters::OggBitrates().First(), presenters::OggBitrates().Last());
  controls.Slider->setPageStep(1);
  controls.Slider->setTickInterval(1);
  controls.Slider->setTickPosition(QSlider::TicksBelow);
  KeepRoom(*controls.Label);
  KeepRoom(*controls.Slider);
  OnMoved(*controls.Slider, [this, slide, controls](int position) {
    (options_.*slide)(position);
    Refresh();
    ShowTip(*controls.Slider, std::to_string(presenters::OggBitrates().Bitrate(position)));
  });
  return controls;
}

void frmFormatOgg::AddQuality() {
  Name(*frmQuality_, "frmQuality");
  auto* column = new QVBoxLayout(frmQuality_);
  sldrQuality_ = new QSlider(Qt::Horizontal, frmQuality_);
  Name(*sldrQuality_, "sldrQuality", "Select compression level for quality mode", "Quality");
  sldrQuality_->setRange(0, kMostQuality);
  sldrQuality_->setPageStep(kQualityTick);
  sldrQuality_->setTickInterval(kQualityTick);
  sldrQuality_->setTickPosition(QSlider::TicksBelow);
  OnMoved(*sldrQuality_, [this](int value) {
    options_.Quality(value);
    Refresh();
    ShowTip(*sldrQuality_, options_.Controls().QualityTip);
  });
  column->addWidget(sldrQuality_);
}

void frmFormatOgg::Show(const Bitrate& controls, const presenters::BitrateSlider& slider) {
  ShowPosition(*controls.Slider, slider.Position);
  controls.Slider->setAccessibleDescription(ToQt(slider.Tip));
  ShowText(*controls.Label, slider.Label);
  ShowVisible(*controls.Slider, slider.Visible);
  ShowVisible(*controls.Label, slider.Visible);
}

void frmFormatOgg::Refresh() {
  const presenters::OggControls& controls = options_.Controls();
  Show(nominal_, controls.NominalBitrate);
  Show(least_, controls.MinBitrate);
  Show(most_, controls.MaxBitrate);
  ShowPosition(*sldrQuality_, controls.Quality);
  sldrQuality_->setAccessibleDescription(ToQt(controls.QualityTip));
  ShowChecked(*chkVbr_, controls.chkVbr);
  ShowChecked(*chkQuality_, controls.chkQuality);
  ShowVisible(*chkVbr_, controls.chkVbrVisible);
  ShowVisible(*frmVbr_, controls.frmVbrVisible);
  ShowVisible(*frmQuality_, controls.frmQualityVisible);
  ShowVisible(*sldrQuality_, controls.frmQualityVisible);
}

bool frmFormatOgg::cmdOK() {
  return options_.cmdOK();
}

}  // namespace kestrune::windows
