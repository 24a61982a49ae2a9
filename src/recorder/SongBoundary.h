#pragma once

#include <cstddef>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "radio/channels/Channels.h"
#include "recorder/Announcer.h"
#include "recorder/Capture.h"
#include "recorder/CutChooser.h"
#include "recorder/Disposition.h"
#include "recorder/SongFiles.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// The moment at which one song gives way to the next: the capture is cut, the next one begins, and the
/// finished one meets its fate.
///
/// While songs are cut by listening, a change of text only begins a boundary: the run goes on with the next song at once,
/// and the file of the one before is cut some ten seconds later, when the sound has shown where it ended. Some changes may
/// come meanwhile; each cut has its ten seconds. Whatever else cuts the sound settles them all first, with what was heard
/// so far.
class SongBoundary {
 public:
  /// What a boundary works on. All must outlive the object.
  struct Parts {
    radio::Channels& Channels;
    recorder::Capture& Capture;
    CutChooser& Cuts;
    recorder::Disposition& Disposition;
    recorder::Announcer& Announcer;
    recorder::Chronicle& Chronicle;
    recorder::Shelving& Shelving;
    base::Journal& Journal;
  };

  SongBoundary(State& state, const Parts& parts, SongFiles& songFiles, base::EventLoop& loop);

  /// `split`: songs are split into files, so that this may be a natural change of song.
  void Take(bool split);

  /// The most cuts that are awaited at a time; one more change settles the first of them.
  static constexpr std::size_t kMostAwaited = 4;

  /// A step of the update tick: carries out the first cut that is awaited, once it can be. Events run inside it then.
  void FollowCuts();
  /// Chooses all cuts that are awaited in what was heard up to now: what follows is of no use for them.
  void ChooseCuts();
  /// Carries out all cuts that are awaited. Events run inside it.
  void SettleCuts();

  /// Ends the file in hand in the middle of its song, keeps it as an incomplete piece if it is to be kept and long
  /// enough to be heard, and begins another file for the rest of the song. Events run inside it.
  void TakePiece();

  /// The program closes, and the capture in hand has been stopped: it is kept if a user asked for it, and else left to
  /// the shelf, or to be removed.
  void TakeLast();

  /// Brings what the cycle last acted on up to what the radio reports now.
  void FollowCurrentSong();

 private:
  void AwaitSound();
  /// Goes on with the next song, and leaves the cut to be chosen. False if this change cannot be cut that way.
  [[nodiscard]] bool TakeByListening();
  [[nodiscard]] bool Listens() const;
  /// Chooses one of the awaited cuts, the number of which is `index`, if it is not chosen yet.
  void Choose(std::size_t index);
  void SettleFirstCut();
  void NameNextSong(CaptureRecord& next);
  /// Nobody was recording what the capture holds. `whole`: it began and ended at a boundary.
  void DisposeUnwanted(CaptureRecord& capture, bool whole);
  [[nodiscard]] SongName MakePlace(const CaptureRecord& capture);
  void ShowRecording();
  [[nodiscard]] const radio::ChannelEntry& Tuned() const;

  const State& all_;
  RecordingState& state_;
  const config::Settings& settings_;
  radio::Channels& channels_;
  const radio::RadioState& radio_;
  Capture& capture_;
  CutChooser& cuts_;
  Disposition& disposition_;
  Announcer& announcer_;
  Chronicle& chronicle_;
  Shelving& shelving_;
  base::Journal& journal_;
  SongFiles& songFiles_;
  base::EventLoop& loop_;
};

}  // namespace kestrune::recorder
