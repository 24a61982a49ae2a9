#include "windows/AudioDisplay.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "windows/Colours.h"

namespace kestrune::windows {
namespace {

/// A tenth of a second of stereo at the highest usual rate; also enough for the spectrum.
constexpr std::int32_t kSamples = 9600;
/// From this level (-6 dB) upwards a level is shown as loud.
constexpr double kLoudFrom = 0.9;
/// Pixels between the frame and what is in it, and between two bars.
constexpr double kMarginX = 6;
constexpr double kMarginY = 5;
constexpr double kBarGap = 4;

}  // namespace

AudioDisplay::AudioDisplay(presenters::LevelMeter& meter, QWidget* parent) : QWidget(parent), meter_(meter) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setAccessibleName(QStringLiteral("Level of the sound"));
  // It repaints many times a second; opaque, so that what is behind it need not be painted too.
  setAttribute(Qt::WA_OpaquePaintEvent);
  meter_.SetSampleCount(kSamples);
}

AudioDisplay::~AudioDisplay() {
  meter_.SetSampleCount(0);
}

void AudioDisplay::Refresh() {
  if (drawn_ == meter_.Draws() && shown_ == meter_.Type()) return;
  drawn_ = meter_.Draws();
  shown_ = meter_.Type();
  update();
}

QSize AudioDisplay::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 34, fontMetrics().height() * 5};
}

QSize AudioDisplay::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 20, fontMetrics().height() * 4};
}

QColor AudioDisplay::Loud() const {
  return WarningColour(palette());
}

QColor AudioDisplay::Faint() const {
  return Mixed(palette().color(QPalette::Base), palette().color(QPalette::Text), 0.18);
}

QRectF AudioDisplay::Frame() const {
  return QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
}

QRectF AudioDisplay::Room() const {
  return Frame().adjusted(kMarginX, kMarginY, -kMarginX, -kMarginY);
}

void AudioDisplay::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) ground_ = {};
  QWidget::changeEvent(event);
}

void AudioDisplay::paintEvent(QPaintEvent* /*event*/) {
  const QSize size = (QSizeF(this->size()) * devicePixelRatioF()).toSize();
  if (ground_.size() != size || groundType_ != meter_.Type() || groundChannels_ != meter_.ChannelCount())
    PaintGround();
  QPainter painter(this);
  painter.drawPixmap(0, 0, ground_);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const QRectF room = Room();
  switch (meter_.Type()) {
    case presenters::VuType::Bars:
      return PaintBars(painter, room);
    case presenters::VuType::Needles:
      return PaintNeedles(painter, room);
    case presenters::VuType::Wave:
      return PaintWave(painter, room);
    case presenters::VuType::Spectrum:
      return PaintSpectrum(painter, room);
    case presenters::VuType::History:
      return PaintHistory(painter, room);
  }
}

void AudioDisplay::PaintGround() {
  groundType_ = meter_.Type();
  groundChannels_ = meter_.ChannelCount();
  ground_ = QPixmap((QSizeF(size()) * devicePixelRatioF()).toSize());
  ground_.setDevicePixelRatio(devicePixelRatioF());
  ground_.fill(palette().color(QPalette::Window));
  QPainter painter(&ground_);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Mixed(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.3));
  painter.setBrush(palette().base());
  painter.drawRect(Frame());
  if (groundType_ != presenters::VuType::Bars) return;
  const QRectF room = Room();
  barPlaces_ = PlaceBars(room);
  PaintMarks(painter, room);
}

AudioDisplay::BarPlaces AudioDisplay::PlaceBars(const QRectF& room) const {
  BarPlaces places;
  places.MarkFont = font();
  places.MarkFont.setPointSizeF(std::max(6.0, font().pointSizeF() * 0.75));
  places.MarksHeight = QFontMetricsF(places.MarkFont).height();
  const auto channels = static_cast<double>(meter_.ChannelCount());
  places.Height = std::min((room.height() - places.MarksHeight - kBarGap * channels) / channels, 26.0);
  const double all = (places.Height + kBarGap) * channels;
  places.Top = room.top() + (room.height() - places.MarksHeight - all) / 2;
  places.MarksTop = places.Top + all;
  return places;
}

void AudioDisplay::PaintMarks(QPainter& painter, const QRectF& room) const {
  painter.setFont(barPlaces_.MarkFont);
  painter.setPen(Mixed(palette().color(QPalette::Base), palette().color(QPalette::Text), 0.7));
  // Centred, the last mark's text would reach beyond the bar's end, so it is aligned to end there.
  for (const int decibels : {-50, -40, -30, -20, -10, 0}) {
    const double x = room.left() + room.width() * (1 + decibels / 60.0);
    const QRectF place(x - 20, barPlaces_.MarksTop, decibels == 0 ? 20 : 40, barPlaces_.MarksHeight);
    painter.drawText(place, (decibels == 0 ? Qt::AlignRight : Qt::AlignHCenter) | Qt::AlignVCenter,
                     QString::number(decibels));
  }
}

