#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "presenters/ChannelChooser.h"
#include "presenters/FavouriteChannels.h"
#include "presenters/GrabKill.h"
#include "presenters/Presets.h"

namespace kestrune::presenters {

/// What the menu of a channel's row shows. Texts are plain.
struct ChannelMenuItems {
  std::int16_t Channel = 0;
  std::string Name;      ///< such as "45 - Lucy"
  bool MayTune = false;  ///< recording does not keep the channel
  bool Favourite = false;
  std::string Artist = {};  ///< without the blanks around it; empty if nothing is to be put on a list
  std::string Song = {};
  struct Preset {
    std::string Text;     ///< its caption, or that it is empty
    bool Chosen = false;  ///< it has this channel
  };
  std::array<Preset, Presets::kCount> PresetButtons = {};
};

/// The menu of a row of the channels window: what it offers, and what a choice does. A choice names its channel, as rows
/// move while a menu is open.
class ChannelMenu {
 public:
  /// All must outlive the object.
  ChannelMenu(ChannelChooser& chooser, FavouriteChannels& favourites, Presets& presets, GrabKill& lists)
      : chooser_(chooser), favourites_(favourites), presets_(presets), lists_(lists) {}

  /// Shows what the channel has played.
  std::function<void(std::int16_t channel)> ShowHistory = [](auto) {};

  /// A row that does not exist has items of channel 0.
  [[nodiscard]] ChannelMenuItems ItemsOf(int gridRow) const;

  /// As a click on the channel's row.
  void Tune(std::int16_t channel);
  void ToggleFavourite(std::int16_t channel) { favourites_.Toggle(channel); }
  /// Gives preset `index`, 0 to 11, the channel, whatever it had, as the window of the presets does.
  void StorePreset(int index, std::int16_t channel);
  /// Puts a text on the Grab list, or on the Kill list.
  void AddToList(GrabKill::Field field, bool kill, std::string_view text) { lists_.Add(field, kill, text); }

  [[nodiscard]] FavouriteChannels& Favourites() { return favourites_; }

 private:
  ChannelChooser& chooser_;
  FavouriteChannels& favourites_;
  Presets& presets_;
  GrabKill& lists_;
};

}  // namespace kestrune::presenters
