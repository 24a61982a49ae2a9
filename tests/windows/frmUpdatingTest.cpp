#include <QLabel>
#include <QProgressBar>
#include <QTest>

#include <gtest/gtest.h>

#include "windows/Binding.h"
#include "windows/frmUpdating.h"

namespace kestrune::test {
namespace {

class frmUpdatingTest : public ::testing::Test {
 protected:
  config::UpdatingWindow record;
  windows::frmUpdating window{record};
  QLabel* lblUpdating = window.findChild<QLabel*>(QStringLiteral("lblUpdating"));
  QProgressBar* pbrDownload = window.findChild<QProgressBar*>(QStringLiteral("pbrDownload"));
};

TEST_F(frmUpdatingTest, ShowsItsRecord) {
  ASSERT_NE(lblUpdating, nullptr);
  ASSERT_NE(pbrDownload, nullptr);
  EXPECT_EQ(window.objectName(), QStringLiteral("frmUpdating"));
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Updating Kestrune"));
  EXPECT_EQ(
      windows::FromQt(lblUpdating->text()),
      "Kestrune is currently downloading the most recent version. This may take several minutes depending "
      "on the speed of your connection.");
  EXPECT_EQ(pbrDownload->minimum(), 0);
  EXPECT_EQ(pbrDownload->maximum(), 100);
  EXPECT_EQ(pbrDownload->value(), 0);
  EXPECT_FALSE(pbrDownload->isTextVisible());
}

TEST_F(frmUpdatingTest, TheBarFollowsTheRecordByItself) {
  window.show();
  record.pbrDownload = 100;
  EXPECT_TRUE(QTest::qWaitFor([this] { return pbrDownload->value() == 100; }));
  record.pbrDownload = 0;
  EXPECT_TRUE(QTest::qWaitFor([this] { return pbrDownload->value() == 0; }));
}

TEST_F(frmUpdatingTest, DoesNotHoldUpWhoeverShowsIt) {
  window.show();
  EXPECT_TRUE(window.isVisible());
  EXPECT_FALSE(window.isModal());
}

TEST_F(frmUpdatingTest, EscapeAndCloseOnlyPutItOutOfSight) {
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
  window.show();
  EXPECT_TRUE(window.close());
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(pbrDownload->value(), 0) << "it is still there";
}

TEST_F(frmUpdatingTest, TheWholeTextFits) {
  window.show();
  EXPECT_GE(lblUpdating->height(), lblUpdating->heightForWidth(lblUpdating->width()));
}

}  // namespace
}  // namespace kestrune::test
