#include "radio/channels/Channels.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Text.h"

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

constexpr std::int16_t kEndOfList = 0;
constexpr std::int16_t kFirstChannel = 1;     // comes without a genre
constexpr std::int16_t kUnlistedChannel = 2;  // never shown
constexpr std::int16_t kWalkEnds = 3;         // EnumPass after two passes through the list
constexpr std::int16_t kFewestChannels = 10;  // fewer are a failed load
constexpr auto kLostReply = 2s;

}  // namespace

Channels::Channels(RadioState& state, base::RunState& run, const Parts& parts, ChannelEvents& events)
    : state_(state),
      run_(run),
      link_(parts.Link),
      loop_(parts.Loop),
      journal_(parts.Journal),
      events_(events),
      listFile_(parts.Files) {}

void Channels::SetUpGrid() {
  grid_.Enabled = false;
  grid_.FormSetup();
}

// The saved list.

void Channels::LoadChannels() {
  if (!listFile_.Exists()) return;
  table_.Clear();
  grid_.Clear();
  grid_.FormSetup();
  for (ChannelEntry& entry : listFile_.Read()) {
    if (!table_.Add(entry)) break;
    AddToGrid(entry);
  }
}

void Channels::SaveChannels() {
  if (state_.PoorChannelList) {
    base::Ignored(listFile_.Remove());
    return;
  }
  std::vector<ChannelEntry> entries;
  for (int slot = 1; slot <= table_.ChannelCount(); ++slot) {
    if (table_.At(slot).Number != 0) entries.push_back(table_.At(slot));
  }
  std::stable_sort(entries.begin(), entries.end(),
                   [](const ChannelEntry& a, const ChannelEntry& b) { return a.Number < b.Number; });
  loop_.PumpEvents();
  base::Ignored(listFile_.Write(entries));
}

void Channels::SaveAtExit() {
  if (walkEnded_ || state_.PoorChannelList) SaveChannels();
}

// Asking.

void Channels::StartWalk() {
  run_.FormLoading = false;
  state_.ChannelsLoading = true;
  state_.EnumPass = 1;
  // What the radio had the last time is the best guess at what it has now.
  state_.Load = {.Expected = table_.ChannelCount()};
  link_.AskForChannelAfter(0);
}

void Channels::RepeatWalk() {
  if (state_.ChannelsLoading) return;
  walkingAgain_ = true;
  walkCursor_ = 0;
}

void Channels::RequestChannelInfo() {
  if (run_.FormLoading || run_.ShuttingDown) return;
  if (link_.Session().pcrWaitingForResponse() && loop_.SteadyNow() - state_.LastInfoRequest < kLostReply)
    return;
  loop_.PumpEvents();
  stepAsked_ = false;
  if (state_.ChannelsLoading) {
    Trace("InitEnum ", state_.EnumCursor);
    link_.AskForChannelAfter(state_.EnumCursor);
  } else if (TunedIsNext()) {
    state_.PollTunedNext = false;
    ++tunedInARow_;
    Trace("", state_.ChannelNumber);
    link_.AskForChannel(state_.ChannelNumber);
  } else if (walkingAgain_) {
    tunedInARow_ = 0;
    state_.PollTunedNext = stepAsked_ = true;
    Trace("EnumAgain ", walkCursor_);
    link_.AskForChannelAfter(walkCursor_);
  } else {
    tunedInARow_ = 0;
    state_.PollTunedNext = true;
    ++state_.EnumCursor;
    if (state_.EnumCursor > table_.ChannelCount()) state_.EnumCursor = 1;
    Trace("Enum ", state_.EnumCursor);
    link_.AskForChannel(table_.At(state_.EnumCursor).Number);
  }
  state_.LastInfoRequest = loop_.SteadyNow();
}

void Channels::Trace(std::string_view what, std::int16_t number) {
  if (journal_.Tracing()) journal_.Trace(fmt::format("#RequestChannelInfo {}{}", what, number));
}

// Replies.

void Channels::pcrChannelInfoReceived(const ChannelInfo& info) {
  state_.LastInfoRequest = loop_.SteadyNow();
  if (run_.ShuttingDown) return;
  if (stepAsked_) WalkAgainOn(info.Channel);
  if (info.Channel == kUnlistedChannel) {
    if (state_.ChannelsLoading) state_.EnumCursor = kUnlistedChannel;
    return;
  }
  state_.InfoBusy = true;
  HandleReply(info);
  state_.InfoBusy = false;
}

void Channels::HandleReply(const ChannelInfo& info) {
  if (state_.ChannelsLoading && WalkOn(info.Channel)) return;
  if (info.Channel == kEndOfList) return;
  if (table_.ChannelIndex(info.Channel) == 0) {
    AddChannel(info);
    return;
  }

  const bool changed = UpdateEntry(info);
  loop_.PumpEvents();
  const bool songKnown = !state_.CurrentArtist.empty() && !state_.CurrentSong.empty();
  if (!changed && songKnown && !state_.ChannelChanged) return;

  const int row = ShowInGrid(info.Channel);
  if (info.Channel != state_.ChannelNumber) return;
  state_.ChannelChanged = false;
  state_.CurrentArtist = info.Artist;
  state_.CurrentSong = info.Song;
  // The slot with the number of the grid row: under another order than by number it is another channel's.
  events_.ShowChannel(table_.At(row));
  loop_.PumpEvents();
}

// A step of the walk; true if the reply was the end of the list, which holds no channel.
bool Channels::WalkOn(std::int16_t channel) {
  CountStep(channel);
  state_.EnumCursor = channel;
  grid_.Enabled = true;
  if (channel != kEndOfList) return false;
  ++state_.EnumPass;
  if (state_.EnumPass == kWalkEnds) {
    FinishWalk();
  } else {
    link_.AskForChannelAfter(0);
  }
  return true;
}

