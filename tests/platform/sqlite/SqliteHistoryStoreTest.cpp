#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryNight.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistorySchema.h"
#include "platform/sqlite/HistoryWriter.h"
#include "platform/sqlite/PlayCounter.h"
#include "platform/sqlite/SqliteConnection.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "support/ChildProcess.h"
#include "support/RealEventLoop.h"

namespace kestrune::platform {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using test::AtMinute;
using test::CutRow;
using test::EventRow;
using test::FileMode;
using test::FileText;
using test::PlayRow;
using test::PutFile;
using test::SongRow;
using testing::ElementsAre;
using testing::HasSubstr;

/// More plays, and more titles, than are read in one piece.
HistoryRows ManyPlays() {
  HistoryRows rows;
  for (int i = 0; i < 50'000; ++i)
    rows.Plays.push_back(PlayRow(i, "Moon", "Title " + std::to_string(i % 45'000)));
  return rows;
}

class SqliteHistoryStoreTest : public testing::Test {
 protected:
  void Open(HistoryLimits limits = {}) {
    Store.reset();
    Store = std::make_unique<SqliteHistoryStore>(Loop, Path, limits);
    Store->SetTroubleHandler([this](const std::string& line) { Troubles.push_back(line); });
  }
  /// Hands over rows; the present moment is the real one, as the adapter knows no other.
  void Write(HistoryRows rows) { Store->Write(std::move(rows)); }

  std::optional<HistoryRows> Span() {
    std::optional<HistoryRows> got;
    bool answered = false;
    Store->ReadSpan(DateValue::FromCivil(1990, 1, 1), DateValue::FromCivil(2100, 1, 1),
                    [&](const base::Result& asked, const HistoryRows& rows) {
                      answered = true;
                      if (asked.Ok()) {
                        got = rows;
                      } else {
                        Refusal = asked.Cause();
                      }
                    });
    EXPECT_TRUE(Loop.RunUntil([&answered] { return answered; }, 60s));
    return got;
  }
  std::vector<HistoryPlay> Plays(std::string text = "", std::size_t limit = 100'000) {
    std::optional<std::vector<HistoryPlay>> got;
    Store->Search({.Text = std::move(text), .Channel = 0, .Since = {}, .Limit = limit},
                  [&](const base::Result& asked, const std::vector<HistoryPlay>& plays) {
                    EXPECT_TRUE(asked.Ok()) << asked.Cause();
                    got = plays;
                  });
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 60s));
    return got.value_or(std::vector<HistoryPlay>());
  }
  [[nodiscard]] bool ComesTrue(const std::function<bool()>& condition) {
    for (int tries = 0; tries < 2000; ++tries) {
      if (condition()) return true;
      Loop.Run(10ms);
    }
    return false;
  }
  [[nodiscard]] bool Keeps(std::size_t songs) {
    return ComesTrue([this, songs] {
      const auto span = Span();
      return span && span->Songs.size() == songs;
    });
  }
  static HistoryRows OneSong(std::int64_t minute = 0) {
    HistoryRows rows;
    rows.Songs = {SongRow(minute, "One")};
    return rows;
  }
  /// A record with many plays whose index of words is damaged, which nothing but a search reads.
  void OpenWithDamagedWords() {
    Open();
    Write(ManyPlays());
    ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
    Store.reset();
    test::ChildProcess sqlite(
        {"sqlite3", "-batch", Path, "UPDATE title_text_data SET block = x'A5A5A5A5' WHERE id > 10"});
    ASSERT_EQ(sqlite.Wait(20s), 0);
    Open();
  }
  [[nodiscard]] bool ASearchIsRefused() {
    bool refused = false;
    Store->Search({.Text = "moon", .Channel = 0, .Since = {}, .Limit = 1},
                  [&refused](const base::Result& asked, const auto&) { refused = !asked.Ok(); });
    return ComesTrue([&refused] { return refused; });
  }
  /// What the database's own program says of the file.
  [[nodiscard]] std::string Witness(const std::string& command) const {
    const std::string output = Folder / "witness.txt";
    std::filesystem::remove(output);
    test::ChildProcess sqlite({"sqlite3", "-readonly", "-batch", Path, command}, {}, output);
    EXPECT_EQ(sqlite.Wait(20s), 0);
    return FileText(output);
  }
  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder.Path()))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  test::TemporaryFolder Folder;
  std::string Path = Folder / "History1.db";
  test::RealEventLoop Loop;
  std::vector<std::string> Troubles;
  std::string Refusal;
  std::unique_ptr<SqliteHistoryStore> Store;
};

TEST_F(SqliteHistoryStoreTest, TheRecordOutlivesTheProgramAndBelongsToTheUserAlone) {
  Path = Folder / "new/folders/History1.db";
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  EXPECT_EQ(FileMode(Path), 0600U);
  EXPECT_EQ(FileMode(Path + "-wal"), 0600U);
  EXPECT_EQ(FileMode(Path + "-shm"), 0600U);
  EXPECT_EQ(FileMode(Folder / "new/folders"), 0700U);
  Store.reset();
  EXPECT_FALSE(std::filesystem::exists(Path + "-wal")) << "an orderly end leaves one file";
  Open();
  EXPECT_TRUE(Keeps(1));
  EXPECT_TRUE(Troubles.empty());
}

TEST_F(SqliteHistoryStoreTest, TheEndWritesWhatWasHandedOver) {
  Open();
  for (int i = 0; i < 200; ++i) Write(OneSong(i));
  Open();
  EXPECT_TRUE(Keeps(200));
}

TEST_F(SqliteHistoryStoreTest, ARecordThatIsOpenToOthersIsClosed) {
  Open();
  Store.reset();
  std::filesystem::permissions(Path, std::filesystem::perms(0644));
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  EXPECT_EQ(FileMode(Path), 0600U);
  EXPECT_EQ(FileMode(Path + "-wal"), 0600U);
}

TEST_F(SqliteHistoryStoreTest, AnotherProgramReadsTheSame) {
  ASSERT_TRUE(test::ChildProcess::Installed("sqlite3"));
  Open();
  HistoryRows rows = OneSong();
  rows.Events = {EventRow(0)};
  rows.Incidents = {{.Kind = IncidentKind::Disk,
                     .Began = AtMinute(1),
                     .Ended = AtMinute(2),
                     .Seconds = 60,
                     .Cause = "full"}};
  rows.Runs = {{.Began = AtMinute(-1), .Alive = AtMinute(9), .Closed = true}};
  rows.Plays = {PlayRow(0, "Moon", "River"), PlayRow(4, "Moon", "River")};
  Write(rows);
  Store.reset();
  EXPECT_EQ(Witness("PRAGMA integrity_check; PRAGMA user_version; PRAGMA journal_mode"), "ok\n4\nwal\n");
  EXPECT_EQ(
      Witness(
          "SELECT datetime(began, 'unixepoch'), datetime(ended, 'unixepoch'), artist, title, fate, event, "
          "samples_lost, missing_ms, silent_ms, overloaded_ms, line_lost_ms FROM song"),
      "2066-11-21 20:00:00|2066-11-21 20:03:00|Bj\xC3\xB6rn|One|6|3|12|34|56|78|90\n");
  EXPECT_EQ(
      Witness(
          "SELECT entry, datetime(due, 'unixepoch'), planned_seconds, channel, whole_songs, ended IS NULL "
          "FROM event"),
      "3|2066-11-21 20:00:00|3600|44|1|1\n");
  EXPECT_EQ(Witness("SELECT kind, seconds, cause FROM incident"), "2|60|full\n");
  EXPECT_EQ(Witness("SELECT closed, alive - began FROM run"), "1|600\n");
  EXPECT_EQ(
      Witness("SELECT time(began, 'unixepoch'), seconds, channel, artist, title.title, name, genre FROM play "
              "JOIN title "
              "ON title.id = play.title JOIN station ON station.id = play.station"),
      "20:00:00|240|7|Moon|River|Station|Pop\n20:04:00|240|7|Moon|River|Station|Pop\n");
  EXPECT_EQ(Witness("SELECT count(*) FROM title"), "1\n") << "a song's text is kept once";
  test::ChildProcess index(
      {"sqlite3", "-batch", Path, "INSERT INTO title_text(title_text, rank) VALUES('integrity-check', 1)"});
  EXPECT_EQ(index.Wait(20s), 0) << "the index fits the titles";
}

TEST_F(SqliteHistoryStoreTest, ThisProgramReadsWhatAnotherHasWritten) {
  Open();
  Store.reset();
  test::ChildProcess sqlite({"sqlite3", "-batch", Path,
                             "INSERT INTO run VALUES (3057595200, 3057598800, 1);"
                             "INSERT INTO station VALUES (5, 'Harbour', 'Rock');"
                             "INSERT INTO title VALUES (9, 'Moon', 'River');"
                             "INSERT INTO title_text (rowid, artist, title) VALUES (9, 'Moon', 'River');"
                             "INSERT INTO play VALUES (3057595200, 44, 9, 200, 5);"});
  ASSERT_EQ(sqlite.Wait(20s), 0);
  Open();
  const std::vector<HistoryPlay> plays = Plays("river");
  ASSERT_EQ(plays.size(), 1U);
  // date -u -d @3057595200: Sun Nov 21 20:00:00 UTC 2066
  EXPECT_EQ(plays[0], (HistoryPlay{.Channel = 44,
                                   .Station = "Harbour",
                                   .Genre = "Rock",
                                   .Artist = "Moon",
                                   .Title = "River",
                                   .From = DateValue::FromCivil(2066, 11, 21, 20, 0, 0),
                                   .To = DateValue::FromCivil(2066, 11, 21, 20, 3, 20)}));
  const auto span = Span();
  ASSERT_TRUE(span);
  ASSERT_EQ(span->Runs.size(), 1U);
  EXPECT_EQ(span->Runs[0].Alive, DateValue::FromCivil(2066, 11, 21, 21, 0, 0));
}

// What is unreadable is put aside.

TEST_F(SqliteHistoryStoreTest, AFileOfRubbishIsPutAsideOnceAndSaid) {
  const std::string rubbish(10'000, 'x');
  PutFile(Path, rubbish);
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  EXPECT_THAT(Troubles, ElementsAre("The record " + Path +
                                    " could not be read: it is damaged, or no database. It is "
                                    "kept as " +
                                    Path + ".damaged-1, and a new one was begun."));
  EXPECT_EQ(FileText(Path + ".damaged-1"), rubbish);
  Open();
  ASSERT_TRUE(Keeps(1));
  EXPECT_EQ(Troubles.size(), 1U);
}

TEST_F(SqliteHistoryStoreTest, ASingleByteIsNoRecordEither) {
  PutFile(Path, "x");
  Open();
  ASSERT_TRUE(Keeps(0));
  EXPECT_EQ(FileText(Path + ".damaged-1"), "x");
}

TEST_F(SqliteHistoryStoreTest, AnEmptyFileIsANewRecord) {
  PutFile(Path, "");
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  EXPECT_TRUE(Troubles.empty());
}

TEST_F(SqliteHistoryStoreTest, ARecordOfALaterVersionIsPutAsideWhole) {
  Open();
  Write(OneSong());
  Store.reset();
  test::ChildProcess sqlite({"sqlite3", "-batch", Path, "PRAGMA user_version = 5"});
  ASSERT_EQ(sqlite.Wait(20s), 0);
  const std::string before = FileText(Path);
  Open();
  Write(OneSong(5));
  ASSERT_TRUE(Keeps(1));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("a later version of Kestrune has written it")));
  EXPECT_EQ(FileText(Path + ".later-1"), before);
  EXPECT_EQ(Span()->Songs[0].Began, AtMinute(5));
}

