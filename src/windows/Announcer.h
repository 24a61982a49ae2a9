#pragma once

#include <QObject>
#include <QString>

namespace kestrune::windows {

/// Says something through a running screen reader by itself, without a window, as a notification of the program. Does
/// nothing where no reader runs. For the main thread.
class Announcer final : public QObject {
 public:
  /// `window`, where readers find what is said, owns the object.
  explicit Announcer(QWidget& window);

  void Say(const QString& text);
  /// What was said last.
  [[nodiscard]] const QString& Said() const { return said_; }
  [[nodiscard]] QWidget& Window() const { return window_; }

 private:
  QWidget& window_;
  QString said_;
};

}  // namespace kestrune::windows