// A reply that comes twice is one step.
void Channels::CountStep(std::int16_t channel) {
  ChannelLoad& load = state_.Load;
  if (channel == kEndOfList) {
    if (!load.Checking) load = {.Checking = true, .Expected = load.Done};
  } else if (channel != state_.EnumCursor) {
    ++load.Done;
    if (load.Expected != 0) load.Expected = std::max(load.Expected, load.Done);
  }
}

// A late reply to another request can skip some channels; the polling has them all the same, unless they are new.
void Channels::WalkAgainOn(std::int16_t channel) {
  stepAsked_ = false;
  if (channel > walkCursor_) {
    walkCursor_ = channel;
  } else if (channel == kEndOfList) {
    walkingAgain_ = false;
    SaveChannels();
  }
}

void Channels::AddChannel(const ChannelInfo& info) {
  ChannelEntry entry{.Number = info.Channel,
                     .Station = info.Station,
                     .Genre = info.Channel == kFirstChannel ? std::string() : info.Genre,
                     .Artist = info.Artist,
                     .Song = info.Song,
                     .Seen = true};
  if (!table_.Add(entry)) return;
  AddToGrid(entry);
  loop_.PumpEvents();
}

void Channels::AddToGrid(const ChannelEntry& entry) {
  grid_.IgnoreMove = true;
  grid_.AddRow(entry);
  if (entry.Number == state_.ChannelNumber) grid_.Select(grid_.RowCount());
  grid_.IgnoreMove = false;
}

// True if the channel plays something different from before.
bool Channels::UpdateEntry(const ChannelInfo& info) {
  ChannelEntry& entry = *table_.Find(table_.ChannelIndex(info.Channel));
  const bool changed = info.Artist != entry.Artist || info.Song != entry.Song;
  entry.Station = info.Station;
  entry.Genre = info.Genre;
  entry.Artist = info.Artist;
  entry.Song = info.Song;
  entry.Seen = true;
  if (ChannelEntry* first = table_.Find(table_.ChannelIndex(kFirstChannel))) first->Genre.clear();
  return changed;
}

// The row of the channel, 0 if it has none.
int Channels::ShowInGrid(std::int16_t channel) {
  const int row = grid_.FindRow(channel);
  if (row == 0) return 0;
  const ChannelEntry& entry = table_.At(table_.ChannelIndex(channel));
  grid_.IgnoreMove = true;
  if (!entry.Station.empty()) grid_.SetCell(row, ChannelGrid::Station, " " + entry.Station);
  grid_.SetCell(row, ChannelGrid::Artist, " " + entry.Artist);
  grid_.SetCell(row, ChannelGrid::Song, " " + entry.Song);
  grid_.SetCell(row, ChannelGrid::Genre, " " + entry.Genre);
  grid_.IgnoreMove = false;
  return row;
}

// The end of the walk.

void Channels::FinishWalk() {
  state_.ChannelsLoading = false;
  walkEnded_ = true;
  journal_.DoLog(fmt::format("Channels loaded: {}", table_.ChannelCount()));
  RemoveStaleChannels();
  if (table_.ChannelCount() < kFewestChannels) {
    SetChannelNumber(kFirstChannel);
    state_.PoorChannelList = true;
  }
  SaveChannels();
  events_.WalkFinished();
}

void Channels::RemoveStaleChannels() {
  const int rows = grid_.RowCount();
  for (int row = 1; row <= rows && row <= grid_.RowCount(); ++row) {
    const int slot = table_.ChannelIndex(grid_.NumberAt(row));
    if (table_.At(slot).Seen) continue;
    // The next row moves up to this place and is skipped: it stays until the next start.
    grid_.RemoveRow(row);
    table_.Remove(slot);
  }
}

// The tuned channel.

void Channels::SetChannelNumber(std::int16_t number) {
  if (number == state_.ChannelNumber) return;
  state_.ChannelNumber = number;
  events_.ShowTunedChannel(number, table_.At(table_.ChannelIndex(number)));
  events_.ShowBareTitle();
  loop_.PumpEvents();
  state_.ChannelChanged = true;
  base::Ignored(link_.SelectChannel(number));
  events_.ChannelTuned();
  grid_.IgnoreMove = true;
  grid_.Select(grid_.FindRow(number));
  grid_.IgnoreMove = false;
}

const ChannelEntry* Channels::TunedRow() const {
  const int slot = table_.ChannelIndex(state_.ChannelNumber);
  return slot == 0 ? nullptr : &table_.At(slot);
}

void Channels::CopyRadioText() {
  const RadioSession& session = link_.Session();
  const std::int16_t channel = session.pcrChannel();
  ChannelEntry* entry = table_.Find(table_.ChannelIndex(channel));
  if (entry == nullptr) return;
  entry->Artist = session.pcrArtist();
  entry->Song = session.pcrSong();
  const int row = grid_.FindRow(channel);
  if (row == 0) return;
  grid_.IgnoreMove = true;
  grid_.SetCell(row, ChannelGrid::Artist, " " + entry->Artist + " ");
  grid_.SetCell(row, ChannelGrid::Song, " " + entry->Song + " ");
  if (base::Trim(grid_.At(row)[ChannelGrid::Station]).empty() && !session.pcrStation().empty()) {
    grid_.SetCell(row, ChannelGrid::Station, " " + session.pcrStation() + " ");
  }
  grid_.IgnoreMove = false;
}

}  // namespace kestrune::radio
