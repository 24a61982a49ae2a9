#pragma once

#include <QLabel>
#include <functional>

namespace kestrune::windows {

/// A line of text of unknown length. Text that does not fit is elided and shown in full in the tip, and the
/// layout never changes because of it. The text is always plain and shown literally. A screen reader says what it shows.
class ElidedLabel final : public QLabel {
 public:
  /// Asks the layout for room for this many letters. The caption, which may be empty, is what a screen reader says before
  /// the text.
  explicit ElidedLabel(int letters, QWidget* parent = nullptr, QString caption = {});
  [[nodiscard]] const QString& Caption() const { return caption_; }

  /// Called on a double click, and on Enter or the space bar while the label has the focus. Setting it makes
  /// the label take the focus; an empty function makes it a plain label again.
  void SetActivated(std::function<void()> activated);
  [[nodiscard]] bool CanActivate() const { return static_cast<bool>(activated_); }
  void Activate();

  /// While blank it paints nothing. To all else, and to a screen reader, it is as before.
  void SetBlank(bool blank);
  [[nodiscard]] bool IsBlank() const { return blank_; }

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
  QString caption_;
  bool blank_ = false;
  std::function<void()> activated_;
};

}  // namespace kestrune::windows
