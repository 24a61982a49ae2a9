#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/EventLoop.h"
#include "base/RunState.h"
#include "config/formats/FileSpecs.h"
#include "config/settings/Settings.h"
#include "config/settings/SettingsDoor.h"
#include "config/settings/SettingsSection.h"
#include "presenters/ChannelChooser.h"
#include "presenters/ConfigurationAccess.h"
#include "presenters/GrabKill.h"
#include "presenters/LevelMeter.h"
#include "presenters/MainWindow.h"
#include "presenters/NowScreen.h"
#include "presenters/OptionRules.h"
#include "presenters/PresetSetup.h"
#include "presenters/Presets.h"
#include "presenters/ResizeRule.h"
#include "presenters/RestrictListEditor.h"
#include "presenters/Scheduler.h"
#include "presenters/WindowSwitches.h"
#include "radio/channels/Channels.h"
#include "radio/channels/RadioState.h"
#include "radio/line/BringUp.h"
#include "radio/line/RadioSession.h"
#include "recorder/AudioObjects.h"
#include "recorder/Boxes.h"
#include "recorder/Capture.h"
#include "recorder/Clock.h"
#include "recorder/Display.h"
#include "recorder/Disposition.h"
#include "recorder/Door.h"
#include "recorder/InputDevices.h"
#include "recorder/Outside.h"
#include "recorder/RecordCommands.h"
#include "recorder/SchedulePass.h"
#include "recorder/SongBoundary.h"
#include "recorder/SongFiles.h"
#include "recorder/StartOutcome.h"
#include "recorder/State.h"
#include "recorder/StayAwake.h"
#include "recorder/UpdateCommand.h"
#include "recorder/UpdateCycle.h"
#include "recorder/Wishes.h"
#include "schedule/entries/EntryEditors.h"
#include "schedule/lists/Restrictions.h"
#include "schedule/log/Log.h"

namespace kestrune::recorder {

/// The run: it owns the state and the parts, in the order in which a song meets them, from the radio's text
/// to the file on disk. One thread; everything is driven by the loop's timers and the port's notifications.
class Kestrune final : private radio::ChannelEvents {
 public:
  explicit Kestrune(const Outside& outside);
  ~Kestrune() override;
  Kestrune(const Kestrune&) = delete;
  Kestrune& operator=(const Kestrune&) = delete;

  /// The load sequence: from nothing to the first idle tick. Takes as long as the radio's waits take, and
  /// serves events meanwhile.
  [[nodiscard]] StartOutcome Load();

  /// What comes from outside while the unit runs: buttons, keys, the control socket, signals, the session's end.
  [[nodiscard]] recorder::Wishes& Wishes() { return wishes_; }

  /// The close itself: a wish's last step, not to be called within another step of the run. The first pass keeps
  /// what was stopped and waits for its cut, and stops the recorder; two seconds later the second half saves and
  /// ends, and `closed` is called. False if the close has begun already.
  ///
  /// A close that is asked for during the load (Wishes::Close) does not wait for all of it: EndWaits sets
  /// ShuttingDown, so that each wait ends at its next look, open dialogs are given up, Load returns after the step
  /// that it was in, and the close is the next thing that happens.
  bool Close();
  /// Ends what a close must not wait for; it changes nothing else.
  void EndWaits();
  void SetClosedHandler(std::function<void()> closed) { closed_ = std::move(closed); }