// As version 3.0.29 has built it, with one song.
constexpr const char* kFirstVersion =
    "PRAGMA auto_vacuum=INCREMENTAL; PRAGMA journal_mode=WAL;"
    "CREATE TABLE run (began INTEGER PRIMARY KEY, alive INTEGER NOT NULL, closed INTEGER NOT NULL);"
    "CREATE TABLE song (began INTEGER NOT NULL, ended INTEGER NOT NULL, channel INTEGER NOT NULL, station "
    "TEXT "
    "NOT NULL, genre TEXT NOT NULL, artist TEXT NOT NULL, title TEXT NOT NULL, length_ms INTEGER NOT NULL, "
    "fate "
    "INTEGER NOT NULL, reason TEXT NOT NULL, file TEXT NOT NULL, event INTEGER NOT NULL, samples_lost "
    "INTEGER "
    "NOT NULL, missing_ms INTEGER NOT NULL, silent_ms INTEGER NOT NULL, overloaded_ms INTEGER NOT NULL, "
    "line_lost_ms INTEGER NOT NULL);"
    "CREATE INDEX song_ended ON song (ended);"
    "CREATE TABLE event (entry INTEGER NOT NULL, due INTEGER NOT NULL, began INTEGER, planned_seconds "
    "INTEGER "
    "NOT NULL, channel INTEGER NOT NULL, station TEXT NOT NULL, whole_songs INTEGER NOT NULL, ended INTEGER, "
    "kept INTEGER NOT NULL, dropped INTEGER NOT NULL, why_not TEXT NOT NULL);"
    "CREATE UNIQUE INDEX event_name ON event (due, entry, coalesce(began, -1));"
    "CREATE TABLE incident (began INTEGER NOT NULL, kind INTEGER NOT NULL, ended INTEGER, seconds INTEGER "
    "NOT "
    "NULL, cause TEXT NOT NULL, PRIMARY KEY (began, kind)) WITHOUT ROWID;"
    "CREATE TABLE station (id INTEGER PRIMARY KEY, name TEXT NOT NULL, genre TEXT NOT NULL, UNIQUE (name, "
    "genre));"
    "CREATE TABLE title (id INTEGER PRIMARY KEY, artist TEXT NOT NULL, title TEXT NOT NULL, UNIQUE (artist, "
    "title));"
    "CREATE VIRTUAL TABLE title_text USING fts5 (artist, title, content='title', content_rowid='id', "
    "tokenize='trigram');"
    "CREATE TABLE play (began INTEGER NOT NULL, channel INTEGER NOT NULL, title INTEGER NOT NULL, seconds "
    "INTEGER "
    "NOT NULL, station INTEGER NOT NULL, PRIMARY KEY (began, channel, title)) WITHOUT ROWID;"
    "CREATE INDEX play_title ON play (title, began);"
    "PRAGMA application_id=1263752264; PRAGMA user_version=1;"
    "INSERT INTO song VALUES (3057595200, 3057595380, 44, 'Harbour', 'Rock', 'Bj\xC3\xB6rn', 'One', 180000, "
    "6, "
    "'found in the kill list', '/music/a.mp3', 3, 12, 34, 56, 78, 90);"
    "INSERT INTO station VALUES (5, 'Harbour', 'Rock');"
    "INSERT INTO title VALUES (9, 'Moon', 'River');"
    "INSERT INTO title_text (rowid, artist, title) VALUES (9, 'Moon', 'River');"
    "INSERT INTO play VALUES (3057595200, 44, 9, 200, 5);";

