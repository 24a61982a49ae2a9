#include "presenters/InputTrial.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include <fmt/format.h>

namespace kestrune::presenters {
namespace {

constexpr std::chrono::milliseconds kLook{100};
// Numbers of looks.
constexpr int kNothing = 20;
constexpr int kSilence = 30;
constexpr int kClippedShown = 20;
/// What an open input with nothing connected stays below.
constexpr float kSilentDecibels = -50;
/// A recorder that is not served for so long forgets its sound too.
constexpr std::size_t kMostHeard = 2U * 48000 * 30;

float Decibels(float height) {
  return (1 - height) * LevelMeter::kFloorDecibels;
}

bool Usable(const platform::PcmFormat& format) {
  return format.SampleRate > 0 && (format.Channels == 1 || format.Channels == 2);
}

}  // namespace

InputTrial::InputTrial(Ports ports)
    : ports_(std::move(ports)),
      test_(ports_.Test),
      tmrLook_(ports_.Loop.MakeTimer(kLook, [this] { Look(); })) {}

InputTrial::~InputTrial() {
  Unload();
}

void InputTrial::Load() {
  loaded_ = true;
  tmrLook_->SetEnabled(true);
  Look();
}

void InputTrial::Unload() {
  if (!loaded_) return;
  loaded_ = false;
  tmrLook_->SetEnabled(false);
  ports_.Listener.Close();
  test_.Clear();
  way_ = Way::None;
  heardId_.clear();
  heard_.clear();
  controls_ = {};
}

void InputTrial::Choose(const std::string& id) {
  if (id == id_) return;
  id_ = id;
  if (loaded_) Look();
}

void InputTrial::Hear(std::span<const std::int16_t> block, const platform::PcmFormat& format) {
  if (!loaded_ || way_ != Way::Captured) return;
  if (heardFormat_ != format || heard_.size() > kMostHeard) heard_.clear();
  heardFormat_ = format;
  heard_.insert(heard_.end(), block.begin(), block.end());
}

void InputTrial::cmdTest() {
  if (!controls_.cmdTestEnabled) return;
  sinceSound_ = 0;
  test_.Begin(ports_.Format(), ports_.Extension());
  if (test_.Running() && way_ == Way::Captured && test_.Format() != heardFormat_) {
    test_.GiveUp("The recorder takes this format from the next song on; test it then.");
  }
  ShowTest();
}

void InputTrial::Look() {
  Follow();
  TakeSound();
  ShowLevel();
  ShowTest();
}

InputTrial::Way InputTrial::WayTo(const std::string& id) const {
  if (id.empty()) return Way::None;
  const std::string captured = ports_.Captured();
  if (ports_.Listener.Shares() || captured.empty()) return Way::Listener;
  if (captured == id) return Way::Captured;
  return ports_.Configured() == id ? Way::Later : Way::Listener;
}

void InputTrial::Follow() {
  const Way way = WayTo(id_);
  platform::PcmFormat format = platform::FormatValues(ports_.Format());
  if (!Usable(format)) format = {};
  const bool formatCounts = way == Way::Listener && format != format_;
  if (way == way_ && id_ == heardId_ && !formatCounts) return;
  if (test_.Running()) test_.GiveUp("Broken off: the input or its format has changed.");
  ports_.Listener.Close();
  way_ = way;
  heardId_ = id_;
  format_ = format;
  heard_.clear();
  meter_ = {};
  controls_.Level = 0;
  sinceSound_ = sinceLoud_ = 0;
  sinceClipped_ = kClippedShown;
  opened_ = way == Way::Listener ? ports_.Listener.Open(id_, format_) : base::Result::Done();
}

void InputTrial::TakeSound() {
  std::vector<std::int16_t> samples;
  platform::PcmFormat format = format_;
  if (way_ == Way::Listener) samples = ports_.Listener.Take();
  if (way_ == Way::Captured) {
    samples = std::exchange(heard_, {});
    format = heardFormat_;
  }
  ++sinceSound_;
  ++sinceLoud_;
  ++sinceClipped_;
  if (!samples.empty()) {
    opened_ = base::Result::Done();
    sinceSound_ = 0;
    meter_.Draw(samples, format);
    const auto& channels = meter_.Channels();
    controls_.Level = 0;
    for (std::size_t c = 0; c < meter_.ChannelCount(); ++c) {
      controls_.Level = std::max(controls_.Level, channels.at(c).Peak);
      if (channels.at(c).Clipped) sinceClipped_ = 0;
    }
    if (Decibels(controls_.Level) > kSilentDecibels) sinceLoud_ = 0;
  }
  LookAfterTest(!samples.empty());
  test_.Take(samples);
}

void InputTrial::LookAfterTest(bool heard) {
  if (!test_.Running()) return;
  if (ports_.Recording()) return test_.GiveUp("Broken off: a recording has begun.");
  if (!heard && sinceSound_ > kSilence)
    test_.GiveUp("Nothing came from this input, so nothing was recorded.");
}

void InputTrial::ShowLevel() {
  if (sinceSound_ > kNothing || way_ == Way::None || way_ == Way::Later || !opened_) controls_.Level = 0;
  controls_.Doubtful = true;
  if (way_ == Way::None) {
    controls_.lblLevel = "Choose the input that the radio is connected to.";
  } else if (way_ == Way::Later) {
    controls_.lblLevel = "This input is used from the next song on.";
    controls_.Doubtful = false;
  } else if (!opened_) {
    controls_.lblLevel = fmt::format("This input cannot be opened: {}.", opened_.Cause());
  } else if (sinceSound_ > kNothing) {
    controls_.lblLevel = "Nothing comes from this input.";
  } else if (sinceLoud_ > kSilence) {
    controls_.lblLevel = "Silence: if the radio plays, it is on another input.";
  } else if (sinceClipped_ < kClippedShown) {
    controls_.lblLevel = "Too loud: turn this input down.";
  } else {
    controls_.lblLevel = fmt::format("{:.0f} dB", std::round(Decibels(controls_.Level)));
    controls_.Doubtful = false;
  }
}

void InputTrial::ShowTest() {
  const bool recording = ports_.Recording();
  const bool sound = (way_ == Way::Listener || way_ == Way::Captured) && opened_.Ok();
  controls_.cmdTestEnabled = sound && !recording && !test_.Running();
  controls_.TestPart = test_.Part();
  controls_.lblTest = test_.Message();
  if (recording && controls_.lblTest.empty()) {
    controls_.lblTest = "Something is being recorded; test when that is over.";
  }
}

}  // namespace kestrune::presenters
