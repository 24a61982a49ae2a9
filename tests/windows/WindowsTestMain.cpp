#include <QApplication>

#include <gmock/gmock.h>

// Tests of windows draw on no screen, and look the same on every machine.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication::setStyle("Fusion");
  const QApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