TEST_F(SqliteHistoryStoreTest, ARecordOfAnEarlierVersionIsTakenOver) {
  test::ChildProcess sqlite({"sqlite3", "-batch", Path, kFirstVersion}, {}, Folder / "sqlite.txt");
  ASSERT_EQ(sqlite.Wait(20s), 0);
  Open();
  HistoryRows rows;
  rows.Songs = {CutRow(3, "Two")};
  rows.Lags = {{.Channel = 44, .Changed = AtMinute(6), .Model = "learned"}};
  Write(rows);
  ASSERT_TRUE(Keeps(2));
  EXPECT_EQ(Span()->Songs, (std::vector{SongRow(0, "One"), CutRow(3, "Two")}));
  EXPECT_EQ(Plays("river").size(), 1U);
  Open();
  EXPECT_TRUE(Keeps(2)) << "once is enough";
  Store.reset();
  EXPECT_TRUE(Troubles.empty());
  EXPECT_EQ(Witness("PRAGMA integrity_check; PRAGMA user_version; PRAGMA auto_vacuum; SELECT model FROM lag"),
            "ok\n4\n2\nlearned\n");
  const std::string schema = "SELECT sql FROM sqlite_schema WHERE name NOT LIKE 'title_text_%' ORDER BY sql";
  const std::string grown = Witness(schema);
  Path = Folder / "New.db";
  Open();
  Store.reset();
  EXPECT_EQ(grown, Witness(schema)) << "it is built as a new one is";
}

TEST_F(SqliteHistoryStoreTest, ARecordOfAnEarlierVersionKnowsTheHoursOfItsChannels) {
  test::ChildProcess sqlite({"sqlite3", "-batch", Path,
                             std::string(kFirstVersion) +
                                 "INSERT INTO play VALUES (3057595201, 44, 9, 200, 5), (3057595200, 45, 9, "
                                 "200, 5), (-1, 44, 9, 200, 5), (0, 44, 9, 200, 5);"},
                            {}, Folder / "sqlite.txt");
  ASSERT_EQ(sqlite.Wait(20s), 0);
  Open();
  std::optional<std::vector<HistoryPlay>> found;
  Store->Search({.Text = "", .Channel = 44, .Since = {}, .Limit = 50},
                [&found](const base::Result&, const std::vector<HistoryPlay>& plays) { found = plays; });
  ASSERT_TRUE(ComesTrue([&found] { return found.has_value(); }));
  EXPECT_EQ(found->size(), 4U);
  Store.reset();
  EXPECT_EQ(Witness("SELECT channel || ' ' || hour FROM heard"), "44 -1\n44 0\n44 849332\n45 849332\n");
}

