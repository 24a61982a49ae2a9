#include "windows/ProgramIcon.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>

namespace kestrune::windows {
namespace {

constexpr int kSizes[] = {16, 24, 32, 48, 64, 128, 256};
const QColor kRecording(220, 30, 30);

QPixmap Drawn(int size) {
  QPixmap picture(size, size);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(38, 70, 110));
  painter.drawEllipse(0, 0, size, size);
  painter.setBrush(QColor(214, 60, 50));
  painter.drawEllipse(QRectF(size * 0.3, size * 0.3, size * 0.4, size * 0.4));
  return picture;
}

/// A red disc with a white rim in the lower right corner, large enough to be told at 16 pixels.
void PaintMark(QPixmap& picture) {
  const double side = picture.width() / picture.devicePixelRatio();
  const double rim = side / 16;
  const double disc = side * 0.5;
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Qt::white, rim));
  painter.setBrush(kRecording);
  painter.drawEllipse(QRectF(side - disc - rim / 2, side - disc - rim / 2, disc, disc));
}

}  // namespace

QIcon ProgramIcon() {
  QIcon icon;
  for (const int size : kSizes) {
    const QString path = QStringLiteral(":/icons/kestrune-%1.png").arg(size);
    if (QFile::exists(path)) icon.addFile(path, QSize(size, size));
  }
  if (icon.isNull()) icon = QIcon::fromTheme(QStringLiteral("kestrune"));
  if (icon.isNull()) {
    for (const int size : {16, 32, 64}) icon.addPixmap(Drawn(size));
  }
  return icon;
}

QIcon RecordingIcon() {
  const QIcon plain = ProgramIcon();
  QIcon marked;
  for (const int size : kSizes) {
    QPixmap picture = plain.pixmap(QSize(size, size), 1.0);
    // An icon without a picture of this size gives a smaller one.
    if (picture.width() != size)
      picture = picture.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    PaintMark(picture);
    marked.addPixmap(picture);
  }
  return marked;
}

}  // namespace kestrune::windows
