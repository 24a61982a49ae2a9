// Cuts a recording as the program would: cut_lab SOUND.wav CHANGES.jsonl > CUTS.jsonl
//
// SOUND has 1 or 2 channels of 16 bits, 44100 frames a second. CHANGES has one line a change, in order:
//   {"change": i, "sample": n, "artist": "..", "title": ".."}
// n is the frame of its stamp. CUTS has one line a change:
//   {"change": i, "sample": c, "reason": "gap|onset|novelty|lag|text", "confidence": 0..1, "lag_ms": .., "heard": frame}
// lag_ms is the cut minus the stamp, heard the last frame that the choice looked at: at most ten seconds
// after the stamp. What earlier changes have taught is all that is known beforehand; a change whose stamp lies
// more than two seconds before that of the one above it finds its sound gone, and is cut by the lag alone. --one-channel
// hears the mean of two channels.
#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sndfile.hh>

#include "cut/Listener.h"
#include "cutlab/Station.h"

namespace {

int Fail(const std::string& why) {
  fmt::print(stderr, "cut_lab: {}\n", why);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kestrune;
  std::vector<std::string> paths;
  bool oneChannel = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--one-channel") {
      oneChannel = true;
    } else {
      paths.push_back(word);
    }
  }
  if (paths.size() != 2) {
    fmt::print(stderr, "usage: cut_lab [--one-channel] SOUND.wav CHANGES.jsonl > CUTS.jsonl\n");
    return 2;
  }
  SndfileHandle file(paths[0]);
  if (!file) return Fail(paths[0] + ": " + file.strError());
  if (file.channels() > 2) return Fail(paths[0] + ": more than two channels");
  if (file.samplerate() < 8000 || file.samplerate() > 192000) {
    return Fail(paths[0] + ": not 8000 to 192000 frames a second");
  }
  std::ifstream changes(paths[1]);
  if (!changes) return Fail(paths[1] + ": cannot be read");

  const int channels = oneChannel ? 1 : file.channels();
  const std::int64_t rate = file.samplerate();
  cut::Listener listener(file.samplerate(), channels, 0);
  cut::LagModel station;
  std::vector<std::int16_t> samples;
  std::string line;
  for (int number = 1; std::getline(changes, line); ++number) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    const auto change = nlohmann::json::parse(line, nullptr, false);
    if (!change.is_object() || !change.contains("change") || !change.contains("sample") ||
        !change["sample"].is_number_integer()) {
      return Fail(fmt::format("{}:{}: not a change", paths[1], number));
    }
    // What comes later is not even read, so it cannot matter.
    const auto stamp = change["sample"].get<std::int64_t>();
    const std::int64_t end = std::min<std::int64_t>(file.frames(), stamp + rate * cut::kWantedAfterMs / 1000);
    while (listener.End() < end) {
      const std::int64_t frames = std::min(end - listener.End(), rate);
      samples.resize(static_cast<std::size_t>(frames * file.channels()));
      if (file.readf(samples.data(), frames) != frames) return Fail(paths[0] + ": cannot be read");
      listener.Hear(channels < file.channels() ? cutlab::Mean(samples) : samples);
    }
    const cut::Cut cut = listener.Choose(stamp, station);
    fmt::print(
        "{{\"change\": {}, \"sample\": {}, \"reason\": \"{}\", \"confidence\": {:.3f}, \"lag_ms\": {}, "
        "\"heard\": {}}}\n",
        change["change"].dump(), cut.Frame, cut::NameOf(cut.Reason), cut.Confidence, cut.LagMs, cut.Heard);
  }
  return 0;
}
