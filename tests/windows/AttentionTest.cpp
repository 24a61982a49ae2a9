#include <QMouseEvent>
#include <QTest>
#include <QWidget>
#include <chrono>

#include <gtest/gtest.h>

#include "support/SimulatedEventLoop.h"
#include "windows/Attention.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;
using windows::Attention;

class AttentionTest : public ::testing::Test {
 protected:
  AttentionTest() { loop_.Run(Attention::kLasts); }

  SimulatedEventLoop loop_;
  QWidget window_;
};

TEST_F(AttentionTest, IsPaidForHalfAMinuteAfterTheStart) {
  const Attention attention(loop_);
  loop_.Run(Attention::kLasts - 1ms);
  EXPECT_TRUE(attention.Paid());
  loop_.Run(1ms);
  EXPECT_FALSE(attention.Paid());
}

TEST_F(AttentionTest, IsPaidAgainWithAKeyAClickOrAMoveOfThePointer) {
  const Attention attention(loop_);
  const auto expectPaid = [&](const auto& act) {
    loop_.Run(Attention::kLasts);
    ASSERT_FALSE(attention.Paid());
    act();
    EXPECT_TRUE(attention.Paid());
  };
  expectPaid([&] { QTest::keyClick(&window_, Qt::Key_Tab); });
  expectPaid([&] { QTest::mouseClick(&window_, Qt::LeftButton); });
  expectPaid([&] {
    QMouseEvent move(QEvent::MouseMove, {1, 1}, {1, 1}, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window_, &move);
  });
}

TEST_F(AttentionTest, WhatTheProgramDoesByItselfIsNone) {
  const Attention attention(loop_);
  loop_.Run(Attention::kLasts);
  window_.setWindowTitle(QStringLiteral("A Song"));
  window_.setEnabled(false);
  window_.update();
  QCoreApplication::processEvents();
  EXPECT_FALSE(attention.Paid());
}

}  // namespace
}  // namespace kestrune::test
