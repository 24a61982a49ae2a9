#include "recorder/Announcer.h"

#include <utility>

#include <fmt/format.h>

namespace kestrune::recorder {

void Announcer::ShowChannel(std::int16_t tuned, const radio::ChannelEntry& entry) {
  RefreshChannel(tuned, entry);
  ShowSong(entry);
}

void Announcer::ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  RefreshChannel(number, entry);
  state_.Announcement.Artist = entry.Artist;
  state_.Announcement.Song = entry.Song;
}

void Announcer::ShowBareTitle() {
  state_.Announcement.TitleArtist.reset();
  state_.Announcement.TrayTip.reset();
}

void Announcer::ShowSong(const radio::ChannelEntry& entry) {
  Announcement& announcement = state_.Announcement;
  announcement.Artist = announcement.TitleArtist.emplace(entry.Artist);
  announcement.Song = entry.Song;
  announcement.TrayTip = {.Phase = state_.Recording.Phase, .Artist = entry.Artist, .Song = entry.Song};
}

void Announcer::RefreshChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  state_.Announcement.Channel = number;
  state_.Announcement.Station = entry.Station;
  state_.Announcement.Genre = entry.Genre;
}

void Announcer::ShowTrayTip() {
  state_.Announcement.TrayTip = {.Phase = state_.Recording.Phase,
                                 .Artist = state_.Radio.CurrentArtist,
                                 .Song = state_.Radio.CurrentSong};
}

void Announcer::pcrSignalReceived(std::int16_t satellite1, std::int16_t satellite2,
                                  std::int16_t terrestrial) {
  if (state_.Run.ShuttingDown) return;
  state_.Announcement.Signal = {
      .Satellite1 = satellite1, .Satellite2 = satellite2, .Terrestrial = terrestrial};
  if (std::exchange(signalLogged_, true)) return;
  journal_.DoLog(fmt::format("Satellite 1 signal quality: {}%", satellite1));
  journal_.DoLog(fmt::format("Satellite 2 signal quality: {}%", satellite2));
  journal_.DoLog(fmt::format("Terrestrial signal quality: {}%", terrestrial));
}

}  // namespace kestrune::recorder
