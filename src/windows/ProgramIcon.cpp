#include "windows/ProgramIcon.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>

namespace kestrune::windows {
namespace {

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

}  // namespace

QIcon ProgramIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
    const QString path = QStringLiteral(":/icons/kestrune-%1.png").arg(size);
    if (QFile::exists(path)) icon.addFile(path, QSize(size, size));
  }
  if (icon.isNull()) icon = QIcon::fromTheme(QStringLiteral("kestrune"));
  if (icon.isNull()) {
    for (const int size : {16, 32, 64}) icon.addPixmap(Drawn(size));
  }
  return icon;
}

}  // namespace kestrune::windows
