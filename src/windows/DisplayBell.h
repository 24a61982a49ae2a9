#pragma once

#include <QApplication>
#include <QEvent>
#include <QObject>

namespace kestrune::windows {

/// Rings the bell of the display for each event of the kind QEvent::User, which any thread may post.
class DisplayBell final : public QObject {
 protected:
  void customEvent(QEvent* /*event*/) override { QApplication::beep(); }
};

}  // namespace kestrune::windows
