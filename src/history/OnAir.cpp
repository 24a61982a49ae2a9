#include "history/OnAir.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "base/Text.h"

namespace kestrune::history {
namespace {

/// More than a radio ever sends; what is longer is cut.
constexpr std::size_t kLongestText = 255;

std::string Kept(std::string_view text) {
  return std::string(base::TruncateUtf8(text, kLongestText));
}

bool IsSame(std::string_view kept, std::string_view text) {
  return kept == (text.size() > kLongestText ? base::TruncateUtf8(text, kLongestText) : text);
}

}  // namespace

std::optional<platform::HistoryPlay> OnAir::Heard(std::int16_t channel, const Playing& playing,
                                                  base::DateValue now) {
  if (channel < 1 || static_cast<std::size_t>(channel) >= entries_.size()) return std::nullopt;
  Entry& entry = entries_.at(static_cast<std::size_t>(channel));
  const bool inTime = base::SecondsBetween(entry.Play.To, now) <= kLongestGapSeconds;
  if (entry.Playing && inTime && IsSame(entry.Play.Artist, playing.Artist) &&
      IsSame(entry.Play.Title, playing.Title)) {
    entry.Play.To = std::max(entry.Play.To, now);
    return std::nullopt;
  }
  std::optional<platform::HistoryPlay> ended;
  if (entry.Playing) {
    // It lasted until it was heard to have changed; never less than nothing, if the clock was set back.
    if (inTime) entry.Play.To = std::max(entry.Play.To, now);
    ended = std::move(entry.Play);
  }
  entry.Playing = !playing.Artist.empty() || !playing.Title.empty();
  entry.Play = {};
  if (entry.Playing) {
    entry.Play = {.Channel = channel,
                  .Station = Kept(playing.Station),
                  .Genre = Kept(playing.Genre),
                  .Artist = Kept(playing.Artist),
                  .Title = Kept(playing.Title),
                  .From = now,
                  .To = now};
  }
  return ended;
}

std::vector<platform::HistoryPlay> OnAir::End() {
  std::vector<platform::HistoryPlay> ended;
  for (Entry& entry : entries_) {
    if (entry.Playing) ended.push_back(std::move(entry.Play));
    entry = {};
  }
  return ended;
}

}  // namespace kestrune::history
