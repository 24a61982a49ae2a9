#include <chrono>
#include <cmath>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recorder/StationLags.h"
#include "support/FakeHistoryStore.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::recorder {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using testing::ElementsAre;
using testing::IsEmpty;

const DateValue kBegin = DateValue::FromCivil(2026, 11, 21, 20, 0, 0);

/// Evidence of a boundary that is clear to about a block.
cut::LagRow Clear(int lagMs) {
  cut::LagRow row{};
  for (std::size_t i = 0; i < cut::kLags; ++i) {
    const float far = static_cast<float>(cut::LagAt(i) - lagMs) / cut::kBlockMs;
    row[i] = 12 * std::exp(-0.5F * far * far);
  }
  return row;
}

void Renew(cut::LagModel& model, int lagMs, int times) {
  for (int i = 0; i < times; ++i) model.Renew(Clear(lagMs));
}

/// The text of a model that has heard so many changes at a lag.
std::string TextOf(int lagMs, int times) {
  cut::LagModel model(600);
  Renew(model, lagMs, times);
  return model.Text();
}

class StationLagsTest : public testing::Test {
 protected:
  StationLagsTest() { History.Begin(); }

  void PutRow(std::int16_t channel, std::string model, DateValue changed = kBegin) {
    Store.Rows.Lags.push_back({.Channel = channel, .Changed = changed, .Model = std::move(model)});
  }
  /// A model is renewed as by a cut.
  void Cut(std::int16_t channel, int lagMs, int times = 1) {
    for (int i = 0; i < times; ++i) {
      Lags.Of(channel).Renew(Clear(lagMs));
      Lags.Keep(channel);
    }
  }

  test::SimulatedEventLoop Loop{kBegin};
  test::FakeHistoryStore Store{Loop};
  history::History History{Store, Loop};
  config::Settings Settings;
  StationLags Lags{History, Settings, Loop};
};

TEST_F(StationLagsTest, AFreshOneBeginsAtTheSongDelay) {
  Settings.SongDelay = 1200;
  EXPECT_NEAR(Lags.Of(7).MedianMs(), 1200, 60);
  EXPECT_EQ(Lags.Of(7).Changes(), 0);
  Settings.SongDelay = 300;
  EXPECT_NEAR(Lags.Of(7).MedianMs(), 300, 60) << "nothing was heard yet, so the setting still counts";
  Cut(7, 2000, 6);
  Settings.SongDelay = 1200;
  EXPECT_NEAR(Lags.Of(7).MedianMs(), 2000, 60) << "what was learned stays";
}

TEST_F(StationLagsTest, ADelayBeyondAllLagsBeginsAtTheLast) {
  for (const std::int16_t delay : {std::int16_t{5001}, std::int16_t{32767}}) {
    Settings.SongDelay = delay;
    EXPECT_GT(Lags.Of(7).MedianMs(), 3500) << delay;
  }
}

TEST_F(StationLagsTest, EachChannelLearnsForItself) {
  Cut(7, 2000, 6);
  EXPECT_NEAR(Lags.Of(7).MedianMs(), 2000, 60);
  EXPECT_NEAR(Lags.Of(8).MedianMs(), 600, 60);
}

TEST_F(StationLagsTest, WhatIsKeptIsThereInTheNextRun) {
  Lags.Load();
  Loop.Run(1s);
  Cut(7, 2000, 8);
  EXPECT_THAT(Store.Rows.Lags, IsEmpty()) << "never within the call";
  Loop.Run(1min);
  ASSERT_EQ(Store.Rows.Lags.size(), 1U);
  EXPECT_EQ(Store.Rows.Lags[0].Changed, kBegin.AddSeconds(1));
  StationLags next(History, Settings, Loop);
  next.Load();
  Loop.Run(1s);
  EXPECT_EQ(next.Of(7).Changes(), 8);
  EXPECT_NEAR(next.Of(7).MedianMs(), 2000, 60);
}

TEST_F(StationLagsTest, AKeptOneIsForgottenSlowly) {
  PutRow(7, TextOf(2400, 15), kBegin.AddDays(-30));
  PutRow(8, TextOf(2400, 15), kBegin.AddDays(-3000));
  Lags.Load();
  Loop.Run(1s);
  cut::LagModel month(600);
  Renew(month, 2400, 15);
  month.Forget(30);
  EXPECT_NEAR(Lags.Of(7).JitterMs(), month.JitterMs(), 20);
  EXPECT_EQ(Lags.Of(7).Changes(), 15);
  EXPECT_NEAR(Lags.Of(8).MedianMs(), 600, 60);
  EXPECT_NEAR(Lags.Of(7).JitterMs(), month.JitterMs(), 20) << "once";
}

