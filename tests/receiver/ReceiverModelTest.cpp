#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "WireBytes.h"
#include "receiver/CommandRules.h"
#include "receiver/ReceiverModel.h"

namespace kestrune::test {
namespace {

using receiver::LineUp;
using receiver::ReceiverModel;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

LineUp TwoStations() {
  return {{
      {8,
       "Neon 80s",
       "Decades",
       {{"Telephone Island", "Call Me by Modem", seconds(10)}, {"Glass Cadillac", "Été", seconds(10)}},
       {}},
      {200, "Far Away", "Talk", {}, {}},
  }};
}

ReceiverModel::Setup SetupOf(bool poweredOn) {
  ReceiverModel::Setup setup;
  setup.PoweredOn = poweredOn;
  return setup;
}

class ReceiverModelTest : public ::testing::Test {
 protected:
  /// The one frame that answers.
  std::string Answer(const std::string& command, milliseconds now = milliseconds(0)) {
    const std::vector<std::string> frames = Model.Answer(now, command);
    EXPECT_EQ(frames.size(), 1U);
    return frames.empty() ? "" : frames.front();
  }

  ReceiverModel Model{TwoStations(), SetupOf(true)};
};

const std::string kPowerOn = Bytes("\x00\x10\x10\x10\x01");
const std::string kPowerOff = Bytes("\x01\x00");

TEST_F(ReceiverModelTest, PowerOnIsAnsweredWithTheIdentifier) {
  EXPECT_EQ(
      Answer(kPowerOn),
      Bytes("\x5A\xA5\x00\x1B\x80\x01\x00\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01"
            "KSTR2605\x01\xBC"));
}

TEST_F(ReceiverModelTest, PowerOffIsAnsweredAndTurnsOff) {
  EXPECT_EQ(Answer(kPowerOff), Bytes("\x5A\xA5\x00\x03\x81\x01\x00\x01\x84"));
  EXPECT_FALSE(Model.PoweredOn());
  EXPECT_EQ(Model.AudibleChannel(), 0);
}

TEST_F(ReceiverModelTest, SelectOfAKnownChannelIsConfirmed) {
  EXPECT_EQ(Answer(Bytes("\x10\x02\xC8\x00\x00\x01")),
            Bytes("\x5A\xA5\x00\x06\x90\x01\x00\xC8\x00\x00\x01\x5E"));
  EXPECT_EQ(Model.TunedChannel(), 200);
}

TEST_F(ReceiverModelTest, SelectOfAnUnknownChannelIsRefused) {
  EXPECT_EQ(Answer(Bytes("\x10\x02\x09\x00\x00\x01")),
            Bytes("\x5A\xA5\x00\x06\x90\x00\x00\x09\x00\x00\x01\x9E"));
  EXPECT_EQ(Model.TunedChannel(), 8);
}

TEST_F(ReceiverModelTest, ASingleSelectCanBeRefused) {
  Model.RefuseNextSelect();
  EXPECT_EQ(Answer(Bytes("\x10\x02\xC8\x00\x00\x01")),
            Bytes("\x5A\xA5\x00\x06\x90\x00\x00\xC8\x00\x00\x01\x5D"));
  EXPECT_EQ(Model.TunedChannel(), 8);
  EXPECT_EQ(Answer(Bytes("\x10\x02\xC8\x00\x00\x01")).at(5), '\x01');
}

TEST_F(ReceiverModelTest, MuteIsAnsweredWithItsState) {
  EXPECT_EQ(Answer(Bytes("\x13\x01")), Bytes("\x5A\xA5\x00\x04\x93\x01\x00\x01\x01\x98"));
  EXPECT_TRUE(Model.Muted());
  EXPECT_EQ(Model.AudibleChannel(), 0);
  EXPECT_EQ(Answer(Bytes("\x13\x00")), Bytes("\x5A\xA5\x00\x04\x93\x01\x00\x00\x01\x97"));
  EXPECT_EQ(Model.AudibleChannel(), 8);
}

const std::string kChannel8 = Bytes(
    "\x5A\xA5\x00\x49\xA5\x01\x00\x08\x01\x01"
    "Neon 80s\0\0\0\0\0\0\0\0"
    "\x01\x01"
    "Decades\0\0\0\0\0\0\0\0\0"
    "\x01"
    "Telephone Island"
    "Call Me by Modem"
    "\x01\xA9");

TEST_F(ReceiverModelTest, ChannelInfoHasStationGenreArtistAndSong) {
  EXPECT_EQ(Answer(Bytes("\x25\x08\x08\x00")), kChannel8);
}

TEST_F(ReceiverModelTest, TheNextChannelAfterNoneIsTheFirst) {
  EXPECT_EQ(Answer(Bytes("\x25\x09\x00\x00")), kChannel8);
}

TEST_F(ReceiverModelTest, TheNextChannelAfterAGapIsTheNextThatExists) {
  EXPECT_EQ(Answer(Bytes("\x25\x09\x08\x00")).at(7), '\xC8');
  EXPECT_EQ(Answer(Bytes("\x25\x09\x55\x00")).at(7), '\xC8');
}

const std::string kChannel0 = Bytes(
    "\x5A\xA5\x00\x49\xA5\x01\x00\x00\x01\x01"
    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
    "\x01\x01"
    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
    "\x01"
    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
    "\x01\xF3");

TEST_F(ReceiverModelTest, AfterTheLastChannelComesChannel0WithoutTexts) {
  EXPECT_EQ(Answer(Bytes("\x25\x09\xC8\x00")), kChannel0);
  EXPECT_EQ(Answer(Bytes("\x25\x09\xFF\x00")), kChannel0);
}

TEST_F(ReceiverModelTest, InfoOfAnUnknownChannelIsChannel0) {
  EXPECT_EQ(Answer(Bytes("\x25\x08\x09\x00")), kChannel0);
}

TEST_F(ReceiverModelTest, AStationWithoutSongsHasEmptyTexts) {
  const std::string frame = Answer(Bytes("\x25\x08\xC8\x00"));
  EXPECT_EQ(frame.substr(10, 16), Bytes("Far Away\0\0\0\0\0\0\0\0"));
  EXPECT_EQ(frame.substr(45, 32), std::string(32, '\0'));
}

TEST_F(ReceiverModelTest, TheTextRunsAheadOfTheSoundByTheLead) {
  EXPECT_EQ(Answer(Bytes("\x25\x08\x08\x00"), milliseconds(9399)).substr(45, 16), "Telephone Island");
  EXPECT_EQ(Answer(Bytes("\x25\x08\x08\x00"), milliseconds(9400)).substr(45, 32),
            Bytes("Glass Cadillac\0\0\xC9t\xE9\0\0\0\0\0\0\0\0\0\0\0\0\0"));
}

TEST_F(ReceiverModelTest, IdentifierIsAtOffset8) {
  EXPECT_EQ(Answer("\x31"), Bytes("\x5A\xA5\x00\x0C\xB1\x01\x00\x01KSTR2605\x01\xCF"));
}

TEST_F(ReceiverModelTest, SignalLevelsAreAtTheirOffsets) {
  Model.SetLevels({70, 20, 0x0144});
  EXPECT_EQ(Answer("\x43"),
            Bytes("\x5A\xA5\x00\x1A\xC3\x01\x00\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01"
                  "\x01\x44\x01\x01\x01\x01\x01\x01\x46\x14\x01\x8F"));
}

TEST_F(ReceiverModelTest, SetupStepsAreAnsweredWithTheirOwnType) {
  for (const std::string& command :
       {Bytes("\x74\x00\x01"), Bytes("\x74\x0D"), Bytes("\x74\x02\x01\x01"), Bytes("\x74\x04\x01\x05")}) {
    EXPECT_EQ(Answer(command), Bytes("\x5A\xA5\x00\x03\xF4\x01\x00\x01\xF7"));
  }
  EXPECT_EQ(Answer("\x40"), Bytes("\x5A\xA5\x00\x03\xC0\x01\x00\x01\xC3"));
}

TEST_F(ReceiverModelTest, AnUnknownCommandIsNotAnswered) {
  EXPECT_THAT(Model.Answer(milliseconds(0), "\x22"), IsEmpty());
  EXPECT_THAT(Model.Answer(milliseconds(0), "\x7F"), IsEmpty());
}

TEST_F(ReceiverModelTest, ACommandWithAWrongByteIsNeitherObeyedNorAnswered) {
  const std::string wrong[] = {
      Bytes("\x00\x10\x10\x10\x00"),
      Bytes("\x00\x10\x10\x10"),
      Bytes("\x00\x10\x10\x10\x01\x01"),
      Bytes("\x01\x01"),
      Bytes("\x13\x02"),
      Bytes("\x13"),
      Bytes("\x25\x07\x08\x00"),
      Bytes("\x25\x08\x08\x01"),
      Bytes("\x25\x08\x08"),
      Bytes("\x31\x00"),
      Bytes("\x40\x00"),
      Bytes("\x43\x01"),
      Bytes("\x74\x00\x00"),
      Bytes("\x74\x0D\x01"),
      Bytes("\x74\x02\x01\x02"),
      Bytes("\x74\x04\x01\x01"),
      Bytes("\x74\x0B\x00"),
      Bytes("\x74\x05"),
  };
  for (const std::string& command : wrong) {
    EXPECT_THAT(Model.Answer(milliseconds(0), command), IsEmpty()) << receiver::HexOf(command);
  }
  EXPECT_TRUE(Model.PoweredOn());
  EXPECT_FALSE(Model.Muted());
}

TEST_F(ReceiverModelTest, ASelectWithAWrongFieldIsRefused) {
  for (const std::string& command : {Bytes("\x10\x01\xC8\x00\x00\x01"), Bytes("\x10\x02\xC8\x01\x00\x01"),
                                     Bytes("\x10\x02\xC8\x00\x01\x01"), Bytes("\x10\x02\xC8\x00\x00\x00"),
                                     Bytes("\x10\x02\xC8\x00\x00")}) {
    EXPECT_EQ(Answer(command).substr(0, 7), Bytes("\x5A\xA5\x00\x06\x90\x00\x00"))
        << receiver::HexOf(command);
  }
  EXPECT_EQ(Model.TunedChannel(), 8);
  EXPECT_EQ(Answer(Bytes("\x10\x02\xC8\x00\x00\x01")).at(5), '\x01') << "the next one is taken";
}

TEST(ReceiverModelOff, EveryCommandButPowerAndSetupIsRejected) {
  ReceiverModel model(TwoStations(), SetupOf(false));
  const struct {
    std::string Command;
    std::string Reply;
  } rows[] = {
      {Bytes("\x10\x02\x08\x00\x00\x01"), Bytes("\x5A\xA5\x00\x02\xFF\x10\x01\x10")},
      {Bytes("\x13\x01"), Bytes("\x5A\xA5\x00\x02\xFF\x13\x01\x13")},
      {Bytes("\x25\x08\x08\x00"), Bytes("\x5A\xA5\x00\x02\xFF\x25\x01\x25")},
      {"\x31", Bytes("\x5A\xA5\x00\x02\xFF\x31\x01\x31")},
      {"\x40", Bytes("\x5A\xA5\x00\x02\xFF\x40\x01\x40")},
      {"\x43", Bytes("\x5A\xA5\x00\x02\xFF\x43\x01\x43")},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(model.Answer(milliseconds(0), row.Command), ElementsAre(row.Reply));
  }
  EXPECT_EQ(model.Answer(milliseconds(0), Bytes("\x74\x0D")).front().at(4), '\xF4');
  EXPECT_EQ(model.Answer(milliseconds(0), kPowerOff).front().at(4), '\x81');
  EXPECT_EQ(model.Answer(milliseconds(0), kPowerOn).front().at(4), '\x80');
  EXPECT_EQ(model.Answer(milliseconds(0), "\x31").front().at(4), '\xB1');
}

TEST(ReceiverModelSetup, TunesTheFirstStationUnlessAskedForAnother) {
  EXPECT_EQ(ReceiverModel(TwoStations(), {}).TunedChannel(), 8);
  ReceiverModel::Setup setup;
  setup.Tuned = 200;
  EXPECT_EQ(ReceiverModel(TwoStations(), setup).TunedChannel(), 200);
  EXPECT_EQ(ReceiverModel({}, {}).TunedChannel(), 0);
}

TEST(ReceiverModelSetup, AShortIdentifierIsPaddedWithBlanks) {
  ReceiverModel::Setup setup;
  setup.Identifier = "ABC";
  ReceiverModel model(TwoStations(), setup);
  EXPECT_EQ(model.Answer(milliseconds(0), "\x31").front().substr(8, 8), "ABC     ");
}

}  // namespace
}  // namespace kestrune::test
