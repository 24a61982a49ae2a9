#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "windows/frmRadioID.h"

namespace kestrune::test {
namespace {

TEST(frmRadioID, ShowsItsTextsAndTheIdentifier) {
  const windows::frmRadioID window("ABCD1234");
  EXPECT_EQ(window.windowTitle(), QStringLiteral("Radio ID"));
  EXPECT_TRUE(window.isModal());
  struct Told {
    const char* Name;
    const char* Text;
  };
  for (const Told& told :
       {Told{"lblPCRIDIs", "Your XM Radio ID is:"}, Told{"lblID", "ABCD1234"},
        Told{"lblWarning",
             "Please note that the letters I (eye) and O (oh) are never used in radio ID's."}}) {
    const auto* label = window.findChild<QLabel*>(QLatin1String(told.Name));
    ASSERT_NE(label, nullptr) << told.Name;
    EXPECT_EQ(label->text(), QLatin1String(told.Text));
  }
  EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblID"))->font().family(),
            QStringLiteral("Courier New"));
}

TEST(frmRadioID, AnyEightCharactersAreShownAsTheyAre) {
  const windows::frmRadioID window("<b>&\n\xC3\xA9 ");
  const auto* label = window.findChild<QLabel*>(QStringLiteral("lblID"));
  EXPECT_EQ(label->textFormat(), Qt::PlainText);
  EXPECT_EQ(label->text(), QStringLiteral("<b>& \u00E9 "));
}

TEST(frmRadioID, AnEmptyIdentifierIsAccepted) {
  const windows::frmRadioID window("");
  EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblID"))->text(), QString());
}

TEST(frmRadioID, TheButtonReturnAndEscapeCloseIt) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    windows::frmRadioID window("ABCD1234");
    window.show();
    QTest::keyClick(&window, key);
    EXPECT_FALSE(window.isVisible());
  }
  windows::frmRadioID window("ABCD1234");
  window.show();
  QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
  EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace kestrune::test
