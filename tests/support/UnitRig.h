#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/ring/RingRecorder.h"
#include "presenters/UnitPresenters.h"
#include "recorder/Kestrune.h"
#include "support/FakeCaptureMender.h"
#include "support/FakeEnvironment.h"
#include "support/FakeFileSync.h"
#include "support/FakeHistoryStore.h"
#include "support/FakeProcesses.h"
#include "support/FakeSerialEnumerator.h"
#include "support/FakeSleepInhibitor.h"
#include "support/FakeWeb.h"
#include "support/MemoryFiles.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingCaptureFile.h"
#include "support/ScriptedDialogs.h"
#include "support/SimulatedEventLoop.h"
#include "support/SimulatedSoundSource.h"
#include "support/TestRadio.h"

namespace kestrune::test {

class CountedSounds final : public platform::Sounds {
 public:
  void Play(std::string_view name) override { Played.emplace_back(name); }
  std::vector<std::string> Played;
};

/// Keeps the tags by path, as they were given.
class KeptTags final : public platform::TagWriter {
 public:
  using List = std::vector<std::pair<std::string, platform::Tags>>;
  explicit KeptTags(List& list) : list_(list) {}
  base::Result Write(std::string_view path, const platform::Tags& tags) override {
    list_.emplace_back(path, tags);
    return base::Result::Done();
  }

 private:
  List& list_;
};

/// The real recorder over the simulated source, and capture files that keep their samples.
class RigAudio final : public platform::AudioLibrary {
 public:
  RigAudio(SimulatedEventLoop& loop, platform::SoundSource& source, MemoryFiles& files)
      : loop_(loop), source_(source), files_(files) {}

  [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override {
    return std::make_unique<platform::RingRecorder>(loop_, source_);
  }
  [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override {
    auto file = std::make_unique<RecordingCaptureFile>(&files_);
    CaptureFiles.at(made_++ % 2) = file.get();
    return file;
  }
  [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override {
    return std::make_unique<KeptTags>(Tagged);
  }

  std::array<RecordingCaptureFile*, 2> CaptureFiles{};  ///< gone once the unit has closed
  KeptTags::List Tagged;

 private:
  SimulatedEventLoop& loop_;
  platform::SoundSource& source_;
  MemoryFiles& files_;
  std::size_t made_ = 0;
};

/// A whole unit on simulated time: the radio on port 1, numbered sound, files and settings in memory. A test
/// sets up what it needs, calls Start, and lets time pass.
class UnitRig {
 public:
  UnitRig();

  /// Makes the unit anew, with other windows than none; they must outlive it.
  void MeetWindows(recorder::Windows& windows);
  /// Loads, and fails the test if that ends in another way than expected.
  void Start(recorder::StartOutcome expected = recorder::StartOutcome::Running);
  /// Lets the walk through the channels end.
  void FinishWalk();
  /// The two together, with the first, forced boundary taken.
  void StartIdle();
  void Run(std::chrono::milliseconds time) { Loop.Run(time); }
  /// Another song on the tuned channel, and time enough for its boundary.
  void NextSong(const std::string& artist, const std::string& song);
  /// Closes and waits for the end.
  void CloseAndWait();

  void Set(std::string_view key, std::string_view value) { Store.Put("Lorimel", "Kestrune", key, value); }
  [[nodiscard]] std::string Setting(std::string_view key) const {
    return Store.Stored("Lorimel", "Kestrune", key);
  }
  /// What the main window shows now.
  [[nodiscard]] presenters::MainWindow Window() const { return Rules->Window(); }
  /// The log's lines without their time stamps.
  [[nodiscard]] std::vector<std::string> LogTexts() const;
  [[nodiscard]] bool Logged(std::string_view text) const;
  /// Files below the folder of recordings, without that folder.
  [[nodiscard]] std::vector<std::string> Recordings() const;
  [[nodiscard]] recorder::Kestrune& operator*() { return *Unit; }
  [[nodiscard]] recorder::Kestrune* operator->() { return Unit.get(); }

  SimulatedEventLoop Loop;
  TestRadio Radio{Loop};
  SimulatedSoundSource Sound{Loop};
  MemoryFiles Files;
  FakeFileSync FileSync;
  FakeCaptureMender CaptureMender{Loop, Files};
  MemorySettingsStore Store;
  FakeEnvironment Environment;
  ScriptedDialogs Dialogs;
  CountedSounds Sounds;
  recorder::Windows Windows;
  FakeSerialEnumerator SerialEnumerator;
  FakeWeb Web;
  FakeProcesses Processes;
  FakeSleepInhibitor SleepInhibitor;
  FakeHistoryStore History{Loop};
  RigAudio Audio{Loop, Sound, Files};
  std::unique_ptr<recorder::Kestrune> Unit;
  std::unique_ptr<presenters::UnitPresenters> Rules;
  bool Closed = false;
};

}  // namespace kestrune::test
