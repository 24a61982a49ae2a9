#pragma once

#include <chrono>
#include <cstdint>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "recorder/SongBoundary.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Gives the capture in hand a new file where no change of song does: when its file takes no more sound, and when
/// nobody wants the capture and it has grown for IdleCaptureMinutes. Does nothing while the setting Watch is off.
class CaptureWatch {
 public:
  /// A file that cannot be written is followed by another one at once, and then every ten seconds.
  static constexpr std::chrono::seconds kNextTry{10};
  /// What a file must have taken before the failure counts as over: more than the buffers between here and the disk.
  static constexpr std::int64_t kProofMs = 2000;

  /// All must outlive the object.
  CaptureWatch(State& state, SongBoundary& boundary, const base::EventLoop& loop, base::Journal& journal);

  /// A step of the update tick. Events run inside it when a piece is kept.
  void Look();

 private:
  void LookForFailure(const CaptureRecord& capture);
  [[nodiscard]] bool TooLongForNobody(const CaptureRecord& capture) const;

  State& state_;
  SongBoundary& boundary_;
  const base::EventLoop& loop_;
  base::Journal& journal_;

  bool failing_ = false;
  std::chrono::milliseconds since_{0};
  std::chrono::milliseconds nextTry_{0};
};

}  // namespace kestrune::recorder
