#include "flow/WeekOfFailures.h"

#include <algorithm>
#include <filesystem>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "support/MemoryInUse.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::SongFate;

constexpr int kFirstChannel = 40;
constexpr int kChannels = 12;
constexpr std::int64_t kDay = 86400;

// The start at which the clocks begin: midnight, so that a day of events lies ahead.
const base::DateValue kBegin = base::DateValue::FromCivil(2005, 3, 7);

/// What may pass until a failure is noticed, and until all is well again after its end: twenty seconds of silence, ten
/// requests without a reply, a minute between two words of the run to the record, the start of the program.
constexpr std::int64_t kNoticing = 75;
/// So much of an event may be unaccounted for: moments are whole seconds, and an event begins and ends with a pass.
constexpr std::int64_t kMostUnexplained = 30;

constexpr std::int64_t kMostRecordBytes = 1'500'000;

std::int64_t HeapOf(const std::string& text) {
  constexpr std::size_t kInside = 15;
  constexpr std::size_t kOverhead = 16;
  return text.capacity() <= kInside ? 0 : static_cast<std::int64_t>(text.capacity() + kOverhead);
}

template <typename Item>
std::int64_t HeapOf(const std::vector<Item>& items) {
  return static_cast<std::int64_t>(items.capacity() * sizeof(Item));
}

std::int64_t HeapOf(const platform::HistoryRows& rows) {
  std::int64_t bytes = HeapOf(rows.Songs) + HeapOf(rows.Events) + HeapOf(rows.Incidents) + HeapOf(rows.Runs);
  for (const platform::HistorySong& song : rows.Songs) {
    for (const std::string* text :
         {&song.Station, &song.Genre, &song.Artist, &song.Title, &song.Reason, &song.File})
      bytes += HeapOf(*text);
  }
  for (const platform::HistoryEvent& event : rows.Events)
    bytes += HeapOf(event.Station) + HeapOf(event.WhyNot);
  for (const platform::HistoryIncident& incident : rows.Incidents) bytes += HeapOf(incident.Cause);
  return bytes;
}

}  // namespace

