#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

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
/// and the file of the one before is cut some ten seconds later, when the sound has shown where it ended. One cut at
/// most is awaited: whatever else cuts the sound settles it first, with what was heard so far.
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
    base::Journal& Journal;
  };

  SongBoundary(State& state, const Parts& parts, SongFiles& songFiles, base::EventLoop& loop);

  /// `split`: songs are split into files, so that this may be a natural change of song.
  void Take(bool split);

  /// A step of the update tick: carries out a cut that is awaited, once it can be. Events run inside it then.
  void FollowCut();
  /// Chooses the cut that is awaited in what was heard up to now: what follows is of no use for it.
  void ChooseCut();
  /// Carries out the cut that is awaited, if there is one. Events run inside it.
  void SettleCut();

  /// Ends the file in hand in the middle of its song, keeps it as an incomplete piece if it is to be kept and long
  /// enough to be heard, and begins another file for the rest of the song. Events run inside it.
  void TakePiece();

  /// Brings what the cycle last acted on up to what the radio reports now.
  void FollowCurrentSong();

 private:
  /// A song that has ended where the sound is to be cut.
  struct Awaited {
    std::int16_t Finished = 0;  ///< slot
    std::int16_t Channel = 0;
    std::int64_t Stamp = 0;  ///< the frame that was captured when the text changed
    std::chrono::milliseconds Since{0};
    bool Wanted = false;  ///< to be kept, if its fate allows it
    bool Chosen = false;
  };

  void AwaitSound();
  /// Goes on with the next song, and leaves the cut to be chosen. False if this change cannot be cut that way.
  [[nodiscard]] bool TakeByListening();
  [[nodiscard]] bool Listens() const;
  void NameNextSong(CaptureRecord& next);
  /// Nobody asked for what the capture holds.
  void DropUnwanted(CaptureRecord& capture);
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
  base::Journal& journal_;
  SongFiles& songFiles_;
  base::EventLoop& loop_;
  std::optional<Awaited> awaited_;
};

}  // namespace kestrune::recorder
