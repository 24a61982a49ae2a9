#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/Journal.h"
#include "config/formats/FileSpecs.h"
#include "recorder/AudioObjects.h"
#include "recorder/CutChooser.h"
#include "recorder/HeldBack.h"
#include "recorder/Modes.h"
#include "recorder/SongFiles.h"
#include "recorder/SoundMeter.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Starts and stops the two alternating captures and moves the sound into the one that is being written, at once or,
/// while songs are cut by listening, ten seconds late.
class Capture {
 public:
  /// What captures are made with. All must outlive the object.
  struct Parts {
    AudioObjects& Audio;
    SoundMeter& Meter;
    CutChooser& Cuts;
    config::FileSpecs& FileSpecs;
    recorder::SongFiles& SongFiles;
  };

  Capture(State& state, const Parts& parts, base::Journal& journal);

  /// Takes the block handler of a recorder that has just been made.
  void ConnectRecorder();

  /// All of the sound that is captured, block by block, as it comes; for the time of the call.
  using Listener =
      std::function<void(std::span<const std::int16_t> block, const platform::PcmFormat& format)>;
  void SetListener(Listener listener) { listener_ = std::move(listener); }

  /// The unit whose captures these are, empty for a single one; it becomes part of the temporary names.
  void SetMultiUnit(const std::string& multiUnit) { multiUnit_ = multiUnit; }

  /// Begins the slot's outcome and records into the file, or into the next one whose name nobody holds. `result` is
  /// negative on failure, which is logged and nothing more; a slot other than 0 or 1 opens nothing.
  void RecordStart(std::int16_t slot, const std::string& fileName, std::int32_t& result);

  /// Takes over the sound up to now, closes the slot's file and writes its tags. The file stays held.
  void RecordStop(std::int16_t slot);
  /// The same for a file whose song goes on in another one: what the file did not take is left for that.
  void StopPiece(std::int16_t slot);
  /// Lets go of the slot's file, once it is renamed or removed.
  void Release(std::int16_t slot);

  // A cut that is chosen by listening: the capture ends at a frame before now, or a little later.

  /// The number of the frame that comes from the input now, counted from the program's start.
  [[nodiscard]] std::int64_t FrameNow() const;
  /// How much sound has come since a frame, in milliseconds.
  [[nodiscard]] std::int64_t MsSince(std::int64_t frame) const;
  /// The song in hand ends at a frame around `cut.Stamp` that is still to be chosen, and joins the songs whose cuts are
  /// awaited; the capture of slot `next` begins there. Until CutOver the sound goes on to the file that is being
  /// written. False, with nothing done, if there is none, or if the next one wants sound of another form.
  [[nodiscard]] bool AwaitCut(std::int16_t next, AwaitedCut cut);
  /// Takes over the frame that was chosen for the first of the awaited cuts, as near as it can be had.
  void SetCut();
  /// Whether the file of that song has all its sound.
  [[nodiscard]] bool CutReached() const { return held_.CutReached(); }
  /// Closes that file at the frame that was set, and creates the next one. Returns the finished song, which awaits its
  /// cut no more; its file stays held.
  [[nodiscard]] AwaitedCut CutOver();

  /// Where a capture of the slot is to be created.
  [[nodiscard]] std::string TemporaryFile(std::int16_t slot) const {
    return TemporaryFile(slot, state_.CaptureSlots[static_cast<std::size_t>(slot)]);
  }
  /// A temporary name: "Capture", the number, the unit after a hyphen if there is one, a point and the extension. The
  /// number is the slot's, or a higher one of the same parity if that name was held.
  [[nodiscard]] std::string TemporaryName(int number, const std::string& extension) const;

 private:
  void AudioRecord_EndArrayRecord();
  [[nodiscard]] std::string TemporaryFile(std::int16_t slot, const CaptureRecord& record) const;
  [[nodiscard]] bool Listening() const { return settings_.CutPlacement == config::CutPlacement::Listen; }
  /// What is being written: the song in hand, or the first one whose cut is awaited.
  [[nodiscard]] std::int16_t WritingSlot() const {
    return state_.AwaitedCuts.empty() ? state_.CaptureSlot : state_.AwaitedCuts.front().Slot;
  }
  [[nodiscard]] CaptureRecord& Writing() {
    return state_.AwaitedCuts.empty() ? Record(state_.CaptureSlot) : state_.AwaitedCuts.front().Song;
  }
  /// Writes to that file.
  [[nodiscard]] HeldBack::File IntoFile();
  /// The song that is being written ends around the first awaited cut.
  void LimitFile();
  void BeginOutcome(CaptureRecord& record);
  void SetGain();
  [[nodiscard]] platform::NumberedResult StartRecorder(const platform::PcmFormat& format);
  /// Creates the file of a capture in a slot; the log has it if that fails.
  [[nodiscard]] platform::NumberedResult Open(std::int16_t slot, CaptureRecord& record, std::string path);
  /// `goesOn`: what the file did not take stays.
  void Stop(std::int16_t slot, bool goesOn);
  void Close(std::int16_t slot, CaptureRecord& record);
  void NoteLevel(CaptureOutcome& outcome) const;
  /// Keeps what the recorder knows of its last run, in frames from the program's start.
  void StopRecorder();
  /// Creates the file under the first name that nobody holds, beginning with `path`, which is that name afterwards.
  platform::NumberedResult CreateFree(std::int16_t slot, const CaptureRecord& record, std::string& path);
  /// Takes what is missing of frames `begin` to `end` into the outcome.
  void TakeSound(CaptureRecord& record, std::int64_t begin, std::int64_t end);
  void WriteTags(const CaptureRecord& record);
  /// Whether a failure to write has to be said: not again while the watch tries to write.
  [[nodiscard]] bool NewFailure(const std::string& cause);
  /// Keeps the first failure and logs it.
  void NoteWriting(CaptureRecord& record, const base::Result& written);
  [[nodiscard]] CaptureRecord& Record(std::int16_t slot) {
    return state_.CaptureSlots[static_cast<std::size_t>(slot)];
  }

  AudioObjects& audio_;
  SoundMeter& meter_;
  CutChooser& cuts_;
  RecordingState& state_;
  WatchState& watch_;
  config::FileSpecs& fileSpecs_;
  const config::Settings& settings_;
  const radio::RadioState& radio_;
  Modes modes_;
  SongFiles& songFiles_;
  base::Journal& journal_;
  const radio::LinkStatus& link_;
  std::string multiUnit_;
  HeldBack held_;
  platform::PcmFormat format_;     // of the capture that runs
  std::int64_t recorderFrom_ = 0;  // the first frame of the recorder's run
  bool recording_ = false;         // the recorder runs
  // Of the recorder's earlier runs, as far as a capture may still lack them.
  std::vector<platform::SoundGap> gaps_;
  Listener listener_;
};

}  // namespace kestrune::recorder
