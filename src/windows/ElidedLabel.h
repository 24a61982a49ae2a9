#pragma once

#include <QLabel>
#include <functional>

namespace kestrune::windows {

/// A line of text whose length nobody knows beforehand: what does not fit is cut off with an ellipsis and
/// stands whole in the tip, and the layout never moves for it. Always plain text, shown letter by letter.
class ElidedLabel final : public QLabel {
 public:
  /// Asks the layout for room for so many letters.
  explicit ElidedLabel(int letters, QWidget* parent = nullptr);

  /// A double click, or Enter or the space bar while it has the focus; it takes the focus once this is set.
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
