#include "platform/sqlite/HistoryReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "base/Text.h"
#include "platform/sqlite/CandidateText.h"
#include "platform/sqlite/HistorySchema.h"

namespace kestrune::platform {
namespace {

using base::DateValue;

constexpr std::int64_t kMostRows = 50'000;
/// The index knows runs of three letters.
constexpr std::size_t kShortestIndexed = 3;
constexpr std::size_t kManyTitles = 4000;
constexpr std::int64_t kLongestLength = 1'000'000'000'000;
constexpr std::int64_t kLongestLagMs = 1'000'000'000;
constexpr std::int64_t kLastChannel = 255;

std::size_t Letters(std::string_view word) {
  return static_cast<std::size_t>(std::count_if(
      word.begin(), word.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

/// The words of a search; what no text can hold separates them too.
std::vector<std::string> WordsOf(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
  std::vector<std::string> words = base::Split(text, ' ');
  words.erase(std::remove(words.begin(), words.end(), std::string()), words.end());
  return words;
}

/// The words as the index is asked for them: each in quotation marks, in which only these marks mean anything.
std::string Query(const std::vector<std::string>& words) {
  std::string query;
  for (const std::string& word : words) {
    if (!query.empty()) query += " AND ";
    query += '"' + base::ReplaceAll(word, "\"", "\"\"") + '"';
  }
  return query;
}

bool HasWord(const SqliteStatement& title, const std::string& word) {
  return base::ContainsNoCase(title.Text(1), word) || base::ContainsNoCase(title.Text(2), word);
}

/// Whether a title is wanted: all are, if none are named. They are sorted.
bool IsAmong(const std::vector<std::int64_t>* titles, std::int64_t title) {
  return titles == nullptr || std::binary_search(titles->begin(), titles->end(), title);
}

// A file of rubbish may have any number.

std::int16_t Small(std::int64_t number) {
  return static_cast<std::int16_t>(
      std::clamp<std::int64_t>(number, 0, std::numeric_limits<std::int16_t>::max()));
}
std::int64_t Length(std::int64_t number) {
  return std::clamp<std::int64_t>(number, 0, kLongestLength);
}
SongFate FateOf(std::int64_t number) {
  return number >= 0 && number < kSongFates ? static_cast<SongFate>(number) : SongFate::Failed;
}
IncidentKind KindOf(std::int64_t number) {
  return number >= 0 && number < kIncidentKinds ? static_cast<IncidentKind>(number) : IncidentKind::Crash;
}

std::int32_t LagOf(std::int64_t number) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(number, -kLongestLagMs, kLongestLagMs));
}

std::optional<HistoryCut> CutOf(const SqliteStatement& song) {
  if (song.IsNull(17)) return std::nullopt;
  return HistoryCut{
      .Frame = song.Number(17),
      .LagMs = LagOf(song.Number(18)),
      .Reason = song.Text(19),
      .Confidence = static_cast<double>(std::clamp<std::int64_t>(song.Number(20), 0, 1000)) / 1000,
      .Candidates = ReadCandidates(song.Text(21)),
      .Next = song.Text(22)};
}

HistorySong SongOf(const SqliteStatement& row) {
  return {.Began = row.Moment(0),
          .Ended = row.Moment(1),
          .Channel = Small(row.Number(2)),
          .Station = row.Text(3),
          .Genre = row.Text(4),
          .Artist = row.Text(5),
          .Title = row.Text(6),
          .LengthMs = Length(row.Number(7)),
          .Fate = FateOf(row.Number(8)),
          .Reason = row.Text(9),
          .File = row.Text(10),
          .Event = Small(row.Number(11)),
          .SamplesLost = Length(row.Number(12)),
          .MissingMs = Length(row.Number(13)),
          .SilentMs = Length(row.Number(14)),
          .OverloadedMs = Length(row.Number(15)),
          .LineLostMs = Length(row.Number(16)),
          .Cut = CutOf(row)};
}

HistoryEvent EventOf(const SqliteStatement& row) {
  return {.Entry = Small(row.Number(0)),
          .Due = row.Moment(1),
          .PlannedSeconds = Length(row.Number(3)),
          .Channel = Small(row.Number(4)),
          .Station = row.Text(5),
          .WholeSongs = row.Number(6) != 0,
          .Began = row.MaybeMoment(2),
          .Ended = row.MaybeMoment(7),
          .Kept = Small(row.Number(8)),
          .Dropped = Small(row.Number(9)),
          .WhyNot = row.Text(10)};
}

HistoryIncident IncidentOf(const SqliteStatement& row) {
  return {.Kind = KindOf(row.Number(1)),
          .Began = row.Moment(0),
          .Ended = row.MaybeMoment(2),
          .Seconds = Length(row.Number(3)),
          .Cause = row.Text(4)};
}

HistoryRun RunOf(const SqliteStatement& row) {
  return {.Began = row.Moment(0), .Alive = row.Moment(1), .Closed = row.Number(2) != 0};
}

}  // namespace

std::optional<HistoryRows> HistoryReader::ReadSpan(DateValue from, DateValue to) {
  HistoryRows rows;
  const auto read = [&](std::string_view command, auto& kind, auto rowOf) {
    SqliteStatement statement(database_, command);
    statement.Bind(1, from).Bind(2, to).Bind(3, kMostRows);
    while (statement.Next()) kind.push_back(rowOf(statement));
    // The newest ones were asked for, newest first.
    std::reverse(kind.begin(), kind.end());
    return !statement.Failed();
  };
  const bool done =
      read("SELECT * FROM song WHERE ended >= ?1 AND began <= ?2 ORDER BY began DESC, rowid DESC LIMIT ?3",
           rows.Songs, SongOf) &&
      read(
          "SELECT * FROM event WHERE due <= ?2 AND max(due + planned_seconds, coalesce(ended, began, due)) "
          ">= ?1 "
          "ORDER BY due DESC, entry DESC, began DESC LIMIT ?3",
          rows.Events, EventOf) &&
      // One without an end lasted as long as its run at the most.
      read(
          "SELECT * FROM incident WHERE began <= ?2 AND coalesce(ended, (SELECT max(alive, incident.began) "
          "FROM run "
          "WHERE run.began <= incident.began ORDER BY run.began DESC LIMIT 1), began) >= ?1 "
          "ORDER BY began DESC, kind DESC LIMIT ?3",
          rows.Incidents, IncidentOf) &&
      read("SELECT * FROM run WHERE began <= ?2 AND alive >= ?1 ORDER BY began DESC LIMIT ?3", rows.Runs,
           RunOf);
  if (!done) return std::nullopt;
  return rows;
}

std::optional<std::vector<HistoryPlay>> HistoryReader::Search(const HistorySearch& search) {
  if (!IsKnown(search.Channel)) return std::vector<HistoryPlay>();
  const std::vector<std::string> words = WordsOf(search.Text);
  std::vector<Found> found;
  bool done = false;
  if (words.empty()) {
    done = FindInPlays(search, nullptr, found);
  } else if (auto titles = TitlesWith(words)) {
    std::sort(titles->begin(), titles->end());
    done = titles->size() <= kManyTitles ? FindInTitles(search, *titles, found)
                                         : FindInPlays(search, &*titles, found);
  }
  if (!done) return std::nullopt;
  return WholeRows(found);
}

std::optional<std::vector<HistorySong>> HistoryReader::ReadCuts(const CutSearch& search) {
  SqliteStatement rows(database_,
                       "SELECT * FROM song WHERE cut_frame IS NOT NULL AND (?1 = 0 OR channel = ?1) "
                       "ORDER BY ended DESC, rowid DESC LIMIT ?2");
  rows.Bind(1, std::int64_t{search.Channel})
      .Bind(2, std::min(static_cast<std::int64_t>(search.Limit), kMostRows));
  std::vector<HistorySong> songs;
  while (rows.Next()) songs.push_back(SongOf(rows));
  if (rows.Failed()) return std::nullopt;
  return songs;
}

std::optional<std::vector<HistorySong>> HistoryReader::ReadFolder(const std::string& folder) {
  // Up to the byte after "/", the paths that begin with the folder.
  std::string after = folder;
  if (after.empty() || after.back() != '/') return std::vector<HistorySong>();
  ++after.back();
  SqliteStatement rows(database_,
                       "SELECT * FROM song WHERE file <> '' AND file >= ?1 AND file < ?2 "
                       "ORDER BY ended DESC, rowid DESC LIMIT ?3");
  rows.Bind(1, folder).Bind(2, after).Bind(3, kMostRows);
  std::vector<HistorySong> songs;
  while (rows.Next()) songs.push_back(SongOf(rows));
  if (rows.Failed()) return std::nullopt;
  return songs;
}

std::optional<std::vector<HistoryLag>> HistoryReader::ReadLags() {
  SqliteStatement rows(
      database_, "SELECT channel, changed, model FROM lag WHERE channel BETWEEN 1 AND ? ORDER BY channel");
  rows.Bind(1, kLastChannel);
  std::vector<HistoryLag> lags;
  while (rows.Next()) lags.push_back({Small(rows.Number(0)), rows.Moment(1), rows.Text(2)});
  if (rows.Failed()) return std::nullopt;
  return lags;
}

std::optional<std::vector<std::int64_t>> HistoryReader::TitlesWith(const std::vector<std::string>& words) {
  std::vector<std::string> indexed;
  std::vector<std::string> others;
  for (const std::string& word : words)
    (Letters(word) >= kShortestIndexed ? indexed : others).push_back(word);
  SqliteStatement titles(
      database_, indexed.empty()  ? "SELECT id, artist, title FROM title"
                 : others.empty() ? "SELECT rowid FROM title_text WHERE title_text MATCH ?"
                                  : "SELECT rowid, artist, title FROM title_text WHERE title_text MATCH ?");
  if (!indexed.empty()) titles.Bind(1, Query(indexed));
  std::vector<std::int64_t> ids;
  while (titles.Next()) {
    const bool all = std::all_of(others.begin(), others.end(),
                                 [&titles](const std::string& word) { return HasWord(titles, word); });
    if (all) ids.push_back(titles.Number(0));
  }
  if (titles.Failed()) return std::nullopt;
  return ids;
}

bool HistoryReader::FindInTitles(const HistorySearch& search, const std::vector<std::int64_t>& titles,
                                 std::vector<Found>& found) {
  SqliteStatement plays(
      database_,
      "SELECT began, channel FROM play WHERE title = ?1 AND began >= ?2 AND (?3 = 0 OR channel = ?3) "
      "ORDER BY began DESC LIMIT ?4");
  const auto newer = [](const Found& a, const Found& b) { return a.Began > b.Began; };
  const auto limit = static_cast<std::int64_t>(search.Limit);
  std::int64_t least = std::numeric_limits<std::int64_t>::min();
  for (const std::int64_t title : titles) {
    plays.Bind(1, title).Bind(3, std::int64_t{search.Channel}).Bind(4, limit);
    // What is older than what was found already is of no interest.
    if (least != std::numeric_limits<std::int64_t>::min() || !search.Since) {
      plays.Bind(2, least);
    } else {
      plays.Bind(2, *search.Since);
    }
    while (plays.Next()) found.push_back({plays.Number(0), plays.Number(1), title});
    if (plays.Failed()) return false;
    plays.Reset();
    if (found.size() >= search.Limit && !found.empty()) {
      std::stable_sort(found.begin(), found.end(), newer);
      found.resize(search.Limit);
      if (!found.empty()) least = std::max(least, found.back().Began);
    }
  }
  std::stable_sort(found.begin(), found.end(), newer);
  return true;
}

bool HistoryReader::FindInPlays(const HistorySearch& search, const std::vector<std::int64_t>* titles,
                                std::vector<Found>& found) {
  if (search.Channel != 0) return FindOnChannel(search, titles, found);
  SqliteStatement plays(database_,
                        "SELECT began, channel, title FROM play WHERE began >= ? ORDER BY began DESC");
  if (search.Since) {
    plays.Bind(1, *search.Since);
  } else {
    plays.Bind(1, std::numeric_limits<std::int64_t>::min());
  }
  while (found.size() < search.Limit && plays.Next()) {
    const Found one{plays.Number(0), plays.Number(1), plays.Number(2)};
    if (IsAmong(titles, one.Title)) found.push_back(one);
  }
  return !plays.Failed();
}

bool HistoryReader::FindOnChannel(const HistorySearch& search, const std::vector<std::int64_t>* titles,
                                  std::vector<Found>& found) {
  SqliteStatement hours(database_,
                        "SELECT hour FROM heard WHERE channel = ? AND hour >= ? ORDER BY hour DESC");
  SqliteStatement plays(database_,
                        "SELECT began, title FROM play WHERE began >= ? AND began < ? AND channel = ? "
                        "ORDER BY began DESC");
  hours.Bind(1, std::int64_t{search.Channel})
      .Bind(2, search.Since ? HistoryHour(*search.Since) : std::numeric_limits<std::int64_t>::min());
  while (found.size() < search.Limit && hours.Next()) {
    const DateValue begins = HistoryHourBegins(hours.Number(0));
    plays.Bind(1, std::max(begins, search.Since.value_or(begins)))
        .Bind(2, begins.AddHours(1))
        .Bind(3, std::int64_t{search.Channel});
    while (found.size() < search.Limit && plays.Next()) {
      const Found one{plays.Number(0), search.Channel, plays.Number(1)};
      if (IsAmong(titles, one.Title)) found.push_back(one);
    }
    if (plays.Failed()) return false;
    plays.Reset();
  }
  return !hours.Failed();
}

bool HistoryReader::IsKnown(std::int16_t channel) {
  if (channel == 0) return true;
  SqliteStatement heard(database_, "SELECT 1 FROM heard WHERE channel = ? LIMIT 1");
  // What cannot be read is for the search itself to find.
  return heard.Bind(1, std::int64_t{channel}).Next() || heard.Failed();
}

std::optional<std::vector<HistoryPlay>> HistoryReader::WholeRows(const std::vector<Found>& found) {
  SqliteStatement rows(
      database_,
      "SELECT play.began, play.seconds, station.name, station.genre, title.artist, title.title "
      "FROM play LEFT JOIN station ON station.id = play.station LEFT JOIN title ON title.id = play.title "
      "WHERE play.began = ? AND play.channel = ? AND play.title = ?");
  std::vector<HistoryPlay> plays;
  for (const Found& one : found) {
    rows.Bind(1, one.Began).Bind(2, one.Channel).Bind(3, one.Title);
    if (rows.Next()) {
      const DateValue from = rows.Moment(0);
      plays.push_back({.Channel = Small(one.Channel),
                       .Station = rows.Text(2),
                       .Genre = rows.Text(3),
                       .Artist = rows.Text(4),
                       .Title = rows.Text(5),
                       .From = from,
                       .To = from.AddSeconds(Length(rows.Number(1)))});
    }
    if (rows.Failed()) return std::nullopt;
    rows.Reset();
  }
  return plays;
}

}  // namespace kestrune::platform
