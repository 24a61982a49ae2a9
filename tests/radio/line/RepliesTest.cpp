#include <gtest/gtest.h>

#include "radio/line/Replies.h"
#include "support/Bytes.h"
#include "support/RadioFrames.h"

namespace kestrune::test {
namespace {

using radio::DecodeChannelInfo;
using radio::DecodeChannelSet;
using radio::DecodeMute;
using radio::DecodePowerOnRadioID;
using radio::DecodeRadioID;
using radio::DecodeSignal;
using radio::pcrSignalPercent;

std::string SignalFrame(std::string_view terrestrial, std::string_view satellites) {
  return Bytes("5A A5 00 1A C3 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00") + Bytes(terrestrial) +
         Bytes("00 00 00 00 00 00") + Bytes(satellites) + Bytes("ED ED");
}

TEST(Replies, ThePowerOnReplyCarriesTheIdentifierAtOffset23) {
  EXPECT_EQ(DecodePowerOnRadioID(Bytes("5A A5 00 1B 80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                       "52 30 47 48 4A 4B 32 33 ED ED")),
            "R0GHJK23");
}

TEST(Replies, TheIdentifierReplyCarriesItAtOffset8) {
  EXPECT_EQ(DecodeRadioID(Bytes("5A A5 00 0C B1 01 00 00 52 30 47 48 4A 4B 32 33 ED ED")), "R0GHJK23");
}

TEST(Replies, AnIdentifierIsNeitherTrimmedNorChecked) {
  EXPECT_EQ(DecodeRadioID(Bytes("5A A5 00 0C B1 01 00 00 20 49 4F 20 E9 21 20 20 ED ED")), " IO \xC3\xA9!  ");
}

TEST(Replies, AnIdentifierBeyondTheFramesEndIsEmpty) {
  EXPECT_EQ(DecodePowerOnRadioID(Bytes("5A A5 00 01 80 ED ED")), "");
  EXPECT_EQ(DecodeRadioID(Bytes("5A A5 00 01 B1 ED ED")), "");
}

TEST(Replies, AChannelIsSetOnlyAfterTheWholePattern) {
  EXPECT_EQ(DecodeChannelSet(Bytes("5A A5 00 06 90 01 00 2D 00 00 ED ED")), 45);
  EXPECT_EQ(DecodeChannelSet(Bytes("5A A5 00 06 90 01 00 FF 00 00 ED ED")), 255);
  EXPECT_EQ(DecodeChannelSet(Bytes("5A A5 00 06 90 01 01 2D 00 00 ED ED")), std::nullopt);
  EXPECT_EQ(DecodeChannelSet(Bytes("5A A5 00 06 90 00 00 2D 00 00 ED ED")), std::nullopt);
  EXPECT_EQ(DecodeChannelSet(Bytes("5A A5 00 05 90 01 00 2D 00 ED ED")), std::nullopt);
  EXPECT_EQ(DecodeChannelSet(Bytes("00 A5 00 06 90 01 00 2D 00 00 ED ED")), std::nullopt);
  EXPECT_EQ(DecodeChannelSet(Bytes("5A A5 00 06 90")), std::nullopt);
}

TEST(Replies, MuteReadsItsByteAsADigit) {
  const auto mute = [](std::string_view byte) {
    return DecodeMute(Bytes("5A A5 00 04 93 01 00") + Bytes(byte) + Bytes("ED ED"));
  };
  EXPECT_FALSE(mute("00"));
  EXPECT_FALSE(mute("01"));
  EXPECT_FALSE(mute("30"));
  for (const char* digit : {"31", "32", "33", "34", "35", "36", "37", "38", "39"}) EXPECT_TRUE(mute(digit));
  EXPECT_FALSE(mute("3A"));
  EXPECT_FALSE(mute("41"));
  EXPECT_FALSE(DecodeMute(Bytes("5A A5 00 01 93 ED ED")));
}

TEST(Replies, ChannelInfoTypedByHand) {
  const auto info =
      DecodeChannelInfo(Bytes("5A A5 00 49 A5 01 00 2D 00 00"
                              "44 65 65 70 20 54 72 61 63 6B 73 00 00 00 00 00"  // Deep Tracks
                              "00 00"
                              "52 6F 63 6B 20 20 20 20 20 20 20 20 20 20 20 20"  // Rock
                              "00"
                              "54 48 45 20 46 4F 58 00 00 00 00 00 00 00 00 00"  // THE FOX
                              "4E 69 67 68 74 66 61 6C 6C 00 00 00 00 00 00 00"  // Nightfall
                              "ED ED"));
  EXPECT_EQ(info.Channel, 45);
  EXPECT_EQ(info.Station, "Deep Tracks");
  EXPECT_EQ(info.Genre, "Rock");
  EXPECT_EQ(info.Artist, "The Fox");
  EXPECT_EQ(info.Song, "Nightfall");
}

TEST(Replies, AFieldFilledToAllSixteenBytesIsKeptWhole) {
  const auto info = DecodeChannelInfo(
      ChannelInfoFrame(9, "STATION90123456x", "GENRE6789012345x", "Artist789012345x", "Song56789012345x"));
  EXPECT_EQ(info.Station, "STATION90123456x");
  EXPECT_EQ(info.Genre, "GENRE6789012345x");
  EXPECT_EQ(info.Artist, "Artist789012345x");
  EXPECT_EQ(info.Song, "Song56789012345x");
}

TEST(Replies, ZeroBytesGoFromWithinATextToo) {
  const std::string artist("\0A\0bba\0", 7);
  EXPECT_EQ(DecodeChannelInfo(ChannelInfoFrame(9, "", "", artist, "")).Artist, "Abba");
}

TEST(Replies, BlanksGoAfterTheZeroBytesHaveGone) {
  const std::string song("\0  Blank \0 ", 11);
  EXPECT_EQ(DecodeChannelInfo(ChannelInfoFrame(9, "", "", "", song)).Song, "Blank");
}

TEST(Replies, OtherPaddingStays) {
  EXPECT_EQ(DecodeChannelInfo(ChannelInfoFrame(9, "\tJazz\xFF", "", "", "")).Station, "\tJazz\xC3\xBF");
}

TEST(Replies, CaseIsRepairedOnlyInArtistAndSong) {
  const auto repaired = [](std::string_view text) {
    return DecodeChannelInfo(ChannelInfoFrame(9, "", "", text, "x")).Artist;
  };
  EXPECT_EQ(repaired("ROCK"), "Rock");
  EXPECT_EQ(repaired("rock"), "Rock");
  EXPECT_EQ(repaired("Rock"), "Rock");
  EXPECT_EQ(repaired("rOCK"), "rOCK");
  EXPECT_EQ(repaired("AC/DC"), "Ac/Dc");
  EXPECT_EQ(repaired("DON'T STOP"), "Don'T Stop");
  EXPECT_EQ(repaired("1999"), "1999");
  EXPECT_EQ(repaired("U2"), "U2");

  const auto info = DecodeChannelInfo(ChannelInfoFrame(9, "DEEP", "ROCK", "Mixed", "ALL UP"));
  EXPECT_EQ(info.Station, "DEEP");
  EXPECT_EQ(info.Genre, "ROCK");
  EXPECT_EQ(info.Artist, "Mixed");
  EXPECT_EQ(info.Song, "All Up");
}

TEST(Replies, CaseIsRepairedBeforeTheTextIsDecoded) {
  // An accented letter separates words: the letter after it is capitalised.
  EXPECT_EQ(DecodeChannelInfo(ChannelInfoFrame(9, "", "", "BEYONC\xC9S", "")).Artist, "Beyonc\xC3\xA9S");
}

TEST(Replies, AShortChannelInfoReadsAsEmpty) {
  const auto info = DecodeChannelInfo(Bytes("5A A5 00 01 A5 ED"));
  EXPECT_EQ(info.Channel, 0);
  EXPECT_EQ(info.Station + info.Genre + info.Artist + info.Song, "");
}

TEST(Replies, AChannelInfoCutWithinAFieldReadsWhatIsThere) {
  const auto info =
      DecodeChannelInfo(ChannelInfoFrame(9, "Station", "Genre", "Artist", "Song").substr(0, 48));
  EXPECT_EQ(info.Station, "Station");
  EXPECT_EQ(info.Genre, "Genre");
  EXPECT_EQ(info.Artist, "Art");
  EXPECT_EQ(info.Song, "");
}

TEST(Replies, SignalPercentAtItsSeams) {
  EXPECT_DOUBLE_EQ(pcrSignalPercent(0), 0);
  EXPECT_DOUBLE_EQ(pcrSignalPercent(6), 0);
  EXPECT_DOUBLE_EQ(pcrSignalPercent(7), 80.0 / 48);
  EXPECT_DOUBLE_EQ(pcrSignalPercent(51), 75) << "v = 45, q = 11";
  EXPECT_DOUBLE_EQ(pcrSignalPercent(52), 77.5) << "v = 46, q rounds up to 12";
  EXPECT_DOUBLE_EQ(pcrSignalPercent(54), 80);
  EXPECT_DOUBLE_EQ(pcrSignalPercent(67), 96.25) << "v = 61, q = 15";
  EXPECT_DOUBLE_EQ(pcrSignalPercent(68), 99.9) << "v = 62, q rounds up to 16";
  EXPECT_DOUBLE_EQ(pcrSignalPercent(70), 99.9);
  EXPECT_DOUBLE_EQ(pcrSignalPercent(255), 99.9);
}

TEST(Replies, SatelliteQualitiesAreWholeParts) {
  const auto quality = DecodeSignal(SignalFrame("00 00", "34 46"));
  EXPECT_EQ(quality.Satellite1, 77);
  EXPECT_EQ(quality.Satellite2, 99);
}

TEST(Replies, TerrestrialQualityFallsInTens) {
  const auto terrestrial = [](std::string_view raw) {
    return DecodeSignal(SignalFrame(raw, "00 00")).Terrestrial;
  };
  EXPECT_EQ(terrestrial("00 00"), 100);
  EXPECT_EQ(terrestrial("00 22"), 100) << "34 / 68 is half and rounds to the even 0";
  EXPECT_EQ(terrestrial("00 23"), 90);
  EXPECT_EQ(terrestrial("00 66"), 80) << "102 / 68 is 1.5 and rounds to the even 2";
  EXPECT_EQ(terrestrial("00 AA"), 80) << "170 / 68 is 2.5 and rounds to the even 2";
  EXPECT_EQ(terrestrial("02 A8"), 0) << "680 / 68 is 10";
  EXPECT_EQ(terrestrial("7F FF"), 0);
}

TEST(Replies, ATerrestrialValueThatOverflowsFallsBackOnItsHighByte) {
  EXPECT_EQ(DecodeSignal(SignalFrame("80 00", "00 00")).Terrestrial, 80) << "128 / 68 rounds to 2";
  EXPECT_EQ(DecodeSignal(SignalFrame("FF FF", "00 00")).Terrestrial, 60) << "255 / 68 rounds to 4";
}

TEST(Replies, AShortSignalReplyReadsItsRawValuesAsZero) {
  const auto quality = DecodeSignal(Bytes("5A A5 00 01 C3 ED ED"));
  EXPECT_EQ(quality.Satellite1, 0);
  EXPECT_EQ(quality.Satellite2, 0);
  EXPECT_EQ(quality.Terrestrial, 100);
}

}  // namespace
}  // namespace kestrune::test
