#pragma once

#include <functional>

#include "presenters/ChannelListing.h"
#include "presenters/ChannelMenu.h"
#include "support/SettingsRig.h"

namespace kestrune::test {

/// What the list of the channels window and the menu of its rows stand on, over a table of channels.
struct ChannelMenuRig {
  /// All must outlive the object.
  ChannelMenuRig(radio::Channels& channels, platform::Sounds& sounds, presenters::PresetKeys keys,
                 presenters::ChannelChooser& chooser, std::function<bool()> getRecordingStatus)
      : Presets(channels, sounds, std::move(keys), std::move(getRecordingStatus)),
        Listing(channels.Grid()),
        Menu(chooser, Favourites, Presets, Lists) {
    Listing.Tuned = [&channels] { return channels.ChannelNumber(); };
    Listing.Favourites = [this] { return Favourites.All(); };
    Listing.FavouritesFirst = [this] { return Favourites.First(); };
  }

  /// The entries of the Grab and Kill lists, a line each, after the digit of their list.
  [[nodiscard]] std::string Listed() const { return Settings.Files.Text(Restrictions.RestrictionFile()); }

  SettingsRig Settings;
  presenters::FavouriteChannels Favourites{Settings.Door};
  presenters::Presets Presets;
  schedule::Restrictions Restrictions{Settings.Files, Settings.Environment, Settings.Journal};
  presenters::GrabKill Lists{Restrictions};
  presenters::ChannelListing Listing;
  presenters::ChannelMenu Menu;
};

}  // namespace kestrune::test
