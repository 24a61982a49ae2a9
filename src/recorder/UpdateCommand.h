#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/RunState.h"
#include "config/update/UpdateCheck.h"
#include "config/update/Updating.h"
#include "recorder/Outside.h"
#include "recorder/RecordCommands.h"

namespace kestrune::recorder {

/// What the maker's server said.
struct UpdateAnswer {
  std::int16_t Result = config::kNotRetrieved;
  std::string DownloadAddress;  ///< of the installer, if there is a newer version and the server told it
};

/// The update check as a command: it asks the server, tells the user, and on Yes fetches the installer, runs it, waits
/// until it has ended, and closes the program. An installer that cannot be started leaves the program running. One
/// check at a time; events run inside it.
class UpdateCommand {
 public:
  /// `close` is the close of the main window.
  UpdateCommand(const Outside& outside, const base::RunState& run, RecordCommands& commands,
                std::function<void()> close);

  [[nodiscard]] bool HasServer() const { return check_.HasServer(); }
  /// Does nothing while a check is under way.
  void mnuCheckUpdate();
  /// Asks the server and nobody else; nothing while a check is under way.
  [[nodiscard]] std::optional<UpdateAnswer> Ask();
  /// The program closes: whatever is waited for is given up.
  void StopWaiting();

  [[nodiscard]] const config::UpdatingWindow& Window() const { return updating_.Window(); }

 private:
  [[nodiscard]] UpdateAnswer AskServer();
  [[nodiscard]] platform::MessageAnswer Tell(std::string title, std::string text,
                                             platform::MessageButtons buttons = platform::MessageButtons::Ok,
                                             platform::MessageIcon icon = platform::MessageIcon::Information);
  void Install(const std::string& downloadAddress);
  void TellDownloadError();
  [[nodiscard]] std::string Download(const std::string& downloadAddress);

  Outside outside_;
  const base::RunState& run_;
  RecordCommands& commands_;
  std::function<void()> close_;
  config::UpdateCheck check_;
  config::Updating updating_;
  bool busy_ = false;
};

}  // namespace kestrune::recorder
