// The close of the run: two passes with two seconds between them, in which the radio and the line finish.
#include "base/Ignored.h"
#include "recorder/Closing.h"
#include "recorder/Kestrune.h"

namespace kestrune::recorder {

bool Kestrune::Close() {
  if (closing_) return false;
  closing_ = true;
  updateCycle_.FinishSongs();
  CloseFirstPass();
  return true;
}

void Kestrune::EndWaits() {
  update_.StopWaiting();
  if (!loading_) return;
  state_.Run.ShuttingDown = true;
  outside_.Dialogs.GiveUp();
}

void Kestrune::CloseFirstPass() {
  update_.StopWaiting();
  stayAwake_.Stop();
  soundWatch_.Stop();
  diskWatch_.Stop();
  clockWatch_.Stop();
  hintFollower_.Stop();
  recovery_.Stop();
  sound_.Capture.RecordStop(0);
  sound_.Capture.RecordStop(1);
  sound_.Boundary.TakeLast();
  DeleteLeftovers();
  tmrUpdate_->SetEnabled(false);
  tmrClock_->SetEnabled(false);
  presentation_->QuitChannels();
  outside_.Windows.RemoveTrayIcon();
  state_.Run.ShuttingDown = true;
  outside_.Windows.HideAll();
  linkWatch_.Stop();
  if (!state_.Settings.RadioOnAtExit) radio_.Link.SwitchOff();
  tmrQuit_->SetEnabled(true);
  sound_.Audio.Release();
}

void Kestrune::DeleteLeftovers() {
  // The song in hand goes with them: a close does not keep it unless a user has asked for it.
  for (const std::int16_t slot : {std::int16_t{0}, std::int16_t{1}}) {
    sound_.Capture.Release(slot);
    sound_.SongFiles.Discard(state_.Recording.CaptureSlots.at(static_cast<std::size_t>(slot)));
  }
  for (const int number : {0, 1}) {
    for (const CaptureRecord& record : state_.Recording.CaptureSlots) {
      sound_.SongFiles.RemoveLeftovers(record.Folder, sound_.Capture.TemporaryName(number, "*"));
    }
  }
}

void Kestrune::tmrQuit_Timer() {
  tmrQuit_->SetEnabled(false);
  if (state_.Recording.IsRecording()) {
    commands_.cmdStop();
    state_.Run.Quitting = true;
    updateCycle_.Tick();
    updateCycle_.Tick();
    state_.Run.Quitting = false;
  }
  tmrUpdate_->SetEnabled(false);
  radio_.Channels.SaveAtExit();
  sound_.Capture.RecordStop(0);
  sound_.Capture.RecordStop(1);
  log_.DoLog("Shutting Down");
  chronicle_.Close(state_.Recording);
  tmrUpdate_->SetEnabled(false);
  radio_.Link.Close();
  tmrUpdate_->SetEnabled(false);
  outside_.Windows.UnloadChannelsAndLog();
  SaveAtExit();
  CloseSecondPass();
}

void Kestrune::SaveAtExit() {
  if (const std::optional<WindowPlace> place = presentation_->PlaceToRemember()) {
    base::Ignored(section_.SaveSingle("MainTop", place->Top));
    base::Ignored(section_.SaveSingle("MainLeft", place->Left));
  }
  config::Settings last = state_.Settings;
  // A hint that is being followed is no choice of the user.
  last.Channel = state_.HintHome != 0 ? state_.HintHome : state_.Radio.ChannelNumber;
  last.SievanceGrab = last.SievanceGrab != 0 ? 1 : 0;
  last.SievanceKill = last.SievanceKill != 0 ? 1 : 0;
  base::Ignored(settingsDoor_.Change(last, {"Channel", "SievanceGrab", "SievanceKill"}));
  base::Ignored(settingsDoor_.SaveAtExit());
}

void Kestrune::CloseSecondPass() {
  outside_.Windows.UnloadAll();
  state_.Run.FormLoading = true;
  tmrUpdate_->SetEnabled(false);
  tmrClock_->SetEnabled(false);
  log_.CloseTrace();
  sound_.Audio.Release();
  door_.ShutForGood(kClosing);
  closed_();
}

}  // namespace kestrune::recorder
