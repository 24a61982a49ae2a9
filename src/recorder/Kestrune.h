#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/EventLoop.h"
#include "config/settings/SettingsDoor.h"
#include "config/settings/SettingsSection.h"
#include "history/History.h"
#include "radio/channels/Channels.h"
#include "radio/line/RadioSearch.h"
#include "recorder/Announcer.h"
#include "recorder/Boxes.h"
#include "recorder/CaptureWatch.h"
#include "recorder/Chronicle.h"
#include "recorder/Clock.h"
#include "recorder/ClockWatch.h"
#include "recorder/DiskWatch.h"
#include "recorder/Door.h"
#include "recorder/HintFollower.h"
#include "recorder/Hints.h"
#include "recorder/LinkWatch.h"
#include "recorder/Outside.h"
#include "recorder/Presentation.h"
#include "recorder/RadioSide.h"
#include "recorder/RecordCommands.h"
#include "recorder/Recovery.h"
#include "recorder/SchedulePass.h"
#include "recorder/Snapshot.h"
#include "recorder/SoundSide.h"
#include "recorder/SoundWatch.h"
#include "recorder/StartOutcome.h"
#include "recorder/State.h"
#include "recorder/StationLags.h"
#include "recorder/StayAwake.h"
#include "recorder/UnitParts.h"
#include "recorder/UpdateCommand.h"
#include "recorder/UpdateCycle.h"
#include "recorder/Wishes.h"
#include "schedule/entries/EntryEditors.h"
#include "schedule/entries/SchedulerRow.h"
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

  /// Connects the rules of windows, before the load; null, as at the beginning, for a run without windows. They must
  /// be taken away before they are destroyed.
  void SetPresentation(Presentation* presentation);

  /// The load sequence: from nothing to the first idle tick. Takes as long as the radio's waits take, and
  /// serves events meanwhile.
  [[nodiscard]] StartOutcome Load();
  /// Why the start found no radio, as base::Result has it; empty if it found one or has not looked.
  [[nodiscard]] const std::string& WhyNoRadio() const { return whyNoRadio_; }

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

  // What is to be seen of the run.

  [[nodiscard]] const recorder::State& State() const { return state_; }
  /// The state and what else windows and the control socket show.
  [[nodiscard]] recorder::Snapshot Snapshot() const;
  [[nodiscard]] base::DateValue Now() const { return outside_.Loop.Now(); }
  /// How long it takes until the wall clock shows a moment.
  [[nodiscard]] std::chrono::seconds TimeUntil(base::DateValue wall) const {
    return base::TimeUntil(outside_.Loop, wall);
  }
  /// The channels as the channels window lists them.
  [[nodiscard]] std::vector<schedule::SchedulerChannel> SchedulerChannels() const;
  [[nodiscard]] const config::UpdatingWindow& UpdatingWindow() const { return update_.Window(); }

  // Commands: the same for a button, a schedule entry and the control socket.

  /// What comes from outside while the unit runs: buttons, keys, the control socket, signals, the session's end. The
  /// commands below are what a wish ends in.
  [[nodiscard]] recorder::Wishes& Wishes() { return wishes_; }
  void cmdRecord() { commands_.cmdRecord(); }
  void cmdStop() { commands_.cmdStop(); }
  /// Whether the radio can be reached now; the cause says why not.
  [[nodiscard]] base::Result RadioReady() const { return linkWatch_.Ready(); }
  /// A user has asked to tune, record, stop, keep or mute: the program follows no hint of its own for a while.
  void UserActed() { hintFollower_.UserActed(); }
  /// Tunes the radio; asking for the tuned channel does nothing.
  void SetChannelNumber(std::int16_t channel) { radio_.Channels.SetChannelNumber(channel); }
  /// False, with a sound, while recording forbids it.
  bool SetMute(bool on);
  /// Has the song that plays kept at its end.
  base::Result KeepCurrent();
  void mnuReload_Click();
  /// Brings the stored entries into the table; the scheduler window's close calls it, saved or not. A change to
  /// the running entry takes effect at the next schedule pass, within 4 seconds.
  void ReloadSchedule();
  /// The radio's identifier, asked for if it is not known yet, for 1.5 s at most; may be empty.
  [[nodiscard]] std::string pcrRadioID() { return radio_.Link.RadioID(); }
  /// The configured input device for other parts of the sound system, as the mixer; empty if there is none.
  [[nodiscard]] std::string InputDeviceId();
  /// The input device that is open for captures now, which becomes the configured one with the next song; empty if none
  /// is.
  [[nodiscard]] std::string CapturedDeviceId() const;
  /// Asks the maker's server for a newer version, and the user what to do about it; returns at once.
  void mnuCheckUpdate() { update_.mnuCheckUpdate(); }
  /// The same without a word to the user; see UpdateCommand::Ask.
  void AskForUpdate(std::function<void(const base::Result&, const UpdateAnswer&)> answered) {
    update_.Ask(std::move(answered));
  }

  /// For the rules of windows and the control socket.
  [[nodiscard]] UnitParts Parts();

 private:
  // The load sequence, in Startup.cpp.
  [[nodiscard]] StartOutcome LoadSteps();
  void CreateAudioObjects();
  void ReadCommandLine();
  void ReadSettings();
  [[nodiscard]] bool FindInputDevices();
  [[nodiscard]] bool Agree();
  [[nodiscard]] StartOutcome ReportNoRadio(const radio::RadioSearch& search);
  void FailToStart(const std::string& title, const std::string& text, const std::string& details = {});
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
  void SaveAtExit();
  void CloseSecondPass();

  // What the channel table tells.
  void ShowChannel(const radio::ChannelEntry& entry) override;
  void ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry) override;
  void ShowBareTitle() override;
  void ChannelTuned() override;
  void WalkFinished() override;

  /// Whether a song is to be kept at its end: the one in hand, or one whose cut is awaited.
  [[nodiscard]] bool KeepsSong() const;

  void tmrClock_Timer();
  void AudioRecord_Timer();
  void InputDeviceChanged();
  void KeepInputDeviceId();

  Outside outside_;
  std::function<void()> closed_ = [] {};
  bool loading_ = false;
  bool closing_ = false;

  // How others come in.
  Presentation noWindows_;
  Presentation* presentation_ = &noWindows_;
  Door door_;
  Boxes boxes_;
  recorder::Wishes wishes_;

  recorder::State state_;
  config::SettingsSection section_;
  std::string multiUnit_;
  std::int16_t forcedPort_ = 0;
  std::string whyNoRadio_;
  std::unique_ptr<base::Timer> tmrUpdate_;
  std::unique_ptr<base::Timer> tmrClock_;
  std::unique_ptr<base::Timer> tmrQuit_;

  // The parts.
  schedule::Log log_;
  schedule::Restrictions restrictions_;
  schedule::EntryEditors entryEditors_;
  history::History history_;
  Chronicle chronicle_;
  StationLags stationLags_;
  Announcer announcer_;
  RadioSide radio_;
  Hints hints_;
  SoundSide sound_;
  RecordCommands commands_;
  config::SettingsDoor settingsDoor_;
  LinkWatch linkWatch_;

  // What drives them.
  CaptureWatch captureWatch_;
  SchedulePass schedulePass_;
  UpdateCycle updateCycle_;
  Clock clock_;
  UpdateCommand update_;
  StayAwake stayAwake_;
  SoundWatch soundWatch_;
  DiskWatch diskWatch_;
  ClockWatch clockWatch_;
  HintFollower hintFollower_;
  Recovery recovery_;
};

}  // namespace kestrune::recorder
