#pragma once

#include <cstdint>

#include "base/EventLoop.h"
#include "radio/channels/Channels.h"
#include "recorder/Announcer.h"
#include "recorder/Capture.h"
#include "recorder/Disposition.h"
#include "recorder/SongFiles.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// The moment at which one song gives way to the next: the capture is cut, the next one begins, and the
/// finished one meets its fate.
class SongBoundary {
 public:
  /// What a boundary works on. All must outlive the object.
  struct Parts {
    radio::Channels& Channels;
    recorder::Capture& Capture;
    recorder::Disposition& Disposition;
    recorder::Announcer& Announcer;
    recorder::Chronicle& Chronicle;
  };

  SongBoundary(State& state, const Parts& parts, SongFiles& songFiles, base::EventLoop& loop);

  /// `split`: songs are split into files, so that this may be a natural change of song.
  void Take(bool split);

  /// Ends the file in hand in the middle of its song, keeps it as an incomplete piece if it is to be kept and long
  /// enough to be heard, and begins another file for the rest of the song. Events run inside it.
  void TakePiece();

  /// Brings what the cycle last acted on up to what the radio reports now.
  void FollowCurrentSong();

 private:
  void AwaitSound();
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
  Disposition& disposition_;
  Announcer& announcer_;
  Chronicle& chronicle_;
  SongFiles& songFiles_;
  base::EventLoop& loop_;
};

}  // namespace kestrune::recorder
