#include "platform/sqlite/SqliteConnection.h"

#include <system_error>

#include <sqlite3.h>

namespace kestrune::platform {
namespace {

using base::DateValue;

constexpr std::int64_t kDaysFromDateZeroTo1970 = 25569;
constexpr std::int64_t kSecondsTo1970 = kDaysFromDateZeroTo1970 * 86400;

// Another program may look at the file; it is waited for, but not long.
constexpr int kPatienceMs = 2000;
constexpr int kStepsBetweenLooks = 2000;

constexpr int PrimaryCode(int outcome) {
  return outcome & 0xFF;
}

}  // namespace

SqliteConnection::SqliteConnection(const std::string& path) {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  if (Note(::sqlite3_open_v2(path.c_str(), &database_, kFlags, nullptr))) return;
  ::sqlite3_busy_timeout(database_, kPatienceMs);
  ::sqlite3_db_config(database_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  ::sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  ::sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  ::sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

void SqliteConnection::SetStop(const std::atomic<bool>* stop) {
  const auto look = [](void* flag) -> int {
    return static_cast<const std::atomic<bool>*>(flag)->load() ? 1 : 0;
  };
  ::sqlite3_progress_handler(database_, kStepsBetweenLooks, stop == nullptr ? nullptr : +look,
                             const_cast<std::atomic<bool>*>(stop));
}

SqliteConnection::~SqliteConnection() {
  ::sqlite3_close_v2(database_);
}

bool SqliteConnection::Note(int outcome) {
  const int primary = PrimaryCode(outcome);
  if (primary == SQLITE_OK || primary == SQLITE_ROW || primary == SQLITE_DONE) return false;
  // A connection that did not open calls all that follows a misuse, which says nothing about the file.
  if (primary == SQLITE_MISUSE && lastFailure_ != SQLITE_OK) return true;
  lastFailure_ = outcome;
  systemError_ = database_ == nullptr ? 0 : ::sqlite3_system_errno(database_);
  damaged_ = damaged_ || primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
  stopped_ = stopped_ || primary == SQLITE_INTERRUPT;
  return true;
}

bool SqliteConnection::Run(const char* commands) {
  return !Note(::sqlite3_exec(database_, commands, nullptr, nullptr, nullptr));
}

std::optional<std::int64_t> SqliteConnection::NumberOf(std::string_view command) {
  SqliteStatement statement(*this, command);
  if (!statement.Next()) return std::nullopt;
  return statement.Number(0);
}

std::int64_t SqliteConnection::LastRowId() const {
  return ::sqlite3_last_insert_rowid(database_);
}

std::int64_t SqliteConnection::Changes() const {
  return ::sqlite3_total_changes(database_);
}

bool SqliteConnection::InTransaction() const {
  return database_ != nullptr && ::sqlite3_get_autocommit(database_) == 0;
}

base::Result SqliteConnection::Failure() const {
  // The system's own words are the better ones, where it was the system that refused.
  const int primary = PrimaryCode(lastFailure_);
  const bool bySystem = primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN;
  if (bySystem && systemError_ != 0)
    return base::Result::Failed(std::generic_category().message(systemError_));
  return base::Result::Failed(::sqlite3_errstr(lastFailure_ == 0 ? SQLITE_ERROR : primary));
}

bool SqliteConnection::IsUnreadable() const {
  if (damaged_) return true;
  switch (PrimaryCode(lastFailure_)) {
    // What the system, or another program that has the file open, is to blame for.
    case SQLITE_OK:
    case SQLITE_PERM:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_NOMEM:
    case SQLITE_READONLY:
    case SQLITE_INTERRUPT:
    case SQLITE_IOERR:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_PROTOCOL:
    case SQLITE_NOLFS:
    case SQLITE_AUTH:
      return false;
    default:
      return true;
  }
}

void SqliteConnection::ReleaseMemory() {
  ::sqlite3_db_release_memory(database_);
}

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* statement) const {
  ::sqlite3_finalize(statement);
}

SqliteStatement::SqliteStatement(SqliteConnection& database, std::string_view command)
    : database_(&database) {
  sqlite3_stmt* statement = nullptr;
  failed_ = database.Note(::sqlite3_prepare_v3(database.Handle(), command.data(),
                                               static_cast<int>(command.size()), 0, &statement, nullptr));
  statement_.reset(statement);
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::int64_t value) {
  if (statement_)
    failed_ = database_->Note(::sqlite3_bind_int64(statement_.get(), parameter, value)) || failed_;
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::string_view value) {
  if (!statement_) return *this;
  const char* text = value.data() == nullptr ? "" : value.data();
  failed_ = database_->Note(::sqlite3_bind_text(statement_.get(), parameter, text,
                                                static_cast<int>(value.size()), SQLITE_TRANSIENT)) ||
            failed_;
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, DateValue value) {
  return Bind(parameter, value.Seconds() - kSecondsTo1970);
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::optional<DateValue> value) {
  return value ? Bind(parameter, *value) : BindNull(parameter);
}

SqliteStatement& SqliteStatement::BindNull(int parameter) {
  if (statement_) failed_ = database_->Note(::sqlite3_bind_null(statement_.get(), parameter)) || failed_;
  return *this;
}

bool SqliteStatement::Next() {
  if (!statement_ || failed_) return false;
  const int outcome = ::sqlite3_step(statement_.get());
  failed_ = database_->Note(outcome);
  return outcome == SQLITE_ROW;
}

bool SqliteStatement::Run() {
  while (Next()) {
  }
  const bool done = statement_ != nullptr && !failed_;
  Reset();
  return done;
}

void SqliteStatement::Reset() {
  if (!statement_) return;
  ::sqlite3_reset(statement_.get());
  failed_ = false;
}

std::int64_t SqliteStatement::Number(int column) const {
  return ::sqlite3_column_int64(statement_.get(), column);
}

std::string SqliteStatement::Text(int column) const {
  const unsigned char* text = ::sqlite3_column_text(statement_.get(), column);
  if (text == nullptr) return {};
  const auto length = static_cast<std::size_t>(::sqlite3_column_bytes(statement_.get(), column));
  return {reinterpret_cast<const char*>(text), length};
}

DateValue SqliteStatement::Moment(int column) const {
  // Any number becomes a moment of the calendar.
  return DateValue::FromSeconds(kSecondsTo1970).AddSeconds(Number(column));
}

std::optional<DateValue> SqliteStatement::MaybeMoment(int column) const {
  if (IsNull(column)) return std::nullopt;
  return Moment(column);
}

bool SqliteStatement::IsNull(int column) const {
  return ::sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

}  // namespace kestrune::platform
