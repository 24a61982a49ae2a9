#include "platform/sqlite/SqliteHistoryStore.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/PlayCounter.h"

namespace kestrune::platform {
namespace {

using base::Result;

constexpr std::chrono::milliseconds kReportInterval{20};

template <typename Row>
void Append(std::vector<Row>& to, std::vector<Row>& from) {
  to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

void Append(HistoryRows& to, HistoryRows from) {
  for (HistoryMove& move : from.Moves)
    if (!Moved(to.Songs, move)) to.Moves.push_back(std::move(move));
  Append(to.Songs, from.Songs);
  Append(to.Events, from.Events);
  Append(to.Incidents, from.Incidents);
  Append(to.Runs, from.Runs);
  Append(to.Plays, from.Plays);
  Append(to.Lags, from.Lags);
}

void KeepLastOfEach(std::vector<HistoryLag>& lags) {
  std::vector<HistoryLag> kept;
  for (HistoryLag& lag : lags) {
    const auto older = std::find_if(kept.begin(), kept.end(),
                                    [&lag](const HistoryLag& one) { return one.Channel == lag.Channel; });
    if (older == kept.end()) {
      kept.push_back(std::move(lag));
    } else {
      *older = std::move(lag);
    }
  }
  lags = std::move(kept);
}

/// Removes up to `excess` of the oldest rows; how many there are left to remove.
template <typename Row>
std::size_t Trim(std::vector<Row>& rows, std::size_t excess) {
  const std::size_t count = std::min(excess, rows.size());
  rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(count));
  return excess - count;
}

}  // namespace

SqliteHistoryStore::SqliteHistoryStore(base::EventLoop& loop, std::string path, HistoryLimits limits)
    : loop_(loop),
      path_(std::move(path)),
      limits_(limits),
      tmrReport_(loop.MakeTimer(kReportInterval, [this] { Report(); })),
      writerThread_([this] { WriteRows(); }),
      readerThread_([this] { AnswerQuestions(); }) {
  tmrReport_->SetEnabled(true);
}

SqliteHistoryStore::~SqliteHistoryStore() {
  stop_ = true;
  {
    const std::lock_guard lock(mutex_);
    closing_ = true;
  }
  asked_.notify_one();
  readerThread_.join();
  {
    // Closed first, so that the writer's is the last connection, which leaves one file; the writer may be putting a
    // damaged record aside, and then it closes this one too.
    const std::lock_guard lock(reading_);
    questionsDatabase_.reset();
  }
  written_.notify_one();
  writerThread_.join();
}

void SqliteHistoryStore::Write(HistoryRows rows) {
  {
    const std::lock_guard lock(mutex_);
    Append(waiting_, std::move(rows));
    now_ = loop_.Now();
    fresh_ = true;
  }
  written_.notify_one();
  tmrReport_->SetEnabled(true);
}

void SqliteHistoryStore::WriteRows() {
  static_cast<void>(Open(HistoryTest::Quick));
  bool more = false;
  std::unique_lock lock(mutex_);
  for (;;) {
    busy_ = more;
    // Between two parts of what is removed, what has come meanwhile is written.
    if (!more) written_.wait(lock, [this] { return fresh_ || closing_; });
    busy_ = true;
    const bool closing = closing_;
    const base::DateValue now = now_;
    HistoryRows rows;
    if (std::exchange(fresh_, false)) rows = std::exchange(waiting_, {});
    lock.unlock();
    if (suspect_.exchange(false)) LookAgain();
    if (rows.Count() > 0) WriteBatch(std::move(rows));
    if (closing) return;
    // The first moment is known with the first rows.
    more = now != base::DateValue() && writer_ != nullptr && writer_->Prune(now);
    if (database_ != nullptr && database_->IsDamaged()) suspect_ = true;
    lock.lock();
  }
}

bool SqliteHistoryStore::Open(HistoryTest test) {
  HistoryFileOpened opened = OpenHistoryFile(path_, stop_, test);
  if (!opened.PutAside.empty()) {
    Say(fmt::format("The record {} could not be read: {}. It is kept as {}, and a new one was begun.", path_,
                    opened.WhyPutAside, opened.PutAside));
  }
  database_ = std::move(opened.Database);
  if (database_ != nullptr) writer_ = std::make_unique<HistoryWriter>(*database_, limits_);
  {
    const std::lock_guard lock(mutex_);
    opened_ = database_ != nullptr ? Opened::Done : Opened::Failed;
    openFailure_ = opened.Outcome;
  }
  asked_.notify_one();
  return database_ != nullptr;
}

void SqliteHistoryStore::WriteBatch(HistoryRows rows) {
  const bool open = database_ != nullptr || Open(HistoryTest::Quick);
  if (open && writer_->Write(rows)) {
    std::int64_t lost = 0;
    {
      const std::lock_guard lock(mutex_);
      lost = std::exchange(lost_, 0);
    }
    if (std::exchange(failing_, false)) {
      Say(fmt::format("The record {} is written again; {} rows were lost.", path_,
                      lost == 0 ? "no" : std::to_string(lost)));
    }
    return;
  }
  Result failure = Result::Done();
  if (open) {
    failure = database_->Failure();
  } else {
    const std::lock_guard lock(mutex_);
    failure = openFailure_;
  }
  TakeBack(std::move(rows));
  // One that looks damaged is tested before the next try.
  if (open && database_->IsDamaged()) suspect_ = true;
  if (!std::exchange(failing_, true))
    Say(fmt::format("The record {} cannot be written: {}.", path_, failure.Cause()));
}

void SqliteHistoryStore::TakeBack(HistoryRows rows) {
  const std::lock_guard lock(mutex_);
  Append(rows, std::exchange(waiting_, {}));
  // What the other channels play is of the least interest, and most of it; of a run and of a channel's lag the last row
  // is all that is needed.
  KeepLastOfEach(rows.Lags);
  if (rows.Runs.size() > 1) rows.Runs.erase(rows.Runs.begin(), rows.Runs.end() - 1);
  std::size_t excess = rows.Count() > kMostWaiting ? rows.Count() - kMostWaiting : 0;
  lost_ += static_cast<std::int64_t>(excess);
  excess = Trim(rows.Plays, excess);
  excess = Trim(rows.Incidents, excess);
  excess = Trim(rows.Songs, excess);
  excess = Trim(rows.Moves, excess);
  excess = Trim(rows.Events, excess);
  static_cast<void>(Trim(rows.Lags, excess));
  waiting_ = std::move(rows);
}

void SqliteHistoryStore::LookAgain() {
  {
    const std::lock_guard reading(reading_);
    {
      const std::lock_guard lock(mutex_);
      opened_ = Opened::NotYet;
    }
    suspect_ = false;
    questionsDatabase_.reset();
    writer_.reset();
    database_.reset();
  }
  static_cast<void>(Open(HistoryTest::Whole));
}

void SqliteHistoryStore::Say(std::string line) {
  const std::lock_guard lock(mutex_);
  lines_.push_back(std::move(line));
}

template <typename Asker, typename Read>
void SqliteHistoryStore::AskFor(Asker answer, Read read) {
  Ask({.Work = [answer,
                read = std::move(read)](HistoryReader& reader) -> std::optional<std::function<void()>> {
         auto found = read(reader);
         if (!found) return std::nullopt;
         return [answer, found = *std::move(found)] { answer(Result::Done(), found); };
       },
       .Refuse = [answer](const Result& failure) { answer(failure, {}); }});
}

void SqliteHistoryStore::CountPlays(MostPlayedSearch search, CountsAnswer answer) {
  const auto counter = std::make_shared<PlayCounter>(search);
  Ask({.Work = [answer, counter](HistoryReader& reader) -> std::optional<std::function<void()>> {
         switch (counter->CountOn(reader.Database())) {
           case PlayCounter::Piece::Failed:
             return std::nullopt;
           case PlayCounter::Piece::More:
             return std::function<void()>();
           case PlayCounter::Piece::Last:
             break;
         }
         return [answer, counts = counter->MostPlayed()] { answer(Result::Done(), counts); };
       },
       .Refuse = [answer](const Result& failure) { answer(failure, {}); }});
}

void SqliteHistoryStore::ReadSpan(base::DateValue from, base::DateValue to, RowsAnswer answer) {
  AskFor(std::move(answer), [from, to](HistoryReader& reader) { return reader.ReadSpan(from, to); });
}

void SqliteHistoryStore::Search(HistorySearch search, PlaysAnswer answer) {
  AskFor(std::move(answer),
         [search = std::move(search)](HistoryReader& reader) { return reader.Search(search); });
}

void SqliteHistoryStore::ReadCuts(CutSearch search, SongsAnswer answer) {
  AskFor(std::move(answer), [search](HistoryReader& reader) { return reader.ReadCuts(search); });
}

void SqliteHistoryStore::ReadFolder(std::string folder, SongsAnswer answer) {
  AskFor(std::move(answer),
         [folder = std::move(folder)](HistoryReader& reader) { return reader.ReadFolder(folder); });
}

void SqliteHistoryStore::ReadLags(LagsAnswer answer) {
  AskFor(std::move(answer), [](HistoryReader& reader) { return reader.ReadLags(); });
}

void SqliteHistoryStore::Ask(Question question) {
  {
    const std::lock_guard lock(mutex_);
    questions_.push_back(std::move(question));
  }
  asked_.notify_one();
  tmrReport_->SetEnabled(true);
}

void SqliteHistoryStore::AnswerQuestions() {
  std::unique_lock lock(mutex_);
  for (;;) {
    asked_.wait(lock, [this] { return closing_ || (!questions_.empty() && opened_ != Opened::NotYet); });
    if (closing_) return;
    Question question = std::move(questions_.front());
    questions_.pop_front();
    answering_ = true;
    lock.unlock();
    std::function<void()> answer = Answer(question);
    lock.lock();
    answering_ = false;
    if (answer) {
      answers_.push_back(std::move(answer));
    } else {
      questions_.push_back(std::move(question));
    }
  }
}

std::function<void()> SqliteHistoryStore::Answer(Question& question) {
  const auto refused = [&question](const Result& failure) -> std::function<void()> {
    return [refuse = question.Refuse, failure] { refuse(failure); };
  };
  const std::lock_guard reading(reading_);
  {
    const std::lock_guard lock(mutex_);
    if (opened_ == Opened::Failed) return refused(openFailure_);
    if (opened_ == Opened::NotYet) return {};
  }
  if (questionsDatabase_ == nullptr) {
    questionsDatabase_ = OpenHistoryForQuestions(path_, stop_);
    ++connections_;
  }
  if (questionsDatabase_ == nullptr) return refused(Result::Failed("the record cannot be opened"));
  // What was read before it may be of another file, which has been put aside.
  if (question.Connection != 0 && question.Connection != connections_)
    return refused(Result::Failed("the record was opened anew"));
  question.Connection = connections_;
  HistoryReader reader(*questionsDatabase_);
  auto answer = question.Work(reader);
  questionsDatabase_->ReleaseMemory();
  if (answer) return *std::move(answer);
  const Result failure = questionsDatabase_->Failure();
  if (questionsDatabase_->IsDamaged()) suspect_ = true;
  questionsDatabase_.reset();
  return refused(failure);
}

void SqliteHistoryStore::Report() {
  std::vector<std::string> lines;
  std::vector<std::function<void()>> answers;
  {
    const std::lock_guard lock(mutex_);
    lines.swap(lines_);
    answers.swap(answers_);
    if (!busy_ && !fresh_ && !answering_ && questions_.empty()) tmrReport_->SetEnabled(false);
  }
  for (const std::string& line : lines) {
    if (handler_) handler_(line);
  }
  for (const std::function<void()>& answer : answers) answer();
}

}  // namespace kestrune::platform
