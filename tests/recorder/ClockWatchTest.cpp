// What a whole unit says of the machine's sleep and of a clock that is set.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/ReportText.h"
#include "presenters/RecordingReport.h"
#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using platform::HistoryIncident;
using platform::IncidentKind;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// March 9, 2005 was a Wednesday.
DateValue At(int hour, int minute, int second = 0) {
  return DateValue::FromCivil(2005, 3, 9, hour, minute, second);
}

class ClockWatchTest : public ::testing::Test {
 protected:
  void SetClock(DateValue wall) {
    rig.Loop.StepWallClock(std::chrono::seconds(base::SecondsBetween(rig.Loop.Now(), wall)));
  }
  /// Idle, with the clock about there.
  void StartAt(DateValue wall) {
    SetClock(wall);
    rig.StartIdle();
  }
  /// Idle at that moment exactly, with a look that belongs to it.
  void StartExactlyAt(DateValue wall) {
    StartAt(wall.AddMinutes(-10));
    const std::chrono::seconds left(base::SecondsBetween(rig.Loop.Now(), wall));
    rig.Run(left);
    ASSERT_EQ(rig.Loop.Now(), wall);
  }
  [[nodiscard]] std::vector<std::string> Said() const {
    std::vector<std::string> said;
    for (const std::string& line : rig.LogTexts())
      if (line.starts_with("The c")) said.push_back(line);
    return said;
  }
  /// What the record has once it was handed over.
  [[nodiscard]] const std::vector<HistoryIncident>& Incidents() {
    rig.Run(5s);
    return rig.History.Rows.Incidents;
  }
  [[nodiscard]] history::Report Report(DateValue from) {
    rig.Run(5s);
    std::optional<history::Report> report;
    rig->Parts().History.AskReport(
        from, [&report](const base::Result& /*asked*/, const history::Report& made) { report = made; });
    EXPECT_TRUE(rig.Loop.RunUntil([&report] { return report.has_value(); }, 10s));
    return report.value_or(history::Report());
  }

  UnitRig rig;
};

TEST_F(ClockWatchTest, ASleepIsSaidAndNotedWithItsLength) {
  StartExactlyAt(At(2, 10, 20));
  rig.Loop.SleepMachine(4h + 20min);
  rig.Run(1s);
  EXPECT_THAT(Said(), ElementsAre("The computer slept for 4:20:00, from 2:10 to 6:30"));
  ASSERT_EQ(Incidents().size(), 1U);
  const HistoryIncident& sleep = Incidents().front();
  EXPECT_EQ(sleep.Kind, IncidentKind::Sleep);
  EXPECT_LE(std::abs(base::SecondsBetween(At(2, 10, 20), sleep.Began)), 1);
  ASSERT_TRUE(sleep.Ended);
  EXPECT_LE(std::abs(base::SecondsBetween(At(6, 30, 20), *sleep.Ended)), 1);
  EXPECT_EQ(sleep.Seconds, 15600);
  EXPECT_EQ(sleep.Cause, "the computer slept for 4:20:00, from 2:10 to 6:30");
}

TEST_F(ClockWatchTest, AClockThatIsSetForwardIsSaidAndNoted) {
  StartExactlyAt(At(13, 0));
  rig.Loop.StepWallClock(45min);
  rig.Run(1s);
  EXPECT_THAT(Said(), ElementsAre("The clock was set 0:45:00 forward, from 13:00 to 13:45"));
  ASSERT_EQ(Incidents().size(), 1U);
  const HistoryIncident& step = Incidents().front();
  EXPECT_EQ(step.Kind, IncidentKind::ClockStep);
  EXPECT_LE(std::abs(base::SecondsBetween(At(13, 0), step.Began)), 1);
  ASSERT_TRUE(step.Ended);
  EXPECT_LE(std::abs(base::SecondsBetween(At(13, 45), *step.Ended)), 1);
  EXPECT_EQ(step.Seconds, 0) << "nothing of it has passed";
}

TEST_F(ClockWatchTest, AClockThatIsSetBackEndsAfterItBegan) {
  StartExactlyAt(At(13, 0));
  rig.Loop.StepWallClock(-(1h + 30s));
  rig.Run(1s);
  EXPECT_THAT(Said(), ElementsAre("The clock was set 1:00:30 back, from 13:00 to 11:59"));
  ASSERT_EQ(Incidents().size(), 1U);
  EXPECT_LE(std::abs(base::SecondsBetween(At(11, 59, 30), Incidents().front().Began)), 1);
  EXPECT_GT(Incidents().front().Ended, Incidents().front().Began);
}

TEST_F(ClockWatchTest, ASleepAfterWhichTheClockIsSetIsBoth) {
  StartExactlyAt(At(2, 10, 20));
  rig.Loop.SleepMachine(1h);
  rig.Loop.StepWallClock(-10min);
  rig.Run(1s);
  EXPECT_THAT(Said(), ElementsAre("The computer slept for 1:00:00, from 2:10 to 3:10",
                                  "The clock was set 0:10:00 back, from 3:10 to 3:00"));
  EXPECT_EQ(Incidents().size(), 2U);
}

