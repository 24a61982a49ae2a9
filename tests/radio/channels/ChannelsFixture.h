#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Sounds.h"
#include "presenters/Presets.h"
#include "radio/channels/Channels.h"
#include "radio/line/SessionFixture.h"
#include "support/MemoryFiles.h"
#include "support/ScriptedDialogs.h"

namespace kestrune::test {

class HeardSounds final : public platform::Sounds {
 public:
  void Play(std::string_view name) override { Played.emplace_back(name); }
  std::vector<std::string> Played;
};

/// A channel table that is filled already, on a radio that confirms nothing, and what the rules of the windows
/// over it need.
class ChannelsFixture : public SessionFixture, private radio::ChannelEvents {
 protected:
  ChannelsFixture() {
    OpenPort();
    port.WhenWritten(Bytes("5A A5 00 06 10 02 2D 00 00 01 01 19"),
                     Bytes("5A A5 00 06 90 01 00 2D 00 00 ED ED"), Milliseconds(20));
  }

  void Plays(std::uint8_t channel, std::string_view station, std::string_view artist = "",
             std::string_view song = "") {
    // The first reply of a channel adds it, whatever it plays.
    channels.pcrChannelInfoReceived({.Channel = channel,
                                     .Genre = "Genre",
                                     .Station = std::string(station),
                                     .Artist = std::string(artist),
                                     .Song = std::string(song)});
  }
  // Channels 44 Fred, 45 Lucy and 46 Top Tracks.
  void ThreeChannels() {
    Plays(44, "Fred", "Queen", "Radio Ga Ga");
    Plays(45, "Lucy", "Abba", "Waterloo");
    Plays(46, "Top Tracks", "Yes", "Roundabout");
  }
  void Tune(std::int16_t channel) {
    channels.SetChannelNumber(channel);
    port.TakeWrites();
  }
  [[nodiscard]] std::vector<int> GridNumbers() const {
    std::vector<int> numbers;
    for (int row = 1; row <= channels.Grid().RowCount(); ++row) {
      numbers.push_back(channels.Grid().NumberAt(row));
    }
    return numbers;
  }
  [[nodiscard]] int SelectedNumber() const { return channels.Grid().NumberAt(channels.Grid().SelectedRow()); }
  [[nodiscard]] presenters::PresetKeys Keys() {
    return {.Read =
                [this](std::string_view key) {
                  const auto found = stored.find(std::string(key));
                  return found == stored.end() ? std::string() : found->second;
                },
            .Write = [this](std::string_view key,
                            std::string_view text) { stored[std::string(key)] = std::string(text); }};
  }

  MemoryFiles files;
  radio::RadioState state;
  radio::Channels channels{
      state, run, {.Link = link, .Files = files, .Loop = loop, .Journal = journal}, *this};
  HeardSounds sounds;
  ScriptedDialogs dialogs;
  bool recording = false;
  std::map<std::string, std::string> stored;

 private:
  void ShowChannel(const radio::ChannelEntry& /*entry*/) override {}
  void ShowTunedChannel(std::int16_t /*number*/, const radio::ChannelEntry& /*entry*/) override {}
  void ShowBareTitle() override {}
  void ChannelTuned() override {}
  void WalkFinished() override {}
};

}  // namespace kestrune::test
