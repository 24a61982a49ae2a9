#pragma once

#include <QLabel>
#include <functional>

namespace kestrune::windows {

/// A line of text of unknown length. Text that does not fit is elided and shown in full in the tip, and the
/// layout never changes because of it. The text is always plain and shown literally.
class ElidedLabel final : public QLabel {
 public:
  /// Asks the layout for room for this many letters.
  explicit ElidedLabel(int letters, QWidget* parent = nullptr);

  /// Called on a double click, and on Enter or the space bar while the label has the focus. Setting it makes
  /// the label take the focus; an empty function makes it a plain label again.
  void SetActivated(std::function<void()> activated);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] QString Shown() const;

  int letters_;
  std::function<void()> activated_;
};

}  // namespace kestrune::windows
