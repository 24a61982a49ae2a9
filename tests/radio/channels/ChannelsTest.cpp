// The channel table in its surroundings: the saved list, the walk, the polling and the tuned channel.
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "radio/channels/Channels.h"
#include "radio/line/SessionFixture.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {
namespace {

using radio::ChannelEntry;
using radio::ChannelGrid;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kListPath = "/data/ChannelList.txt";

// Writes down what the channels report.
class NotedEvents final : public radio::ChannelEvents {
 public:
  void ShowChannel(const ChannelEntry& entry) override {
    Notes.push_back("show " + std::to_string(entry.Number) + " " + entry.Station + "/" + entry.Genre + "/" +
                    entry.Artist + "/" + entry.Song);
  }
  void ShowTunedChannel(std::int16_t number, const ChannelEntry& entry) override {
    Notes.push_back("tuned " + std::to_string(number) + " " + entry.Station + "/" + entry.Genre + "/" +
                    entry.Artist + "/" + entry.Song);
  }
  void ShowBareTitle() override { Notes.emplace_back("bare title"); }
  void ChannelTuned() override { Notes.emplace_back("radio asked"); }
  void WalkFinished() override {
    Notes.emplace_back("walk finished");
    if (OnWalkFinished) OnWalkFinished();
  }

  std::vector<std::string> Notes;
  std::function<void()> OnWalkFinished;
};

class ChannelsTest : public SessionFixture {
 protected:
  ChannelsTest() {
    files.MakeFolders("/data");
    channels.SetListPlace("/data", "");
    session.pcrChannelInfoReceived = [this](const radio::ChannelInfo& info) {
      channels.pcrChannelInfoReceived(info);
    };
    OpenPort();
    journal.Traced.clear();
  }

  void Reply(std::uint8_t channel, std::string_view station = "", std::string_view genre = "",
             std::string_view artist = "", std::string_view song = "") {
    port.Arrive(ChannelInfoFrame(channel, station, genre, artist, song));
    loop.Run(Milliseconds(0));
  }
  // A reply with a station named after the number.
  void Plain(std::uint8_t channel, std::string_view artist = "Artist", std::string_view song = "Song") {
    Reply(channel, "S" + std::to_string(channel), "G" + std::to_string(channel), artist, song);
  }
  void EndOfList() {
    port.Arrive(EndOfListFrame());
    loop.Run(Milliseconds(0));
  }
  // Both passes of a walk through these channels.
  void Walk(const std::vector<std::uint8_t>& numbers) {
    channels.StartWalk();
    for (int pass = 1; pass <= 2; ++pass) {
      for (const std::uint8_t number : numbers) Plain(number);
      EndOfList();
    }
  }
  /// Whether the walk checks, what it has done, and what it expects.
  [[nodiscard]] std::vector<int> Load() const {
    return {static_cast<int>(state.Load.Checking), state.Load.Done, state.Load.Expected};
  }
  [[nodiscard]] std::vector<int> TableNumbers() const {
    std::vector<int> numbers;
    for (int slot = 1; slot <= channels.Table().ChannelCount(); ++slot) {
      numbers.push_back(channels.Table().At(slot).Number);
    }
    return numbers;
  }
  [[nodiscard]] std::vector<int> GridNumbers() const {
    std::vector<int> numbers;
    for (int row = 1; row <= channels.Grid().RowCount(); ++row)
      numbers.push_back(channels.Grid().NumberAt(row));
    return numbers;
  }
  [[nodiscard]] const ChannelEntry& Entry(int number) const {
    return channels.Table().At(channels.Table().ChannelIndex(number));
  }
  // The walk does not end before there are ten channels and a tuned one.
  void LoadTwelve() {
    state.ChannelNumber = 12;
    Walk({3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14});
    port.TakeWrites();
    journal.Traced.clear();
    events.Notes.clear();
  }

