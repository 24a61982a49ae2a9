#include <gtest/gtest.h>

#include "shelf/ShelvedSong.h"

namespace kestrune::shelf {
namespace {

TEST(ShelvedSong, ANameTellsArtistTitleAndWhetherItIsWhole) {
  const struct {
    const char* Name;
    const char* Artist;
    const char* Title;
    bool Incomplete;
  } kNames[] = {
      {"Moonlighters - Slow Tide.mp3", "Moonlighters", "Slow Tide", false},
      {"Moonlighters - Slow Tide (Incomplete).mp3", "Moonlighters", "Slow Tide", true},
      {"Moonlighters - Slow Tide (2).mp3", "Moonlighters", "Slow Tide", false},
      {"Moonlighters - Slow Tide (Incomplete) (12).mp3", "Moonlighters", "Slow Tide", true},
      {"Moonlighters - Slow Tide (live).mp3", "Moonlighters", "Slow Tide (live)", false},
      {"Moonlighters - Slow - Tide.mp3", "Moonlighters", "Slow - Tide", false},
      {"Slow Tide.ogg", "", "Slow Tide", false},
      {" - .wav", "", "", false},
      {"St. John - Mr. Moon.mp3", "St. John", "Mr. Moon", false},
      {"A - ().mp3", "A", "()", false},
      {"noextension", "", "noextension", false},
      {"", "", "", false},
  };
  for (const auto& name : kNames) {
    ShelvedSong song;
    ReadName(name.Name, song);
    EXPECT_EQ(song.Artist, name.Artist) << name.Name;
    EXPECT_EQ(song.Title, name.Title) << name.Name;
    EXPECT_EQ(song.Incomplete, name.Incomplete) << name.Name;
  }
}

}  // namespace
}  // namespace kestrune::shelf
