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

}  // namespace

BringUp::BringUp(RadioSession& session, base::EventLoop& loop, const base::RunState& run,
                 base::Journal& journal)
    : session_(session), loop_(loop), run_(run), journal_(journal) {}

RadioSearch BringUp::FindRadio(std::int16_t knownPort) {
  RadioSearch search;
  if (knownPort != 0 && TryKnownPort(knownPort, search)) {
    search.Port = knownPort;
  } else {
    SearchPorts(search);
  }
  return search;
}

bool BringUp::TryKnownPort(std::int16_t port, RadioSearch& search) {
  journal_.DebugPrint(fmt::format("Trying port {}", port));
  for (int attempt = 1; attempt <= kKnownPortTries; ++attempt) {
    journal_.DebugPrint(fmt::format("Try {}", attempt));
    PortTrial trial = session_.TryOpen(port);
    if (trial.Why == PortTrial::Reason::NoAnswer) {
      loop_.Sleep(kAfterOpening);
      loop_.PumpEvents();
      if (run_.ShuttingDown) return false;
      if (session_.pcrPowerOn(true)) return true;
      if (run_.ShuttingDown) return false;
    }
    Keep(std::move(trial), search);
  }
  session_.SetPortOpen(false);
  return false;
}

void BringUp::SearchPorts(RadioSearch& search) {
  for (int attempt = 1; attempt <= kSearches && !run_.ShuttingDown; ++attempt) {
    journal_.DebugPrint(fmt::format("Looking for port try {}", attempt));
    session_.pcrFindPort([this, &search](PortTrial trial) { Keep(std::move(trial), search); });
    if (!session_.pcrPortOpen()) continue;
    search.Port = session_.pcrCOMPort();
    return;
  }
}

// A reason that repeats itself with each try is logged once.
void BringUp::Keep(PortTrial trial, RadioSearch& search) {
  if (run_.ShuttingDown) return;
  const bool known = std::any_of(search.Failed.begin(), search.Failed.end(), [&trial](const PortTrial& one) {
    return one.Port == trial.Port && one.Cause == trial.Cause;
  });
  if (!known && trial.Why != PortTrial::Reason::NoDevice) {
    journal_.DoLog(fmt::format("No radio on port {}: {}", trial.Port, trial.Cause));
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
