#include "windows/LogLines.h"

#include <cstddef>

#include "windows/Binding.h"

namespace kestrune::windows {

using schedule::LogList;

LogLines::LogLines(LogList& list, QObject* parent) : QAbstractListModel(parent), list_(list), rows_(Held()) {
  list_.SetChangeHandler([this](LogList::Change change) { Hear(change); });
}

LogLines::~LogLines() {
  list_.SetChangeHandler({});
}

int LogLines::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

QVariant LogLines::data(const QModelIndex& index, int role) const {
  const int line = index.row() - gone_;
  if (role != Qt::DisplayRole || !index.isValid() || line < 0 || line >= Held()) return {};
  return ToQt(list_.Lines()[static_cast<std::size_t>(line)]);
}

void LogLines::Hear(LogList::Change change) {
  if (change == LogList::Change::Reset) {
    beginResetModel();
    rows_ = Held();
    endResetModel();
    return;
  }
  gone_ = rows_ + 1 - Held();
  if (gone_ > 0) {
    beginRemoveRows({}, 0, gone_ - 1);
    rows_ -= gone_;
    gone_ = 0;
    endRemoveRows();
  }
  beginInsertRows({}, rows_, rows_);
  ++rows_;
  endInsertRows();
}

}  // namespace kestrune::windows
