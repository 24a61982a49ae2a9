#include "recorder/ClockWatch.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "base/DatePattern.h"

namespace kestrune::recorder {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// 45 minutes are "0:45:00".
std::string Hours(seconds length) {
  const std::int64_t count = length.count();
  return fmt::format("{}:{:02}:{:02}", count / 3600, count / 60 % 60, count % 60);
}

std::string Time(base::DateValue moment) {
  return base::FormatDate(moment, "h:nn");
}

}  // namespace

ClockWatch::ClockWatch(const State& state, Chronicle& chronicle, base::EventLoop& loop,
                       base::Journal& journal)
    : state_(state),
      chronicle_(chronicle),
      loop_(loop),
      journal_(journal),
      tmrLook_(loop.MakeTimer(kLook, [this] { Look(); })) {}

void ClockWatch::Start() {
  last_ = Read();
  tmrLook_->SetEnabled(true);
}

ClockWatch::Clocks ClockWatch::Read() const {
  return {.Steady = loop_.SteadyNow(),
          .Boot = loop_.BootNow(),
          .Universal = loop_.UniversalNow(),
          .Wall = loop_.Now()};
}

void ClockWatch::Look() {
  const Clocks before = std::exchange(last_, Read());
  if (!state_.Settings.Watch) return;
  const milliseconds passed = last_.Boot - before.Boot;
  const milliseconds slept = passed - (last_.Steady - before.Steady);
  const milliseconds step = last_.Universal - before.Universal - passed;
  const bool stepped = std::chrono::abs(step) > kNoticeable;
  const auto by = stepped ? std::chrono::round<seconds>(step) : seconds(0);
  const base::DateValue unset = last_.Wall.AddSeconds(-by.count());
  if (slept > kNoticeable) SaySleep(before.Wall, unset, std::chrono::round<seconds>(slept));
  if (stepped) SayStep(unset, last_.Wall, by);
}

void ClockWatch::SaySleep(base::DateValue from, base::DateValue to, seconds lasted) {
  const std::string length = Hours(lasted);
  journal_.DoLog(fmt::format("The computer slept for {}, from {} to {}", length, Time(from), Time(to)));
  chronicle_.Happened(platform::IncidentKind::Sleep, from, to, lasted,
                      fmt::format("the computer slept for {}, from {} to {}", length, Time(from), Time(to)));
}

void ClockWatch::SayStep(base::DateValue from, base::DateValue to, seconds by) {
  const std::string length = Hours(std::chrono::abs(by));
  const std::string_view way = by.count() < 0 ? "back" : "forward";
  journal_.DoLog(fmt::format("The clock was set {} {}, from {} to {}", length, way, Time(from), Time(to)));
  // What the clock went past, or shows twice; nothing of it really passed.
  chronicle_.Happened(
      platform::IncidentKind::ClockStep, std::min(from, to), std::max(from, to), seconds(0),
      fmt::format("the clock was set {} {}, from {} to {}", length, way, Time(from), Time(to)));
}

}  // namespace kestrune::recorder
