#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "config/settings/Settings.h"
#include "cut/LagModel.h"
#include "history/History.h"
#include "platform/HistoryRows.h"

namespace kestrune::recorder {

/// What was learned of how far the text of each channel runs ahead of its sound. It is kept in the record of what
/// happened. Main thread; no call waits.
class StationLags {
 public:
  /// All must outlive the object; settings are read afresh.
  StationLags(history::History& history, const config::Settings& settings, const base::EventLoop& loop);
  StationLags(const StationLags&) = delete;
  StationLags& operator=(const StationLags&) = delete;

  /// Asks the record for what it has, once it is open. Until the answer is there, every channel is a fresh one.
  void Load();

  /// The model of a channel, for a cut to look at and to renew. A channel of which nothing is known begins at the
  /// setting SongDelay; of a kept one, what the days since its last change have taken is forgotten. A model that was
  /// renewed before the record had answered gives way to the kept one, unless it has heard more changes. The reference is
  /// good as long as the object; what it refers to is changed by later calls and by that answer, on the main thread.
  [[nodiscard]] cut::LagModel& Of(std::int16_t channel);

  /// Hands the model of a channel, 1 to 255, to the record after it was renewed; to be called with the reference that
  /// Of has given. Nothing is written before the record has answered Load, so that no kept model is replaced by a fresh one; if it
  /// could not be read, it is asked again.
  void Keep(std::int16_t channel);

  /// The same as Of for those who only show it; null if the channel has heard no change.
  [[nodiscard]] const cut::LagModel* Learned(std::int16_t channel);
  /// The channels for which Learned has something, in their order.
  [[nodiscard]] std::vector<std::int16_t> LearnedChannels();

 private:
  struct Station {
    cut::LagModel Model;
    int Expected = 0;       ///< where it has begun, in milliseconds
    base::DateValue Since;  ///< when it was renewed or has forgotten last
    bool Changed = false;   ///< what the record does not know yet
  };
  enum class Loaded { No, Asked, Done };

  /// Where a fresh one begins, in milliseconds.
  [[nodiscard]] int Expected() const;
  [[nodiscard]] Station Fresh() const;
  /// Makes of a channel what is known of it by now.
  [[nodiscard]] Station& Find(std::int16_t channel);
  void TakeKept(std::int16_t channel, Station& station);
  void Take(const base::Result& asked, const std::vector<platform::HistoryLag>& lags);
  void HandOver(std::int16_t channel, Station& station);

  history::History& history_;
  const config::Settings& settings_;
  const base::EventLoop& loop_;
  std::map<std::int16_t, Station> stations_;
  std::map<std::int16_t, platform::HistoryLag>
      kept_;  // as they were read; each is understood when it is asked for
  Loaded loaded_ = Loaded::No;
  std::shared_ptr<int> alive_ =
      std::make_shared<int>();  // an answer may come later than the end of this object
};

}  // namespace kestrune::recorder
