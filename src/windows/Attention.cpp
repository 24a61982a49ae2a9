#include "windows/Attention.h"

#include <QApplication>
#include <QEvent>

namespace kestrune::windows {

Attention::Attention(const base::EventLoop& loop, QObject* parent)
    : QObject(parent), loop_(loop), last_(loop.SteadyNow()) {
  qApp->installEventFilter(this);
}

bool Attention::Paid() const {
  return loop_.SteadyNow() - last_ < kLasts;
}

bool Attention::eventFilter(QObject* /*watched*/, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::Enter:
    case QEvent::WindowActivate:
      last_ = loop_.SteadyNow();
      break;
    default:
      break;
  }
  return false;
}

}  // namespace kestrune::windows
