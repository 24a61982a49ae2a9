#include "windows/ElidedLabel.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>
#include <utility>

#include "windows/Binding.h"
#include "windows/SpokenLabel.h"

namespace kestrune::windows {
namespace {

constexpr int kFewestLetters = 6;

}  // namespace

ElidedLabel::ElidedLabel(int letters, QWidget* parent, QString caption)
    : QLabel(parent), letters_(letters), caption_(std::move(caption)) {
  SpeakElidedLabels();
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ElidedLabel::SetActivated(std::function<void()> activated) {
  activated_ = std::move(activated);
  if (activated_) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
  } else {
    setFocusPolicy(Qt::NoFocus);
    unsetCursor();
  }
}

void ElidedLabel::Activate() {
  // What it does may replace it.
  if (const auto activated = activated_) activated();
}

void ElidedLabel::SetBlank(bool blank) {
  if (std::exchange(blank_, blank) != blank) update();
}

QSize ElidedLabel::sizeHint() const {
  return {fontMetrics().averageCharWidth() * letters_, fontMetrics().height() + 2};
}

QSize ElidedLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * std::min(letters_, kFewestLetters), sizeHint().height()};
}

QString ElidedLabel::Shown() const {
  return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || Shown() == text()) return QLabel::event(event);
  QString tip = text();
  if (!toolTip().isEmpty()) tip += QLatin1Char('\n') + toolTip();
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), PlainTip(tip), this);
  return true;
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  if (blank_) return;
  QPainter painter(this);
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment() | Qt::TextSingleLine),
                        palette(), isEnabled(), Shown(), foregroundRole());
  if (!hasFocus()) return;
  QStyleOptionFocusRect focus;
  focus.initFrom(this);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

void ElidedLabel::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && activated_) {
    Activate();
  } else {
    QLabel::mouseDoubleClickEvent(event);
  }
}

void ElidedLabel::keyPressEvent(QKeyEvent* event) {
  const bool pressed =
      event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
  if (pressed && event->modifiers() == Qt::NoModifier && activated_) {
    Activate();
  } else {
    QLabel::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
