// Any text may be stored as the value of any setting, and be asked for by a command. Each line of the input is a key, "=" and a
// value; a line that begins with "!" is a command. What is loaded obeys the rules of the settings, stored it loads as the same, and
// a command that is refused changes nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "config/formats/FormatTable.h"
#include "config/settings/SettingKeys.h"
#include "presenters/FavouriteChannels.h"
#include "support/SettingsRig.h"

namespace {

using namespace kestrune;

void Require(bool holds) {
  if (!holds) std::abort();
}

struct Line {
  std::string Key;
  std::string Value;
  bool IsCommand = false;
};

Line ReadLine(std::string_view text) {
  Line line;
  line.IsCommand = text.starts_with('!');
  if (line.IsCommand) text.remove_prefix(1);
  const std::size_t equals = text.find('=');
  line.Key = text.substr(0, equals);
  // A file of settings has no values of several lines, but a command may.
  if (equals != std::string_view::npos) line.Value = text.substr(equals + 1);
  if (line.IsCommand)
    for (char& letter : line.Value)
      if (letter == '|') letter = '\n';
  return line;
}

void RequireRules(const config::Settings& settings) {
  Require(settings.FileDir.ends_with('/'));
  Require(settings.ShelfFolder.empty() ||
          (settings.ShelfFolder.starts_with('/') && settings.ShelfFolder.ends_with('/')));
  Require(settings.ShelfFolder.empty() || settings.ShelfFolder != settings.FileDir);
  Require(settings.ShelfSongs >= 0 && settings.ShelfSongs <= config::kMostShelfSongs);
  Require(settings.ShelfMegabytes >= 1 && settings.ShelfMegabytes <= config::kMostShelfMegabytes);
  Require(settings.CutOverlap >= 0 && settings.CutOverlap <= config::kLongestCutOverlap);
  Require(settings.FormatFLAC.Level >= 0 && settings.FormatFLAC.Level <= 8);
  Require(settings.FormatOPUS.Bitrate >= 32 && settings.FormatOPUS.Bitrate <= 256);
}

/// The settings as another start finds them.
config::Settings Reloaded(test::SettingsRig& rig) {
  for (const config::SettingKey& key : config::SettingKeys())
    Require(config::SaveSetting(rig.Section, rig.Settings, key.Key));
  config::Settings again;
  config::LoadSettings(rig.Section, rig.Environment, again);
  return again;
}

void Command(test::SettingsRig& rig, const Line& line) {
  const config::Settings before = rig.Settings;
  const config::SettingOutcome outcome = rig.Door.Set(line.Key, line.Value);
  Require(outcome.Refusal.find('\n') == std::string::npos);
  Require(outcome.Warning.find('\n') == std::string::npos);
  if (!outcome.Done()) {
    Require(rig.Settings == before);
    return;
  }
  const config::SettingKey* const key = config::FindSettingKey(line.Key);
  Require(key != nullptr && key->FollowsFrom.empty());
  const std::string now = rig.Door.Get(line.Key).value_or("(none)");
  Require(now.find('\n') == std::string::npos);
  if (key->Stored == config::SettingStored::AtOnce) Require(rig.Stored(key->Key) == now);
  // No other setting has changed.
  config::Settings others = rig.Settings;
  key->Copy(others, before);
  Require(others == before);
  Require(rig.Door.Set(line.Key, now).Done());
  Require(rig.Door.Get(line.Key) == now);
}

/// A format's own window saves what it shows, and no more.
void RequireFormat(test::SettingsRig& rig) {
  const config::Settings before = rig.Settings;
  const bool known = !config::FormatKeys(before.FileFormat).empty();
  Require(rig.Door.ChangeFormat(before, before.FileFormat).Done());
  Require(rig.Settings == before);
  Require(known || config::FindFormat(before.FileFormat) == nullptr);
}

void RequireFavourites(test::SettingsRig& rig) {
  presenters::FavouriteChannels favourites(rig.Door);
  const auto before = favourites.All();
  for (const std::int16_t channel : before) Require(channel >= 0 && channel <= 255);
  favourites.Toggle(44);
  Require(favourites.Has(44) != before.contains(44));
  favourites.Toggle(44);
  Require(favourites.All() == before);
  favourites.SetFirst(!favourites.First());
  Require(rig.Stored("FavouritesFirst") == rig.Door.Get("FavouritesFirst"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::SettingsRig rig;
  rig.Files.MakeFolders("/home/user/Music/Kestrune");
  std::vector<Line> commands;
  for (const std::string& text : base::Split(std::string(data, data + size), '\n')) {
    Line line = ReadLine(text);
    if (line.IsCommand) {
      commands.push_back(std::move(line));
    } else {
      rig.Store.Put("Lorimel", "Kestrune", line.Key, line.Value);
    }
  }
  rig.Door.Load();
  RequireRules(rig.Settings);
  Require(Reloaded(rig) == rig.Settings);
  for (const Line& line : commands) Command(rig, line);
  RequireRules(rig.Settings);
  Require(Reloaded(rig) == rig.Settings);
  RequireFavourites(rig);
  RequireFormat(rig);
  Require(rig.Door.SaveAtExit());
  return 0;
}
