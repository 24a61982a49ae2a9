#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Result.h"
#include "control/Reports.h"
#include "history/Report.h"
#include "platform/HistoryRows.h"
#include "platform/HistoryStore.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::control {

struct SettingResult {
  bool Done = false;
  std::string Reason;
  std::string Value;
};

struct HintsResult {
  bool Done = false;
  std::string Reason;
  std::vector<HintReport> Hints;  ///< the newest first
};

struct UpdateResult {
  bool Done = false;
  std::string Reason;
  UpdateReport Report;
};

/// What is asked of the record of what happened. Moments are in a person's words, as history::ReadSince takes them.
struct ReportQuestion {
  std::string Since;  ///< empty: last night
};
struct HistoryQuestion {
  std::string Text;       ///< words; empty: all
  int Channel = 0;        ///< 0: all
  std::string Since;      ///< empty: as far back as the record goes
  int Days = 0;           ///< 0: as Since has it; else the last so many days
  std::size_t Limit = 0;  ///< at most so many, the newest
};
struct MostPlayedQuestion {
  platform::PlayedAs As = platform::PlayedAs::Artist;
  int Channel = 0;        ///< 0: all
  std::string Since;      ///< empty: as far back as the record goes
  int Days = 0;           ///< 0: as Since has it; else the last so many days
  std::size_t Limit = 0;  ///< at most so many
};
struct CutsQuestion {
  int Channel = 0;        ///< 0: all
  std::size_t Limit = 0;  ///< at most so many, the newest
};
using CutsAnswered = std::function<void(const base::Result& asked, const std::vector<CutReport>& cuts)>;
using ReportAnswered = std::function<void(const base::Result& asked, const history::Report& report)>;
using MostPlayedAnswered =
    std::function<void(const base::Result& asked, const std::vector<platform::PlayCount>& counts)>;
using HistoryAnswered =
    std::function<void(const base::Result& asked, const std::vector<platform::HistoryPlay>& plays)>;

/// Takes what became of a wish.
using Answered = std::function<void(const base::Result&)>;

/// What the control socket can do to a unit. All calls come on the main thread, also while the unit waits for the
/// radio, and none throws. Arguments have been checked by the command table.
///
/// A question is answered at once, from the state as it is; one about the record, later from the event loop, each
/// exactly once. A wish is answered once it has been carried out or
/// refused, each exactly once: within the call or, as a rule, later from the event loop, in the order of asking.
/// The cause of a refusal is one line for a person. Views need not outlive the call.
class ControlTarget {
 public:
  virtual ~ControlTarget() = default;

  // Questions.
  [[nodiscard]] virtual StatusReport Status() = 0;
  /// In the order of the channel numbers.
  [[nodiscard]] virtual std::vector<ChannelReport> Channels() = 0;
  /// The newest lines of the log, oldest first.
  [[nodiscard]] virtual std::vector<std::string> LogLines(std::size_t atMost) = 0;
  [[nodiscard]] virtual SettingResult Get(std::string_view key) = 0;
  /// All ten entries, in their order.
  [[nodiscard]] virtual std::vector<ScheduleReport> Schedule() = 0;
  [[nodiscard]] virtual ListsReport Lists() = 0;
  /// What was captured and not kept, newest first.
  [[nodiscard]] virtual std::vector<ShelvedReport> Shelf() = 0;
  /// Of one channel, or of all if it is 0, those of which anything was learned, in their order.
  [[nodiscard]] virtual std::vector<StationLagReport> StationLags(int channel) = 0;
  /// What begins elsewhere; refused while the setting for it is off.
  [[nodiscard]] virtual HintsResult Hints() = 0;

  // Questions about the record of what happened.
  virtual void Report(const ReportQuestion& question, ReportAnswered answered) = 0;
  /// Newest first.
  virtual void History(const HistoryQuestion& question, HistoryAnswered answered) = 0;
  /// The most played first.
  virtual void MostPlayed(const MostPlayedQuestion& question, MostPlayedAnswered answered) = 0;

  /// Newest first.
  virtual void Cuts(const CutsQuestion& question, CutsAnswered answered) = 0;

  // Wishes.
  virtual void Record(Answered answered) = 0;
  virtual void Stop(Answered answered) = 0;
  virtual void Tune(int channelNumber, Answered answered) = 0;  ///< 1 to 255
  virtual void Mute(bool muted, Answered answered) = 0;
  /// Keeps the song of that number of the shelf, of which 1 is the newest.
  virtual void Keep(int number, Answered answered) = 0;
  /// Keeps the song that plays, at its end.
  virtual void KeepCurrent(Answered answered) = 0;
  virtual void Set(std::string_view key, std::string_view value, Answered answered) = 0;
  /// Entries are numbered 1 to 10. A refusal that the scheduler has words for comes with those words.
  virtual void SetSchedule(const ScheduleChange& change, Answered answered) = 0;
  virtual void EnableSchedule(int number, bool enabled, Answered answered) = 0;
  virtual void ClearSchedule(int number, Answered answered) = 0;
  /// One entry more, or fewer, in the list file; it takes effect at once. The text is not blank.
  virtual void AddToList(schedule::RestrictList list, std::string_view text, Answered answered) = 0;
  virtual void RemoveFromList(schedule::RestrictList list, std::string_view text, Answered answered) = 0;
  /// Asks the maker's server for a newer version; installs nothing. Takes as long as the server, and other wishes
  /// are served meanwhile.
  virtual void Update(std::function<void(const UpdateResult&)> answered) = 0;
  /// Answered once the close has begun; the program ends about two seconds later.
  virtual void Quit(Answered answered) = 0;
};

}  // namespace kestrune::control
