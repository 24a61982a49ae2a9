#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/DateValue.h"
#include "platform/sqlite/SqliteConnection.h"

namespace kestrune::platform {

/// What tells a record from other programs' databases.
inline constexpr std::int64_t kHistoryApplication = 0x4B535448;

/// The version that the program writes. Each version follows from the one before by a step, so that a record of any
/// age can be brought up to date, and a new one is built by all the steps.
[[nodiscard]] std::int64_t HistoryVersion();

/// How a database is built, as one text; nothing if it could not be read.
[[nodiscard]] std::optional<std::string> SchemaOf(SqliteConnection& database);

/// How one of that version, 1 or higher, has to be built; nothing if there is no such version.
[[nodiscard]] std::optional<std::string> SchemaOfVersion(std::int64_t version);

/// Takes the steps that lead from `version` to the present one, and notes it: all of them or, if it fails, none. An
/// empty database has version 0.
[[nodiscard]] bool BringUpToDate(SqliteConnection& database, std::int64_t version);

/// A moment as the tables have it, in seconds since 1970 of local time, and back; any number becomes a moment of the
/// calendar.
[[nodiscard]] std::int64_t HistorySecond(base::DateValue moment);
[[nodiscard]] base::DateValue HistoryMoment(std::int64_t second);

/// The hour of a moment, as the table of what was heard counts them, and the moment at which an hour begins.
[[nodiscard]] std::int64_t HistoryHour(base::DateValue moment);
[[nodiscard]] base::DateValue HistoryHourBegins(std::int64_t hour);

}  // namespace kestrune::platform