  // What windows and the control socket read.
  [[nodiscard]] const base::RunState& Run() const { return state_.Run; }
  [[nodiscard]] const RecordingState& Recording() const { return state_.Recording; }
  [[nodiscard]] const radio::RadioState& Radio() const { return state_.Radio; }
  [[nodiscard]] const schedule::ScheduleState& Schedule() const { return state_.Schedule; }
  /// Entries 1 to 10 at indices 0 to 9, as the last ReloadSchedule left them.
  [[nodiscard]] const schedule::ScheduleEntries& Entries() const { return state_.Entries; }
  /// What the main window shows now.
  [[nodiscard]] presenters::MainWindow Window() const { return presenters::ShowState(state_, window_); }
  [[nodiscard]] bool MayRecord() const { return state_.MayRecord(); }
  [[nodiscard]] bool MayStop() const { return state_.MayStop(); }
  [[nodiscard]] const config::Settings& CurrentSettings() const { return state_.Settings; }
  [[nodiscard]] const radio::Channels& ChannelList() const { return channels_; }
  [[nodiscard]] const radio::RadioSession& Session() const { return session_; }
  [[nodiscard]] schedule::Log& LogBook() { return log_; }
  [[nodiscard]] const schedule::Restrictions& Restrictions() const { return restrictions_; }
  [[nodiscard]] schedule::Restrictions& Restrictions() { return restrictions_; }
  /// The unit's settings, where windows keep their places.
  [[nodiscard]] const config::SettingsSection& Section() const { return section_; }
  [[nodiscard]] const config::FileSpecs& Format() const { return fileSpecs_; }
  [[nodiscard]] const config::UpdatingWindow& UpdatingWindow() const { return update_.Window(); }
  [[nodiscard]] const std::string& MultiUnit() const { return multiUnit_; }
  [[nodiscard]] std::int16_t PortNum() const { return state_.Settings.PortNum; }
  /// Why the start found no radio, as base::Result has it; empty if it found one or has not looked.
  [[nodiscard]] const std::string& WhyNoRadio() const { return whyNoRadio_; }
  /// Name of the device that the settings ask for, empty if it was not usable at the start.
  [[nodiscard]] const std::string& InputDeviceName() const { return inputDeviceName_; }
  /// The configured input device for other parts of the sound system, as the mixer; empty if there is none.
  [[nodiscard]] std::string InputDeviceId();
  /// The usable input devices, each as its name, "#", its index and "%".
  [[nodiscard]] const std::string& Devices() const { return inputDevices_.DeviceList; }
  /// Null before the load and after the close.
  [[nodiscard]] const platform::AudioRecorder* Recorder() const { return audio_.AudioRecord.get(); }

  [[nodiscard]] base::DateValue Now() const { return outside_.Loop.Now(); }
  /// How long it takes until the wall clock shows a moment.
  [[nodiscard]] std::chrono::seconds TimeUntil(base::DateValue wall) const {
    return base::TimeUntil(outside_.Loop, wall);
  }

  // The rules of the windows of the lists.
  [[nodiscard]] presenters::RestrictListEditor& RestrictListEditor() { return restrictListEditor_; }
  [[nodiscard]] presenters::GrabKill& GrabKill() { return grabKill_; }

  // What they may do: the same doors for a button, a schedule entry and a command.
  void cmdRecord() { commands_.cmdRecord(); }
  void cmdStop() { commands_.cmdStop(); }
  /// Tunes the radio; asking for the tuned channel does nothing.
  void SetChannelNumber(std::int16_t channel) { channels_.SetChannelNumber(channel); }
  /// False, with a sound, while recording forbids it.
  bool SetMute(bool on);
  /// Brings the stored entries into the table; the scheduler window's close calls it, saved or not. A change to
  /// the running entry takes effect at the next schedule pass, within 4 seconds.
  void ReloadSchedule();
  /// The radio's identifier, asked for if it is not known yet, for 1.5 s at most; may be empty.
  [[nodiscard]] std::string pcrRadioID() { return session_.pcrRadioID(); }
  /// Asks the maker's server for a newer version, and the user what to do about it; returns at once.
  void mnuCheckUpdate() { update_.mnuCheckUpdate(); }
  /// The same without a word to the user; see UpdateCommand::Ask.
  void AskForUpdate(std::function<void(const base::Result&, const UpdateAnswer&)> answered) {
    update_.Ask(std::move(answered));
  }
  /// The scheduler, newly loaded, its channels as the channels window lists them.
  [[nodiscard]] std::shared_ptr<presenters::Scheduler> OpenScheduler();
  /// The channels as the channels window lists them.
  [[nodiscard]] std::vector<schedule::SchedulerChannel> SchedulerChannels() const;
  /// The open editors of the schedule's entries.
  [[nodiscard]] schedule::EntryEditors& EntryEditors() { return entryEditors_; }
  /// A setting by its key; nothing if there is no such key.
  [[nodiscard]] std::optional<std::string> ReadSetting(std::string_view key) const {
    return settingsDoor_.Get(key);
  }
  /// Changes one setting, stores it and lets it take effect.
  config::SettingOutcome ChangeSetting(std::string_view key, std::string_view value) {
    return settingsDoor_.Set(key, value);
  }
  /// For the configuration window. What is built on it must not outlive this object.
  [[nodiscard]] presenters::ConfigurationAccess ConfigurationAccess();

