#include "hostile/DiskRun.h"

#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/codec/EncodedFile.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/posix/SystemError.h"
#include "platform/posix/WorkerFileSync.h"
#include "platform/ring/RingRecorder.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

constexpr int kChannel = 44;
constexpr auto kSong = 4s;
/// The record's threads live in real time: so much of it passes with each tenth of a simulated second.
constexpr auto kNap = 50us;

}  // namespace

void DirectFileSync::Sync(std::string_view path) {
  const std::string file(path);
  const int error = platform::SyncToDisk(file);
  if (error == 0 || error == ENOENT) return;
  loop_.Post([handler = handler_, file, failure = platform::FailedWith(error)] {
    if (*handler) (*handler)(file, failure);
  });
}

void CountedMender::Find(std::string_view folder, std::string_view pattern, FoundHandler found) {
  ++calls_;
  mender_.Find(
      folder, pattern,
      [this, found = std::move(found)](const std::vector<std::string>& paths, const base::Result& looked) {
        --calls_;
        found(paths, looked);
      });
}

void CountedMender::Mend(std::string_view path, MendedHandler mended) {
  ++calls_;
  mender_.Mend(path, [this, mended = std::move(mended)](const platform::MendedCapture& capture) {
    --calls_;
    mended(capture);
  });
}

void CountedMender::Stop() {
  calls_ = 0;
  mender_.Stop();
}

std::unique_ptr<platform::AudioRecorder> DiskRun::Audio::MakeAudioRecorder() {
  return std::make_unique<platform::RingRecorder>(loop_, source_);
}

std::unique_ptr<platform::CaptureFile> DiskRun::Audio::MakeCaptureFile() {
  return std::make_unique<platform::EncodedFile>();
}

std::unique_ptr<platform::TagWriter> DiskRun::Audio::MakeTagWriter() {
  return std::make_unique<platform::FileTagWriter>();
}

DiskRun::DiskRun(const std::string& folder) : settings_(folder + "/config") {
  // With fewer than ten the program does not leave channel 1.
  for (int channel = kChannel - 4; channel <= kChannel + 7; ++channel)
    radio_.Channels[channel] = {"Harbour", "Rock", "Moonlighters", "Slow Tide"};
  environment_.Variables = {
      {"userprofile", folder + "/home"}, {"temp", folder + "/temp"}, {"Temp", folder + "/temp"}};
  environment_.Recordings = Recordings(folder);
  history_ = std::make_unique<platform::SqliteHistoryStore>(loop_, Data(folder) + "/History.db");
  unit_ = std::make_unique<recorder::Kestrune>(recorder::Outside{.Loop = loop_,
                                                                 .pcrComm = radio_,
                                                                 .Audio = audio_,
                                                                 .Files = files_,
                                                                 .FileSync = fileSync_,
                                                                 .CaptureMender = captureMender_,
                                                                 .Environment = environment_,
                                                                 .Settings = settings_,
                                                                 .Dialogs = dialogs_,
                                                                 .Sounds = sounds_,
                                                                 .Windows = windows_,
                                                                 .SerialEnumerator = serialEnumerator_,
                                                                 .Web = web_,
                                                                 .Processes = processes_,
                                                                 .SleepInhibitor = sleepInhibitor_,
                                                                 .HistoryStore = *history_});
  unit_->SetClosedHandler([this] { closed_ = true; });
  unit_->Parts().Log.List().SetChangeHandler([this](schedule::LogList::Change change) {
    if (change != schedule::LogList::Change::Added) return;
    // "Jan 1, 2005 12:00:00 " and the text; the day has one digit or two.
    const std::string& line = unit_->Parts().Log.List().Lines().back();
    logTexts_.push_back(line.substr(line.find(':') + 7));
  });
}

void DiskRun::Prepare(const std::string& folder, const std::string& format) {
  for (const char* own : {"/config", "/home", "/temp", "/music"})
    std::filesystem::create_directories(folder + own);
  // Low rates keep the encoders short.
  std::ofstream(Settings(folder)) << "[Kestrune]\n"
                                  << "FileFormat=" << format << '\n'
                                  << "FilenameFormat=%c\\\\%a - %s\n"
                                  << "WAV_Frequency=8000\nWAV_Channels=1\n"
                                  << "MP3_Frequency=8000\nMP3_Channels=1\nMP3_Bitrate=8\n"
                                  << "RAW_Compression=1\nRAW_Frequency=8000\nRAW_Channels=1\n"
                                  << "VOX_Frequency=8000\n726_Frequency=8000\n"
                                  << "OGG_Bitrate=64\nOPUS_Bitrate=32\nFLAC_Level=0\n"
                                  << "MinSongLength=2\nCheckUpdatesAtStartup=False\nLegalAgreement=True\n"
                                  << "ShelfSongs=20\nPortNum=1\nChannel=" << kChannel << '\n';
}

bool DiskRun::Start() {
  if (unit_->Load() != recorder::StartOutcome::Running) return false;
  const auto deadline = std::chrono::steady_clock::now() + 60s;
  while (unit_->State().Radio.ChannelsLoading || !captureMender_.Idle()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    Run(100ms);
  }
  Run(1s);
  return true;
}

void DiskRun::RecordSongs() {
  Play("Before");
  unit_->Wishes().Record();
  Play("First");
  Play("Second");
  const auto answered = [this](const base::Result& answer) {
    if (!answer) logTexts_.push_back("Answered: " + answer.Cause());
  };
  unit_->Wishes().Keep(1, answered);
  unit_->Wishes().ChangeSetting("MinSongLength", "3", answered);
  Play("Third");
  unit_->Wishes().Stop();
  Run(kSong);
}

bool DiskRun::RecordFor(std::chrono::milliseconds captured) {
  unit_->Wishes().Record();
  radio_.Play(kChannel, "Moonlighters", "Song");
  const recorder::RecordingState& recording = unit_->State().Recording;
  for (auto passed = 0ms; passed < 1min; passed += 100ms) {
    Run(100ms);
    const auto& record = recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot));
    if (std::chrono::milliseconds(record.WrittenMs) >= captured) return true;
  }
  return false;
}

void DiskRun::RecordForEver(std::atomic<std::int64_t>& capturedMs, std::atomic<std::int64_t>& slot) {
  unit_->Wishes().Record();
  const recorder::RecordingState& recording = unit_->State().Recording;
  for (auto passed = 0ms;; passed += 100ms) {
    if (passed % kSong == 0ms)
      radio_.Play(kChannel, "Moonlighters", "Song " + std::to_string(passed / kSong));
    Run(100ms);
    slot = recording.CaptureSlot;
    capturedMs = recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot)).WrittenMs;
  }
}

bool DiskRun::Close() {
  unit_->Close();
  return loop_.RunUntil([this] { return closed_; }, 1min);
}

void DiskRun::Run(std::chrono::milliseconds time) {
  for (auto passed = 0ms; passed < time; passed += 100ms) {
    loop_.Run(100ms);
    std::this_thread::sleep_for(kNap);
  }
}

void DiskRun::Play(const std::string& title) {
  radio_.Play(kChannel, "Moonlighters", title);
  Run(kSong);
}

}  // namespace kestrune::test
