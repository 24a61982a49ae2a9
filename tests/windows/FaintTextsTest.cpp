#include <QCoreApplication>
#include <QLabel>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "windows/FaintTexts.h"

namespace kestrune::test {
namespace {

class FaintTextsTest : public ::testing::Test {
 protected:
  QLabel& Add(const char* name, const QColor& colour) {
    auto* label = new QLabel(QStringLiteral("Some words to be read"), &window_);
    label->setObjectName(QLatin1String(name));
    QPalette colours = label->palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
      colours.setColor(group, QPalette::WindowText, colour);
    label->setPalette(colours);
    layout_->addWidget(label);
    return *label;
  }
  [[nodiscard]] QStringList Faint() {
    QPalette white;
    white.setColor(QPalette::Window, Qt::white);
    window_.setPalette(white);
    window_.show();
    QCoreApplication::processEvents();
    return FaintTexts(window_, window_.grab().toImage());
  }

  QWidget window_;
  QVBoxLayout* layout_ = new QVBoxLayout(&window_);
};

TEST_F(FaintTextsTest, FindsTheTextThatIsTooLikeItsGround) {
  Add("black", Qt::black);
  Add("grey", QColor(0x60, 0x60, 0x60));
  Add("faint", QColor(0xa0, 0xa0, 0xa0));
  const QStringList faint = Faint();
  ASSERT_EQ(faint.size(), 1);
  EXPECT_TRUE(faint.front().startsWith(QStringLiteral("faint \"Some words to be read\": 2.")))
      << qPrintable(faint.front());
}

TEST_F(FaintTextsTest, WhatIsDisabledOrHiddenMayBeFaint) {
  Add("disabled", QColor(0xa0, 0xa0, 0xa0)).setEnabled(false);
  Add("hidden", QColor(0xa0, 0xa0, 0xa0)).hide();
  EXPECT_TRUE(Faint().isEmpty());
}

}  // namespace
}  // namespace kestrune::test
