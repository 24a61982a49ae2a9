#include "presenters/UnitPresenters.h"

#include <functional>
#include <string_view>
#include <utility>

#include "base/Ignored.h"
#include "presenters/Explanation.h"
#include "presenters/HintLine.h"
#include "presenters/LagTip.h"

namespace kestrune::presenters {
namespace {

std::string StatusLine(const MainWindow& window, std::string explanation) {
  if (window.lblRecording.Caption.empty()) return explanation;
  std::string line = window.lblRecording.Caption;
  if (window.lblClock.Visible) line += " " + window.lblClock.Caption;
  return line + " - " + explanation;
}

}  // namespace

UnitPresenters::UnitPresenters(recorder::Kestrune& unit, const recorder::Outside& outside)
    : unit_(unit),
      parts_(unit.Parts()),
      outside_(outside),
      cutOffer_(unit.State(), parts_.Section),
      recentSongs_(unit.State().Recording, parts_.History, outside.Loop),
      spokenChanges_(outside.Loop),
      options_(parts_.Settings, unit.State().Run, parts_.Boxes),
      switches_(desktop_, outside.Windows, parts_.Settings, unit.State().Run),
      resize_(desktop_, outside.Windows, unit.State().Settings, unit.State().Run),
      presets_(parts_.Channels, outside.Sounds, KeysOfPresets(), [this] { return ChannelKept(); }),
      presetSetup_(parts_.Channels.Grid(), presets_, outside.Dialogs),
      channelChooser_(parts_.Channels, unit.State().Run, outside.Sounds, outside.Loop, parts_.tmrUpdate,
                      [this] { return ChannelKept(); }),
      nowScreen_(parts_.Channels, presets_, outside.Loop, [this] { return LinesOfNow(); }),
      restrictListEditor_(parts_.Restrictions, outside.Files, outside.Environment, outside.Dialogs,
                          parts_.Log),
      grabKill_(parts_.Restrictions),
      favourites_(parts_.Settings),
      channelListing_(parts_.Channels.Grid()),
      channelMenu_(channelChooser_, favourites_, presets_, grabKill_) {
  const auto tune = [this](std::int16_t channel, std::function<void()> refused) {
    unit_.Wishes().Tune(channel, [refused = std::move(refused)](const base::Result& result) {
      if (!result.Ok()) refused();
    });
  };
  presets_.Tune = tune;
  channelChooser_.Tune = tune;
  channelChooser_.Tip = [this](std::int16_t channel) { return TipOfChannel(channel); };
  channelListing_.Tuned = [this] { return parts_.Channels.ChannelNumber(); };
  channelListing_.Favourites = [this] { return favourites_.All(); };
  channelListing_.FavouritesFirst = [this] { return favourites_.First(); };
  unit_.SetPresentation(this);
}

UnitPresenters::~UnitPresenters() {
  unit_.SetPresentation(nullptr);
}

std::string UnitPresenters::Explanation() const {
  const recorder::State& state = unit_.State();
  if (cutOffer_.Shown() && state.Watch.Warning().empty() && ShownHint(state) == nullptr &&
      state.HintHome == 0)
    return std::string(CutOffer::kText);
  return ExplainRecording(state, parts_.Restrictions);
}

void UnitPresenters::TuneToHint() {
  if (const std::int16_t channel = HintChannel(unit_.State()); channel != 0) unit_.Wishes().Tune(channel);
}

std::string UnitPresenters::TipOfChannel(std::int16_t channel) const {
  if (unit_.State().Settings.CutPlacement != config::CutPlacement::Listen) return {};
  const cut::LagModel* const learned = parts_.StationLags.Learned(channel);
  return learned == nullptr ? std::string() : LagTip(*learned);
}

std::optional<recorder::WindowPlace> UnitPresenters::PlaceToRemember() const {
  if (desktop_.State != WindowState::Normal) return std::nullopt;
  return recorder::WindowPlace{.Top = desktop_.Top, .Left = desktop_.Left};
}

PresetKeys UnitPresenters::KeysOfPresets() {
  const config::SettingsSection& section = parts_.Section;
  return {.Read = [&section](std::string_view key) { return section.Text(key, ""); },
          .Write = [&section](std::string_view key,
                              std::string_view text) { base::Ignored(section.SaveText(key, text)); }};
}

NowLines UnitPresenters::LinesOfNow() const {
  const MainWindow window = Window();
  return {.lblChannel = window.lblChannel.Caption,
          .lblArtist = window.lblArtist.Caption,
          .lblSong = window.lblSong.Caption,
          .Status = StatusLine(window, Explanation()),
          .Locked = window.ChannelLocked};
}

std::shared_ptr<Scheduler> UnitPresenters::OpenScheduler() {
  const config::SettingsSection& section = parts_.Section;
  SchedulerPorts ports{
      .Loop = outside_.Loop,
      .Dialogs = outside_.Dialogs,
      .Log = parts_.Log,
      .Editors = parts_.EntryEditors,
      .Settings = {.Read = [&section](std::string_view key,
                                      std::string_view text) { return section.Text(key, text); },
                   .Save = [&section](std::string_view key,
                                      std::string_view text) { return section.SaveText(key, text); }},
      .ReloadSchedule = [this] { unit_.ReloadSchedule(); },
      .BitRatesCount = [this] { return unit_.State().Settings.FileFormat == "MP3"; }};
  return std::make_shared<Scheduler>(std::move(ports), unit_.SchedulerChannels());
}

presenters::ConfigurationAccess UnitPresenters::ConfigurationAccess(platform::Autostart& autostart) {
  return {.Settings = parts_.Settings,
          .FileSpecs = parts_.FileSpecs,
          .Dialogs = outside_.Dialogs,
          .Environment = outside_.Environment,
          .Files = outside_.Files,
          .Autostart = autostart,
          .Devices = [this] { return parts_.InputDevices.Listed; }};
}

}  // namespace kestrune::presenters
