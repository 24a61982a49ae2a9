#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/EventLoop.h"
#include "platform/HistoryStore.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryWriter.h"
#include "platform/sqlite/SqliteConnection.h"

namespace kestrune::platform {

class HistoryReader;

/// The record in a database file of one unit. One thread opens, tests and writes it and removes what is old; another
/// answers questions, on a connection of its own. The loop must outlive it.
class SqliteHistoryStore final : public HistoryStore {
 public:
  /// So many rows wait at most while nothing can be written; then the oldest plays go first.
  static constexpr std::size_t kMostWaiting = 5000;

  SqliteHistoryStore(base::EventLoop& loop, std::string path, HistoryLimits limits = {});
  /// Waits for what is being written, not for what is being asked or tested.
  ~SqliteHistoryStore() override;
  SqliteHistoryStore(const SqliteHistoryStore&) = delete;
  SqliteHistoryStore& operator=(const SqliteHistoryStore&) = delete;

  void Write(HistoryRows rows) override;
  void ReadSpan(base::DateValue from, base::DateValue to, RowsAnswer answer) override;
  void Search(HistorySearch search, PlaysAnswer answer) override;
  void CountPlays(MostPlayedSearch search, CountsAnswer answer) override;
  void ReadCuts(CutSearch search, SongsAnswer answer) override;
  void ReadFolder(std::string folder, SongsAnswer answer) override;
  void ReadLags(LagsAnswer answer) override;
  void SetTroubleHandler(TroubleHandler handler) override { handler_ = std::move(handler); }

 private:
  /// `Work` runs on the reader's thread and returns how to answer, or nothing if it failed; then `Refuse` answers. If
  /// it returns an empty function there is more to do, and it is called again after the questions that wait.
  struct Question {
    std::function<std::optional<std::function<void()>>(HistoryReader& reader)> Work;
    std::function<void(const base::Result& failure)> Refuse;
    int Connection = 0;  // the one it was begun on; 0: not begun
  };
  enum class Opened { NotYet, Done, Failed };

  // The writer's thread.
  void WriteRows();
  [[nodiscard]] bool Open(HistoryTest test);
  void WriteBatch(HistoryRows rows);
  void TakeBack(HistoryRows rows);
  /// Opens a record that looks damaged again. To the database a read that the system refuses is damage too; only what
  /// is damaged is put aside.
  void LookAgain();
  void Say(std::string line);

  // The reader's thread.
  void AnswerQuestions();
  /// Empty if there is more to do, or if the record is being tested.
  [[nodiscard]] std::function<void()> Answer(Question& question);

  void Ask(Question question);
  /// `read` runs on the reader's thread; nothing if it failed.
  template <typename Asker, typename Read>
  void AskFor(Asker answer, Read read);
  void Report();

  base::EventLoop& loop_;
  const std::string path_;
  const HistoryLimits limits_;

  std::mutex mutex_;
  std::condition_variable written_;  // for the writer
  std::condition_variable asked_;    // for the reader
  // Under the mutex.
  HistoryRows waiting_;
  std::int64_t lost_ = 0;
  base::DateValue now_;
  bool fresh_ = false;  // there is something that has not been tried
  bool busy_ = true;    // the writer
  bool closing_ = false;
  Opened opened_ = Opened::NotYet;
  base::Result openFailure_ = base::Result::Done();
  std::deque<Question> questions_;
  bool answering_ = false;
  std::vector<std::function<void()>> answers_;
  std::vector<std::string> lines_;

  std::atomic<bool> stop_{false};     // the test and the questions
  std::atomic<bool> suspect_{false};  // the reader found the file damaged

  // Held while a question is worked on. The connection of the questions is closed before the file gets another name:
  // whoever closes last removes what lies beside a file of that name.
  std::mutex reading_;
  std::unique_ptr<SqliteConnection> questionsDatabase_;
  int connections_ = 0;  // opened for questions so far

  // The writer's alone.
  std::unique_ptr<SqliteConnection> database_;
  std::unique_ptr<HistoryWriter> writer_;
  bool failing_ = false;

  TroubleHandler handler_;
  std::unique_ptr<base::Timer> tmrReport_;
  std::thread writerThread_;
  std::thread readerThread_;
};

}  // namespace kestrune::platform
