#include "platform/sqlite/HistoryFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/NoReplaceRename.h"
#include "platform/posix/SystemError.h"

namespace kestrune::platform {
namespace {

constexpr std::int64_t kApplication = 0x4B535448;
constexpr std::int64_t kVersion = 1;
constexpr int kMostPutAside = 9;

// Moments are seconds since 1970 of local time. What the channels play is most of it, so its rows hold only numbers:
// a song's text and a station's name are kept once. title_text finds any three letters of a title or an artist.
constexpr std::array kSchema{
    "CREATE TABLE run (began INTEGER PRIMARY KEY, alive INTEGER NOT NULL, closed INTEGER NOT NULL)",
    "CREATE TABLE song (began INTEGER NOT NULL, ended INTEGER NOT NULL, channel INTEGER NOT NULL, station "
    "TEXT NOT NULL, "
    "genre TEXT NOT NULL, artist TEXT NOT NULL, title TEXT NOT NULL, length_ms INTEGER NOT NULL, fate "
    "INTEGER NOT NULL, "
    "reason TEXT NOT NULL, file TEXT NOT NULL, event INTEGER NOT NULL, samples_lost INTEGER NOT NULL, "
    "missing_ms INTEGER NOT NULL, silent_ms INTEGER NOT NULL, overloaded_ms INTEGER NOT NULL, "
    "line_lost_ms INTEGER NOT NULL)",
    "CREATE INDEX song_ended ON song (ended)",
    "CREATE TABLE event (entry INTEGER NOT NULL, due INTEGER NOT NULL, began INTEGER, planned_seconds "
    "INTEGER NOT NULL, "
    "channel INTEGER NOT NULL, station TEXT NOT NULL, whole_songs INTEGER NOT NULL, ended INTEGER, kept "
    "INTEGER NOT NULL, "
    "dropped INTEGER NOT NULL, why_not TEXT NOT NULL)",
    "CREATE UNIQUE INDEX event_name ON event (due, entry, coalesce(began, -1))",
    "CREATE TABLE incident (began INTEGER NOT NULL, kind INTEGER NOT NULL, ended INTEGER, seconds INTEGER "
    "NOT NULL, "
    "cause TEXT NOT NULL, PRIMARY KEY (began, kind)) WITHOUT ROWID",
    "CREATE TABLE station (id INTEGER PRIMARY KEY, name TEXT NOT NULL, genre TEXT NOT NULL, UNIQUE (name, "
    "genre))",
    "CREATE TABLE title (id INTEGER PRIMARY KEY, artist TEXT NOT NULL, title TEXT NOT NULL, UNIQUE (artist, "
    "title))",
    "CREATE VIRTUAL TABLE title_text USING fts5 (artist, title, content='title', content_rowid='id', "
    "tokenize='trigram')",
    "CREATE TABLE play (began INTEGER NOT NULL, channel INTEGER NOT NULL, title INTEGER NOT NULL, "
    "seconds INTEGER NOT NULL, station INTEGER NOT NULL, PRIMARY KEY (began, channel, title)) WITHOUT ROWID",
    "CREATE INDEX play_title ON play (title, began)",
};

/// What a file turns out to be.
enum class Verdict { Good, Empty, Unreadable, Failed };

struct Examined {
  Verdict Is = Verdict::Good;
  std::string Why;   ///< it is unreadable
  std::string Word;  ///< for the name it is put aside under
};

/// The whole schema as one text, but for what the index keeps of its own.
std::optional<std::string> SchemaOf(SqliteConnection& database) {
  SqliteStatement rows(
      database,
      "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL AND name NOT LIKE 'title\\_text\\__%' "
      "ESCAPE '\\' ORDER BY sql");
  std::string schema;
  while (rows.Next()) schema += rows.Text(0) + '\n';
  if (rows.Failed()) return std::nullopt;
  return schema;
}

std::string OwnSchema() {
  std::array<std::string_view, kSchema.size()> sorted;
  std::copy(kSchema.begin(), kSchema.end(), sorted.begin());
  std::sort(sorted.begin(), sorted.end());
  std::string schema;
  for (const std::string_view command : sorted) schema.append(command) += '\n';
  return schema;
}

Examined NoDatabase() {
  return {Verdict::Unreadable, "it is damaged, or no database", "damaged"};
}

Examined Examine(SqliteConnection& database, bool hasBytes, const std::atomic<bool>& stop) {
  const auto failed = [&database] {
    return database.IsUnreadable() ? NoDatabase() : Examined{Verdict::Failed, {}, {}};
  };
  const auto version = database.NumberOf("PRAGMA user_version");
  const auto application = database.NumberOf("PRAGMA application_id");
  const auto things = database.NumberOf("SELECT count(*) FROM sqlite_schema");
  if (!version || !application || !things) return failed();
  if (*things == 0 && *version == 0 && *application == 0) {
    // To the database a file that is shorter than a page is empty too.
    if (hasBytes && database.NumberOf("PRAGMA page_count") == 0) return NoDatabase();
    return {Verdict::Empty, {}, {}};
  }
  if (*application != kApplication) return {Verdict::Unreadable, "it is another program's", "foreign"};
  if (*version > kVersion)
    return {Verdict::Unreadable, "a later version of Kestrune has written it", "later"};
  const auto schema = SchemaOf(database);
  if (!schema) return failed();
  if (*version < kVersion || *schema != OwnSchema())
    return {Verdict::Unreadable, "it is damaged: it is not built as it should be", "damaged"};

  database.SetStop(&stop);
  SqliteStatement check(database, "PRAGMA quick_check(1)");
  const bool said = check.Next();
  database.SetStop(nullptr);
  if (!said) return database.WasStopped() ? Examined{} : failed();
  if (check.Text(0) != "ok") return {Verdict::Unreadable, "it is damaged", "damaged"};
  return {};
}

bool Create(SqliteConnection& database) {
  std::string commands = "PRAGMA auto_vacuum=INCREMENTAL;BEGIN IMMEDIATE;";
  for (const char* command : kSchema) commands.append(command) += ';';
  commands += fmt::format("PRAGMA application_id={};PRAGMA user_version={};COMMIT", kApplication, kVersion);
  return database.Run(commands.c_str());
}

/// Done, if a file lies there that a database can be.
base::Result MakeFile(const std::string& path, bool& hasBytes) {
  MakeFolders(FolderOf(path), kOwnFolder);
  const FileDescriptor file(
      ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, kOwnFile));
  if (!file.IsOpen()) return FailedWith(errno);
  struct stat status {};
  if (::fstat(file.Number(), &status) != 0) return FailedWith(errno);
  if (!S_ISREG(status.st_mode)) return base::Result::Failed("it is no file");
  hasBytes = status.st_size > 0;
  // One that is open to others is closed to them; what cannot be closed is still the record.
  if ((status.st_mode & 0777U) != kOwnFile) static_cast<void>(::fchmod(file.Number(), kOwnFile));
  return base::Result::Done();
}

}  // namespace