  MemoryFiles files;
  radio::RadioState state;
  NotedEvents events;
  radio::Channels channels{
      state, run, {.Link = link, .Files = files, .Loop = loop, .Journal = journal}, events};
};

// The walk.

TEST_F(ChannelsTest, TheWalkPassesThroughTheListTwice) {
  run.FormLoading = true;
  channels.StartWalk();
  EXPECT_FALSE(run.FormLoading);
  EXPECT_TRUE(state.ChannelsLoading);
  EXPECT_EQ(state.EnumPass, 1);
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 00 00 ED ED"}));

  Plain(9);
  EXPECT_EQ(state.EnumCursor, 9);
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 09 00 ED ED"}));
  Plain(10);
  EndOfList();
  EXPECT_EQ(state.EnumPass, 2);
  EXPECT_TRUE(state.ChannelsLoading);
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 00 00 ED ED"})) << "the next pass begins at once";
  EXPECT_THAT(events.Notes, IsEmpty());

  Plain(9);
  Plain(10);
  EndOfList();
  EXPECT_EQ(state.EnumPass, 3);
  EXPECT_FALSE(state.ChannelsLoading);
  EXPECT_FALSE(state.InfoBusy);
  EXPECT_THAT(journal.Log, ElementsAre("Channels loaded: 2"));
  EXPECT_EQ(events.Notes.back(), "walk finished");
  EXPECT_THAT(TableNumbers(), ElementsAre(9, 10));
}

TEST_F(ChannelsTest, TheWalkCountsWhatItHasFoundAndThenWhatItHasChecked) {
  channels.StartWalk();
  EXPECT_THAT(Load(), ElementsAre(0, 0, 0)) << "nobody knows how many there are";
  Plain(3);
  Plain(4);
  Plain(4);
  EXPECT_THAT(Load(), ElementsAre(0, 2, 0));
  EndOfList();
  EXPECT_THAT(Load(), ElementsAre(1, 0, 2));
  Plain(3);
  EXPECT_THAT(Load(), ElementsAre(1, 1, 2));
  Plain(4);
  Plain(5);
  EXPECT_THAT(Load(), ElementsAre(1, 3, 3)) << "one has come meanwhile";
  EndOfList();
  EXPECT_THAT(Load(), ElementsAre(1, 3, 3));
}

TEST_F(ChannelsTest, WithASavedListTheWalkExpectsAsManyChannels) {
  files.Put(kListPath, "3\tFred\t\t\tRock\n4\tLucy\t\t\tRock\n5\tOld\t\t\tRock\n");
  channels.LoadChannels();
  channels.StartWalk();
  EXPECT_THAT(Load(), ElementsAre(0, 0, 3));
  Plain(3);
  Plain(4);
  EXPECT_THAT(Load(), ElementsAre(0, 2, 3));
  EndOfList();
  EXPECT_THAT(Load(), ElementsAre(1, 0, 2)) << "the radio has one less";
}

TEST_F(ChannelsTest, TheWalkEnablesTheChannelsWindow) {
  channels.Grid().Enabled = false;
  channels.StartWalk();
  EXPECT_FALSE(channels.Grid().Enabled);
  Plain(9);
  EXPECT_TRUE(channels.Grid().Enabled);
}

TEST_F(ChannelsTest, TheEndOfTheWalkIsReportedWhileTheReplyIsBeingHandled) {
  bool busy = false;
  bool saved = false;
  events.OnWalkFinished = [&] {
    busy = state.InfoBusy;
    saved = files.Text(kListPath).starts_with("3\tS3");
  };
  LoadTwelve();
  EXPECT_TRUE(busy);
  EXPECT_TRUE(saved);
  EXPECT_FALSE(state.InfoBusy);
}

TEST_F(ChannelsTest, ChannelTwoNeverReachesTheTableAndTheWalkStepsPastIt) {
  state.ChannelNumber = 2;
  channels.StartWalk();
  const auto revision = channels.Grid().Revision();
  loop.Run(Milliseconds(3000));
  Reply(2, "Two", "Hidden", "A", "B");
  EXPECT_EQ(channels.Table().ChannelCount(), 0);
  EXPECT_EQ(channels.Grid().Revision(), revision);
  EXPECT_THAT(events.Notes, IsEmpty());
  EXPECT_EQ(state.CurrentArtist, "");
  EXPECT_EQ(state.EnumCursor, 2);
  EXPECT_EQ(state.LastInfoRequest, loop.SteadyNow());
  port.TakeWrites();
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 02 00 ED ED"}));
}

TEST_F(ChannelsTest, OutsideTheWalkChannelTwoLeavesThePollingWhereItIs) {
  LoadTwelve();
  state.EnumCursor = 7;
  Reply(2, "Two", "", "A", "B");
  EXPECT_EQ(state.EnumCursor, 7);
  EXPECT_EQ(channels.Table().ChannelCount(), 12);
}

TEST_F(ChannelsTest, ChannelZeroOutsideTheWalkOnlyCountsAsAReply) {
  LoadTwelve();
  const auto revision = channels.Grid().Revision();
  loop.Run(Milliseconds(500));
  EndOfList();
  EXPECT_EQ(state.LastInfoRequest, loop.SteadyNow());
  EXPECT_EQ(state.EnumPass, 3);
  EXPECT_EQ(channels.Table().ChannelCount(), 12);
  EXPECT_EQ(channels.Grid().Revision(), revision);
  EXPECT_FALSE(state.InfoBusy);
  EXPECT_THAT(events.Notes, IsEmpty());
  EXPECT_TRUE(Wrote({}));
}

TEST_F(ChannelsTest, ANewChannelGetsTheLastSlotAndTheLastRowOutOfNumberOrder) {
  files.Put(kListPath, "10\tTen\t\t\tRock\n20\tTwenty\t\t\tPop\n");
  channels.LoadChannels();
  channels.StartWalk();
  Reply(15, "Fifteen", "Jazz", "Artist", "Song");
  EXPECT_THAT(TableNumbers(), ElementsAre(10, 20, 15));
  EXPECT_THAT(GridNumbers(), ElementsAre(10, 20, 15));
  EXPECT_THAT(channels.Grid().At(3), ElementsAre("15", " Fifteen", " Artist", " Song", " Jazz"));
  EXPECT_TRUE(Entry(15).Seen);
  EXPECT_FALSE(Entry(10).Seen);
  // The next start reads the sorted file.
  channels.SaveChannels();
  EXPECT_EQ(files.Text(kListPath), "10\tTen\t\t\tRock\n15\tFifteen\t\t\tJazz\n20\tTwenty\t\t\tPop\n");
}

TEST_F(ChannelsTest, ANewChannelThatIsTunedIsSelectedButItsSongWaitsForTheNextReply) {
  state.ChannelNumber = 9;
  channels.StartWalk();
  Plain(8);
  Plain(9);
  EXPECT_EQ(channels.Grid().SelectedRow(), 2);
  EXPECT_FALSE(channels.Grid().IgnoreMove);
  EXPECT_EQ(state.CurrentArtist, "");
  EXPECT_THAT(events.Notes, IsEmpty());
  EXPECT_FALSE(state.InfoBusy);
  Plain(9);
  EXPECT_EQ(state.CurrentArtist, "Artist");
  EXPECT_THAT(events.Notes, ElementsAre("show 9 S9/G9/Artist/Song"));
}

TEST_F(ChannelsTest, TheGenreOfChannelOneStaysEmptyInTableGridAndFile) {
  channels.StartWalk();
  Reply(1, "One", "Preview", "A", "B");
  EXPECT_EQ(Entry(1).Genre, "");
  EXPECT_EQ(channels.Grid().At(1)[ChannelGrid::Genre], " ");
  Reply(1, "One", "Preview", "C", "D");
  EXPECT_EQ(Entry(1).Genre, "");
  EXPECT_EQ(channels.Grid().At(1)[ChannelGrid::Genre], " ");
  channels.SaveChannels();
  EXPECT_EQ(files.Text(kListPath), "1\tOne\t\t\t\n");
}

TEST_F(ChannelsTest, ChannelsThatAreGoneAreRemovedButOfTwoNeighboursTheSecondStays) {
  files.Put(kListPath,
            "3\tA\t\t\tG\n4\tB\t\t\tG\n5\tC\t\t\tG\n6\tD\t\t\tG\n7\tE\t\t\tG\n8\tF\t\t\tG\n9\tG\t\t\tG\n"
            "10\tH\t\t\tG\n11\tI\t\t\tG\n12\tJ\t\t\tG\n13\tK\t\t\tG\n14\tL\t\t\tG\n15\tM\t\t\tG\n");
  channels.LoadChannels();
  state.ChannelNumber = 9;
  Walk({3, 5, 8, 9, 10, 11, 12, 13, 14});  // 4, 6, 7 and 15 are gone
  EXPECT_THAT(journal.Log, ElementsAre("Channels loaded: 13")) << "as counted before the removal";
  EXPECT_THAT(TableNumbers(), ElementsAre(3, 5, 7, 8, 9, 10, 11, 12, 13, 14));
  EXPECT_EQ(GridNumbers(), TableNumbers());
  EXPECT_FALSE(Entry(7).Seen);
  EXPECT_EQ(channels.Table().ChannelIndex(14), 10);
  EXPECT_FALSE(state.PoorChannelList);
  EXPECT_TRUE(files.Text(kListPath).find("7\tE\t\t\tG\n") != std::string::npos);
}

TEST_F(ChannelsTest, ARemovedChannelThatComesBackWritesIntoTheSlotItHad) {
  files.Put(kListPath,
            "3\tA\t\t\tG\n4\tB\t\t\tG\n5\tC\t\t\tG\n6\tD\t\t\tG\n7\tE\t\t\tG\n8\tF\t\t\tG\n9\tG\t\t\tG\n"
            "10\tH\t\t\tG\n11\tI\t\t\tG\n12\tJ\t\t\tG\n13\tK\t\t\tG\n");
  channels.LoadChannels();
  state.ChannelNumber = 9;
  Walk({3, 5, 6, 7, 8, 9, 10, 11, 12, 13});
  ASSERT_EQ(channels.Table().ChannelIndex(4), 2) << "the slot is channel 5's now";
  Plain(4, "Back", "Again");
  EXPECT_EQ(Entry(5).Number, 5);
  EXPECT_EQ(Entry(5).Artist, "Back");
  EXPECT_EQ(channels.Grid().FindRow(4), 0);
  EXPECT_EQ(channels.Table().ChannelCount(), 10);
}

TEST_F(ChannelsTest, FewerThanTenChannelsAreAFailedLoad) {
  files.Put(kListPath, "9\tNine\t\t\tPop\n");
  state.ChannelNumber = 45;
  port.WhenWritten(Bytes("5A A5 00 06 10 02 01 00 00 01 01 19"), Bytes("5A A5 00 06 90 01 00 01 00 00 ED ED"),
                   Milliseconds(20));
  Walk({3, 4, 5, 6, 7, 8, 9, 10, 11});
  EXPECT_EQ(state.ChannelNumber, 1);
  EXPECT_TRUE(state.PoorChannelList);
  EXPECT_FALSE(files.Exists(kListPath));
  EXPECT_EQ(channels.Table().ChannelCount(), 9);
  EXPECT_THAT(events.Notes, ElementsAre("tuned 1 ///", "bare title", "radio asked", "walk finished"));
}

TEST_F(ChannelsTest, TenChannelsAreEnough) {
  state.ChannelNumber = 5;
  Walk({3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  EXPECT_EQ(state.ChannelNumber, 5);
  EXPECT_FALSE(state.PoorChannelList);
  EXPECT_TRUE(files.Exists(kListPath));
}

// Asking.

TEST_F(ChannelsTest, NothingIsAskedWhileTheFormLoadsOrTheProgramShutsDown) {
  run.FormLoading = true;
  channels.RequestChannelInfo();
  run.FormLoading = false;
  run.ShuttingDown = true;
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({}));
}

TEST_F(ChannelsTest, PollingAlternatesBetweenTheTunedChannelAndTheNextSlot) {
  LoadTwelve();
  for (int count = 0; count < 6; ++count) {
    channels.RequestChannelInfo();
    Plain(3);  // whatever the reply, the next request may follow
  }
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 08 03 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED",
                     "5A A5 00 04 25 08 04 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED",
                     "5A A5 00 04 25 08 05 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED"}));
  Strings requests;
  for (const std::string& line : journal.Traced) {
    if (line.starts_with("#")) requests.push_back(line);
  }
  EXPECT_THAT(requests, ElementsAre("#RequestChannelInfo Enum 1", "#RequestChannelInfo 12",
                                    "#RequestChannelInfo Enum 2", "#RequestChannelInfo 12",
                                    "#RequestChannelInfo Enum 3", "#RequestChannelInfo 12"));
}

