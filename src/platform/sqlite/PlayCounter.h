#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/HistoryStore.h"
#include "platform/sqlite/SqliteConnection.h"

namespace kestrune::platform {

/// Counts what was played most, a piece of the record at a time: ninety days are millions of rows, and others have
/// questions too. First the plays of each title are counted, then the titles of each artist or song are put together.
/// Used by one thread at a time.
class PlayCounter {
 public:
  /// So many rows are read in one piece; of titles, whose texts are read too, fewer.
  static constexpr std::int64_t kPlaysAPiece = 10'000;
  static constexpr std::int64_t kTitlesAPiece = 2'000;

  explicit PlayCounter(const MostPlayedSearch& search);

  enum class Piece { More, Last, Failed };
  /// Reads the next piece of the record, which is the same one at each call. After a failure, of which the connection
  /// may have the reason, there is no next piece.
  [[nodiscard]] Piece CountOn(SqliteConnection& database);

  /// Once the last piece has been read: the answer.
  [[nodiscard]] std::vector<PlayCount> MostPlayed() const;

 private:
  /// A row's place in the table of plays.
  struct Place {
    std::int64_t Began = std::numeric_limits<std::int64_t>::min();
    std::int64_t Channel = std::numeric_limits<std::int64_t>::min();
    std::int64_t Title = std::numeric_limits<std::int64_t>::min();

    auto operator<=>(const Place&) const = default;
  };
  struct Plays {
    std::int64_t Count = 0;
    std::int64_t Last = std::numeric_limits<std::int64_t>::min();
  };

  [[nodiscard]] Piece CountPlays(SqliteConnection& database);
  [[nodiscard]] Piece PutTogether(SqliteConnection& database);
  void Add(const std::string& artist, const std::string& title, const Plays& plays);

  MostPlayedSearch search_;
  bool counted_ = false;  // all plays
  Place place_;           // the last one read
  std::unordered_map<std::int64_t, Plays> ofTitles_;
  std::int64_t title_ = std::numeric_limits<std::int64_t>::min();  // the last one read
  std::unordered_map<std::string, PlayCount> sums_;                // by their texts in lower case
};

}  // namespace kestrune::platform
