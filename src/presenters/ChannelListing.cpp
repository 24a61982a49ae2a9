#include "presenters/ChannelListing.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "base/SortText.h"
#include "base/Text.h"

namespace kestrune::presenters {

void ChannelListing::Search(std::string_view text) {
  std::vector<std::string> words;
  for (std::string& word : base::Split(base::SortText(text), ' ')) {
    if (!word.empty()) words.push_back(std::move(word));
  }
  if (words == words_) return;
  words_ = std::move(words);
  fresh_ = false;
}

void ChannelListing::Update() {
  Source source{
      .Grid = grid_.Revision(), .Tuned = Tuned(), .Favourites = Favourites(), .First = FavouritesFirst()};
  if (fresh_ && source == source_) return;
  fresh_ = true;
  source_ = std::move(source);
  ++revision_;
  rows_.clear();
  for (int row = 1; row <= grid_.RowCount(); ++row) {
    if (!Matches(grid_.At(row))) continue;
    const std::int16_t channel = grid_.NumberAt(row);
    rows_.push_back({.GridRow = row,
                     .Tuned = channel == source_.Tuned,
                     .Favourite = source_.Favourites.contains(channel)});
  }
  if (source_.First)
    std::stable_partition(rows_.begin(), rows_.end(), [](const Row& row) { return row.Favourite; });
}

bool ChannelListing::Matches(const radio::ChannelGrid::Row& row) const {
  if (words_.empty()) return true;
  std::string text;
  for (const std::string& cell : row) text += base::SortText(cell) + '\n';
  return std::ranges::all_of(words_,
                             [&](const std::string& word) { return text.find(word) != std::string::npos; });
}

int ChannelListing::GridRowAt(int row) const {
  if (row < 1 || row > static_cast<int>(rows_.size())) return 0;
  return rows_[static_cast<std::size_t>(row) - 1].GridRow;
}

int ChannelListing::RowOf(int gridRow) const {
  const auto found = std::ranges::find(rows_, gridRow, &Row::GridRow);
  return found == rows_.end() ? 0 : static_cast<int>(found - rows_.begin()) + 1;
}

std::string ChannelListing::Found() const {
  return Searches() ? fmt::format("{} of {}", rows_.size(), grid_.RowCount()) : std::string();
}

}  // namespace kestrune::presenters
