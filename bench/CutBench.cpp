// What a cut between two songs costs in MP3 with the settings of a fresh installation, on the wall clock, from
// RecordStop to the end of RecordStart: what came in while the thread slept through the song's delay is encoded, the
// old file is closed and tagged, the next one created. "backlog" tells how long that sleep was; 0 leaves it out.
// With "record" the song's row goes to the record of what happened too, whose threads write it beside the cuts. What becomes of
// the old file belongs to the cut: it is removed or, with "shelf", put on a shelf of twenty songs, which lets the oldest go. With
// "listen" songs are cut by listening: what a change of text costs at once, and the cut some ten seconds later; the choice
// of its place is a benchmark of its own.
// KESTRUNE_BENCH_CUTS=500 takes so many cuts of five minutes (about half an hour), not twenty.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include "history/History.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/posix/PosixFiles.h"
#include "platform/ring/RingRecorder.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "recorder/Capture.h"
#include "recorder/Chronicle.h"
#include "recorder/Shelving.h"
#include "support/FakeFileSync.h"
#include "support/FakeHistoryStore.h"
#include "support/SimulatedEventLoop.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

class NoJournal final : public base::Journal {
 public:
  void DoLog(std::string_view /*text*/) override {}
  void DebugPrint(std::string_view /*text*/) override {}
  [[nodiscard]] bool Tracing() const override { return false; }
  void Trace(std::string_view /*text*/) override {}
};

/// Ten seconds of chords and noise, over and over: enough for an encoder to work on.
SimulatedSoundSource::Signal Music() {
  constexpr std::size_t kFrames = 441000;
  auto samples = std::make_shared<std::vector<std::int16_t>>();
  std::uint32_t noise = 1;
  for (std::size_t i = 0; i < kFrames; ++i) {
    noise = noise * 1664525U + 1013904223U;
    const auto at = static_cast<double>(i);
    const double tone = 9000 * std::sin(at * 0.05) * std::sin(at * 0.00007) + 5000 * std::sin(at * 0.31);
    for (const double share : {1.0, 0.7}) {
      samples->push_back(static_cast<std::int16_t>(tone * share + (noise >> 20)));
    }
  }
  return [samples](std::uint64_t frame, int channel) {
    return (*samples)[frame % kFrames * 2 + static_cast<std::size_t>(channel)];
  };
}

/// The real recorder, encoder and tag writer under the capture of the program, in a folder of its own.
class Rig {
 public:
  struct Features {
    bool Record = false;
    bool Shelf = false;
    bool Listen = false;
  };

