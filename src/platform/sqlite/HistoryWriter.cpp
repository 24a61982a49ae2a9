#include "platform/sqlite/HistoryWriter.h"

#include <algorithm>
#include <utility>

#include "platform/sqlite/CandidateText.h"
#include "platform/sqlite/HistorySchema.h"

namespace kestrune::platform {
namespace {

using base::DateValue;

// So much is removed in one transaction, so that what is to be written waits for a fraction of a second.
constexpr int kRowsAtOnce = 2000;
constexpr int kTitlesAtOnce = 2000;
// A radio has some hundred channels, whose names change now and then; more than that are names that came in garbled.
constexpr std::int64_t kMostUnusedStations = 1000;
constexpr std::int64_t kIndexPagesAtOnce = 200;
constexpr std::int64_t kSecondsADay = 86400;

}  // namespace

HistoryWriter::HistoryWriter(SqliteConnection& database, HistoryLimits limits)
    : database_(database),
      limits_(limits),
      run_(database, "INSERT OR REPLACE INTO run VALUES (?, ?, ?)"),
      song_(database,
            "INSERT INTO song VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      move_(database,
            "UPDATE song SET file = ?2, fate = coalesce(?3, fate) WHERE ?1 <> '' AND rowid = "
            "(SELECT max(rowid) FROM song WHERE file = ?1 AND file <> '')"),
      event_(database, "INSERT OR REPLACE INTO event VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      incident_(database, "INSERT OR REPLACE INTO incident VALUES (?, ?, ?, ?, ?)"),
      play_(database, "INSERT OR REPLACE INTO play VALUES (?, ?, ?, ?, ?)"),
      heard_(database, "INSERT OR IGNORE INTO heard VALUES (?, ?)"),
      lag_(database, "INSERT OR REPLACE INTO lag VALUES (?, ?, ?)"),
      findStation_(database, "SELECT id FROM station WHERE name = ? AND genre = ?"),
      station_(database, "INSERT INTO station (name, genre) VALUES (?, ?)"),
      findTitle_(database, "SELECT id FROM title WHERE artist = ? AND title = ?"),
      title_(database, "INSERT INTO title (artist, title) VALUES (?, ?)"),
      titleText_(database, "INSERT INTO title_text (rowid, artist, title) VALUES (?, ?, ?)") {}

bool HistoryWriter::Write(const HistoryRows& rows) {
  if (!database_.Run("BEGIN IMMEDIATE")) return false;
  if (WriteRows(rows) && database_.Run("COMMIT")) return true;
  // Some failures have ended the transaction already.
  if (database_.InTransaction()) static_cast<void>(database_.Run("ROLLBACK"));
  return false;
}

bool HistoryWriter::WriteRows(const HistoryRows& rows) {
  const auto all = [this](const auto& some) {
    return std::all_of(some.begin(), some.end(), [this](const auto& row) { return this->Write(row); });
  };
  for (const HistoryRun& run : rows.Runs)
    if (!run_.Bind(1, run.Began).Bind(2, run.Alive).Bind(3, std::int64_t{run.Closed}).Run()) return false;
  return all(rows.Moves) && all(rows.Songs) && all(rows.Events) && all(rows.Incidents) && all(rows.Plays) &&
         all(rows.Lags);
}

bool HistoryWriter::Write(const HistorySong& song) {
  constexpr int kFirstOfCut = 18;
  constexpr int kLastOfCut = 23;
  for (int parameter = kFirstOfCut; parameter <= kLastOfCut; ++parameter) song_.BindNull(parameter);
  if (song.Cut) {
    song_.Bind(kFirstOfCut, song.Cut->Frame)
        .Bind(19, std::int64_t{song.Cut->LagMs})
        .Bind(20, song.Cut->Reason)
        .Bind(21, std::int64_t{Thousandths(song.Cut->Confidence)})
        .Bind(22, CandidateText(song.Cut->Candidates))
        .Bind(kLastOfCut, song.Cut->Next);
  }
  return song_.Bind(1, song.Began)
      .Bind(2, song.Ended)
      .Bind(3, std::int64_t{song.Channel})
      .Bind(4, song.Station)
      .Bind(5, song.Genre)
      .Bind(6, song.Artist)
      .Bind(7, song.Title)
      .Bind(8, song.LengthMs)
      .Bind(9, static_cast<std::int64_t>(song.Fate))
      .Bind(10, song.Reason)
      .Bind(11, song.File)
      .Bind(12, std::int64_t{song.Event})
      .Bind(13, song.SamplesLost)
      .Bind(14, song.MissingMs)
      .Bind(15, song.SilentMs)
      .Bind(16, song.OverloadedMs)
      .Bind(17, song.LineLostMs)
      .Run();
}

bool HistoryWriter::Write(const HistoryMove& move) {
  move_.BindNull(3);
  if (move.Fate) move_.Bind(3, static_cast<std::int64_t>(*move.Fate));
  return move_.Bind(1, move.From).Bind(2, move.To).Run();
}

bool HistoryWriter::Write(const HistoryEvent& event) {
  return event_.Bind(1, std::int64_t{event.Entry})
      .Bind(2, event.Due)
      .Bind(3, event.Began)
      .Bind(4, event.PlannedSeconds)
      .Bind(5, std::int64_t{event.Channel})
      .Bind(6, event.Station)
      .Bind(7, std::int64_t{event.WholeSongs})
      .Bind(8, event.Ended)
      .Bind(9, std::int64_t{event.Kept})
      .Bind(10, std::int64_t{event.Dropped})
      .Bind(11, event.WhyNot)
      .Run();
}

bool HistoryWriter::Write(const HistoryIncident& incident) {
  return incident_.Bind(1, incident.Began)
      .Bind(2, static_cast<std::int64_t>(incident.Kind))
      .Bind(3, incident.Ended)
      .Bind(4, incident.Seconds)
      .Bind(5, incident.Cause)
      .Run();
}

bool HistoryWriter::Write(const HistoryLag& lag) {
  return lag_.Bind(1, std::int64_t{lag.Channel}).Bind(2, lag.Changed).Bind(3, lag.Model).Run();
}

bool HistoryWriter::Write(const HistoryPlay& play) {
  const auto title = TitleOf(play);
  const auto station = StationOf(play);
  if (!title || !station) return false;
  if (!heard_.Bind(1, std::int64_t{play.Channel}).Bind(2, HistoryHour(play.From)).Run()) return false;
  return play_.Bind(1, play.From)
      .Bind(2, std::int64_t{play.Channel})
      .Bind(3, *title)
      .Bind(4, base::SecondsBetween(play.From, play.To))
      .Bind(5, *station)
      .Run();
}

std::optional<std::int64_t> HistoryWriter::StationOf(const HistoryPlay& play) {
  findStation_.Bind(1, play.Station).Bind(2, play.Genre);
  const bool found = findStation_.Next();
  const std::int64_t id = found ? findStation_.Number(0) : 0;
  const bool failed = findStation_.Failed();
  findStation_.Reset();
  if (failed) return std::nullopt;
  if (found) return id;
  if (!station_.Bind(1, play.Station).Bind(2, play.Genre).Run()) return std::nullopt;
  return database_.LastRowId();
}

std::optional<std::int64_t> HistoryWriter::TitleOf(const HistoryPlay& play) {
  findTitle_.Bind(1, play.Artist).Bind(2, play.Title);
  const bool found = findTitle_.Next();
  std::int64_t id = found ? findTitle_.Number(0) : 0;
  const bool failed = findTitle_.Failed();
  findTitle_.Reset();
  if (failed) return std::nullopt;
  if (found) return id;
  if (!title_.Bind(1, play.Artist).Bind(2, play.Title).Run()) return std::nullopt;
  id = database_.LastRowId();
  if (!titleText_.Bind(1, id).Bind(2, play.Artist).Bind(3, play.Title).Run()) return std::nullopt;
  return id;
}

bool HistoryWriter::Prune(DateValue now) {
  if (removing_ == Removing::Nothing) FindWhatIsTooMuch(now);
  if (removing_ == Removing::Nothing) return false;
  bool done = database_.Run("BEGIN IMMEDIATE");
  if (done && removing_ == Removing::Rows) {
    done = RemoveSomeRows();
  } else if (done && removing_ == Removing::Titles) {
    done = RemoveSomeTitles();
  } else if (done && removing_ == Removing::Index) {
    done = MergeSomeIndex();
  } else if (done) {
    done = GiveBackSomeRoom();
  }
  if (done && database_.Run("COMMIT")) return removing_ != Removing::Nothing;
  if (database_.InTransaction()) static_cast<void>(database_.Run("ROLLBACK"));
  removing_ = Removing::Nothing;
  return false;
}

std::optional<HistoryWriter::Size> HistoryWriter::SizeNow() {
  const auto pages = database_.NumberOf("PRAGMA page_count");
  const auto freePages = database_.NumberOf("PRAGMA freelist_count");
  const auto bytes = database_.NumberOf("PRAGMA page_size");
  if (!pages || !freePages || !bytes) return std::nullopt;
  return Size{*pages * *bytes, *freePages * *bytes};
}

void HistoryWriter::FindWhatIsTooMuch(DateValue now) {
  // Once a day is enough for what is too old, whichever way the clock goes; the size is looked at each time.
  if (!lastLook_ || base::SecondsBetween(*lastLook_, now) >= kSecondsADay || now < *lastLook_) {
    lastLook_ = now;
    removeBefore_ = now.AddDays(-limits_.Days);
    removing_ = Removing::Rows;
  }
  const Size size = SizeNow().value_or(Size());
  if (size.File - size.Free <= limits_.Bytes) return;
  SqliteStatement oldest(database_,
                         "SELECT min(began) FROM (SELECT min(began) AS began FROM play UNION ALL "
                         "SELECT min(ended) FROM song)");
  if (!oldest.Next()) return;
  if (const auto began = oldest.MaybeMoment(0)) {
    const DateValue dayAfter = began->AddSeconds(kSecondsADay);
    removeBefore_ = removing_ == Removing::Rows ? std::max(removeBefore_, dayAfter) : dayAfter;
    removing_ = Removing::Rows;
  }
}

bool HistoryWriter::RemoveSomeRows() {
  SqliteStatement end(database_, "SELECT began FROM play WHERE began < ? ORDER BY began LIMIT 1 OFFSET ?");
  const bool more = end.Bind(1, removeBefore_).Bind(2, std::int64_t{kRowsAtOnce}).Next();
  const DateValue before = more ? end.Moment(0).AddSeconds(1) : removeBefore_;
  end.Reset();
  const std::int64_t changes = database_.Changes();
  for (const char* command :
       {"DELETE FROM play WHERE began < ?", "DELETE FROM song WHERE ended < ?",
        "DELETE FROM event WHERE due + planned_seconds < ?1 AND coalesce(ended, began, 0) < ?1",
        "DELETE FROM incident WHERE began < ?1 AND coalesce(ended, began) < ?1",
        "DELETE FROM run WHERE alive < ?"}) {
    if (!SqliteStatement(database_, command).Bind(1, before).Run()) return false;
  }
  rowsRemoved_ = rowsRemoved_ || database_.Changes() != changes;
  if (more) return true;
  SqliteStatement heard(database_, "DELETE FROM heard WHERE hour < ?");
  if (!heard.Bind(1, HistoryHour(removeBefore_)).Run()) return false;
  removing_ = std::exchange(rowsRemoved_, false) ? Removing::Titles : Removing::Room;
  sweptTitles_ = 0;
  return true;
}

bool HistoryWriter::RemoveSomeTitles() {
  SqliteStatement titles(database_,
                         "SELECT id, artist, title, EXISTS (SELECT 1 FROM play WHERE play.title = title.id) "
                         "FROM title WHERE id > ? ORDER BY id LIMIT ?");
  SqliteStatement text(
      database_, "INSERT INTO title_text (title_text, rowid, artist, title) VALUES ('delete', ?, ?, ?)");
  SqliteStatement title(database_, "DELETE FROM title WHERE id = ?");
  titles.Bind(1, sweptTitles_).Bind(2, std::int64_t{kTitlesAtOnce});
  int count = 0;
  while (titles.Next()) {
    ++count;
    sweptTitles_ = titles.Number(0);
    if (titles.Number(3) != 0) continue;
    if (!text.Bind(1, sweptTitles_).Bind(2, titles.Text(1)).Bind(3, titles.Text(2)).Run()) return false;
    if (!title.Bind(1, sweptTitles_).Run()) return false;
    titlesRemoved_ = true;
  }
  if (titles.Failed()) return false;
  if (count == kTitlesAtOnce) return true;
  if (!RemoveUnusedStations()) return false;
  removing_ = std::exchange(titlesRemoved_, false) ? Removing::Index : Removing::Room;
  mergeBegun_ = false;
  return true;
}

bool HistoryWriter::RemoveUnusedStations() {
  const auto stations = database_.NumberOf("SELECT count(*) FROM station");
  if (!stations) return false;
  // It looks at all plays, which no index leads to.
  return *stations <= kMostUnusedStations ||
         database_.Run("DELETE FROM station WHERE id NOT IN (SELECT station FROM play)");
}

bool HistoryWriter::MergeSomeIndex() {
  // The first step marks all of the index as to be merged, the others go on with it; one that changes less than two
  // rows had nothing left to do.
  const std::int64_t changes = database_.Changes();
  SqliteStatement merge(database_, "INSERT INTO title_text (title_text, rank) VALUES ('merge', ?)");
  if (!merge.Bind(1, mergeBegun_ ? kIndexPagesAtOnce : -kIndexPagesAtOnce).Run()) return false;
  if (std::exchange(mergeBegun_, true) && database_.Changes() - changes < 2) removing_ = Removing::Room;
  return true;
}

bool HistoryWriter::GiveBackSomeRoom() {
  const auto size = SizeNow();
  if (!size) return false;
  if (size->File <= limits_.Bytes || size->Free == 0) {
    removing_ = Removing::Nothing;
    return true;
  }
  return database_.Run("PRAGMA incremental_vacuum(200)");
}

}  // namespace kestrune::platform
