#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "schedule/lists/Restrictions.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

/// The first line is a song's artist, the second its title, the rest the list file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using kestrune::schedule::RestrictList;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t first = input.find('\n');
  const std::size_t second = first == std::string_view::npos ? first : input.find('\n', first + 1);
  if (second == std::string_view::npos) return 0;
  const std::string_view artist = input.substr(0, first);
  const std::string_view song = input.substr(first + 1, second - first - 1);

  kestrune::test::FakeEnvironment environment;
  kestrune::test::MemoryFiles files;
  kestrune::test::RecordingJournal journal;
  kestrune::schedule::Restrictions lists(files, environment, journal);
  files.Put(lists.RestrictionFile(), input.substr(second + 1));
  lists.LoadRestrictions();

  for (const auto list : {RestrictList::GrabArtists, RestrictList::GrabSongs, RestrictList::KillArtists,
                          RestrictList::KillSongs}) {
    const std::int16_t count = lists.RestrictCount(list);
    Check(count >= 0 && count <= kestrune::schedule::Restrictions::kMaxRows);
    for (std::int16_t row = 1; row <= count; ++row) {
      const std::string_view fragment = lists.Fragment(list, row);
      Check(fragment.find('\n') == std::string_view::npos);
      // What is on a list matches itself, on the list's own side and field.
      const bool artists = list == RestrictList::GrabArtists || list == RestrictList::KillArtists;
      const bool grab = list == RestrictList::GrabArtists || list == RestrictList::GrabSongs;
      const std::string_view asArtist = artists ? fragment : std::string_view();
      const std::string_view asSong = artists ? std::string_view() : fragment;
      if (fragment.empty() || row > 20) continue;
      Check(grab ? lists.IsInGrabList(asArtist, asSong) : lists.IsInKillList(asArtist, asSong));
    }
  }
  const bool grabbed = lists.IsInGrabList(artist, song);
  const bool killed = lists.IsInKillList(artist, song);
  lists.LoadRestrictions();
  Check(grabbed == lists.IsInGrabList(artist, song) && killed == lists.IsInKillList(artist, song));

  // What is added lies there until it is removed, and no other list is touched by that.
  const std::int16_t others = lists.RestrictCount(RestrictList::GrabArtists);
  if (!lists.Add(RestrictList::KillSongs, song).Ok()) return 0;
  const std::int16_t count = lists.RestrictCount(RestrictList::KillSongs);
  const bool full = count == kestrune::schedule::Restrictions::kMaxRows;
  Check(full || lists.Fragment(RestrictList::KillSongs, count) == song || song.ends_with('\r'));
  const auto removal = lists.Remove(RestrictList::KillSongs, song);
  Check(removal.Failure.empty() && (removal.Count > 0 || song.ends_with('\r')));
  Check(full || lists.RestrictCount(RestrictList::KillSongs) == count - removal.Count);
  Check(lists.RestrictCount(RestrictList::GrabArtists) == others);
  return 0;
}