TEST_F(ChannelsTest, FollowedCloselyTheTunedChannelIsAskedThreeTimesOfFour) {
  LoadTwelve();
  channels.FollowTunedClosely(true);
  for (int count = 0; count < 9; ++count) {
    channels.RequestChannelInfo();
    Plain(3);
  }
  EXPECT_TRUE(Wrote(
      {"5A A5 00 04 25 08 0C 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED",
       "5A A5 00 04 25 08 03 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED",
       "5A A5 00 04 25 08 0C 00 ED ED", "5A A5 00 04 25 08 04 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED"}));
}

TEST_F(ChannelsTest, AFullCycleTakesTwoRepliesAChannelAndBeginsAgain) {
  LoadTwelve();
  for (int count = 0; count < 24; ++count) {
    channels.RequestChannelInfo();
    Plain(3);
  }
  EXPECT_EQ(state.EnumCursor, 12);
  port.TakeWrites();
  channels.RequestChannelInfo();
  EXPECT_EQ(state.EnumCursor, 1);
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 08 03 00 ED ED"}));
}

TEST_F(ChannelsTest, TheWalkTracesItsCursor) {
  channels.StartWalk();
  Plain(9);
  journal.Traced.clear();
  channels.RequestChannelInfo();
  EXPECT_EQ(journal.Traced.front(), "#RequestChannelInfo InitEnum 9");
}

