#pragma once

#include <QScrollArea>
#include <QSize>

namespace kestrune::windows {

/// The part of a window that scrolls where the screen is too small for it. It asks for the room of its whole content and is content
/// with much less.
class FittedPage final : public QScrollArea {
 public:
  explicit FittedPage(QWidget* parent = nullptr);

  /// Gets the layout of what is shown.
  [[nodiscard]] QWidget& Content() { return *content_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* content_;
};

/// What a window gets that would like to be `wished`, on a screen with `room` for windows with their frames; a scroll bar
/// below, `bar` pixels high, comes on top of the height if the width is not enough.
[[nodiscard]] QSize FittedSize(QSize wished, QSize room, int bar);

/// Gives the window the size that it asks for, as far as its screen has the room.
void FitToScreen(QWidget& window);

}  // namespace kestrune::windows
