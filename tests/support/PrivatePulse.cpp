#include "support/PrivatePulse.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <utility>

#include <unistd.h>

namespace kestrune::test {

namespace {

std::filesystem::path TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "kestrune-pulse-XXXXXX").string();
  return mkdtemp(name.data()) != nullptr ? std::filesystem::path(name) : std::filesystem::path();
}

}  // namespace

PrivatePulse::PrivatePulse(std::vector<std::string> modules)
    : folder_(TemporaryFolder()), modules_(std::move(modules)) {}

PrivatePulse::~PrivatePulse() {
  Kill();
  std::error_code error;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, error);
}

bool PrivatePulse::Installed() {
  return ChildProcess::Installed("pulseaudio") && ChildProcess::Installed("pactl") &&
         ChildProcess::Installed("pacat");
}

ChildProcess::Variables PrivatePulse::Environment() const {
  const std::string folder = folder_.string();
  return {{"PULSE_SERVER", Server()},
          {"HOME", folder},
          {"XDG_RUNTIME_DIR", folder},
          {"XDG_CONFIG_HOME", folder + "/config"},
          {"PULSE_RUNTIME_PATH", folder + "/run"},
          {"PULSE_STATE_PATH", folder + "/state"}};
}

bool PrivatePulse::Start() {
  if (folder_.empty()) return false;
  std::error_code error;
  std::filesystem::remove(Socket(), error);
  std::vector<std::string> command = {
      "pulseaudio",
      "-n",
      "--daemonize=no",
      "--system=no",
      "--use-pid-file=false",
      "--exit-idle-time=-1",
      "--disable-shm=yes",
      "--log-level=notice",
      "-L",
      "module-native-protocol-unix auth-anonymous=1 socket=" + Socket().string(),
      "-L",
      std::string("module-null-sink sink_name=") + kSink +
          " format=s16le rate=44100 channels=2 sink_properties=device.description=Radio"};
  for (const std::string& module : modules_) {
    command.insert(command.end(), {"-L", module});
  }
  server_ = ChildProcess(command, Environment(), (folder_ / "server.log").string());
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(15);
  while (server_.Running() && std::chrono::steady_clock::now() < end) {
    if (std::filesystem::exists(Socket(), error) && Control({"info"})) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return false;
}

void PrivatePulse::Kill() {
  server_.Kill();
}

bool PrivatePulse::Restart() {
  Kill();
  return Start();
}

ChildProcess PrivatePulse::Play(const std::filesystem::path& rawFile, const std::string& sink) const {
  return ChildProcess({"pacat", "--playback", "--raw", "--format=s16le", "--rate=44100", "--channels=2",
                       "--latency-msec=400", "--device=" + sink, rawFile.string()},
                      Environment());
}

bool PrivatePulse::Control(const std::vector<std::string>& words) const {
  std::vector<std::string> command = {"pactl"};
  command.insert(command.end(), words.begin(), words.end());
  ChildProcess control(command, Environment());
  return control.Wait(std::chrono::seconds(5)) == 0;
}

void WriteNumberedFrames(const std::filesystem::path& file, std::uint32_t count, std::uint32_t first,
                         std::uint32_t leadIn) {
  std::string bytes(std::size_t{leadIn} * 4, '\0');
  bytes.reserve((std::size_t{leadIn} + count) * 4);
  for (std::uint32_t frame = first; frame < first + count; ++frame) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(frame >> shift & 0xFF));
  }
  std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace kestrune::test
