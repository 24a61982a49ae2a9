#include "windows/frmKestruneNow.h"

#include <QCloseEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>
#include <cmath>

#include "base/OneLine.h"
#include "base/Text.h"
#include "presenters/LineFont.h"
#include "windows/Binding.h"
#include "windows/ElidedLabel.h"
#include "windows/HotKeys.h"
#include "windows/LockMark.h"
#include "windows/NowButtonFace.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kLeastWidth = 9720 / kTwipsPerPixel;
constexpr int kLeastHeight = 5580 / kTwipsPerPixel;
constexpr int kDesignedHeight = 560;

// The buttons: three columns of four, at a fixed place from the left and from the bottom.
constexpr int kRows = 4;
constexpr int kLastRowFromBottom = 1440 / kTwipsPerPixel;
constexpr int kRowStep = 1020 / kTwipsPerPixel;
constexpr int kGap = 4;
constexpr int kButtonHeight = kRowStep - kGap;
constexpr int kMargin = 6;
constexpr int kColumns = presenters::Presets::kCount / kRows;
// Under the last row.
constexpr int kStrip = kLastRowFromBottom - kButtonHeight;

constexpr float kFirstFont = 8.25F;
constexpr float kButtonFont = 12;
constexpr float kStatusFont = 10;
constexpr int kStatusLetters = 40;
constexpr int kLineLeft = 3;
constexpr int kLines = 3;
constexpr int kLineGapTwips = 40;

QLabel* MakeLine(QWidget* parent, const char* name, const char* accessible) {
  auto* label = new QLabel(parent);
  Name(*label, name, {}, accessible);
  label->setTextFormat(Qt::PlainText);
  QFont font(QStringLiteral("Arial"));
  font.setStyleHint(QFont::SansSerif);
  font.setPointSizeF(kFirstFont);
  label->setFont(font);
  return label;
}

// Up to so many times the designed size all lengths and letters are as designed; a larger window magnifies them.
constexpr double kUnmagnified = 1.25;

double MagnificationFor(QSize window) {
  const double times = std::min(window.width() / static_cast<double>(kLeastWidth),
                                window.height() / static_cast<double>(kDesignedHeight));
  return std::max(1.0, 1 + times - kUnmagnified);
}

void Enlarge(QWidget& widget, double points) {
  QFont font = widget.font();
  font.setPointSizeF(points);
  if (font != widget.font()) widget.setFont(font);
}

// Returns true if the label showed something else.
bool ShowLine(QLabel& label, const std::string& caption) {
  // A label without a buddy does not treat "&" as a mark, so "&&" would show as two.
  const QString text = ToQt(base::OneLine(base::ReplaceAll(caption, "&&", "&")));
  if (label.text() == text) return false;
  label.setText(text);
  return true;
}

}  // namespace

frmKestruneNow::frmKestruneNow(presenters::NowScreen& rules, presenters::Presets& presets,
                               const config::SettingsSection& section, QWidget* parent)
    : QWidget(parent, Qt::Window),
      rules_(rules),
      section_(section),
      lblChannel_(MakeLine(this, "lblChannel", "Channel")),
      lblArtist_(MakeLine(this, "lblArtist", "Artist")),
      lblSong_(MakeLine(this, "lblSong", "Song")),
      lblStatus_(new ElidedLabel(kStatusLetters, this, QStringLiteral("Status"))),
      boxLock_(new LockMark(this)) {
  setObjectName(QStringLiteral("frmKestruneNow"));
  setWindowTitle(QStringLiteral("Kestrune Now"));
  setAttribute(Qt::WA_DeleteOnClose);

  points_.fill(kFirstFont);
  Name(*lblStatus_, "lblStatus");
  lblStatus_->setFont(lblChannel_->font());
  boxLock_->hide();

  QFont font = lblChannel_->font();
  font.setBold(true);
  for (int i = 0; i < presenters::Presets::kCount; ++i) {
    auto* button = new NowButtonFace(this);
    cmdPresetStation_.at(static_cast<std::size_t>(i)) = button;
    Name(*button, QByteArray("cmdPresetStation_").append(QByteArray::number(i)).constData(),
         presenters::Presets::TipOf(i));
    button->setFont(font);
    connect(button, &QPushButton::clicked, this, [&presets, i] { presets.cmdPresetStation_Click(i); });
  }

  rules_.Load();
  Refresh();
  setMinimumSize(kLeastWidth, kLeastHeight);
  resize(kLeastWidth, kDesignedHeight);
  RestorePlace(*this, section_, "BigForm", Remembered::PlaceAndSize);
  LayOut();
}

