#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/pipe/PipeSource.h"
#include "platform/sound/CollectingSink.h"
#include "support/PrivatePulse.h"
#include "support/SimulatedSoundSource.h"

namespace kestrune::platform {
namespace {

using std::chrono::milliseconds;
using test::SimulatedSoundSource;
using test::WriteNumberedFrames;

class PipeSourceTest : public ::testing::Test {
 protected:
  PipeSourceTest() {
    std::string name = (std::filesystem::temp_directory_path() / "kestrune-pipe-XXXXXX").string();
    Folder = mkdtemp(name.data());
  }
  ~PipeSourceTest() override { std::filesystem::remove_all(Folder); }

  std::filesystem::path Fifo() {
    auto path = Folder / "fifo";
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
    return path;
  }

  /// Writes the numbered frames as a writer that opens the pipe, writes and closes it.
  void WriteInto(const std::filesystem::path& fifo, std::uint32_t first, std::uint32_t count,
                 std::size_t tornBytes = 0) {
    WriteNumberedFrames(Folder / "raw", count, first);
    std::ifstream raw(Folder / "raw", std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(raw)), {});
    bytes.append(tornBytes, 'x');
    const int file = open(fifo.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    for (std::size_t at = 0; at < bytes.size();) {
      const std::size_t piece = std::min<std::size_t>(bytes.size() - at, 4093);
      const ssize_t written = write(file, bytes.data() + at, piece);
      ASSERT_GT(written, 0);
      at += static_cast<std::size_t>(written);
    }
    close(file);
  }

  std::filesystem::path Folder;
  CollectingSink Sink;
};

std::vector<std::uint32_t> Range(std::uint32_t first, std::uint32_t last) {
  std::vector<std::uint32_t> numbers;
  for (std::uint32_t number = first; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

TEST_F(PipeSourceTest, HasOneDeviceThePath) {
  PipeSource source(Fifo().string());
  const auto devices = source.Devices();
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices[0].Id, (Folder / "fifo").string());
  EXPECT_TRUE(source.Usable(devices[0].Id));
  EXPECT_FALSE(source.Usable("elsewhere"));
}

TEST_F(PipeSourceTest, APathThatIsNotThereIsNotUsable) {
  PipeSource source((Folder / "none").string());
  EXPECT_FALSE(source.Usable((Folder / "none").string()));
  EXPECT_NE(source.Open((Folder / "none").string(), {}, Sink), "");
}

TEST_F(PipeSourceTest, APathThatComesLaterIsReadFromThen) {
  const auto fifo = Folder / "fifo";
  PipeSource source(fifo.string());
  const auto start = std::chrono::steady_clock::now();
  EXPECT_NE(source.Open(fifo.string(), {}, Sink), "");
  EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(200)) << "the caller does not wait for it";
  Fifo();
  WriteInto(fifo, 1, 1000);
  EXPECT_TRUE(Sink.WaitFor(2000, milliseconds(5000)));
}

TEST_F(PipeSourceTest, AFolderIsNotUsable) {
  PipeSource source(Folder.string());
  EXPECT_FALSE(source.Usable(Folder.string()));
}

TEST_F(PipeSourceTest, APipePassesEveryFrameBitForBit) {
  const auto fifo = Fifo();
  PipeSource source(fifo.string());
  ASSERT_EQ(source.Open(fifo.string(), {44100, 2}, Sink), "");
  WriteInto(fifo, 1, 200'000);
  ASSERT_TRUE(Sink.WaitFor(2 * 200'000, milliseconds(10000)));
  source.Close();
  EXPECT_EQ(SimulatedSoundSource::FrameNumbers(Sink.Samples()), Range(1, 200'000));
  EXPECT_EQ(Sink.Lost(), 0);
}

TEST_F(PipeSourceTest, WhenTheWriterGoesTheNextOneIsWaitedFor) {
  const auto fifo = Fifo();
  PipeSource source(fifo.string());
  ASSERT_EQ(source.Open(fifo.string(), {44100, 2}, Sink), "");
  for (std::uint32_t writer = 0; writer < 20; ++writer) {
    // Some leave in the middle of a frame; that must not shift the channels of those that follow.
    WriteInto(fifo, 1 + writer * 1000, 1000, writer % 4);
    ASSERT_TRUE(Sink.WaitFor(2 * 1000 * (writer + 1), milliseconds(10000)));
    std::this_thread::sleep_for(milliseconds(writer % 3 * 20));
  }
  source.Close();
  EXPECT_EQ(SimulatedSoundSource::FrameNumbers(Sink.Samples()), Range(1, 20'000));
  EXPECT_EQ(Sink.Lost(), 0);
}

TEST_F(PipeSourceTest, CloseEndsAWaitForAWriterAtOnce) {
  const auto fifo = Fifo();
  PipeSource source(fifo.string());
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(source.Open(fifo.string(), {44100, 2}, Sink), "");
    const auto start = std::chrono::steady_clock::now();
    source.Close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(500));
  }
}

TEST_F(PipeSourceTest, AFileIsPacedByTheClockAndThenSilent) {
  const auto file = Folder / "file.raw";
  WriteNumberedFrames(file, 44100 / 2);
  PipeSource source(file.string());
  ASSERT_EQ(source.Open(file.string(), {44100, 2}, Sink), "");
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(Sink.WaitFor(44100, milliseconds(10000)));
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(490));
  std::this_thread::sleep_for(milliseconds(100));
  source.Close();
  EXPECT_EQ(SimulatedSoundSource::FrameNumbers(Sink.Samples()), Range(1, 22'050));
  EXPECT_EQ(Sink.Lost(), 0);
}

TEST_F(PipeSourceTest, AnotherFormatIsConverted) {
  const auto fifo = Fifo();
  PipeSource source(fifo.string());
  ASSERT_EQ(source.Open(fifo.string(), {22050, 1}, Sink), "");
  WriteInto(fifo, 1, 88'200);
  // Half the frames and one channel, except what the filter still holds back.
  EXPECT_TRUE(Sink.WaitFor(43'000, milliseconds(10000)));
  source.Close();
  EXPECT_LE(Sink.Count(), 44'100U);
}

}  // namespace
}  // namespace kestrune::platform
