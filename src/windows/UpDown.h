#pragma once

#include <QWidget>
#include <functional>

class QHBoxLayout;
class QLineEdit;

namespace kestrune::windows {

/// The two arrows beside a text box for a number. The keys Up and Down in the text box do the same while the
/// arrows are visible. It holds no value: it reports each step as 1 or -1, and the rules write the text.
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

/// The text box with its arrows beside it, as an item for the caller's layout, which takes ownership.
[[nodiscard]] QHBoxLayout* WithArrows(QLineEdit& line, UpDown& arrows);

}  // namespace kestrune::windows
