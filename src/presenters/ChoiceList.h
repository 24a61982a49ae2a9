#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::presenters {

struct ChoiceRow {
  std::string Text;
  std::int32_t Value = 0;

  bool operator==(const ChoiceRow&) const = default;
};

/// A list as a window shows it: its rows and the selected one. Selecting what is not on the list selects nothing.
struct ChoiceList {
  std::vector<ChoiceRow> Rows;
  int Row = -1;  ///< -1 is none

  /// A row outside the list selects none.
  void Select(int row) { Row = row >= 0 && static_cast<std::size_t>(row) < Rows.size() ? row : -1; }
  void SelectValue(std::int32_t value) {
    const auto found = std::ranges::find(Rows, value, &ChoiceRow::Value);
    Row = found == Rows.end() ? -1 : static_cast<int>(found - Rows.begin());
  }
  void SelectText(std::string_view text) {
    const auto found = std::ranges::find(Rows, text, &ChoiceRow::Text);
    Row = found == Rows.end() ? -1 : static_cast<int>(found - Rows.begin());
  }

  /// Empty if no row is selected.
  [[nodiscard]] std::string Text() const {
    return Row < 0 ? std::string() : Rows[static_cast<std::size_t>(Row)].Text;
  }
  [[nodiscard]] std::optional<std::int32_t> Value() const {
    if (Row < 0) return std::nullopt;
    return Rows[static_cast<std::size_t>(Row)].Value;
  }
};

}  // namespace kestrune::presenters
