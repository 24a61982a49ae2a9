#pragma once

#include <cstdint>
#include <set>

#include "config/settings/SettingsDoor.h"

namespace kestrune::presenters {

/// The channels that the user likes best, and whether lists show them before the others. Both are settings of the unit.
class FavouriteChannels {
 public:
  /// The door must outlive the object.
  explicit FavouriteChannels(config::SettingsDoor& settings) : settings_(settings) {}

  [[nodiscard]] std::set<std::int16_t> All() const;
  [[nodiscard]] bool Has(std::int16_t channel) const { return All().contains(channel); }
  /// Makes the channel one of them, or takes it out.
  void Toggle(std::int16_t channel);

  [[nodiscard]] bool First() const { return settings_.Current().FavouritesFirst; }
  void SetFirst(bool first);

 private:
  config::SettingsDoor& settings_;
};

}  // namespace kestrune::presenters
