#include <QImage>
#include <QPalette>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "presenters/LevelMeter.h"
#include "windows/AudioDisplay.h"

namespace kestrune::windows {
namespace {

class AudioDisplayTest : public testing::Test {
 protected:
  AudioDisplayTest() {
    Draw(2);
    Display.resize(300, 90);
  }
  void Draw(std::int16_t channels) {
    Meter.Draw(std::vector<std::int16_t>(960), {.SampleRate = 48000, .Channels = channels});
  }
  [[nodiscard]] QImage Picture() { return Display.grab().toImage(); }
  /// Below the bars, where their scale is.
  [[nodiscard]] QImage Marks() { return Picture().copy(10, 60, 280, 25); }
  /// Within the frame, above the bars.
  [[nodiscard]] QColor Ground() { return Picture().pixelColor(3, 3); }

  presenters::LevelMeter Meter;
  AudioDisplay Display{Meter};
};

TEST_F(AudioDisplayTest, TheGroundHasTheColoursOfThePalette) {
  for (const QColor& colour : {QColor(Qt::white), QColor(20, 30, 40)}) {
    QPalette palette;
    palette.setColor(QPalette::Base, colour);
    Display.setPalette(palette);
    EXPECT_EQ(Ground(), colour);
  }
}

TEST_F(AudioDisplayTest, TheGroundIsAsLargeAsTheDisplay) {
  ASSERT_EQ(Picture().pixelColor(299, 89), Picture().pixelColor(0, 0)) << "the frame";
  Display.resize(400, 120);
  EXPECT_EQ(Picture().pixelColor(399, 119), Picture().pixelColor(0, 0));
  EXPECT_EQ(Picture().pixelColor(299, 110), Ground());
}

TEST_F(AudioDisplayTest, TheMarksAreThoseOfTheFontAndOfTheBarsAlone) {
  const QImage before = Marks();
  QFont large = Display.font();
  large.setPointSizeF(large.pointSizeF() * 1.5);
  Display.setFont(large);
  const QImage after = Marks();
  EXPECT_NE(before, after);
  Meter.NextType();
  ASSERT_NE(Meter.Type(), presenters::VuType::Bars);
  EXPECT_NE(Marks(), after);
  while (Meter.Type() != presenters::VuType::Bars) Meter.NextType();
  EXPECT_EQ(Marks(), after);
}

TEST_F(AudioDisplayTest, TheMarksLieBelowTheBarsOfEachNumberOfChannels) {
  ASSERT_FALSE(Picture().isNull());
  Draw(1);
  AudioDisplay fresh(Meter);
  fresh.resize(Display.size());
  EXPECT_EQ(Picture(), fresh.grab().toImage());
}

}  // namespace
}  // namespace kestrune::windows
