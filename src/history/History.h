#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "history/OnAir.h"
#include "history/Report.h"
#include "platform/HistoryStore.h"

namespace kestrune::history {

/// A scheduled event as it begins, or should have begun.
struct EventStart {
  std::int16_t Entry = 0;  ///< 1 to 10
  base::DateValue Due;
  std::int64_t PlannedSeconds = 0;
  std::int16_t Channel = 0;
  std::string Station;
  bool WholeSongs = false;
};

/// Notes what happened, and answers questions about it. Each call only collects; what was collected is handed to the
/// store in one piece, now and then. Nothing is collected before Begin or after Close.
class History {
 public:
  /// What matters (songs, events, incidents) is handed over after this time, everything at the latest after the other.
  static constexpr std::chrono::milliseconds kSoon{2'000};
  static constexpr std::chrono::milliseconds kBeat{60'000};

  /// Both must outlive the object.
  History(platform::HistoryStore& store, base::EventLoop& loop);
  /// Does not close: a run whose Close was never called was killed.
  ~History();
  History(const History&) = delete;
  History& operator=(const History&) = delete;

  /// The run begins, or comes to its orderly end. The second ends what is still open: plays, incidents, and an event
  /// with `why` it did not end by itself.
  void Begin();
  void Close(std::string_view why);

  void SongEnded(platform::HistorySong song);
  /// The file of a song that ended has another name now, an empty one if it is gone; and the song another fate, if one
  /// is given.
  void SongMoved(std::string from, std::string to, std::optional<platform::SongFate> fate);

  /// One event runs at a time; the next one ends it.
  void EventBegan(const EventStart& event);
  /// The running event has another end, channel or station than before.
  void EventChanged(const EventStart& event);
  /// `why` is empty if it ended by itself. Nothing if none runs.
  void EventEnded(int kept, int dropped, std::string_view why);
  void EventMissed(const EventStart& event, std::string_view why);

  /// Something outside fails; a kind that fails already only gets the new cause. Line, sound and disk. `already` is what
  /// had passed of it when it was noticed.
  void IncidentBegan(platform::IncidentKind kind, std::string_view cause, std::chrono::seconds already = {});
  /// It works again. Nothing if it did not fail.
  void IncidentEnded(platform::IncidentKind kind);
  /// Something that was over when it was noticed: sleep, a step of the clock, a crash. `lasted` is the time that
  /// really passed.
  void IncidentHappened(platform::IncidentKind kind, base::DateValue from, base::DateValue to,
                        std::chrono::seconds lasted, std::string_view cause);

  /// What the radio says of a channel, whether it is new or not.
  void Heard(std::int16_t channel, const Playing& playing);

  /// What was learned of a channel; it waits for the minute, or for what matters, and of one channel the last goes.
  void LagLearned(platform::HistoryLag lag);

  using ReportAnswer = std::function<void(const base::Result& asked, const Report& report)>;
  /// What happened in the span, which ends now or earlier. Answered as the store answers.
  void AskReport(base::DateValue from, base::DateValue to, ReportAnswer answer);
  /// What happened from `since` until now.
  void AskReport(base::DateValue since, ReportAnswer answer) {
    AskReport(since, loop_.Now(), std::move(answer));
  }
  void Search(platform::HistorySearch search, platform::HistoryStore::PlaysAnswer answer);
  void CountPlays(platform::MostPlayedSearch search, platform::HistoryStore::CountsAnswer answer);
  void AskCuts(platform::CutSearch search, platform::HistoryStore::SongsAnswer answer);
  /// The songs of the span, as HistoryStore::ReadSpan has them.
  void AskSongs(base::DateValue from, base::DateValue to, platform::HistoryStore::SongsAnswer answer);
  /// The songs whose files lie in a folder, which ends in "/"; as HistoryStore::ReadFolder has them.
  void AskFolder(std::string folder, platform::HistoryStore::SongsAnswer answer);
  void AskLags(platform::HistoryStore::LagsAnswer answer);

 private:
  struct OpenIncident {
    platform::HistoryIncident Row;
    std::chrono::milliseconds Since{0};
  };

  void Note(platform::HistoryIncident incident);
  void NoteEvent();
  void HandOver();
  void HandOverSoon();
  [[nodiscard]] std::optional<OpenIncident>& Open(platform::IncidentKind kind) {
    return incidents_.at(static_cast<std::size_t>(kind));
  }

  platform::HistoryStore& store_;
  base::EventLoop& loop_;
  platform::HistoryRows rows_;
  OnAir onAir_;
  std::optional<platform::HistoryRun> run_;
  std::optional<platform::HistoryEvent> event_;
  std::array<std::optional<OpenIncident>, platform::kIncidentKinds> incidents_;
  std::unique_ptr<base::Timer> tmrSoon_;
  std::unique_ptr<base::Timer> tmrBeat_;
};

}  // namespace kestrune::history
