#pragma once

#include <QAbstractButton>
#include <QAccessibleWidget>

namespace kestrune::windows {

/// A check box or a radio button as a screen reader has it. Toggled by the reader it is clicked, like by a hand: what a
/// window does about it hangs on the click.
class SpokenCheck final : public QAccessibleWidget {
 public:
  explicit SpokenCheck(QAbstractButton& button);

  [[nodiscard]] QString text(QAccessible::Text kind) const override;
  [[nodiscard]] QAccessible::State state() const override;
  [[nodiscard]] QStringList actionNames() const override;
  /// Returns at once; the click follows from the event loop, since it may open a window that waits for an answer.
  void doAction(const QString& name) override;

 private:
  QAbstractButton& button_;
};

}  // namespace kestrune::windows
