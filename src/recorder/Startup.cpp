// The load sequence of the run, in its order.
#include <cstdint>
#include <span>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Version.h"
#include "config/settings/TransferSettings.h"
#include "radio/line/SerMouseKill.h"
#include "recorder/Closing.h"
#include "recorder/InputDevices.h"
#include "recorder/Kestrune.h"
#include "recorder/SlashOptions.h"
#include "schedule/log/UserDataFolder.h"

namespace kestrune::recorder {
namespace {

constexpr double kWantedTemporaryBytes = 2048000000.0;

}  // namespace

// A close that is asked for meanwhile waits at the door; ShuttingDown says so.
StartOutcome Kestrune::Load() {
  const Door::Hold hold(door_);
  loading_ = true;
  const StartOutcome outcome = LoadSteps();
  loading_ = false;
  if (outcome == StartOutcome::NotAgreed) door_.ShutForGood(kClosing);
  return outcome;
}

StartOutcome Kestrune::LoadSteps() {
  if (state_.Run.ShuttingDown) {
    Close();
    return StartOutcome::Closed;
  }
  state_.Run.FormLoading = true;
  CreateAudioObjects();
  config::TransferSettings(outside_.Settings, outside_.Files, outside_.Environment, multiUnit_);
  ReadCommandLine();
  outside_.Windows.AddTrayIcon();
  outside_.Windows.PlaceMainWindow();
  ReadSettings();
  if (!FindInputDevices()) return StartOutcome::Failed;
  outside_.Windows.HideAndDisableMainWindow();
  outside_.Loop.PumpEvents();
  if (state_.Run.ShuttingDown) return StartOutcome::Closed;
  if (!Agree()) return state_.Run.ShuttingDown ? StartOutcome::Closed : StartOutcome::NotAgreed;
  outside_.Windows.ShowPleaseWaitAndSplash();
  recovery_.Start(multiUnit_);
  presentation_->LoadPresets();
  radio::DisableSerialMouse(outside_.SerialEnumerator);
  tmrUpdate_->SetEnabled(true);

  const radio::RadioSearch search =
      radio_.Link.FindRadio(forcedPort_ != 0 ? forcedPort_ : state_.Settings.PortNum,
                            [this](const radio::SearchProgress& progress) {
                              state_.Search = progress;
                              outside_.Windows.ShowSearch();
                            });
  if (state_.Run.ShuttingDown) return StartOutcome::Closed;
  if (!search.Found()) return ReportNoRadio(search);
  history_.Begin();
  stationLags_.Load();
  sound_.Shelving.Start(multiUnit_);
  ReadRadioID(search.Port);
  if (state_.Run.ShuttingDown) return StartOutcome::Closed;
  tmrClock_->SetEnabled(true);
  radio_.Link.AskForSignal();
  outside_.Windows.ClosePleaseWait();
  outside_.Windows.ShowMainWindowDisabled();
  outside_.Loop.PumpEvents();
  radio_.Channels.SetUpGrid();
  outside_.Windows.LoadChannelsWindow();
  outside_.Loop.PumpEvents();
  radio_.Channels.LoadChannels();
  outside_.Loop.PumpEvents();
  TuneStoredChannel();
  if (state_.Run.ShuttingDown) return StartOutcome::Closed;
  if (FirstRun()) outside_.Windows.ShowFirstConfiguration();
  if (state_.Run.ShuttingDown) return StartOutcome::Closed;
  PrepareRecording();
  outside_.Windows.EnableMainWindow();
  radio_.Channels.StartWalk();
  linkWatch_.Start();
  stayAwake_.Start();
  soundWatch_.Start();
  diskWatch_.Start();
  clockWatch_.Start();
  hintFollower_.Start();
  CheckTemporarySpace();
  return state_.Run.ShuttingDown ? StartOutcome::Closed : StartOutcome::Running;
}

void Kestrune::CreateAudioObjects() {
  sound_.Create(outside_.Audio);
  sound_.Audio.AudioRecord->SetTimerHandler([this] { AudioRecord_Timer(); });
  sound_.Capture.SetListener([this](std::span<const std::int16_t> block, const platform::PcmFormat& format) {
    presentation_->HearSound(block, format);
  });
}

void Kestrune::ReadCommandLine() {
  const std::string commandLine = outside_.Environment.CommandLine();
  multiUnit_ = MultiUnitOf(commandLine);
  section_.SetMultiUnit(multiUnit_);
  log_.SetMultiUnit(multiUnit_);
  restrictions_.SetMultiUnit(multiUnit_);
  sound_.Capture.SetMultiUnit(multiUnit_);
  radio_.Channels.SetListPlace(schedule::UserDataFolder(outside_.Environment), multiUnit_);
  schedule::CloseUserDataFolder(outside_.Files, outside_.Environment);
  log_.List().DoLog("Load");
  log_.DoLog(
      fmt::format("Kestrune {}.{}.{}", base::kVersionMajor, base::kVersionMinor, base::kVersionRevision));
  if (!multiUnit_.empty()) log_.DoLog("Running as Multi-Unit " + multiUnit_);
  if (DebugModeOf(commandLine)) {
    log_.SetDebugMode(true);
    log_.DoLog("Debug mode enabled");
    log_.OpenTrace();
  }
  if (const ForcedPort forced = ForcedPortOf(commandLine); forced.Present) {
    forcedPort_ = forced.Value;
    log_.DoLog(fmt::format("Forced COM port to port {}", forcedPort_));
  }
}

void Kestrune::ReadSettings() {
  settingsDoor_.Load();
  state_.Radio.ChannelNumber = state_.Settings.Channel;
}

bool Kestrune::FindInputDevices() {
  const std::string wanted = state_.Settings.InputDeviceId;
  sound_.Devices = EnumerateInputDevices(*sound_.Audio.AudioRecord, {state_.Settings.InputDevice, wanted});
  const InputDevices& found = sound_.Devices;
  sound_.InputDeviceName = found.Configured;
  if (found.Index != state_.Settings.InputDevice) {
    config::Settings wished = state_.Settings;
    wished.InputDevice = found.Index;
    base::Ignored(settingsDoor_.Change(wished, {"InputDevice"}));
  }
  if (wanted.empty()) KeepInputDeviceId();
  if (!wanted.empty() && found.IdOf(found.Index) != wanted) {
    log_.DoLog(
        fmt::format("Input device {} is not there; device number {} takes its place", wanted, found.Index));
  }
  if (!found.Configured.empty()) log_.DoLog("Using input device: " + found.Configured);
  if (found.Available >= 1) return true;
  log_.DoLog("No available audio input devices found");
  FailToStart("Kestrune: Input Device Error",
              "There are no available audio input devices on this PC. There is no way\n"
              "for Kestrune to record. Have you configured your sound card correctly?\n"
              "Is another program currently recording from your sound card?" +
                  found.Explanation);
  return false;
}

bool Kestrune::Agree() {
  if (state_.Settings.LegalAgreement) return true;
  if (!outside_.Dialogs.AskForAgreement()) return false;
  config::Settings agreed = state_.Settings;
  agreed.LegalAgreement = true;
  base::Ignored(settingsDoor_.Change(agreed, {"LegalAgreement"}));
  return true;
}

StartOutcome Kestrune::ReportNoRadio(const radio::RadioSearch& search) {
  whyNoRadio_ = search.AsResult().Cause();
  const std::vector<std::string> reasons = search.Reasons();
  if (!search.AnyDevice()) log_.DoLog(reasons.front());
  outside_.Windows.ClosePleaseWait();
  FailToStart(
      "Error connecting to radio",
      "An error has occurred attempting to connect to your satellite radio. Is it connected? Is it turned "
      "on? Do you have any other satellite radio applications running at the same time? Check the "
      "connections and try again." +
          (search.AnyDevice() ? fmt::format("\n\nReason: {}.", whyNoRadio_) : std::string()),
      fmt::format("{}", fmt::join(reasons, "\n")));
  return StartOutcome::Failed;
}

void Kestrune::FailToStart(const std::string& title, const std::string& text, const std::string& details) {
  boxes_.Show({.Title = title, .Text = text, .Details = details, .Icon = platform::MessageIcon::Critical},
              [this](platform::MessageAnswer /*ok*/) {
                outside_.Windows.RemoveTrayIcon();
                Close();
              });
}

void Kestrune::ReadRadioID(std::int16_t port) {
  config::Settings wished = state_.Settings;
  wished.PortNum = port;
  base::Ignored(settingsDoor_.Change(wished, {"PortNum"}));
  state_.Search.Port = port;
  state_.Search.Found = true;
  outside_.Windows.ShowSearch();
  log_.DoLog(fmt::format("Radio found on port {}", state_.Settings.PortNum));
  outside_.Loop.PumpEvents();
  state_.Radio.RadioID = radio_.Link.ReadRadioID();
  log_.DoLog("Radio ID " + state_.Radio.RadioID);
}

void Kestrune::TuneStoredChannel() {
  // A radio that confirms nothing may have obeyed all the same.
  base::Ignored(radio_.Link.Tune(state_.Radio.ChannelNumber));
  state_.Recording.SongBoundarySeen = false;
  radio_.Link.Settle([this] { outside_.Windows.ShowMainWindowDisabled(); });
}

bool Kestrune::FirstRun() {
  // The key is written by a clean exit alone.
  return section_.Single("MainTop", -1.0F) == -1.0F;
}

void Kestrune::PrepareRecording() {
  ReloadSchedule();
  restrictions_.LoadRestrictions();
  sound_.FileSpecs.SetFileSpecs(0);
  sound_.FileSpecs.SetFileSpecs(1);
  log_.DoLog("Using file format: " + sound_.Audio.File(1)->FormatDescription());
}

void Kestrune::CheckTemporarySpace() {
  if (outside_.Files.FreeBytes(outside_.Environment.Variable("Temp")) >= kWantedTemporaryBytes) {
    return FinishLoad();
  }
  log_.DoLog("Less than 2 gigabytes free on Temp drive");
  boxes_.Show({.Title = "Drive Space",
               .Text = "You have less than two gigabytes free space on the hard drive containing\n"
                       "your system TEMP directory. It is highly recommended you run with a minimum\n"
                       "of two gigabytes of free space.",
               .Icon = platform::MessageIcon::Information},
              [this](platform::MessageAnswer /*ok*/) { FinishLoad(); });
}

void Kestrune::FinishLoad() {
  if (state_.Run.ShuttingDown) return;
  outside_.Windows.ShowRememberedWindows();
  // A build without a configured server has nobody to ask, and need not say so at every start.
  if (state_.Settings.CheckUpdatesAtStartup && update_.HasServer()) update_.mnuCheckUpdate();
}

}  // namespace kestrune::recorder
