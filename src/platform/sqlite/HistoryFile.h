#pragma once

#include <atomic>
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

/// Opens the record for writing: makes it with mode 0600 if it is not there, and its folder; tests whether it is whole.
/// One that is damaged, another program's or a later version's is put aside under a name that is free, and a new one
/// is begun. Takes as long as the file is large, unless `stop` becomes true, which leaves out the rest of the test.
[[nodiscard]] HistoryFileOpened OpenHistoryFile(const std::string& path, const std::atomic<bool>& stop);

/// Opens it for questions; null if it cannot be opened.
[[nodiscard]] std::unique_ptr<SqliteConnection> OpenHistoryForQuestions(const std::string& path,
                                                                        const std::atomic<bool>& stop);

/// Gives the file another name in its folder, with what belongs to it: its path, `.WORD-` and a number. No connection
/// of this process may be open. Empty if no name is free, or the file cannot be renamed.
[[nodiscard]] std::string PutHistoryAside(const std::string& path, const std::string& word);

}  // namespace kestrune::platform
