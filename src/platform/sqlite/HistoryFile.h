#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "base/Result.h"
#include "platform/sqlite/SqliteConnection.h"

namespace kestrune::platform {

/// What became of opening the file.
struct HistoryFileOpened {
  base::Result Outcome = base::Result::Done();
  std::unique_ptr<SqliteConnection> Database;  ///< null if it failed
  std::string PutAside;                        ///< where an unreadable file lies now; empty if there was none
  std::string WhyPutAside;
};

/// How the file is tested.
enum class HistoryTest : std::uint8_t {
  Quick,  ///< its structure; takes as long as the file is large
  Whole,  ///< also whether its indexes, that of the words too, have what the tables have; takes some times longer
};

/// Opens the record for writing: makes it with mode 0600 if it is not there, and its folder; tests whether it is whole.
/// One that is damaged, another program's or a later version's is put aside under a name that is free, and a new one
/// is begun. If `stop` becomes true, the rest of the test is left out.
[[nodiscard]] HistoryFileOpened OpenHistoryFile(const std::string& path, const std::atomic<bool>& stop,
                                                HistoryTest test = HistoryTest::Quick);

/// Opens it for questions; null if it cannot be opened.
[[nodiscard]] std::unique_ptr<SqliteConnection> OpenHistoryForQuestions(const std::string& path,
                                                                        const std::atomic<bool>& stop);

/// Gives the file another name in its folder, with what belongs to it: its path, `.WORD-` and a number. No connection
/// of this process may be open. Empty if no name is free, or the file cannot be renamed.
[[nodiscard]] std::string PutHistoryAside(const std::string& path, const std::string& word);

}  // namespace kestrune::platform
