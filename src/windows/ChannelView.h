#pragma once

#include <QItemSelectionModel>
#include <QTableView>
#include <functional>

namespace kestrune::windows {

/// A table of which one row is selected, as a whole. It tells what the user does in it after it has moved its
/// own selection, so that the selection can be put back. Rows count from 1.
class ChannelView final : public QTableView {
 public:
  explicit ChannelView(QWidget* parent = nullptr);

  /// The user is about to do something: the time to bring the model up to date.
  std::function<void()> BeforeInput = [] {};
  /// Another row has become the current one through a key or the mouse.
  std::function<void(int row)> Moved = [](int) {};
  /// The row that was the current one already was clicked.
  std::function<void(int row)> Clicked = [](int) {};
  std::function<void(int row, int column)> DoubleClicked = [](int, int) {};

  /// Makes the row the selection; 0 takes the selection away.
  void SelectRow(int row);
  [[nodiscard]] int SelectedRow() const { return currentIndex().row() + 1; }

 protected:
  /// One row and never none, whatever keys are held.
  [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                                     const QEvent* event) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  template <typename Handle>
  bool TellMove(Handle handle);

  int pressedRow_ = 0;  // pressed without a move
};

}  // namespace kestrune::windows