TEST_F(StationLagsTest, OneThatIsNotHeardForDaysIsForgottenInTheSameRun) {
  Lags.Load();
  Cut(7, 2400, 15);
  const int learned = Lags.Of(7).JitterMs();
  Loop.StepWallClock(23h);
  EXPECT_EQ(Lags.Of(7).JitterMs(), learned);
  Loop.StepWallClock(24h * 30);
  EXPECT_GT(Lags.Of(7).JitterMs(), learned + 50);
  Loop.StepWallClock(-24h * 400);
  const int before = Lags.Of(7).JitterMs();
  EXPECT_EQ(Lags.Of(7).JitterMs(), before);
}

TEST_F(StationLagsTest, TheKeptOneTakesThePlaceOfOneThatHasHeardLess) {
  PutRow(7, TextOf(2000, 8));
  Cut(7, -1000, 2);
  EXPECT_EQ(Lags.Of(7).Changes(), 2);
  Lags.Load();
  EXPECT_EQ(Lags.Of(7).Changes(), 2) << "the answer comes later";
  Loop.Run(1s);
  EXPECT_EQ(Lags.Of(7).Changes(), 8);
  EXPECT_NEAR(Lags.Of(7).MedianMs(), 2000, 60);
}

TEST_F(StationLagsTest, OneThatHasHeardMoreThanTheKeptOneStays) {
  PutRow(7, TextOf(2000, 1));
  Cut(7, -1000, 6);
  Lags.Load();
  Loop.Run(1min);
  EXPECT_EQ(Lags.Of(7).Changes(), 6);
  EXPECT_NEAR(Lags.Of(7).MedianMs(), -1000, 60);
}

TEST_F(StationLagsTest, AReferenceStaysGoodWhenTheRecordAnswers) {
  PutRow(7, TextOf(2000, 8));
  Lags.Load();
  const cut::LagModel& model = Lags.Of(7);
  for (std::int16_t channel = 1; channel < 100; ++channel) static_cast<void>(Lags.Of(channel));
  Loop.Run(1s);
  EXPECT_EQ(&model, &Lags.Of(7));
  EXPECT_EQ(model.Changes(), 8);
}

TEST_F(StationLagsTest, NothingIsWrittenBeforeTheRecordHasAnswered) {
  PutRow(7, TextOf(2000, 8));
  Store.QuestionFailure = "it cannot be opened";
  Lags.Load();
  Loop.Run(1s);
  Cut(7, -1000);
  Cut(9, -1000);
  Loop.Run(10min);
  ASSERT_EQ(Store.Rows.Lags.size(), 1U);
  EXPECT_EQ(Store.Rows.Lags[0].Model, TextOf(2000, 8)) << "the kept one is not lost";
  Store.QuestionFailure.clear();
  Cut(9, -1000);
  Loop.Run(10min);
  ASSERT_EQ(Store.Rows.Lags.size(), 2U);
  cut::LagModel kept;
  ASSERT_TRUE(cut::LagModel::FromText(Store.Rows.Lags[0].Model, kept));
  EXPECT_EQ(kept.Changes(), 8);
  ASSERT_TRUE(cut::LagModel::FromText(Store.Rows.Lags[1].Model, kept));
  EXPECT_EQ(kept.Changes(), 2);
}

TEST_F(StationLagsTest, AnAnswerAfterItsEndIsNotTaken) {
  PutRow(7, TextOf(2000, 8));
  auto lags = std::make_unique<StationLags>(History, Settings, Loop);
  lags->Load();
  lags.reset();
  Loop.Run(1s);
}

TEST_F(StationLagsTest, RubbishInTheRecordIsAFreshOne) {
  PutRow(7, "rubbish");
  PutRow(8, TextOf(2000, 8) + " ");
  PutRow(9, std::string(200'000, '1'));
  PutRow(0, TextOf(2000, 8));
  PutRow(256, TextOf(2000, 8));
  Lags.Load();
  Loop.Run(1s);
  for (const std::int16_t channel : {7, 9, 0, 256}) EXPECT_EQ(Lags.Of(channel).Changes(), 0) << channel;
}

TEST_F(StationLagsTest, ANumberThatIsNoChannelIsNotKept) {
  Lags.Load();
  Loop.Run(1s);
  Cut(0, 2000);
  Cut(256, 2000);
  Lags.Keep(7);
  Loop.Run(1min);
  EXPECT_THAT(Store.Rows.Lags, IsEmpty());
}

TEST_F(StationLagsTest, OnlyWhatWasLearnedIsShown) {
  PutRow(200, TextOf(2000, 8));
  PutRow(3, "rubbish");
  Lags.Load();
  Loop.Run(1s);
  static_cast<void>(Lags.Of(5));
  Cut(7, 1000);
  EXPECT_THAT(Lags.LearnedChannels(), ElementsAre(7, 200));
  EXPECT_EQ(Lags.Learned(5), nullptr);
  EXPECT_EQ(Lags.Learned(3), nullptr);
  EXPECT_EQ(Lags.Learned(100), nullptr);
  ASSERT_NE(Lags.Learned(200), nullptr);
  EXPECT_EQ(Lags.Learned(200)->Changes(), 8);
}

}  // namespace
}  // namespace kestrune::recorder
