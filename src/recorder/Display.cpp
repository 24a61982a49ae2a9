#include "recorder/Display.h"

#include <fmt/format.h>

#include "base/Text.h"

namespace kestrune::recorder {
namespace {

// The bars of the window run from 0 to 3000.
constexpr int kBarUnitsPerPercent = 30;

std::string ChannelCaption(std::int16_t number, const radio::ChannelEntry& entry) {
  return fmt::format("{}: {}", number, base::DoubleAmpersands(entry.Station));
}

void SetIfDifferent(std::string& caption, std::string text) {
  if (caption != text) caption = std::move(text);
}

}  // namespace

Display::Display(MainWindow& window, const base::RunState& run, base::Journal& journal)
    : window_(window), run_(run), journal_(journal) {}

void Display::ShowTexts(std::int16_t number, const radio::ChannelEntry& entry) {
  window_.lblChannel.Caption = ChannelCaption(number, entry);
  window_.lblGenre.Caption = base::DoubleAmpersands(entry.Genre);
  window_.lblArtist.Caption = base::DoubleAmpersands(entry.Artist);
  window_.lblSong.Caption = base::DoubleAmpersands(entry.Song);
}

void Display::ShowChannel(std::int16_t tuned, const radio::ChannelEntry& entry) {
  ShowTexts(tuned, entry);
  window_.Title = "Kestrune: " + entry.Artist;
  window_.SetTrayTipForSong(entry.Artist, entry.Song);
}

void Display::ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  ShowTexts(number, entry);
}

void Display::ShowBareTitle() {
  window_.Title = "Kestrune";
  window_.TrayTip = "Kestrune";
}

void Display::ShowSong(const radio::ChannelEntry& entry) {
  window_.lblArtist.Caption = base::DoubleAmpersands(entry.Artist);
  window_.lblSong.Caption = base::DoubleAmpersands(entry.Song);
  window_.Title = "Kestrune: " + entry.Artist;
  window_.SetTrayTipForSong(entry.Artist, entry.Song);
}

void Display::RefreshChannel(std::int16_t number, const radio::ChannelEntry& entry) {
  SetIfDifferent(window_.lblChannel.Caption, ChannelCaption(number, entry));
  SetIfDifferent(window_.lblGenre.Caption, base::DoubleAmpersands(entry.Genre));
}

void Display::RefreshCounters(const RecordingState& state) {
  SetIfDifferent(window_.lblRecorded.Caption, std::to_string(state.RecordedCount));
  SetIfDifferent(window_.lblTooShort.Caption, std::to_string(state.TooShortCount));
  SetIfDifferent(window_.lblTooLong.Caption, std::to_string(state.TooLongCount));
  SetIfDifferent(window_.lblRestricted.Caption, std::to_string(state.RestrictedCount));
}

void Display::pcrSignalReceived(std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial) {
  if (run_.ShuttingDown) return;
  const auto bar = [](std::int16_t percent) {
    return SignalBar{.Value = percent * kBarUnitsPerPercent, .Caption = fmt::format("{}%", percent)};
  };
  window_.pbrSatSignal = {bar(satellite1), bar(satellite2)};
  window_.pbrTerSignal = bar(terrestrial);
  if (signalLogged_) return;
  signalLogged_ = true;
  journal_.DoLog(fmt::format("Satellite 1 signal quality: {}%", satellite1));
  journal_.DoLog(fmt::format("Satellite 2 signal quality: {}%", satellite2));
  journal_.DoLog(fmt::format("Terrestrial signal quality: {}%", terrestrial));
}

}  // namespace kestrune::recorder
