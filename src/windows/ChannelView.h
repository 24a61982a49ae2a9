#pragma once

#include <QItemSelectionModel>
#include <QTableView>
#include <functional>

namespace kestrune::windows {

/// A table with exactly one selected row. It reports what the user does after it has moved its own selection,
/// so that the selection can be restored. Rows are numbered from 1.
class ChannelView final : public QTableView {
 public:
  explicit ChannelView(QWidget* parent = nullptr);

  /// Called before it handles the user's input, so that the model can be updated first.
  std::function<void()> BeforeInput = [] {};
  /// Another row has become current, by key or mouse.
  std::function<void(int row)> Moved = [](int) {};
  /// The row that was already current was clicked.
  std::function<void(int row)> Clicked = [](int) {};
  std::function<void(int row, int column)> DoubleClicked = [](int, int) {};
  /// The menu of a row was asked for, by key or mouse, at a place of the screen.
  std::function<void(int row, QPoint where)> MenuAsked = [](int, QPoint) {};
  /// A letter or a digit was typed.
  std::function<void(const QString& text)> Typed = [](const QString&) {};

  /// Selects the row; 0 clears the selection.
  void SelectRow(int row);
  [[nodiscard]] int SelectedRow() const { return currentIndex().row() + 1; }
  /// Whether any of the selected row is in view.
  [[nodiscard]] bool ShowsSelectedRow() const;

 protected:
  /// Always selects one row, whatever modifier keys are held.
  [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                                     const QEvent* event) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  template <typename Handle>
  bool TellMove(Handle handle);

  int pressedRow_ = 0;  // pressed without a move
};

}  // namespace kestrune::windows
