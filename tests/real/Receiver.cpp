#include "real/Receiver.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "real/Waiting.h"

namespace kestrune::test {
namespace {

using Json = nlohmann::json;

Json LineUpJson(const std::vector<LineUpStation>& stations) {
  Json list = Json::array();
  for (const LineUpStation& station : stations) {
    Json songs = Json::array();
    for (const LineUpSong& song : station.Songs) {
      Json& made =
          songs.emplace_back(Json{{"artist", song.Artist}, {"title", song.Title}, {"length", song.Seconds}});
      if (!song.Join.empty()) made["join"] = song.Join;
      if (song.Lead) made["lead"] = *song.Lead;
    }
    list.push_back(
        {{"number", station.Number}, {"name", station.Name}, {"genre", station.Genre}, {"songs", songs}});
  }
  return {{"stations", list}};
}

}  // namespace

Receiver::Receiver(std::string folder, Setup setup) : folder_(std::move(folder)), setup_(std::move(setup)) {
  std::filesystem::create_directories(folder_);
  std::ofstream(folder_ + "/line-up.json") << LineUpJson(setup_.Stations).dump();
  Start();
}

void Receiver::Start() {
  std::filesystem::remove(Link());
  Command command{"kestrune-radio",
                  {"--link", Link(), "--sound", setup_.Sound, "--signal", setup_.Signal, "--line-up",
                   folder_ + "/line-up.json", "--jsonl", folder_ + "/events.jsonl"},
                  setup_.Environment};
  command.Arguments.insert(command.Arguments.end(), setup_.Arguments.begin(), setup_.Arguments.end());
  process_ = std::make_unique<Process>(command);
  const bool ready =
      WaitUntil(20s, [this] { return std::filesystem::exists(Link()) || !process_->Running(); });
  if (!ready || !process_->Running()) {
    throw std::runtime_error("kestrune-radio does not start: " + process_->Errors());
  }
}

void Receiver::Kill() {
  process_->Signal(SIGKILL);
  static_cast<void>(process_->Wait(10s));
}

std::vector<Json> Receiver::Events() const {
  std::ifstream file(folder_ + "/events.jsonl");
  std::vector<Json> events;
  for (std::string line; std::getline(file, line);) {
    Json event = Json::parse(line, nullptr, false);
    if (!event.is_discarded()) events.push_back(std::move(event));
  }
  return events;
}

std::vector<Json> Receiver::Events(std::string_view event) const {
  std::vector<Json> chosen;
  for (Json& one : Events()) {
    if (one.value("event", "") == event) chosen.push_back(std::move(one));
  }
  return chosen;
}

}  // namespace kestrune::test
