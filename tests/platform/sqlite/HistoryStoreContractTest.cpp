// What platform/HistoryStore.h promises, on the database and on the fake that other tests use.

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/TemporaryFolder.h"
#include "platform/sqlite/HistoryNight.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "support/FakeHistoryStore.h"
#include "support/RealEventLoop.h"

namespace kestrune::platform {
namespace {

using namespace std::chrono_literals;
using base::DateValue;
using test::AtMinute;
using test::CutRow;
using test::EventRow;
using test::PlayRow;
using test::SongRow;

class HistoryStoreContract : public testing::TestWithParam<std::string> {
 protected:
  HistoryStoreContract() {
    if (GetParam() == "Sqlite") {
      Store = std::make_unique<SqliteHistoryStore>(Loop, Folder / "History.db");
    } else {
      Store = std::make_unique<test::FakeHistoryStore>(Loop);
    }
    Store->SetTroubleHandler([this](const std::string& line) { Troubles.push_back(line); });
  }
  ~HistoryStoreContract() override { EXPECT_EQ(Troubles, std::vector<std::string>()); }

  /// Writes, and waits until a question sees it: the run of each piece has another beginning.
  void Keep(HistoryRows rows) {
    const DateValue mark = DateValue::FromCivil(2090, 1, 1).AddSeconds(++pieces_);
    rows.Runs.push_back({.Began = mark, .Alive = mark, .Closed = true});
    Store->Write(std::move(rows));
    for (int tries = 0; tries < 1000; ++tries) {
      if (!Span(mark, mark).Runs.empty()) return;
      Loop.Run(5ms);
    }
    FAIL() << "nothing is kept";
  }
  HistoryRows Span(DateValue from, DateValue to) {
    std::optional<HistoryRows> got;
    Store->ReadSpan(from, to, [&got](const base::Result& asked, const HistoryRows& rows) {
      EXPECT_TRUE(asked.Ok()) << asked.Cause();
      got = rows;
    });
    EXPECT_FALSE(got) << "never within the call";
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 20s));
    return got.value_or(HistoryRows());
  }
  std::vector<HistoryPlay> Search(HistorySearch search) {
    std::optional<std::vector<HistoryPlay>> got;
    Store->Search(std::move(search),
                  [&got](const base::Result& asked, const std::vector<HistoryPlay>& plays) {
                    EXPECT_TRUE(asked.Ok()) << asked.Cause();
                    got = plays;
                  });
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 20s));
    return got.value_or(std::vector<HistoryPlay>());
  }
  std::vector<HistorySong> Cuts(CutSearch search) {
    std::optional<std::vector<HistorySong>> got;
    Store->ReadCuts(search, [&got](const base::Result& asked, const std::vector<HistorySong>& songs) {
      EXPECT_TRUE(asked.Ok()) << asked.Cause();
      got = songs;
    });
    EXPECT_FALSE(got) << "never within the call";
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 20s));
    return got.value_or(std::vector<HistorySong>());
  }
  /// The titles of the songs in a folder, in their order.
  std::string InFolder(const std::string& folder) {
    std::optional<std::vector<HistorySong>> got;
    Store->ReadFolder(folder, [&got](const base::Result& asked, const std::vector<HistorySong>& songs) {
      EXPECT_TRUE(asked.Ok()) << asked.Cause();
      got = songs;
    });
    EXPECT_FALSE(got) << "never within the call";
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 20s));
    std::string titles;
    for (const HistorySong& song : got.value_or(std::vector<HistorySong>()))
      titles += (titles.empty() ? "" : "|") + song.Title;
    return titles;
  }
  std::vector<HistoryLag> Lags() {
    std::optional<std::vector<HistoryLag>> got;
    Store->ReadLags([&got](const base::Result& asked, const std::vector<HistoryLag>& lags) {
      EXPECT_TRUE(asked.Ok()) << asked.Cause();
      got = lags;
    });
    EXPECT_FALSE(got) << "never within the call";
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 20s));
    return got.value_or(std::vector<HistoryLag>());
  }
  /// The titles of the last cuts, in their order.
  std::string CutTitles(std::int16_t channel, std::size_t limit) {
    std::string titles;
    for (const HistorySong& song : Cuts({.Channel = channel, .Limit = limit}))
      titles += (titles.empty() ? "" : "|") + song.Title;
    return titles;
  }
  /// The titles that a search finds, in their order.
  std::string Titles(HistorySearch search) {
    std::string titles;
    for (const HistoryPlay& play : Search(std::move(search)))
      titles += (titles.empty() ? "" : "|") + play.Title;
    return titles;
  }
  /// What was played most, with the minute of the last time.
  std::string MostPlayed(MostPlayedSearch search) {
    std::optional<std::vector<PlayCount>> got;
    Store->CountPlays(search, [&got](const base::Result& asked, const std::vector<PlayCount>& counts) {
      EXPECT_TRUE(asked.Ok()) << asked.Cause();
      got = counts;
    });
    EXPECT_FALSE(got) << "never within the call";
    EXPECT_TRUE(Loop.RunUntil([&got] { return got.has_value(); }, 20s));
    std::string text;
    for (const PlayCount& count : got.value_or(std::vector<PlayCount>())) {
      text += (text.empty() ? "" : "|") + std::to_string(count.Plays) + ' ' + count.Artist + ' ' +
              count.Title + " @" + std::to_string(base::SecondsBetween(AtMinute(0), count.Last) / 60);
    }
    return text;
  }
  static HistorySearch For(std::string text) {
    return {.Text = std::move(text), .Channel = 0, .Since = {}, .Limit = 50};
  }

  test::TemporaryFolder Folder;
  test::RealEventLoop Loop;
  std::vector<std::string> Troubles;
  std::unique_ptr<HistoryStore> Store;

 private:
  int pieces_ = 0;
};

