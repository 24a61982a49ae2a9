// All windows over a whole unit with 120 channels, on simulated time and a
// platform without a screen: what a long run leaves behind, and what keeping
// the windows like their records costs.
#include <QAbstractButton>
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>

#include "base/Ignored.h"
#include "presenters/ChannelChooser.h"
#include "presenters/ChannelMenuRig.h"
#include "presenters/WindowTable.h"
#include "radio/channels/ChannelsFixture.h"
#include "windows/UnitWindowsRig.h"
#include "windows/frmChannels.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

constexpr int kChannels = 120;
constexpr auto kSong = 3min;
/// What fits into a minute; KESTRUNE_BENCH_HOURS=168 runs the whole week, and compares its end with its first day.
constexpr int kHours = 18;

double OpenHandles() {
  const std::filesystem::directory_iterator handles("/proc/self/fd");
  return static_cast<double>(std::distance(begin(handles), end(handles)));
}

/// A unit that records, with every window on the desktop.
class AllWindows {
 public:
  AllWindows() {
    rig_.Unit.Radio.Channels.clear();
    for (int channel = 1; channel <= kChannels; ++channel) {
      rig_.Unit.Radio.Channels[channel] = {fmt::format("Station {}", channel), "Genre", "", ""};
      PlayNext(channel);
    }
    rig_.Unit.StartIdle();
    for (const presenters::WindowRow& row : presenters::WindowTable()) rig_.Desktop.Show(row.Name);
    rig_.Run(200ms);
    for (const presenters::WindowRow& row : presenters::WindowTable()) {
      const recorder::WindowName name = row.Name;
      if (!rig_.Shows(name)) throw std::runtime_error("a window is missing");
    }
    rig_.Find<QAbstractButton>("cmdRecord").click();
  }
  ~AllWindows() { rig_.Desktop.Detach(); }
  AllWindows(const AllWindows&) = delete;
  AllWindows& operator=(const AllWindows&) = delete;

