#include "windows/frmMixer.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QStylePainter>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <cstdint>

#include <fmt/core.h>

#include "windows/Binding.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

constexpr int kNameLines = 3;
constexpr int kColumnLetters = 16;

// Rows of the grid.
constexpr int kName = 0;
constexpr int kVolumeCaption = 1;
constexpr int kVolume = 2;
constexpr int kBalanceCaption = 3;
constexpr int kBalance = 4;
constexpr int kSelect = 5;
constexpr int kAdvanced = 6;

/// A slider that moves by an audible step with each notch of the wheel.
class LevelSlider final : public QSlider {
 public:
  LevelSlider(Qt::Orientation orientation, QWidget* parent) : QSlider(orientation, parent) {
    connect(this, &QSlider::actionTriggered, this,
            [this](int action) { stepped_ = action >= SliderSingleStepAdd && action <= SliderPageStepSub; });
  }

  /// The last move was a step, by a key or the wheel, and not a drag.
  [[nodiscard]] bool Stepped() const { return stepped_; }

 protected:
  /// An inverted slider is filled from its loud end. Drawn the other way round it looks like a level: filled from
  /// below up to the handle.
  void paintEvent(QPaintEvent* /*event*/) override {
    QStyleOptionSlider option;
    initStyleOption(&option);
    option.subControls = QStyle::SC_SliderGroove | QStyle::SC_SliderHandle;
    if (isSliderDown()) {
      option.activeSubControls = QStyle::SC_SliderHandle;
      option.state |= QStyle::State_Sunken;
    }
    if (invertedAppearance()) {
      option.upsideDown = !option.upsideDown;
      option.sliderValue = minimum() + maximum() - option.sliderValue;
      option.sliderPosition = minimum() + maximum() - option.sliderPosition;
    }
    QStylePainter(this).drawComplexControl(QStyle::CC_Slider, option);
  }

  void wheelEvent(QWheelEvent* event) override {
    const int turned = event->angleDelta().y();
    if (turned != 0)
      triggerAction((turned > 0) == invertedControls() ? SliderPageStepSub : SliderPageStepAdd);
    event->accept();
  }

 private:
  bool stepped_ = false;
};

LevelSlider* MakeSlider(Qt::Orientation orientation, int most, int step, int page, QWidget* parent) {
  auto* slider = new LevelSlider(orientation, parent);
  slider->setRange(0, most);
  slider->setSingleStep(step);
  slider->setPageStep(page);
  // The rest of a column does not move up when its line lacks the control.
  QSizePolicy policy = slider->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  slider->setSizePolicy(policy);
  return slider;
}

void ShowValue(QSlider& slider, int value) {
  if (slider.value() == value && slider.sliderPosition() == value) return;
  const QSignalBlocker quiet(slider);
  slider.setValue(value);
}

QLabel* MakePicture(const char* name, QStyle::StandardPixmap picture, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName(QLatin1String(name));
  const int size = parent->style()->pixelMetric(QStyle::PM_SmallIconSize);
  label->setPixmap(parent->style()->standardIcon(picture).pixmap(size));
  return label;
}

}  // namespace

frmMixer::frmMixer(presenters::MixerWindow& rules, const config::SettingsSection& section, QWidget* parent)
    : QWidget(parent, Qt::Window), rules_(rules), section_(section) {
  setObjectName(QStringLiteral("frmMixer"));
  setWindowTitle(QStringLiteral("Kestrune Record Mixer"));
  setAttribute(Qt::WA_DeleteOnClose);

  auto* frame = new QGroupBox(this);
  frame->setObjectName(QStringLiteral("Frame14"));
  auto* grid = new QGridLayout(frame);
  grid->setHorizontalSpacing(2 * fontMetrics().averageCharWidth());
  grid->addWidget(MakePicture("Image1", QStyle::SP_MediaVolume, frame), kVolume, 0, Qt::AlignTop);
  grid->addWidget(MakePicture("Image2", QStyle::SP_MediaVolumeMuted, frame), kVolume, 0, Qt::AlignBottom);
  for (std::size_t index = 0; index < columns_.size(); ++index) MakeColumn(index, *frame, *grid);
  nothing_ = new QLabel(QStringLiteral("This recording device has no controls."), frame);
  grid->addWidget(nothing_, kName, 0, 1, 2);
  grid->setRowStretch(kVolume, 1);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(frame);
  layout->setSizeConstraint(QLayout::SetFixedSize);

  rules_.Load();
  Show();
  RestorePlace(*this, section_, "Mixer");
}

frmMixer::~frmMixer() {
  // A closed window lives on for a moment, in which another one may have been opened.
  if (!closed_) rules_.Unload();
}