TEST_P(HistoryStoreContract, SongsAreFoundByTheirFoldersAndMovedByTheirFiles) {
  const auto song = [](int minute, const char* title, const char* file) {
    HistorySong row = SongRow(minute, title);
    row.File = file;
    row.Fate = SongFate::NotWanted;
    return row;
  };
  HistoryRows rows;
  rows.Songs = {song(0, "Old", "/m/Shelf/a.mp3"),
                song(3, "A", "/m/Shelf/a.mp3"),
                song(6, "B", "/m/Shelf/b.mp3"),
                song(9, "C", "/m/Shelf2/c.mp3"),
                song(12, "D", ""),
                song(15, "E", "/m/Shelf")};
  Keep(rows);
  EXPECT_EQ(InFolder("/m/Shelf/"), "B|A|Old");
  EXPECT_EQ(InFolder("/m/"), "E|C|B|A|Old");
  EXPECT_EQ(InFolder("/n/"), "");
  HistoryRows moves;
  moves.Songs = {song(18, "F", "/m/Shelf/a.mp3")};
  moves.Moves = {{.From = "/m/Shelf/a.mp3", .To = "/m/kept/a.mp3", .Fate = SongFate::KeptLater},
                 {.From = "/m/Shelf/b.mp3", .To = "", .Fate = {}},
                 {.From = "/m/Shelf/none.mp3", .To = "/m/kept/none.mp3", .Fate = {}},
                 {.From = "", .To = "/m/kept/nobody.mp3", .Fate = {}}};
  Keep(moves);
  EXPECT_EQ(InFolder("/m/Shelf/"), "F|Old")
      << "what was moved is the newest song with that file that was there before";
  EXPECT_EQ(InFolder("/m/kept/"), "A");
  for (const HistorySong& row : Span(AtMinute(-10), AtMinute(700)).Songs) {
    EXPECT_EQ(row.Fate, row.Title == "A" ? SongFate::KeptLater : SongFate::NotWanted) << row.Title;
    EXPECT_EQ(row.File.empty(), row.Title == "B" || row.Title == "D") << row.Title;
  }
}

TEST_P(HistoryStoreContract, RowsComeBackAsTheyWere) {
  HistoryEvent ended = EventRow(0);
  ended.Ended = AtMinute(60);
  ended.Kept = 12;
  ended.Dropped = 3;
  ended.WhyNot = "another event began";
  HistoryEvent missed = EventRow(100);
  missed.Began.reset();
  HistoryRows rows;
  rows.Songs = {SongRow(0, "One"), SongRow(3, "Two")};
  rows.Events = {ended, missed};
  rows.Incidents = {
      {.Kind = IncidentKind::Line,
       .Began = AtMinute(1),
       .Ended = AtMinute(2),
       .Seconds = 61,
       .Cause = "gone"},
      {.Kind = IncidentKind::Crash, .Began = AtMinute(3), .Ended = {}, .Seconds = 0, .Cause = ""}};
  rows.Runs = {{.Began = AtMinute(-5), .Alive = AtMinute(600), .Closed = false}};
  Keep(rows);
  EXPECT_EQ(Span(AtMinute(-10), AtMinute(700)), rows);
}

