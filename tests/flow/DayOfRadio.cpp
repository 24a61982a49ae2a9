#include "flow/DayOfRadio.h"

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "support/MemoryInUse.h"

namespace kestrune::test {

using namespace std::chrono_literals;

namespace {

constexpr int kFirstChannel = 30;
constexpr int kFewChannels = 40;

}  // namespace

class DayOfRadio::Audio final : public platform::AudioLibrary {
 public:
  explicit Audio(DayOfRadio& day) : day_(day) {}
  [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override {
    return std::make_unique<platform::RingRecorder>(day_.loop_, day_.sound_);
  }
  [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override {
    return std::make_unique<LedgerCaptureFile>(day_.ledger_, day_.files_);
  }
  [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override {
    return std::make_unique<KeptTags>(dropped_);
  }
  void ForgetTags() { dropped_.clear(); }

 private:
  DayOfRadio& day_;
  KeptTags::List dropped_;
};

DayOfRadio::DayOfRadio(const Plan& plan)
    : plan_(plan),
      random_(plan.Seed),
      line_(radio_, loop_, plan.Seed + 1),
      audio_(std::make_unique<Audio>(*this)) {
  for (int channel = kFirstChannel; channel < kFirstChannel + plan.Channels; ++channel) {
    radio_.Channels[channel] = {fmt::format("Station {}", channel), "Genre",
                                fmt::format("Artist {}", channel), "A"};
  }
  // The numbers fit 16 bits and wrap; a mono sample a millisecond is enough to see every cut.
  const auto set = [this](std::string_view key, std::string_view value) {
    store_.Put("Lorimel", "Kestrune", key, value);
  };
  set("FileFormat", "WAV");
  set("WAV_Frequency", "1000");
  set("WAV_Channels", "1");
  if (plan_.Listens) {
    set("WAV_Frequency", "8000");
    set("CutPlacement", "Listen");
  }
  set("FileDir", "/music/");
  set("FilenameFormat", "%c %a - %s");
  set("MinSongLength", "45");
  set("CheckUpdatesAtStartup", "False");
  set("LegalAgreement", "True");
  set("ShelfSongs", plan_.Shelf ? "7" : "0");
  set("PortNum", "1");
  set("Watch", plan.Watch ? "True" : "False");
  history_.Forgets = !plan.Record;
  files_.MakeFolders("/music");
  files_.Put("/home/user/Application Data/Kestrune/Restriction.txt", "2Artist 7\n0Artist\n");
  unit_ = std::make_unique<recorder::Kestrune>(recorder::Outside{.Loop = loop_,
                                                                 .pcrComm = line_,
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
  ledger_.TrueChannel = [this] { return radio_.TunedChannel; };
  unit_->Parts().Log.List().SetChangeHandler([this](schedule::LogList::Change change) {
    if (change == schedule::LogList::Change::Added) TakeLogLine(unit_->Parts().Log.List().Lines().back());
  });
}

DayOfRadio::~DayOfRadio() = default;

void DayOfRadio::Every(std::chrono::milliseconds least, std::chrono::milliseconds most,
                       std::function<void()> what) {
  const std::chrono::milliseconds wait(Draw(static_cast<int>(least.count()), static_cast<int>(most.count())));
  loop_.AtHardware(wait, [this, least, most, what = std::move(what)] {
    what();
    Every(least, most, what);
  });
}

void DayOfRadio::Run() {
  Check(unit_->Load() == recorder::StartOutcome::Running, "the start failed");
  line_.Now = plan_.Faults;
  Every(1s * kFewChannels / plan_.Channels, 9s * kFewChannels / plan_.Channels, [this] { ChangeSongs(); });
  // What a user does can come during any wait.
  if (plan_.User) {
    Every(20s, 600s, [this] { AsAWish([this] { PressSomething(); }); });
  }
  if (plan_.Schedule) {
    Every(60s, 900s, [this] { AsAWish([this] { PlanSomething(); }); });
    Every(1000s, 9000s, [this] { loop_.StepWallClock(std::chrono::minutes(Draw(-120, 120))); });
  }
  if (plan_.Listens) {
    Every(60s, 900s, [this] {
      AsAWish([this] {
        const char* placement = Draw(0, 3) > 0 ? "Listen" : "Text";
        static_cast<void>(unit_->Parts().Settings.Set("CutPlacement", placement));
      });
    });
  }
  if (plan_.BadMoments) Every(1000s, 5000s, [this] { HaveABadMoment(); });
  if (plan_.Unplugs) PullTheCable();
  for (auto second = 0s; second < plan_.Length; ++second) {
    loop_.Run(1s);
    LookOver();
    if (second == plan_.Length / 2) bytesHalfway_ = BytesInUse() - logBytes_;
  }
  bytesGrown_ = BytesInUse() - logBytes_ - bytesHalfway_;
  framesLost_ = unit_->Snapshot().FramesLost;
  lineOpenAtTheEnd_ = line_.IsOpen();
  line_.Now = {};
  unit_->Close();
  Check(loop_.RunUntil([this] { return closed_; }, 1min), "the close did not end");
  for (const std::string& path : files_.AllFiles()) {
    Check(path.find("/Capture") == std::string::npos, "left behind: " + path);
  }
  Check(ledger_.Open == 0, "a file stayed open");
  Check(ledger_.MostOpen <= 1, "two files were open at once");
}

void DayOfRadio::ChangeSongs() {
  // A song of three minutes on each channel: of forty, one changes every four or five seconds.
  const int channel = Draw(kFirstChannel, kFirstChannel + plan_.Channels - 1);
  ++song_;
  radio_.Play(channel, fmt::format("Artist {}", song_ % 11), fmt::format("Song {}", song_));
}

void DayOfRadio::AsAWish(std::function<void()> act) {
  loop_.Post([this, act = std::move(act)] {
    unit_->Wishes().Ask([act] {
      act();
      return base::Result::Done();
    });
  });
}

void DayOfRadio::PressSomething() {
  if (unit_->State().Run.FormLoading || unit_->State().Run.ShuttingDown) return;
  switch (Draw(0, 9)) {
    case 0:
    case 1:
    case 2:
      if (unit_->State().MayRecord()) {
        LookOver();
        unit_->cmdRecord();
        FollowSession();
      }
      break;
    case 3:
    case 4:
      if (unit_->State().MayStop()) unit_->cmdStop();
      break;
    case 5:
    case 6:
      if (!unit_->State().Recording.GetRecordingStatus()) {
        unit_->SetChannelNumber(static_cast<std::int16_t>(Draw(30, 69)));
      }
      break;
    case 7:
      static_cast<void>(unit_->SetMute(Draw(0, 1) == 1));
      break;
    case 8:
      static_cast<void>(
          unit_->Parts().Settings.Set(Draw(0, 1) == 0 ? "Integrel" : "Cleftune", Draw(0, 2) > 0 ? "1" : "0"));
      break;
    default:
      static_cast<void>(unit_->Parts().Settings.Set(Draw(0, 1) == 0 ? "SievanceGrab" : "SievanceKill",
                                                    Draw(0, 1) == 0 ? "1" : "0"));
      break;
  }
}

void DayOfRadio::HaveABadMoment() {
  const std::chrono::seconds length(Draw(3, 120));
  switch (Draw(0, 2)) {
    case 0:
      radio_.Answers = false;
      loop_.AtHardware(length, [this] { radio_.Answers = true; });
      break;
    case 1:
      radio_.PoweredOn = false;
      loop_.AtHardware(length, [this] { radio_.PoweredOn = true; });
      break;
    default:
      radio_.PoweredOn = false;
      loop_.AtHardware(length, [this, channel = Draw(30, 69)] {
        radio_.PoweredOn = true;
        radio_.TunedChannel = channel;
      });
      break;
  }
}

void DayOfRadio::PullTheCable() {
  const std::chrono::seconds length(std::chrono::seconds(plan_.Length).count());
  loop_.AtHardware(length / 2 + std::chrono::seconds(Draw(0, 600)), [this] { radio_.Unplug(); });
  loop_.AtHardware(length * 3 / 4, [this] { radio_.Plug(); });
}

void DayOfRadio::PlanSomething() {
  if (unit_->State().Run.FormLoading || unit_->State().Run.ShuttingDown) return;
  const std::string number = std::to_string(Draw(1, 10));
  const auto set = [&](const std::string& name, const std::string& value) {
    store_.Put("Lorimel", "Kestrune", name + number, value);
  };
  const base::DateValue start = loop_.Now().AddMinutes(Draw(-30, 30));
  constexpr int kWeekly = 0;
  constexpr int kDaily = 1;
  const int kind = Draw(0, 2);
  std::string date = base::FormatDate(start, "mmm d, yyyy");
  if (kind == kWeekly) date = fmt::format("Jan {}, 1967", start.Weekday());
  if (kind == kDaily) date = "Jan 15, 1967";
  set("ScheduleEnabled", Draw(0, 3) > 0 ? "1" : "0");
  set("ScheduleChannel", std::to_string(Draw(30, 70)));
  set("ScheduleStartDate", date + base::FormatDate(start, " h:nn AM/PM"));
  set("ScheduleDuration", fmt::format("0:{:02}", Draw(0, 59)));
  for (const char* mode :
       {"ScheduleIntegrel", "ScheduleCleftune", "ScheduleMatchGrab", "ScheduleMatchKill"}) {
    set(mode, Draw(0, 1) == 0 ? "0" : "1");
  }
  unit_->ReloadSchedule();
}

void DayOfRadio::Check(bool holds, const std::string& complaint) {
  if (!holds && complaints_.size() < 20) {
    complaints_.push_back(fmt::format("{} s: {}", loop_.SteadyNow().count() / 1000, complaint));
  }
}

void DayOfRadio::FollowSession() {
  // The command that zeroes the counters is the one that asks for the recording. It may come later than what
  // led to it: a press is held back while a song is filed, and an event tunes first.
  const bool requested = unit_->State().Recording.RecordRequested;
  if (requested && !requested_) BeginSession();
  requested_ = requested;
}

void DayOfRadio::BeginSession() {
  keptThisSession_ = refusedThisSession_ = 0;
  sessionAnnounced_ = false;
}

void DayOfRadio::LookOver() {
  FollowSession();
  using recorder::Phase;
  const recorder::RecordingState& state = unit_->State().Recording;
  const bool event = unit_->State().Schedule.ActiveSchedule != 0;
  const bool armedInLoad = state.Phase == Phase::WaitingForChannelLoad;
  const bool waiting = state.Phase == Phase::WaitingForNextSong;
  const std::string phase = " in phase " + std::to_string(static_cast<int>(state.Phase));
  Check(state.RecordRequested == state.RecordArmed, "requested and armed differ");
  Check(!state.RecordRequested || state.IsRecording() || waiting, "requested" + phase);
  Check(state.RecordRequested || armedInLoad || state.Phase == Phase::Idle, "not requested" + phase);
  Check(!state.WaitingForNextSong || waiting || !state.RecordRequested || event, "waiting" + phase);
  Check(ledger_.Open <= 1, "two files open");

  // What the devices remember of the day would hide how much the program keeps.
  radio_.Commands.clear();
  files_.Calls.clear();
  store_.Calls.clear();
  fileSync_.Synced.clear();
  dialogs_.Shown.clear();
  sleepInhibitor_.Reasons.clear();
  audio_->ForgetTags();

  // The kept files are checked and removed: a day of them would only slow the list down.
  for (const std::string& path : files_.AllFiles()) {
    if (!path.starts_with("/music/")) continue;
    const bool temporary = path.find("/Capture") != std::string::npos;
    if (temporary) continue;
    TakeSong(path);
  }

  Check(state.RecordedCount == keptThisSession_, "songs kept and the counter differ");
  Check(state.TooShortCount + state.TooLongCount + state.RestrictedCount == refusedThisSession_,
        "songs refused and the counters differ");
}

void DayOfRadio::TakeSong(const std::string& path) {
  const std::string content = files_.Text(path);
  const bool whole = content.starts_with(LedgerCaptureFile::kWholeText);
  Check(whole, "not whole under its final name: " + path);
  ++songsKept_;
  static_cast<void>(files_.Remove(path));
  // An incomplete song may span a change of channel.
  if (!whole || path.find("(Incomplete)") != std::string::npos) return;
  const std::string heard = content.substr(LedgerCaptureFile::kWholeText.size());
  const std::string name = path.substr(path.rfind('/') + 1);
  if (!name.starts_with(heard + " ")) misnamed_.push_back(name + " was channel " + heard);
}

void DayOfRadio::TakeLogLine(const std::string& line) {
  FollowSession();
  std::string text = line.substr(line.find(':') + 7);
  const bool ofEvent = text.starts_with("Scheduled event ");
  // During a long wait an event can begin and end between two checks.
  const bool ends = ofEvent && text.find(" completed ") != std::string::npos;
  if (ends && sessionAnnounced_) BeginSession();
  if (text.starts_with("Recorded: ")) ++keptThisSession_;
  const bool refused = text.starts_with("Not Recorded: ");
  if (refused && text.find("duplicate song") == std::string::npos) ++refusedThisSession_;
  // Both are followed by a new recording, with no boundary between.
  const bool begins = ofEvent && text.find(" beginning ") != std::string::npos;
  if (begins || text.starts_with("Schedule changed, now recording channel")) sessionAnnounced_ = true;
  if (begins) ++eventsBegun_;
  // Each string has its own few bytes beside its text.
  constexpr std::size_t kString = sizeof(std::string) + 2 * sizeof(void*);
  logBytes_ += static_cast<std::int64_t>(2 * (kString + line.size()) + kString + text.size());
  logTexts_.push_back(std::move(text));
}

}  // namespace kestrune::test
