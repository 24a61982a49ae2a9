#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "base/Result.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kestrune::platform {

class SqliteConnection;

/// A prepared command of a database, closed with the object. Parameters count from 1, columns from 0. Values are only
/// ever bound, never part of the command. A statement whose command could not be prepared does nothing.
class SqliteStatement {
 public:
  SqliteStatement() = default;
  SqliteStatement(SqliteConnection& database, std::string_view command);

  SqliteStatement& Bind(int parameter, std::int64_t value);
  SqliteStatement& Bind(int parameter, std::string_view value);
  SqliteStatement& Bind(int parameter, const std::string& value) {
    return Bind(parameter, std::string_view(value));
  }
  /// As seconds since 1970 of local time, which the database's own date functions read too.
  SqliteStatement& Bind(int parameter, base::DateValue value);
  SqliteStatement& Bind(int parameter, std::optional<base::DateValue> value);
  SqliteStatement& BindNull(int parameter);

  /// The next row; false at the end, and if it failed: see Failed.
  [[nodiscard]] bool Next();
  /// Runs it to its end, and makes it ready to be bound again.
  [[nodiscard]] bool Run();
  /// Ready to be bound and run again.
  void Reset();
  /// Whether the last Next failed.
  [[nodiscard]] bool Failed() const { return failed_; }

  /// What a database of rubbish has for a number may be any number; a text may be any bytes.
  [[nodiscard]] std::int64_t Number(int column) const;
  [[nodiscard]] std::string Text(int column) const;
  [[nodiscard]] base::DateValue Moment(int column) const;
  [[nodiscard]] std::optional<base::DateValue> MaybeMoment(int column) const;
  [[nodiscard]] bool IsNull(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };

  SqliteConnection* database_ = nullptr;
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
  bool failed_ = false;
};

/// An open database. Used by one thread at a time. Nothing in its file is trusted: its schema runs no code.
class SqliteConnection {
 public:
  /// Opens a file that is there. If that fails, so does whatever is asked of it, and Failure says why.
  explicit SqliteConnection(const std::string& path);
  ~SqliteConnection();
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;

  /// From now on commands are interrupted while `stop` is true; null: never. It must outlive the object.
  void SetStop(const std::atomic<bool>* stop);

  /// Runs commands that have no parameters, up to the first that fails.
  [[nodiscard]] bool Run(const char* commands);
  /// The first column of the first row; nothing if it failed or there is none.
  [[nodiscard]] std::optional<std::int64_t> NumberOf(std::string_view command);
  [[nodiscard]] std::int64_t LastRowId() const;
  /// Rows changed since it was opened.
  [[nodiscard]] std::int64_t Changes() const;
  /// Whether a transaction is open.
  [[nodiscard]] bool InTransaction() const;

  /// Of the last call that failed.
  [[nodiscard]] base::Result Failure() const;
  /// Whether the file was found to be no database, or a broken one.
  [[nodiscard]] bool IsDamaged() const { return damaged_; }
  /// The same of a file that is being opened: there also what the commands say may show that it is none of ours.
  [[nodiscard]] bool IsUnreadable() const;
  [[nodiscard]] bool WasStopped() const { return stopped_; }
  /// Gives back memory that is kept only for speed.
  void ReleaseMemory();

  [[nodiscard]] sqlite3* Handle() const { return database_; }
  /// Takes the outcome of a call, and whether it failed.
  bool Note(int outcome);

 private:
  sqlite3* database_ = nullptr;
  int lastFailure_ = 0;
  int systemError_ = 0;
  bool damaged_ = false;
  bool stopped_ = false;
};

}  // namespace kestrune::platform
