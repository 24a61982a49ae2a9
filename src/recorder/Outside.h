#pragma once

#include "base/EventLoop.h"
#include "platform/AudioLibrary.h"
#include "platform/CaptureMender.h"
#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "platform/FileSync.h"
#include "platform/Files.h"
#include "platform/HistoryStore.h"
#include "platform/Processes.h"
#include "platform/SerialEnumerator.h"
#include "platform/SerialPort.h"
#include "platform/SettingsStore.h"
#include "platform/SleepInhibitor.h"
#include "platform/Sounds.h"
#include "platform/Web.h"
#include "recorder/Windows.h"

namespace kestrune::recorder {

/// Everything of the outside that the run stands on. All of it must outlive the run.
struct Outside {
  base::EventLoop& Loop;
  platform::SerialPort& pcrComm;
  platform::AudioLibrary& Audio;
  platform::Files& Files;
  platform::FileSync& FileSync;
  platform::CaptureMender& CaptureMender;
  const platform::Environment& Environment;
  platform::SettingsStore& Settings;
  platform::Dialogs& Dialogs;
  platform::Sounds& Sounds;
  recorder::Windows& Windows;
  platform::SerialEnumerator& SerialEnumerator;
  platform::Web& Web;
  platform::Processes& Processes;
  platform::SleepInhibitor& SleepInhibitor;
  platform::HistoryStore& HistoryStore;
};

}  // namespace kestrune::recorder
