// Without a shelf the files of an hour of radio are handled as they were before there was one: the digest is that of a
// program without any shelf.
#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

std::uint64_t Digest(std::uint64_t digest, std::string_view text) {
  for (const char c : text) digest = (digest ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  return digest;
}

TEST(HourWithoutShelf, TheFilesAreHandledAsWithoutOne) {
  UnitRig rig;
  rig.Set("ShelfSongs", "0");
  rig.Set("SievanceKill", "1");
  rig.Set("SaveDuplicates", "False");
  rig.Files.Put("/home/user/Application Data/Kestrune/Restriction.txt", "2Artist 5\n");
  rig.StartIdle();
  // Songs of one to three minutes; recorded, stopped, tuned away, too short, on the Kill lists and twice the same.
  for (int song = 0; song < 30; ++song) {
    rig.NextSong("Artist " + std::to_string(song % 7), "Song " + std::to_string(song % 12));
    if (song == 4 || song == 16) rig->cmdRecord();
    if (song == 12 || song == 24) rig->cmdStop();
    if (song == 14) rig->SetChannelNumber(45);
    if (song == 20) rig.Run(3s);
    rig.Run(song % 6 == 5 ? 4s : 60s + song * 4s);
  }
  rig.CloseAndWait();
  std::uint64_t digest = 0xCBF29CE484222325U;
  int calls = 0;
  for (const std::string& call : rig.Files.Calls) {
    // The sound itself comes in blocks, of which there are many.
    if (call.find("/music") == std::string::npos || call.starts_with("Append")) continue;
    digest = Digest(digest, call + "\n");
    ++calls;
  }
  EXPECT_EQ(calls, 208);
  EXPECT_EQ(digest, 8029440535358330905U);
}

}  // namespace
}  // namespace kestrune::test
