#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/Autostart.h"
#include "presenters/ChannelChooser.h"
#include "presenters/ChannelListing.h"
#include "presenters/ChannelMenu.h"
#include "presenters/ConfigurationAccess.h"
#include "presenters/CutOffer.h"
#include "presenters/FavouriteChannels.h"
#include "presenters/GrabKill.h"
#include "presenters/LevelMeter.h"
#include "presenters/MainWindow.h"
#include "presenters/NowScreen.h"
#include "presenters/OptionRules.h"
#include "presenters/PleaseWait.h"
#include "presenters/PresetSetup.h"
#include "presenters/Presets.h"
#include "presenters/RecentSongs.h"
#include "presenters/ResizeRule.h"
#include "presenters/RestrictListEditor.h"
#include "presenters/Scheduler.h"
#include "presenters/SongProgress.h"
#include "presenters/SpokenChanges.h"
#include "presenters/WindowSwitches.h"
#include "recorder/Kestrune.h"
#include "recorder/Outside.h"
#include "recorder/Presentation.h"

namespace kestrune::presenters {

/// The rules of a unit's windows, as far as they live as long as the unit. A run without windows needs none of them.
class UnitPresenters final : private recorder::Presentation {
 public:
  /// `outside` is what the unit stands on. The unit must outlive the object, and is not loaded yet.
  UnitPresenters(recorder::Kestrune& unit, const recorder::Outside& outside);
  ~UnitPresenters() override;
  UnitPresenters(const UnitPresenters&) = delete;
  UnitPresenters& operator=(const UnitPresenters&) = delete;

  [[nodiscard]] recorder::Kestrune& Unit() { return unit_; }

  // The main window.

  /// What it shows now.
  [[nodiscard]] MainWindow Window() const { return ShowState(unit_.State(), desktop_); }
  /// What becomes of the song that plays, and why, or what begins elsewhere; once, that songs can be cut by listening.
  [[nodiscard]] std::string Explanation() const;
  /// What a screen reader is to say now by itself; empty if nothing.
  [[nodiscard]] std::string NextToSay() { return spokenChanges_.Next(unit_.State()); }
  /// Tunes to the channel of the hint that the window shows; nothing if it shows none.
  void TuneToHint();
  /// What only the window knows of itself; the window keeps it up to date.
  [[nodiscard]] DesktopRecord& OnDesktop() { return desktop_; }
  [[nodiscard]] OptionRules& Options() { return options_; }
  [[nodiscard]] WindowSwitches& Switches() { return switches_; }
  [[nodiscard]] ResizeRule& Resize() { return resize_; }
  [[nodiscard]] LevelMeter& AudioDisplay() { return audioDisplay_; }
  [[nodiscard]] Presets& PresetButtons() { return presets_; }
  [[nodiscard]] const presenters::RecentSongs& RecentSongs() const { return recentSongs_; }
  /// How far the song that plays has come.
  [[nodiscard]] SongProgress Progress() const { return ProgressOf(unit_.State(), recentSongs_); }

  /// Called with all of the sound that is captured, within the recorder's handler; it only looks.
  std::function<void(std::span<const std::int16_t> block, const platform::PcmFormat& format)> Heard;

  // The other windows.

  /// What Please Wait shows now.
  [[nodiscard]] PleaseWait PleaseWaitWindow() const {
    return ShowSearch(unit_.State(), outside_.Loop.SteadyNow());
  }
  [[nodiscard]] PresetSetup& PresetWindow() { return presetSetup_; }
  [[nodiscard]] ChannelChooser& ChannelsWindow() { return channelChooser_; }
  [[nodiscard]] ChannelListing& ListedChannels() { return channelListing_; }
  [[nodiscard]] presenters::ChannelMenu& ChannelMenu() { return channelMenu_; }
  [[nodiscard]] NowScreen& NowWindow() { return nowScreen_; }
  [[nodiscard]] presenters::RestrictListEditor& RestrictListEditor() { return restrictListEditor_; }
  [[nodiscard]] presenters::GrabKill& GrabKill() { return grabKill_; }
  /// The scheduler, newly loaded, its channels as the channels window lists them.
  [[nodiscard]] std::shared_ptr<Scheduler> OpenScheduler();
  /// For the configuration window. What is built on it must outlive neither this object nor `autostart`.
  [[nodiscard]] presenters::ConfigurationAccess ConfigurationAccess(platform::Autostart& autostart);

 private:
  void LoadPresets() override { presets_.LoadPresets(); }
  void QuitChannels() override { channelChooser_.Quit(); }
  void ApplyResizeRule() override { resize_.Apply(); }
  void FollowSongs() override {
    cutOffer_.Follow();
    recentSongs_.Follow();
  }
  [[nodiscard]] std::int32_t DisplaySamples() const override { return audioDisplay_.SampleCount(); }
  void HearSound(std::span<const std::int16_t> block, const platform::PcmFormat& format) override {
    if (Heard) Heard(block, format);
  }
  void DrawSound(std::span<const std::int16_t> samples, const platform::PcmFormat& format) override {
    audioDisplay_.Draw(samples, format);
  }
  [[nodiscard]] std::optional<recorder::WindowPlace> PlaceToRemember() const override;

  [[nodiscard]] bool ChannelKept() const { return unit_.State().Recording.GetRecordingStatus(); }
  [[nodiscard]] PresetKeys KeysOfPresets();
  [[nodiscard]] NowLines LinesOfNow() const;
  /// What was learned of a channel; empty if nothing was, or cuts do not follow from it.
  [[nodiscard]] std::string TipOfChannel(std::int16_t channel) const;

  recorder::Kestrune& unit_;
  recorder::UnitParts parts_;
  recorder::Outside outside_;

  DesktopRecord desktop_;
  CutOffer cutOffer_;
  presenters::RecentSongs recentSongs_;
  SpokenChanges spokenChanges_;
  OptionRules options_;
  WindowSwitches switches_;
  ResizeRule resize_;
  LevelMeter audioDisplay_;
  Presets presets_;
  PresetSetup presetSetup_;
  ChannelChooser channelChooser_;
  NowScreen nowScreen_;
  presenters::RestrictListEditor restrictListEditor_;
  presenters::GrabKill grabKill_;
  FavouriteChannels favourites_;
  ChannelListing channelListing_;
  presenters::ChannelMenu channelMenu_;
};

}  // namespace kestrune::presenters
