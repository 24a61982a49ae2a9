#include "presenters/HintNotices.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "presenters/HintLine.h"
#include "presenters/NoticeText.h"
#include "presenters/Shelf.h"
#include "recorder/Snapshot.h"

namespace kestrune::presenters {
namespace {

using recorder::State;

constexpr const char* kHint = "hint";

/// Whether somebody has to ask for the song that plays, so that it is kept.
bool NeedsKeep(const State& state) {
  return MayKeepCurrent(state) && !state.Recording.CaptureWanted();
}

}  // namespace

HintNotices::HintNotices(recorder::Kestrune& unit, base::EventLoop& loop, NoticeBoard& board)
    : unit_(unit), loop_(loop), board_(board) {}

void HintNotices::Follow() {
  const State& state = unit_.State();
  if (!state.Settings.NotifyHints) return Rest();
  if (state.HintHome != 0) return FollowProgram(state);
  FollowStage(state);
  const recorder::Hint* const newest = ShownHint(state);
  if (newest == nullptr || newest->Number <= hint_ || !newest->Fresh || Busy() ||
      loop_.BootNow() - newest->Since < kLasting)
    return;
  Point(state, *newest);
}

bool HintNotices::InHand(const State& state, const Place& place) {
  const recorder::CaptureRecord& capture =
      state.Recording.CaptureSlots.at(static_cast<std::size_t>(state.Recording.CaptureSlot));
  return capture.Naming.Values.Channel == place.Channel && capture.Artist == place.Artist &&
         capture.Song == place.Song;
}

bool HintNotices::Busy() const {
  return (stage_ == Stage::Tuning || stage_ == Stage::KeepOffered) &&
         loop_.SteadyNow() - since_ <= kSongWithin;
}

void HintNotices::FollowStage(const State& state) {
  switch (stage_) {
    case Stage::Rest:
      return;
    case Stage::Offered:
      if (std::none_of(state.Hints.begin(), state.Hints.end(),
                       [this](const recorder::Hint& hint) { return hint.Number == hint_; }))
        Rest();
      return;
    case Stage::Tuning:
      if (loop_.SteadyNow() - since_ > kSongWithin) return Rest();
      if (state.Radio.ChannelNumber == place_.Channel && InHand(state, place_) && NeedsKeep(state))
        OfferKeep();
      return;
    case Stage::KeepOffered:
      if (!InHand(state, place_) || !NeedsKeep(state)) Rest();
      return;
    case Stage::Following:
      return Rest();
  }
}

void HintNotices::FollowProgram(const State& state) {
  const radio::ChannelEntry& tuned = unit_.Snapshot().Tuned;
  if (stage_ == Stage::Following) return;
  stage_ = Stage::Following;
  place_ = awaited_ = {tuned.Number, tuned.Station, tuned.Artist, tuned.Song};
  Say("Keeping a song of the Grab lists",
      fmt::format("{}: {}\nBack on channel {} afterwards.", ChannelText(tuned.Number, tuned.Station),
                  SongText(tuned.Artist, tuned.Song), state.HintHome));
}

void HintNotices::Point(const State& state, const recorder::Hint& hint) {
  stage_ = Stage::Offered;
  hint_ = hint.Number;
  place_ = {hint.Channel, hint.Station, hint.Artist, hint.Song};
  std::vector<NoticeBoard::Offer> offers;
  if (HintChannel(state) == hint.Channel) offers.push_back({.Label = "Tune", .Do = [this] { Tune(); }});
  Say(fmt::format("Now on {}", ChannelText(hint.Channel, hint.Station)), SongText(hint.Artist, hint.Song),
      std::move(offers));
}

void HintNotices::Tune() {
  stage_ = Stage::Tuning;
  since_ = loop_.SteadyNow();
  unit_.Wishes().Tune(
      place_.Channel, [this, place = place_, alive = std::weak_ptr(alive_)](const base::Result& tuned) {
        if (alive.expired() || tuned.Ok()) return;
        Rest();
        Say(fmt::format("Not tuned to {}", ChannelText(place.Channel, place.Station)), tuned.Cause() + ".");
      });
}

void HintNotices::OfferKeep() {
  stage_ = Stage::KeepOffered;
  Say(fmt::format("Tuned to {}", ChannelText(place_.Channel, place_.Station)),
      SongText(place_.Artist, place_.Song), {{.Label = "Keep", .Do = [this] { Keep(); }}});
}

void HintNotices::Keep() {
  stage_ = Stage::Rest;
  unit_.UserActed();
  unit_.Wishes().Ask(
      [&unit = unit_, place = place_] {
        if (!InHand(unit.State(), place)) return base::Result::Failed("the song is over");
        return unit.KeepCurrent();
      },
      [this, place = place_, alive = std::weak_ptr(alive_)](const base::Result& kept) {
        if (alive.expired()) return;
        if (kept.Ok()) {
          awaited_ = place;
        } else {
          Say("Song not kept", fmt::format("{}: {}.", SongText(place.Artist, place.Song), kept.Cause()));
        }
      });
}

bool HintNotices::Awaited(const recorder::EndedSong& song) {
  const bool is = awaited_.Channel != 0 && song.Channel == awaited_.Channel &&
                  song.Artist == awaited_.Artist && song.Song == awaited_.Song;
  if (is) awaited_ = {};
  return is;
}

void HintNotices::Say(std::string title, std::string text, std::vector<NoticeBoard::Offer> offers) {
  board_.Show(
      {.Subject = kHint, .Title = std::move(title), .Text = std::move(text), .Offers = std::move(offers)});
}

void HintNotices::Rest() {
  if (stage_ == Stage::Rest) return;
  stage_ = Stage::Rest;
  board_.Withdraw(kHint);
}

}  // namespace kestrune::presenters