TEST_P(HistoryStoreContract, TextsMayBeAnything) {
  const std::string odd("\0'\"%_\\\xFF\n;DROP TABLE song;--", 27);
  HistoryRows rows;
  rows.Songs = {SongRow(0, odd)};
  rows.Songs[0].File = odd;
  rows.Plays = {PlayRow(0, odd, odd), PlayRow(1, "", "")};
  Keep(rows);
  EXPECT_EQ(Span(AtMinute(0), AtMinute(1)).Songs, rows.Songs);
  EXPECT_EQ(Search({}), (std::vector{rows.Plays[1], rows.Plays[0]}));
}

TEST_P(HistoryStoreContract, ASpanHasWhatReachesIntoIt) {
  HistoryRows rows;
  rows.Songs = {SongRow(0, "0 to 3"), SongRow(3, "3 to 6"), SongRow(6, "6 to 9")};
  rows.Events = {EventRow(-120), EventRow(0)};
  rows.Incidents = {
      {.Kind = IncidentKind::Line, .Began = AtMinute(0), .Ended = AtMinute(2), .Seconds = 1, .Cause = "a"},
      {.Kind = IncidentKind::Line, .Began = AtMinute(1), .Ended = AtMinute(4), .Seconds = 1, .Cause = "b"}};
  Keep(rows);
  const HistoryRows span = Span(AtMinute(4), AtMinute(5));
  ASSERT_EQ(span.Songs.size(), 1U);
  EXPECT_EQ(span.Songs[0].Title, "3 to 6");
  ASSERT_EQ(span.Events.size(), 1U) << "it was to end an hour before";
  EXPECT_EQ(span.Events[0].Due, AtMinute(0));
  ASSERT_EQ(span.Incidents.size(), 1U);
  EXPECT_EQ(span.Incidents[0].Cause, "b");
  EXPECT_EQ(Span(AtMinute(3), AtMinute(6)).Songs.size(), 3U) << "both ends count";
}

TEST_P(HistoryStoreContract, AnIncidentWithoutAnEndLastedAsLongAsItsRun) {
  HistoryRows rows;
  rows.Runs = {{.Began = AtMinute(0), .Alive = AtMinute(30), .Closed = false},
               {.Began = AtMinute(60), .Alive = AtMinute(90), .Closed = false}};
  rows.Incidents = {
      {.Kind = IncidentKind::Disk, .Began = AtMinute(10), .Ended = {}, .Seconds = 0, .Cause = "full"}};
  Keep(rows);
  EXPECT_EQ(Span(AtMinute(29), AtMinute(31)).Incidents.size(), 1U);
  EXPECT_EQ(Span(AtMinute(40), AtMinute(90)).Incidents.size(), 0U);
}

TEST_P(HistoryStoreContract, ARowOfTheSameNameReplacesTheOlder) {
  HistoryRows rows;
  rows.Events = {EventRow(0)};
  rows.Incidents = {
      {.Kind = IncidentKind::Line, .Began = AtMinute(0), .Ended = {}, .Seconds = 0, .Cause = "a"}};
  rows.Runs = {{.Began = AtMinute(0), .Alive = AtMinute(0), .Closed = false}};
  rows.Plays = {PlayRow(0, "Moon", "River")};
  rows.Songs = {SongRow(0, "One")};
  Keep(rows);
  rows.Events[0].Ended = AtMinute(60);
  rows.Incidents[0].Ended = AtMinute(5);
  rows.Runs[0].Closed = true;
  rows.Plays[0].To = AtMinute(9);
  Keep(rows);
  const HistoryRows span = Span(AtMinute(0), AtMinute(5));
  EXPECT_EQ(span.Events, rows.Events);
  EXPECT_EQ(span.Incidents, rows.Incidents);
  EXPECT_EQ(span.Runs, rows.Runs);
  EXPECT_EQ(span.Songs.size(), 2U) << "a song has no name";
  EXPECT_EQ(Search({}), rows.Plays);
}

