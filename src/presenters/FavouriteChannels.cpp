#include "presenters/FavouriteChannels.h"

#include <string>

#include <fmt/ranges.h>

#include "base/Numbers.h"
#include "base/Text.h"

namespace kestrune::presenters {

std::set<std::int16_t> FavouriteChannels::All() const {
  std::set<std::int16_t> channels;
  for (const std::string& word : base::Split(settings_.Current().Favourites, ' ')) {
    if (const auto channel = base::ToInt16(word)) channels.insert(*channel);
  }
  return channels;
}

void FavouriteChannels::Toggle(std::int16_t channel) {
  std::set<std::int16_t> channels = All();
  if (channels.erase(channel) == 0) channels.insert(channel);
  config::Settings wished = settings_.Current();
  wished.Favourites = fmt::format("{}", fmt::join(channels, " "));
  settings_.Change(wished, {"Favourites"});
}

void FavouriteChannels::SetFirst(bool first) {
  config::Settings wished = settings_.Current();
  wished.FavouritesFirst = first;
  settings_.Change(wished, {"FavouritesFirst"});
}

}  // namespace kestrune::presenters
