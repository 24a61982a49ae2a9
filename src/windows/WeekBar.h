#pragma once

#include <QWidget>

#include "presenters/SchedulePlan.h"

namespace kestrune::windows {

/// The coming week as a bar, with the runs of the schedule on it and a line for the present moment. What is under the
/// mouse is told in a tip, and all of it in words as the accessible description.
class WeekBar final : public QWidget {
 public:
  explicit WeekBar(QWidget* parent = nullptr);

  /// Costs little if it is the same as before.
  void Show(const presenters::WeekPlan& week);

  /// Where a run is drawn.
  [[nodiscard]] QRectF PlaceOf(const presenters::WeekRun& run) const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QRectF Bar() const;
  [[nodiscard]] double At(double days) const;
  void DrawDays(QPainter& painter) const;
  void DrawRuns(QPainter& painter) const;
  void DrawNow(QPainter& painter) const;

  presenters::WeekPlan week_;
};

}  // namespace kestrune::windows
