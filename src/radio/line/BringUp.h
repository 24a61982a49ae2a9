#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "base/Result.h"
#include "base/RunState.h"
#include "radio/line/PortTrial.h"
#include "radio/line/RadioSearch.h"
#include "radio/line/RadioSession.h"
#include "radio/line/SearchProgress.h"

namespace kestrune::radio {

/// Brings the radio up: opens its port and powers it on, asks for its identifier, tunes and unmutes it.
///
/// The steps can run again at any time, in this order, also on a line that is open or has died. Each takes as
/// long as its waits and serves events meanwhile. Once ShuttingDown is set a step ends with its next wait, and
/// its result means nothing.
class BringUp {
 public:
  /// Called at the beginning of each step of a search. It must not wait.
  using Stepped = std::function<void(const SearchProgress& progress)>;

  /// Some adapters reset the radio when their modem lines rise, and it is deaf while it starts.
  static constexpr std::chrono::milliseconds kAfterOpening{1500};

  /// All must outlive this object.
  BringUp(RadioSession& session, base::EventLoop& loop, const base::RunState& run, base::Journal& journal);

  /// Tries the known port twice (0: none is known), then all ports up to four times, and leaves the port with the
  /// radio open. A failed try of the known port costs up to 6.7 s, the search 5.7 s for each device without a
  /// radio. Each device without a radio gets one line in the log.
  [[nodiscard]] RadioSearch FindRadio(
      std::int16_t knownPort, const Stepped& stepped = [](const SearchProgress&) {});

  /// Asks for the identifier up to ten times, 17 s at most; empty if none came; the radio works all the same.
  [[nodiscard]] std::string ReadRadioID();

  /// Tunes the radio to a channel and unmutes it, 3 s at most. Fails if the radio has confirmed neither the
  /// channel nor any mute command; what it did is not known then.
  base::Result Tune(std::int16_t channel);

  /// Gives the radio four seconds to settle on its channel: eight times half a second, `round` and what is due.
  void Settle(const std::function<void()>& round);

 private:
  /// A search on its way: what it has come to, and who is told of its steps.
  struct Search {
    const Stepped& Tell;
    SearchProgress Progress = {};
    RadioSearch Result = {};
  };

  [[nodiscard]] bool TryKnownPort(std::int16_t port, Search& search);
  void SearchPorts(Search& search);
  void Step(std::int16_t port, Search& search);
  [[nodiscard]] static int StepsBegun(const Search& search);
  [[nodiscard]] int CountDevices();
  void Keep(PortTrial trial, RadioSearch& search);

  RadioSession& session_;
  base::EventLoop& loop_;
  const base::RunState& run_;
  base::Journal& journal_;
};

}  // namespace kestrune::radio
