#include "presenters/ChannelChooser.h"

#include <chrono>
#include <utility>

#include "base/Text.h"

namespace kestrune::presenters {

namespace {

using namespace std::chrono_literals;

constexpr auto kChangeDelay = 300ms;  // the user has stopped at a row
constexpr auto kNextTry = 10ms;       // the update cycle runs

}  // namespace

ChannelChooser::ChannelChooser(radio::Channels& channels, const base::RunState& run, platform::Sounds& sounds,
                               base::EventLoop& loop, const base::Timer& tmrUpdate,
                               std::function<bool()> getRecordingStatus)
    : channels_(channels),
      run_(run),
      sounds_(sounds),
      tmrUpdate_(tmrUpdate),
      getRecordingStatus_(std::move(getRecordingStatus)),
      tmrChannelChange_(loop.MakeTimer(kChangeDelay, [this] { tmrChannelChange_Timer(); })) {}

void ChannelChooser::ClickTitle(int column) {
  if (RefuseWhileRecording()) return;
  if (column < 0 || column >= radio::ChannelGrid::kColumns) return;
  sortClickOrder_ = column != sortClickColumn_ || sortClickOrder_ != 1 ? 1 : 2;
  sortClickColumn_ = column;
  channels_.Grid().Sort(column, static_cast<radio::ChannelGrid::Order>(sortClickOrder_));
  PutSelectionBack();
}

void ChannelChooser::ClickRow(int row) {
  if (RefuseWhileRecording()) return;
  if (row < 1 || row > Grid().RowCount()) return;
  channels_.Grid().Select(row);
  pendingChannel_ = Grid().NumberAt(row);
  tmrChannelChange_->SetEnabled(true);
}

void ChannelChooser::MoveTo(int row) {
  if (row < 1 || row > Grid().RowCount()) return;
  channels_.Grid().Select(row);
  if (Grid().IgnoreMove || quitFlag_) return;
  if (RefuseWhileRecording()) return;
  pendingChannel_ = Grid().NumberAt(row);
  tmrChannelChange_->SetEnabled(false);
  tmrChannelChange_->SetEnabled(true);
}

void ChannelChooser::DoubleClick(int row, int column) {
  tmrChannelChange_->SetEnabled(false);
  const bool named = column == radio::ChannelGrid::Artist || column == radio::ChannelGrid::Song;
  if (named && row >= 1 && row <= Grid().RowCount()) {
    const std::string text(base::Trim(Grid().At(row).at(static_cast<std::size_t>(column))));
    if (!text.empty()) {
      OfferForList(column == radio::ChannelGrid::Artist ? "Artist" : "Song", text);
      return;
    }
  }
  PutSelectionBack();
}

bool ChannelChooser::Close() {
  if (quitFlag_ || run_.ShuttingDown) return true;
  ClearChannelListing();
  return false;
}

void ChannelChooser::Quit() {
  tmrChannelChange_->SetEnabled(false);
  quitFlag_ = true;
}

bool ChannelChooser::RefuseWhileRecording() {
  if (!getRecordingStatus_()) return false;
  Refuse();
  return true;
}

void ChannelChooser::Refuse() {
  sounds_.Play("SystemAsterisk");
  PutSelectionBack();
}

void ChannelChooser::PutSelectionBack() {
  channels_.Grid().Select(Grid().FindRow(channels_.ChannelNumber()));
}

void ChannelChooser::tmrChannelChange_Timer() {
  tmrChannelChange_->SetEnabled(false);
  if (quitFlag_) return;
  tmrChannelChange_->SetInterval(kChangeDelay);
  if (tmrUpdate_.Enabled()) {
    Tune(pendingChannel_, [this] {
      if (!quitFlag_) Refuse();
    });
    return;
  }
  tmrChannelChange_->SetInterval(kNextTry);
  tmrChannelChange_->SetEnabled(true);
}

}  // namespace kestrune::presenters
