#include <QCoreApplication>
#include <QImage>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "windows/FocusRing.h"

namespace kestrune::test {
namespace {

class FocusRingTest : public ::testing::Test {
 protected:
  FocusRingTest() {
    auto* layout = new QVBoxLayout(&window_);
    for (QPushButton* button : {&first_, &second_}) layout->addWidget(button);
    first_.setFocus();
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
  }
  [[nodiscard]] QImage Picture() {
    QCoreApplication::processEvents();
    return first_.grab().toImage();
  }

  QWidget window_;
  QPushButton first_{QStringLiteral("First"), &window_};
  QPushButton second_{QStringLiteral("Second"), &window_};
};

TEST_F(FocusRingTest, ShowsFromTheFirstKey) {
  const windows::FocusRing ring;
  const QImage before = Picture();
  QTest::keyClick(&first_, Qt::Key_Shift);
  EXPECT_TRUE(first_.hasFocus());
  EXPECT_NE(Picture(), before);
}

TEST_F(FocusRingTest, WithoutItAKeyShowsNothing) {
  const QImage before = Picture();
  QTest::keyClick(&first_, Qt::Key_Shift);
  EXPECT_EQ(Picture(), before) << "styles do it by themselves";
}

}  // namespace
}  // namespace kestrune::test
