#pragma once

#include <QWidget>
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
  void paintEvent(QPaintEvent* event) override;

 private:
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
};

}  // namespace kestrune::windows