std::string PutHistoryAside(const std::string& path, const std::string& word) {
  for (int number = 1; number <= kMostPutAside; ++number) {
    std::string aside = fmt::format("{}.{}-{}", path, word, number);
    const int error = RenameNeverReplacing(path, aside);
    if (error == EEXIST) continue;
    if (error != 0) return {};
    // What was written last may still lie beside it.
    static_cast<void>(RenameNeverReplacing(path + "-wal", aside + "-wal"));
    static_cast<void>(::unlink((path + "-shm").c_str()));
    return aside;
  }
  return {};
}

HistoryFileOpened OpenHistoryFile(const std::string& path, const std::atomic<bool>& stop) {
  HistoryFileOpened opened;
  for (int attempt = 0; attempt < 2; ++attempt) {
    bool hasBytes = false;
    if (base::Result made = MakeFile(path, hasBytes); !made.Ok()) {
      opened.Outcome = std::move(made);
      return opened;
    }
    auto database = std::make_unique<SqliteConnection>(path);
    const Examined examined = Examine(*database, hasBytes, stop);
    if (examined.Is == Verdict::Unreadable) {
      database.reset();
      opened.PutAside = PutHistoryAside(path, examined.Word);
      opened.WhyPutAside = examined.Why;
      opened.Outcome = base::Result::Failed(examined.Why);
      if (opened.PutAside.empty()) return opened;
      continue;
    }
    const bool ready = examined.Is != Verdict::Failed &&
                       (examined.Is != Verdict::Empty || Create(*database)) &&
                       database->Run(
                           "PRAGMA journal_mode=WAL;PRAGMA synchronous=NORMAL;PRAGMA cache_size=-256;"
                           "PRAGMA journal_size_limit=4194304;PRAGMA secure_delete=OFF;"
                           "PRAGMA cell_size_check=ON;PRAGMA temp_store=MEMORY");
    opened.Outcome = ready ? base::Result::Done() : database->Failure();
    if (ready) opened.Database = std::move(database);
    return opened;
  }
  return opened;
}

std::unique_ptr<SqliteConnection> OpenHistoryForQuestions(const std::string& path,
                                                          const std::atomic<bool>& stop) {
  auto database = std::make_unique<SqliteConnection>(path);
  database->SetStop(&stop);
  if (!database->Run("PRAGMA query_only=ON;PRAGMA cache_size=-512;PRAGMA cell_size_check=ON;"
                     "PRAGMA temp_store=MEMORY"))
    return nullptr;
  return database;
}

}  // namespace kestrune::platform
