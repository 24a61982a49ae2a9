#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "platform/HistoryStore.h"
#include "platform/sqlite/SqliteConnection.h"

namespace kestrune::platform {

/// Answers questions from the open record. Used by one thread.
class HistoryReader {
 public:
  /// The database must outlive the object.
  explicit HistoryReader(SqliteConnection& database) : database_(database) {}

  /// What it reads.
  [[nodiscard]] SqliteConnection& Database() { return database_; }

  // Each returns nothing if it failed; the connection has the reason.

  [[nodiscard]] std::optional<HistoryRows> ReadSpan(base::DateValue from, base::DateValue to);
  [[nodiscard]] std::optional<std::vector<HistoryPlay>> Search(const HistorySearch& search);
  [[nodiscard]] std::optional<std::vector<HistorySong>> ReadCuts(const CutSearch& search);
  [[nodiscard]] std::optional<std::vector<HistorySong>> ReadFolder(const std::string& folder);
  [[nodiscard]] std::optional<std::vector<HistoryLag>> ReadLags();

 private:
  /// A play as the table has it.
  struct Found {
    std::int64_t Began = 0;
    std::int64_t Channel = 0;
    std::int64_t Title = 0;
  };

  /// The titles that have all words, in no order.
  [[nodiscard]] std::optional<std::vector<std::int64_t>> TitlesWith(const std::vector<std::string>& words);
  /// The newest plays of few titles: each has its plays in an index.
  [[nodiscard]] bool FindInTitles(const HistorySearch& search, const std::vector<std::int64_t>& titles,
                                  std::vector<Found>& found);
  /// The newest plays of any title, or of one of many, which will soon have come by.
  [[nodiscard]] bool FindInPlays(const HistorySearch& search, const std::vector<std::int64_t>* titles,
                                 std::vector<Found>& found);
  /// The same on one channel, by way of the hours in which it was heard.
  [[nodiscard]] bool FindOnChannel(const HistorySearch& search, const std::vector<std::int64_t>* titles,
                                   std::vector<Found>& found);
  /// Whether anything is known of the channel; true for all channels.
  [[nodiscard]] bool IsKnown(std::int16_t channel);
  [[nodiscard]] std::optional<std::vector<HistoryPlay>> WholeRows(const std::vector<Found>& found);

  SqliteConnection& database_;
};

}  // namespace kestrune::platform
