#include "windows/NowButtonFace.h"

#include <QPalette>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace kestrune::windows {

NowButtonFace::NowButtonFace(QWidget* parent) : QPushButton(parent) {
  setAutoDefault(false);
}

void NowButtonFace::ShowTuned(bool tuned) {
  if (tuned == tuned_) return;
  tuned_ = tuned;
  if (!tuned) {
    setPalette({});
    return;
  }
  QPalette green = palette();
  green.setColor(QPalette::Button, QColor(0, 255, 0));
  // Legible on it, whatever the desktop's colours are.
  green.setColor(QPalette::ButtonText, Qt::black);
  setPalette(green);
}

void NowButtonFace::paintEvent(QPaintEvent* /*event*/) {
  QStyleOptionButton option;
  initStyleOption(&option);
  const QRect room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
  const QFontMetrics metrics = fontMetrics();
  QStringList lines = option.text.split(QLatin1Char('\n'));
  for (QString& line : lines) {
    line.replace(QStringLiteral("&&"), QStringLiteral("&"));
    line = metrics.elidedText(line, Qt::ElideRight, room.width());
    line.replace(QLatin1Char('&'), QStringLiteral("&&"));
  }
  option.text = lines.join(QLatin1Char('\n'));
  QStylePainter(this).drawControl(QStyle::CE_PushButton, option);
}

}  // namespace kestrune::windows