TEST(HistoryHour, EachHourBeginsWithItsFirstSecond) {
  EXPECT_EQ(HistoryHour(DateValue::FromCivil(1970, 1, 1)), 0);
  EXPECT_EQ(HistoryHour(DateValue::FromCivil(1970, 1, 1, 0, 59, 59)), 0);
  EXPECT_EQ(HistoryHour(DateValue::FromCivil(1970, 1, 1, 1)), 1);
  EXPECT_EQ(HistoryHour(DateValue::FromCivil(1969, 12, 31, 23, 59, 59)), -1);
  EXPECT_EQ(HistoryHourBegins(-1), DateValue::FromCivil(1969, 12, 31, 23));
  EXPECT_EQ(HistoryHourBegins(25), DateValue::FromCivil(1970, 1, 2, 1));
  EXPECT_NO_FATAL_FAILURE(static_cast<void>(HistoryHourBegins(std::numeric_limits<std::int64_t>::min())));
}

TEST_F(SqliteHistoryStoreTest, ARecordOfAnEarlierVersionThatIsBuiltOtherwiseIsDamaged) {
  test::ChildProcess sqlite({"sqlite3", "-batch", Path, std::string(kFirstVersion) + "CREATE TABLE lag (a);"},
                            {}, Folder / "sqlite.txt");
  ASSERT_EQ(sqlite.Wait(20s), 0);
  Open();
  ASSERT_TRUE(Keeps(0));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("not built as it should be")));
}

TEST_F(SqliteHistoryStoreTest, ARecordThatCannotBeTakenOverStaysAsItIsUntilItCan) {
  test::ChildProcess sqlite({"sqlite3", "-batch", Path, kFirstVersion}, {}, Folder / "sqlite.txt");
  ASSERT_EQ(sqlite.Wait(20s), 0);
  {
    SqliteConnection other(Path);
    ASSERT_TRUE(other.Run("BEGIN IMMEDIATE"));
    Open();
    Write(OneSong(3));
    ASSERT_TRUE(ComesTrue([this] { return !Troubles.empty(); }));
    EXPECT_THAT(Troubles, ElementsAre(HasSubstr("cannot be written: database is locked")));
    EXPECT_EQ(other.NumberOf("PRAGMA user_version"), 1);
  }
  Write(OneSong(6));
  EXPECT_TRUE(Keeps(3));
  EXPECT_EQ(Names(),
            std::vector<std::string>({"History1.db", "History1.db-shm", "History1.db-wal", "sqlite.txt"}));
}

TEST_F(SqliteHistoryStoreTest, ACutOfRubbishIsReadAsFarAsItGoes) {
  Open();
  Write(OneSong());
  Store.reset();
  const auto cutOf = [this](const std::string& frame, const std::string& lag, const std::string& confidence,
                            const std::string& candidates) {
    test::ChildProcess sqlite({"sqlite3", "-batch", Path,
                               "UPDATE song SET cut_frame=" + frame + ", cut_lag_ms=" + lag +
                                   ", cut_reason=x'41FF', cut_confidence=" + confidence +
                                   ", cut_candidates='" + candidates + "', cut_next=5"});
    EXPECT_EQ(sqlite.Wait(20s), 0);
    Open();
    const auto span = Span();
    Store.reset();
    return span && span->Songs.size() == 1 ? span->Songs[0].Cut.value_or(HistoryCut()) : HistoryCut();
  };
  EXPECT_EQ(cutOf("'x'", "9223372036854775807", "5000", "600:431 640:210 "),
            (HistoryCut{.Frame = 0,
                        .LagMs = 1'000'000'000,
                        .Reason = "A\xFF",
                        .Confidence = 1,
                        .Candidates = {{600, 0.431}, {640, 0.21}},
                        .Next = "5"}));
  EXPECT_EQ(cutOf("1", "0", "-3", "").Confidence, 0);
  using List = std::vector<CutCandidate>;
  EXPECT_EQ(cutOf("1", "0", "0", "600:431  640:210").Candidates, (List{{600, 0.431}}));
  EXPECT_EQ(cutOf("1", "0", "0", "600:1001").Candidates, List());
  EXPECT_EQ(cutOf("1", "0", "0", "600:-1").Candidates, List());
  EXPECT_EQ(cutOf("1", "0", "0", "99999999999:5").Candidates, List());
  EXPECT_EQ(cutOf("1", "0", "0", "600").Candidates, List());
  EXPECT_EQ(cutOf("1", "0", "0", "1:1 2:1 3:1 4:1 5:1 6:1").Candidates.size(), 5U);
}

TEST_F(SqliteHistoryStoreTest, AnotherProgramsDatabaseIsPutAside) {
  test::ChildProcess sqlite(
      {"sqlite3", "-batch", Path, "CREATE TABLE song (a); INSERT INTO song VALUES (1)"});
  ASSERT_EQ(sqlite.Wait(20s), 0);
  Open();
  ASSERT_TRUE(Keeps(0));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("another program's")));
  EXPECT_THAT(Names(), testing::Contains("History1.db.foreign-1"));
}

TEST_F(SqliteHistoryStoreTest, ARecordThatIsBuiltOtherwiseIsDamaged) {
  Open();
  Store.reset();
  test::ChildProcess sqlite(
      {"sqlite3", "-batch", Path,
       "DROP TABLE play; CREATE VIEW play AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT "
       "i + 1 FROM n) SELECT i AS began, i AS channel, i AS title, i AS seconds, i AS station "
       "FROM n"});
  ASSERT_EQ(sqlite.Wait(20s), 0);
  Open();
  ASSERT_TRUE(Keeps(0));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("not built as it should be")));
}

TEST_F(SqliteHistoryStoreTest, ADamagedPageIsFoundAtTheStart) {
  Open();
  HistoryRows rows;
  for (int i = 0; i < 3000; ++i) rows.Plays.push_back(PlayRow(i, "Moon " + std::to_string(i), "River"));
  Write(rows);
  Store.reset();
  {
    std::fstream file(Path, std::ios::in | std::ios::out | std::ios::binary);
    for (int page = 20; page < 60; ++page) {
      file.seekp(page * 4096 + 100);
      file << std::string(2000, '\xA5');
    }
  }
  Open();
  ASSERT_TRUE(Keeps(0));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("it is damaged")));
  EXPECT_THAT(Names(), testing::Contains("History1.db.damaged-1"));
}

