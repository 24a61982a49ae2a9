#include "windows/WeekBar.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPolygonF>
#include <QToolTip>
#include <algorithm>

#include "windows/Binding.h"
#include "windows/Colours.h"

namespace kestrune::windows {
namespace {

using presenters::WeekPlan;
using presenters::WeekRun;

constexpr double kLeastWidth = 3;    // so that a short run is seen
constexpr double kLostShare = 0.25;  // of the height

}  // namespace

WeekBar::WeekBar(QWidget* parent) : QWidget(parent) {
  Name(*this, "weekBar", {}, "The coming week");
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void WeekBar::Show(const WeekPlan& week) {
  if (week_ == week) return;
  week_ = week;
  setAccessibleDescription(ToQt(week_.InWords));
  update();
}

QSize WeekBar::sizeHint() const {
  constexpr int kLettersOfADay = 8;
  return {WeekPlan::kDays * kLettersOfADay * fontMetrics().averageCharWidth(),
          7 * fontMetrics().height() / 2};
}

/// The bar itself, below the names of the days.
QRectF WeekBar::Bar() const {
  return QRectF(rect()).adjusted(0.5, fontMetrics().height() + 2.5, -0.5, -0.5);
}

double WeekBar::At(double days) const {
  return Bar().left() + Bar().width() * days / WeekPlan::kDays;
}

QRectF WeekBar::PlaceOf(const WeekRun& run) const {
  constexpr double kInset = 2;
  QRectF place = Bar().adjusted(0, kInset, 0, -kInset);
  place.setLeft(At(run.From));
  place.setRight(std::max(At(run.To), place.left() + kLeastWidth));
  // What is lost is a strip under what records instead.
  if (run.Lost) place.setTop(place.bottom() - place.height() * kLostShare);
  return place;
}

void WeekBar::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  DrawDays(painter);
  DrawRuns(painter);
  DrawNow(painter);
}

void WeekBar::DrawDays(QPainter& painter) const {
  const QColor line = Mixed(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.3);
  const QRectF bar = Bar();
  painter.setPen(line);
  painter.setBrush(palette().base());
  painter.drawRect(bar);
  const int height = fontMetrics().height();
  for (int day = 0; day < WeekPlan::kDays; ++day) {
    const double left = At(day);
    const QRectF name(left, 0, At(day + 1) - left, height);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(name, Qt::AlignCenter, ToQt(week_.Days.at(static_cast<std::size_t>(day))));
    painter.setPen(line);
    if (day > 0) painter.drawLine(QPointF(left, bar.top()), QPointF(left, bar.bottom()));
    const double noon = At(day + 0.5);
    painter.drawLine(QPointF(noon, bar.bottom() - 3), QPointF(noon, bar.bottom()));
  }
  if (!week_.Runs.empty()) return;
  painter.setPen(palette().color(QPalette::PlaceholderText));
  painter.drawText(bar, Qt::AlignCenter, ToQt(week_.InWords));
}

void WeekBar::DrawRuns(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
  for (const WeekRun& run : week_.Runs) {
    const QRectF place = PlaceOf(run);
    painter.setPen(palette().color(QPalette::Base));
    painter.setBrush(run.Lost ? WarningColour(palette()) : palette().color(QPalette::Highlight));
    painter.drawRoundedRect(place, 2, 2);
    const QString number = QString::number(run.Entry);
    if (run.Lost || fontMetrics().horizontalAdvance(number) + 2 > place.width()) continue;
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(place.adjusted(0, 0, 0, -place.height() * kLostShare), Qt::AlignCenter, number);
  }
  painter.setRenderHint(QPainter::Antialiasing, false);
}

void WeekBar::DrawNow(QPainter& painter) const {
  constexpr double kMark = 4;
  const double now = At(week_.Now);
  const QRectF bar = Bar();
  painter.setPen(palette().color(QPalette::Text));
  painter.drawLine(QPointF(now, bar.top()), QPointF(now, bar.bottom()));
  painter.setBrush(palette().color(QPalette::WindowText));
  painter.setPen(Qt::NoPen);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.drawPolygon(QPolygonF({QPointF(now - kMark, bar.top() - kMark),
                                 QPointF(now + kMark, bar.top() - kMark), QPointF(now, bar.top() + 1)}));
}

bool WeekBar::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  // The last one drawn is on top.
  const auto found = std::find_if(week_.Runs.rbegin(), week_.Runs.rend(), [&](const WeekRun& run) {
    return PlaceOf(run).contains(QPointF(help->pos()));
  });
  const QString text = found == week_.Runs.rend() ? QString() : PlainTip(ToQt(found->Text));
  QToolTip::showText(help->globalPos(), text, this);
  return true;
}

}  // namespace kestrune::windows
