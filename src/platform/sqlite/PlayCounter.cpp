#include "platform/sqlite/PlayCounter.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

#include "base/Text.h"
#include "platform/sqlite/HistorySchema.h"

namespace kestrune::platform {
namespace {

bool ComesFirst(const PlayCount& a, const PlayCount& b) {
  return std::tie(b.Plays, b.Last, a.Artist, a.Title) < std::tie(a.Plays, a.Last, b.Artist, b.Title);
}

}  // namespace

PlayCounter::PlayCounter(const MostPlayedSearch& search) : search_(search) {
  if (search_.Since) place_.Began = HistorySecond(*search_.Since);
}

PlayCounter::Piece PlayCounter::CountOn(SqliteConnection& database) {
  return counted_ ? PutTogether(database) : CountPlays(database);
}

PlayCounter::Piece PlayCounter::CountPlays(SqliteConnection& database) {
  SqliteStatement plays(database,
                        "SELECT began, channel, title FROM play WHERE (began, channel, title) > (?1, ?2, ?3) "
                        "ORDER BY began, channel, title LIMIT ?4");
  plays.Bind(1, place_.Began).Bind(2, place_.Channel).Bind(3, place_.Title).Bind(4, kPlaysAPiece);
  std::int64_t rows = 0;
  while (plays.Next()) {
    ++rows;
    const Place place{plays.Number(0), plays.Number(1), plays.Number(2)};
    // A damaged file may have any order, and would be read for ever.
    if (place <= place_) return Piece::Failed;
    place_ = place;
    if (search_.Channel != 0 && place.Channel != search_.Channel) continue;
    Plays& ofTitle = ofTitles_[place.Title];
    ++ofTitle.Count;
    ofTitle.Last = std::max(ofTitle.Last, place.Began);
  }
  if (plays.Failed()) return Piece::Failed;
  counted_ = rows < kPlaysAPiece;
  return Piece::More;
}

PlayCounter::Piece PlayCounter::PutTogether(SqliteConnection& database) {
  SqliteStatement titles(database, "SELECT id, artist, title FROM title WHERE id > ?1 ORDER BY id LIMIT ?2");
  titles.Bind(1, title_).Bind(2, kTitlesAPiece);
  std::int64_t rows = 0;
  while (titles.Next()) {
    ++rows;
    if (titles.Number(0) <= title_) return Piece::Failed;
    title_ = titles.Number(0);
    const auto plays = ofTitles_.find(title_);
    if (plays != ofTitles_.end()) Add(titles.Text(1), titles.Text(2), plays->second);
  }
  if (titles.Failed()) return Piece::Failed;
  return rows < kTitlesAPiece ? Piece::Last : Piece::More;
}

void PlayCounter::Add(const std::string& artist, const std::string& title, const Plays& plays) {
  const bool songs = search_.As == PlayedAs::Song;
  if (artist.empty() || (songs && title.empty())) return;
  std::string name = base::ToLower(artist);
  if (songs) name = std::to_string(name.size()) + ' ' + name + base::ToLower(title);
  PlayCount& sum = sums_[std::move(name)];
  if (sum.Plays == 0) {
    sum.Artist = artist;
    if (songs) sum.Title = title;
  }
  const base::DateValue last = HistoryMoment(plays.Last);
  sum.Last = sum.Plays == 0 ? last : std::max(sum.Last, last);
  sum.Plays += plays.Count;
}

std::vector<PlayCount> PlayCounter::MostPlayed() const {
  std::vector<const PlayCount*> sums;
  sums.reserve(sums_.size());
  for (const auto& [name, sum] : sums_) sums.push_back(&sum);
  const auto wanted = static_cast<std::ptrdiff_t>(std::min(sums.size(), search_.Limit));
  std::partial_sort(sums.begin(), sums.begin() + wanted, sums.end(),
                    [](const PlayCount* a, const PlayCount* b) { return ComesFirst(*a, *b); });
  std::vector<PlayCount> most;
  for (auto sum = sums.begin(); sum != sums.begin() + wanted; ++sum) most.push_back(**sum);
  return most;
}

}  // namespace kestrune::platform
