#include "radio/line/BringUp.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <fmt/format.h>

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

constexpr int kKnownPortTries = 2;
constexpr int kSearches = 4;
constexpr int kIdentifierTries = 10;
constexpr int kSettleRounds = 8;
constexpr auto kIdentifierPause = 200ms;
constexpr auto kSettleRound = 500ms;
// What a device without a radio costs, for the progress alone.
constexpr auto kPowerOnLasts = 5200ms;
constexpr auto kSearchLasts = 500ms + kPowerOnLasts;

}  // namespace

BringUp::BringUp(RadioSession& session, base::EventLoop& loop, const base::RunState& run,
                 base::Journal& journal)
    : session_(session), loop_(loop), run_(run), journal_(journal) {}

RadioSearch BringUp::FindRadio(std::int16_t knownPort, const Stepped& stepped) {
  Search search{.Tell = stepped};
  if (knownPort != 0 && TryKnownPort(knownPort, search)) {
    search.Result.Port = knownPort;
  } else {
    SearchPorts(search);
  }
  return std::move(search.Result);
}

bool BringUp::TryKnownPort(std::int16_t port, Search& search) {
  journal_.DebugPrint(fmt::format("Trying port {}", port));
  search.Progress.Rounds = kKnownPortTries;
  search.Progress.Longest = kAfterOpening + kPowerOnLasts;
  search.Progress.Steps = kSearches * CountDevices() + (session_.PortExists(port) ? kKnownPortTries : 0);
  for (int attempt = 1; attempt <= kKnownPortTries; ++attempt) {
    journal_.DebugPrint(fmt::format("Try {}", attempt));
    search.Progress.Round = attempt;
    Step(port, search);
    PortTrial trial = session_.TryOpen(port);
    if (trial.Why == PortTrial::Reason::NoAnswer) {
      loop_.Sleep(kAfterOpening);
      loop_.PumpEvents();
      if (run_.ShuttingDown) return false;
      if (session_.pcrPowerOn(true)) return true;
      if (run_.ShuttingDown) return false;
    }
    Keep(std::move(trial), search.Result);
  }
  session_.SetPortOpen(false);
  return false;
}

void BringUp::SearchPorts(Search& search) {
  search.Progress.Searching = true;
  search.Progress.Rounds = kSearches;
  search.Progress.Longest = kSearchLasts;
  for (int attempt = 1; attempt <= kSearches && !run_.ShuttingDown; ++attempt) {
    journal_.DebugPrint(fmt::format("Looking for port try {}", attempt));
    search.Progress.Round = attempt;
    // Devices come and go, and those of the rounds to come are taken to be those of now.
    search.Progress.Steps = StepsBegun(search) + (kSearches - attempt + 1) * CountDevices();
    session_.pcrFindPort([this, &search](std::int16_t port) { Step(port, search); },
                         [this, &search](PortTrial trial) { Keep(std::move(trial), search.Result); });
    if (!session_.pcrPortOpen()) continue;
    search.Result.Port = session_.pcrCOMPort();
    return;
  }
}

int BringUp::StepsBegun(const Search& search) {
  return search.Progress.Port == 0 ? 0 : search.Progress.StepsDone + 1;
}

// A port without a device is tried too, but takes no time.
void BringUp::Step(std::int16_t port, Search& search) {
  if (!session_.PortExists(port)) return;
  SearchProgress& progress = search.Progress;
  progress.StepsDone = StepsBegun(search);
  progress.Steps = std::max(progress.Steps, progress.StepsDone + 1);
  progress.Port = port;
  progress.Device = session_.DeviceOf(port);
  progress.Began = loop_.SteadyNow();
  search.Tell(progress);
}

int BringUp::CountDevices() {
  int count = 0;
  for (std::int16_t number = 1; number <= RadioSession::kLastPort; ++number) {
    if (session_.PortExists(number)) ++count;
  }
  return count;
}

// A reason that repeats itself with each try is logged once.
void BringUp::Keep(PortTrial trial, RadioSearch& search) {
  if (run_.ShuttingDown) return;
  const bool known = std::any_of(search.Failed.begin(), search.Failed.end(), [&trial](const PortTrial& one) {
    return one.Port == trial.Port && one.Cause == trial.Cause;
  });
  if (!known && trial.Why != PortTrial::Reason::NoDevice) {
    journal_.DoLog(LineOf(trial));
  }
  search.Failed.push_back(std::move(trial));
}

std::string BringUp::ReadRadioID() {
  for (int attempt = 0; attempt < kIdentifierTries && !run_.ShuttingDown; ++attempt) {
    std::string identifier = session_.pcrRadioID();
    if (!identifier.empty()) return identifier;
    loop_.Sleep(kIdentifierPause);
    loop_.PumpEvents();
  }
  return {};
}

base::Result BringUp::Tune(std::int16_t channel) {
  const bool tuned = session_.pcrSelectChannel(channel);
  const bool heard = session_.pcrMute(false);
  if (!tuned) return base::Result::Failed(fmt::format("the radio has not confirmed channel {}", channel));
  if (!heard) return base::Result::Failed("the radio has not confirmed that it sounds");
  return base::Result::Done();
}

void BringUp::Settle(const std::function<void()>& round) {
  for (int count = 0; count < kSettleRounds && !run_.ShuttingDown; ++count) {
    loop_.Sleep(kSettleRound);
    round();
    loop_.PumpEvents();
  }
}

}  // namespace kestrune::radio
