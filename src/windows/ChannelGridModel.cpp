#include "windows/ChannelGridModel.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>
#include <map>
#include <set>

#include "base/Numbers.h"
#include "base/OneLine.h"
#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

// A cell begins with a blank that separates it from its neighbour; the view uses margins instead.
QString Shown(std::string_view cell) {
  if (!cell.empty() && cell.front() == ' ') cell.remove_prefix(1);
  return ToQt(base::OneLine(cell));
}

/// A text that is never taken for markup; empty stays empty.
QString AsMarkup(const QString& text) {
  return text.isEmpty() ? text : QStringLiteral("<span>") + text.toHtmlEscaped() + QStringLiteral("</span>");
}

std::int16_t ChannelOf(const radio::ChannelGrid::Row& row) {
  return base::ToInt16(base::LeadingNumber(row[radio::ChannelGrid::Number])).value_or(0);
}

}  // namespace

ChannelGridModel::ChannelGridModel(presenters::ChannelListing& listing, QObject* parent)
    : QAbstractTableModel(parent), listing_(listing), grid_(listing.Grid()) {
  Update();
}

void ChannelGridModel::Update() {
  listing_.Update();
  if (revision_ == listing_.Revision()) return;
  revision_ = listing_.Revision();
  if (titles_ != grid_.Titles() || sorted_ != grid_.Sorted().has_value()) {
    titles_ = grid_.Titles();
    sorted_ = grid_.Sorted().has_value();
    emit headerDataChanged(Qt::Horizontal, 0, radio::ChannelGrid::kColumns - 1);
  }
  std::vector<Row> rows;
  rows.reserve(listing_.Rows().size());
  for (const presenters::ChannelListing::Row& row : listing_.Rows())
    rows.push_back({.Cells = grid_.At(row.GridRow), .Tuned = row.Tuned, .Favourite = row.Favourite});
  const auto sameNumber = [](const Row& a, const Row& b) {
    return a.Cells[radio::ChannelGrid::Number] == b.Cells[radio::ChannelGrid::Number];
  };
  if (!std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end(), sameNumber)) {
    const Keys wanted = KeysOf(rows);
    RemoveAllBut(wanted);
    BringIntoOrder(wanted);
    InsertNew(rows, wanted);
  }
  WriteChanged(rows);
}

// A row's number, and which of the rows with that number it is: a malformed list can contain a number twice.
ChannelGridModel::Keys ChannelGridModel::KeysOf(const std::vector<Row>& rows) {
  Keys keys;
  keys.reserve(rows.size());
  std::map<std::string, int> seen;
  for (const Row& row : rows) {
    const std::string& number = row.Cells[radio::ChannelGrid::Number];
    keys.push_back(number + '\n' + std::to_string(++seen[number]));
  }
  return keys;
}

