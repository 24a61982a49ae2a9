#include "recorder/StationLags.h"

#include <algorithm>
#include <utility>

namespace kestrune::recorder {
namespace {

constexpr double kSecondsADay = 86400;
/// Many times the longest that a model's text can be; what is longer is rubbish.
constexpr std::size_t kLongestText = 100'000;

bool IsChannel(std::int16_t channel) {
  return channel >= 1 && channel <= 255;
}

double DaysBetween(base::DateValue from, base::DateValue to) {
  return static_cast<double>(base::SecondsBetween(from, to)) / kSecondsADay;
}

}  // namespace

StationLags::StationLags(history::History& history, const config::Settings& settings,
                         const base::EventLoop& loop)
    : history_(history), settings_(settings), loop_(loop) {}

void StationLags::Load() {
  if (loaded_ != Loaded::No) return;
  loaded_ = Loaded::Asked;
  history_.AskLags([this, alive = std::weak_ptr(alive_)](const base::Result& asked,
                                                         const std::vector<platform::HistoryLag>& lags) {
    if (!alive.expired()) Take(asked, lags);
  });
}

void StationLags::Take(const base::Result& asked, const std::vector<platform::HistoryLag>& lags) {
  loaded_ = asked.Ok() ? Loaded::Done : Loaded::No;
  if (!asked.Ok()) return;
  for (const platform::HistoryLag& lag : lags) {
    if (IsChannel(lag.Channel) && lag.Model.size() <= kLongestText) kept_.insert_or_assign(lag.Channel, lag);
  }
  for (auto& [channel, station] : stations_) {
    TakeKept(channel, station);
    if (station.Changed) HandOver(channel, station);
  }
}

int StationLags::Expected() const {
  return std::clamp<int>(settings_.SongDelay, cut::kLowestLag, cut::kHighestLag);
}

StationLags::Station StationLags::Fresh() const {
  return {.Model = cut::LagModel(Expected()), .Expected = Expected(), .Since = loop_.Now(), .Changed = false};
}

StationLags::Station& StationLags::Find(std::int16_t channel) {
  const auto found = stations_.find(channel);
  Station& station =
      found != stations_.end() ? found->second : stations_.emplace(channel, Fresh()).first->second;
  TakeKept(channel, station);
  // Where it begins is the user's to change until the first change is heard.
  if (station.Model.Changes() == 0 && station.Expected != Expected()) station = Fresh();
  if (const double days = DaysBetween(station.Since, loop_.Now()); days >= 1 || days < 0) {
    station.Model.Forget(days);
    station.Since = loop_.Now();
  }
  return station;
}

void StationLags::TakeKept(std::int16_t channel, Station& station) {
  const auto found = kept_.find(channel);
  if (found == kept_.end()) return;
  const platform::HistoryLag kept = std::move(found->second);
  kept_.erase(found);
  cut::LagModel model;
  if (!cut::LagModel::FromText(kept.Model, model) || model.Changes() < station.Model.Changes()) return;
  station.Model = model;
  station.Since = kept.Changed;
}

cut::LagModel& StationLags::Of(std::int16_t channel) {
  return Find(channel).Model;
}

void StationLags::Keep(std::int16_t channel) {
  const auto found = stations_.find(channel);
  if (found == stations_.end() || !IsChannel(channel)) return;
  found->second.Since = loop_.Now();
  found->second.Changed = true;
  if (loaded_ == Loaded::Done) HandOver(channel, found->second);
  Load();
}

void StationLags::HandOver(std::int16_t channel, Station& station) {
  history_.LagLearned({.Channel = channel, .Changed = station.Since, .Model = station.Model.Text()});
  station.Changed = false;
}

const cut::LagModel* StationLags::Learned(std::int16_t channel) {
  if (!stations_.contains(channel) && !kept_.contains(channel)) return nullptr;
  const cut::LagModel& model = Of(channel);
  return model.Changes() > 0 ? &model : nullptr;
}

std::vector<std::int16_t> StationLags::LearnedChannels() {
  std::vector<std::int16_t> channels;
  for (std::int16_t channel = 1; channel <= 255; ++channel)
    if (Learned(channel) != nullptr) channels.push_back(channel);
  return channels;
}

}  // namespace kestrune::recorder