void AudioDisplay::PaintBars(QPainter& painter, const QRectF& room) const {
  const double height = barPlaces_.Height;
  for (std::size_t c = 0; c < meter_.ChannelCount(); ++c) {
    const presenters::LevelMeter::Channel& channel = meter_.Channels().at(c);
    const QRectF bar(room.left(), barPlaces_.Top + static_cast<double>(c) * (height + kBarGap), room.width(),
                     height);
    painter.fillRect(bar, Faint());
    const auto part = [&bar](double from, double to) {
      return QRectF(bar.left() + bar.width() * from, bar.top(), bar.width() * std::max(0.0, to - from),
                    bar.height());
    };
    const double level = channel.Peak;
    painter.fillRect(part(0, std::min(level, kLoudFrom)), palette().color(QPalette::Highlight));
    painter.fillRect(part(kLoudFrom, level), Loud());
    if (channel.Hold > 0) {
      const double hold = channel.Hold * bar.width();
      painter.fillRect(QRectF(bar.left() + std::max(0.0, hold - 2), bar.top(), 2, bar.height()),
                       channel.Hold >= kLoudFrom ? Loud() : palette().color(QPalette::Text));
    }
  }
}

void AudioDisplay::PaintNeedles(QPainter& painter, const QRectF& room) const {
  const auto channels = static_cast<double>(meter_.ChannelCount());
  const double width = room.width() / channels;
  constexpr double kSpread = 50;  // degrees to each side of upright
  for (std::size_t c = 0; c < meter_.ChannelCount(); ++c) {
    const QRectF dial(room.left() + width * static_cast<double>(c), room.top(), width, room.height());
    const QPointF foot(dial.center().x(), dial.bottom());
    const double reach =
        std::min(dial.height() * 0.95, dial.width() / 2 / std::sin(kSpread * std::numbers::pi / 180) * 0.95);
    const auto at = [&](double height, double distance) {
      const double angle = (height * 2 - 1) * kSpread * std::numbers::pi / 180;
      return QPointF(foot.x() + std::sin(angle) * distance, foot.y() - std::cos(angle) * distance);
    };
    for (int mark = 0; mark <= 6; ++mark) {
      const double height = mark / 6.0;
      painter.setPen(QPen(height >= kLoudFrom ? Loud() : palette().color(QPalette::Text), 1.5));
      painter.drawLine(at(height, reach * 0.88), at(height, reach));
    }
    const QRectF circle(foot.x() - reach, foot.y() - reach, reach * 2, reach * 2);
    painter.setPen(QPen(Faint(), 1.5));
    painter.drawArc(circle, static_cast<int>((90 - kSpread) * 16), static_cast<int>(kSpread * 2 * 16));
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(foot, at(meter_.Channels().at(c).Needle, reach * 0.92));
  }
}

void AudioDisplay::PaintWave(QPainter& painter, const QRectF& room) const {
  const auto& wave = meter_.Wave();
  const double middle = room.center().y();
  const double half = room.height() / 2;
  painter.fillRect(QRectF(room.left(), middle - 0.5, room.width(), 1), Faint());
  QPainterPath path;
  const auto x = [&](std::size_t i) {
    return room.left() + room.width() * static_cast<double>(i) / static_cast<double>(wave.size() - 1);
  };
  path.moveTo(x(0), middle);
  for (std::size_t i = 0; i < wave.size(); ++i) path.lineTo(x(i), middle - wave.at(i).High * half);
  for (std::size_t i = wave.size(); i-- > 0;) path.lineTo(x(i), middle - wave.at(i).Low * half);
  path.closeSubpath();
  painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawPath(path);
}

void AudioDisplay::PaintSpectrum(QPainter& painter, const QRectF& room) const {
  const auto& bands = meter_.Bands();
  const double width = room.width() / static_cast<double>(bands.size());
  for (std::size_t i = 0; i < bands.size(); ++i) {
    const QRectF place(room.left() + width * static_cast<double>(i), room.top(), std::max(1.0, width - 2),
                       room.height());
    const double height = bands.at(i) * room.height();
    painter.fillRect(QRectF(place.left(), room.bottom() - 1, place.width(), 1), Faint());
    painter.fillRect(QRectF(place.left(), room.bottom() - height, place.width(), height),
                     palette().color(QPalette::Highlight));
  }
}

void AudioDisplay::PaintHistory(QPainter& painter, const QRectF& room) const {
  const auto history = meter_.History();
  QPainterPath path;
  path.moveTo(room.bottomLeft());
  for (std::size_t i = 0; i < history.size(); ++i) {
    const double x =
        room.left() + room.width() * static_cast<double>(i) / static_cast<double>(history.size() - 1);
    path.lineTo(x, room.bottom() - static_cast<double>(history[i]) * room.height());
  }
  path.lineTo(room.bottomRight());
  path.closeSubpath();
  for (const double mark : {1 / 3.0, 2 / 3.0}) {  // -40 and -20 dB
    painter.fillRect(QRectF(room.left(), room.bottom() - mark * room.height(), room.width(), 1), Faint());
  }
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawPath(path);
}

}  // namespace kestrune::windows