  // The rules of the main window.
  [[nodiscard]] presenters::OptionRules& Options() { return options_; }
  [[nodiscard]] presenters::WindowSwitches& Switches() { return switches_; }
  [[nodiscard]] presenters::ResizeRule& Resize() { return resize_; }
  [[nodiscard]] presenters::LevelMeter& AudioDisplay() { return audioDisplay_; }
  /// The record of the main window, for what only the window knows: its place, state and visibility, and
  /// whether there is a tray icon.
  [[nodiscard]] presenters::MainWindow& WindowRecord() { return window_; }
  /// What becomes of the song that plays, and why.
  [[nodiscard]] std::string Explanation() const;
  void mnuReload_Click();

  // The rules of the windows of channels and presets.
  [[nodiscard]] presenters::Presets& PresetButtons() { return presets_; }
  [[nodiscard]] presenters::PresetSetup& PresetWindow() { return presetSetup_; }
  [[nodiscard]] presenters::ChannelChooser& ChannelsWindow() { return channelChooser_; }
  [[nodiscard]] presenters::NowScreen& NowWindow() { return nowScreen_; }

 private:
  // The load sequence, in Startup.cpp.
  [[nodiscard]] StartOutcome LoadSteps();
  void CreateAudioObjects();
  void ReadCommandLine();
  void ReadSettings();
  [[nodiscard]] bool FindInputDevices();
  [[nodiscard]] bool Agree();
  [[nodiscard]] StartOutcome ReportNoRadio(const radio::RadioSearch& search);
  void FailToStart(const std::string& title, const std::string& text);
  void ReadRadioID(std::int16_t port);
  void TuneStoredChannel();
  [[nodiscard]] bool FirstRun();
  void PrepareRecording();
  void CheckTemporarySpace();
  void FinishLoad();

  // The close, in Shutdown.cpp.
  void CloseFirstPass();
  void DeleteLeftovers();
  void tmrQuit_Timer();
  void DrainPort();
  void SaveAtExit();
  void CloseSecondPass();

  // What the channel table tells.
  void ShowChannel(const radio::ChannelEntry& entry) override;
  void ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) override;
  void ShowBareTitle() override;
  void ChannelTuned() override;
  void WalkFinished() override;

  void AudioRecord_Timer();
  void InputDeviceChanged();
  void KeepInputDeviceId();
  [[nodiscard]] std::optional<std::string> ScheduledBitRate() const;

  Outside outside_;
  std::function<void()> closed_ = [] {};
  bool loading_ = false;
  bool closing_ = false;
  Door door_;
  Boxes boxes_;
  recorder::Wishes wishes_;

  State state_;
  schedule::EntryEditors entryEditors_;
  presenters::MainWindow window_;
  config::SettingsSection section_;
  std::string multiUnit_;
  InputDevices inputDevices_;
  std::string inputDeviceName_;
  std::int16_t forcedPort_ = 0;
  std::string whyNoRadio_;

  std::unique_ptr<base::Timer> tmrUpdate_;
  std::unique_ptr<base::Timer> tmrClock_;
  std::unique_ptr<base::Timer> tmrQuit_;

  schedule::Log log_;
  AudioObjects audio_;
  radio::RadioSession session_;
  radio::BringUp bringUp_;
  radio::Channels channels_;
  schedule::Restrictions restrictions_;
  presenters::RestrictListEditor restrictListEditor_;
  presenters::GrabKill grabKill_;
  config::FileSpecs fileSpecs_;
  SongFiles songFiles_;
  Capture capture_;
  Disposition disposition_;
  Display display_;
  SongBoundary boundary_;
  RecordCommands commands_;
  config::SettingsDoor settingsDoor_;
  SchedulePass schedulePass_;
  UpdateCycle updateCycle_;
  Clock clock_;
  presenters::LevelMeter audioDisplay_;
  presenters::OptionRules options_;
  presenters::WindowSwitches switches_;
  presenters::ResizeRule resize_;
  presenters::Presets presets_;
  presenters::PresetSetup presetSetup_;
  presenters::ChannelChooser channelChooser_;
  presenters::NowScreen nowScreen_;
  UpdateCommand update_;
  StayAwake stayAwake_;
};

}  // namespace kestrune::recorder
