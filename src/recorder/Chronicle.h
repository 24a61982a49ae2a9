#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "history/History.h"
#include "radio/line/ChannelInfo.h"
#include "recorder/RecordingState.h"
#include "recorder/WatchState.h"
#include "schedule/entries/ScheduleEntry.h"

namespace kestrune::recorder {

/// Tells the record of what happened what the run does. Each call only collects.
class Chronicle {
 public:
  /// Both must outlive the object.
  Chronicle(history::History& history, const base::EventLoop& loop) : history_(history), loop_(loop) {}

  /// A capture has been stopped and met its fate; its file, if it has one, has its name. `reason` as the log has it.
  void SongEnded(const CaptureRecord& capture, platform::SongFate fate, std::string_view reason);

  /// The file of such a capture has been moved, or is gone: then `to` is empty.
  void SongMoved(const std::string& from, const std::string& to,
                 std::optional<platform::SongFate> fate = std::nullopt) {
    history_.SongMoved(from, to, fate);
  }

  /// A scheduled event as it begins, or as its entry has it now. `until` is what the wall clock shows at its end.
  struct Event {
    std::int16_t Number = 0;  ///< 1 to 10
    const schedule::ScheduleEntry& Entry;
    base::DateValue Until;
    std::string Station;
  };
  void EventBegan(const Event& event);
  void EventChanged(const Event& event);
  /// `next` is the event that takes its place, 0 for none.
  void EventEnded(const RecordingState& recording, std::int16_t next);
  void EventMissed(std::int16_t number, const schedule::ScheduleEntry& entry, base::DateValue due,
                   std::string_view why);

  /// What the watch has noticed of radio, sound and disk. Cheap; to be called often.
  void Follow(const WatchState& watch);

  /// Something that was over when it was noticed; see history::History::IncidentHappened.
  void Happened(platform::IncidentKind kind, base::DateValue from, base::DateValue to,
                std::chrono::seconds lasted, std::string_view cause) {
    history_.IncidentHappened(kind, from, to, lasted, cause);
  }

  /// A channel info reply has come.
  void Heard(const radio::ChannelInfo& info);

  /// The run ends by itself.
  void Close(const RecordingState& recording);

 private:
  /// The incident of that kind lasts as long as there is a cause. `already` is what had passed when it was noticed.
  void FollowIncident(platform::IncidentKind kind, std::string_view cause, std::string& said,
                      std::chrono::seconds already = {});
  [[nodiscard]] history::EventStart StartOf(const Event& event) const;

  history::History& history_;
  const base::EventLoop& loop_;
  /// How long something has lasted.
  class Stopwatch {
   public:
    /// `already` is what had passed when it was noticed.
    void Set(bool on, std::chrono::milliseconds now, std::chrono::milliseconds already);
    /// Since the last call, in milliseconds.
    [[nodiscard]] std::int64_t TakeMs(std::chrono::milliseconds now);

   private:
    bool on_ = false;
    std::chrono::milliseconds since_{0};
    std::chrono::milliseconds sum_{0};
  };

  base::DateValue until_;  // of the running event
  Stopwatch radioLost_;
  Stopwatch silent_;
  std::string radioCause_;  // of the incident in hand; empty if there is none
  std::string soundCause_;
  std::string diskCause_;
};

}  // namespace kestrune::recorder
