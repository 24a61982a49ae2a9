#include "platform/sqlite/HistorySchema.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include <fmt/format.h>

namespace kestrune::platform {
namespace {

// Moments are seconds since 1970 of local time. What the channels play is most of it, so its rows hold only numbers:
// a song's text and a station's name are kept once. title_text finds any three letters of a title or an artist.
// A step that has once been in use is never changed: records are built by it.
constexpr const char* kSteps[] = {
    // 1: what happened.
    "CREATE TABLE run (began INTEGER PRIMARY KEY, alive INTEGER NOT NULL, closed INTEGER NOT NULL);"
    "CREATE TABLE song (began INTEGER NOT NULL, ended INTEGER NOT NULL, channel INTEGER NOT NULL, station "
    "TEXT NOT NULL, "
    "genre TEXT NOT NULL, artist TEXT NOT NULL, title TEXT NOT NULL, length_ms INTEGER NOT NULL, fate "
    "INTEGER NOT NULL, "
    "reason TEXT NOT NULL, file TEXT NOT NULL, event INTEGER NOT NULL, samples_lost INTEGER NOT NULL, "
    "missing_ms INTEGER NOT NULL, silent_ms INTEGER NOT NULL, overloaded_ms INTEGER NOT NULL, "
    "line_lost_ms INTEGER NOT NULL);"
    "CREATE INDEX song_ended ON song (ended);"
    "CREATE TABLE event (entry INTEGER NOT NULL, due INTEGER NOT NULL, began INTEGER, planned_seconds "
    "INTEGER NOT NULL, "
    "channel INTEGER NOT NULL, station TEXT NOT NULL, whole_songs INTEGER NOT NULL, ended INTEGER, kept "
    "INTEGER NOT NULL, "
    "dropped INTEGER NOT NULL, why_not TEXT NOT NULL);"
    "CREATE UNIQUE INDEX event_name ON event (due, entry, coalesce(began, -1));"
    "CREATE TABLE incident (began INTEGER NOT NULL, kind INTEGER NOT NULL, ended INTEGER, seconds INTEGER "
    "NOT NULL, "
    "cause TEXT NOT NULL, PRIMARY KEY (began, kind)) WITHOUT ROWID;"
    "CREATE TABLE station (id INTEGER PRIMARY KEY, name TEXT NOT NULL, genre TEXT NOT NULL, UNIQUE (name, "
    "genre));"
    "CREATE TABLE title (id INTEGER PRIMARY KEY, artist TEXT NOT NULL, title TEXT NOT NULL, UNIQUE (artist, "
    "title));"
    "CREATE VIRTUAL TABLE title_text USING fts5 (artist, title, content='title', content_rowid='id', "
    "tokenize='trigram');"
    "CREATE TABLE play (began INTEGER NOT NULL, channel INTEGER NOT NULL, title INTEGER NOT NULL, "
    "seconds INTEGER NOT NULL, station INTEGER NOT NULL, PRIMARY KEY (began, channel, title)) WITHOUT ROWID;"
    "CREATE INDEX play_title ON play (title, began);",
    // 2: how a song was cut from the next one, NULL where nobody listened, and what was learned of each channel.
    // Confidence is in thousandths.
    "ALTER TABLE song ADD COLUMN cut_frame INTEGER;"
    "ALTER TABLE song ADD COLUMN cut_lag_ms INTEGER;"
    "ALTER TABLE song ADD COLUMN cut_reason TEXT;"
    "ALTER TABLE song ADD COLUMN cut_confidence INTEGER;"
    "ALTER TABLE song ADD COLUMN cut_candidates TEXT;"
    "ALTER TABLE song ADD COLUMN cut_next TEXT;"
    "CREATE INDEX song_cut ON song (ended) WHERE cut_frame IS NOT NULL;"
    "CREATE TABLE lag (channel INTEGER PRIMARY KEY, changed INTEGER NOT NULL, model TEXT NOT NULL);",
    // 3: the hours since 1970 in which anything began on a channel, which lead to its rows among those of all others.
    "CREATE TABLE heard (channel INTEGER NOT NULL, hour INTEGER NOT NULL, PRIMARY KEY (channel, hour)) "
    "WITHOUT ROWID;"
    "INSERT OR IGNORE INTO heard SELECT channel, (began - (began % 3600 + 3600) % 3600) / 3600 FROM play;",
    // 4: what lies in a folder.
    "CREATE INDEX song_file ON song (file) WHERE file <> '';",
};

constexpr std::int64_t kSecondsTo1970 = 25569LL * 86400;
constexpr std::int64_t kMostHours = 100'000'000;

constexpr auto kVersion = static_cast<std::int64_t>(std::size(kSteps));

}  // namespace

std::int64_t HistoryVersion() {
  return kVersion;
}

std::optional<std::string> SchemaOf(SqliteConnection& database) {
  // But for what the index keeps of its own.
  SqliteStatement rows(
      database,
      "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL AND name NOT LIKE 'title\\_text\\__%' "
      "ESCAPE '\\' ORDER BY sql");
  std::string schema;
  while (rows.Next()) schema += rows.Text(0) + '\n';
  if (rows.Failed()) return std::nullopt;
  return schema;
}

std::optional<std::string> SchemaOfVersion(std::int64_t version) {
  if (version < 1 || version > kVersion) return std::nullopt;
  SqliteConnection model(":memory:");
  for (std::int64_t step = 0; step < version; ++step)
    if (!model.Run(kSteps[static_cast<std::size_t>(step)])) return std::nullopt;
  return SchemaOf(model);
}

bool BringUpToDate(SqliteConnection& database, std::int64_t version) {
  std::string commands = "BEGIN IMMEDIATE;";
  for (std::int64_t step = version; step < kVersion; ++step)
    commands += kSteps[static_cast<std::size_t>(step)];
  commands +=
      fmt::format("PRAGMA application_id={};PRAGMA user_version={};COMMIT", kHistoryApplication, kVersion);
  if (database.Run(commands.c_str())) return true;
  if (database.InTransaction()) static_cast<void>(database.Run("ROLLBACK"));
  return false;
}

std::int64_t HistorySecond(base::DateValue moment) {
  return moment.Seconds() - kSecondsTo1970;
}

base::DateValue HistoryMoment(std::int64_t second) {
  return base::DateValue::FromSeconds(kSecondsTo1970).AddSeconds(second);
}

std::int64_t HistoryHour(base::DateValue moment) {
  const std::chrono::seconds since1970(HistorySecond(moment));
  return std::chrono::floor<std::chrono::hours>(since1970).count();
}

base::DateValue HistoryHourBegins(std::int64_t hour) {
  // A file of rubbish may have any number.
  return base::DateValue::FromSeconds(kSecondsTo1970).AddHours(std::clamp(hour, -kMostHours, kMostHours));
}

}  // namespace kestrune::platform
