#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "windows/FittedPage.h"

namespace kestrune::test {
namespace {

using windows::FittedPage;
using windows::FittedSize;

TEST(FittedPage, AWindowGetsWhatItWishesOrWhatTheScreenHas) {
  EXPECT_EQ(FittedSize({687, 500}, {1024, 600}, 14), QSize(687, 500));
  EXPECT_EQ(FittedSize({749, 717}, {1024, 600}, 14), QSize(749, 560)) << "less what the frame takes";
  EXPECT_EQ(FittedSize({1420, 500}, {1024, 600}, 14), QSize(1014, 514)) << "the bar below covers nothing";
  EXPECT_EQ(FittedSize({1420, 640}, {1024, 600}, 14), QSize(1014, 560));
}

TEST(FittedPage, WhatDoesNotFitIsScrolledToByTheKeyboard) {
  FittedPage page;
  auto* column = new QVBoxLayout(&page.Content());
  for (int i = 0; i < 40; ++i) column->addWidget(new QPushButton(QString::number(i)));
  EXPECT_GT(page.sizeHint().height(), 600);
  EXPECT_LT(page.minimumSizeHint().height(), 300);
  page.resize(200, 300);
  page.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
  EXPECT_GT(page.verticalScrollBar()->maximum(), 0);
  auto* const last = qobject_cast<QWidget*>(column->itemAt(39)->widget());
  column->itemAt(38)->widget()->setFocus();
  QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
  ASSERT_EQ(page.focusWidget(), last);
  EXPECT_TRUE(page.viewport()->rect().contains(last->mapTo(page.viewport(), last->rect().center())));
}

TEST(FittedPage, AsksForMoreWhenItsContentGrows) {
  QWidget window;
  auto* whole = new QVBoxLayout(&window);
  auto* page = new FittedPage(&window);
  whole->addWidget(page);
  auto* column = new QVBoxLayout(&page->Content());
  column->addWidget(new QLabel(QStringLiteral("One")));
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  const int before = window.sizeHint().height();
  for (int i = 0; i < 5; ++i) column->addWidget(new QLabel(QStringLiteral("More")));
  QCoreApplication::processEvents();
  EXPECT_GT(window.sizeHint().height(), before + 30);
}

}  // namespace
}  // namespace kestrune::test
