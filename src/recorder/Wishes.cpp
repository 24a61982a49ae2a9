#include "recorder/Wishes.h"

#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "recorder/Closing.h"
#include "recorder/Kestrune.h"

namespace kestrune::recorder {
namespace {

using base::Result;

constexpr const char* kStarting = "the program is still starting";

/// What keeps people from recording, stopping and tuning while the schedule records.
std::string RunningEvent(const Kestrune& unit) {
  const schedule::ScheduleState& schedule = unit.State().Schedule;
  return fmt::format("schedule entry {} is recording until {}", schedule.ActiveSchedule,
                     base::FormatDate(schedule.RemainingUntil, "mmm d, h:nn am/pm"));
}

Result RefusedByEvent(const Kestrune& unit) {
  return Result::Failed(RunningEvent(unit) + "; disable that entry first");
}

bool InEvent(const Kestrune& unit) {
  return unit.State().Schedule.ActiveSchedule != 0;
}

}  // namespace

void Wishes::Ask(Door::Wish wish, Answered answered) {
  if (unit_.State().Run.FormLoading && !unit_.State().Run.ShuttingDown) {
    if (answered) answered(Result::Failed(kStarting));
    return;
  }
  door_.Ask(
      [&unit = unit_, wish = std::move(wish)] {
        return unit.State().Run.ShuttingDown ? Result::Failed(kClosing) : wish();
      },
      std::move(answered));
}

void Wishes::Record(Answered answered) {
  unit_.UserActed();
  Ask(
      [&unit = unit_] {
        if (!unit.State().MayRecord()) {
          return Result::Failed(InEvent(unit) ? RunningEvent(unit) + " already"
                                              : "recording has been asked for already");
        }
        unit.cmdRecord();
        return Result::Done();
      },
      std::move(answered));
}

void Wishes::Stop(Answered answered) {
  unit_.UserActed();
  Ask(
      [&unit = unit_] {
        if (InEvent(unit) && !unit.State().MayStop()) return RefusedByEvent(unit);
        if (!unit.State().MayStop()) return Result::Failed("nothing is being recorded");
        unit.cmdStop();
        return Result::Done();
      },
      std::move(answered));
}

void Wishes::Tune(std::int16_t channel, Answered answered) {
  unit_.UserActed();
  Ask([this, channel] { return TuneNow(channel); }, std::move(answered));
}

Result Wishes::TuneNow(std::int16_t channel) {
  if (unit_.State().Recording.GetRecordingStatus()) {
    if (InEvent(unit_)) return RefusedByEvent(unit_);
    return Result::Failed("the channel cannot be changed while recording is under way; stop it first");
  }
  if (Result ready = unit_.RadioReady(); !ready.Ok()) return ready;
  unit_.SetChannelNumber(channel);
  return Result::Done();
}

void Wishes::Mute(bool on, Answered answered) {
  unit_.UserActed();
  Ask([this, on] { return MuteNow(on); }, std::move(answered));
}

void Wishes::ToggleMute(Answered answered) {
  unit_.UserActed();
  Ask([this] { return MuteNow(!unit_.State().Recording.Muted); }, std::move(answered));
}

Result Wishes::MuteNow(bool on) {
  if (Result ready = unit_.RadioReady(); !ready.Ok()) return ready;
  if (unit_.SetMute(on)) return Result::Done();
  if (InEvent(unit_)) return RefusedByEvent(unit_);
  return Result::Failed("the radio cannot be muted while recording is under way; stop it first");
}

void Wishes::KeepCurrent(Answered answered) {
  unit_.UserActed();
  Ask([&unit = unit_] { return unit.KeepCurrent(); }, std::move(answered));
}

void Wishes::Keep(std::size_t number, Answered answered) {
  unit_.UserActed();
  Ask([&unit = unit_, number] { return unit.Parts().Shelving.Keep(number); }, std::move(answered));
}

void Wishes::KeepFile(std::string path, Answered answered) {
  unit_.UserActed();
  Ask([&unit = unit_, path = std::move(path)] { return unit.Parts().Shelving.KeepFile(path); },
      std::move(answered));
}

void Wishes::ReloadChannels(Answered answered) {
  Ask(
      [&unit = unit_] {
        unit.mnuReload_Click();
        return Result::Done();
      },
      std::move(answered));
}

void Wishes::ChangeSetting(std::string key, std::string value, Answered answered) {
  Ask(
      [&unit = unit_, key = std::move(key), value = std::move(value)] {
        const config::SettingOutcome outcome = unit.Parts().Settings.Set(key, value);
        if (!outcome.Done()) return Result::Failed(outcome.Refusal);
        if (outcome.Saved) return Result::Done();
        return Result::Failed("the new value holds until the end, but the settings could not be written");
      },
      std::move(answered));
}

void Wishes::AskForRadioID(std::function<void(const std::string& radioID)> answered) {
  const auto radioID = std::make_shared<std::string>();
  Ask(
      [&unit = unit_, radioID] {
        *radioID = unit.pcrRadioID();
        return Result::Done();
      },
      [radioID, answered = std::move(answered)](const Result& asked) {
        if (asked.Ok()) answered(*radioID);
      });
}

void Wishes::AskForUpdate(std::function<void(const base::Result&, const UpdateAnswer&)> answered) {
  if (unit_.State().Run.ShuttingDown) return answered(Result::Failed(kClosing), {});
  if (unit_.State().Run.FormLoading) return answered(Result::Failed(kStarting), {});
  unit_.AskForUpdate(std::move(answered));
}

void Wishes::Close(Answered answered) {
  unit_.EndWaits();
  door_.Ask([&unit = unit_] { return unit.Close() ? Result::Done() : Result::Failed(kClosing); },
            std::move(answered));
}

}  // namespace kestrune::recorder
