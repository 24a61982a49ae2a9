#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "config/formats/FileSpecs.h"
#include "platform/Files.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Notices that the disk of the recordings will be full soon: less than 1 GiB is free, or the chosen format fills it
/// within two hours. Said once, with the time that is left, until there is room again. Does nothing while the setting
/// Watch is off.
class DiskWatch {
 public:
  static constexpr double kEnoughBytes = 1024.0 * 1024 * 1024;
  static constexpr std::int64_t kEnoughSeconds = 7200;

  /// All must outlive the object.
  DiskWatch(State& state, const config::FileSpecs& fileSpecs, const platform::Files& files,
            base::EventLoop& loop, base::Journal& journal);

  /// Looks at once, and then once a minute.
  void Start();
  void Stop() { tmrLook_->SetEnabled(false); }

 private:
  void Look();

  State& state_;
  const config::FileSpecs& fileSpecs_;
  const platform::Files& files_;
  base::Journal& journal_;
  std::unique_ptr<base::Timer> tmrLook_;
};

/// "room for 1:40", in hours and minutes.
[[nodiscard]] std::string RoomFor(std::int64_t seconds);

}  // namespace kestrune::recorder
