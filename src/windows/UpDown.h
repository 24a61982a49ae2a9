#pragma once

#include <QWidget>
#include <functional>

class QHBoxLayout;
class QLineEdit;

namespace kestrune::windows {

/// The two arrows beside a text box for a number; the keys Up and Down in the text box do the same while the
/// arrows are in sight. It holds no value: each step is told as 1 or -1, and the rules write the text.
class UpDown final : public QWidget {
 public:
  /// `buddy` is the text box; it must have the same parent or outlive this widget.
  UpDown(QLineEdit& buddy, std::function<void(int direction)> step, QWidget* parent = nullptr);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AddButton(Qt::ArrowType arrow, int direction);

  std::function<void(int)> step_;
};

/// The text box with its arrows close to it; the caller's layout takes it over.
[[nodiscard]] QHBoxLayout* WithArrows(QLineEdit& line, UpDown& arrows);

}  // namespace kestrune::windows
