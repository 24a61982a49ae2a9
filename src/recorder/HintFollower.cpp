#include "recorder/HintFollower.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "schedule/entries/NextRun.h"

namespace kestrune::recorder {
namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 500ms;
// The tuned channel is asked for its text several times within this.
constexpr auto kSongWithin = 15s;

}  // namespace

HintFollower::HintFollower(State& state, const Parts& parts, Keeping keeping)
    : state_(state),
      parts_(parts),
      keeping_(std::move(keeping)),
      due_(state.Entries, [&loop = parts.Loop] { return loop.Now(); }),
      tmrLook_(parts.Loop.MakeTimer(kLook, [this] { Look(); })) {}

void HintFollower::UserActed() {
  lastAct_ = parts_.Loop.SteadyNow();
  acted_ = true;
}

void HintFollower::Look() {
  if (asked_ || (step_ == Step::Rest && Wanted() == nullptr)) return;
  asked_ = true;
  parts_.Door.Ask(
      [this] {
        TakeStep();
        return base::Result::Done();
      },
      [this](const base::Result& /*done*/) { asked_ = false; });
}

void HintFollower::TakeStep() {
  if (state_.Run.ShuttingDown) return;
  if (step_ == Step::Rest) {
    // Something may have happened while it waited at the door.
    if (const Hint* const hint = Wanted()) Go(*hint);
    return;
  }
  if (Interrupted()) return End();
  const auto waited = parts_.Loop.SteadyNow() - since_;
  if (step_ == Step::AwaitEnd) {
    if (!keeping_.Marked() || waited > kLongest) GoBack();
  } else if (InHand()) {
    keeping_.Mark();
    step_ = Step::AwaitEnd;
  } else if (Over() || waited > kSongWithin) {
    GoBack();
  }
}

const Hint* HintFollower::Wanted() const {
  if (!state_.Settings.Hints || !state_.Settings.FollowHints) return nullptr;
  const auto wanted = std::find_if(state_.Hints.begin(), state_.Hints.end(), [this](const Hint& hint) {
    // What plays on the tuned channel as well could not be told from it.
    const bool here = hint.Artist == state_.Radio.CurrentArtist && hint.Song == state_.Radio.CurrentSong;
    return hint.Fresh && hint.Number > last_ && !here;
  });
  return wanted != state_.Hints.end() && Idle() ? &*wanted : nullptr;
}

bool HintFollower::Idle() const {
  const RecordingState& recording = state_.Recording;
  if (recording.Phase != Phase::Idle || recording.RecordArmed || recording.StartPending ||
      recording.StopPending || recording.Muted || keeping_.Marked())
    return false;
  if (std::any_of(recording.AwaitedCuts.begin(), recording.AwaitedCuts.end(),
                  [](const AwaitedCut& cut) { return cut.Wanted; }))
    return false;
  if (state_.Run.FormLoading || state_.Run.ShuttingDown || state_.Radio.ChannelsLoading ||
      !state_.Link.Up() || !state_.Watch.Warning().empty() || !state_.Settings.Cleftune)
    return false;
  if (lastAct_ && parts_.Loop.SteadyNow() - *lastAct_ < kAfterUser) return false;
  return state_.Schedule.ActiveSchedule == 0 && !due_.Find() &&
         !schedule::RunsWithin(state_.Entries, parts_.Loop.Now(), kBeforeEvent);
}

void HintFollower::Go(const Hint& hint) {
  hint_ = hint;
  last_ = hint.Number;
  acted_ = false;
  since_ = parts_.Loop.SteadyNow();
  step_ = Step::AwaitSong;
  state_.HintHome = parts_.Channels.ChannelNumber();
  parts_.Journal.DoLog(
      fmt::format("Following a hint: Channel {}  \"{} - {}\"", hint_.Channel, hint_.Artist, hint_.Song));
  parts_.Channels.SetChannelNumber(hint_.Channel);
}

bool HintFollower::Interrupted() const {
  return acted_ || state_.Schedule.ActiveSchedule != 0 || state_.Recording.Phase != Phase::Idle ||
         state_.Radio.ChannelNumber != hint_.Channel;
}

bool HintFollower::InHand() const {
  const CaptureRecord& capture =
      state_.Recording.CaptureSlots.at(static_cast<std::size_t>(state_.Recording.CaptureSlot));
  return capture.Naming.Values.Channel == hint_.Channel && capture.Artist == hint_.Artist &&
         capture.Song == hint_.Song;
}

bool HintFollower::Over() const {
  const radio::RadioState& radio = state_.Radio;
  return !radio.ChannelChanged && (radio.CurrentArtist != hint_.Artist || radio.CurrentSong != hint_.Song);
}

void HintFollower::GoBack() {
  // A radio that is lost is waited for.
  if (!state_.Link.Up()) return;
  const std::int16_t home = state_.HintHome;
  End();
  parts_.Journal.DoLog(fmt::format("Back on channel {} after a hint", home));
  parts_.Channels.SetChannelNumber(home);
}

void HintFollower::End() {
  step_ = Step::Rest;
  state_.HintHome = 0;
}

}  // namespace kestrune::recorder
