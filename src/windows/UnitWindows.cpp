#include "windows/UnitWindows.h"

#include <cstdint>
#include <span>

#include "base/Text.h"
#include "windows/frmChannels.h"
#include "windows/frmConfig.h"
#include "windows/frmGrabKill.h"
#include "windows/frmKestruneNow.h"
#include "windows/frmLog.h"
#include "windows/frmMixer.h"
#include "windows/frmPresets.h"
#include "windows/frmRadioID.h"
#include "windows/frmReport.h"
#include "windows/frmRestrictList.h"
#include "windows/frmSchedule.h"
#include "windows/frmShelf.h"

namespace kestrune::windows {

using recorder::WindowName;

UnitWindows::UnitWindows(Desktop& desktop, presenters::UnitPresenters& rules, const Outside& outside)
    : desktop_(desktop),
      rules_(rules),
      parts_(rules.Unit().Parts()),
      loop_(outside.Loop),
      log_(parts_.Log.List(), outside.Files, outside.Environment, outside.Shell, outside.Dialogs),
      mixer_(outside.Mixer, [this] { return rules_.Unit().InputDeviceId(); }),
      configuration_(rules.ConfigurationAccess(outside.Autostart)),
      inputTrial_(TrialPorts(outside)),
      report_(parts_.History, outside.Shell, outside.Loop),
      mostPlayed_(parts_.History, outside.Loop, [this] { return rules_.Unit().SchedulerChannels(); }),
      shelf_(rules.Unit(), outside.Shell, outside.Loop) {
  desktop.SetMaker(WindowName::Channels, [this] { return MakeChannels(); });
  desktop.SetMaker(WindowName::Log, [this] { return MakeLog(); });
  desktop.SetMaker(WindowName::Schedule, [this] { return MakeSchedule(); });
  desktop.SetMaker(WindowName::RestrictList, [this] { return MakeRestrictList(); });
  desktop.SetMaker(WindowName::KestruneNow, [this] { return MakeKestruneNow(); });
  desktop.SetMaker(WindowName::Presets, [this] { return MakePresets(); });
  desktop.SetMaker(WindowName::Report, [this] { return MakeReport(); });
  desktop.SetMaker(WindowName::Shelf, [this] { return MakeShelf(); });
  desktop.SetMaker(WindowName::Config, [this] { return MakeConfig(); });
  desktop.SetMaker(WindowName::Mixer, [this] { return MakeMixer(); });

  desktop.ShowRadioID = [this] { ShowRadioID(); };
  desktop.OfferForList = [this](std::string_view word, const std::string& caption) {
    using Field = presenters::GrabKill::Field;
    rules_.GrabKill().DblClick(word == "Artist" ? Field::Artist : Field::Song, caption);
  };
  rules.GrabKill().SetWindow([this] { AskForList(); });
  // Cells of the channels window have single ampersands, unlike captions of labels.
  rules.ChannelsWindow().OfferForList = [this](std::string_view word, std::string_view text) {
    desktop_.OfferForList(word, base::DoubleAmpersands(text));
  };
  rules.ChannelsWindow().ClearChannelListing = [this] {
    rules_.Switches().Click(WindowName::Channels, false);
  };
  rules.ChannelMenu().ShowHistory = [this](std::int16_t channel) { ShowHistory(channel); };
  rules.Heard = [this](std::span<const std::int16_t> block, const platform::PcmFormat& format) {
    inputTrial_.Hear(block, format);
  };
  rules.PresetWindow().MainWindowToFront = [this] { desktop_.MainWindowToFront(); };
}

UnitWindows::~UnitWindows() {
  rules_.Heard = nullptr;
}

presenters::InputTrial::Ports UnitWindows::TrialPorts(const Outside& outside) {
  return {.Loop = outside.Loop,
          .Listener = outside.InputListener,
          .Captured = [this] { return rules_.Unit().CapturedDeviceId(); },
          .Configured = [this] { return rules_.Unit().InputDeviceId(); },
          .Recording = [this] { return rules_.Unit().State().Recording.GetRecordingStatus(); },
          .Format = [this] { return parts_.FileSpecs.Format(); },
          .Extension = [this] { return base::ToLower(rules_.Unit().State().Settings.FileFormat); },
          .Test = {.Audio = outside.Audio,
                   .Files = outside.Files,
                   .Environment = outside.Environment,
                   .Shell = outside.Shell}};
}

std::unique_ptr<OpenWindow> UnitWindows::MakeChannels() {
  auto window = std::make_unique<frmChannels>(rules_.ChannelsWindow(), rules_.ListedChannels(),
                                              rules_.ChannelMenu(), parts_.Section);
  window->HotKey = [this](int key) { desktop_.PassKey(key); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeLog() {
  auto window = std::make_unique<frmLog>(log_, parts_.Section);
  window->Hidden = [this] { rules_.Switches().Click(WindowName::Log, false); };
  window->HotKey = [this](int key) { desktop_.PassKey(key); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeSchedule() {
  auto window =
      std::make_unique<frmSchedule>(rules_.OpenScheduler(), loop_, rules_.Unit().State().Run, parts_.Section);
  window->CloseEnded = [this](bool refused) { rules_.Switches().Click(WindowName::Schedule, refused); };
  window->FocusMainWindow = [this] { desktop_.MainWindowToFront(); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeRestrictList() {
  auto window = std::make_unique<frmRestrictList>(rules_.RestrictListEditor(), rules_.Unit().State().Run,
                                                  parts_.Section);
  window->CloseEnded = [this](bool refused) { rules_.Switches().Click(WindowName::RestrictList, refused); };
  window->FocusMainWindow = [this] { desktop_.MainWindowToFront(); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeKestruneNow() {
  auto window = std::make_unique<frmKestruneNow>(rules_.NowWindow(), rules_.PresetButtons(), parts_.Section);
  window->HotKey = [this](int key) { desktop_.PassKey(key); };
  window->Closed = [this] { rules_.Switches().Click(WindowName::KestruneNow, false); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakePresets() {
  return Opened(std::make_unique<frmPresets>(rules_.PresetWindow(), parts_.Section));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeReport() {
  auto window = std::make_unique<frmReport>(report_, mostPlayed_, parts_.Section);
  window->HotKey = [this](int key) { desktop_.PassKey(key); };
  window->Closed = [this] { rules_.Switches().Click(WindowName::Report, false); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeShelf() {
  auto window = std::make_unique<frmShelf>(shelf_, parts_.Section);
  window->HotKey = [this](int key) { desktop_.PassKey(key); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeConfig() {
  auto window = std::make_unique<frmConfig>(configuration_, inputTrial_);
  window->FocusMainWindow = [this] { desktop_.MainWindowToFront(); };
  return Opened(std::move(window));
}

std::unique_ptr<OpenWindow> UnitWindows::MakeMixer() {
  return Opened(std::make_unique<frmMixer>(mixer_, parts_.Section));
}

void UnitWindows::ShowHistory(std::int16_t channel) {
  rules_.Switches().Click(WindowName::Report, true);
  if (auto* report = dynamic_cast<frmReport*>(desktop_.WidgetOf(WindowName::Report)))
    report->ShowSongsOf(channel);
}

void UnitWindows::ShowRadioID() {
  rules_.Unit().Wishes().AskForRadioID(
      [this](const std::string& radioID) { desktop_.OpenModal(std::make_unique<frmRadioID>(radioID)); });
}

void UnitWindows::AskForList() {
  frmGrabKill window(rules_.GrabKill());
  desktop_.ShowModally(window);
}

}  // namespace kestrune::windows
