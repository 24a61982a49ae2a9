#include "platform/sqlite/HistoryFile.h"

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
#include "platform/sqlite/HistorySchema.h"

namespace kestrune::platform {
namespace {

constexpr int kMostPutAside = 9;

/// What a file turns out to be.
enum class Verdict { Good, Empty, Unreadable, Failed };

struct Examined {
  Verdict Is = Verdict::Good;
  std::string Why;           ///< it is unreadable
  std::string Word;          ///< for the name it is put aside under
  std::int64_t Version = 0;  ///< of a good one
};

Examined NoDatabase() {
  return {Verdict::Unreadable, "it is damaged, or no database", "damaged"};
}

/// Nothing if the test failed or was stopped.
std::optional<bool> IsWhole(SqliteConnection& database, HistoryTest test) {
  const bool quick = test == HistoryTest::Quick;
  SqliteStatement check(database, quick ? "PRAGMA quick_check(1)" : "PRAGMA integrity_check(1)");
  if (!check.Next()) return std::nullopt;
  if (check.Text(0) != "ok") return false;
  check.Reset();
  if (quick || database.Run("INSERT INTO title_text (title_text) VALUES ('integrity-check')")) return true;
  if (database.IsDamaged()) return false;
  return std::nullopt;
}

Examined Examine(SqliteConnection& database, bool hasBytes, const std::atomic<bool>& stop, HistoryTest test) {
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
  if (*application != kHistoryApplication) return {Verdict::Unreadable, "it is another program's", "foreign"};
  if (*version > HistoryVersion())
    return {Verdict::Unreadable, "a later version of Kestrune has written it", "later"};
  const auto schema = SchemaOf(database);
  const auto expected = SchemaOfVersion(*version);
  if (!schema || (!expected && *version > 0)) return failed();
  if (schema != expected)
    return {Verdict::Unreadable, "it is damaged: it is not built as it should be", "damaged"};

  database.SetStop(&stop);
  const std::optional<bool> whole = IsWhole(database, test);
  database.SetStop(nullptr);
  if (!whole && !database.WasStopped()) return failed();
  if (whole == false) return {Verdict::Unreadable, "it is damaged", "damaged"};
  return {Verdict::Good, {}, {}, *version};
}

/// Makes an empty file a record, and one of an earlier version a present one.
bool Prepare(SqliteConnection& database, const Examined& examined) {
  if (examined.Is == Verdict::Empty && !database.Run("PRAGMA auto_vacuum=INCREMENTAL")) return false;
  return examined.Version == HistoryVersion() || BringUpToDate(database, examined.Version);
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

HistoryFileOpened OpenHistoryFile(const std::string& path, const std::atomic<bool>& stop, HistoryTest test) {
  HistoryFileOpened opened;
  bool suspected = false;
  for (int attempt = 0; attempt < 3; ++attempt) {
    bool hasBytes = false;
    if (base::Result made = MakeFile(path, hasBytes); !made.Ok()) {
      opened.Outcome = std::move(made);
      return opened;
    }
    auto database = std::make_unique<SqliteConnection>(path);
    const Examined examined = Examine(*database, hasBytes, stop, test);
    if (examined.Is == Verdict::Unreadable) {
      database.reset();
      // To the database a read that the system refuses is damage too; only what is damaged is so at the second look.
      if (!std::exchange(suspected, true)) continue;
      opened.PutAside = PutHistoryAside(path, examined.Word);
      opened.WhyPutAside = examined.Why;
      opened.Outcome = base::Result::Failed(examined.Why);
      if (opened.PutAside.empty()) return opened;
      continue;
    }
    const bool ready = examined.Is != Verdict::Failed && Prepare(*database, examined) &&
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
