#include "recorder/UpdateCommand.h"

#include <utility>

#include "base/Ignored.h"
#include "base/Words.h"
#include "config/update/Endpoints.h"
#include "platform/ExecWait.h"

namespace kestrune::recorder {

UpdateCommand::UpdateCommand(const Outside& outside, const base::RunState& run, RecordCommands& commands,
                             std::function<void()> close)
    : outside_(outside),
      run_(run),
      commands_(commands),
      close_(std::move(close)),
      check_(outside.Web, outside.Files, outside.Environment, outside.Loop, run),
      updating_(outside.Loop) {}

void UpdateCommand::mnuCheckUpdate() {
  if (busy_) return;
  busy_ = true;
  const UpdateAnswer answer = AskServer();
  if (!run_.ShuttingDown) {
    switch (answer.Result) {
      case config::kUpToDate:
        base::Ignored(
            Tell("Current Version", "You are running the current, most up-to-date version of Kestrune."));
        break;
      case config::kNewerVersion:
        if (Tell("New Version Available",
                 "There is an updated version of Kestrune available. Do you want to install it?",
                 platform::MessageButtons::YesNo) == platform::MessageAnswer::Yes) {
          Install(answer.DownloadAddress);
        }
        break;
      default:
        base::Ignored(Tell("Error", "Unable to retrieve current version number from the web."));
    }
  }
  busy_ = false;
}

std::optional<UpdateAnswer> UpdateCommand::Ask() {
  if (busy_) return std::nullopt;
  busy_ = true;
  UpdateAnswer answer = AskServer();
  busy_ = false;
  return answer;
}

void UpdateCommand::StopWaiting() {
  outside_.Web.StopWaiting();
  outside_.Processes.StopWaiting();
}

UpdateAnswer UpdateCommand::AskServer() {
  UpdateAnswer answer;
  outside_.Windows.ShowWaitCursor(true);
  check_.CheckNewVersion(answer.DownloadAddress, answer.Result);
  outside_.Windows.ShowWaitCursor(false);
  return answer;
}

platform::MessageAnswer UpdateCommand::Tell(std::string title, std::string text,
                                            platform::MessageButtons buttons, platform::MessageIcon icon) {
  return outside_.Dialogs.Show(
      {.Title = std::move(title), .Text = std::move(text), .Icon = icon, .Buttons = buttons});
}

void UpdateCommand::Install(const std::string& downloadAddress) {
  if (run_.ShuttingDown) return;
  commands_.cmdStop();
  const std::string localFile = Download(downloadAddress);
  if (run_.ShuttingDown) return;
  if (localFile.empty()) return TellDownloadError();
  if (!outside_.Files.Exists(localFile)) return;
  std::int16_t waitResult = 0;
  const std::int32_t installer =
      radio::ExecWait(outside_.Processes, base::QuoteWord(localFile), false, 0, waitResult, false);
  // An installer that this program does not wait for any longer may still need its file.
  if (waitResult != radio::kWaitGivenUp) check_.RemoveDownload(localFile);
  if (installer == 0) return TellDownloadError();
  close_();
}

void UpdateCommand::TellDownloadError() {
  base::Ignored(Tell("Download Error",
                     "An error occurred downloading the update.\nPlease visit Kestrune at " +
                         config::EndpointsOf(outside_.Environment).WebSite,
                     platform::MessageButtons::Ok, platform::MessageIcon::None));
}

std::string UpdateCommand::Download(const std::string& downloadAddress) {
  std::string localFile;
  updating_.Open();
  outside_.Windows.ShowUpdating();
  check_.UpdateEXE(downloadAddress, localFile);
  outside_.Windows.CloseUpdating();
  updating_.Close();
  return localFile;
}

}  // namespace kestrune::recorder
