#include "recorder/Hints.h"

#include <algorithm>

#include "base/Text.h"

namespace kestrune::recorder {

Hints::Hints(State& state, const radio::Channels& channels, const schedule::Restrictions& restrictions,
             const base::EventLoop& loop)
    : state_(state), hints_(state.Hints), channels_(channels), restrictions_(restrictions), loop_(loop) {}

void Hints::Heard(const radio::ChannelInfo& info) {
  if (info.Channel < 1 || static_cast<std::size_t>(info.Channel) >= entries_.size()) return;
  Entry& entry = entries_.at(static_cast<std::size_t>(info.Channel));
  const Milliseconds now = loop_.BootNow();
  const bool inTime = entry.Known && now - entry.Heard <= kLongestGap;
  const bool same = entry.Known && info.Artist == entry.Artist && info.Song == entry.Song;
  entry.Known = true;
  entry.Heard = now;
  if (same) {
    if (info.Artist == entry.Last.Artist && info.Song == entry.Last.Song) entry.LastHeard = now;
    return;
  }
  entry.Artist = info.Artist;
  entry.Song = info.Song;
  End(info.Channel);
  if (inTime && IsWanted(info)) Raise(info, entry);
}

bool Hints::IsWanted(const radio::ChannelInfo& info) const {
  if (!state_.Settings.Hints || info.Channel == state_.Radio.ChannelNumber) return false;
  if (channels_.Table().ChannelIndex(info.Channel) == 0) return false;
  if (base::Trim(info.Artist).empty() && base::Trim(info.Song).empty()) return false;
  return restrictions_.IsInGrabList(info.Artist, info.Song) &&
         !restrictions_.IsInKillList(info.Artist, info.Song);
}

void Hints::Raise(const radio::ChannelInfo& info, Entry& entry) {
  const Milliseconds now = loop_.BootNow();
  const bool again = entry.Last.Number != 0 && entry.Last.Artist == info.Artist &&
                     entry.Last.Song == info.Song && now - entry.LastHeard <= kSamePlay;
  if (!again) {
    entry.Last = {.Number = ++count_,
                  .Began = loop_.Now(),
                  .Channel = info.Channel,
                  .Station = info.Station,
                  .Artist = info.Artist,
                  .Song = info.Song,
                  .Since = now};
  }
  entry.LastHeard = now;
  hints_.insert(hints_.begin(), entry.Last);
  hints_.resize(std::min(hints_.size(), kMost));
}

void Hints::Follow() {
  if (!state_.Link.Up()) return Forget();
  if (!state_.Settings.Hints) hints_.clear();
  if (hints_.empty()) return;
  End(state_.Radio.ChannelNumber);
  for (Hint& hint : hints_) hint.Fresh = loop_.BootNow() - hint.Since < kFresh;
}

void Hints::Forget() {
  hints_.clear();
  for (Entry& entry : entries_) entry.Known = false;
}

void Hints::End(std::int16_t channel) {
  hints_.erase(std::remove_if(hints_.begin(), hints_.end(),
                              [channel](const Hint& hint) { return hint.Channel == channel; }),
               hints_.end());
}

}  // namespace kestrune::recorder
