#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Environment.h"
#include "platform/Files.h"

namespace kestrune::schedule {

/// The four lists, by the digit that stands for each in the list file.
enum class RestrictList : std::uint8_t { GrabArtists = 0, GrabSongs = 1, KillArtists = 2, KillSongs = 3 };

/// The Grab and Kill lists: fragments of artists and titles that say which songs are kept. The list file
/// holds one entry a line, the list's digit and behind it the fragment as it stands.
class Restrictions {
 public:
  static constexpr std::int16_t kMaxRows = 1000;  ///< a list
  /// As a whole entry, this stands for an empty field.
  static constexpr std::string_view kBlank = "{Blank}";

  /// Both references must outlive the lists.
  Restrictions(platform::Files& files, const platform::Environment& environment)
      : files_(files), environment_(environment) {}

  /// Names the list file after the unit; the empty unit is the one from the start.
  void SetMultiUnit(std::string_view multiUnit) { multiUnit_ = multiUnit; }
  /// Full path of the list file.
  [[nodiscard]] std::string RestrictionFile() const;

  /// Replaces all lists by those of the file. A missing file means empty lists; lines that are no entries,
  /// and those behind the last row of a full list, are passed over.
  void LoadRestrictions();

  /// Takes each entry that equals the text, case and blanks around it aside, out of one list of the file, and
  /// loads it. How many there were; nothing if the file could not be written.
  [[nodiscard]] std::optional<int> Remove(RestrictList list, std::string_view text);

  /// Whether a fragment of the list of artists occurs in the artist, without regard to case, or one of the
  /// list of songs in the song. An empty fragment occurs in every text that is not empty.
  [[nodiscard]] bool IsInGrabList(std::string_view artist, std::string_view song) const;
  [[nodiscard]] bool IsInKillList(std::string_view artist, std::string_view song) const;

  [[nodiscard]] std::int16_t RestrictCount(RestrictList list) const;
  /// The fragment of a row, 1 to the count; empty for any other.
  [[nodiscard]] std::string_view Fragment(RestrictList list, std::int16_t row) const;

 private:
  struct Row {
    std::string Fragment;
    std::string Lower;  // folded once: the clock asks ten times a second
  };
  using Rows = std::vector<Row>;

  [[nodiscard]] const Rows& RowsOf(RestrictList list) const { return rows_[static_cast<std::size_t>(list)]; }
  [[nodiscard]] static bool Matches(const Rows& rows, std::string_view text);

  platform::Files& files_;
  const platform::Environment& environment_;
  std::string multiUnit_;
  std::array<Rows, 4> rows_;
};

}  // namespace kestrune::schedule
