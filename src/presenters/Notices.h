#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "platform/Notifications.h"
#include "platform/Shell.h"
#include "presenters/HintNotices.h"
#include "presenters/NoticeBoard.h"
#include "recorder/Kestrune.h"

namespace kestrune::presenters {

/// What the desktop's notifications say of a unit, as the settings NotifySongs, NotifyEvents, NotifyProblems and
/// NotifyHints have it.
///
/// 1. A kind has one message, which is replaced and never doubled. While a window is in front nothing is said, and
///    nothing afterwards of what happened meanwhile.
/// 2. Songs: one that was kept, with "Show in Folder"; and one that a recording has put on the shelf for its length, with
///    "Keep". What the Grab and Kill lists leave out, and duplicates, are as the user wished. A song that is kept after a hint is
///    told whatever NotifySongs is.
/// 3. Events: the beginning, and the end with the count of the songs.
/// 4. Problems: what the watch has noticed, once it has lasted kLasting; its end too, if its beginning was told. Another text
///    of the same problem is no news.
/// 5. Hints: see HintNotices.
class Notices {
 public:
  static constexpr std::chrono::seconds kLasting{3};

  struct Outside {
    base::EventLoop& Loop;
    platform::Shell& Shell;
    platform::Notifications& Notifications;
    NoticeBoard::Windows Windows;
  };

  /// All must outlive the object. It follows the unit's state by a timer of its own.
  Notices(recorder::Kestrune& unit, const Outside& outside);
  ~Notices();
  Notices(const Notices&) = delete;
  Notices& operator=(const Notices&) = delete;

 private:
  void Follow();
  void FollowSongs(const recorder::State& state);
  void FollowEvents(const recorder::State& state);
  void FollowProblems(const recorder::State& state);
  void SayKept(const recorder::EndedSong& song);
  void SayDropped(const recorder::EndedSong& song);
  void SayBegan(const recorder::State& state, std::string before);
  void SayEnded(const recorder::State& state);
  void SayProblem(const recorder::State& state);
  void KeepFile(const recorder::EndedSong& song);
  [[nodiscard]] NoticeBoard::Offer ShowInFolder(std::string folder);

  recorder::Kestrune& unit_;
  base::EventLoop& loop_;
  platform::Shell& shell_;
  NoticeBoard board_;
  HintNotices hints_;

  std::int64_t song_ = 0;  // the last one that has been looked at
  std::int16_t event_ = 0;
  std::int64_t endedEvents_ = 0;
  recorder::Problem problem_ = recorder::Problem::None;  // of the last look
  std::chrono::milliseconds problemSince_{0};
  recorder::Problem toldProblem_ = recorder::Problem::None;
  std::string toldWarning_;

  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::unique_ptr<base::Timer> tmrFollow_;
};

}  // namespace kestrune::presenters
