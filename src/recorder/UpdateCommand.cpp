#include "recorder/UpdateCommand.h"

#include <utility>

#include "base/Words.h"
#include "config/update/Endpoints.h"
#include "platform/ExecWait.h"
#include "recorder/Closing.h"

namespace kestrune::recorder {

UpdateCommand::UpdateCommand(const Outside& outside, const base::RunState& run, RecordCommands& commands,
                             Boxes& boxes, std::function<void()> close)
    : outside_(outside),
      run_(run),
      commands_(commands),
      boxes_(boxes),
      close_(std::move(close)),
      check_(outside.Web, outside.Files, outside.Environment, outside.Loop, run),
      updating_(outside.Loop),
      errand_(outside.Loop) {}

void UpdateCommand::mnuCheckUpdate() {
  if (busy_) return;
  busy_ = true;
  errand_.Start([this] { TellUser(AskServer()); });
}

void UpdateCommand::TellUser(const UpdateAnswer& answer) {
  if (run_.ShuttingDown) return;
  switch (answer.Result) {
    case config::kUpToDate:
      return TellLast("Current Version", "You are running the current, most up-to-date version of Kestrune.");
    case config::kNewerVersion:
      return boxes_.Show(
          {.Title = "New Version Available",
           .Text = "There is an updated version of Kestrune available. Do you want to install it?",
           .Icon = platform::MessageIcon::Information,
           .Buttons = platform::MessageButtons::YesNo},
          [this, address = answer.DownloadAddress](platform::MessageAnswer pressed) {
            busy_ = false;
            if (pressed == platform::MessageAnswer::Yes) Install(address);
          });
    default:
      TellLast("Error", "Unable to retrieve current version number from the web.");
  }
}

void UpdateCommand::Ask(std::function<void(const base::Result&, const UpdateAnswer&)> answered) {
  if (busy_) return answered(base::Result::Failed("an update check is under way already"), {});
  busy_ = true;
  errand_.Start([this, answered = std::move(answered)] {
    const UpdateAnswer answer = AskServer();
    busy_ = false;
    answered(run_.ShuttingDown ? base::Result::Failed(kClosing) : base::Result::Done(), answer);
  });
}

void UpdateCommand::StopWaiting() {
  outside_.Web.StopWaiting();
  outside_.Processes.StopWaiting();
}

UpdateAnswer UpdateCommand::AskServer() {
  UpdateAnswer answer;
  if (run_.ShuttingDown) return answer;
  outside_.Windows.ShowWaitCursor(true);
  check_.CheckNewVersion(answer.DownloadAddress, answer.Result);
  outside_.Windows.ShowWaitCursor(false);
  return answer;
}

void UpdateCommand::TellLast(std::string title, std::string text, platform::MessageIcon icon) {
  boxes_.Show({.Title = std::move(title), .Text = std::move(text), .Icon = icon},
              [this](platform::MessageAnswer /*ok*/) { busy_ = false; });
}

void UpdateCommand::Install(const std::string& downloadAddress) {
  if (run_.ShuttingDown) return;
  busy_ = true;
  commands_.StopRecording();
  errand_.Start([this, downloadAddress] { DownloadAndRun(downloadAddress); });
}

void UpdateCommand::DownloadAndRun(const std::string& downloadAddress) {
  const std::string localFile = Download(downloadAddress);
  if (run_.ShuttingDown) return;
  if (localFile.empty()) return TellDownloadError();
  if (!outside_.Files.Exists(localFile)) {
    busy_ = false;
    return;
  }
  std::int16_t waitResult = 0;
  const std::int32_t installer =
      radio::ExecWait(outside_.Processes, base::QuoteWord(localFile), false, 0, waitResult, false);
  // An installer that this program does not wait for any longer may still need its file.
  if (waitResult != radio::kWaitGivenUp) check_.RemoveDownload(localFile);
  if (installer == 0) return TellDownloadError();
  close_();
}

void UpdateCommand::TellDownloadError() {
  TellLast("Download Error",
           "An error occurred downloading the update.\nPlease visit Kestrune at " +
               config::EndpointsOf(outside_.Environment).WebSite,
           platform::MessageIcon::None);
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
