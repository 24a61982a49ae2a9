#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "radio/channels/ChannelEntry.h"

namespace kestrune::radio {

/// What the grid of the channels window shows: a title row, which is row 0, and a row a channel from row 1
/// on. Texts are UTF-8; those of the columns 1 to 4 begin with a blank. A row's identity is the number in its
/// column 0, never its position: rows move when sorted.
class ChannelGrid {
 public:
  static constexpr int kColumns = 5;
  enum Column : int { Number, Station, Artist, Song, Genre };
  enum class Order { Ascending = 1, Descending = 2 };
  using Row = std::array<std::string, kColumns>;

  /// While true, a change of the selection is the program's own.
  bool IgnoreMove = false;
  /// Whether the window takes input: the start sequence disables it, and the first reply of the walk enables it
  /// again.
  bool Enabled = true;

  /// Widths and titles; then sorts by number, not ascending.
  void FormSetup();
  /// Sorts and marks the title of the column: "> " in front of it after an ascending sort, "< " after a
  /// descending one. The first two characters of the title sorted by last are taken for its mark and go, so
  /// that FormSetup leaves of "CH" the mark alone.
  void SortByColumn(std::int16_t sortColumn, bool ascending);
  /// Sorts the rows alone. A text that is a number counts as one and comes before other texts, which are
  /// compared without regard to case; rows with equal texts keep their order. The selection stays on its row.
  void Sort(int column, Order order);

  /// How the rows have been sorted last, apart from what the mark in a title tells: SortByColumn and Clear forget it.
  struct Sorting {
    int Column = 0;
    Order Direction = Order::Ascending;

    bool operator==(const Sorting&) const = default;
  };
  [[nodiscard]] const std::optional<Sorting>& Sorted() const { return sorted_; }

  [[nodiscard]] const Row& Titles() const { return titles_; }
  /// In twips.
  [[nodiscard]] const std::array<int, kColumns>& Widths() const { return widths_; }

  /// Number of channel rows.
  [[nodiscard]] int RowCount() const { return static_cast<int>(rows_.size()); }
  /// Row 1 to RowCount.
  [[nodiscard]] const Row& At(int row) const { return rows_.at(static_cast<std::size_t>(row) - 1); }
  /// The number in column 0; 0 for a row that does not exist.
  [[nodiscard]] std::int16_t NumberAt(int row) const;
  /// The first row of a channel, 0 if it has none.
  [[nodiscard]] int FindRow(std::int16_t number) const;

  void AddRow(const ChannelEntry& entry);
  /// Writes the text unchanged into a cell of an existing row.
  void SetCell(int row, Column column, std::string text);
  void RemoveRow(int row);
  /// Leaves the title row alone.
  void Clear();

  /// The selected row, over its columns 1 to 4; 0 if none is.
  [[nodiscard]] int SelectedRow() const { return selectedRow_; }
  /// Selects an existing row; any other leaves the selection alone.
  void Select(int row);

  /// Grows with every change of what is shown, the selection included.
  [[nodiscard]] std::uint64_t Revision() const { return revision_; }

 private:
  [[nodiscard]] bool Exists(int row) const { return row >= 1 && row <= RowCount(); }

  Row titles_;
  std::array<int, kColumns> widths_{};
  std::vector<Row> rows_;
  int selectedRow_ = 0;
  std::int16_t sortColumn_ = 0;
  int sortOrder_ = 0;  // 0 before the first sort
  std::optional<Sorting> sorted_;
  std::uint64_t revision_ = 0;
};

}  // namespace kestrune::radio
