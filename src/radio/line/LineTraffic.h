#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "radio/line/Replies.h"

namespace kestrune::radio {

/// What is known of the channel that the radio is on.
enum class Tuning {
  NeverAsked,  ///< no channel has been selected yet
  Asked,       ///< the last select has no reply yet
  Confirmed,   ///< the radio has confirmed the last select
  Refused,     ///< the radio has refused the last select
  ByUser,      ///< the radio reports a channel that nobody asked it for
  Doubtful,    ///< it may have lost its power since: what it confirmed counts no more
};

/// What has passed over the line, as far as it shows how the radio is. The session feeds it; it sends nothing, and
/// the values that the session keeps for the program do not depend on it.
class LineTraffic {
 public:
  using Milliseconds = std::chrono::milliseconds;

  /// A frame has been written. `now` is the steady clock's, here and below.
  void Sent(std::string_view frame, Milliseconds now);
  /// A frame has arrived. Noise, and replies of types that the program does not know, change nothing.
  void Received(std::string_view frame, Milliseconds now);
  /// The line has been opened: the counts below begin anew, and the tuning is doubtful.
  void LineOpened(Milliseconds now);

  /// Requests since the last reply of any kind, setup steps not counted, since nothing is awaited for them.
  [[nodiscard]] int Unanswered() const { return unanswered_; }
  /// Refusals "powered off" without another reply in between.
  [[nodiscard]] int OffRefusals() const { return offRefusals_; }
  /// When the last reply came that was no such refusal; before the first one, when the line was opened.
  [[nodiscard]] Milliseconds LastReply() const { return lastReply_; }
  /// How often in this run replies have come again after at least two requests and two and a half
  /// seconds without any. A radio that loses its power for a moment looks like that from here, and so do two replies
  /// lost in a row.
  [[nodiscard]] std::uint32_t Gaps() const { return gaps_; }
  /// How many replies of a type have come in this run.
  [[nodiscard]] std::uint32_t Count(ReplyType type) const { return counts_[static_cast<std::size_t>(type)]; }
  /// The identifier that a radio reported last, empty if none has.
  [[nodiscard]] const std::string& Identifier() const { return identifier_; }

  [[nodiscard]] radio::Tuning Tuning() const { return tuning_; }
  /// The channel of the last reply that reported one; 0 before the first.
  [[nodiscard]] std::int16_t Channel() const { return channel_; }
  /// Grows with each select.
  [[nodiscard]] std::uint32_t Selects() const { return selects_; }
  /// What the radio has confirmed counts no more.
  void DoubtTuning();

 private:
  void ReceivedChannelSet(std::string_view frame);

  std::array<std::uint32_t, 256> counts_{};
  int unanswered_ = 0;
  int offRefusals_ = 0;
  std::uint32_t gaps_ = 0;
  Milliseconds firstUnanswered_{0};
  Milliseconds lastReply_{0};
  std::string identifier_;

  radio::Tuning tuning_ = Tuning::NeverAsked;
  std::int16_t channel_ = 0;
  std::uint32_t selects_ = 0;
  std::deque<std::int16_t> asked_;  // channels selected and not answered, oldest first
};

}  // namespace kestrune::radio
