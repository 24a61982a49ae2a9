#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/EventLoop.h"
#include "radio/channels/Channels.h"
#include "radio/line/ChannelInfo.h"
#include "recorder/Hint.h"
#include "recorder/State.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::recorder {

/// Notices the songs of the Grab lists that begin on other channels, from the replies that come anyway.
///
/// 1. A beginning is a change of a channel's text that was seen. The first reply about a channel is none, nor the first
///    one after an outage of the radio or after five minutes without a word of it: it may have begun long before.
/// 2. A song that is on a Kill list too is no hint, nor one of the tuned channel or of one that the radio does not list.
/// 3. A song that comes back on the same channel within ten minutes, as after a line of advertising, is the same hint.
/// 4. A hint ends when the text of its channel changes or the channel is tuned, with an outage, and when the setting
///    `Hints` is switched off. The newest kMost are kept.
class Hints {
 public:
  static constexpr std::size_t kMost = 5;
  static constexpr std::chrono::seconds kLongestGap{300};
  static constexpr std::chrono::seconds kSamePlay{600};
  static constexpr std::chrono::seconds kFresh{20};

  /// All must outlive the object, which alone writes the state's hints.
  Hints(State& state, const radio::Channels& channels, const schedule::Restrictions& restrictions,
        const base::EventLoop& loop);

  /// A channel info reply has come.
  void Heard(const radio::ChannelInfo& info);
  /// What follows from the rest of the state. Cheap; to be called often.
  void Follow();

 private:
  using Milliseconds = std::chrono::milliseconds;

  /// What is known of a channel.
  struct Entry {
    bool Known = false;
    std::string Artist;
    std::string Song;
    Milliseconds Heard{0};
    Hint Last;  // its last hint; number 0: none
    Milliseconds LastHeard{0};
  };

  void Forget();
  void End(std::int16_t channel);
  [[nodiscard]] bool IsWanted(const radio::ChannelInfo& info) const;
  void Raise(const radio::ChannelInfo& info, Entry& entry);

  State& state_;
  std::vector<Hint>& hints_;
  const radio::Channels& channels_;
  const schedule::Restrictions& restrictions_;
  const base::EventLoop& loop_;
  std::array<Entry, 256> entries_;
  std::int64_t count_ = 0;
};

}  // namespace kestrune::recorder