TEST_F(ClockWatchTest, FiveSecondsAreNothingAndSixAreSomething) {
  StartAt(At(2, 10));
  rig.Loop.SleepMachine(5s);
  rig.Run(2s);
  rig.Loop.StepWallClock(5s);
  rig.Run(2s);
  rig.Loop.StepWallClock(-5s);
  rig.Run(2s);
  EXPECT_THAT(Said(), IsEmpty());
  rig.Loop.SleepMachine(6s);
  rig.Run(2s);
  EXPECT_EQ(Said().size(), 1U);
  rig.Loop.StepWallClock(6s);
  rig.Run(2s);
  EXPECT_EQ(Said().size(), 2U);
  rig.Loop.StepWallClock(-6s);
  rig.Run(2s);
  EXPECT_EQ(Said().size(), 3U);
}

TEST_F(ClockWatchTest, AClockThatIsCorrectedLittleByLittleIsNothing) {
  StartAt(At(2, 10));
  for (int i = 0; i < 600; ++i) {
    rig.Loop.StepWallClock(i % 2 == 0 ? 1s : 0s);
    rig.Run(1s);
  }
  EXPECT_THAT(Said(), IsEmpty());
  EXPECT_THAT(Incidents(), IsEmpty());
}

TEST_F(ClockWatchTest, SummerTimeIsNothing) {
  StartAt(At(1, 50));
  rig.Loop.StepWallClockAt(At(2, 0), 1h);
  rig.Run(20min);
  EXPECT_GE(rig.Loop.Now(), At(3, 10));
  rig.Loop.StepWallClockAt(At(3, 30), -1h);
  rig.Run(30min);
  EXPECT_LT(rig.Loop.Now(), At(3, 0));
  EXPECT_THAT(Said(), IsEmpty());
  EXPECT_THAT(Incidents(), IsEmpty());
}

TEST_F(ClockWatchTest, AProgramThatIsHeldUpBlamesNobody) {
  StartAt(At(2, 10));
  rig.Loop.Sleep(2min);
  rig.Run(5s);
  EXPECT_THAT(Said(), IsEmpty());
}

TEST_F(ClockWatchTest, WithTheWatchOffNothingIsSaidNotEvenLater) {
  rig.Set("Watch", "False");
  StartAt(At(2, 10));
  rig.Loop.SleepMachine(1h);
  rig.Run(5s);
  rig.Loop.StepWallClock(1h);
  rig.Run(5s);
  EXPECT_TRUE(rig->Parts().Settings.Set("Watch", "True").Done());
  rig.Run(5s);
  EXPECT_THAT(Said(), IsEmpty());
  EXPECT_THAT(Incidents(), IsEmpty());
  rig.Loop.SleepMachine(1h);
  rig.Run(5s);
  EXPECT_EQ(Said().size(), 1U) << "from then on";
}

TEST_F(ClockWatchTest, TheReportTellsBothInWords) {
  StartExactlyAt(At(2, 10, 20));
  rig.Loop.SleepMachine(4h + 20min);
  rig.Run(1h);
  rig.Loop.StepWallClock(45min);
  rig.Run(1s);
  const history::Report report = Report(At(0, 0));
  const std::string text = history::ReportText(report);
  EXPECT_THAT(text, HasSubstr(" 4:20:00  sleep: the computer slept for 4:20:00, from 2:10 to 6:30\n"));
  EXPECT_THAT(text, HasSubstr("         clock: the clock was set 0:45:00 forward, from 7:30 to 8:15\n"))
      << "without a length";
  EXPECT_THAT(text, HasSubstr("The computer slept: switch sleep off"));
  EXPECT_THAT(text, HasSubstr("The clock was set: let the computer keep its time by the network."));
  const auto story = presenters::StoryOf(report);
  using presenters::ReportLine;
  EXPECT_THAT(story,
              Contains(AllOf(Field(&ReportLine::Text, "the computer slept for 4:20:00, from 2:10 to 6:30"),
                             Field(&ReportLine::Length, "4:20:00"), Field(&ReportLine::Note, "sleep"))));
  EXPECT_THAT(story,
              Contains(AllOf(Field(&ReportLine::Text, "the clock was set 0:45:00 forward, from 7:30 to 8:15"),
                             Field(&ReportLine::Length, ""), Field(&ReportLine::Note, "clock"))));
}

TEST_F(ClockWatchTest, ACloseEndsTheLooks) {
  StartAt(At(2, 10));
  rig->Close();
  rig.Loop.SleepMachine(1h);
  EXPECT_TRUE(rig.Loop.RunUntil([this] { return rig.Closed; }, 1min));
  EXPECT_THAT(rig.History.Rows.Incidents, IsEmpty());
}

}  // namespace
}  // namespace kestrune::test
