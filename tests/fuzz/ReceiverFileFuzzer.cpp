// Any text may be the line-up or the trace that a virtual receiver is given. A line-up that is taken is one that can be played; of
// a trace every byte is sent once, in its order.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "receiver/LineUp.h"
#include "receiver/ReceiverModel.h"
#include "receiver/Timeline.h"
#include "receiver/TraceReplay.h"
#include "receiver/VirtualReceiver.h"

namespace {

using namespace kestrune::receiver;
using std::chrono::milliseconds;

void Require(bool holds) {
  if (!holds) std::abort();
}

void RequirePlays(const Station& station) {
  for (const milliseconds time :
       {milliseconds(0), milliseconds(1), milliseconds(600'000), milliseconds(86'400'000)}) {
    const Playing playing = PlayingAt(station, time);
    const Playing text = TextAt(station, time, milliseconds(600));
    Require((playing.What == nullptr) == station.Songs.empty());
    Require((text.What == nullptr) == station.Songs.empty());
    if (playing.What == nullptr) continue;
    Require(playing.Start <= time && time < playing.End);
    Require(playing.End - playing.Start == playing.What->Length);
    Require(&station.Songs.at(playing.Index) == playing.What);
    Require(text.Start - text.What->Lead.value_or(milliseconds(600)) <= time);
  }
}

void ReadLineUp(std::string_view text) {
  LineUpResult read = LineUpFromJson(text);
  if (!read.Error.empty()) {
    Require(read.Value.Stations.empty());
    Require(read.Error.find('\n') == std::string::npos);
    return;
  }
  int before = 0;
  for (const Station& station : read.Value.Stations) {
    Require(station.Number > before && station.Number <= 255);
    before = station.Number;
    Require(read.Value.Find(station.Number) == &station);
    RequirePlays(station);
  }
  Require(read.Value.After(before) == nullptr);
  ReceiverModel model(read.Value, {});
  // Channel info of the next channel, from the first on.
  for (int channel = 0; channel < 255; channel += 16) {
    const std::string asked{0x25, 0x09, static_cast<char>(channel), 0};
    for (const std::string& frame : model.Answer(milliseconds(1000), asked)) Require(frame.size() == 79);
  }
}

void ReadTrace(std::string_view text) {
  TraceReplay replay(text);
  std::size_t frames = 0;
  std::size_t bytes = 0;
  while (const auto next = replay.Next()) {
    for (const std::string& frame : replay.Take(*next)) {
      Require(!frame.empty());
      bytes += frame.size();
      ++frames;
    }
  }
  Require(frames == replay.Frames());
  // Two digits a byte.
  Require(bytes * 2 <= text.size());

  VirtualReceiver receiver(BuiltInLineUp(), {});
  receiver.Replay(TraceReplay(text));
  receiver.Receive(milliseconds(0), "any byte");
  std::size_t sent = 0;
  while (const auto next = receiver.NextByte())
    sent += receiver.Send(std::max(*next, VirtualReceiver::Microseconds(0)) + std::chrono::hours(1)).size();
  Require(sent == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  ReadLineUp(text);
  ReadTrace(text);
  return 0;
}
