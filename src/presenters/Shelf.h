#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/EventLoop.h"
#include "base/Result.h"
#include "platform/Shell.h"
#include "recorder/Kestrune.h"

namespace kestrune::presenters {

/// A line of the shelf's window.
struct ShelfRow {
  bool Present = false;  ///< the song that plays
  bool Wanted = false;   ///< it will be kept at its end
  std::string Time;      ///< of its end, with the day if that is another one
  std::string Station;
  std::string Artist;
  std::string Title;
  std::string Length;  ///< so far, for the one that plays; empty if it is not known
  std::string Fate;    ///< why it was not kept, or what becomes of it
  std::string File;    ///< full path; empty for the one that plays

  bool operator==(const ShelfRow&) const = default;
};

/// What the window of the shelf shows and does: the song that plays on top, then what just played and was not kept, newest
/// first. It looks again twice a second while it is open.
class Shelf {
 public:
  /// All must outlive the object.
  Shelf(recorder::Kestrune& unit, platform::Shell& shell, base::EventLoop& loop);
  ~Shelf();
  Shelf(const Shelf&) = delete;
  Shelf& operator=(const Shelf&) = delete;

  /// The window opens, or closes.
  void Load();
  void Unload();

  /// Only what has all these words in station, artist or title, case aside; the song that plays stays.
  void Search(std::string_view text);
  [[nodiscard]] const std::vector<ShelfRow>& Rows() const { return rows_; }
  /// What became of the last wish, one line; before the first, whether the shelf is off. Empty if there is nothing to say.
  [[nodiscard]] std::string_view Message() const;
  /// Grows with every change of what is shown.
  [[nodiscard]] std::uint32_t Changes() const { return changes_; }

  // Each does nothing for a row that does not exist.

  /// Whether the row can be kept, or has a file that can be played and shown.
  [[nodiscard]] bool MayKeep(int row) const;
  [[nodiscard]] bool HasFile(int row) const;
  /// Plays it in the desktop's player.
  void Play(int row);
  void Keep(int row);
  void ShowInFolder(int row);

 private:
  void Look();
  void Say(std::string message);
  [[nodiscard]] ShelfRow PresentRow() const;
  [[nodiscard]] bool Matches(const ShelfRow& row) const;
  [[nodiscard]] const ShelfRow* At(int row) const;

  recorder::Kestrune& unit_;
  platform::Shell& shell_;
  std::vector<std::string> words_;
  std::vector<ShelfRow> rows_;
  std::string message_;
  bool off_ = false;  // no song is put there
  std::uint32_t changes_ = 0;
  std::shared_ptr<int> opening_;  // answers of an earlier opening are not taken
  std::unique_ptr<base::Timer> tmrLook_;
};

/// Whether the song that plays can be kept with a wish: it is being captured, and nobody has asked yet.
[[nodiscard]] bool MayKeepCurrent(const recorder::State& state);

}  // namespace kestrune::presenters