void frmMixer::MakeColumn(std::size_t index, QWidget& frame, QGridLayout& grid) {
  Column& column = columns_[index];
  const int place = static_cast<int>(index) + 1;
  const auto named = [index](const char* name) { return fmt::format("{}_{}", name, index); };
  const auto label = [&](const char* name, const char* caption) {
    auto* made = new QLabel(QLatin1String(caption), &frame);
    Name(*made, named(name).c_str());
    made->setTextFormat(Qt::PlainText);
    return made;
  };

  column.Label = label("Label", "");
  column.Label->setWordWrap(true);
  column.Label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  grid.addWidget(column.Label, kName, place);

  column.Label3 = label("Label3", "Volume:");
  grid.addWidget(column.Label3, kVolumeCaption, place);
  LevelSlider* volume = MakeSlider(Qt::Vertical, platform::Mixer::kMaxVolume, 5,
                                   (platform::Mixer::kMaxVolume + 1) / 32, &frame);
  column.slVolume = volume;
  Name(*column.slVolume, named("slVolume").c_str());
  column.slVolume->setMinimumHeight(10 * fontMetrics().lineSpacing());
  column.slVolume->setInvertedAppearance(true);
  column.slVolume->setInvertedControls(true);
  connect(column.slVolume, &QSlider::valueChanged, this, [this, index, volume](int value) {
    if (volume->Stepped()) {
      rules_.slVolume_Step(index, value);
    } else {
      rules_.slVolume_Scroll(index, value);
    }
    Show();
  });
  grid.addWidget(column.slVolume, kVolume, place, Qt::AlignLeft);

  column.Label2 = label("Label2", "Balance:");
  grid.addWidget(column.Label2, kBalanceCaption, place);
  LevelSlider* balance = MakeSlider(Qt::Horizontal, platform::Mixer::kMaxBalance, 1, 5, &frame);
  column.slBalance = balance;
  Name(*column.slBalance, named("slBalance").c_str());
  connect(column.slBalance, &QSlider::valueChanged, this, [this, index, balance](int value) {
    const auto wanted = static_cast<std::int16_t>(value);
    if (balance->Stepped()) {
      rules_.slBalance_Step(index, wanted);
    } else {
      rules_.slBalance_Scroll(index, wanted);
    }
    Show();
  });
  grid.addWidget(column.slBalance, kBalance, place);

  column.chSelect =
      new QCheckBox(index == 0 ? QStringLiteral("Select All") : QStringLiteral("Select"), &frame);
  Name(*column.chSelect, named("chSelect").c_str());
  QSizePolicy policy = column.chSelect->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  column.chSelect->setSizePolicy(policy);
  connect(column.chSelect, &QCheckBox::clicked, this, [this, index](bool checked) {
    rules_.chSelect_MouseUp(index, checked);
    Show();
  });
  grid.addWidget(column.chSelect, kSelect, place);

  auto* cmdAdvanced = new QPushButton(QStringLiteral("Advanced"), &frame);
  Name(*cmdAdvanced, named("cmdAdvanced").c_str());
  cmdAdvanced->hide();
  grid.addWidget(cmdAdvanced, kAdvanced, place);
}

void frmMixer::Refresh() {
  rules_.Update();
  Show();
}

void frmMixer::Show() {
  const int lastLine = rules_.LastLine();
  const int width = kColumnLetters * fontMetrics().averageCharWidth();
  ShowVisible(*nothing_, lastLine < 0);
  for (const char* picture : {"Image1", "Image2"})
    ShowVisible(*findChild<QLabel*>(QLatin1String(picture)), lastLine >= 0);
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    Column& column = columns_[index];
    const presenters::MixerColumn& line = rules_.Column(index);
    const bool there = static_cast<int>(index) <= lastLine;
    for (QLabel* label : {column.Label, column.Label2, column.Label3}) ShowVisible(*label, there);
    // A hidden control keeps its room, but not where there is no column at all.
    for (QWidget* control : {static_cast<QWidget*>(column.slVolume), static_cast<QWidget*>(column.slBalance),
                             static_cast<QWidget*>(column.chSelect)}) {
      QSizePolicy policy = control->sizePolicy();
      if (policy.retainSizeWhenHidden() == there) continue;
      policy.setRetainSizeWhenHidden(there);
      control->setSizePolicy(policy);
    }
    ShowVisible(*column.slVolume, there && line.slVolumeVisible);
    ShowVisible(*column.slBalance, there && line.slBalanceVisible);
    ShowVisible(*column.chSelect, there && line.chSelectVisible);
    if (!there) continue;
    if (column.Label->width() != width) column.Label->setFixedWidth(width);
    ShowName(column, line.Label);
    ShowValue(*column.slVolume, line.slVolume);
    ShowValue(*column.slBalance, line.slBalance);
    ShowChecked(*column.chSelect, line.chSelect);
  }
}

/// A name too long for its column is cut; the tool tip and the accessible names have all of it.
void frmMixer::ShowName(Column& column, const std::string& name) {
  if (column.Shown == name && !column.Label->text().isEmpty()) return;
  column.Shown = name;
  const QString whole = ToQt(name);
  const QFontMetrics metrics = column.Label->fontMetrics();
  const int height = kNameLines * metrics.lineSpacing();
  const auto fits = [&](const QString& text) {
    const QRect room(0, 0, kColumnLetters * fontMetrics().averageCharWidth(), 10 * height);
    const QRect taken = metrics.boundingRect(room, Qt::TextWordWrap, text);
    return taken.height() <= height && taken.width() <= room.width();
  };
  QString shown = whole;
  for (qsizetype kept = whole.size() - 1; kept > 0 && !fits(shown); --kept)
    shown = whole.left(kept).trimmed() + QChar(0x2026);
  column.Label->setFixedHeight(height);
  column.Label->setText(shown);
  column.Label->setToolTip(whole.toHtmlEscaped());
  column.slVolume->setAccessibleName(QStringLiteral("Volume of %1").arg(whole));
  column.slBalance->setAccessibleName(QStringLiteral("Balance of %1").arg(whole));
  column.chSelect->setAccessibleName(QStringLiteral("%1 %2").arg(column.chSelect->text(), whole));
}

void frmMixer::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::FontChange) return;
  for (Column& column : columns_) {
    if (column.Label != nullptr) column.Label->clear();
  }
}

void frmMixer::closeEvent(QCloseEvent* event) {
  SavePlace(*this, section_, "Mixer");
  if (!closed_) rules_.Unload();
  closed_ = true;
  event->accept();
}

void frmMixer::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
