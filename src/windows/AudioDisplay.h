#pragma once

#include <QFont>
#include <QPixmap>
#include <QRectF>
#include <QWidget>
#include <cstddef>
#include <cstdint>

#include "presenters/LevelMeter.h"

namespace kestrune::windows {

/// The level display. It paints what the meter has computed, in the meter's present mode.
class AudioDisplay final : public QWidget {
 public:
  /// The meter must outlive the display; it draws only while there is a display.
  explicit AudioDisplay(presenters::LevelMeter& meter, QWidget* parent = nullptr);
  ~AudioDisplay() override;
  AudioDisplay(const AudioDisplay&) = delete;
  AudioDisplay& operator=(const AudioDisplay&) = delete;

  /// Repaints if the meter has something new.
  void Refresh();

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// Where the bars lie, and below them the marks of their scale.
  struct BarPlaces {
    QFont MarkFont;
    double Top = 0;
    double Height = 0;  ///< of one bar
    double MarksTop = 0;
    double MarksHeight = 0;
  };

  [[nodiscard]] QRectF Frame() const;
  [[nodiscard]] QRectF Room() const;  // within the frame
  [[nodiscard]] BarPlaces PlaceBars(const QRectF& room) const;
  /// What stays as it is between two levels: the frame, and the marks of the bars.
  void PaintGround();
  void PaintMarks(QPainter& painter, const QRectF& room) const;
  void PaintBars(QPainter& painter, const QRectF& room) const;
  void PaintNeedles(QPainter& painter, const QRectF& room) const;
  void PaintWave(QPainter& painter, const QRectF& room) const;
  void PaintSpectrum(QPainter& painter, const QRectF& room) const;
  void PaintHistory(QPainter& painter, const QRectF& room) const;
  [[nodiscard]] QColor Loud() const;
  [[nodiscard]] QColor Faint() const;

  presenters::LevelMeter& meter_;
  std::uint32_t drawn_ = 0;
  presenters::VuType shown_ = presenters::VuType::Bars;
  // Kept, since writing the marks takes longer than painting the bars.
  QPixmap ground_;
  presenters::VuType groundType_ = presenters::VuType::Bars;
  std::size_t groundChannels_ = 0;
  BarPlaces barPlaces_;
};

}  // namespace kestrune::windows