void ChannelGridModel::RemoveAllBut(const Keys& wanted) {
  const std::set<std::string> kept(wanted.begin(), wanted.end());
  const Keys present = KeysOf(rows_);
  for (int row = rowCount() - 1; row >= 0; --row) {
    if (kept.count(present[static_cast<std::size_t>(row)]) != 0) continue;
    beginRemoveRows({}, row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
  }
}

// Puts the existing rows into the wanted order.
void ChannelGridModel::BringIntoOrder(const Keys& wanted) {
  const Keys present = KeysOf(rows_);
  std::map<std::string, int> places;
  for (const std::string& key : present) places.emplace(key, 0);
  int next = 0;
  for (const std::string& key : wanted) {
    if (const auto place = places.find(key); place != places.end()) place->second = next++;
  }
  std::vector<int> moved;  // the new row of each
  moved.reserve(present.size());
  for (const std::string& key : present) moved.push_back(places[key]);
  if (std::is_sorted(moved.begin(), moved.end())) return;

  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  std::vector<Row> sorted(rows_.size());
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    sorted[static_cast<std::size_t>(moved[row])] = std::move(rows_[row]);
  }
  rows_ = std::move(sorted);
  for (const QModelIndex& old : persistentIndexList()) {
    changePersistentIndex(old, index(moved[static_cast<std::size_t>(old.row())], old.column()));
  }
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void ChannelGridModel::InsertNew(const std::vector<Row>& rows, const Keys& wanted) {
  const Keys before = KeysOf(rows_);
  const std::set<std::string> present(before.begin(), before.end());
  for (std::size_t first = 0; first < rows.size(); ++first) {
    if (present.count(wanted[first]) != 0) continue;
    std::size_t end = first + 1;
    while (end < rows.size() && present.count(wanted[end]) == 0) ++end;
    const auto from = static_cast<std::ptrdiff_t>(first);
    const auto to = static_cast<std::ptrdiff_t>(end);
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
    rows_.insert(rows_.begin() + from, rows.begin() + from, rows.begin() + to);
    endInsertRows();
    first = end;
  }
}

void ChannelGridModel::WriteChanged(const std::vector<Row>& rows) {
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (rows_[row] == rows[row]) continue;
    // A mark is on the whole row.
    const bool marks = rows_[row].Tuned != rows[row].Tuned || rows_[row].Favourite != rows[row].Favourite;
    int first = marks ? 0 : radio::ChannelGrid::kColumns;
    int last = marks ? radio::ChannelGrid::kColumns - 1 : 0;
    for (int column = 0; column < radio::ChannelGrid::kColumns; ++column) {
      const auto cell = static_cast<std::size_t>(column);
      if (rows_[row].Cells.at(cell) == rows[row].Cells.at(cell)) continue;
      first = std::min(first, column);
      last = std::max(last, column);
    }
    rows_[row] = rows[row];
    emit dataChanged(index(static_cast<int>(row), first), index(static_cast<int>(row), last));
  }
}

int ChannelGridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ChannelGridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : radio::ChannelGrid::kColumns;
}

QVariant ChannelGridModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const Row& row = rows_[static_cast<std::size_t>(index.row())];
  const auto text = [&] { return Shown(row.Cells.at(static_cast<std::size_t>(index.column()))); };
  switch (role) {
    case Qt::DisplayRole:
      return text();
    case Qt::ToolTipRole:
      return AsMarkup(text());
    case kRowTipRole:
      return AsMarkup(ToQt(RowTip(ChannelOf(row.Cells))));
    case Qt::TextAlignmentRole:
      return QVariant(index.column() == radio::ChannelGrid::Number ? Qt::AlignRight | Qt::AlignVCenter
                                                                   : Qt::AlignLeft | Qt::AlignVCenter);
    default:
      return MarkOf(index, role);
  }
}

/// How a row is marked: bold if its channel is tuned, and for those who do not see that, in words on its first cell.
QVariant ChannelGridModel::MarkOf(const QModelIndex& index, int role) const {
  const Row& row = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case kTunedRole:
      return row.Tuned;
    case kFavouriteRole:
      return row.Favourite;
    case Qt::FontRole: {
      if (!row.Tuned) return {};
      QFont bold;
      bold.setBold(true);
      return bold;
    }
    case Qt::AccessibleDescriptionRole: {
      if (index.column() != radio::ChannelGrid::Number) return {};
      QStringList marks;
      if (row.Tuned) marks << tr("tuned");
      if (row.Favourite) marks << tr("favourite");
      return marks.join(QStringLiteral(", "));
    }
    default:
      return {};
  }
}

QVariant ChannelGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= radio::ChannelGrid::kColumns) return {};
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(titles_.at(static_cast<std::size_t>(section)));
    case Qt::AccessibleTextRole:
      // The title of the number column is only a mark.
      return section == radio::ChannelGrid::Number ? QStringLiteral("Channel")
                                                   : ToQt(titles_.at(static_cast<std::size_t>(section)));
    case Qt::ToolTipRole:
      return QStringLiteral("Sort by this column (Ctrl+%1)").arg(section + 1);
    case Qt::TextAlignmentRole:
      return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::ForegroundRole:
      // The mark does not follow a click on a title, so the arrow there must be the one that is seen.
      if (section != radio::ChannelGrid::Number || !sorted_) return {};
      return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::ButtonText);
    default:
      return {};
  }
}

}  // namespace kestrune::windows
