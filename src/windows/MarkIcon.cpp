#include "windows/MarkIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>

namespace kestrune::windows {
namespace {

void PaintRibbon(QPainter& painter, const QRectF& room) {
  const QRectF ribbon = room.adjusted(room.width() * 0.15, 0, -room.width() * 0.15, 0);
  painter.drawPolygon(QPolygonF{ribbon.topLeft(), ribbon.topRight(), ribbon.bottomRight(),
                                ribbon.center() + QPointF(0, ribbon.height() * 0.2), ribbon.bottomLeft()});
}

void PaintPadlock(QPainter& painter, const QRectF& room) {
  const double line = room.width() * 0.14;
  const QRectF body(room.left() + room.width() * 0.06, room.center().y() - room.height() * 0.05,
                    room.width() * 0.88, room.height() * 0.55);
  const double half = room.width() * 0.26;
  QPainterPath shackle(QPointF(room.center().x() - half, body.top()));
  shackle.lineTo(room.center().x() - half, room.top() + line / 2 + half);
  shackle.arcTo(QRectF(room.center().x() - half, room.top() + line / 2, half * 2, half * 2), 180, -180);
  shackle.lineTo(room.center().x() + half, body.top());
  painter.drawRoundedRect(body, line / 2, line / 2);
  const QBrush colour = painter.brush();
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colour, line));
  painter.drawPath(shackle);
}

}  // namespace

QIcon MarkIcon(Mark mark, const QColor& colour) {
  constexpr int kSize = 64;
  QPixmap picture(kSize, kSize);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  const QRectF room(kSize * 0.15, kSize * 0.15, kSize * 0.7, kSize * 0.7);
  switch (mark) {
    case Mark::Disc:
      painter.drawEllipse(room);
      break;
    case Mark::Square:
      painter.drawRect(room);
      break;
    case Mark::Ribbon:
      PaintRibbon(painter, room);
      break;
    case Mark::Padlock:
      PaintPadlock(painter, room);
      break;
  }
  return picture;
}

}  // namespace kestrune::windows
