#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "base/DateValue.h"

namespace kestrune::radio {

enum class LinkState {
  Up,      ///< the radio answers
  Silent,  ///< the line is open, and nothing answers
  Off,     ///< the radio answers that it is switched off
  Lost,    ///< the line has been hung up, or another radio answers there
};

/// How the link to the radio is.
struct LinkStatus {
  LinkState State = LinkState::Up;
  /// Why it is not up, as base::Result has it; empty while it is.
  std::string Cause = {};
  /// Where the radio is, or was before it went away: 1 to 16.
  std::int16_t Port = 0;
  /// Since when it has not been up, on the wall clock; without meaning while it is.
  base::DateValue Since = {};
  /// Why the radio may be on another channel although the link is up, as base::Result has it; empty if there is no
  /// doubt worth a word.
  std::string Doubt = {};

  [[nodiscard]] bool Up() const { return State == LinkState::Up; }
};

/// What the link is to keep the radio at. Its owner may be asked at any time.
struct LinkOrders {
  bool Watch = true;         ///< false: nothing is noticed and nothing done
  std::int16_t Channel = 0;  ///< 1 to 255; 0: none, whatever the radio is on is right
  bool Muted = false;
  bool InEvent = false;  ///< an event of the schedule runs: the radio is not left where its user took it
};

/// The lines of the log for the beginning and the end of an outage. Time away: "0:23" are seconds, "1:02:03" with
/// hours.
[[nodiscard]] std::string RadioLostLine(const LinkStatus& status);
[[nodiscard]] std::string RadioFoundLine(const LinkStatus& status, std::chrono::milliseconds away);

}  // namespace kestrune::radio
