#include <QApplication>
#include <QPaintEvent>
#include <QSocketNotifier>
#include <QTest>
#include <QWidget>
#include <array>
#include <chrono>

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/qt/QtEventLoop.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::QtEventLoop;

class Painted final : public QWidget {
 public:
  int Paints = 0;
  int Keys = 0;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override { ++Paints; }
  void keyPressEvent(QKeyEvent* /*event*/) override { ++Keys; }
};

TEST(SleepWithWindows, WhatIsOnScreenStaysPainted) {
  QtEventLoop loop(QtEventLoop::WhileAsleep::KeepPainted);
  Painted window;
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  const int before = window.Paints;
  window.update();
  loop.Sleep(60ms);
  EXPECT_GT(window.Paints, before);
}

TEST(SleepWithWindows, NoTimerFiresWithinItAndADueOneFiresOnceAfterIt) {
  QtEventLoop loop(QtEventLoop::WhileAsleep::KeepPainted);
  int fired = 0;
  const auto timer = loop.MakeTimer(20ms, [&] { ++fired; });
  timer->SetEnabled(true);
  loop.Sleep(150ms);
  EXPECT_EQ(fired, 0);
  ::usleep(2000);
  loop.PumpEvents();
  EXPECT_EQ(fired, 1);
}

TEST(SleepWithWindows, NoDeviceIsServedWithinItAndNothingIsLost) {
  QtEventLoop loop(QtEventLoop::WhileAsleep::KeepPainted);
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  int notified = 0;
  {
    QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&] {
      ++notified;
      char byte = 0;
      EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    });
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    loop.Sleep(100ms);
    EXPECT_EQ(notified, 0);
    for (int i = 0; i < 10 && notified == 0; ++i) loop.PumpEvents();
    EXPECT_EQ(notified, 1);
  }
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST(SleepWithWindows, ASleepLastsAsLongAsItIsAskedTo) {
  QtEventLoop loop(QtEventLoop::WhileAsleep::KeepPainted);
  const auto before = loop.SteadyNow();
  loop.Sleep(75ms);
  EXPECT_GE(loop.SteadyNow() - before, 74ms);
  loop.Sleep(0ms);
}

TEST(SleepWithWindows, ATimerSwitchedOffWithinTheWaitDoesNotFire) {
  QtEventLoop loop(QtEventLoop::WhileAsleep::KeepPainted);
  int fired = 0;
  const auto timer = loop.MakeTimer(10ms, [&] { ++fired; });
  timer->SetEnabled(true);
  loop.Sleep(60ms);
  timer->SetEnabled(false);
  ::usleep(2000);
  loop.PumpEvents();
  EXPECT_EQ(fired, 0);
}

}  // namespace
}  // namespace kestrune::test