TEST_P(HistoryStoreContract, MissedAndBegunAreTwoEvents) {
  HistoryRows rows;
  rows.Events = {EventRow(0), EventRow(0), EventRow(0)};
  rows.Events[0].Began.reset();
  rows.Events[2].Began = AtMinute(30);
  Keep(rows);
  Keep(rows);
  EXPECT_EQ(Span(AtMinute(0), AtMinute(0)).Events, rows.Events);
}

TEST_P(HistoryStoreContract, ASearchFindsWordsInArtistAndTitle) {
  HistoryRows rows;
  rows.Plays = {PlayRow(0, "Moon", "River"), PlayRow(1, "River Band", "Moonlight"), PlayRow(2, "Sun", "Lake"),
                PlayRow(3, "Bj\xC3\xB6rn",
                        "\xC3\x9C"
                        "ber Alles"),
                PlayRow(4, "U2", "One")};
  Keep(rows);
  EXPECT_EQ(Titles(For("")),
            "One|\xC3\x9C"
            "ber Alles|Lake|Moonlight|River");
  EXPECT_EQ(Titles(For("moon")), "Moonlight|River");
  EXPECT_EQ(Titles(For("MOON river")), "Moonlight|River");
  EXPECT_EQ(Titles(For("  light   river  ")), "Moonlight");
  EXPECT_EQ(Titles(For("moon lake")), "");
  EXPECT_EQ(Titles(For("u2")), "One") << "shorter than what an index knows";
  EXPECT_EQ(Titles(For("u2 one")), "One");
  EXPECT_EQ(Titles(For("u one")), "One");
  EXPECT_EQ(Titles(For("x one")), "");
  EXPECT_EQ(Titles(For("\xC3\xBC"
                       "BER")),
            "\xC3\x9C"
            "ber Alles")
      << "capitals beyond ASCII";
  EXPECT_EQ(Titles(For("\xC3\x96")),
            "\xC3\x9C"
            "ber Alles");
  EXPECT_EQ(Titles(For("j\xC3\xB6r")),
            "\xC3\x9C"
            "ber Alles");
}

TEST_P(HistoryStoreContract, NothingInASearchIsASign) {
  HistoryRows rows;
  rows.Plays = {PlayRow(0, "100%", "a_b"), PlayRow(1, "say \"hey\"", "it's"),
                PlayRow(2, "AND OR NOT", "NEAR(x)"), PlayRow(3, "artist:title", "*"),
                PlayRow(4, "back\\slash", "(^+-)")};
  Keep(rows);
  EXPECT_EQ(Titles(For("%")), "a_b");
  EXPECT_EQ(Titles(For("00%")), "a_b");
  EXPECT_EQ(Titles(For("_")), "a_b");
  EXPECT_EQ(Titles(For("a_b")), "a_b");
  EXPECT_EQ(Titles(For("axb")), "");
  EXPECT_EQ(Titles(For("\"")), "it's");
  EXPECT_EQ(Titles(For("\"hey\"")), "it's");
  EXPECT_EQ(Titles(For("hey\"")), "it's") << "one mark alone";
  EXPECT_EQ(Titles(For("hey\" OR moon")), "");
  EXPECT_EQ(Titles(For("it's")), "it's");
  EXPECT_EQ(Titles(For("AND NOT")), "NEAR(x)");
  EXPECT_EQ(Titles(For("NEAR(x)")), "NEAR(x)");
  EXPECT_EQ(Titles(For("artist:")), "*");
  EXPECT_EQ(Titles(For("title:moon")), "");
  EXPECT_EQ(Titles(For("*")), "*");
  EXPECT_EQ(Titles(For("mo*")), "");
  EXPECT_EQ(Titles(For("(^+-)")), "(^+-)");
  EXPECT_EQ(Titles(For("back\\slash")), "(^+-)");
  EXPECT_EQ(Titles(For("'; DROP TABLE play; --")), "");
  EXPECT_EQ(Titles(For("")), "(^+-)|*|NEAR(x)|it's|a_b");
}

