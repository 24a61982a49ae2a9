// Writes rows into the record of the path given as fast as it can, until it is killed. Each piece has a song, a play
// and an event of the same minute, so that a torn piece would show.

#include <chrono>
#include <string>

#include "platform/sqlite/HistoryNight.h"
#include "platform/sqlite/SqliteHistoryStore.h"
#include "support/RealEventLoop.h"

int main(int argc, char** argv) {
  using namespace kestrune;
  if (argc != 3) return 2;
  test::RealEventLoop loop;
  platform::SqliteHistoryStore store(loop, argv[1]);
  for (std::int64_t minute = std::stoll(argv[2]);; ++minute) {
    platform::HistoryRows rows;
    rows.Songs = {test::SongRow(minute, std::to_string(minute))};
    rows.Events = {test::EventRow(minute)};
    rows.Plays = {test::PlayRow(minute, "Moon", "Title " + std::to_string(minute))};
    rows.Runs = {{.Began = test::AtMinute(minute), .Alive = test::AtMinute(minute), .Closed = false}};
    store.Write(std::move(rows));
    loop.Run(std::chrono::milliseconds(1));
  }
}
