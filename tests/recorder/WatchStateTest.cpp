#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "recorder/WatchState.h"

namespace kestrune::recorder {
namespace {

/// Each problem, the most important first.
struct Row {
  Problem Kind;
  std::function<void(WatchState&)> Begin;
  std::string Warning;
};

const std::vector<Row>& Rows() {
  static const std::vector<Row> rows{
      {Problem::Writing, [](WatchState& watch) { watch.WriteFailure = "no space"; },
       "The recording cannot be written: no space."},
      {Problem::Radio, [](WatchState& watch) { watch.RadioFailure = "the device is gone"; },
       "The radio is lost: the device is gone."},
      {Problem::SoundInput, [](WatchState& watch) { watch.SoundInputFailure = "no server"; },
       "The sound input is lost: no server."},
      {Problem::Silence, [](WatchState& watch) { watch.Silent = true; },
       "No sound comes from the radio: check the cable and the input device."},
      {Problem::LittleRoom, [](WatchState& watch) { watch.LittleRoom = "room for 1:40"; },
       "The disk is nearly full: room for 1:40."},
      {Problem::Channel, [](WatchState& watch) { watch.RadioDoubt = "the radio refuses channel 9"; },
       "Check the channel: the radio refuses channel 9."},
  };
  return rows;
}

TEST(WatchState, EachProblemHasItsKindAndItsSentence) {
  EXPECT_EQ(WatchState().Worst(), Problem::None);
  EXPECT_EQ(WatchState().Warning(), "");
  for (const Row& row : Rows()) {
    WatchState watch;
    row.Begin(watch);
    EXPECT_EQ(watch.Worst(), row.Kind) << row.Warning;
    EXPECT_EQ(watch.Warning(), row.Warning);
  }
}

TEST(WatchState, OfSeveralTheMostImportantIsSaid) {
  WatchState watch;
  for (auto row = Rows().rbegin(); row != Rows().rend(); ++row) {
    row->Begin(watch);
    EXPECT_EQ(watch.Worst(), row->Kind);
    EXPECT_EQ(watch.Warning(), row->Warning);
  }
}

}  // namespace
}  // namespace kestrune::recorder
