#include "windows/ChannelView.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "windows/ChannelGridModel.h"
#include "windows/HotKeys.h"

namespace kestrune::windows {
namespace {

/// Shows the full text as a tip only where it is cut off, and what is said of the row everywhere.
class CutTextDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override {
    if (event->type() != QEvent::ToolTip) return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStringList tips;
    if (sizeHint(option, index).width() > option.rect.width()) tips << index.data(Qt::ToolTipRole).toString();
    tips << index.data(ChannelGridModel::kRowTipRole).toString();
    tips.removeAll(QString());
    // An empty text hides the tip.
    QToolTip::showText(event->globalPos(), tips.join(QStringLiteral("<br>")), view);
    return true;
  }
};

}  // namespace

ChannelView::ChannelView(QWidget* parent) : QTableView(parent) {
  setItemDelegate(new CutTextDelegate(this));
  setSelectionMode(SingleSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setHorizontalScrollMode(ScrollPerPixel);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
  horizontalHeader()->setSectionsClickable(true);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setStretchLastSection(true);
}

template <typename Handle>
bool ChannelView::TellMove(Handle handle) {
  const int before = SelectedRow();
  handle();
  if (SelectedRow() == before || SelectedRow() == 0) return false;
  Moved(SelectedRow());
  return true;
}

void ChannelView::SelectRow(int row) {
  if (row == SelectedRow()) return;
  if (row == 0) {
    setCurrentIndex({});
    clearSelection();
    return;
  }
  const int column = std::max(0, currentIndex().column());
  selectionModel()->setCurrentIndex(model()->index(row - 1, column),
                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QItemSelectionModel::SelectionFlags ChannelView::selectionCommand(const QModelIndex& index,
                                                                  const QEvent* /*event*/) const {
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

void ChannelView::keyPressEvent(QKeyEvent* event) {
  if (HotKeyOf(*event) != 0) {
    event->ignore();
    return;
  }
  BeforeInput();
  TellMove([&] { QTableView::keyPressEvent(event); });
}

void ChannelView::mousePressEvent(QMouseEvent* event) {
  BeforeInput();
  const bool moved = TellMove([&] { QTableView::mousePressEvent(event); });
  const bool left = event->button() == Qt::LeftButton;
  pressedRow_ = moved || !left ? 0 : indexAt(event->position().toPoint()).row() + 1;
}

void ChannelView::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() != Qt::NoButton) BeforeInput();
  if (TellMove([&] { QTableView::mouseMoveEvent(event); })) pressedRow_ = 0;
}

void ChannelView::mouseReleaseEvent(QMouseEvent* event) {
  const int row = std::exchange(pressedRow_, 0);
  QTableView::mouseReleaseEvent(event);
  if (row != 0 && indexAt(event->position().toPoint()).row() + 1 == row) Clicked(row);
}

void ChannelView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  BeforeInput();
  pressedRow_ = 0;
  const QModelIndex cell = indexAt(event->position().toPoint());
  if (cell.isValid()) DoubleClicked(cell.row() + 1, cell.column());
}

}  // namespace kestrune::windows
