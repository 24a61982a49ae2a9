#include "presenters/ChannelMenu.h"

#include <cstddef>

#include "base/Text.h"

namespace kestrune::presenters {
namespace {

std::string_view Cell(const radio::ChannelGrid::Row& row, radio::ChannelGrid::Column column) {
  return base::Trim(row.at(static_cast<std::size_t>(column)));
}

}  // namespace

ChannelMenuItems ChannelMenu::ItemsOf(int gridRow) const {
  const radio::ChannelGrid& grid = chooser_.Grid();
  if (gridRow < 1 || gridRow > grid.RowCount()) return {};
  const radio::ChannelGrid::Row& row = grid.At(gridRow);
  const std::int16_t channel = grid.NumberAt(gridRow);
  ChannelMenuItems items{.Channel = channel,
                         .Name = Presets::TextOf(channel, Cell(row, radio::ChannelGrid::Station)),
                         .MayTune = chooser_.MayTune(),
                         .Favourite = favourites_.Has(channel),
                         .Artist = std::string(Cell(row, radio::ChannelGrid::Artist)),
                         .Song = std::string(Cell(row, radio::ChannelGrid::Song))};
  for (int index = 0; index < Presets::kCount; ++index) {
    const auto place = static_cast<std::size_t>(index);
    const std::string& caption = presets_.Buttons().at(place).Caption;
    items.PresetButtons.at(place) = {.Text = caption.empty() ? "(empty)" : caption,
                                     .Chosen = !caption.empty() && presets_.ChannelOf(index) == channel};
  }
  return items;
}

void ChannelMenu::Tune(std::int16_t channel) {
  chooser_.ClickRow(chooser_.Grid().FindRow(channel));
}

void ChannelMenu::StorePreset(int index, std::int16_t channel) {
  const radio::ChannelGrid& grid = chooser_.Grid();
  const int row = grid.FindRow(channel);
  if (row == 0) return;
  presets_.Store(index, Presets::TextOf(channel, Cell(grid.At(row), radio::ChannelGrid::Station)));
  presets_.LoadPresets();
}

}  // namespace kestrune::presenters