class WeekOfFailures::Audio final : public platform::AudioLibrary {
 public:
  explicit Audio(WeekOfFailures& week) : week_(week) {}
  [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override {
    return std::make_unique<platform::RingRecorder>(week_.loop_, week_.sound_);
  }
  [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override {
    auto file = std::make_unique<WhereaboutsFile>(week_.whereabouts_, week_.files_,
                                                  [this] { return week_.SecondNow(); });
    captureFiles_.at(made_++ % 2) = file.get();
    return file;
  }
  [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override {
    return std::make_unique<KeptTags>(forgotten_);
  }
  void ForgetTags() { forgotten_.clear(); }
  /// Of the unit that runs.
  [[nodiscard]] int Tries() const {
    int tries = 0;
    for (const WhereaboutsFile* file : captureFiles_) tries += file == nullptr ? 0 : file->Tries;
    return tries;
  }
  void Forget() { captureFiles_ = {}; }

 private:
  WeekOfFailures& week_;
  KeptTags::List forgotten_;
  std::array<const WhereaboutsFile*, 2> captureFiles_{};
  std::size_t made_ = 0;
};

WeekOfFailures::WeekOfFailures(const Plan& plan)
    : plan_(plan),
      random_(plan.Seed),
      loop_(kBegin),
      history_(loop_, folder_ / "History.db", {.Days = 90, .Bytes = kMostRecordBytes}),
      audio_(std::make_unique<Audio>(*this)) {
  for (int channel = kFirstChannel; channel < kFirstChannel + kChannels; ++channel)
    radio_.Channels[channel] = {fmt::format("Station {}", channel), "Genre", "Nobody", "Nothing"};
  const auto set = [this](std::string_view key, std::string_view value) {
    store_.Put("Lorimel", "Kestrune", key, value);
  };
  set("FileFormat", "WAV");
  set("WAV_Frequency", "1000");
  set("WAV_Channels", "1");
  set("FileDir", "/music/");
  set("FilenameFormat", "%c %a - %s");
  set("MinSongLength", "45");
  set("CheckUpdatesAtStartup", "False");
  set("LegalAgreement", "True");
  set("ShelfSongs", "0");
  set("PortNum", "1");
  files_.MakeFolders("/music");
  files_.MakeFolders("/home/user");
  sound_.SetSignal([this](std::uint64_t frame, int /*channel*/) -> std::int16_t {
    if (silent_ > 0) return 0;
    return Whereabouts::SampleOf(static_cast<std::int64_t>(frame / 1000));
  });
  PlanEvents();
}

WeekOfFailures::~WeekOfFailures() = default;

void WeekOfFailures::PlanEvents() {
  constexpr int kEventsADay = 8;
  constexpr int kMinutesEach = 24 * 60 / kEventsADay;
  for (int i = 0; i < kEventsADay; ++i) {
    PlannedEvent event{.Entry = i + 1,
                       .StartMinute = i * kMinutesEach + Draw(10, 60),
                       .Minutes = Draw(40, 110),
                       .WholeSongs = Draw(0, 3) == 0};
    const std::string number = std::to_string(event.Entry);
    const auto set = [&](const std::string& name, const std::string& value) {
      store_.Put("Lorimel", "Kestrune", name + number, value);
    };
    const base::DateValue start = kBegin.AddMinutes(event.StartMinute);
    set("ScheduleEnabled", "1");
    set("ScheduleChannel", std::to_string(Draw(kFirstChannel, kFirstChannel + kChannels - 1)));
    set("ScheduleStartDate", "Jan 15, 1967" + base::FormatDate(start, " h:nn AM/PM"));
    set("ScheduleDuration", fmt::format("{}:{:02}", event.Minutes / 60, event.Minutes % 60));
    set("ScheduleIntegrel", event.WholeSongs ? "1" : "0");
    set("ScheduleCleftune", "1");
    set("ScheduleMatchGrab", "0");
    set("ScheduleMatchKill", "0");
    events_.push_back(event);
  }
}

void WeekOfFailures::Run() {
  for (int channel = kFirstChannel; channel < kFirstChannel + kChannels; ++channel) ChangeSong(channel);
  seconds_.reserve(static_cast<std::size_t>(std::chrono::seconds(plan_.Length).count()) + 3600);
  LookOutside();
  // Several at once, the one now and then, the other more often.
  Later(400s, [this] { FailSomething(300, 3000); });
  Later(900s, [this] { FailSomething(1200, 7200); });
  StartUnit();
  int lookedAfter = 0;
  while (loop_.SteadyNow() < plan_.Length) {
    loop_.Run(Milliseconds(Draw(500, 1500)));
    if (crashDue_) Crash();
    LookOver();
    if (const int hours = static_cast<int>(SecondNow() / 3600); hours >= lookedAfter + 6) {
      lookedAfter = hours;
      CheckReport();
      if (bytesHalfway_ == 0 && loop_.SteadyNow() >= plan_.Length / 2) bytesHalfway_ = BytesInUse();
    }
  }
  CheckReport();
  bytesGrown_ = BytesInUse() - bytesHalfway_;
  Close();
  AccountForEvents();
}

// What is outside.

void WeekOfFailures::ChangeSong(int channel) {
  ++song_;
  radio_.Play(channel, fmt::format("Artist {}", song_), fmt::format("Song {}", song_));
  Later(std::chrono::seconds(Draw(60, 330)), [this, channel] { ChangeSong(channel); });
}

void WeekOfFailures::LookOutside() {
  seconds_.push_back({.Wall = loop_.Now().Seconds()});
  Later(1s, [this] { LookOutside(); });
}

void WeekOfFailures::FailSomething(int least, int most) {
  // Most are short; some last for longer than the watch is in a hurry.
  const std::chrono::seconds length(Draw(0, 3) == 0 ? Draw(300, 1200) : Draw(3, 200));
  const auto count = [this](const char* name) { ++failures_[name]; };
  switch (Draw(0, 9)) {
    case 0:
    case 1: {
      // Several reasons may keep it unplugged; it comes back with the last of them, perhaps as another device.
      const bool renamed = Draw(0, 1) == 0;
      count(renamed ? "back under another name" : "unplugged");
      ++unplugged_;
      radio_.Unplug();
      Later(length, [this, renamed, port = Draw(1, 3)] {
        if (renamed) radio_.SittingOnPort = static_cast<std::int16_t>(port);
        if (--unplugged_ == 0) radio_.Plug();
      });
      break;
    }
    case 2:
      count("without power");
      ++unpowered_;
      ++deaf_;
      radio_.Answers = false;
      radio_.PoweredOn = false;
      radio_.TunedChannel = 1;
      Later(length, [this] {
        --unpowered_;
        if (--deaf_ == 0) radio_.Answers = true;
      });
      break;
    case 3:
      count("deaf");
      ++deaf_;
      radio_.Answers = false;
      Later(length, [this] {
        if (--deaf_ == 0) radio_.Answers = true;
      });
      break;
    case 4:
      count("silence");
      ++silent_;
      Later(length, [this] { --silent_; });
      break;
    case 5:
      count("input lost");
      sound_.Die(length);
      break;
    case 6:
      count("disk full");
      ++full_;
      files_.DiskFull = true;
      files_.Free = 0;
      Later(length, [this] {
        if (--full_ > 0) return;
        files_.DiskFull = false;
        files_.Free = 100e9;
      });
      break;
    case 7: {
      count("sleep");
      const std::chrono::seconds slept(Draw(0, 2) == 0 ? Draw(600, 7200) : Draw(10, 600));
      skipped_.push_back({loop_.Now().Seconds(), loop_.Now().Seconds() + slept.count()});
      loop_.SleepMachine(slept);
      sound_.Slept(slept);
      paceSince_ = loop_.SteadyNow();
      break;
    }
    case 8: {
      count("clock set");
      const std::chrono::seconds by(Draw(0, 1) == 0 ? Draw(-5400, 5400) : Draw(-90, 90));
      if (by.count() > 0) skipped_.push_back({loop_.Now().Seconds(), loop_.Now().Seconds() + by.count()});
      clockSteps_.push_back({loop_.Now().Seconds(), loop_.Now().Seconds() + by.count()});
      loop_.StepWallClock(by);
      ++clocksSet_;
      paceSince_ = loop_.SteadyNow();
      break;
    }
    default:
      count("crash");
      crashDue_ = true;
      break;
  }
  Later(std::chrono::seconds(Draw(least, most)), [this, least, most] { FailSomething(least, most); });
}

// The unit.

void WeekOfFailures::StartUnit() {
  // As a service manager does: again and again until a start works.
  for (;;) {
    ++starts_;
    closed_ = false;
    unit_ = std::make_unique<recorder::Kestrune>(recorder::Outside{.Loop = loop_,
                                                                   .pcrComm = radio_,
                                                                   .Audio = *audio_,
                                                                   .Files = files_,
                                                                   .FileSync = fileSync_,
                                                                   .CaptureMender = captureMender_,
                                                                   .Environment = environment_,
                                                                   .Settings = store_,
                                                                   .Dialogs = dialogs_,
                                                                   .Sounds = sounds_,
                                                                   .Windows = windows_,
                                                                   .SerialEnumerator = serialEnumerator_,
                                                                   .Web = web_,
                                                                   .Processes = processes_,
                                                                   .SleepInhibitor = sleepInhibitor_,
                                                                   .HistoryStore = history_});
    unit_->SetClosedHandler([this] { closed_ = true; });
    const bool works = unit_->Load() == recorder::StartOutcome::Running;
    if (works) break;
    Check(loop_.RunUntil([this] { return closed_; }, 1min), "a start that failed did not end");
    Crash();
    loop_.Run(20s);
  }
  running_ = true;
  runningSince_ = SecondNow();
  openingsSeen_ = radio_.Openings.size();
  triesSeen_ = audio_->Tries();
  radio_.Commands.clear();
  up_ = true;
}

void WeekOfFailures::Crash() {
  const bool ran = std::exchange(running_, false);
  crashDue_ = false;
  if (ran) TakeFiles();
  unit_.reset();
  audio_->Forget();
  sound_.Close();
  radio_.SetReceiveHandler([] {});
  radio_.Close();
  captureMender_.Stop();
  history_.ForgetQuestions();
  if (!ran) return;
  // What it was writing can be mended, and is found by the next start.
  for (const std::string& path : files_.AllFiles()) {
    if (!path.starts_with("/music/Capture")) continue;
    captureMender_.Answers[path] = {.Is = platform::MendedCapture::State::Whole,
                                    .LengthMs = 1000,
                                    .Artist = {},
                                    .Title = {},
                                    .Written = loop_.Now(),
                                    .Cause = {}};
  }
  const int clocksSet = clocksSet_;
  const std::size_t from = seconds_.size();
  loop_.Run(std::chrono::seconds(Draw(0, 3) == 0 ? Draw(60, 1200) : Draw(1, 20)));
  StartUnit();
  if (clocksSet_ == clocksSet) return;
  for (std::size_t second = from; second < seconds_.size(); ++second) seconds_[second].Unwatched = true;
}

void WeekOfFailures::Close() {
  running_ = false;
  unit_->Close();
  Check(loop_.RunUntil([this] { return closed_; }, 1min), "the close did not end");
  TakeFiles();
  unit_.reset();
  if (full_ > 0) return;
  for (const std::string& path : files_.AllFiles())
    Check(path.find("/Capture") == std::string::npos, "left behind: " + path);
}

// The looks.

void WeekOfFailures::LookOver() {
  TakeFiles();
  CheckPace();
  files_.Calls.clear();
  fileSync_.Synced.clear();
  sounds_.Played.clear();
  dialogs_.Shown.clear();
  captureMender_.Calls.clear();
  store_.Calls.clear();
  web_.Calls.clear();
  sleepInhibitor_.Reasons.clear();
  audio_->ForgetTags();
}

void WeekOfFailures::TakeFiles() {
  for (const std::string& path : files_.AllFiles()) {
    if (!path.starts_with("/music/") || path.starts_with("/music/Capture")) continue;
    const std::string text = files_.Text(path);
    Check(text.starts_with(WhereaboutsFile::kText), "no capture: " + path);
    const std::size_t number = std::stoul(text.substr(WhereaboutsFile::kText.size()));
    inFinalFile_.resize(std::max(inFinalFile_.size(), number + 1));
    Check(!inFinalFile_[number], "twice: " + path);
    inFinalFile_[number] = true;
    files_.Calls.clear();
    const bool full = std::exchange(files_.DiskFull, false);
    Check(files_.Remove(path).Ok(), "not removed: " + path);
    files_.DiskFull = full;
  }
}

void WeekOfFailures::CheckPace() {
  const Milliseconds now = loop_.SteadyNow();
  const bool up = unit_->State().Link.Up();
  if (up_ && !up) paceSince_ = now;
  up_ = up;
  for (; openingsSeen_ < radio_.Openings.size(); ++openingsSeen_) {
    const Milliseconds opened = radio_.Openings[openingsSeen_].first;
    const Milliseconds apart = opened - std::exchange(lastOpening_, opened);
    // The first try after a jump of the clocks is due at once.
    if (opened - paceSince_ < 2s) continue;
    const bool slow = opened - paceSince_ > 5min + 35s;
    Check(apart >= (slow ? 29s : 1900ms),
          fmt::format("a device was opened again after {} ms", apart.count()));
  }
  // Five polls a second, and a few more.
  Check(radio_.Commands.size() <= 30, fmt::format("{} commands in about a second", radio_.Commands.size()));
  radio_.Commands.clear();
  const int tries = audio_->Tries();
  Check(tries - std::exchange(triesSeen_, tries) <= 4, "files were tried too fast");
}

void WeekOfFailures::CheckReport() {
  // The last six hours, as the report tells them.
  const base::DateValue from = loop_.Now().AddHours(-6);
  bool answered = false;
  unit_->Parts().History.AskReport(from, [&](const base::Result& asked, const history::Report& report) {
    answered = true;
    Check(asked.Ok(), "no report: " + asked.Cause());
    for (const history::EventStory& event : report.Events) {
      if (event.Due < from) continue;
      for (const history::MissingPart& part : event.Missing) {
        const bool isShort = part.Seconds <= kMostUnexplained;
        Check(isShort || !part.Why.empty(),
              fmt::format("the report does not know why {} s of event {} are missing from {}", part.Seconds,
                          event.Entry, base::FormatDate(part.From, "mmm d, hh:nn:ss")));
      }
    }
  });
  Check(loop_.RunUntil([&answered] { return answered; }, 10s), "no report came");
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(folder_ / "History.db"));
  recordBytes_ = std::max(recordBytes_, bytes);
  Check(bytes <= kMostRecordBytes * 5 / 4, fmt::format("the record has {} bytes", bytes));
  Check(history_.Failures == 0, "the record could not be written");
}

std::int64_t WeekOfFailures::BytesInUse() const {
  std::int64_t bytes = test::BytesInUse();
  if (bytes == 0) return 0;
  bytes -= HeapOf(history_.Rows) + HeapOf(whereabouts_.Captures) + HeapOf(radio_.Openings);
  for (const auto& ranges : whereabouts_.Captures) bytes -= HeapOf(ranges);
  for (const std::string& path : files_.AllFiles()) bytes -= HeapOf(files_.Text(path));
  const auto& lines = unit_->Parts().Log.List().Lines();
  for (const std::string& line : lines)
    bytes -= static_cast<std::int64_t>(sizeof(std::string)) + HeapOf(line);
  return bytes;
}

void WeekOfFailures::Check(bool holds, const std::string& complaint) {
  if (!holds && complaints_.size() < 40) {
    complaints_.push_back(fmt::format("{} s, {}: {}", SecondNow(),
                                      base::FormatDate(loop_.Now(), "mmm d, hh:nn:ss"), complaint));
  }
}

// The account.

void WeekOfFailures::CollectExplanations() {
  const auto& runs = history_.Rows.Runs;
  for (const platform::HistoryIncident& row : history_.Rows.Incidents) {
    std::int64_t end = row.Began.Seconds();
    if (row.Ended) {
      end = row.Ended->Seconds();
    } else {
      // Another row has its end, or a crash was.
      for (const platform::HistoryRun& run : runs)
        if (run.Began <= row.Began && !run.Closed) end = std::max(row.Began, run.Alive).Seconds();
    }
    incidents_.emplace_back(row.Began.Seconds() - kNoticing, end + kNoticing);
  }
  for (std::size_t i = 0; i + 1 < runs.size(); ++i) {
    const std::int64_t from = std::min(runs[i].Alive, runs[i + 1].Began).Seconds();
    // The song in hand, and what an incident that lasted did to it, went with the run.
    incidents_.emplace_back(from - kNoticing, runs[i + 1].Began.Seconds() + kNoticing);
  }
  for (const platform::HistorySong& song : history_.Rows.Songs) {
    if (song.Fate == SongFate::TooShort || song.Fate == SongFate::Duplicate) Explain(dropped_, song);
    const bool remainder = song.Fate == SongFate::NotWanted && song.Event != 0;  // of an event of whole songs
    if (song.Fate == SongFate::NotWhole || remainder) Explain(notWhole_, song);
  }
  // An event of whole songs begins to record with the first of them, and begins so again after a crash.
  for (const platform::HistoryEvent& event : history_.Rows.Events) {
    if (!event.WholeSongs || !event.Began) continue;
    const auto first = std::find_if(
        history_.Rows.Songs.begin(), history_.Rows.Songs.end(), [&event](const platform::HistorySong& song) {
          return song.Event == event.Entry && song.Ended >= *event.Began && song.LengthMs > 0;
        });
    if (first == history_.Rows.Songs.end()) continue;
    notWhole_.emplace_back(event.Began->Seconds() - 2,
                           std::min(first->Began, event.Began->AddMinutes(6)).Seconds() + 2);
  }
}

void WeekOfFailures::Explain(std::vector<std::pair<std::int64_t, std::int64_t>>& spans,
                             const platform::HistorySong& song) const {
  const std::pair span(song.Began.Seconds() - 2, song.Ended.Seconds() + 2);
  spans.push_back(span);
  for (const Skipped& step : clockSteps_) {
    if (span.first < step.To && step.To <= span.second)
      spans.emplace_back(span.first - (step.To - step.From), step.From);
  }
}

bool WeekOfFailures::IsExplained(const PlannedEvent& event, std::int64_t wall) const {
  const auto covers = [wall](const auto& spans) {
    return std::any_of(spans.begin(), spans.end(),
                       [wall](const auto& span) { return span.first <= wall && wall <= span.second; });
  };
  return covers(incidents_) || covers(dropped_) || (event.WholeSongs && covers(notWhole_));
}

void WeekOfFailures::AccountForEvents() {
  CollectExplanations();
  inFinalFile_.resize(whereabouts_.Captures.size());
  for (std::size_t number = 0; number < inFinalFile_.size(); ++number) {
    if (!inFinalFile_[number]) continue;
    for (const Whereabouts::Range& range : whereabouts_.Captures[number])
      for (std::int64_t second = range.From; second <= range.To; ++second)
        if (second < static_cast<std::int64_t>(seconds_.size()))
          seconds_[static_cast<std::size_t>(second)].InFile = true;
  }
  std::int64_t firstWall = seconds_.front().Wall;
  std::int64_t lastWall = firstWall;
  for (const Second& second : seconds_) {
    firstWall = std::min(firstWall, second.Wall);
    lastWall = std::max(lastWall, second.Wall);
  }
  for (std::int64_t day = firstWall / kDay * kDay; day <= lastWall; day += kDay) {
    for (const PlannedEvent& event : events_) {
      const std::int64_t from = day + event.StartMinute * 60;
      const std::int64_t to = from + event.Minutes * 60;
      if (from < firstWall || to > lastWall) continue;
      ++tally_.Events;
      std::vector<std::int64_t> unexplained;
      for (const Second& second : seconds_) {
        if (second.Wall < from || second.Wall >= to) continue;
        ++tally_.Planned;
        if (second.InFile) {
          ++tally_.InFiles;
        } else if (second.Unwatched || IsExplained(event, second.Wall)) {
          ++tally_.Explained;
        } else {
          unexplained.push_back(second.Wall);
        }
      }
      for (const Skipped& skipped : skipped_) {
        for (std::int64_t wall = std::max(from, skipped.From); wall < std::min(to, skipped.To); ++wall) {
          ++tally_.Planned;
          if (IsExplained(event, wall)) {
            ++tally_.Explained;
          } else {
            unexplained.push_back(wall);
          }
        }
      }
      tally_.Unexplained += static_cast<std::int64_t>(unexplained.size());
      if (static_cast<std::int64_t>(unexplained.size()) <= kMostUnexplained) continue;
      const auto text = [](std::int64_t wall) {
        return base::FormatDate(base::DateValue::FromSeconds(wall), "mmm d, hh:nn:ss");
      };
      Check(false,
            fmt::format("{} s of event {}, due {}, are in no file and nothing tells why: from {} to {}",
                        unexplained.size(), event.Entry, text(from), text(unexplained.front()),
                        text(unexplained.back())));
    }
  }
}

}  // namespace kestrune::test
