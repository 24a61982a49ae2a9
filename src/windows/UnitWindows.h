#pragma once

#include "platform/AudioLibrary.h"
#include "platform/Autostart.h"
#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/InputListener.h"
#include "platform/Mixer.h"
#include "platform/Shell.h"
#include "presenters/Configuration.h"
#include "presenters/InputTrial.h"
#include "presenters/LogWindow.h"
#include "presenters/MixerWindow.h"
#include "presenters/MostPlayed.h"
#include "presenters/RecordingReport.h"
#include "presenters/Shelf.h"
#include "presenters/UnitPresenters.h"
#include "windows/Desktop.h"

namespace kestrune::windows {

/// The windows that open from the main window: how each is created, and what it asks of the others. It owns
/// the rules that only a window needs.
class UnitWindows {
 public:
  struct Outside {
    base::EventLoop& Loop;
    platform::Files& Files;
    const platform::Environment& Environment;
    platform::Dialogs& Dialogs;
    platform::Shell& Shell;
    platform::Mixer& Mixer;
    platform::Autostart& Autostart;
    platform::AudioLibrary& Audio;
    platform::InputListener& InputListener;
  };

  /// The desktop is attached to the rules. All must outlive the object. The windows themselves must be
  /// destroyed before it: see Desktop::Detach.
  UnitWindows(Desktop& desktop, presenters::UnitPresenters& rules, const Outside& outside);
  ~UnitWindows();
  UnitWindows(const UnitWindows&) = delete;
  UnitWindows& operator=(const UnitWindows&) = delete;

 private:
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeChannels();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeLog();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeSchedule();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeRestrictList();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeKestruneNow();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakePresets();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeReport();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeShelf();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeConfig();
  [[nodiscard]] std::unique_ptr<OpenWindow> MakeMixer();
  void ShowHistory(std::int16_t channel);
  [[nodiscard]] presenters::InputTrial::Ports TrialPorts(const Outside& outside);
  void ShowRadioID();
  void AskForList();

  Desktop& desktop_;
  presenters::UnitPresenters& rules_;
  recorder::UnitParts parts_;
  base::EventLoop& loop_;
  presenters::LogWindow log_;
  presenters::MixerWindow mixer_;
  presenters::Configuration configuration_;
  presenters::InputTrial inputTrial_;
  presenters::RecordingReport report_;
  presenters::MostPlayed mostPlayed_;
  presenters::Shelf shelf_;
};

}  // namespace kestrune::windows
