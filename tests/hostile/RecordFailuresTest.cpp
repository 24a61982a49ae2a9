// Each call that opening the record makes fails, one after the other until none fails any more: a healthy record is never taken
// for a damaged one.

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "hostile/FailingCalls.h"
#include "platform/sqlite/HistoryFile.h"
#include "platform/sqlite/HistoryReader.h"
#include "platform/sqlite/HistoryWriter.h"
#include "support/MemoryFolder.h"

namespace kestrune::test {
namespace {

using base::DateValue;

const DateValue kNight = DateValue::FromCivil(2066, 11, 21, 20, 0, 0);
const std::atomic<bool> kNever{false};

platform::HistoryRows OneSong() {
  platform::HistorySong song;
  song.Began = kNight;
  song.Ended = kNight.AddMinutes(3);
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

}  // namespace
}  // namespace kestrune::test
