#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Journal.h"
#include "base/Result.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "schedule/lists/ListEditor.h"
#include "schedule/lists/RestrictList.h"

namespace kestrune::schedule {

/// The Grab and Kill lists: fragments of artists and titles that decide which songs are kept. The list file holds
/// one entry a line: the list's digit, then the fragment exactly as it is. Byte order marks before a line are
/// skipped.
class Restrictions {
 public:
  static constexpr std::int16_t kMaxRows = 1000;  ///< a list
  /// As a whole entry, this stands for an empty field.
  static constexpr std::string_view kBlank = "{Blank}";

  /// All references must outlive the lists.
  Restrictions(platform::Files& files, const platform::Environment& environment, base::Journal& log)
      : files_(files), environment_(environment), log_(log) {}

  /// Names the list file after the unit. The unit is empty until this is called.
  void SetMultiUnit(std::string_view multiUnit) { multiUnit_ = multiUnit; }
  /// Full path of the list file.
  [[nodiscard]] std::string RestrictionFile() const;

  /// Replaces all lists by those of the file. A missing file means empty lists. If the file exists but cannot be
  /// read, the lists stay as they are, and the log says so. Lines that are not entries are skipped, and so are
  /// entries for a list that is full.
  void LoadRestrictions();

  /// The text of the list file without the byte order marks before its lines, empty if there is no file; nothing if
  /// it exists but cannot be read.
  [[nodiscard]] std::optional<std::string> ReadFile() const;

  /// Adds an entry to the list file, loads the file, and shows the entry to an open editor. If the file cannot be
  /// written nothing is added; the log has that too.
  base::Result Add(RestrictList list, std::string_view fragment);
  /// Removes each entry that equals the text, case and surrounding blanks aside, from one list of the file, and
  /// loads the file. Returns how many there were, or the cause if the file could not be read or written; the log
  /// has that too.
  struct Removal {
    int Count = 0;
    std::string Failure;  ///< empty if nothing failed
  };
  [[nodiscard]] Removal Remove(RestrictList list, std::string_view text);

  /// The editor that is open, which must not be destroyed before it is taken away again; null for none.
  void SetEditor(ListEditor* editor) { editor_ = editor; }
  /// Whether an editor is open: its save would bring back what is removed meanwhile.
  [[nodiscard]] bool BeingEdited() const { return editor_ != nullptr; }

  /// Whether a fragment of the artist list occurs in the artist, or one of the song list in the song, case aside.
  /// An empty fragment occurs in every text that is not empty.
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
  base::Journal& log_;
  std::string multiUnit_;
  ListEditor* editor_ = nullptr;
  std::array<Rows, 4> rows_;
};

}  // namespace kestrune::schedule
