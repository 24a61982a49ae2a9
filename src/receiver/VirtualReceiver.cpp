#include "receiver/VirtualReceiver.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "receiver/JoinShape.h"

namespace kestrune::receiver {
namespace {

/// What a receiver does with a command that is wrong.
std::string_view Reaction(const std::string& faultOfTrailer, const std::string& payload) {
  constexpr char kSelect = 0x10;
  return faultOfTrailer.empty() && payload.front() == kSelect ? "refused" : "ignored";
}

}  // namespace

VirtualReceiver::VirtualReceiver(LineUp lineUp, const ReceiverOptions& options, JsonLines* log)
    : model_(std::move(lineUp), options.Model), options_(options), log_(log), pacer_(options.Baud) {
  for (const MisbehaviourWish& wish : options_.Misbehaviours) {
    auto misbehaviour = MakeMisbehaviour(wish, options_.Seed);
    if (misbehaviour != nullptr) misbehaviours_.push_back(std::move(misbehaviour));
  }
}

void VirtualReceiver::Replay(TraceReplay trace) {
  replay_ = std::move(trace);
  replayStart_.reset();
}

void VirtualReceiver::Receive(Milliseconds now, std::string_view bytes) {
  if (bytes.empty()) return;
  if (replay_ && !replayStart_) replayStart_ = now;
  RenderUntil(now);
  if (!supplied_) return;
  for (const Command& command : reader_.Feed(bytes)) Answer(now, command);
}

void VirtualReceiver::CutPower(Milliseconds now) {
  RenderUntil(now);
  supplied_ = false;
  model_.SetPower(false);
  reader_ = {};
  pacer_.Clear();
}

void VirtualReceiver::RestorePower(Milliseconds now, bool on, int channel) {
  RenderUntil(now);
  supplied_ = true;
  model_.SetPower(on);
  model_.SetMuted(false);
  model_.SetTunedChannel(channel);
}

void VirtualReceiver::Answer(Milliseconds now, const Command& command) {
  const std::string faultOfTrailer = FaultOfTrailer(command);
  const std::string fault = faultOfTrailer.empty() ? FaultOfPayload(command.Payload) : faultOfTrailer;
  if (log_ != nullptr) {
    log_->Write(now, "command", {{"payload", HexOf(command.Payload)}});
    if (!fault.empty()) {
      log_->Write(now, Reaction(faultOfTrailer, command.Payload),
                  {{"payload", HexOf(command.Payload)}, {"why", fault}});
    }
  }
  if (replay_ || !faultOfTrailer.empty()) return;
  const bool powered = model_.PoweredOn();
  const bool muted = model_.Muted();
  const int tuned = model_.TunedChannel();
  std::vector<int> strikes;
  for (const auto& misbehaviour : misbehaviours_) strikes.push_back(misbehaviour->Strikes());

  const std::vector<Sending> sendings = AnswerOf(now, command.Payload);
  Microseconds at = std::max<Microseconds>(now + options_.ReplyDelay, pacer_.FreeAt());
  for (const Sending& sending : sendings) {
    at += sending.Delay;
    pacer_.Queue(at, sending.Bytes);
    at = pacer_.FreeAt();
  }

  if (log_ == nullptr) return;
  LogState(now, powered, muted, tuned);
  for (std::size_t i = 0; i < misbehaviours_.size(); ++i) {
    if (misbehaviours_[i]->Strikes() > strikes[i]) {
      log_->Write(now, "misbehaviour", {{"name", misbehaviours_[i]->Name()}});
    }
  }
  for (const Sending& sending : sendings) log_->Write(now, "answer", {{"bytes", HexOf(sending.Bytes)}});
}

std::vector<Sending> VirtualReceiver::AnswerOf(Milliseconds now, const std::string& payload) {
  bool reaches = true;
  for (const auto& misbehaviour : misbehaviours_) {
    if (!misbehaviour->BeforeAnswer(now, payload, model_)) reaches = false;
  }
  if (!reaches) return {};
  std::vector<Sending> sendings;
  for (std::string& frame : model_.Answer(now, payload)) {
    sendings.push_back({std::move(frame), Milliseconds(0)});
  }
  for (const auto& misbehaviour : misbehaviours_) misbehaviour->AfterAnswer(now, sendings);
  return sendings;
}

void VirtualReceiver::LogState(Milliseconds now, bool powered, bool muted, int tuned) {
  if (model_.PoweredOn() != powered) log_->Write(now, "power", {{"on", model_.PoweredOn()}});
  if (model_.Muted() != muted) log_->Write(now, "mute", {{"on", model_.Muted()}});
  if (model_.TunedChannel() != tuned) log_->Write(now, "tuned", {{"channel", model_.TunedChannel()}});
}

std::string VirtualReceiver::Send(Microseconds now) {
  if (replay_ && replayStart_) {
    const auto sinceStart = std::chrono::floor<Milliseconds>(now) - *replayStart_;
    for (const std::string& frame : replay_->Take(sinceStart)) {
      pacer_.Queue(now, frame);
      if (log_ != nullptr) log_->Write(*replayStart_ + sinceStart, "answer", {{"bytes", HexOf(frame)}});
    }
  }
  return pacer_.Take(now);
}

std::optional<VirtualReceiver::Microseconds> VirtualReceiver::NextByte() const {
  std::optional<Microseconds> next = pacer_.NextByte();
  if (replay_ && replayStart_ && replay_->Next()) {
    const Microseconds due = *replayStart_ + *replay_->Next();
    next = next ? std::min(*next, due) : due;
  }
  return next;
}

void VirtualReceiver::StartSound(Milliseconds now, SignalKind kind, int sampleRate) {
  sound_.emplace(model_.Stations(), kind, sampleRate);
  rendered_.clear();
  framesTaken_ = 0;
  firstFrame_ = nextFrame_ = sound_->FramesUntil(now);
}

void VirtualReceiver::RenderUntil(Milliseconds now) {
  if (!sound_) return;
  const std::int64_t end = sound_->FramesUntil(now);
  if (end <= nextFrame_) return;
  const std::size_t before = rendered_.size();
  rendered_.resize(before + static_cast<std::size_t>(end - nextFrame_) * 2);
  sound_->Render(model_.AudibleChannel(), nextFrame_, std::span(rendered_).subspan(before));
  nextFrame_ = end;
}

std::vector<std::int16_t> VirtualReceiver::TakeSound(Milliseconds now) {
  RenderUntil(now);
  framesTaken_ += static_cast<std::int64_t>(rendered_.size() / 2);
  return std::exchange(rendered_, {});
}

void VirtualReceiver::LogSong(Milliseconds now, std::string_view event, const Playing& playing) {
  nlohmann::ordered_json fields = {{"channel", model_.TunedChannel()},
                                   {"artist", playing.What->Artist},
                                   {"title", playing.What->Title},
                                   {"start", static_cast<double>(playing.Start.count()) / 1000},
                                   {"end", static_cast<double>(playing.End.count()) / 1000}};
  if (sound_) fields["start_frame"] = sound_->FramesUntil(playing.Start);
  if (sound_ && sound_->Kind() == SignalKind::Music) {
    const SongPlace place = sound_->PlaceAt(model_.TunedChannel(), sound_->FramesUntil(playing.Start));
    const double quiet = ShapeOf(*place.Before).QuietBefore() * sound_->SampleRate();
    fields["join"] = NameOf(place.Before->Join);
    fields["quiet_frame"] = place.StartFrame - std::llround(quiet);
  }
  log_->Write(now, event, fields);
}

void VirtualReceiver::Observe(Milliseconds now) {
  if (log_ == nullptr) return;
  const Station* const station = Stations().Find(model_.TunedChannel());
  if (station == nullptr) return;
  if (std::exchange(observedChannel_, station->Number) != station->Number) {
    observedText_.reset();
    observedSound_.reset();
  }
  const Playing text = TextAt(*station, now, model_.Lead());
  if (text.What == nullptr) return;
  if (std::exchange(observedText_, text.Start) != text.Start) LogSong(now, "text", text);
  const Playing heard = PlayingAt(*station, now);
  if (std::exchange(observedSound_, heard.Start) != heard.Start) LogSong(now, "sound", heard);
}

}  // namespace kestrune::receiver
