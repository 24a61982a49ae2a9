#include "recorder/DiskWatch.h"

#include <chrono>
#include <cstdint>

#include <fmt/format.h>

#include "platform/CaptureFormat.h"

namespace kestrune::recorder {
namespace {

constexpr std::chrono::seconds kLookInterval{60};

}  // namespace

std::string RoomFor(std::int64_t seconds) {
  return fmt::format("room for {}:{:02}", seconds / 3600, seconds / 60 % 60);
}

DiskWatch::DiskWatch(State& state, const config::FileSpecs& fileSpecs, const platform::Files& files,
                     base::EventLoop& loop, base::Journal& journal)
    : state_(state),
      fileSpecs_(fileSpecs),
      files_(files),
      journal_(journal),
      tmrLook_(loop.MakeTimer(kLookInterval, [this] { Look(); })) {}

void DiskWatch::Start() {
  Look();
  tmrLook_->SetEnabled(true);
}

void DiskWatch::Look() {
  std::string& little = state_.Watch.LittleRoom;
  const config::Settings& settings = state_.Settings;
  const double free = settings.Watch ? files_.FreeBytes(settings.FileDir) : -1;
  const std::int64_t rate = platform::BytesPerSecond(fileSpecs_.Format());
  // A folder that is not there yet, and a format of unknown size, are no reason to worry.
  if (free < 0 || rate <= 0) return little.clear();
  const auto seconds = static_cast<std::int64_t>(free / static_cast<double>(rate));
  if (free >= kEnoughBytes && seconds >= kEnoughSeconds) return little.clear();
  const bool said = !little.empty();
  little = RoomFor(seconds);
  if (!said) journal_.DoLog(fmt::format("Little space on the disk of \"{}\": {}", settings.FileDir, little));
}

}  // namespace kestrune::recorder
