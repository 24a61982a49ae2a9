#pragma once

#include <QWidget>
#include <cstdint>

#include "recorder/LevelMeter.h"

namespace kestrune::windows {

/// The level display: paints what the meter has worked out, in the way that the meter is set to.
class AudioDisplay final : public QWidget {
 public:
  /// The meter must outlive the display, and draws only while there is one.
  explicit AudioDisplay(recorder::LevelMeter& meter, QWidget* parent = nullptr);
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

  recorder::LevelMeter& meter_;
  std::uint32_t drawn_ = 0;
  recorder::VuType shown_ = recorder::VuType::Bars;
};

/// A red that can be read on the palette's background, dark or light.
[[nodiscard]] QColor WarningColour(const QPalette& palette);

}  // namespace kestrune::windows
