// Runs the real kestrune-radio and talks to it over its pseudo-terminal.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "WireBytes.h"

namespace kestrune::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kIdentifier = Bytes("\x5A\xA5\x00\x01\x31\xED\xED");
const std::string kIdentifierReply = Bytes("\x5A\xA5\x00\x0C\xB1\x01\x00\x01KSTR2605\x01\xCF");

/// Reads until that many bytes have come, the time is over or the line has ended.
std::string ReadFrom(int file, std::size_t size, milliseconds limit = seconds(10)) {
  std::string bytes;
  const auto end = steady_clock::now() + limit;
  while (bytes.size() < size) {
    const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
    pollfd state{file, POLLIN, 0};
    if (left.count() <= 0 || ::poll(&state, 1, static_cast<int>(left.count())) <= 0) break;
    char piece[65536];
    const ssize_t count = ::read(file, piece, std::min(sizeof piece, size - bytes.size()));
    if (count <= 0) break;
    bytes.append(piece, static_cast<std::size_t>(count));
  }
  return bytes;
}

/// A running program; what it prints is caught. It is killed at the end if it is still running.
class Program {
 public:
  explicit Program(std::vector<std::string> command) {
    int out[2];
    int errors[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(errors, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(out[1], STDOUT_FILENO);
      ::dup2(errors[1], STDERR_FILENO);
      std::vector<char*> arguments;
      arguments.reserve(command.size() + 1);
      for (std::string& argument : command) arguments.push_back(argument.data());
      arguments.push_back(nullptr);
      ::execvp(arguments[0], arguments.data());
      ::_exit(127);
    }
    ::close(out[1]);
    ::close(errors[1]);
    out_ = out[0];
    errors_ = errors[0];
  }
  ~Program() {
    if (process_ > 0) ::kill(process_, SIGKILL);
    static_cast<void>(Wait());
    ::close(out_);
    ::close(errors_);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  [[nodiscard]] std::string Line() const {
    std::string line;
    for (std::string byte = ReadFrom(out_, 1); !byte.empty() && byte != "\n"; byte = ReadFrom(out_, 1))
      line += byte;
    return line;
  }
  [[nodiscard]] std::string Read(std::size_t size) const { return ReadFrom(out_, size); }
  [[nodiscard]] std::string Output() const { return ReadFrom(out_, 1'000'000); }
  [[nodiscard]] std::string Errors() const { return ReadFrom(errors_, 1'000'000); }
  void Signal(int signal) const { ::kill(process_, signal); }
  /// The exit status, or minus the signal that ended it.
  int Wait() {
    if (process_ <= 0) return -1;
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  pid_t process_;
  int out_ = -1;
  int errors_ = -1;
};

/// The numbers of the frames of a raw recording of --signal counter.
std::vector<std::int64_t> CounterFrames(const std::string& bytes) {
  std::vector<std::uint16_t> samples(bytes.size() / 2);
  std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
  std::vector<std::int64_t> frames;
  for (std::size_t i = 0; i + 1 < samples.size(); i += 2) {
    frames.push_back(samples[i] + (std::int64_t{samples[i + 1]} << 16));
  }
  return frames;
}

std::vector<std::string> RadioWith(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), KESTRUNE_RADIO);
  return arguments;
}

/// The program's end of the line.
class Line {
 public:
  explicit Line(const std::string& path) : file_(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    termios line{};
    ::tcgetattr(file_, &line);
    ::cfmakeraw(&line);
    ::tcsetattr(file_, TCSANOW, &line);
  }
  ~Line() { ::close(file_); }
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  void Send(const std::string& bytes) const {
    EXPECT_EQ(::write(file_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  [[nodiscard]] std::string Receive(std::size_t size, milliseconds limit = seconds(10)) const {
    return ReadFrom(file_, size, limit);
  }

 private:
  int file_;
};

class RadioProgram : public ::testing::Test {
 protected:
  RadioProgram() {
    std::string name = (fs::temp_directory_path() / "radio-program-XXXXXX").string();
    Folder = ::mkdtemp(name.data());
  }
  ~RadioProgram() override { fs::remove_all(Folder); }

  void WriteFile(const std::string& name, const std::string& text) const {
    std::ofstream(Folder / name) << text;
  }
  [[nodiscard]] std::vector<nlohmann::json> Events(const std::string& name) const {
    std::vector<nlohmann::json> events;
    std::ifstream file(Folder / name);
    for (std::string line; std::getline(file, line);) events.push_back(nlohmann::json::parse(line));
    return events;
  }

  fs::path Folder;
};

TEST_F(RadioProgram, PrintsItsLineAndAnswersOnIt) {
  Program radio(RadioWith({}));
  const std::string path = radio.Line();
  EXPECT_THAT(path, StartsWith("/dev/pts/"));
  const Line line(path);
  line.Send(kIdentifier);
  EXPECT_EQ(line.Receive(kIdentifierReply.size()), kIdentifierReply);
}

TEST_F(RadioProgram, ATerminationEndsItCleanly) {
  for (const int signal : {SIGTERM, SIGINT}) {
    const fs::path link = Folder / "radio";
    const fs::path pipe = Folder / "sound";
    Program radio(RadioWith({"--link", link.string(), "--sound=pipe:" + pipe.string()}));
    const std::string path = radio.Line();
    EXPECT_EQ(fs::read_symlink(link), path);
    EXPECT_TRUE(fs::is_fifo(pipe));
    radio.Signal(signal);
    EXPECT_EQ(radio.Wait(), 0);
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_FALSE(fs::exists(pipe));
  }
}

TEST_F(RadioProgram, AnOldLinkIsReplacedButNothingElseIs) {
  const fs::path link = Folder / "radio";
  fs::create_symlink("/nowhere", link);
  {
    Program radio(RadioWith({"--link", link.string()}));
    const std::string path = radio.Line();
    EXPECT_EQ(fs::read_symlink(link), path);
    radio.Signal(SIGTERM);
    EXPECT_EQ(radio.Wait(), 0);
  }
  WriteFile("radio", "precious");
  Program radio(RadioWith({"--link", link.string()}));
  EXPECT_EQ(radio.Wait(), 1);
  EXPECT_THAT(radio.Errors(), HasSubstr("is there already and no symbolic link"));
  EXPECT_EQ(fs::file_size(link), 8U);
}

TEST_F(RadioProgram, GoesOnWhenTheLineIsClosedAndOpenedAgain) {
  Program radio(RadioWith({}));
  const std::string path = radio.Line();
  for (int round = 0; round < 3; ++round) {
    const Line line(path);
    line.Send(kIdentifier);
    EXPECT_EQ(line.Receive(kIdentifierReply.size()), kIdentifierReply);
  }
}

TEST_F(RadioProgram, AnAnswerToAClosedLineIsNotKeptForTheNextOpening) {
  Program radio(RadioWith({}));
  const std::string path = radio.Line();
  { Line(path).Send(kIdentifier); }
  std::this_thread::sleep_for(milliseconds(200));
  const Line line(path);
  EXPECT_EQ(line.Receive(1, milliseconds(200)), "");
}

TEST_F(RadioProgram, ItsBytesComeAtThePaceOfTheLine) {
  Program radio(RadioWith({"--baud", "300"}));
  const Line line(radio.Line());
  const auto start = steady_clock::now();
  line.Send(kIdentifier);
  EXPECT_EQ(line.Receive(kIdentifierReply.size()), kIdentifierReply);
  // 18 bytes of 10 bits at 300 bits a second.
  EXPECT_GE(steady_clock::now() - start, milliseconds(600));
}

TEST_F(RadioProgram, StartsPoweredOffIfAsked) {
  Program radio(RadioWith({"--off"}));
  const Line line(radio.Line());
  line.Send(kIdentifier);
  EXPECT_EQ(line.Receive(8), Bytes("\x5A\xA5\x00\x02\xFF\x31\x01\x31"));
  line.Send(Bytes("\x5A\xA5\x00\x05\x00\x10\x10\x10\x01\xED\xED"));
  EXPECT_EQ(line.Receive(33).substr(0, 5), Bytes("\x5A\xA5\x00\x1B\x80"));
  line.Send(kIdentifier);
  EXPECT_EQ(line.Receive(kIdentifierReply.size()), kIdentifierReply);
}

TEST_F(RadioProgram, MisbehavesAsAsked) {
  Program radio(RadioWith({"--misbehave=notice=1,corrupt=0"}));
  const Line line(radio.Line());
  line.Send(kIdentifier);
  const std::string expected = kIdentifierReply + Bytes("\x5A\xA5\x00\x03\xE3\x01\x00\x01\xE6");
  EXPECT_EQ(line.Receive(expected.size()), expected);
}

TEST_F(RadioProgram, ReplaysATrace) {
  WriteFile("trace", "100 > 31\n100.3 < 5A A5 01\n100.4 !Note\n100.5 < 02\n");
  Program radio(RadioWith({"--replay", (Folder / "trace").string()}));
  const Line line(radio.Line());
  const auto start = steady_clock::now();
  line.Send(kIdentifier);
  EXPECT_EQ(line.Receive(4), "\x5A\xA5\x01\x02");
  EXPECT_GE(steady_clock::now() - start, milliseconds(480));
  EXPECT_EQ(line.Receive(1, milliseconds(100)), "");
}

TEST_F(RadioProgram, TakesALineUpFromAFile) {
  WriteFile("stations", R"({"stations": [{"number": 77, "name": "Solo", "genre": "One"}]})");
  Program radio(RadioWith({"--line-up", (Folder / "stations").string()}));
  const Line line(radio.Line());
  line.Send(Bytes("\x5A\xA5\x00\x04\x25\x09\x00\x00\xED\xED"));
  const std::string reply = line.Receive(79);
  ASSERT_EQ(reply.size(), 79U);
  EXPECT_EQ(reply[7], '\x4D');
  EXPECT_EQ(reply.substr(10, 4), "Solo");
}

TEST_F(RadioProgram, EveryFrameOfTheSoundReachesThePipeOnceFromTheListenersComingOn) {
  const fs::path pipe = Folder / "sound";
  const fs::path log = Folder / "log";
  Program radio(RadioWith(
      {"--sound", "pipe:" + pipe.string(), "--signal", "counter", "--jsonl", log.string(), "--tuned", "8"}));
  static_cast<void>(radio.Line());
  const int file = ::open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  const std::string bytes = ReadFrom(file, 30000 * 4);
  ::close(file);
  ASSERT_EQ(bytes.size(), 120000U);
  const std::vector<std::int64_t> frames = CounterFrames(bytes);
  for (std::size_t i = 1; i < frames.size(); ++i) ASSERT_EQ(frames[i], frames[i - 1] + 1);
  std::this_thread::sleep_for(milliseconds(100));
  radio.Signal(SIGTERM);
  EXPECT_EQ(radio.Wait(), 0);
  std::vector<nlohmann::json> listeners;
  for (const auto& event : Events("log")) {
    if (event["event"] == "listener") listeners.push_back(event);
  }
  ASSERT_EQ(listeners.size(), 2U);
  EXPECT_TRUE(listeners[0]["on"]);
  EXPECT_EQ(listeners[0]["frame"], frames[0]);
  EXPECT_FALSE(listeners[1]["on"]);
}

TEST_F(RadioProgram, ItsSoundKeepsRealTime) {
  const fs::path pipe = Folder / "sound";
  Program radio(RadioWith({"--sound", "pipe:" + pipe.string(), "--signal", "tones"}));
  static_cast<void>(radio.Line());
  const int file = ::open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
  const auto start = steady_clock::now();
  EXPECT_EQ(ReadFrom(file, 22050 * 4).size(), 88200U);
  ::close(file);
  EXPECT_GE(steady_clock::now() - start, milliseconds(450));
}

TEST_F(RadioProgram, SoundGoesIntoAFileThatIsThereAlready) {
  WriteFile("sound.raw", "");
  Program radio(RadioWith(
      {"--sound", "pipe:" + (Folder / "sound.raw").string(), "--signal", "counter", "--duration", "0.5"}));
  EXPECT_EQ(radio.Wait(), 0);
  const auto size = fs::file_size(Folder / "sound.raw");
  EXPECT_EQ(size % 4, 0U);
  EXPECT_GT(size, 4U * 13230);
  EXPECT_LE(size, 4U * 22500);
}

TEST_F(RadioProgram, WritesWhatItDoesAsLinesOfJson) {
  const fs::path log = Folder / "log";
  Program radio(RadioWith({"--jsonl", log.string(), "--channels", "5", "--songs", "0.2"}));
  {
    const Line line(radio.Line());
    line.Send(kIdentifier);
    EXPECT_EQ(line.Receive(kIdentifierReply.size()), kIdentifierReply);
    std::this_thread::sleep_for(milliseconds(500));
  }
  std::this_thread::sleep_for(milliseconds(100));
  radio.Signal(SIGTERM);
  EXPECT_EQ(radio.Wait(), 0);
  std::string events;
  int texts = 0;
  double last = 0;
  for (const auto& event : Events("log")) {
    EXPECT_GE(event["time"], last);
    last = event["time"];
    if (event["event"] == "text") {
      ++texts;
    } else if (event["event"] != "sound") {
      events += event["event"].get<std::string>() + " ";
    }
  }
  EXPECT_EQ(events, "started line command answer line stopped ");
  EXPECT_GE(texts, 3);
}

TEST_F(RadioProgram, EndsByItselfAfterItsDuration) {
  const auto start = steady_clock::now();
  Program radio(RadioWith({"--duration", "0.3"}));
  EXPECT_EQ(radio.Wait(), 0);
  EXPECT_GE(steady_clock::now() - start, milliseconds(300));
}

TEST_F(RadioProgram, AWrongOptionIsNamedAndTheUsageShown) {
  const struct {
    std::vector<std::string> Arguments;
    const char* Error;
  } rows[] = {
      {{"--nope"}, "kestrune-radio: --nope: there is no such option\nUsage: "},
      {{"nope"}, "kestrune-radio: nope: there is no such option\nUsage: "},
      {{"--off=1"}, "kestrune-radio: --off=1: there is no such option\nUsage: "},
      {{"--link"}, "kestrune-radio: --link: it needs a value\nUsage: "},
      {{"--link", ""}, "kestrune-radio: --link: it needs a value\nUsage: "},
      {{"--sound", "loud"},
       "kestrune-radio: --sound: \"loud\" is not pipe:PATH, pulse:SINK or none\nUsage: "},
      {{"--rate=1"}, "kestrune-radio: --rate: \"1\" is not a whole number from 8000 to 192000\nUsage: "},
      {{"--signal", "noise"},
       "kestrune-radio: --signal: \"noise\" is not tunes, tones, counter or music\nUsage: "},
      {{"--songs", "0"}, "kestrune-radio: --songs: \"0\" is not a number of seconds above 0\nUsage: "},
      {{"--songs", "3x"}, "kestrune-radio: --songs: \"3x\" is not a number of seconds above 0\nUsage: "},
      {{"--lead", "soon"},
       "kestrune-radio: --lead: \"soon\" is not a whole number from -60000 to 60000\nUsage: "},
      {{"--channels", "255"},
       "kestrune-radio: --channels: \"255\" is not a whole number from 1 to 254\nUsage: "},
      {{"--channels", "5", "--line-up", "x"},
       "kestrune-radio: --channels: it cannot be combined with --line-up\nUsage: "},
      {{"--tuned", "0"}, "kestrune-radio: --tuned: \"0\" is not a whole number from 1 to 255\nUsage: "},
      {{"--misbehave", "sulk"}, "kestrune-radio: --misbehave: \"sulk\" is not a misbehaviour\nUsage: "},
      {{"--misbehave", "junk=2"}, "kestrune-radio: --misbehave: \"2\" is not a rate from 0 to 1\nUsage: "},
      {{"--misbehave", "junk@soon"},
       "kestrune-radio: --misbehave: \"soon\" is not a number of seconds above 0\nUsage: "},
      {{"--misbehave", "junk,,lost"}, "kestrune-radio: --misbehave: \"\" is not a misbehaviour\nUsage: "},
      {{"--seed", "-1"}, "kestrune-radio: --seed: \"-1\" is not a whole number\nUsage: "},
      {{"--baud", "0"}, "kestrune-radio: --baud: \"0\" is not a whole number from 50 to 4000000\nUsage: "},
      {{"--duration", "-1"},
       "kestrune-radio: --duration: \"-1\" is not a number of seconds above 0\nUsage: "},
      {{"--tuned", "2"}, "kestrune-radio: --tuned: the line-up has no channel 2\n"},
  };
  for (const auto& row : rows) {
    Program radio(RadioWith(row.Arguments));
    EXPECT_EQ(radio.Wait(), 2) << row.Error;
    EXPECT_THAT(radio.Errors(), StartsWith(row.Error));
  }
}

TEST_F(RadioProgram, WhatCannotBeReadOrWrittenIsNamed) {
  WriteFile("broken", "{");
  const std::string broken = (Folder / "broken").string();
  const struct {
    std::vector<std::string> Arguments;
    std::string Error;
  } rows[] = {
      {{"--line-up", "/no/file"}, "kestrune-radio: /no/file cannot be read\n"},
      {{"--line-up", broken}, "kestrune-radio: " + broken + ": the line-up is not JSON\n"},
      {{"--replay", "/no/file"}, "kestrune-radio: /no/file cannot be read\n"},
      {{"--jsonl", "/no/file"}, "kestrune-radio: /no/file cannot be written\n"},
      {{"--sound", "pipe:/no/file"},
       "kestrune-radio: no pipe can be made at /no/file: No such file or directory\n"},
      {{"--sound", "pipe:/"}, "kestrune-radio: / is neither a pipe nor a file\n"},
      {{"--link", "/no/file"},
       "kestrune-radio: no link can be made at /no/file: No such file or directory\n"},
  };
  for (const auto& row : rows) {
    Program radio(RadioWith(row.Arguments));
    EXPECT_EQ(radio.Wait(), 1) << row.Error;
    EXPECT_EQ(radio.Errors(), row.Error);
  }
}

TEST_F(RadioProgram, PrintsItsUsageAndItsVersion) {
  Program help(RadioWith({"--help"}));
  const std::string usage = help.Output();
  EXPECT_EQ(help.Wait(), 0);
  EXPECT_THAT(usage, StartsWith("Usage: kestrune-radio [OPTION]...\n"));
  for (const char* const option :
       {"--link", "--sound", "--rate", "--signal", "--songs", "--lead", "--line-up", "--channels", "--tuned",
        "--identifier", "--off", "--misbehave", "--seed", "--replay", "--jsonl", "--baud", "--duration",
        "--help", "--version"}) {
    EXPECT_THAT(usage, HasSubstr(std::string("  ") + option));
  }
  Program version(RadioWith({"--version"}));
  EXPECT_EQ(version.Output(), "kestrune-radio 3.0.29\n");
  EXPECT_EQ(version.Wait(), 0);
}

TEST_F(RadioProgram, SoundReachesASinkOfTheSoundServerWholeAndInOrder) {
  if (std::system("command -v pulseaudio parec >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "no pulseaudio installed";
  const std::string socket = (Folder / "native").string();
  ::setenv("XDG_RUNTIME_DIR", Folder.c_str(), 1);
  ::setenv("PULSE_SERVER", ("unix:" + socket).c_str(), 1);
  constexpr std::size_t kRecorded = 44100;
  Program server({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--disable-shm", "-L",
                  "module-native-protocol-unix auth-anonymous=1 socket=" + socket, "-L",
                  "module-null-sink sink_name=radio"});
  for (int i = 0; i < 100 && !fs::exists(socket); ++i) std::this_thread::sleep_for(milliseconds(50));
  ASSERT_TRUE(fs::exists(socket));
  Program radio(RadioWith({"--sound", "pulse:radio", "--signal", "counter"}));
  static_cast<void>(radio.Line());
  std::this_thread::sleep_for(milliseconds(1000));
  std::string bytes;
  {
    Program recorder(
        {"parec", "-d", "radio.monitor", "--format=s16le", "--rate=44100", "--channels=2", "--raw"});
    bytes = recorder.Read(kRecorded * 4);
  }
  ASSERT_EQ(bytes.size(), kRecorded * 4);
  const std::vector<std::int64_t> frames = CounterFrames(bytes);
  std::int64_t last = 0;
  std::size_t heard = 0;
  for (const std::int64_t frame : frames) {
    // A busy machine may make the server wait, which is silence; but what it plays is whole and in order.
    if (frame == 0) continue;
    if (last != 0) {
      ASSERT_EQ(frame, last + 1);
    }
    last = frame;
    ++heard;
  }
  EXPECT_GT(heard, kRecorded / 2);
}

}  // namespace
}  // namespace kestrune::test
