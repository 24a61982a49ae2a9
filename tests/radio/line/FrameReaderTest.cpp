#include <vector>

#include <gtest/gtest.h>

#include "radio/line/FrameReader.h"
#include "support/Bytes.h"

namespace kestrune::test {
namespace {

using radio::FrameReader;
using radio::FrameStep;

class FrameReaderTest : public ::testing::Test {
 protected:
  FrameReaderTest() { reader.BeginRun(); }

  void Arrive(std::string_view hex) { reader.Append(Bytes(hex)); }

  // Cuts until there is nothing more to cut, and keeps what the last call said.
  std::vector<std::string> CutAll() {
    std::vector<std::string> frames;
    std::string frame;
    while ((last = reader.Next(frame)) == FrameStep::Frame) frames.push_back(frame);
    return frames;
  }

  FrameReader reader;
  FrameStep last = FrameStep::Nothing;
};

using Frames = std::vector<std::string>;

TEST_F(FrameReaderTest, AFrameIsItsPayloadAndSixBytes) {
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 02 81 00 ED ED")});
  EXPECT_EQ(last, FrameStep::Nothing);
  EXPECT_EQ(reader.Pending(), "");
}

TEST_F(FrameReaderTest, TwoFramesInOneReadComeInOrder) {
  Arrive("5A A5 00 02 81 00 ED ED 5A A5 00 01 E3 ED ED");
  EXPECT_EQ(CutAll(), (Frames{Bytes("5A A5 00 02 81 00 ED ED"), Bytes("5A A5 00 01 E3 ED ED")}));
}

TEST_F(FrameReaderTest, AFrameInTwoHalvesIsWhole) {
  Arrive("5A A5 00 04 93 01");
  EXPECT_EQ(CutAll(), Frames{});
  Arrive("00");
  EXPECT_EQ(CutAll(), Frames{});
  EXPECT_EQ(last, FrameStep::Incomplete);
  Arrive("31 ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 04 93 01 00 31 ED ED")});
}

TEST_F(FrameReaderTest, SixBytesAreNotLookedAtEvenIfTheyAreAFrame) {
  Arrive("5A A5 00 00 ED ED");
  EXPECT_FALSE(reader.HasCandidate());
  EXPECT_EQ(CutAll(), Frames{});
  EXPECT_EQ(last, FrameStep::Nothing);
  Arrive("5A");
  EXPECT_TRUE(reader.HasCandidate());
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 00 ED ED")});
  EXPECT_EQ(reader.Pending(), Bytes("5A"));
}

TEST_F(FrameReaderTest, ThreeJunkBytesBeforeAFrameAreCut) {
  Arrive("01 02 03 5A A5 00 01 E3 ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 01 E3 ED ED")});
  EXPECT_EQ(reader.JunkBytes(), 3U);
}

TEST_F(FrameReaderTest, AHeaderIsFoundAtPositionsTwoToFive) {
  for (std::size_t junk = 1; junk <= 4; ++junk) {
    FrameReader fresh;
    fresh.BeginRun();
    fresh.Append(std::string(junk, '\x11') + Bytes("5A A5 00 01 E3 ED ED"));
    std::string frame;
    ASSERT_EQ(fresh.Next(frame), FrameStep::Frame) << junk;
    EXPECT_EQ(frame, Bytes("5A A5 00 01 E3 ED ED")) << junk;
    EXPECT_EQ(fresh.JunkBytes(), junk);
  }
}

TEST_F(FrameReaderTest, AHeaderWhoseFirstByteIsTheSixthIsLost) {
  Arrive("11 11 11 11 11 5A A5 00 01 E3 ED ED");
  // The junk is cut in pieces of 6, the fallback length being 0, and takes half the header along.
  EXPECT_EQ(CutAll(), Frames{Bytes("11 11 11 11 11 5A")});
  EXPECT_EQ(reader.Pending(), Bytes("A5 00 01 E3 ED ED"));
  EXPECT_EQ(reader.JunkBytes(), 6U);
}

TEST_F(FrameReaderTest, JunkWithoutAHeaderIsCutInPiecesOfSixAtTheStartOfARun) {
  Arrive("11 12 13 14 15 16 17 18 19 1A 1B 1C 1D");
  EXPECT_EQ(CutAll(), (Frames{Bytes("11 12 13 14 15 16"), Bytes("17 18 19 1A 1B 1C")}));
  EXPECT_EQ(reader.Pending(), Bytes("1D"));
}

TEST_F(FrameReaderTest, JunkAfterAFrameIsCutInPiecesOfThatFramesSize) {
  Arrive("5A A5 00 02 81 00 ED ED 11 12 13 14 15 16 17 18 19");
  EXPECT_EQ(CutAll(), (Frames{Bytes("5A A5 00 02 81 00 ED ED"), Bytes("11 12 13 14 15 16 17 18")}));
  EXPECT_EQ(reader.JunkBytes(), 8U);
}

