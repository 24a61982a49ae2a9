#pragma once

#include <QObject>

namespace kestrune::windows {

/// Lets styles show which widget has the focus from the first key that is pressed in a window, not from the first Tab. The
/// mouse takes the ring away again, as styles have it.
class FocusRing final : public QObject {
 public:
  /// For all windows of the program, for as long as the object lives.
  explicit FocusRing(QObject* parent = nullptr);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace kestrune::windows
