#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/EventLoop.h"
#include "presenters/NoticeBoard.h"
#include "recorder/EndedSongs.h"
#include "recorder/Hint.h"
#include "recorder/Kestrune.h"

namespace kestrune::presenters {

/// The message about what begins elsewhere.
///
/// 1. A fresh hint is pointed out, with "Tune" if the channel may be changed. It goes when the hint ends.
/// 2. After "Tune", once that song is being captured, it offers to keep it, with "Keep", until the song is over or recorded.
///    Another hint waits for kSongWithin then.
/// 3. A hint that the program follows by itself is told without a choice, until the program is back.
class HintNotices {
 public:
  /// Time enough for the program to follow it by itself.
  static constexpr std::chrono::seconds kLasting{1};
  /// The tuned channel is asked for its text several times within this.
  static constexpr std::chrono::seconds kSongWithin{15};

  /// All must outlive the object.
  HintNotices(recorder::Kestrune& unit, base::EventLoop& loop, NoticeBoard& board);

  /// Looks at the unit's state; to be called often.
  void Follow();
  /// Whether this song was to be kept after a hint. To be asked once of each song that has ended.
  [[nodiscard]] bool Awaited(const recorder::EndedSong& song);

 private:
  enum class Stage : std::uint8_t { Rest, Offered, Tuning, KeepOffered, Following };
  /// A song on a channel, in the radio's words.
  struct Place {
    std::int16_t Channel = 0;
    std::string Station;
    std::string Artist;
    std::string Song;
  };

  /// Whether the capture in hand is of this song.
  [[nodiscard]] static bool InHand(const recorder::State& state, const Place& place);
  /// Whether a user has chosen a song so recently that another one would be in the way.
  [[nodiscard]] bool Busy() const;
  void FollowStage(const recorder::State& state);
  void FollowProgram(const recorder::State& state);
  void Point(const recorder::State& state, const recorder::Hint& hint);
  void Tune();
  void OfferKeep();
  void Keep();
  void Say(std::string title, std::string text, std::vector<NoticeBoard::Offer> offers = {});
  void Rest();

  recorder::Kestrune& unit_;
  base::EventLoop& loop_;
  NoticeBoard& board_;
  Stage stage_ = Stage::Rest;
  std::int64_t hint_ = 0;  // the last one that was pointed out
  Place place_;            // what the stage is about
  Place awaited_;          // what is to be kept; channel 0: nothing
  std::chrono::milliseconds since_{0};
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace kestrune::presenters