TEST_P(HistoryStoreContract, ASearchCanBeNarrowed) {
  HistoryRows rows;
  for (int i = 0; i < 10; ++i)
    rows.Plays.push_back(PlayRow(i, "Moon", std::to_string(i), static_cast<std::int16_t>(i % 2 + 1)));
  Keep(rows);
  HistorySearch search = For("moon");
  search.Limit = 3;
  EXPECT_EQ(Titles(search), "9|8|7");
  search.Channel = 1;
  EXPECT_EQ(Titles(search), "8|6|4");
  search.Since = AtMinute(6);
  EXPECT_EQ(Titles(search), "8|6") << "what began then counts";
  search.Text = "";
  EXPECT_EQ(Titles(search), "8|6");
  search.Limit = 0;
  EXPECT_EQ(Titles(search), "");
  search.Text = "moon";
  EXPECT_EQ(Titles(search), "");
}

TEST_P(HistoryStoreContract, ASearchOnAChannelReachesBackOverAllItsHours) {
  HistoryRows rows;
  for (const int minute : {0, 59, 60, 61, 119, 3000, 100'000})
    rows.Plays.push_back(PlayRow(minute, "Moon", std::to_string(minute), 3));
  for (int minute = 0; minute < 5000; minute += 7) rows.Plays.push_back(PlayRow(minute, "Sun", "Other", 4));
  Keep(rows);
  HistorySearch search = For("");
  search.Channel = 3;
  EXPECT_EQ(Titles(search), "100000|3000|119|61|60|59|0");
  search.Limit = 4;
  EXPECT_EQ(Titles(search), "100000|3000|119|61");
  search.Limit = 50;
  search.Since = AtMinute(60);
  EXPECT_EQ(Titles(search), "100000|3000|119|61|60");
  search.Since = AtMinute(61);
  EXPECT_EQ(Titles(search), "100000|3000|119|61");
  search.Since = AtMinute(100'001);
  EXPECT_EQ(Titles(search), "");
  search.Since.reset();
  search.Channel = 5;
  EXPECT_EQ(Titles(search), "") << "nothing was heard of it";
  search.Text = "moon";
  EXPECT_EQ(Titles(search), "");
}

TEST_P(HistoryStoreContract, WhatWasPlayedMostComesFirst) {
  HistoryRows rows;
  rows.Plays = {PlayRow(0, "Moon", "River"),     PlayRow(5, "Sun", "Day", 8), PlayRow(10, "MOON", "river"),
                PlayRow(15, "Moon", "Lake"),     PlayRow(20, "Sun", "Day"),   PlayRow(25, "Star", "Night"),
                PlayRow(30, "Bj\xC3\xB6rn", ""), PlayRow(35, "", "News"),     PlayRow(40, "", ""),
                PlayRow(45, "", "News")};
  Keep(rows);
  EXPECT_EQ(MostPlayed({}), "3 Moon  @15|2 Sun  @20|1 Bj\xC3\xB6rn  @30|1 Star  @25");
  const MostPlayedSearch songs{.As = PlayedAs::Song, .Channel = 0, .Since = {}, .Limit = 50};
  EXPECT_EQ(MostPlayed(songs), "2 Sun Day @20|2 Moon River @10|1 Star Night @25|1 Moon Lake @15");
  MostPlayedSearch search = songs;
  search.Limit = 1;
  EXPECT_EQ(MostPlayed(search), "2 Sun Day @20");
  search.Limit = 0;
  EXPECT_EQ(MostPlayed(search), "");
  search = songs;
  search.Channel = 8;
  EXPECT_EQ(MostPlayed(search), "1 Sun Day @5");
  search.Channel = 9;
  EXPECT_EQ(MostPlayed(search), "");
  search = songs;
  search.Since = AtMinute(15);
  EXPECT_EQ(MostPlayed(search), "1 Star Night @25|1 Sun Day @20|1 Moon Lake @15") << "what began then counts";
}

TEST_P(HistoryStoreContract, ArtistAndTitleAreNotMixedUp) {
  HistoryRows rows;
  rows.Plays = {PlayRow(0, "Moon", "River Song"), PlayRow(1, "Moon River", "Song"),
                PlayRow(2, "MoonRiver", " Song")};
  Keep(rows);
  EXPECT_EQ(MostPlayed({.As = PlayedAs::Song, .Channel = 0, .Since = {}, .Limit = 50}),
            "1 MoonRiver  Song @2|1 Moon River Song @1|1 Moon River Song @0");
}

TEST_P(HistoryStoreContract, ACutComesBackAsItWas) {
  HistoryRows rows;
  rows.Songs = {CutRow(0, "One"), SongRow(3, "Two"), CutRow(6, "Three")};
  HistoryCut& odd = *rows.Songs[2].Cut;
  odd = {.Frame = 0,
         .LagMs = 5000,
         .Reason = std::string("\0'\xFF\n", 4),
         .Confidence = 1,
         .Candidates = {},
         .Next = ""};
  Keep(rows);
  EXPECT_EQ(Span(AtMinute(0), AtMinute(9)).Songs, rows.Songs);
  EXPECT_EQ(Cuts({}), (std::vector{rows.Songs[2], rows.Songs[0]})) << "one without a cut has none to show";
}

TEST_P(HistoryStoreContract, OfACutTheLikeliestCandidatesAreKeptToAThousandth) {
  HistoryRows rows;
  rows.Songs = {CutRow(0, "One")};
  rows.Songs[0].Cut->Confidence = 0.12345678;
  rows.Songs[0].Cut->Candidates = {{-4000, 0.30009}, {1, 0.2}, {2, 0.1}, {3, 0.01}, {4, 0.00001}, {5, 0}};
  Keep(rows);
  const std::vector<HistorySong> cuts = Cuts({});
  ASSERT_EQ(cuts.size(), 1U);
  EXPECT_EQ(cuts[0].Cut->Confidence, 0.123);
  EXPECT_EQ(cuts[0].Cut->Candidates,
            (std::vector<CutCandidate>{{-4000, 0.3}, {1, 0.2}, {2, 0.1}, {3, 0.01}, {4, 0}}));
}

TEST_P(HistoryStoreContract, TheLastCutsComeNewestEndFirst) {
  HistoryRows rows;
  for (const int minute : {0, 9, 3, 6})
    rows.Songs.push_back(CutRow(minute, std::to_string(minute), static_cast<std::int16_t>(minute % 2 + 1)));
  rows.Songs.push_back(CutRow(9, "9 too", 2));
  Keep(rows);
  EXPECT_EQ(CutTitles(0, 20), "9 too|9|6|3|0");
  EXPECT_EQ(CutTitles(0, 2), "9 too|9");
  EXPECT_EQ(CutTitles(2, 2), "9 too|9");
  EXPECT_EQ(CutTitles(1, 20), "6|0");
  EXPECT_EQ(CutTitles(3, 20), "");
  EXPECT_EQ(CutTitles(0, 0), "");
}

TEST_P(HistoryStoreContract, EachChannelHasTheLagThatWasWrittenLast) {
  HistoryRows rows;
  rows.Lags = {{.Channel = 255, .Changed = AtMinute(0), .Model = "first"},
               {.Channel = 1, .Changed = AtMinute(1), .Model = std::string("\0'\xFF", 3)},
               {.Channel = 255, .Changed = AtMinute(2), .Model = "second"}};
  Keep(rows);
  EXPECT_EQ(Lags(), (std::vector{rows.Lags[1], rows.Lags[2]}));
  HistoryRows later;
  later.Lags = {{.Channel = 255, .Changed = AtMinute(-5), .Model = ""}};
  Keep(later);
  EXPECT_EQ(Lags(), (std::vector{rows.Lags[1], later.Lags[0]}));
}

TEST_P(HistoryStoreContract, QuestionsAreAnsweredInTheOrderOfAsking) {
  std::string order;
  for (const char* name : {"a", "b", "c"}) {
    Store->Search({}, [&order, name](const base::Result&, const auto&) { order += name; });
    Store->ReadSpan(AtMinute(0), AtMinute(1),
                    [&order, name](const base::Result&, const auto&) { order += name; });
  }
  ASSERT_TRUE(Loop.RunUntil([&order] { return order.size() >= 6; }, 20s));
  EXPECT_EQ(order, "aabbcc");
}

TEST_P(HistoryStoreContract, FromAStoreThatIsDestroyedNoAnswerComes) {
  bool answered = false;
  Store->Search({}, [&answered](const base::Result&, const auto&) { answered = true; });
  Store.reset();
  Loop.Run(50ms);
  EXPECT_FALSE(answered);
}

INSTANTIATE_TEST_SUITE_P(Stores, HistoryStoreContract, testing::Values("Sqlite", "Fake"),
                         [](const auto& one) { return one.param; });

}  // namespace
}  // namespace kestrune::platform
