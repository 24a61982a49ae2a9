#include "windows/ChannelView.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "windows/ChannelGridModel.h"
#include "windows/HotKeys.h"

namespace kestrune::windows {
namespace {

/// A star with five points that fills a square.
QPolygonF StarIn(const QRectF& square) {
  constexpr int kPoints = 10;
  constexpr double kInner = 0.42;
  QPolygonF star;
  for (int i = 0; i < kPoints; ++i) {
    const double angle = std::numbers::pi * (2.0 * i / kPoints - 0.5);
    const double radius = square.width() / 2 * (i % 2 == 0 ? 1 : kInner);
    star << square.center() + QPointF(std::cos(angle), std::sin(angle)) * radius;
  }
  return star;
}

QPixmap Star(const QColor& colour, int side, qreal scale) {
  QPixmap pixmap(QSize(side, side) * scale);
  pixmap.setDevicePixelRatio(scale);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  painter.drawPolygon(StarIn(QRectF(0, 0, side, side)));
  return pixmap;
}

/// Marks the row of the tuned channel by a bar before its number and a favourite by a star after its station. Shows the
/// full text as a tip only where it is cut off, and what is said of the row everywhere.
class CellDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    // On the selected row its colour would not be seen.
    if (index.column() != radio::ChannelGrid::Number || (option.state & QStyle::State_Selected) != 0 ||
        !index.data(ChannelGridModel::kTunedRole).toBool())
      return;
    constexpr int kBar = 3;
    painter->fillRect(QRect(option.rect.topLeft(), QSize(kBar, option.rect.height())),
                      option.palette.color(QPalette::Highlight));
  }

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

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() != radio::ChannelGrid::Station ||
        !index.data(ChannelGridModel::kFavouriteRole).toBool())
      return;
    const int side = option->fontMetrics.ascent();
    const qreal scale = option->widget != nullptr ? option->widget->devicePixelRatioF() : 1;
    QIcon star;
    star.addPixmap(Star(option->palette.color(QPalette::Text), side, scale));
    star.addPixmap(Star(option->palette.color(QPalette::HighlightedText), side, scale), QIcon::Selected);
    option->icon = star;
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->decorationSize = QSize(side, side);
    option->decorationPosition = QStyleOptionViewItem::Right;
    option->decorationAlignment = Qt::AlignCenter;
  }
};

}  // namespace

ChannelView::ChannelView(QWidget* parent) : QTableView(parent) {
  setItemDelegate(new CellDelegate(this));
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
  const QString text = event->text();
  const bool modified = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != 0;
  if (!modified && !text.isEmpty() && text.front().isPrint() && !text.front().isSpace()) {
    Typed(text);
    return;
  }
  BeforeInput();
  TellMove([&] { QTableView::keyPressEvent(event); });
}

void ChannelView::mousePressEvent(QMouseEvent* event) {
  // The button of the menu chooses no channel.
  if (event->button() == Qt::RightButton) return;
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

void ChannelView::contextMenuEvent(QContextMenuEvent* event) {
  BeforeInput();
  if (event->reason() != QContextMenuEvent::Keyboard) {
    if (const QModelIndex cell = indexAt(event->pos()); cell.isValid())
      MenuAsked(cell.row() + 1, event->globalPos());
    return;
  }
  if (!currentIndex().isValid()) return;
  scrollTo(currentIndex());
  const QRect cell = visualRect(currentIndex().siblingAtColumn(radio::ChannelGrid::Station));
  MenuAsked(SelectedRow(), viewport()->mapToGlobal(cell.bottomLeft()));
}

bool ChannelView::ShowsSelectedRow() const {
  return currentIndex().isValid() && viewport()->rect().intersects(visualRect(currentIndex()));
}

}  // namespace kestrune::windows
