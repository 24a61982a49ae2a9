#include "windows/FocusRing.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace kestrune::windows {

FocusRing::FocusRing(QObject* parent) : QObject(parent) {
  qApp->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const auto* widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr) return false;
  QWidget* const window = widget->window();
  if (window->testAttribute(Qt::WA_KeyboardFocusChange)) return false;
  window->setAttribute(Qt::WA_KeyboardFocusChange);
  if (QWidget* const focus = window->focusWidget()) focus->update();
  return false;
}

}  // namespace kestrune::windows
