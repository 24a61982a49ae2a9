// Any bytes may lie where the record of what happened is kept. If the first byte of the input is even, the rest is that
// file; if not, the rest is places and bytes that are changed in a whole record. Whatever it is, the program opens it or
// puts it aside, and neither a question nor a row that is written brings it down.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

#include "history/Report.h"
#include "history/ReportText.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistoryWriter.h"
#include "platform/sqlite/PlayCounter.h"

namespace {

using namespace kestrune;
using base::DateValue;

const DateValue kNight = DateValue::FromCivil(2066, 11, 21, 20, 0, 0);
const std::atomic<bool> kNever{false};

void Require(bool holds) {
  if (!holds) std::abort();
}

class Folder {
 public:
  Folder() {
    const std::string memory = "/dev/shm";
    std::string name =
        (std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path().string()) +
        "/kestrune-fuzz-XXXXXX";
    Require(::mkdtemp(name.data()) != nullptr);
    path_ = name;
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  [[nodiscard]] std::string Record() const { return path_ + "/History.db"; }
  void Empty() const {
    for (const auto& entry : std::filesystem::directory_iterator(path_))
      std::filesystem::remove_all(entry.path());
  }

 private:
  std::string path_;
};

platform::HistoryRows Rows() {
  platform::HistoryRows rows;
  rows.Runs = {{.Began = kNight, .Alive = kNight.AddHours(9), .Closed = false}};
  platform::HistoryEvent event;
  event.Entry = 1;
  event.Due = kNight;
  event.PlannedSeconds = 3600;
  event.Began = kNight;
  rows.Events = {event};
  rows.Incidents = {{.Kind = platform::IncidentKind::Line,
                     .Began = kNight.AddMinutes(1),
                     .Ended = kNight.AddMinutes(2),
                     .Seconds = 60,
                     .Cause = "gone"}};
  for (int i = 0; i < 100; ++i) {
    platform::HistorySong song;
    song.Began = kNight.AddMinutes(i);
    song.Ended = kNight.AddMinutes(i + 1);
    song.LengthMs = 60'000;
    song.Event = 1;
    song.Title = "Title " + std::to_string(i);
    if (i % 2 == 0)
      song.Cut = {.Frame = i,
                  .LagMs = -i,
                  .Reason = "gap",
                  .Confidence = 0.5,
                  .Candidates = {{600, 0.5}},
                  .Next = "N"};
    rows.Songs.push_back(song);
    rows.Lags.push_back(
        {.Channel = static_cast<std::int16_t>(i), .Changed = kNight, .Model = "1 5 600 10:1:5"});
    rows.Plays.push_back({.Channel = static_cast<std::int16_t>(i),
                          .Station = "Harbour",
                          .Genre = "Rock",
                          .Artist = "Moon " + std::to_string(i % 10),
                          .Title = song.Title,
                          .From = song.Began,
                          .To = song.Ended});
  }
  return rows;
}

std::string WholeRecord(const Folder& folder) {
  {
    auto opened = platform::OpenHistoryFile(folder.Record(), kNever);
    Require(opened.Database != nullptr);
    platform::HistoryWriter writer(*opened.Database, {});
    Require(writer.Write(Rows()));
  }
  std::ifstream file(folder.Record(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Three bytes are a place, the fourth is how many bytes follow that go there.
std::string Changed(std::string record, const std::uint8_t* data, std::size_t size) {
  while (size >= 4) {
    std::size_t place = (data[0] * 65536UL + data[1] * 256UL + data[2]) % record.size();
    std::size_t count = data[3];
    data += 4;
    size -= 4;
    for (; count > 0 && size > 0; --count, ++data, --size, ++place)
      if (place < record.size()) record[place] = static_cast<char>(*data);
  }
  return record;
}

/// Whatever can be asked, of whatever is there.
void Ask(const Folder& folder) {
  const auto questions = platform::OpenHistoryForQuestions(folder.Record(), kNever);
  if (questions == nullptr) return;
  platform::HistoryReader reader(*questions);
  const auto rows = reader.ReadSpan(DateValue::FromCivil(100, 1, 1), DateValue::FromCivil(9999, 12, 31));
  if (rows) Require(!history::ReportText(history::MakeReport(*rows, kNight, kNight.AddDays(1))).empty());
  if (const auto cuts = reader.ReadCuts({.Channel = 0, .Limit = 20})) {
    Require(cuts->size() <= 20);
    for (const platform::HistorySong& song : *cuts)
      Require(song.Cut && song.Cut->Candidates.size() <= platform::kMostCandidates);
  }
  if (const auto lags = reader.ReadLags()) {
    for (const platform::HistoryLag& lag : *lags) Require(lag.Channel >= 1 && lag.Channel <= 255);
  }
  for (const auto as : {platform::PlayedAs::Artist, platform::PlayedAs::Song}) {
    platform::PlayCounter counter({.As = as, .Channel = 0, .Since = {}, .Limit = 20});
    int pieces = 0;
    while (counter.CountOn(*questions) == platform::PlayCounter::Piece::More) Require(++pieces < 100);
    Require(counter.MostPlayed().size() <= 20);
  }
  for (const char* text : {"", "moon", "m", "title 9"}) {
    const auto plays = reader.Search({.Text = text, .Channel = 0, .Since = {}, .Limit = 20});
    if (plays) Require(plays->size() <= 20);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  static const std::string whole = WholeRecord(folder);
  if (size == 0) return 0;
  folder.Empty();
  const bool isWhole = data[0] % 2 == 1;
  const std::string bytes = isWhole ? Changed(whole, data + 1, size - 1)
                                    : std::string(reinterpret_cast<const char*>(data + 1), size - 1);
  std::ofstream(folder.Record(), std::ios::binary) << bytes;

  auto opened = platform::OpenHistoryFile(folder.Record(), kNever);
  Require(opened.Database != nullptr);
  Require(opened.Outcome.Ok());
  const bool begunAnew = !opened.PutAside.empty();
  // What is put aside is as it was.
  if (begunAnew) Require(std::filesystem::file_size(opened.PutAside) == bytes.size());
  Require(begunAnew || isWhole || bytes.empty() || size > 4096);

  platform::HistoryWriter writer(*opened.Database, {});
  const bool written = writer.Write(Rows());
  Require(written || opened.Database->IsDamaged() || !begunAnew);
  Ask(folder);
  for (int steps = 0; writer.Prune(kNight.AddDays(200)) && steps < 100; ++steps) {
  }
  return 0;
}