void frmKestruneNow::Refresh() {
  bool changed = ShowLine(*lblChannel_, rules_.Lines().lblChannel);
  changed = ShowLine(*lblArtist_, rules_.Lines().lblArtist) || changed;
  changed = ShowLine(*lblSong_, rules_.Lines().lblSong) || changed;
  for (std::size_t i = 0; i < cmdPresetStation_.size(); ++i) {
    const presenters::NowButton& shown = rules_.Buttons().at(i);
    NowButtonFace& button = *cmdPresetStation_.at(i);
    button.ShowTuned(shown.Tuned);
    ShowText(button, shown.Caption);
    const QString spoken = shown.Caption.empty() ? QStringLiteral("Preset %1, empty").arg(i + 1) : QString();
    if (button.accessibleName() != spoken) button.setAccessibleName(spoken);
  }
  ShowText(*lblStatus_, rules_.Lines().Status);
  ShowVisible(*boxLock_, rules_.Lines().Locked);
  if (changed) LayOut();
}

void frmKestruneNow::LayOut() {
  const double magnified = MagnificationFor(size());
  const auto height = static_cast<int>(std::lround(this->height() / magnified));
  const int firstRow = height - kLastRowFromBottom - (kRows - 1) * kRowStep;
  LayOutButtons(firstRow, magnified);
  LayOutStrip(magnified);
  LayOutLines(firstRow, magnified);
}

void frmKestruneNow::LayOutButtons(int firstRow, double magnified) {
  const auto drawn = [magnified](int length) { return static_cast<int>(std::lround(length * magnified)); };
  const int width = (this->width() - 2 * kMargin - (kColumns - 1) * kGap) / kColumns;
  for (int i = 0; i < presenters::Presets::kCount; ++i) {
    NowButtonFace& button = *cmdPresetStation_.at(static_cast<std::size_t>(i));
    Enlarge(button, kButtonFont * magnified);
    button.setGeometry(kMargin + i / kRows * (width + kGap), drawn(firstRow + i % kRows * kRowStep), width,
                       drawn(kButtonHeight));
  }
}

void frmKestruneNow::LayOutStrip(double magnified) {
  for (QWidget* widget : {static_cast<QWidget*>(lblStatus_), static_cast<QWidget*>(boxLock_)})
    Enlarge(*widget, kStatusFont * magnified);
  const auto height = static_cast<int>(std::lround(kStrip * magnified));
  const int lock = boxLock_->sizeHint().width();
  const int room = width() - 3 * kMargin - lock;
  lblStatus_->setGeometry(kMargin, this->height() - height, room, height);
  boxLock_->setGeometry(2 * kMargin + room, this->height() - height, lock, height);
}

void frmKestruneNow::LayOutLines(int firstRow, double magnified) {
  const int thirdOfTheRoom = firstRow * kTwipsPerPixel / kLines;
  const auto heightLimit = static_cast<float>(thirdOfTheRoom - kLineGapTwips);
  const double twips = kTwipsPerPixel / magnified;
  int top = 0;
  std::size_t number = 0;
  for (QLabel* line : {lblChannel_, lblArtist_, lblSong_}) {
    QFont font = line->font();
    const auto measure = [&](float points) {
      font.setPointSizeF(points * magnified);
      const QFontMetricsF metrics(font);
      return presenters::LineSize{
          .Width = static_cast<float>(metrics.horizontalAdvance(line->text()) * twips),
          .Height = static_cast<float>(metrics.height() * twips)};
    };
    float& points = points_.at(number++);
    points = presenters::FitFont(points, static_cast<float>(width() * twips), heightLimit, measure);
    const presenters::LineSize size = measure(points);
    if (line->font().pointSizeF() != font.pointSizeF()) line->setFont(font);
    line->setGeometry(kLineLeft, top, static_cast<int>(std::ceil(size.Width / twips)) + 1,
                      static_cast<int>(std::ceil(size.Height / twips)));
    top += line->height();
  }
}

void frmKestruneNow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  LayOut();
}

void frmKestruneNow::closeEvent(QCloseEvent* event) {
  rules_.Close();
  SavePlace(*this, section_, "BigForm", Remembered::PlaceAndSize);
  event->accept();
  if (Closed) Closed();
}

void frmKestruneNow::keyPressEvent(QKeyEvent* event) {
  if (const int key = HotKeyOf(*event); key != 0) {
    if (HotKey) HotKey(key);
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