  /// As long as a song: each second another channel changes its song, and the
  /// tuned one has the last word. What is on the heap is comparable behind each
  /// call.
  void PlaySong() {
    const int tuned = rig_.Unit->State().Radio.ChannelNumber;
    for (auto second = 0s; second < kSong; ++second) {
      if (next_ == tuned) next_ = next_ % kChannels + 1;
      PlayNext(next_);
      next_ = next_ % kChannels + 1;
      if (second == kSong - 10s) PlayNext(tuned);
      rig_.Run(1s);
      // What a program's own event loop does by itself, and none runs here.
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    ForgetWhatTheRigKeeps();
  }
  void Refresh() { rig_.Desktop.Refresh(); }
  /// Until nothing that time brings is left to show.
  void Settle() {
    for (int i = 0; i < 10; ++i) {
      Refresh();
      QCoreApplication::processEvents();
    }
  }
  [[nodiscard]] int SongsKept() const { return kept_; }
  [[nodiscard]] std::size_t LogLines() { return rig_.Unit->Parts().Log.List().Lines().size(); }

 private:
  void PlayNext(int channel) {
    ++song_;
    rig_.Unit.Radio.Play(channel, fmt::format("Artist {}", song_ % 1000),
                         fmt::format("Song {}", song_ % 10000));
  }
  // A rig remembers everything for its tests to look at; on the heap that would
  // look like the program's.
  void ForgetWhatTheRigKeeps() {
    for (const std::string& recording : rig_.Unit.Recordings()) {
      if (recording.find("/Capture") != std::string::npos) continue;  // still written to
      base::Ignored(rig_.Unit.Files.Remove("/music/" + recording));
      ++kept_;
    }
    for (RecordingCaptureFile* file : rig_.Unit.Audio.CaptureFiles) {
      if (file == nullptr) continue;
      file->Calls = {};
      std::erase_if(file->Written, [](const auto& written) { return written.Closed; });
    }
    rig_.Unit.Audio.Tagged = {};
    rig_.Unit.Radio.Commands = {};
    rig_.Unit.Files.Calls = {};
    rig_.Unit.Store.Calls = {};
    rig_.Unit.Sounds.Played = {};
  }

  UnitWindowsRig rig_;
  int song_ = 0;
  int next_ = 1;
  int kept_ = 0;
};

void Week(benchmark::State& state) {
  const char* told = std::getenv("KESTRUNE_BENCH_HOURS");
  const int hours = std::max(2, told != nullptr ? std::atoi(told) : kHours);
  const int before = std::min(24, hours / 2);
  for ([[maybe_unused]] auto step : state) {
    AllWindows windows;
    const auto play = [&windows](std::chrono::minutes length) {
      for (auto played = 0min; played < length; played += kSong) windows.PlaySong();
    };
    play(std::chrono::hours(before));
    const std::size_t heap = mallinfo2().uordblks;
    const double handles = OpenHandles();
    const auto widgets = QApplication::allWidgets().size();
    const std::size_t lines = windows.LogLines();
    play(std::chrono::hours(hours - before));
    state.counters["hours_run"] = hours;
    state.counters["hours_before"] = before;
    state.counters["heap_grown_bytes"] =
        static_cast<double>(mallinfo2().uordblks) - static_cast<double>(heap);
    state.counters["handles_before"] = handles;
    state.counters["handles"] = OpenHandles();
    state.counters["widgets_before"] = static_cast<double>(widgets);
    state.counters["widgets"] = static_cast<double>(QApplication::allWidgets().size());
    state.counters["log_lines_before"] = static_cast<double>(lines);
    state.counters["log_lines"] = static_cast<double>(windows.LogLines());
    state.counters["songs_kept"] = windows.SongsKept();
  }
}
// The heap grows by what the log gains in lines, up to their bound, and by
// nothing else.
BENCHMARK(Week)->Unit(benchmark::kSecond)->Iterations(1);

void RefreshWithoutAChange(benchmark::State& state) {
  AllWindows windows;
  windows.PlaySong();
  windows.Settle();
  for ([[maybe_unused]] auto step : state) windows.Refresh();
}
BENCHMARK(RefreshWithoutAChange);

/// The channels window over a table that is filled by hand.
class BoundChannels : public ChannelsFixture {
 public:
  BoundChannels() {
    channels.SetUpGrid();
    channels.Grid().Enabled = true;
    for (int channel = 1; channel <= kChannels; ++channel) Play(channel, 0);
    window_ = std::make_unique<windows::frmChannels>(chooser_, rig_.Listing, rig_.Menu, section_);
    window_->show();
    QCoreApplication::processEvents();
  }
  void Play(int channel, int song) {
    Plays(static_cast<std::uint8_t>(channel), "Station " + std::to_string(channel),
          "Artist " + std::to_string(song % 1000), "Song " + std::to_string(song));
  }
  void Show(bool paint) {
    window_->Refresh();
    if (paint) QCoreApplication::processEvents();
  }

 private:
  void TestBody() override {}

  std::unique_ptr<base::Timer> tmrUpdate_ = loop.MakeTimer(std::chrono::hours(1), [] {});
  presenters::ChannelChooser chooser_{channels, run, sounds, loop, *tmrUpdate_, [] { return false; }};
  ChannelMenuRig rig_{channels, sounds, Keys(), chooser_, [] { return false; }};
  MemorySettingsStore store_;
  config::SettingsSection section_{store_};
  std::unique_ptr<windows::frmChannels> window_;
};

void ChannelRowUpdate(benchmark::State& state) {
  BoundChannels channels;
  int song = 0;
  for ([[maybe_unused]] auto step : state) {
    ++song;
    channels.Play(song % kChannels + 1, song);
    channels.Show(state.range(0) != 0);
  }
}
BENCHMARK(ChannelRowUpdate)->ArgName("painted")->Arg(0)->Arg(1);

}  // namespace
}  // namespace kestrune::test

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // A platform without a screen complains of every window that is brought to the front.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  QApplication::setStyle(QStringLiteral("Fusion"));
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
