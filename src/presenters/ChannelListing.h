#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "radio/channels/ChannelGrid.h"

namespace kestrune::presenters {

/// Which rows of the channels' grid the channels window shows, and in which order: those that a search leaves, in the
/// grid's own order, or the favourites before the others. The grid stays as it is.
///
/// Rows count from 1, those of the listing as those of the grid.
class ChannelListing {
 public:
  struct Row {
    int GridRow = 0;
    bool Tuned = false;
    bool Favourite = false;

    bool operator==(const Row&) const = default;
  };

  /// The grid must outlive the object.
  explicit ChannelListing(const radio::ChannelGrid& grid) : grid_(grid) {}

  std::function<std::int16_t()> Tuned = [] { return std::int16_t{0}; };
  std::function<std::set<std::int16_t>()> Favourites = [] { return std::set<std::int16_t>(); };
  std::function<bool()> FavouritesFirst = [] { return false; };

  [[nodiscard]] const radio::ChannelGrid& Grid() const { return grid_; }

  /// Each word of the text must occur somewhere in a row; neither case nor accents count. Blanks alone search nothing.
  void Search(std::string_view text);
  [[nodiscard]] bool Searches() const { return !words_.empty(); }

  /// Looks at the grid again; costs little if nothing has changed.
  void Update();
  [[nodiscard]] const std::vector<Row>& Rows() const { return rows_; }
  /// Grows with every change of the grid, of the rows or of their marks.
  [[nodiscard]] std::uint64_t Revision() const { return revision_; }

  /// 0 for a row that is not listed.
  [[nodiscard]] int GridRowAt(int row) const;
  /// 0 for a row of the grid that is not listed.
  [[nodiscard]] int RowOf(int gridRow) const;
  /// How many rows a search has left, such as "3 of 120"; empty while nothing is searched.
  [[nodiscard]] std::string Found() const;

 private:
  /// All that the rows follow from.
  struct Source {
    std::uint64_t Grid = 0;
    std::int16_t Tuned = 0;
    std::set<std::int16_t> Favourites;
    bool First = false;

    bool operator==(const Source&) const = default;
  };

  [[nodiscard]] bool Matches(const radio::ChannelGrid::Row& row) const;

  const radio::ChannelGrid& grid_;
  std::vector<std::string> words_;
  bool fresh_ = false;  // the rows follow from the source and the words
  Source source_;
  std::vector<Row> rows_;
  std::uint64_t revision_ = 0;
};

}  // namespace kestrune::presenters
