#include "presenters/MostPlayed.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/OneLine.h"

namespace kestrune::presenters {
namespace {

constexpr std::int32_t kAllChannels = 0;
constexpr std::int32_t kAnyTime = 0;
constexpr std::int32_t kUsualDays = 7;

}  // namespace

MostPlayed::MostPlayed(history::History& history, base::EventLoop& loop,
                       std::function<std::vector<schedule::SchedulerChannel>()> channels)
    : history_(history), loop_(loop), listed_(std::move(channels)) {
  playedAs_.Rows = {{"Artists", static_cast<std::int32_t>(platform::PlayedAs::Artist)},
                    {"Songs", static_cast<std::int32_t>(platform::PlayedAs::Song)}};
  playedAs_.Select(0);
  days_.Rows = {{"the last day", 1},
                {"the last 7 days", kUsualDays},
                {"the last 30 days", 30},
                {"all days in the record", kAnyTime}};
  days_.SelectValue(kUsualDays);
  channels_.Rows = {{"all channels", kAllChannels}};
  channels_.Select(0);
}

void MostPlayed::Show() {
  ListChannels();
  Ask();
}

void MostPlayed::ShowSongsOf(std::int16_t channel) {
  playedAs_.SelectValue(static_cast<std::int32_t>(platform::PlayedAs::Song));
  ListChannels();
  channels_.SelectValue(channel);
  if (channels_.Row < 0) channels_.SelectValue(kAllChannels);
  Ask();
}

void MostPlayed::Unload() {
  question_.reset();
}

void MostPlayed::ListChannels() {
  const std::int32_t chosen = channels_.Value().value_or(kAllChannels);
  channels_.Rows.resize(1);
  std::vector<schedule::SchedulerChannel> listed = listed_();
  std::ranges::sort(listed, {}, &schedule::SchedulerChannel::Number);
  for (const schedule::SchedulerChannel& channel : listed) {
    channels_.Rows.push_back(
        {fmt::format("{} - {}", channel.Number, base::OneLine(channel.Station)), channel.Number});
  }
  channels_.SelectValue(chosen);
  if (channels_.Row < 0) channels_.SelectValue(kAllChannels);
}

bool MostPlayed::BySong() const {
  return playedAs_.Value() == static_cast<std::int32_t>(platform::PlayedAs::Song);
}

void MostPlayed::Choose(ChoiceList& list, int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= list.Rows.size()) return;
  list.Select(row);
  Ask();
}

void MostPlayed::Ask() {
  const std::int32_t days = days_.Value().value_or(kUsualDays);
  platform::MostPlayedSearch search{
      .As = BySong() ? platform::PlayedAs::Song : platform::PlayedAs::Artist,
      .Channel = static_cast<std::int16_t>(channels_.Value().value_or(kAllChannels)),
      .Since = {},
      .Limit = kRows};
  if (days != kAnyTime) search.Since = loop_.Now().AddDays(-days);
  rows_.clear();
  message_ = "Counting...";
  ++changes_;
  question_ = std::make_shared<int>(0);
  history_.CountPlays(search, [this, question = std::weak_ptr(question_)](
                                  const base::Result& asked, const std::vector<platform::PlayCount>& counts) {
    if (!question.expired()) Take(asked, counts);
  });
}

void MostPlayed::Take(const base::Result& asked, const std::vector<platform::PlayCount>& counts) {
  for (const platform::PlayCount& count : counts) {
    rows_.push_back({.Plays = std::to_string(count.Plays),
                     .Artist = base::OneLine(count.Artist),
                     .Title = base::OneLine(count.Title),
                     .Last = base::FormatDate(count.Last, "ddd, mmm d, hh:nn")});
  }
  const std::string_view what = BySong() ? "song" : "artist";
  message_ = fmt::format("{} {}{}", rows_.size(), what, rows_.size() == 1 ? "" : "s");
  if (rows_.size() == kRows) message_ = fmt::format("The first {}", message_);
  if (rows_.empty()) message_ = "Nothing was played there in that time.";
  if (!asked.Ok()) message_ = "The record cannot be read: " + asked.Cause();
  ++changes_;
}

}  // namespace kestrune::presenters