  explicit Rig(const Features& with) {
    settings_.CutPlacement = with.Listen ? config::CutPlacement::Listen : config::CutPlacement::Text;
    settings_.ShelfSongs = with.Shelf ? 20 : 0;
    std::string pattern = (std::filesystem::temp_directory_path() / "cut-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) folder_ = pattern;
    sound_.SetSignal(Music());
    audio_.AudioRecord = std::make_unique<platform::RingRecorder>(loop_, sound_);
    for (auto& file : audio_.CaptureFiles) file = std::make_unique<platform::EncodedFile>();
    audio_.AudioInformation = std::make_unique<platform::FileTagWriter>();
    all_.Radio.RadioID = "ABCD1234";
    for (auto& record : state_.CaptureSlots) {
      record.Extension = "mp3";
      record.Song = "Slow Tide";
      record.Artist = "Moonlighters";
      record.Folder = folder_ + "/";
      record.FileName = record.Folder + "Moonlighters - Slow Tide";
    }
    settings_.FileDir = folder_ + "/";
    if (with.Record) {
      store_ = std::make_unique<platform::SqliteHistoryStore>(loop_, folder_ + "/History.db");
      history_ = std::make_unique<history::History>(*store_, loop_);
      chronicle_ = std::make_unique<recorder::Chronicle>(*history_, loop_);
      history_->Begin();
    }
    capture_.ConnectRecorder();
    Begin(0);
  }
  ~Rig() {
    capture_.RecordStop(state_.CaptureSlot);
    audio_.Release();
    chronicle_.reset();
    history_.reset();
    store_.reset();
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
  }
  Rig(const Rig&) = delete;
  Rig& operator=(const Rig&) = delete;

  [[nodiscard]] bool Works() const { return result_ >= 0; }

  /// A song of that length, and the cut behind it.
  [[nodiscard]] Milliseconds Cut(std::chrono::milliseconds length, std::chrono::milliseconds backlog) {
    loop_.Run(length - backlog);
    loop_.Sleep(backlog);
    const std::int16_t finished = state_.CaptureSlot;
    const auto start = std::chrono::steady_clock::now();
    capture_.RecordStop(finished);
    Begin(static_cast<std::int16_t>(1 - finished));
    PutAway(Record(finished));
    const Milliseconds cost = std::chrono::steady_clock::now() - start;
    capture_.Release(finished);
    return cost;
  }

  /// The same by listening, one second after the text.
  [[nodiscard]] Milliseconds CutByListening(std::chrono::milliseconds length) {
    constexpr std::chrono::milliseconds kHeard{10'000};
    const std::int16_t finished = state_.CaptureSlot;
    const auto next = static_cast<std::int16_t>(1 - finished);
    const std::int64_t stamp = capture_.FrameNow();
    auto start = std::chrono::steady_clock::now();
    const bool awaited =
        capture_.AwaitCut(next, {.Song = Record(finished), .Slot = finished, .Stamp = stamp});
    Milliseconds cost = std::chrono::steady_clock::now() - start;
    if (!awaited) {
      result_ = -1;
      return cost;
    }
    state_.CaptureSlot = next;
    loop_.Run(kHeard);
    state_.AwaitedCuts.front().Frame = stamp + 44100;
    capture_.SetCut();
    while (!capture_.CutReached()) loop_.Run(100ms);
    start = std::chrono::steady_clock::now();
    recorder::AwaitedCut cut = capture_.CutOver();
    PutAway(cut.Song);
    cost += std::chrono::steady_clock::now() - start;
    capture_.Release(finished);
    loop_.Run(std::max(length - kHeard, 0ms));
    return cost;
  }

 private:
  [[nodiscard]] recorder::CaptureRecord& Record(std::int16_t slot) {
    return state_.CaptureSlots[static_cast<std::size_t>(slot)];
  }
  void PutAway(recorder::CaptureRecord& record) {
    if (record.Outcome.File.empty()) result_ = -1;
    record.Outcome.ShelfName.clear();
    shelving_.Take(record, platform::SongFate::NotWanted, false);
    if (settings_.ShelfSongs > 0 && record.Outcome.ShelfName.empty()) result_ = -1;
    if (chronicle_ != nullptr) chronicle_->SongEnded(record, platform::SongFate::NotWanted, "");
    songFiles_.Discard(record);
  }
  void Begin(std::int16_t slot) {
    capture_.RecordStart(slot, capture_.TemporaryFile(slot), result_);
    state_.CaptureSlot = slot;
  }

  SimulatedEventLoop loop_;
  SimulatedSoundSource sound_{loop_, 50ms};
  std::string folder_;
  platform::PosixFiles files_;
  NoJournal journal_;
  recorder::AudioObjects audio_;
  recorder::State all_;
  recorder::RecordingState& state_ = all_.Recording;
  config::Settings& settings_ = all_.Settings;
  config::FileSpecs fileSpecs_{[this](std::int16_t slot) { return audio_.File(slot); }, settings_,
                               state_.CaptureSlot, [] { return std::nullopt; }};
  FakeFileSync sync_;
  recorder::SongFiles songFiles_{files_, sync_, journal_};
  recorder::SoundMeter meter_;
  FakeHistoryStore nothingLearned_{loop_};
  history::History noHistory_{nothingLearned_, loop_};
  recorder::Chronicle noChronicle_{noHistory_, loop_};
  recorder::Shelving shelving_{
      all_,
      {.Files = files_, .SongFiles = songFiles_, .Chronicle = noChronicle_, .History = noHistory_},
      loop_,
      journal_};
  recorder::StationLags lags_{noHistory_, settings_, loop_};
  recorder::CutChooser cuts_{lags_};
  recorder::Capture capture_{
      all_,
      {.Audio = audio_, .Meter = meter_, .Cuts = cuts_, .FileSpecs = fileSpecs_, .SongFiles = songFiles_},
      journal_};
  std::int32_t result_ = 0;
  std::unique_ptr<platform::SqliteHistoryStore> store_;
  std::unique_ptr<history::History> history_;
  std::unique_ptr<recorder::Chronicle> chronicle_;
};

int WantedCuts() {
  const char* wanted = std::getenv("KESTRUNE_BENCH_CUTS");
  return wanted == nullptr ? 20 : std::max(1, std::atoi(wanted));
}

void Cut(benchmark::State& state) {
  const bool listens = state.range(5) != 0;
  Rig rig({.Record = state.range(3) != 0, .Shelf = state.range(4) != 0, .Listen = listens});
  std::vector<double> costs;
  for ([[maybe_unused]] auto step : state) {
    for (int cut = 0; cut < state.range(2); ++cut) {
      const std::chrono::seconds length(state.range(0));
      const std::chrono::milliseconds backlog(state.range(1));
      costs.push_back((listens ? rig.CutByListening(length) : rig.Cut(length, backlog)).count());
    }
  }
  if (!rig.Works()) state.SkipWithError("a capture could not be written");
  std::sort(costs.begin(), costs.end());
  state.counters["median_ms"] = costs[costs.size() / 2];
  state.counters["p99_ms"] = costs[costs.size() * 99 / 100];
  state.counters["max_ms"] = costs.back();
}

void Arguments(benchmark::internal::Benchmark* cut) {
  cut->ArgNames({"seconds", "backlog", "cuts", "record", "shelf", "listen"});
  for (const int backlog : {0, 600}) {
    for (const int record : {0, 1}) {
      for (const int shelf : {0, 1}) {
        cut->Args({2, backlog, 500, record, shelf, 0});
        cut->Args({300, backlog, WantedCuts(), record, shelf, 0});
      }
    }
  }
  cut->Args({30, 0, 100, 0, 0, 1});
  cut->Args({300, 0, WantedCuts(), 0, 0, 1});
}
BENCHMARK(Cut)->Apply(Arguments)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrune::test
