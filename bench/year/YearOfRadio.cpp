#include "year/YearOfRadio.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "history/ReportText.h"
#include "platform/codec/FileTagWriter.h"
#include "support/MemoryInUse.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

constexpr int kFirstChannel = 10;
constexpr int kChannels = 120;
constexpr int kSongsOfAChannel = 400;
constexpr int kArtists = 3000;
constexpr auto kDay = 24h;

// Midnight, so that a day of events lies ahead.
const base::DateValue kBegin = base::DateValue::FromCivil(2005, 3, 7);

std::int64_t HeapOf(const std::string& text) {
  constexpr std::size_t kInside = 15;
  constexpr std::size_t kOverhead = 16;
  return text.capacity() <= kInside ? 0 : static_cast<std::int64_t>(text.capacity() + kOverhead);
}

std::int64_t BytesOf(const std::filesystem::path& path) {
  std::error_code none;
  const auto bytes = std::filesystem::file_size(path, none);
  return none ? 0 : static_cast<std::int64_t>(bytes);
}

bool OnShelf(const std::filesystem::path& path) {
  return path.string().find("/Shelf/") != std::string::npos;
}

}  // namespace

class YearOfRadio::Audio final : public platform::AudioLibrary {
 public:
  explicit Audio(YearOfRadio& year) : year_(year) {}
  [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override {
    return std::make_unique<platform::RingRecorder>(year_.loop_, year_.sound_);
  }
  [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override {
    return std::make_unique<CrampedCaptureFile>(year_.files_);
  }
  [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override {
    return std::make_unique<platform::FileTagWriter>();
  }

 private:
  YearOfRadio& year_;
};

YearOfRadio::YearOfRadio(const Plan& plan)
    : plan_(plan),
      random_(plan.Seed),
      loop_(kBegin),
      store_(folder_ / "config"),
      history_(loop_, folder_ / "History.db", {.Days = plan.KeptDays}),
      audio_(std::make_unique<Audio>(*this)) {
  for (int channel = kFirstChannel; channel < kFirstChannel + kChannels; ++channel)
    radio_.Channels[channel] = {fmt::format("Station {}", channel), "Genre", "Nobody", "Nothing"};
  for (const std::string& own : {Music(), Data(), folder_ / "temp"}) std::filesystem::create_directories(own);
  environment_.Variables = {
      {"userprofile", folder_ / "home"}, {"temp", folder_ / "temp"}, {"Temp", folder_ / "temp"}};
  environment_.Recordings = Music();
  std::ofstream(Data() + "/Restriction.txt") << "0Artist 77\n0Artist 123\n2Artist 66\n3New 9\n";
  WriteSettings();
  PlanEvents();
}

YearOfRadio::~YearOfRadio() {
  rules_.reset();
}

void YearOfRadio::WriteSettings() const {
  std::filesystem::create_directories(folder_ / "config");
  std::ofstream(store_.FileOf("Lorimel"))
      << "[Kestrune]\n"
      << "FileFormat=WAV\nWAV_Frequency=8000\nWAV_Channels=1\n"
      << "FilenameFormat=%c\\\\%a - %s\nMinSongLength=45\nPortNum=1\n"
      << "CheckUpdatesAtStartup=False\nLegalAgreement=True\nShelfSongs=20\nShelfMegabytes=60\n"
      << "CutPlacement=Text\nCutOverlap=500\nHints=True\nFollowHints=True\nChannel=" << kFirstChannel << '\n';
}

void YearOfRadio::PlanEvents() const {
  struct Row {
    const char* Start;
    const char* Duration;
    const char* Modes;  // I(ntegrel), C(leftune), G(rab), K(ill)
  };
  // Daily, on single days of the week, some that meet, and the last one on dates that the user changes.
  constexpr std::array<Row, 10> kRows{{{"Jan 15, 1967 6:30 AM", "1:00", "IC"},
                                       {"Jan 15, 1967 6:00 PM", "2:30", "CG"},
                                       {"Jan 15, 1967 11:40 PM", "0:45", "C"},
                                       {"Jan 1, 1967 9:00 AM", "3:00", "ICK"},
                                       {"Jan 2, 1967 12:00 PM", "0:30", ""},
                                       {"Jan 3, 1967 2:00 PM", "1:30", "IC"},
                                       {"Jan 3, 1967 3:00 PM", "1:30", "C"},
                                       {"Jan 5, 1967 1:00 AM", "4:00", "CGK"},
                                       {"Jan 7, 1967 8:00 PM", "3:30", "IC"},
                                       {"Mar 8, 2005 4:00 AM", "0:20", "C"}}};
  std::ofstream settings(store_.FileOf("Lorimel"), std::ios::app);
  for (std::size_t entry = 1; entry <= kRows.size(); ++entry) {
    const Row& row = kRows.at(entry - 1);
    const auto on = [&row](char mode) {
      return std::string_view(row.Modes).find(mode) == std::string_view::npos ? 0 : 1;
    };
    settings << fmt::format("ScheduleEnabled{0}=1\nScheduleChannel{0}={1}\n", entry,
                            kFirstChannel + entry * 7)
             << fmt::format("ScheduleStartDate{0}={1}\nScheduleDuration{0}={2}\n", entry, row.Start,
                            row.Duration)
             << fmt::format("ScheduleIntegrel{0}={1}\nScheduleCleftune{0}={2}\n", entry, on('I'), on('C'))
             << fmt::format("ScheduleMatchGrab{0}={1}\nScheduleMatchKill{0}={2}\n", entry, on('G'), on('K'));
  }
}

void YearOfRadio::Run(const std::function<void(const Look& look)>& looked) {
  for (int channel = kFirstChannel; channel < kFirstChannel + kChannels; ++channel) ChangeSong(channel);
  Every(3h, 9h, [this] { FailSomething(); });
  Every(10min, 90min, [this] { DoSomething(); });
  Every(20h, 28h, [this] { PlanOnce(); });
  Every(20h, 28h, [this] { AskSomething(); });
  Every(60h, 90h, [this] { RenameStation(); });
  Every(24h, 24h, [this] { ListenForAWhile(); });
  const std::chrono::seconds last = LastStart();
  Every(last / 24, last / 6, [this, last] { restartDue_ = loop_.SteadyNow() < last; });
  StartUnit();
  auto nextLook = 6h;
  while (loop_.SteadyNow() < plan_.Days * kDay) {
    loop_.Run(1min);
    if (std::exchange(restartDue_, false)) StartAnew();
    LookOver();
    if (loop_.SteadyNow() < nextLook) continue;
    nextLook += 6h;
    TakeFiles();
    looked(LookNow());
  }
  EndUnit(false);
}

void YearOfRadio::Every(std::chrono::seconds least, std::chrono::seconds most, std::function<void()> what) {
  Later(std::chrono::seconds(Draw(static_cast<int>(least.count()), static_cast<int>(most.count()))),
        [this, least, most, what = std::move(what)] {
          what();
          Every(least, most, what);
        });
}

// What is outside.

void YearOfRadio::ChangeSong(int channel) {
  // Now and then something that was never played before.
  if (Draw(0, 19) == 0) {
    ++newSongs_;
    radio_.Play(channel, fmt::format("Artist {}", newSongs_ % kArtists), fmt::format("New {}", newSongs_));
  } else {
    const int song = Draw(1, kSongsOfAChannel);
    radio_.Play(channel, fmt::format("Artist {}", (channel * 37 + song) % kArtists),
                fmt::format("{} Song {}", channel, song));
  }
  if (channel == radio_.TunedChannel)
    sound_.Gap(Milliseconds(600 + channel % 5 * 300), Milliseconds(Draw(200, 1500)));
  Later(std::chrono::seconds(Draw(200, 400)), [this, channel] { ChangeSong(channel); });
}

void YearOfRadio::RenameStation() {
  const int channel = Draw(kFirstChannel, kFirstChannel + kChannels - 1);
  radio_.Channels[channel].Station = fmt::format("Station {}/{}", channel, Draw(1, 999));
}

void YearOfRadio::FailSomething() {
  ++tally_.Failures;
  const std::chrono::seconds length(Draw(0, 3) == 0 ? Draw(300, 1200) : Draw(3, 200));
  switch (Draw(0, 7)) {
    case 0: {
      // Several reasons may keep it unplugged; it comes back with the last of them, perhaps as another device.
      ++unplugged_;
      radio_.Unplug();
      Later(length, [this, port = Draw(1, 3)] {
        radio_.SittingOnPort = static_cast<std::int16_t>(port);
        if (--unplugged_ == 0) radio_.Plug();
      });
      break;
    }
    case 1:
      radio_.PoweredOn = false;
      radio_.TunedChannel = 1;
      [[fallthrough]];
    case 2:
      ++deaf_;
      radio_.Answers = false;
      Later(length, [this] {
        if (--deaf_ == 0) radio_.Answers = true;
      });
      break;
    case 3:
      ++silent_;
      sound_.SetSilent(true);
      Later(length, [this] { sound_.SetSilent(--silent_ > 0); });
      break;
    case 4:
      sound_.Die(length);
      break;
    case 5:
      ++full_;
      files_.Full = true;
      Later(length, [this] {
        if (--full_ == 0) files_.Full = false;
      });
      break;
    case 6: {
      const std::chrono::seconds slept(Draw(10, 7200));
      loop_.SleepMachine(slept);
      sound_.Slept(slept);
      break;
    }
    default:
      loop_.StepWallClock(std::chrono::seconds(Draw(0, 3) == 0 ? Draw(-5400, 5400) : Draw(-90, 90)));
      break;
  }
}

// The unit.

void YearOfRadio::StartUnit() {
  // As a service manager does: again and again until a start works.
  for (;;) {
    ++tally_.Starts;
    closed_ = false;
    const recorder::Outside outside{.Loop = loop_,
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
                                    .HistoryStore = history_};
    unit_ = std::make_unique<recorder::Kestrune>(outside);
    rules_ = std::make_unique<presenters::UnitPresenters>(*unit_, outside);
    unit_->SetClosedHandler([this] { closed_ = true; });
    if (unit_->Load() == recorder::StartOutcome::Running) break;
    Check(loop_.RunUntil([this] { return closed_; }, 1min), "a start that failed did not end");
    EndUnit(true);
    loop_.Run(20s);
  }
  running_ = true;
}

void YearOfRadio::EndUnit(bool crash) {
  running_ = false;
  if (!crash) {
    unit_->Close();
    Check(loop_.RunUntil([this] { return closed_; }, 1min), "the close did not end");
  }
  rules_.reset();
  unit_.reset();
  sound_.Close();
  radio_.SetReceiveHandler([] {});
  radio_.Close();
  captureMender_.Stop();
  history_.ForgetQuestions();
}

void YearOfRadio::StartAnew() {
  EndUnit(Draw(0, 2) > 0);
  loop_.Run(std::chrono::seconds(Draw(0, 3) == 0 ? Draw(60, 3600) : Draw(1, 20)));
  StartUnit();
}

// The user.

void YearOfRadio::DoSomething() {
  if (!running_) return;
  recorder::Wishes& wishes = unit_->Wishes();
  switch (Draw(0, 11)) {
    case 0:
      return wishes.Record();
    case 1:
    case 2:
    case 3:
      return wishes.Stop();
    case 4:
    case 5:
      return wishes.Tune(static_cast<std::int16_t>(Draw(kFirstChannel, kFirstChannel + kChannels - 1)));
    case 6:
      return wishes.Mute(Draw(0, 3) == 0);
    case 7:
      return wishes.KeepCurrent();
    case 8:
      return wishes.Keep(static_cast<std::size_t>(Draw(1, 12)));
    case 9:
      return ChangeSetting();
    case 10:
      return wishes.Ask([this, fragment = fmt::format("Artist {}", Draw(1000, 1020))] {
        schedule::Restrictions& lists = unit_->Parts().Restrictions;
        if (lists.Remove(schedule::RestrictList::GrabArtists, fragment).Count > 0)
          return base::Result::Done();
        return lists.Add(schedule::RestrictList::GrabArtists, fragment);
      });
    default:
      return wishes.ReloadChannels();
  }
}

void YearOfRadio::ChangeSetting() {
  const std::array<std::pair<const char*, std::string>, 9> wishes{
      {{"CutOverlap", std::to_string(Draw(0, 4) * 250)},
       {"Integrel", std::to_string(Draw(0, 1))},
       {"Cleftune", std::to_string(Draw(0, 1))},
       {"SievanceGrab", std::to_string(Draw(0, 1))},
       {"SievanceKill", std::to_string(Draw(0, 1))},
       {"SaveDuplicates", std::to_string(Draw(0, 1))},
       {"ShelfSongs", std::to_string(Draw(5, 25))},
       {"MinSongLength", std::to_string(Draw(20, 90))},
       {"Favourites", fmt::format("{} {}", Draw(10, 60), Draw(61, 120))}}};
  const auto& [key, value] = wishes.at(static_cast<std::size_t>(Draw(0, 8)));
  unit_->Wishes().ChangeSetting(key, value);
}

void YearOfRadio::ListenForAWhile() {
  // Listening takes more of a processor than all the rest together, so that a year has some of it each day.
  constexpr auto kWhile = 30min;
  const auto place = [this](const char* cuts) {
    if (running_) unit_->Wishes().ChangeSetting("CutPlacement", cuts);
  };
  place("Listen");
  Later(kWhile, [place] { place("Text"); });
}

void YearOfRadio::PlanOnce() {
  if (!running_) return;
  unit_->Wishes().Ask([this] {
    const base::DateValue start = loop_.Now().AddMinutes(Draw(60, 1200));
    const bool saved = store_.SaveSetting("Lorimel", "Kestrune", "ScheduleStartDate10",
                                          base::FormatDate(start, "mmm d, yyyy h:nn AM/PM"));
    Check(saved, "an event could not be planned");
    unit_->ReloadSchedule();
    return base::Result::Done();
  });
}

void YearOfRadio::AskSomething() {
  if (!running_) return;
  history::History& history = unit_->Parts().History;
  history.AskReport(
      loop_.Now().AddDays(-1), [this](const base::Result& asked, const history::Report& report) {
        Check(asked.Ok() && !history::ReportText(report).empty(), "no report: " + asked.Cause());
        ++tally_.Reports;
      });
  history.Search({.Text = fmt::format("Song {}", Draw(1, kSongsOfAChannel)), .Channel = 0, .Since = {}},
                 [this](const base::Result& asked, const auto& plays) {
                   Check(asked.Ok() && !plays.empty(), "nothing found: " + asked.Cause());
                 });
  history.AskCuts({}, [this](const base::Result& asked, const auto& /*songs*/) {
    Check(asked.Ok(), "no cuts: " + asked.Cause());
  });
  if (Draw(0, 6) > 0) return;
  history.CountPlays({.As = platform::PlayedAs::Song, .Channel = 0, .Since = loop_.Now().AddDays(-1)},
                     [this](const base::Result& asked, const auto& counts) {
                       Check(asked.Ok() && !counts.empty(), "nothing counted: " + asked.Cause());
                     });
}

// The looks.

void YearOfRadio::LookOver() {
  // What a window would show.
  base::Ignored(rules_->Window());
  base::Ignored(rules_->Explanation());
  base::Ignored(rules_->NextToSay());
  base::Ignored(rules_->Progress());
  Check(history_.Failures == 0, "the record could not be written");
  // What the devices remember would look like the program's.
  tally_.PlaysWritten = static_cast<std::int64_t>(history_.Plays);
  history_.Rows = {};
  radio_.Commands = {};
  radio_.Openings = {};
  fileSync_.Synced = {};
  sounds_.Played = {};
  dialogs_.Shown = {};
  web_.Calls = {};
  sleepInhibitor_.Reasons = {};
}

void YearOfRadio::TakeFiles() {
  int captures = 0;
  std::vector<std::filesystem::path> songs;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Music())) {
    const std::string name = entry.path().filename();
    if (!entry.is_regular_file() || name.starts_with('.') || OnShelf(entry.path())) continue;
    if (name.starts_with("Capture")) {
      ++captures;
    } else {
      songs.push_back(entry.path());
    }
  }
  for (const auto& song : songs) {
    ++(song.string().find("/Recovered") == std::string::npos ? tally_.SongsKept : tally_.Recovered);
    std::filesystem::remove(song);
  }
  Check(captures <= 2, fmt::format("{} captures lie about", captures));
}

YearOfRadio::Look YearOfRadio::LookNow() const {
  Look look{.At = std::chrono::duration_cast<std::chrono::hours>(loop_.SteadyNow())};
  const auto& lines = unit_->Parts().Log.List().Lines();
  look.HeapBytes = BytesInUse();
  for (const std::string& line : lines)
    look.HeapBytes -= static_cast<std::int64_t>(sizeof(std::string)) + HeapOf(line);
  std::int64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  look.ResidentBytes = pages * ::sysconf(_SC_PAGESIZE);
  const std::filesystem::directory_iterator handles("/proc/self/fd");
  look.Handles = std::distance(begin(handles), end(handles));
  look.RecordBytes = BytesOf(Record()) + BytesOf(Record() + "-wal");
  look.LogBytes = BytesOf(unit_->Parts().Log.List().LogPath());
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Music())) {
    if (!entry.is_regular_file() || !OnShelf(entry.path()) ||
        entry.path().filename().string().starts_with('.'))
      continue;
    ++look.ShelfFiles;
    look.ShelfBytes += BytesOf(entry.path());
  }
  return look;
}

YearOfRadio::Rows YearOfRadio::RowsNow() const {
  const std::atomic<bool> never{false};
  const auto database = platform::OpenHistoryForQuestions(Record(), never);
  if (database == nullptr) return {};
  const auto count = [&database](const char* table) {
    return database->NumberOf(fmt::format("SELECT count(*) FROM {}", table)).value_or(-1);
  };
  std::ifstream log(unit_->Parts().Log.List().LogPath());
  return {.Plays = count("play"),
          .Titles = count("title"),
          .Songs = count("song"),
          .Events = count("event"),
          .Incidents = count("incident"),
          .Stations = count("station"),
          .LogLines = std::count(std::istreambuf_iterator<char>(log), {}, '\n')};
}

void YearOfRadio::Check(bool holds, const std::string& complaint) {
  if (!holds && complaints_.size() < 40) {
    complaints_.push_back(fmt::format("{}: {}", base::FormatDate(loop_.Now(), "mmm d, hh:nn:ss"), complaint));
  }
}

}  // namespace kestrune::test
