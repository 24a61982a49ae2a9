#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "history/History.h"
#include "platform/Shell.h"

namespace kestrune::presenters {

/// A night on show: from noon to noon.
struct ReportNight {
  base::DateValue From;
  base::DateValue To;
  std::string Title = {};    ///< "Sat, Nov 21", the day on which it began
  std::string Summary = {};  ///< "12 songs, 1 problem"
  bool Problems = false;     ///< something went wrong, or is missing
};

/// A line of a night's story.
struct ReportLine {
  bool Heading = false;
  std::string Time = {};
  std::string Length = {};
  std::string Text = {};
  std::string Note = {};  ///< such as what became of a song
  bool Problem = false;
  std::string File = {};  ///< full path of the song; empty if there is none
};

/// What the window of the recording report shows: the nights of the last weeks with anything in them, and the story of
/// the chosen one, problems first. It asks the record when it opens, and for the present night once a minute.
class RecordingReport {
 public:
  static constexpr int kNights = 30;

  /// All must outlive the object.
  RecordingReport(history::History& history, platform::Shell& shell, base::EventLoop& loop);
  ~RecordingReport();
  RecordingReport(const RecordingReport&) = delete;
  RecordingReport& operator=(const RecordingReport&) = delete;

  /// The window opens: asks for all nights. The present one is chosen.
  void Load();
  /// The window closes.
  void Unload();

  /// The newest first; the present one is always there.
  [[nodiscard]] const std::vector<ReportNight>& Nights() const { return nights_; }
  [[nodiscard]] int Selected() const { return selected_; }
  /// An index that does not exist is ignored.
  void Select(int night);
  [[nodiscard]] const std::vector<ReportLine>& Story() const { return story_; }
  /// Opens the folder of the line's song; does nothing for a line without a file.
  void ShowInFolder(int line);
  /// Grows with every change of what is shown.
  [[nodiscard]] std::uint32_t Changes() const { return changes_; }

 private:
  struct Told {
    ReportNight Night;
    history::Report Report;
  };

  void Ask(int night);
  void Take(int night, const base::Result& asked, const history::Report& report);
  void Rebuild();

  history::History& history_;
  platform::Shell& shell_;
  base::EventLoop& loop_;

  base::DateValue newest_;                 // noon at which the present night began
  std::vector<std::optional<Told>> told_;  // the newest first; nothing before its answer
  std::vector<std::size_t> shown_;         // the nights on show, as indices of told_
  std::vector<ReportNight> nights_;
  std::vector<ReportLine> story_;
  std::string failure_;  // why the record could not be read
  int selected_ = 0;
  std::uint32_t changes_ = 0;
  std::shared_ptr<int> opening_;  // answers of an earlier opening are not taken
  std::unique_ptr<base::Timer> tmrFollow_;
};

/// The story of one report.
[[nodiscard]] std::vector<ReportLine> StoryOf(const history::Report& report);

}  // namespace kestrune::presenters
