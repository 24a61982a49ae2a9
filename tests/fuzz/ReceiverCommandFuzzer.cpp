// Any bytes may come to the virtual receiver, in pieces of any size. It finds the same commands in them however they are divided,
// what an honest receiver answers are whole frames, and one that misbehaves writes its log all the same.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "radio/line/FrameReader.h"
#include "receiver/CommandReader.h"
#include "receiver/VirtualReceiver.h"

namespace {

using namespace kestrune::receiver;
using std::chrono::milliseconds;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// The first byte seeds the sizes of the pieces.
std::vector<std::string_view> Pieces(std::string_view input) {
  std::vector<std::string_view> pieces;
  std::uint32_t seed = static_cast<unsigned char>(input.front());
  input.remove_prefix(1);
  while (!input.empty()) {
    seed = seed * 1664525U + 1013904223U;
    pieces.push_back(input.substr(0, 1 + (seed >> 24U) % 24));
    input.remove_prefix(pieces.back().size());
  }
  return pieces;
}

void CompareDivisions(const std::vector<std::string_view>& pieces, std::string_view whole) {
  CommandReader divided;
  CommandReader undivided;
  std::vector<Command> commands;
  for (const std::string_view piece : pieces) {
    const std::vector<Command> found = divided.Feed(piece);
    commands.insert(commands.end(), found.begin(), found.end());
  }
  const std::vector<Command> same = undivided.Feed(whole);
  Require(commands.size() == same.size());
  std::size_t bytes = static_cast<std::size_t>(divided.SkippedBytes());
  for (std::size_t i = 0; i < commands.size(); ++i) {
    Require(commands[i].Payload == same[i].Payload && commands[i].Trailer == same[i].Trailer);
    Require(!commands[i].Payload.empty() && commands[i].Trailer.size() == 2);
    bytes += commands[i].Payload.size() + 6;
  }
  constexpr std::size_t kLongestUnfinished = 4 + 64 + 1;
  Require(bytes <= whole.size() && whole.size() - bytes <= kLongestUnfinished);
}

/// All that it sends until nothing is left.
std::string Talk(VirtualReceiver& receiver, const std::vector<std::string_view>& pieces) {
  std::string sent;
  milliseconds now{0};
  for (const std::string_view piece : pieces) {
    receiver.Receive(now, piece);
    receiver.Observe(now);
    now += milliseconds(37);
    sent += receiver.Send(now);
  }
  while (const auto next = receiver.NextByte()) sent += receiver.Send(*next + std::chrono::seconds(1));
  return sent;
}

void RequireFrames(const std::vector<std::string_view>& pieces) {
  VirtualReceiver receiver(BuiltInLineUp(), {});
  const std::string sent = Talk(receiver, pieces);
  kestrune::radio::FrameReader reader;
  reader.BeginRun();
  reader.Append(sent);
  std::string frame;
  while (reader.Next(frame) == kestrune::radio::FrameStep::Frame) Require(frame.size() >= 7);
  Require(reader.JunkBytes() == 0 && reader.Pending().empty());
  Require(receiver.Stations().Find(receiver.Model().TunedChannel()) != nullptr);
}

void RequireLog(const std::vector<std::string_view>& pieces) {
  ReceiverOptions options;
  options.Seed = pieces.size();
  for (const MisbehaviourName& name : MisbehaviourNames())
    options.Misbehaviours.push_back({.Name = std::string(name.Name), .Rate = 0.2});
  std::ostringstream written;
  JsonLines log(written);
  VirtualReceiver receiver(BuiltInLineUp(), options, &log);
  static_cast<void>(Talk(receiver, pieces));
  std::istringstream lines(written.str());
  for (std::string line; std::getline(lines, line);) {
    const auto object = nlohmann::json::parse(line, nullptr, false);
    Require(object.is_object() && object.contains("time") && object.contains("event"));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string input(data, data + size);
  const auto pieces = Pieces(input);
  CompareDivisions(pieces, std::string_view(input).substr(1));
  RequireFrames(pieces);
  RequireLog(pieces);
  return 0;
}
