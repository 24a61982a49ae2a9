#include <QApplication>
#include <QCloseEvent>
#include <QSocketNotifier>
#include <QTest>
#include <QWidget>
#include <QWindow>
#include <array>
#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/qt/QtEventLoop.h"

// What a window system reports, which waits in Qt's queue, while the events of QTest are delivered on the spot. Qt declares it
// in a header for makers of platforms that distributions package apart.
class QWindowSystemInterface {
 public:
  // NOLINTBEGIN(readability-identifier-naming): these are its names.
  struct AsynchronousDelivery {};
  template <typename Delivery>
  static bool handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                             const QString& text, bool repeated, unsigned short count);
  template <typename Delivery>
  static bool handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                               Qt::MouseButtons held, Qt::MouseButton button, QEvent::Type type,
                               Qt::KeyboardModifiers modifiers, Qt::MouseEventSource source);
  template <typename Delivery>
  static bool handleCloseEvent(QWindow* window);
  // NOLINTEND(readability-identifier-naming)
};

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using platform::QtEventLoop;
using ::testing::IsEmpty;

/// All that the user does, in its order.
constexpr const char* kAll = "key mouse close ";

/// Notes what reaches it.
class Watched final : public QWidget {
 public:
  std::string Heard;
  int Paints = 0;

 protected:
  void keyPressEvent(QKeyEvent* /*event*/) override { Heard += "key "; }
  void mousePressEvent(QMouseEvent* /*event*/) override { Heard += "mouse "; }
  void closeEvent(QCloseEvent* event) override {
    Heard += "close ";
    event->ignore();
  }
  void paintEvent(QPaintEvent* /*event*/) override { ++Paints; }
};

/// A window on screen, and its user.
class PumpWithWindows : public ::testing::Test {
 protected:
  void SetUp() override {
    window_.resize(200, 100);
    window_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window_));
  }

  void UserActs() {
    using Reported = QWindowSystemInterface;
    using Queued = Reported::AsynchronousDelivery;
    QWindow* const window = window_.windowHandle();
    const QPointF place(20, 20);
    Reported::handleKeyEvent<Queued>(window, QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"),
                                     false, 1);
    Reported::handleMouseEvent<Queued>(window, place, window->mapToGlobal(place), Qt::LeftButton,
                                       Qt::LeftButton, QEvent::MouseButtonPress, Qt::NoModifier,
                                       Qt::MouseEventNotSynthesized);
    Reported::handleCloseEvent<Queued>(window);
  }
  /// Pumps for a twentieth of a second, or until the condition holds.
  template <typename Condition>
  void Pump(Condition enough) {
    const auto end = loop_.SteadyNow() + 50ms;
    while (!enough() && loop_.SteadyNow() < end) {
      loop_.PumpEvents();
      loop_.Sleep(2ms);
    }
  }
  /// What the outer loop delivers, which takes several rounds.
  [[nodiscard]] bool HeardInTheEnd(const std::string& what) {
    return QTest::qWaitFor([&] { return window_.Heard == what; });
  }

  QtEventLoop loop_{QtEventLoop::WhileAsleep::KeepPainted};
  Watched window_;
};

TEST_F(PumpWithWindows, DuringTheStartTheUserComesIn) {
  UserActs();
  Pump([this] { return window_.Heard == kAll; });
  EXPECT_EQ(window_.Heard, kAll);
}

TEST_F(PumpWithWindows, WhatTheUserDoesDuringASleepIsHeardByThePumpsAfterIt) {
  QtEventLoop loop(QtEventLoop::WhileAsleep::KeepPainted);
  UserActs();
  loop.Sleep(20ms);
  EXPECT_THAT(window_.Heard, IsEmpty());
  for (int pump = 0; pump < 5; ++pump) {
    loop.PumpEvents();
    loop.Sleep(5ms);
  }
  EXPECT_EQ(window_.Heard, kAll);
}

TEST_F(PumpWithWindows, AfterwardsKeysMouseAndClosesWaitForTheOuterLoop) {
  loop_.KeepUserOutOfPumps();
  UserActs();
  Pump([] { return false; });
  EXPECT_THAT(window_.Heard, IsEmpty());
  EXPECT_TRUE(HeardInTheEnd(kAll)) << window_.Heard;
}

TEST_F(PumpWithWindows, WhileTheUserWaitsWindowsArePaintedAndTimersAndDevicesServed) {
  loop_.KeepUserOutOfPumps();
  UserActs();
  int fired = 0;
  const auto timer = loop_.MakeTimer(5ms, [&] { ++fired; });
  timer->SetEnabled(true);
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
    const int paints = window_.Paints;
    window_.update();
    Pump([&] { return fired > 0 && notified > 0 && window_.Paints > paints; });
    EXPECT_GT(fired, 0);
    EXPECT_EQ(notified, 1);
    EXPECT_GT(window_.Paints, paints);
  }
  ::close(ends[0]);
  ::close(ends[1]);
  EXPECT_THAT(window_.Heard, IsEmpty());
  EXPECT_TRUE(HeardInTheEnd(kAll)) << window_.Heard;
}

}  // namespace
}  // namespace kestrune::test