TEST_F(SqliteHistoryStoreTest, OneThatIsDamagedWhileItIsOpenIsPutAsideToo) {
  Open();
  HistoryRows rows;
  for (int i = 0; i < 3000; ++i) rows.Plays.push_back(PlayRow(i, "Moon " + std::to_string(i), "River"));
  Write(rows);
  Store.reset();
  Open();
  ASSERT_EQ(Plays("", 1).size(), 1U);
  const auto pages = static_cast<int>(std::filesystem::file_size(Path) / 4096);
  {
    std::fstream file(Path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(2 * 4096);
    for (int page = 2; page < pages; ++page) file << std::string(4096, '\xA5');
  }
  std::string refusal;
  Store->Search({.Text = "moon", .Channel = 0, .Since = {}, .Limit = 5000},
                [&refusal](const base::Result& asked, const auto&) { refusal = asked.Cause(); });
  ASSERT_TRUE(ComesTrue([&refusal] { return !refusal.empty(); }));
  EXPECT_EQ(refusal, "database disk image is malformed");
  EXPECT_TRUE(ComesTrue([this] {
    Write(OneSong());
    return !Troubles.empty();
  }));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("could not be read: it is damaged. It is kept as")));
  EXPECT_TRUE(ComesTrue([this] {
    const auto span = Span();
    return span && !span->Songs.empty() && Plays().empty();
  }));
  EXPECT_THAT(Names(), testing::Contains("History1.db.damaged-1"));
}

TEST_F(SqliteHistoryStoreTest, EachUnreadableOneHasANameOfItsOwn) {
  for (int i = 1; i <= 9; ++i) {
    PutFile(Path, "rubbish " + std::to_string(i) + std::string(2000, 'x'));
    Open();
    ASSERT_TRUE(Keeps(0));
    EXPECT_TRUE(FileText(Path + ".damaged-" + std::to_string(i)).starts_with("rubbish " + std::to_string(i)));
    Store.reset();
    std::filesystem::remove(Path);
  }
  PutFile(Path, "rubbish 10" + std::string(2000, 'x'));
  Troubles.clear();
  Open();
  Write(OneSong());
  ASSERT_TRUE(ComesTrue([this] { return !Troubles.empty(); }));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("cannot be written: it is damaged")));
  EXPECT_TRUE(FileText(Path).starts_with("rubbish 10")) << "nothing is deleted to make a name free";
}

TEST_F(SqliteHistoryStoreTest, WhatIsNoFileIsLeftAlone) {
  std::filesystem::create_directory(Path);
  Open();
  Write(OneSong());
  ASSERT_TRUE(ComesTrue([this] { return !Troubles.empty(); }));
  EXPECT_FALSE(Span());
  EXPECT_EQ(Refusal, "Is a directory");
  EXPECT_TRUE(std::filesystem::is_directory(Path));
  Store.reset();

  std::filesystem::remove(Path);
  ASSERT_EQ(::mkfifo(Path.c_str(), 0600), 0);
  Open();
  EXPECT_FALSE(Span());
  EXPECT_EQ(Refusal, "it is no file");
}

// A disk that fails.

TEST_F(SqliteHistoryStoreTest, AReadOnlyFolderIsSaidOnceAndTheRowsAreKeptUntilItWorks) {
  std::filesystem::permissions(Folder.Path(), std::filesystem::perms(0755));
  const std::string folder = Folder / "data";
  std::filesystem::create_directory(folder);
  Path = folder + "/History1.db";
  // Root is refused nothing, but no folder can be made where a file lies.
  std::filesystem::remove(folder);
  PutFile(folder, "");
  Open();
  for (int i = 0; i < 3; ++i) {
    Write(OneSong(i));
    Loop.Run(50ms);
  }
  ASSERT_TRUE(ComesTrue([this] { return !Troubles.empty(); }));
  EXPECT_THAT(Troubles, ElementsAre("The record " + Path + " cannot be written: Not a directory."));
  EXPECT_FALSE(Span());
  std::filesystem::remove(folder);
  Write(OneSong(3));
  EXPECT_TRUE(Keeps(4));
  ASSERT_TRUE(ComesTrue([this] { return Troubles.size() >= 2; }));
  EXPECT_THAT(Troubles,
              ElementsAre(testing::_, "The record " + Path + " is written again; no rows were lost."));
}

TEST_F(SqliteHistoryStoreTest, WhatWaitsIsBoundedAndPlaysGoFirst) {
  const std::string folder = Folder / "data";
  PutFile(folder, "");
  Path = folder + "/History1.db";
  Open();
  const auto most = static_cast<std::int64_t>(SqliteHistoryStore::kMostWaiting);
  HistoryRows rows;
  for (std::int64_t i = 0; i < most; ++i) rows.Plays.push_back(PlayRow(i, "Moon", "River"));
  Write(rows);
  for (int i = 0; i < 20; ++i) {
    rows = OneSong(i);
    // Of these the last one is enough.
    rows.Lags = {{.Channel = 7, .Changed = AtMinute(i), .Model = std::to_string(i)}};
    Write(rows);
    Loop.Run(20ms);
  }
  std::filesystem::remove(folder);
  Write(OneSong(20));
  ASSERT_TRUE(Keeps(21));
  ASSERT_TRUE(ComesTrue([this] { return Troubles.size() >= 2; }));
  EXPECT_THAT(Troubles.back(), HasSubstr("is written again; "));
  const std::vector<HistoryPlay> plays = Plays();
  EXPECT_LE(plays.size(), SqliteHistoryStore::kMostWaiting - 21);
  EXPECT_GE(plays.size(), SqliteHistoryStore::kMostWaiting - 22);
  EXPECT_EQ(plays.front().From, AtMinute(most - 1)) << "the oldest went";
}

/// No file of this process grows beyond so many bytes.
class LargestFile {
 public:
  explicit LargestFile(rlim_t bytes) {
    old_ = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &limit_);
    const rlimit less{bytes, limit_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &less);
  }
  ~LargestFile() {
    ::setrlimit(RLIMIT_FSIZE, &limit_);
    std::signal(SIGXFSZ, old_);
  }
  LargestFile(const LargestFile&) = delete;
  LargestFile& operator=(const LargestFile&) = delete;

 private:
  rlimit limit_{};
  void (*old_)(int) = nullptr;
};