TEST_F(FrameReaderTest, ARealHeaderInsideAJunkPieceIsLostWithIt) {
  Arrive("5A A5 00 05 E3 00 00 00 00 ED ED");
  Arrive("11 11 11 11 11 11 5A A5 00 01 81 ED ED");
  EXPECT_EQ(CutAll(),
            (Frames{Bytes("5A A5 00 05 E3 00 00 00 00 ED ED"), Bytes("11 11 11 11 11 11 5A A5 00 01 81")}));
  EXPECT_EQ(reader.Pending(), Bytes("ED ED"));
}

TEST_F(FrameReaderTest, ANewRunForgetsTheLength) {
  Arrive("5A A5 00 05 E3 00 00 00 00 ED ED");
  EXPECT_EQ(CutAll().size(), 1U);
  reader.BeginRun();
  Arrive("11 12 13 14 15 16 17");
  EXPECT_EQ(CutAll(), Frames{Bytes("11 12 13 14 15 16")});
}

TEST_F(FrameReaderTest, ALengthWithItsTopBitSetKeepsTheOldLength) {
  Arrive("5A A5 80 01 E3 ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 80 01 E3 ED")}) << "the old length is 0";
  EXPECT_EQ(reader.Pending(), Bytes("ED"));

  FrameReader other;
  other.BeginRun();
  other.Append(Bytes("5A A5 00 02 81 00 ED ED 5A A5 FF FF E3 00 ED ED"));
  std::string frame;
  ASSERT_EQ(other.Next(frame), FrameStep::Frame);
  ASSERT_EQ(other.Next(frame), FrameStep::Frame);
  EXPECT_EQ(frame, Bytes("5A A5 FF FF E3 00 ED ED")) << "the old length is 2";
  EXPECT_EQ(other.JunkBytes(), 0U);
}

TEST_F(FrameReaderTest, TheLongestFrameHas32767BytesOfPayload) {
  reader.Append(Bytes("5A A5 7F FF E3") + std::string(32766, 'x') + Bytes("ED"));
  EXPECT_EQ(CutAll(), Frames{});
  EXPECT_EQ(last, FrameStep::Incomplete);
  Arrive("ED");
  const Frames frames = CutAll();
  ASSERT_EQ(frames.size(), 1U);
  EXPECT_EQ(frames[0].size(), 32773U);
}

TEST_F(FrameReaderTest, ATruncatedFrameSwallowsTheNextOnesUpToItsLength) {
  Arrive("5A A5 00 0A 93 01 ");
  Arrive("5A A5 00 01 E3 ED ED");
  Arrive("5A A5 00 01 81 ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 0A 93 01 5A A5 00 01 E3 ED ED 5A A5 00")});
  EXPECT_EQ(reader.Pending(), Bytes("01 81 ED ED"));
}

TEST_F(FrameReaderTest, AnyByteCanStandInAPayload) {
  Arrive("5A A5 00 06 E3 5A A5 00 00 5A ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 06 E3 5A A5 00 00 5A ED ED")});
}

TEST_F(FrameReaderTest, AHeaderCutShortByResynchronisingWaits) {
  Arrive("11 11 11 11 5A A5 00");
  EXPECT_EQ(CutAll(), Frames{});
  EXPECT_EQ(last, FrameStep::Incomplete);
  EXPECT_EQ(reader.Pending(), Bytes("5A A5 00"));
  Arrive("01 E3 ED ED");
  EXPECT_EQ(CutAll(), Frames{Bytes("5A A5 00 01 E3 ED ED")});
}

TEST_F(FrameReaderTest, AFrameIsLeftAloneWhereNoneIsCut) {
  std::string frame = "before";
  Arrive("5A A5 00 09 E3 ED ED");
  EXPECT_EQ(reader.Next(frame), FrameStep::Incomplete);
  EXPECT_EQ(frame, "before");
}

TEST_F(FrameReaderTest, ManyFramesSurviveTheCompactingOfTheBuffer) {
  const std::string one = Bytes("5A A5 00 02 81 07 ED ED");
  std::string flood;
  for (int count = 0; count < 10000; ++count) flood += one;
  // In pieces that end inside frames.
  std::size_t cut = 0;
  for (std::size_t position = 0; position < flood.size(); position += 997) {
    reader.Append(std::string_view(flood).substr(position, 997));
    for (const std::string& frame : CutAll()) {
      ASSERT_EQ(frame, one);
      ++cut;
    }
  }
  EXPECT_EQ(cut, 10000U);
  EXPECT_EQ(reader.JunkBytes(), 0U);
}

TEST_F(FrameReaderTest, WhatIsPendingCanBeDropped) {
  Arrive("5A A5 7F FF 00 00 00");
  EXPECT_EQ(CutAll().size(), 0U);
  EXPECT_EQ(last, FrameStep::Incomplete);
  reader.DropPending();
  EXPECT_EQ(reader.JunkBytes(), 7U);
  EXPECT_EQ(reader.Pending(), "");
  Arrive("5A A5 00 02 81 00 ED ED");
  EXPECT_EQ(CutAll(), std::vector<std::string>{Bytes("5A A5 00 02 81 00 ED ED")});
}

}  // namespace
}  // namespace kestrune::test
