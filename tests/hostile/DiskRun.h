#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/codec/WorkerCaptureMender.h"
#include "platform/posix/IniSettingsStore.h"
#include "platform/posix/PosixFiles.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "support/UnitRig.h"

namespace kestrune::test {

/// Brings a file to the disk within the call, so that two runs make the same calls; a failure is told from the loop.
class DirectFileSync final : public platform::FileSync {
 public:
  explicit DirectFileSync(SimulatedEventLoop& loop) : loop_(loop) {}
  void Sync(std::string_view path) override;
  void SetFailureHandler(FailureHandler handler) override { *handler_ = std::move(handler); }

 private:
  SimulatedEventLoop& loop_;
  std::shared_ptr<FailureHandler> handler_ = std::make_shared<FailureHandler>();
};

/// The real one; it can be asked whether it is done.
class CountedMender final : public platform::CaptureMender {
 public:
  explicit CountedMender(base::EventLoop& loop) : mender_(loop) {}
  void Find(std::string_view folder, std::string_view pattern, FoundHandler found) override;
  void Mend(std::string_view path, MendedHandler mended) override;
  void Stop() override;
  [[nodiscard]] bool Idle() const { return calls_ == 0; }

 private:
  platform::WorkerCaptureMender mender_;
  int calls_ = 0;  // begun and not answered
};

/// One run of a unit over a folder of real files: settings, lists, log, a record in a database, recordings by the real
/// encoders and a shelf. Radio, sound and time are simulated.
class DiskRun {
 public:
  /// Makes a folder ready for the first run; `format` is a file format, such as "MP3".
  static void Prepare(const std::string& folder, const std::string& format);

  explicit DiskRun(const std::string& folder);

  /// Loads, waits for the channels and for what is mended; false if the start failed.
  [[nodiscard]] bool Start();
  /// Songs pass, three of them are recorded, one of the shelf is kept and a setting is changed.
  void RecordSongs();
  /// A song is recorded, and goes on once so much of it was given to its file. False if that takes longer than a minute.
  [[nodiscard]] bool RecordFor(std::chrono::milliseconds captured);
  /// Songs are recorded without an end. Says in which slot, and how many milliseconds of the song in hand its file was
  /// given.
  [[noreturn]] void RecordForEver(std::atomic<std::int64_t>& capturedMs, std::atomic<std::int64_t>& slot);
  /// False if the close does not end.
  [[nodiscard]] bool Close();

  [[nodiscard]] recorder::Kestrune& operator*() { return *unit_; }
  /// All lines of this run's log, without their time stamps.
  [[nodiscard]] const std::vector<std::string>& LogTexts() const { return logTexts_; }

  [[nodiscard]] static std::string Recordings(const std::string& folder) { return folder + "/music"; }
  [[nodiscard]] static std::string Data(const std::string& folder) {
    return folder + "/home/Application Data/Kestrune";
  }
  [[nodiscard]] static std::string Settings(const std::string& folder) {
    return folder + "/config/lorimel.ini";
  }

 private:
  class Audio final : public platform::AudioLibrary {
   public:
    Audio(SimulatedEventLoop& loop, platform::SoundSource& source) : loop_(loop), source_(source) {}
    [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override;
    [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override;
    [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override;

   private:
    SimulatedEventLoop& loop_;
    platform::SoundSource& source_;
  };

  /// Time passes, and the threads of the record get theirs.
  void Run(std::chrono::milliseconds time);
  void Play(const std::string& title);

  SimulatedEventLoop loop_;
  TestRadio radio_{loop_};
  SimulatedSoundSource sound_{loop_, std::chrono::milliseconds(100)};
  platform::PosixFiles files_;
  DirectFileSync fileSync_{loop_};
  CountedMender captureMender_{loop_};
  platform::IniSettingsStore settings_;
  FakeEnvironment environment_;
  ScriptedDialogs dialogs_;
  CountedSounds sounds_;
  recorder::Windows windows_;
  platform::SerialEnumerator serialEnumerator_;
  FakeWeb web_;
  FakeProcesses processes_;
  FakeSleepInhibitor sleepInhibitor_;
  Audio audio_{loop_, sound_};
  std::unique_ptr<platform::SqliteHistoryStore> history_;
  std::unique_ptr<recorder::Kestrune> unit_;
  std::vector<std::string> logTexts_;
  bool closed_ = false;
};

}  // namespace kestrune::test
