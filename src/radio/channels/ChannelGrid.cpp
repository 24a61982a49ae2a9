#include "radio/channels/ChannelGrid.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "base/Numbers.h"
#include "base/SortText.h"

namespace kestrune::radio {

namespace {

constexpr std::size_t kMarkLength = 2;

struct SortKey {
  std::optional<float> Number;
  std::string Text;
  std::size_t Position;  // before the sort
};

bool Before(const SortKey& a, const SortKey& b) {
  if (a.Number && b.Number) return *a.Number < *b.Number;
  if (a.Number || b.Number) return a.Number.has_value();
  return a.Text < b.Text;
}

}  // namespace

void ChannelGrid::FormSetup() {
  IgnoreMove = true;
  widths_ = {435, 2000, 2000, 2000, 2000};
  titles_ = {"CH", "Station Name", "Artist", "Song", "Station Genre"};
  SortByColumn(Column::Number, false);
  IgnoreMove = false;
}

void ChannelGrid::SortByColumn(std::int16_t sortColumn, bool ascending) {
  if (sortColumn < 0 || sortColumn >= kColumns) return;
  const bool turnRound = !ascending && sortColumn == sortColumn_ && sortOrder_ == 1;
  const Order order = turnRound ? Order::Descending : Order::Ascending;
  Sort(sortColumn, order);
  sorted_.reset();
  std::string& oldTitle = titles_.at(static_cast<std::size_t>(sortColumn_));
  oldTitle.erase(0, kMarkLength);
  sortColumn_ = sortColumn;
  sortOrder_ = static_cast<int>(order);
  titles_.at(static_cast<std::size_t>(sortColumn)).insert(0, order == Order::Ascending ? "> " : "< ");
  ++revision_;
}

void ChannelGrid::Sort(int column, Order order) {
  std::vector<SortKey> keys;
  keys.reserve(rows_.size());
  for (const Row& row : rows_) {
    const std::string& text = row.at(static_cast<std::size_t>(column));
    keys.push_back({base::ToSingle(text), base::SortText(text), keys.size()});
  }
  std::stable_sort(keys.begin(), keys.end(), [order](const SortKey& a, const SortKey& b) {
    return order == Order::Ascending ? Before(a, b) : Before(b, a);
  });

  std::vector<Row> sorted;
  sorted.reserve(rows_.size());
  const auto selectedPosition = static_cast<std::size_t>(selectedRow_) - 1;
  int selected = 0;
  for (const SortKey& key : keys) {
    if (selectedRow_ != 0 && key.Position == selectedPosition) selected = static_cast<int>(sorted.size()) + 1;
    sorted.push_back(std::move(rows_[key.Position]));
  }
  rows_ = std::move(sorted);
  selectedRow_ = selected;
  sorted_ = {.Column = column, .Direction = order};
  ++revision_;
}

std::int16_t ChannelGrid::NumberAt(int row) const {
  if (!Exists(row)) return 0;
  return base::ToInt16(base::LeadingNumber(At(row)[Column::Number])).value_or(0);
}

int ChannelGrid::FindRow(std::int16_t number) const {
  for (int row = 1; row <= RowCount(); ++row) {
    if (NumberAt(row) == number) return row;
  }
  return 0;
}

void ChannelGrid::AddRow(const ChannelEntry& entry) {
  rows_.push_back({fmt::to_string(entry.Number), " " + entry.Station, " " + entry.Artist, " " + entry.Song,
                   " " + entry.Genre});
  ++revision_;
}

void ChannelGrid::SetCell(int row, Column column, std::string text) {
  if (!Exists(row)) return;
  rows_[static_cast<std::size_t>(row) - 1].at(static_cast<std::size_t>(column)) = std::move(text);
  ++revision_;
}

void ChannelGrid::RemoveRow(int row) {
  if (!Exists(row)) return;
  rows_.erase(rows_.begin() + (row - 1));
  if (row == selectedRow_) {
    selectedRow_ = 0;
  } else if (row < selectedRow_) {
    --selectedRow_;
  }
  ++revision_;
}

void ChannelGrid::Clear() {
  rows_.clear();
  selectedRow_ = 0;
  sorted_.reset();
  ++revision_;
}

void ChannelGrid::Select(int row) {
  if (!Exists(row) || row == selectedRow_) return;
  selectedRow_ = row;
  ++revision_;
}

}  // namespace kestrune::radio
