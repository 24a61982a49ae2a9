#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/Result.h"
#include "base/RunState.h"
#include "config/update/UpdateCheck.h"
#include "config/update/Updating.h"
#include "recorder/Boxes.h"
#include "recorder/Errand.h"
#include "recorder/Outside.h"
#include "recorder/RecordCommands.h"

namespace kestrune::recorder {

/// What the maker's server said.
struct UpdateAnswer {
  std::int16_t Result = config::kNotRetrieved;
  std::string DownloadAddress;  ///< of the installer, if there is a newer version and the server named it
};

/// The update check as a command: it asks the server, informs the user, and on Yes fetches the installer, runs it
/// and closes the program. One check at a time, from the question to the answer of the last message. What takes long
/// runs beside the door: recording, stopping and closing go on meanwhile.
class UpdateCommand {
 public:
  /// `close` asks for the close of the program.
  UpdateCommand(const Outside& outside, const base::RunState& run, RecordCommands& commands, Boxes& boxes,
                std::function<void()> close);

  [[nodiscard]] bool HasServer() const { return check_.HasServer(); }
  /// Starts a check and returns; does nothing while one is under way.
  void mnuCheckUpdate();
  /// Asks the server, and nobody else. `answered` is called once: within the call if a check is under way already,
  /// else from the event loop.
  void Ask(std::function<void(const base::Result&, const UpdateAnswer&)> answered);
  /// The program closes: whatever is waited for is given up.
  void StopWaiting();

  [[nodiscard]] const config::UpdatingWindow& Window() const { return updating_.Window(); }

 private:
  [[nodiscard]] UpdateAnswer AskServer();
  void TellUser(const UpdateAnswer& answer);
  /// Shows a message that ends the check.
  void TellLast(std::string title, std::string text,
                platform::MessageIcon icon = platform::MessageIcon::Information);
  void Install(const std::string& downloadAddress);
  void DownloadAndRun(const std::string& downloadAddress);
  void TellDownloadError();
  [[nodiscard]] std::string Download(const std::string& downloadAddress);

  Outside outside_;
  const base::RunState& run_;
  RecordCommands& commands_;
  Boxes& boxes_;
  std::function<void()> close_;
  config::UpdateCheck check_;
  config::Updating updating_;
  Errand errand_;
  bool busy_ = false;
};

}  // namespace kestrune::recorder
