#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "base/Result.h"
#include "platform/HistoryRows.h"

namespace kestrune::platform {

/// A search in what the channels have played.
struct HistorySearch {
  std::string Text;          ///< words; each must stand in artist or title, case aside. Empty: all
  std::int16_t Channel = 0;  ///< 0: all
  std::optional<base::DateValue> Since;  ///< only what began then or later
  std::size_t Limit = 50;                ///< at most so many, the newest

  bool operator==(const HistorySearch&) const = default;
};

/// A question for the last cuts by listening.
struct CutSearch {
  std::int16_t Channel = 0;  ///< 0: all
  std::size_t Limit = 20;    ///< at most so many, the newest

  bool operator==(const CutSearch&) const = default;
};

/// What counts as the same when plays are counted. Case does not count.
enum class PlayedAs { Artist, Song };

/// A question for what was played most.
struct MostPlayedSearch {
  PlayedAs As = PlayedAs::Artist;
  std::int16_t Channel = 0;              ///< 0: all
  std::optional<base::DateValue> Since;  ///< only what began then or later
  std::size_t Limit = 50;                ///< at most so many

  bool operator==(const MostPlayedSearch&) const = default;
};

/// How often an artist, or a song, was played.
struct PlayCount {
  std::string Artist;
  std::string Title;  ///< empty if all of an artist's plays are counted
  std::int64_t Plays = 0;
  base::DateValue Last;  ///< the last of them began then

  bool operator==(const PlayCount&) const = default;
};

/// Keeps what happened for 90 days, or less if it takes too much room, and answers questions about it. Used from the
/// main thread.
///
/// 1. No call waits: not for the disk, and not for another call. What is handed over is kept within a second or so.
///    Rows that belong to a name replace the row of that name, the last of them stays; a play replaces the one of the same text that began on
///    the same channel at the same second.
/// 2. Each question is answered exactly once, from the event loop and never within the call, in the order of asking,
///    but for CountPlays, which takes longer and lets others go first; from a store that is destroyed no answer comes.
///    A question does not wait for what was just handed over.
/// 3. What cannot be written is kept for a while, plays for a shorter time than the rest, and tried again with what
///    is handed over next.
/// 4. Failures of writing are told to the handler, from the event loop, once until it works again. So is that the
///    record could not be read and a new one was begun: the old one is put aside, never deleted.
/// 5. Destroying the object writes what it still has, if the disk takes it.
class HistoryStore {
 public:
  virtual ~HistoryStore() = default;

  virtual void Write(HistoryRows rows) = 0;

  using RowsAnswer = std::function<void(const base::Result& asked, const HistoryRows& rows)>;
  /// What ended in the span, lies in it or reaches into it, both ends included: songs, events, incidents and runs,
  /// each kind in the order of the beginnings (of an event, its due moments), the newest 50,000 of it. No plays.
  virtual void ReadSpan(base::DateValue from, base::DateValue to, RowsAnswer answer) = 0;

  using PlaysAnswer = std::function<void(const base::Result& asked, const std::vector<HistoryPlay>& plays)>;
  /// Newest beginning first.
  virtual void Search(HistorySearch search, PlaysAnswer answer) = 0;

  using CountsAnswer = std::function<void(const base::Result& asked, const std::vector<PlayCount>& counts)>;
  /// The most played first; of those with as many plays, the one that was played last. What has no artist, or where
  /// songs are counted no title, is left out. Texts are as they were first written. What is handed over or removed
  /// meanwhile may count or not.
  virtual void CountPlays(MostPlayedSearch search, CountsAnswer answer) = 0;

  using SongsAnswer = std::function<void(const base::Result& asked, const std::vector<HistorySong>& songs)>;
  /// The songs that have a Cut, newest end first.
  virtual void ReadCuts(CutSearch search, SongsAnswer answer) = 0;

  /// The songs whose files lie in a folder, which ends in "/", or below it, newest end first; the newest 50,000.
  virtual void ReadFolder(std::string folder, SongsAnswer answer) = 0;

  using LagsAnswer = std::function<void(const base::Result& asked, const std::vector<HistoryLag>& lags)>;
  /// What was learned of all channels, in their order.
  virtual void ReadLags(LagsAnswer answer) = 0;

  /// Takes one line for the log.
  using TroubleHandler = std::function<void(const std::string& line)>;
  /// An empty handler ends the reports.
  virtual void SetTroubleHandler(TroubleHandler handler) = 0;
};

}  // namespace kestrune::platform