TEST_F(SqliteHistoryStoreTest, ADiskThatIsFullLosesNothingThatWasWrittenAndWritesOnAfterwards) {
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  {
    const LargestFile full(600'000);
    std::int64_t minute = 1;
    EXPECT_TRUE(ComesTrue([this, &minute] {
      HistoryRows rows;
      for (int i = 0; i < 200; ++i, ++minute)
        rows.Plays.push_back(PlayRow(minute, "Artist " + std::to_string(minute), std::string(100, 'x')));
      Write(std::move(rows));
      return !Troubles.empty();
    }));
    EXPECT_THAT(Troubles, ElementsAre(HasSubstr("cannot be written: ")));
    const auto span = Span();
    ASSERT_TRUE(span) << "questions are still answered";
    EXPECT_EQ(span->Songs.size(), 1U);
  }
  Write(OneSong(1));
  EXPECT_TRUE(Keeps(2));
  ASSERT_TRUE(ComesTrue([this] { return Troubles.size() >= 2; }));
  EXPECT_THAT(Troubles.back(), HasSubstr("is written again"));
  Store.reset();
  EXPECT_EQ(Witness("PRAGMA integrity_check"), "ok\n");
}

TEST_F(SqliteHistoryStoreTest, AnotherProgramThatHoldsTheFileIsWaitedForAndNothingIsLost) {
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  test::ChildProcess sqlite(
      {"sh", "-c", "(echo 'BEGIN EXCLUSIVE;'; sleep 4; echo 'COMMIT;') | sqlite3 -batch " + Path});
  Loop.Run(500ms);
  const auto before = Loop.SteadyNow();
  Write(OneSong(1));
  EXPECT_LT(Loop.SteadyNow() - before, 200ms) << "the caller never waits";
  EXPECT_TRUE(ComesTrue([this] { return !Troubles.empty(); }));
  EXPECT_THAT(Troubles.front(), HasSubstr("database is locked"));
  EXPECT_EQ(sqlite.Wait(20s), 0);
  Write(OneSong(2));
  EXPECT_TRUE(Keeps(3));
}

// A program that is killed.

TEST_F(SqliteHistoryStoreTest, AKillInTheMiddleOfAWriteTearsNothing) {
  const unsigned seed = std::getenv("KESTRUNE_SEED") != nullptr
                            ? static_cast<unsigned>(std::stoul(std::getenv("KESTRUNE_SEED")))
                            : std::random_device()();
  std::cout << "KESTRUNE_SEED=" << seed << '\n';
  std::mt19937 dice(seed);
  std::size_t before = 0;
  for (int round = 0; round < 10; ++round) {
    {
      test::ChildProcess scribe({KESTRUNE_HISTORY_SCRIBE, Path, std::to_string(round * 100'000)});
      std::this_thread::sleep_for(std::chrono::milliseconds(100 + dice() % 400));
      scribe.Signal(SIGKILL);
      static_cast<void>(scribe.Wait(10s));
    }
    Open();
    const auto span = Span();
    ASSERT_TRUE(span) << Refusal;
    // On a busy machine a writer may not even have begun.
    EXPECT_GE(span->Songs.size(), before) << "round " << round;
    before = span->Songs.size();
    // Whole pieces, or nothing of them.
    const std::vector<HistoryPlay> plays = Plays();
    ASSERT_EQ(plays.size(), before);
    ASSERT_EQ(span->Events.size(), before);
    ASSERT_EQ(span->Runs.size(), before);
    for (std::size_t i = 0; i < before; ++i) {
      EXPECT_EQ(span->Songs[i].Began, span->Events[i].Due);
      EXPECT_EQ(span->Songs[i].Began, plays[before - 1 - i].From);
      EXPECT_EQ("Title " + span->Songs[i].Title, plays[before - 1 - i].Title);
    }
    Store.reset();
  }
  EXPECT_GT(before, 0U);
  EXPECT_TRUE(Troubles.empty());
  EXPECT_EQ(Witness("PRAGMA integrity_check"), "ok\n");
  EXPECT_THAT(Names(), testing::Not(testing::Contains(HasSubstr("damaged"))));
}

// What is old goes.

TEST_F(SqliteHistoryStoreTest, WhatIsOlderThanNinetyDaysGoes) {
  const DateValue now = Loop.Now();
  Open();
  HistoryRows rows;
  for (const int days : {200, 91, 89, 1}) {
    const DateValue then = now.AddDays(-days);
    rows.Songs.push_back(SongRow(0, std::to_string(days)));
    rows.Songs.back().Began = rows.Songs.back().Ended = then;
    rows.Events.push_back(EventRow(0));
    rows.Events.back().Due = then;
    rows.Events.back().Began = then;
    rows.Incidents.push_back({.Kind = IncidentKind::Line,
                              .Began = then,
                              .Ended = then,
                              .Seconds = 0,
                              .Cause = std::to_string(days)});
    rows.Runs.push_back({.Began = then, .Alive = then, .Closed = true});
    for (int i = 0; i < 2500; ++i) {
      HistoryPlay play = PlayRow(0, "Days " + std::to_string(days), "Title " + std::to_string(i % 50));
      play.From = then.AddSeconds(i);
      play.To = play.From;
      rows.Plays.push_back(play);
    }
  }
  Write(rows);
  ASSERT_TRUE(ComesTrue([this] { return Plays().size() == 5000; }));
  // The titles go last.
  ASSERT_TRUE(ComesTrue([this] { return Witness("SELECT count(*) FROM title") == "100\n"; }));
  const auto span = Span();
  ASSERT_TRUE(span);
  ASSERT_EQ(span->Songs.size(), 2U);
  EXPECT_EQ(span->Songs[0].Title, "89");
  EXPECT_EQ(span->Events.size(), 2U);
  EXPECT_EQ(span->Incidents.size(), 2U);
  EXPECT_EQ(span->Runs.size(), 2U);
  EXPECT_EQ(Witness("SELECT count(*) FROM heard WHERE hour < (SELECT min(began) FROM play) / 3600"), "0\n");
  EXPECT_NE(Witness("SELECT count(*) FROM heard"), "0\n");
  EXPECT_EQ(Plays("days 91").size(), 0U);
  EXPECT_EQ(Plays("days 89").size(), 2500U);
  Store.reset();
  test::ChildProcess sqlite(
      {"sqlite3", "-batch", Path, "INSERT INTO title_text(title_text, rank) VALUES('integrity-check', 1)"});
  EXPECT_EQ(sqlite.Wait(20s), 0) << "the index fits what is left";
}

TEST_F(SqliteHistoryStoreTest, ManyStationsThatNothingPlaysAnyMoreAreForgotten) {
  const std::atomic<bool> never{false};
  const HistoryFileOpened opened = OpenHistoryFile(Path, never);
  ASSERT_NE(opened.Database, nullptr);
  HistoryWriter writer(*opened.Database, {});
  HistoryRows rows;
  for (int i = 0; i < 3000; ++i) {
    rows.Plays.push_back(PlayRow(i, "Moon", "River"));
    rows.Plays.back().Station = "Garbled " + std::to_string(i);
  }
  const auto later = AtMinute(0).AddDays(HistoryLimits().Days + 10);
  rows.Plays.push_back(PlayRow(0, "Moon", "Tide"));
  rows.Plays.back().From = later;
  rows.Plays.back().To = later.AddMinutes(3);
  ASSERT_TRUE(writer.Write(rows));
  ASSERT_EQ(opened.Database->NumberOf("SELECT count(*) FROM station"), 3001);
  while (writer.Prune(later)) {
  }
  EXPECT_EQ(opened.Database->NumberOf("SELECT count(*) FROM station"), 1);
  EXPECT_EQ(opened.Database->NumberOf("SELECT count(*) FROM play"), 1);
}

TEST_F(SqliteHistoryStoreTest, WhatIsTooMuchGoesTheOldestFirst) {
  constexpr std::int64_t kMost = 2'000'000;
  const DateValue now = Loop.Now();
  Open({.Days = 90, .Bytes = kMost});
  for (int day = 60; day > 0; --day) {
    HistoryRows rows;
    for (int i = 0; i < 1500; ++i) {
      HistoryPlay play = PlayRow(0, "Day " + std::to_string(day), "Title " + std::to_string(i));
      play.From = now.AddDays(-day).AddSeconds(i);
      play.To = play.From;
      rows.Plays.push_back(play);
    }
    Write(rows);
    Loop.Run(5ms);
  }
  const auto used = [this] {
    return std::stoll(
               Witness("SELECT (SELECT * FROM pragma_page_count) - (SELECT * FROM pragma_freelist_count)")) *
           4096;
  };
  ASSERT_TRUE(ComesTrue([&] {
    Write({});
    // All of it has been written by then.
    const std::vector<HistoryPlay> newest = Plays("", 1);
    return newest.size() == 1 && newest[0].Artist == "Day 1" && used() <= kMost;
  }));
  const std::vector<HistoryPlay> plays = Plays();
  ASSERT_FALSE(plays.empty());
  EXPECT_EQ(plays.front().Artist, "Day 1");
  EXPECT_LT(plays.size(), 60U * 1500);
  EXPECT_GT(plays.size(), 3U * 1500) << "no more goes than has to";
  EXPECT_TRUE(Troubles.empty());
  EXPECT_TRUE(ComesTrue([this] {
    Write({});
    return std::stoll(Witness("PRAGMA page_count")) * 4096 <= kMost;
  }));
  Store.reset();
  EXPECT_LE(std::filesystem::file_size(Path), static_cast<std::size_t>(kMost))
      << "the file gives back its room";
  EXPECT_EQ(Witness("PRAGMA integrity_check"), "ok\n");
}

TEST_F(SqliteHistoryStoreTest, ManyTitlesAreSearchedAsFewAre) {
  Open();
  HistoryRows rows;
  for (int i = 0; i < 6000; ++i) rows.Plays.push_back(PlayRow(i, "Moon", "Title " + std::to_string(i)));
  Write(rows);
  ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
  const std::vector<HistoryPlay> plays = Plays("moon", 3);
  ASSERT_EQ(plays.size(), 3U);
  EXPECT_EQ(plays[0].Title, "Title 5999");
  EXPECT_EQ(plays[2].Title, "Title 5997");
  EXPECT_EQ(Plays("moon").size(), 6000U);
  EXPECT_EQ(Plays("moon 59").size(), 219U);
}

TEST_F(SqliteHistoryStoreTest, PlaysAreCountedPieceByPieceWithoutLoss) {
  Open();
  Write(ManyPlays());
  ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
  std::vector<PlayCount> counts;
  const auto count = [&](PlayedAs as) {
    bool answered = false;
    Store->CountPlays({.As = as, .Channel = 0, .Since = {}, .Limit = 100'000},
                      [&](const base::Result& asked, const std::vector<PlayCount>& got) {
                        answered = asked.Ok();
                        counts = got;
                      });
    return Loop.RunUntil([&answered] { return answered; }, 60s);
  };
  ASSERT_TRUE(count(PlayedAs::Song));
  ASSERT_EQ(counts.size(), 45'000U);
  EXPECT_EQ(counts[4999].Plays, 2);
  EXPECT_EQ(counts[5000].Plays, 1);
  EXPECT_EQ(counts[0].Title, "Title 4999");
  ASSERT_TRUE(count(PlayedAs::Artist));
  ASSERT_EQ(counts.size(), 1U);
  EXPECT_EQ(counts[0].Plays, 50'000);
}

TEST_F(SqliteHistoryStoreTest, ACountOfAllPlaysLetsOtherQuestionsGoFirst) {
  Open();
  Write(ManyPlays());
  ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
  std::string order;
  Store->CountPlays({}, [&order](const base::Result&, const auto&) { order += 'c'; });
  for (int i = 0; i < 3; ++i)
    Store->Search({.Text = "moon 44", .Channel = 0, .Since = {}, .Limit = 1},
                  [&order](const base::Result&, const auto&) { order += 's'; });
  ASSERT_TRUE(Loop.RunUntil([&order] { return order.size() == 4; }, 60s));
  EXPECT_EQ(order, "sssc");
}

TEST_F(SqliteHistoryStoreTest, ACountThatIsStoppedFails) {
  Open();
  Write(ManyPlays());
  ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
  std::atomic<bool> stop{false};
  const auto database = OpenHistoryForQuestions(Path, stop);
  ASSERT_NE(database, nullptr);
  PlayCounter counter({});
  EXPECT_EQ(counter.CountOn(*database), PlayCounter::Piece::More);
  stop = true;
  EXPECT_EQ(counter.CountOn(*database), PlayCounter::Piece::Failed);
  EXPECT_TRUE(database->WasStopped());
}

TEST_F(SqliteHistoryStoreTest, ACountDoesNotGoOnInAnotherRecord) {
  // Only a search for words reads the index, so that the record is tested between two pieces of the count.
  ASSERT_NO_FATAL_FAILURE(OpenWithDamagedWords());
  std::string refusal;
  Store->CountPlays({}, [&refusal](const base::Result& asked, const auto&) { refusal = asked.Cause(); });
  Store->Search({.Text = "moon", .Channel = 0, .Since = {}, .Limit = 1},
                [](const base::Result& asked, const auto&) { EXPECT_FALSE(asked.Ok()); });
  ASSERT_TRUE(ComesTrue([&refusal] { return !refusal.empty(); }));
  EXPECT_EQ(refusal, "the record was opened anew");
}

TEST_F(SqliteHistoryStoreTest, ItsEndComesWhileTheRecordIsTested) {
  ASSERT_NO_FATAL_FAILURE(OpenWithDamagedWords());
  ASSERT_TRUE(ASearchIsRefused());
  // The connection of a question that succeeds, which both the writer and the end would close.
  ASSERT_EQ(Plays("", 1).size(), 1U);
  Write(OneSong());
  Store.reset();
  // The end breaks the test off, but no row is lost.
  Open();
  EXPECT_TRUE(Keeps(1));
}

TEST_F(SqliteHistoryStoreTest, DamageOfTheWordsAloneIsFoundWhenASearchMeetsIt) {
  ASSERT_NO_FATAL_FAILURE(OpenWithDamagedWords());
  ASSERT_EQ(Plays("", 1).size(), 1U);
  EXPECT_THAT(Troubles, testing::IsEmpty());
  ASSERT_TRUE(ASearchIsRefused());
  Write(OneSong());
  EXPECT_TRUE(Keeps(1));
  EXPECT_THAT(Troubles, ElementsAre(HasSubstr("could not be read: it is damaged")));
  EXPECT_THAT(Plays("", 1), testing::IsEmpty());
}

TEST_F(SqliteHistoryStoreTest, ItsEndDoesNotWaitForQuestions) {
  Open();
  HistoryRows rows;
  for (int i = 0; i < 50'000; ++i)
    rows.Plays.push_back(PlayRow(i, "Moon", "Title " + std::to_string(i % 5000)));
  Write(rows);
  ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
  for (int i = 0; i < 500; ++i)
    Store->Search({.Text = "o", .Channel = 200, .Since = {}, .Limit = 50}, [](auto&&...) {});
  const auto before = Loop.SteadyNow();
  Store.reset();
  EXPECT_LT(Loop.SteadyNow() - before, 3s);
}

TEST_F(SqliteHistoryStoreTest, ItsEndBreaksOffTheSearchThatRuns) {
  Open();
  Write(OneSong());
  ASSERT_TRUE(Keeps(1));
  Store.reset();
  // So many titles that a word of two letters, for which all are read, keeps the search busy.
  test::ChildProcess sqlite(
      {"sqlite3", "-batch", Path,
       "INSERT INTO title (artist, title) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
       "WHERE i < 200000) SELECT 'Artist ' || i, 'Title ' || i FROM n"});
  ASSERT_EQ(sqlite.Wait(120s), 0);
  Open();
  static_cast<void>(Plays("", 1));  // it has been tested
  auto before = Loop.SteadyNow();
  EXPECT_TRUE(Plays("zz").empty());
  const auto whole = Loop.SteadyNow() - before;
  // On a busy machine an end may take long for other reasons; not each time.
  auto shortest = whole;
  for (int round = 0; round < 3; ++round) {
    Store->Search({.Text = "zz", .Channel = 0, .Since = {}, .Limit = 50}, [](auto&&...) {});
    Loop.Run(whole / 8);
    before = Loop.SteadyNow();
    Store.reset();
    shortest = std::min(shortest, Loop.SteadyNow() - before);
    Open();
    static_cast<void>(Plays("", 1));
  }
  EXPECT_LT(shortest, whole / 2);
}

TEST_F(SqliteHistoryStoreTest, AQuestionThatIsStoppedIsNeitherAnswerNorDamage) {
  Open();
  HistoryRows rows;
  for (int i = 0; i < 3000; ++i) rows.Plays.push_back(PlayRow(i, "Moon " + std::to_string(i), "River"));
  Write(rows);
  ASSERT_TRUE(ComesTrue([this] { return Plays("", 1).size() == 1; }));
  std::atomic<bool> stop{false};
  const auto database = OpenHistoryForQuestions(Path, stop);
  ASSERT_NE(database, nullptr);
  HistoryReader reader(*database);
  EXPECT_TRUE(reader.Search({.Text = "zz", .Channel = 0, .Since = {}, .Limit = 50}));
  stop = true;
  EXPECT_FALSE(reader.Search({.Text = "zz", .Channel = 0, .Since = {}, .Limit = 50}));
  EXPECT_TRUE(database->WasStopped());
  EXPECT_FALSE(database->IsDamaged());
}

TEST_F(SqliteHistoryStoreTest, ATestThatIsStoppedOpensTheRecordAllTheSame) {
  Open();
  HistoryRows rows;
  for (int i = 0; i < 3000; ++i) rows.Plays.push_back(PlayRow(i, "Moon " + std::to_string(i), "River"));
  Write(rows);
  Store.reset();
  const std::atomic<bool> stop{true};
  const HistoryFileOpened opened = OpenHistoryFile(Path, stop);
  EXPECT_TRUE(opened.Outcome.Ok());
  EXPECT_NE(opened.Database, nullptr);
  EXPECT_EQ(opened.PutAside, "");
}

}  // namespace
}  // namespace kestrune::platform
