// Each call that opening the record makes fails, one after the other until none fails any more: a healthy record is never taken
// for a damaged one.

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hostile/FailingCalls.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistoryWriter.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "support/MemoryFolder.h"
#include "support/RealEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;

const DateValue kNight = DateValue::FromCivil(2066, 11, 21, 20, 0, 0);
const std::atomic<bool> kNever{false};

platform::HistoryRows OneSong(int minute = 0) {
  platform::HistorySong song;
  song.Began = kNight.AddMinutes(minute);
  song.Ended = song.Began.AddMinutes(3);
  song.LengthMs = 180'000;
  song.Title = "Slow Tide";
  platform::HistoryRows rows;
  rows.Songs = {song};
  return rows;
}

class RecordFailures : public testing::Test {
 protected:
  RecordFailures() {
    std::filesystem::create_directory(Data());
    Write();
  }

  [[nodiscard]] std::string Data() const { return folder_ / "data"; }
  [[nodiscard]] std::string Record() const { return Data() + "/History.db"; }

  void Write() const {
    const auto opened = platform::OpenHistoryFile(Record(), kNever);
    platform::HistoryWriter writer(*opened.Database, {});
    ASSERT_TRUE(writer.Write(OneSong()));
  }

  [[nodiscard]] std::size_t SongsNow() const {
    const auto opened = platform::OpenHistoryFile(Record(), kNever);
    if (opened.Database == nullptr) return 0;
    platform::HistoryReader reader(*opened.Database);
    const auto rows = reader.ReadSpan(kNight.AddDays(-1), kNight.AddDays(1));
    return rows ? rows->Songs.size() : 0;
  }

  /// How many calls of the kind there were.
  int FailEach(CallKind kind, CallPlace place, bool lasting) const {
    for (int number = 1;; ++number) {
      SCOPED_TRACE(std::string(NameOf(kind)) + " " + std::to_string(number));
      platform::HistoryFileOpened opened;
      WatchCalls(Data(), false);
      FailCall({.Kind = kind, .Place = place, .Number = number, .Error = EIO, .Lasting = lasting});
      opened = platform::OpenHistoryFile(Record(), kNever);
      LeaveCallsAlone();
      EXPECT_EQ(opened.PutAside, "") << opened.WhyPutAside;
      EXPECT_TRUE(opened.Database != nullptr || !opened.Outcome.Cause().empty());
      opened.Database.reset();
      EXPECT_EQ(SongsNow(), 1U);
      if (CallsFailed() == 0 || HasFailure()) return number - 1;
    }
  }

  MemoryFolder folder_;
};

TEST_F(RecordFailures, AnOpeningThatFailsPutsNoHealthyRecordAside) {
  for (const bool lasting : {false, true}) {
    for (const CallKind kind : {CallKind::Open, CallKind::Write, CallKind::Status, CallKind::Truncate,
                                CallKind::Sync, CallKind::Close, CallKind::Change})
      FailEach(kind, CallPlace::Record, lasting);
    EXPECT_GE(FailEach(CallKind::Status, CallPlace::Files, lasting), 1);
  }
  // What can never be read is as good as damaged.
  EXPECT_GE(FailEach(CallKind::Read, CallPlace::Record, false), 3);
}

// A read that fails is damage to the database, as long as it is not tested again.
TEST_F(RecordFailures, AReadThatFailsWhileTheRecordIsOpenPutsNoHealthyRecordAside) {
  for (int number = 1;; ++number) {
    SCOPED_TRACE("read " + std::to_string(number));
    RealEventLoop loop;
    std::vector<std::string> troubles;
    platform::SqliteHistoryStore store(loop, Record());
    store.SetTroubleHandler([&troubles](const std::string& line) { troubles.push_back(line); });
    const auto songs = [&] {
      int found = -1;
      bool answered = false;
      store.ReadSpan(kNight.AddDays(-1), kNight.AddDays(1), [&](const base::Result& asked, const auto& rows) {
        answered = true;
        if (asked.Ok()) found = static_cast<int>(rows.Songs.size());
      });
      EXPECT_TRUE(loop.RunUntil([&answered] { return answered; }, 60s));
      return found;
    };
    ASSERT_EQ(songs(), number);
    WatchCalls(Data(), false);
    FailCall({.Kind = CallKind::Read, .Place = CallPlace::Record, .Number = number, .Error = EIO});
    static_cast<void>(songs());
    store.Write(OneSong(number));
    for (int tries = 0; tries < 10 && songs() != number + 1; ++tries) store.Write({});
    const int failed = CallsFailed();
    LeaveCallsAlone();
    EXPECT_EQ(songs(), number + 1);
    for (const std::string& line : troubles)
      EXPECT_THAT(line, testing::Not(testing::HasSubstr("kept as"))) << line;
    if (failed == 0 || HasFailure()) {
      EXPECT_GT(number, 3);
      return;
    }
  }
}

}  // namespace
}  // namespace kestrune::test
