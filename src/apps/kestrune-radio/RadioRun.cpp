#include "apps/kestrune-radio/RadioRun.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <poll.h>

#include "apps/kestrune-radio/PipeOutput.h"
#include "apps/kestrune-radio/PulseOutput.h"
#include "apps/kestrune-radio/RadioLine.h"
#include "receiver/JsonLines.h"
#include "receiver/TraceReplay.h"

namespace kestrune::radio_program {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// The longest and the shortest rest of the loop. The first bounds how late a new connection is noticed. With the
// second, bytes at 9600 baud come about eight at a time, as a serial chip delivers them.
constexpr milliseconds kLongestRest{20};
constexpr milliseconds kShortestRest{8};
constexpr milliseconds kSoundRest{10};

volatile std::sig_atomic_t stopAsked = 0;

void AskToStop(int /*signal*/) {
  stopAsked = 1;
}

int Fail(std::string_view reason, int status) {
  std::cerr << "kestrune-radio: " << reason << std::endl;
  return status;
}

bool ReadFile(const std::string& path, std::string& text) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  text = content.str();
  return static_cast<bool>(file);
}

std::string ChooseLineUp(const RadioOptions& options, receiver::LineUp& lineUp) {
  if (!options.LineUpFile.empty()) {
    std::string text;
    if (!ReadFile(options.LineUpFile, text)) return fmt::format("{} cannot be read", options.LineUpFile);
    receiver::LineUpResult result = receiver::LineUpFromJson(text);
    if (!result.Error.empty()) return fmt::format("{}: {}", options.LineUpFile, result.Error);
    lineUp = std::move(result.Value);
  } else if (options.Channels > 0) {
    lineUp = receiver::LineUpOfSize(options.Channels);
  } else {
    lineUp = receiver::BuiltInLineUp();
  }
  if (options.SongLength) lineUp.SetSongLength(*options.SongLength);
  return {};
}

/// The receiver, its line and its sound, on real time.
class Running {
 public:
  Running(receiver::VirtualReceiver& receiver, RadioLine& line, SoundOutput* sound, receiver::JsonLines* log)
      : receiver_(receiver), line_(line), sound_(sound), log_(log) {}

  void Start(const RadioOptions& options) {
    start_ = std::chrono::steady_clock::now();
    if (sound_ != nullptr) receiver_.StartSound(milliseconds(0), options.Signal, options.SampleRate);
    Log("started", {{"path", line_.Path()},
                    {"stations", receiver_.Stations().Stations.size()},
                    {"tuned", receiver_.Model().TunedChannel()},
                    {"seed", options.Receiver.Seed}});
  }

  [[nodiscard]] milliseconds Now() const { return std::chrono::floor<milliseconds>(PreciseNow()); }

  void Step() {
    const bool connected = line_.Connected();
    if (connected != connected_) Log("line", {{"open", connected}});
    connected_ = connected;
    receiver_.Receive(Now(), line_.Read());
    const std::string bytes = receiver_.Send(PreciseNow());
    if (connected_ && !bytes.empty()) line_.Write(bytes);
    StepSound();
    receiver_.Observe(Now());
  }

  void Rest() const {
    milliseconds rest = sound_ != nullptr ? kSoundRest : kLongestRest;
    const auto next = receiver_.NextByte();
    if (next) rest = std::min(rest, std::chrono::ceil<milliseconds>(*next - PreciseNow()));
    rest = std::max(rest, kShortestRest);
    // A line that is not open at the other end always polls as ready, and has no bytes.
    pollfd state{connected_ ? line_.Handle() : -1, POLLIN, 0};
    ::poll(&state, 1, static_cast<int>(rest.count()));
  }

  void Stop() { Log("stopped", nlohmann::ordered_json::object()); }

 private:
  [[nodiscard]] microseconds PreciseNow() const {
    return std::chrono::floor<microseconds>(std::chrono::steady_clock::now() - start_);
  }

  void Log(std::string_view event, const nlohmann::ordered_json& fields) {
    if (log_ != nullptr) log_->Write(Now(), event, fields);
  }

  void StepSound() {
    if (sound_ == nullptr) return;
    const std::int64_t frame = receiver_.FirstFrame() + receiver_.FramesTaken();
    sound_->Play(receiver_.TakeSound(Now()));
    // A listener hears from the frames of this step on.
    if (sound_->Heard() != heard_) Log("listener", {{"on", sound_->Heard()}, {"frame", frame}});
    heard_ = sound_->Heard();
    if (sound_->LostFrames() != lostFrames_) {
      Log("sound_lost", {{"frames", sound_->LostFrames() - lostFrames_}, {"frame", frame}});
    }
    lostFrames_ = sound_->LostFrames();
    if (sound_->Gaps() != gaps_) Log("sound_gap", {{"frame", frame}});
    gaps_ = sound_->Gaps();
  }

  receiver::VirtualReceiver& receiver_;
  RadioLine& line_;
  SoundOutput* sound_;
  receiver::JsonLines* log_;
  std::chrono::steady_clock::time_point start_;
  std::int64_t lostFrames_ = 0;
  int gaps_ = 0;
  bool connected_ = false;
  bool heard_ = false;
};

void CatchSignals() {
  struct sigaction action {};
  action.sa_handler = AskToStop;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
  action.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &action, nullptr);
}

}  // namespace

int RunRadio(const RadioOptions& options) {
  receiver::LineUp lineUp;
  std::string error = ChooseLineUp(options, lineUp);
  if (!error.empty()) return Fail(error, 1);
  const int tuned = options.Receiver.Model.Tuned;
  if (tuned != 0 && lineUp.Find(tuned) == nullptr) {
    return Fail(fmt::format("--tuned: the line-up has no channel {}", tuned), 2);
  }

  std::ofstream logFile;
  std::unique_ptr<receiver::JsonLines> log;
  if (options.JsonFile == "-") {
    log = std::make_unique<receiver::JsonLines>(std::cout);
  } else if (!options.JsonFile.empty()) {
    logFile.open(options.JsonFile);
    if (!logFile) return Fail(fmt::format("{} cannot be written", options.JsonFile), 1);
    log = std::make_unique<receiver::JsonLines>(logFile);
  }

  receiver::VirtualReceiver receiver(std::move(lineUp), options.Receiver, log.get());
  if (!options.ReplayFile.empty()) {
    std::string trace;
    if (!ReadFile(options.ReplayFile, trace))
      return Fail(fmt::format("{} cannot be read", options.ReplayFile), 1);
    receiver.Replay(receiver::TraceReplay(trace));
  }

  CatchSignals();
  std::unique_ptr<SoundOutput> sound;
  if (options.Sound == SoundTarget::Pipe) {
    auto pipe = std::make_unique<PipeOutput>(options.SoundPlace, options.SampleRate);
    if (!pipe->Error().empty()) return Fail(pipe->Error(), 1);
    sound = std::move(pipe);
  } else if (options.Sound == SoundTarget::Pulse) {
    sound = std::make_unique<PulseOutput>(options.SoundPlace, options.SampleRate);
  }
  RadioLine line;
  error = line.Open(options.Link);
  if (!error.empty()) return Fail(error, 1);

  Running running(receiver, line, sound.get(), log.get());
  std::cout << line.Path() << std::endl;
  running.Start(options);
  while (stopAsked == 0 && (!options.Duration || running.Now() < *options.Duration)) {
    running.Step();
    running.Rest();
  }
  running.Stop();
  return 0;
}

}  // namespace kestrune::radio_program
