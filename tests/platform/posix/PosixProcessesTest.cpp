#include <chrono>
#include <csignal>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/types.h>

#include "TemporaryFolder.h"
#include "platform/ExecWait.h"
#include "platform/posix/PosixProcesses.h"
#include "support/RealEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::PosixProcesses;
using platform::WaitEnd;

class PosixProcessesTest : public ::testing::Test {
 protected:
  [[nodiscard]] static bool Lives(std::int32_t process) { return ::kill(process, 0) == 0; }
  [[nodiscard]] std::string Script(const std::string& text) {
    PutFile(folder / "script", "#!/bin/sh\n" + text);
    EXPECT_EQ(::chmod((folder / "script").c_str(), 0700), 0);
    return folder / "script";
  }

  TemporaryFolder folder;
  RealEventLoop loop;
  PosixProcesses processes{loop};
  std::int16_t waitResult = 77;
};

TEST_F(PosixProcessesTest, AProgramIsWaitedForUntilItEnds) {
  const std::int32_t process =
      processes.Start(Script("sleep 0.2; echo x > \"$1\"") + " " + (folder / "out"), true);
  ASSERT_GT(process, 0);
  EXPECT_EQ(processes.Wait(process, 0), WaitEnd::Ended);
  EXPECT_EQ(FileText(folder / "out"), "x\n");
}

TEST_F(PosixProcessesTest, WordsReachTheProgramAsTheyAre) {
  const std::string script = Script("for word; do echo \"[$word]\"; done > \"$1\"");
  const std::string words = R"x( "a b" ";x" "$(y)" "*" "")x";
  const std::int32_t process = processes.Start(script + " \"" + (folder / "o u t") + "\"" + words, true);
  EXPECT_EQ(processes.Wait(process, 20000), WaitEnd::Ended);
  EXPECT_EQ(FileText(folder / "o u t"), "[" + (folder / "o u t") + "]\n[a b]\n[;x]\n[$(y)]\n[*]\n[]\n");
}

TEST_F(PosixProcessesTest, AProgramIsFoundAsAShellFindsIt) {
  const std::int32_t process = processes.Start("true", true);
  ASSERT_GT(process, 0);
  EXPECT_EQ(processes.Wait(process, 20000), WaitEnd::Ended);
}

TEST_F(PosixProcessesTest, WhatCannotBeStartedHasNoNumber) {
  PutFile(folder / "plain", "text");
  PutFile(folder / "empty", "");
  EXPECT_EQ(::chmod((folder / "empty").c_str(), 0700), 0);
  EXPECT_EQ(processes.Start("", true), 0);
  EXPECT_EQ(processes.Start("kestrune-no-such-program", true), 0);
  EXPECT_EQ(processes.Start(folder / "plain", true), 0);
  EXPECT_EQ(processes.Start(folder.Path(), true), 0);
  EXPECT_EQ(processes.Start(std::string("true\0x", 6), true), 0);
  EXPECT_EQ(processes.Wait(0, 0), WaitEnd::Failed);
  EXPECT_EQ(processes.Wait(1, 0), WaitEnd::Failed) << "no child of this program";
}

TEST_F(PosixProcessesTest, APatientProgramIsLeftWhenItsTimeIsOut) {
  const std::int32_t process = processes.Start("sleep 60", true);
  const auto begin = loop.SteadyNow();
  EXPECT_EQ(processes.Wait(process, 150), WaitEnd::TimedOut);
  EXPECT_GE(loop.SteadyNow() - begin, 150ms);
  EXPECT_TRUE(Lives(process));
  ::kill(process, SIGKILL);
  EXPECT_EQ(processes.Wait(process, 20000), WaitEnd::Ended);
}

TEST_F(PosixProcessesTest, ExecWaitEndsAProgramThatOutlivesItsTime) {
  const std::int32_t process = radio::ExecWait(processes, "sleep 60", true, 150, waitResult, false);
  EXPECT_EQ(waitResult, radio::kWaitTimedOut);
  EXPECT_EQ(processes.Wait(process, 20000), WaitEnd::Ended) << "the system's kill has been started";
}

TEST_F(PosixProcessesTest, ExecWaitWithoutAWaitReturnsWhileTheProgramRuns) {
  const std::int32_t process = radio::ExecWait(processes, "sleep 60", true, 0, waitResult, true);
  EXPECT_TRUE(Lives(process));
  EXPECT_EQ(waitResult, 77);
  ::kill(process, SIGKILL);
  EXPECT_EQ(processes.Wait(process, 20000), WaitEnd::Ended);
}

TEST_F(PosixProcessesTest, EventsAreServedWhileItWaits) {
  int ticks = 0;
  const auto timer = loop.MakeTimer(20ms, [&] { ++ticks; });
  timer->SetEnabled(true);
  EXPECT_EQ(processes.Wait(processes.Start("sleep 0.4", true), 0), WaitEnd::Ended);
  EXPECT_GE(ticks, 3);
}

TEST_F(PosixProcessesTest, StoppingEndsAWaitAndTheProgramRunsOn) {
  const std::int32_t process = processes.Start("sleep 60", true);
  const auto timer = loop.MakeTimer(50ms, [&] { processes.StopWaiting(); });
  timer->SetEnabled(true);
  EXPECT_EQ(processes.Wait(process, 0), WaitEnd::GivenUp);
  EXPECT_EQ(processes.Wait(process, 0), WaitEnd::GivenUp);
  EXPECT_TRUE(Lives(process));
  ::kill(process, SIGKILL);
}

TEST_F(PosixProcessesTest, AProgramThatWasNotWaitedForLeavesNothingOfItself) {
  const std::int32_t process = processes.Start("true", true);
  for (int round = 0; round < 500 && Lives(process); ++round) {
    loop.Sleep(10ms);
    EXPECT_GT(processes.Start("true", true), 0);
  }
  EXPECT_FALSE(Lives(process));
}

TEST_F(PosixProcessesTest, AProgramBeginsWithoutInputOrBlockedSignals) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  ASSERT_EQ(::sigprocmask(SIG_BLOCK, &blocked, &before), 0);
  const std::int32_t process = processes.Start(
      Script("cat > \"$1\"; grep SigBlk /proc/self/status >> \"$1\"") + " " + (folder / "out"), true);
  ASSERT_EQ(::sigprocmask(SIG_SETMASK, &before, nullptr), 0);
  EXPECT_EQ(processes.Wait(process, 20000), WaitEnd::Ended);
  EXPECT_EQ(FileText(folder / "out"), "SigBlk:\t0000000000000000\n");
}

}  // namespace
}  // namespace kestrune::test