TEST_F(ChannelsTest, ALostReplyCostsTwoSecondsAndNoMore) {
  channels.StartWalk();
  Plain(9);
  channels.RequestChannelInfo();
  port.TakeWrites();
  loop.Run(Milliseconds(1999));
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({}));
  loop.Run(Milliseconds(1));
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 09 00 ED ED"})) << "the same once more";
}

TEST_F(ChannelsTest, ALostReplyInThePollingMovesOnToTheNextRequest) {
  LoadTwelve();
  channels.RequestChannelInfo();
  loop.Run(Milliseconds(2000));
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 08 03 00 ED ED", "5A A5 00 04 25 08 0C 00 ED ED"}));
}

TEST_F(ChannelsTest, ASilentRadioIsAskedEveryTwoSecondsForEver) {
  channels.StartWalk();
  const auto tick = loop.MakeTimer(Milliseconds(200), [this] { channels.RequestChannelInfo(); });
  tick->SetEnabled(true);
  loop.Run(Milliseconds(60'000));
  const std::size_t count = port.Writes().size();
  // The first repetition does not wait, as no request has been made through the polling before.
  EXPECT_EQ(count, 2U + 29U);
  for (std::size_t index = 2; index < count; ++index) {
    EXPECT_EQ(port.Writes()[index].At - port.Writes()[index - 1].At, Milliseconds(2000));
  }
}

TEST_F(ChannelsTest, ASteppedWallClockDoesNotHoldUpThePolling) {
  channels.StartWalk();
  Plain(9);
  channels.RequestChannelInfo();
  loop.StepWallClock(-std::chrono::hours(24));
  port.TakeWrites();
  loop.Run(Milliseconds(2000));
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 09 00 ED ED"}));
}

TEST_F(ChannelsTest, AnEmptyTableIsPolledWithoutAFrame) {
  state.ChannelNumber = 0;
  channels.RequestChannelInfo();
  channels.RequestChannelInfo();
  EXPECT_TRUE(Wrote({}));
}

// Replies.

TEST_F(ChannelsTest, AChangedSongReachesTheTableTheGridAndTheScreen) {
  LoadTwelve();
  Reply(12, "New Name", "New Genre", "ROCK & ROLL", "Song");
  EXPECT_EQ(Entry(12).Station, "New Name");
  EXPECT_EQ(Entry(12).Genre, "New Genre");
  EXPECT_EQ(Entry(12).Artist, "Rock & Roll") << "one ampersand in the table";
  EXPECT_THAT(channels.Grid().At(10), ElementsAre("12", " New Name", " Rock & Roll", " Song", " New Genre"));
  EXPECT_EQ(state.CurrentArtist, "Rock & Roll");
  EXPECT_EQ(state.CurrentSong, "Song");
  EXPECT_THAT(events.Notes, ElementsAre("show 12 New Name/New Genre/Rock & Roll/Song"));
  EXPECT_FALSE(channels.Grid().IgnoreMove);
  EXPECT_FALSE(state.InfoBusy);
}

TEST_F(ChannelsTest, AnUnchangedSongTouchesNothing) {
  LoadTwelve();
  const auto revision = channels.Grid().Revision();
  Plain(12);
  Plain(5);
  EXPECT_EQ(channels.Grid().Revision(), revision);
  EXPECT_THAT(events.Notes, IsEmpty());
  EXPECT_FALSE(state.InfoBusy);
}

TEST_F(ChannelsTest, AChangedStationOrGenreAloneIsNoChange) {
  LoadTwelve();
  const auto revision = channels.Grid().Revision();
  Reply(12, "Renamed", "Regenred", "Artist", "Song");
  EXPECT_EQ(Entry(12).Station, "Renamed");
  EXPECT_EQ(Entry(12).Genre, "Regenred");
  EXPECT_EQ(channels.Grid().Revision(), revision);
  EXPECT_THAT(events.Notes, IsEmpty());
}

TEST_F(ChannelsTest, AnEmptyArtistOrSongOfTheTunedChannelIsShownAgainAndAgain) {
  LoadTwelve();
  Plain(12, "", "Only A Song");
  Plain(12, "", "Only A Song");
  EXPECT_THAT(events.Notes, ElementsAre("show 12 S12/G12//Only A Song", "show 12 S12/G12//Only A Song"));
}

TEST_F(ChannelsTest, AnotherChannelsChangeStaysInItsRow) {
  LoadTwelve();
  Plain(5, "Other", "Tune");
  EXPECT_EQ(Entry(5).Artist, "Other");
  EXPECT_EQ(channels.Grid().At(3)[ChannelGrid::Artist], " Other");
  EXPECT_EQ(state.CurrentArtist, "Artist");
  EXPECT_THAT(events.Notes, IsEmpty());
  EXPECT_FALSE(state.InfoBusy);
}

TEST_F(ChannelsTest, AnEmptyStationDoesNotOverwriteTheGridsStation) {
  LoadTwelve();
  Reply(5, "", "", "Other", "Tune");
  EXPECT_EQ(Entry(5).Station, "");
  EXPECT_THAT(channels.Grid().At(3), ElementsAre("5", " S5", " Other", " Tune", " "));
}

TEST_F(ChannelsTest, InAGridNotSortedByNumberTheSlotOfTheRowIsShown) {
  LoadTwelve();
  Plain(3, "Zappa", "Z");
  channels.Grid().Sort(ChannelGrid::Number, ChannelGrid::Order::Descending);
  Plain(12, "New", "Tune");
  // Channel 12 is in row 3 now, and slot 3 is channel 5's.
  EXPECT_THAT(events.Notes, ElementsAre("show 5 S5/G5/Artist/Song"));
  EXPECT_EQ(channels.Grid().At(3)[ChannelGrid::Artist], " New");
  EXPECT_EQ(state.CurrentArtist, "New");
}

TEST_F(ChannelsTest, AReplyAfterTheShutdownHasBegunChangesNothing) {
  LoadTwelve();
  loop.Run(Milliseconds(100));
  run.ShuttingDown = true;
  channels.pcrChannelInfoReceived(
      {.Channel = 12, .Genre = "", .Station = "", .Artist = "New", .Song = "New"});
  EXPECT_EQ(Entry(12).Artist, "Artist");
  EXPECT_EQ(state.LastInfoRequest, loop.SteadyNow());
}

TEST_F(ChannelsTest, EventsInsideAReplySeeThatItIsBeingHandled) {
  LoadTwelve();
  bool busy = false;
  int ticks = 0;
  const auto timer = loop.MakeTimer(Milliseconds(1), [&] {
    busy = busy || state.InfoBusy;
    ++ticks;
  });
  timer->SetEnabled(true);
  loop.Sleep(Milliseconds(1));
  channels.pcrChannelInfoReceived(
      {.Channel = 12, .Genre = "", .Station = "", .Artist = "New", .Song = "New"});
  EXPECT_EQ(ticks, 1);
  EXPECT_TRUE(busy);
  EXPECT_FALSE(state.InfoBusy);
}

TEST_F(ChannelsTest, AThousandEntriesLeaveNoRoomForAnother) {
  std::string list;
  for (int line = 0; line < 1200; ++line) list += "300\tX\t\t\tG\n";
  files.Put(kListPath, list);
  channels.LoadChannels();
  EXPECT_EQ(channels.Table().ChannelCount(), 1000);
  EXPECT_EQ(channels.Grid().RowCount(), 1000);
  Plain(9);
  EXPECT_EQ(channels.Table().ChannelCount(), 1000);
  EXPECT_FALSE(state.InfoBusy);
}

// The tuned channel.

TEST_F(ChannelsTest, TuningShowsTheChannelFromTheTableAndAsksTheRadio) {
  LoadTwelve();
  state.ChannelNumber = 5;
  port.WhenWritten(Bytes("5A A5 00 06 10 02 0C 00 00 01 01 19"), Bytes("5A A5 00 06 90 01 00 0C 00 00 ED ED"),
                   Milliseconds(20));
  EXPECT_EQ(TimeOf([this] { channels.SetChannelNumber(12); }), Milliseconds(150));
  EXPECT_EQ(channels.ChannelNumber(), 12);
  EXPECT_THAT(events.Notes, ElementsAre("tuned 12 S12/G12/Artist/Song", "bare title", "radio asked"));
  EXPECT_TRUE(state.ChannelChanged);
  EXPECT_EQ(channels.Grid().NumberAt(channels.Grid().SelectedRow()), 12);
  EXPECT_FALSE(channels.Grid().IgnoreMove);
  EXPECT_TRUE(Wrote({"5A A5 00 06 10 02 0C 00 00 01 01 19"}));
}

TEST_F(ChannelsTest, EventsRunWithTheNewTextsShownBeforeTheRadioIsAsked) {
  LoadTwelve();
  std::vector<std::string> notesThen;
  std::size_t writesThen = 0;
  loop.Post([&] {
    notesThen = events.Notes;
    writesThen = port.Writes().size();
  });
  const std::size_t writesBefore = port.Writes().size();
  channels.SetChannelNumber(5);
  EXPECT_THAT(notesThen, ElementsAre("tuned 5 S5/G5/Artist/Song", "bare title"));
  EXPECT_EQ(writesThen, writesBefore);
}

TEST_F(ChannelsTest, TuningToTheTunedChannelDoesNothingNotEvenAFrame) {
  LoadTwelve();
  EXPECT_EQ(TimeOf([this] { channels.SetChannelNumber(12); }), Milliseconds(0));
  EXPECT_TRUE(Wrote({}));
  EXPECT_THAT(events.Notes, IsEmpty());
  EXPECT_FALSE(state.ChannelChanged);
}

TEST_F(ChannelsTest, TheFirstReplyAfterTuningIsShownEvenIfItsSongIsKnown) {
  LoadTwelve();
  channels.SetChannelNumber(5);
  events.Notes.clear();
  Plain(6);
  EXPECT_TRUE(state.ChannelChanged) << "another channel's reply does not clear it";
  Plain(5);
  EXPECT_FALSE(state.ChannelChanged);
  EXPECT_THAT(events.Notes, ElementsAre("show 5 S5/G5/Artist/Song"));
}

TEST_F(ChannelsTest, AnUnknownChannelIsTunedWithEmptyTexts) {
  LoadTwelve();
  const int selected = channels.Grid().SelectedRow();
  channels.SetChannelNumber(200);
  EXPECT_EQ(events.Notes.front(), "tuned 200 ///");
  EXPECT_EQ(channels.Grid().SelectedRow(), selected);
  EXPECT_EQ(channels.TunedRow(), nullptr);
}

TEST_F(ChannelsTest, ANumberThatIsNoChannelIsStoredAndRefusedByTheRadioLayer) {
  LoadTwelve();
  for (const std::int16_t number : {0, 256, -1, 32767}) {
    EXPECT_EQ(TimeOf([&] { channels.SetChannelNumber(number); }), Milliseconds(0));
    EXPECT_EQ(channels.ChannelNumber(), number);
    EXPECT_EQ(channels.TunedRow(), nullptr);
  }
  EXPECT_TRUE(Wrote({}));
}

TEST_F(ChannelsTest, TheTunedRowIsTheTablesEntry) {
  LoadTwelve();
  ASSERT_NE(channels.TunedRow(), nullptr);
  EXPECT_EQ(channels.TunedRow()->Station, "S12");
}

// The radio's text at a song boundary.

TEST_F(ChannelsTest, TheRadiosTextIsCopiedForItsOwnChannelNotTheTunedOne) {
  LoadTwelve();
  Plain(5, "Fresh", "Tune");
  channels.Grid().SetCell(3, ChannelGrid::Artist, "");
  channels.Grid().SetCell(3, ChannelGrid::Song, "");
  channels.CopyRadioText();
  EXPECT_EQ(Entry(5).Artist, "Fresh");
  EXPECT_THAT(channels.Grid().At(3), ElementsAre("5", " S5", " Fresh ", " Tune ", " G5"));
  EXPECT_EQ(Entry(12).Artist, "Artist");
}

TEST_F(ChannelsTest, AnEmptyStationCellIsFilledIfTheRadioHasAName) {
  LoadTwelve();
  Plain(5, "Fresh", "Tune");
  channels.Grid().SetCell(3, ChannelGrid::Station, " ");
  channels.CopyRadioText();
  EXPECT_EQ(channels.Grid().At(3)[ChannelGrid::Station], " S5 ");
  channels.Grid().SetCell(3, ChannelGrid::Station, " ");
  Reply(5, "", "", "Fresh", "Tune");
  channels.CopyRadioText();
  EXPECT_EQ(channels.Grid().At(3)[ChannelGrid::Station], " ");
}

TEST_F(ChannelsTest, TheTextOfAChannelThatIsNotInTheTableGoesNowhere) {
  LoadTwelve();
  const auto revision = channels.Grid().Revision();
  Reply(2, "Two", "", "A", "B");
  channels.CopyRadioText();
  EXPECT_EQ(channels.Grid().Revision(), revision);
  EXPECT_EQ(channels.Table().At(0).Artist, "");
}

// The saved list.

TEST_F(ChannelsTest, AMissingListLeavesTheTableEmptyAndTheTitlesAlone) {
  channels.Grid().FormSetup();
  channels.LoadChannels();
  EXPECT_EQ(channels.Table().ChannelCount(), 0);
  EXPECT_EQ(channels.Grid().Titles()[0], "> ");
}

TEST_F(ChannelsTest, LoadingFillsTableAndGridAndRunsTheSetupAgain) {
  files.Put(kListPath, "9\tNine\t\t\tPop\n12\tTwelve\t\t\tRock\n");
  state.ChannelNumber = 12;
  channels.Grid().FormSetup();
  channels.LoadChannels();
  EXPECT_EQ(channels.Grid().Titles()[0], "< ");
  EXPECT_THAT(TableNumbers(), ElementsAre(9, 12));
  EXPECT_THAT(channels.Grid().At(2), ElementsAre("12", " Twelve", " ", " ", " Rock"));
  EXPECT_EQ(channels.Grid().SelectedRow(), 2);
  EXPECT_FALSE(Entry(9).Seen);
  EXPECT_FALSE(channels.Grid().IgnoreMove);
}

TEST_F(ChannelsTest, LoadingReplacesWhatWasThere) {
  LoadTwelve();
  files.Put(kListPath, "9\tNine\t\t\tPop\n");
  channels.LoadChannels();
  EXPECT_THAT(TableNumbers(), ElementsAre(9));
  EXPECT_THAT(GridNumbers(), ElementsAre(9));
  EXPECT_EQ(channels.Table().ChannelIndex(12), 0);
}

TEST_F(ChannelsTest, AMalformedLineFillsASlotWithNumberZeroWhichIsNotSaved) {
  files.Put(kListPath, "rubbish\n9\tNine\t\t\tPop\n");
  channels.LoadChannels();
  EXPECT_THAT(TableNumbers(), ElementsAre(0, 9));
  EXPECT_THAT(channels.Grid().At(1), ElementsAre("0", " ", " ", " ", " "));
  channels.SaveChannels();
  EXPECT_EQ(files.Text(kListPath), "9\tNine\t\t\tPop\n");
}

TEST_F(ChannelsTest, ALoadedListThatIsSavedAgainIsTheSame) {
  const std::string list = "1\tOne\t\t\t\n9\tNine\t\t\tPop\n255\tLast\t\t\tTalk\n";
  files.Put(kListPath, list);
  channels.LoadChannels();
  channels.SaveChannels();
  EXPECT_EQ(files.Text(kListPath), list);
}

TEST_F(ChannelsTest, ArtistAndSongAreNeverSaved) {
  LoadTwelve();
  channels.SaveChannels();
  EXPECT_EQ(files.Text(kListPath).find("Artist"), std::string::npos);
}

TEST_F(ChannelsTest, ReloadingDeletesTheListAtTheExit) {
  LoadTwelve();
  ASSERT_TRUE(files.Exists(kListPath));
  channels.mnuReload();
  EXPECT_TRUE(files.Exists(kListPath));
  channels.SaveChannels();
  EXPECT_FALSE(files.Exists(kListPath));
  channels.SaveChannels();  // a list that is gone already is no failure
}

TEST_F(ChannelsTest, TheExitLeavesTheListAloneUntilAWalkHasEnded) {
  const std::string list = "9\tNine\t\t\tPop\n";
  files.Put(kListPath, list);
  channels.SaveAtExit();
  EXPECT_EQ(files.Text(kListPath), list) << "nothing has been loaded yet";
  channels.LoadChannels();
  channels.StartWalk();
  Plain(12);
  channels.SaveAtExit();
  EXPECT_EQ(files.Text(kListPath), list);
  Walk({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  files.Put(kListPath, list);
  channels.SaveAtExit();
  EXPECT_NE(files.Text(kListPath), list);
}

TEST_F(ChannelsTest, TheExitDeletesAListThatIsToBeReloadedInAnyCase) {
  files.Put(kListPath, "9\tNine\t\t\tPop\n");
  channels.mnuReload();
  channels.SaveAtExit();
  EXPECT_FALSE(files.Exists(kListPath));
}

TEST_F(ChannelsTest, AListThatCannotBeWrittenIsSwallowed) {
  LoadTwelve();
  const std::string before = files.Text(kListPath);
  files.FailAlways(FileOperation::Replace);
  Reply(12, "Renamed", "", "A", "B");
  channels.SaveChannels();
  EXPECT_EQ(files.Text(kListPath), before);
}

// A whole road: a radio that answers, ticks every 200 ms.

TEST_F(ChannelsTest, ALiveRadioIsWalkedTwiceAndThenPolled) {
  const std::vector<std::uint8_t> lineUp = {1, 2, 4, 8, 15, 16, 23, 42, 100, 150, 200, 255};
  std::uint8_t previous = 0;
  for (const std::uint8_t number : lineUp) {
    const std::string info = ChannelInfoFrame(number, "S" + std::to_string(number), "G", "Artist", "Song");
    std::string next = Bytes("5A A5 00 04 25 09 00 00 ED ED");
    next[6] = static_cast<char>(previous);
    port.WhenWritten(next, info, Milliseconds(83));
    std::string own = Bytes("5A A5 00 04 25 08 00 00 ED ED");
    own[6] = static_cast<char>(number);
    port.WhenWritten(own, info, Milliseconds(83));
    previous = number;
  }
  port.WhenWritten(Bytes("5A A5 00 04 25 09 FF 00 ED ED"), EndOfListFrame(), Milliseconds(83));

  state.ChannelNumber = 42;
  const auto tick = loop.MakeTimer(Milliseconds(200), [this] { channels.RequestChannelInfo(); });
  tick->SetEnabled(true);
  channels.StartWalk();
  ASSERT_TRUE(loop.RunUntil([this] { return !state.ChannelsLoading; }, Milliseconds(10'000)));
  EXPECT_THAT(TableNumbers(), ElementsAre(1, 4, 8, 15, 16, 23, 42, 100, 150, 200, 255));
  EXPECT_EQ(state.CurrentArtist, "Artist");

  port.TakeWrites();
  loop.Run(Milliseconds(20'000));
  const Strings requests = port.TakeWrites();
  EXPECT_EQ(requests.size(), 100U);
  EXPECT_EQ(std::count(requests.begin(), requests.end(), Bytes("5A A5 00 04 25 08 2A 00 ED ED")), 54)
      << "every second request, and its turn in the table";
}

TEST_F(ChannelsTest, ASecondWalkTakesTheTurnsOfTheOthersAndFindsWhatIsNew) {
  for (const std::int16_t number : {44, 45, 46}) {
    channels.pcrChannelInfoReceived({.Channel = number, .Station = "Station", .Artist = "A", .Song = "S"});
  }
  state.ChannelNumber = 44;
  const auto replies = [this](const char* request, std::uint8_t channel) {
    port.WhenWritten(Bytes(request), ChannelInfoFrame(channel, "Station", "G", "Artist", "Song"),
                     Milliseconds(83));
  };
  replies("5A A5 00 04 25 09 00 00 ED ED", 44);
  replies("5A A5 00 04 25 09 2C 00 ED ED", 45);
  replies("5A A5 00 04 25 09 2D 00 ED ED", 46);
  replies("5A A5 00 04 25 09 2E 00 ED ED", 99);
  replies("5A A5 00 04 25 08 2C 00 ED ED", 44);
  port.WhenWritten(Bytes("5A A5 00 04 25 09 63 00 ED ED"), EndOfListFrame(), Milliseconds(83));
  const auto tick = loop.MakeTimer(Milliseconds(200), [this] { channels.RequestChannelInfo(); });
  tick->SetEnabled(true);
  channels.RepeatWalk();
  loop.Run(Milliseconds(2'100));
  EXPECT_FALSE(state.ChannelsLoading) << "songs are cut meanwhile";
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 09 00 00 ED ED", "5A A5 00 04 25 08 2C 00 ED ED",
                     "5A A5 00 04 25 09 2C 00 ED ED", "5A A5 00 04 25 08 2C 00 ED ED",
                     "5A A5 00 04 25 09 2D 00 ED ED", "5A A5 00 04 25 08 2C 00 ED ED",
                     "5A A5 00 04 25 09 2E 00 ED ED", "5A A5 00 04 25 08 2C 00 ED ED",
                     "5A A5 00 04 25 09 63 00 ED ED", "5A A5 00 04 25 08 2C 00 ED ED"}));
  EXPECT_THAT(TableNumbers(), ElementsAre(44, 45, 46, 99));
  loop.Run(Milliseconds(200));
  EXPECT_TRUE(Wrote({"5A A5 00 04 25 08 2C 00 ED ED"})) << "the polling goes on with the first slot";
}

}  // namespace
}  // namespace kestrune::test
