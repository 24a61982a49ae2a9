#include "platform/pipe/PipeSource.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/pipe/PcmConverter.h"

namespace kestrune::platform {

namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr std::size_t kFrameBytes = 4;
constexpr std::size_t kReadBytes = 65536;  // as much as a pipe holds
constexpr int kMostPaceMilliseconds = 50;
constexpr int kRetryMilliseconds = 1000;

int OpenPath(const std::string& path) {
  return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

/// A pipe holds 65,536 bytes, but a user who has many gets 8,192, and a writer may ask for less.
int PaceOf(int fifo) {
  constexpr int kBytesPerMillisecond = 200;  // 176 for 44,100 frames, and some to spare
  const int holds = fcntl(fifo, F_GETPIPE_SZ);
  return holds < 0 ? kMostPaceMilliseconds : std::min(holds / kBytesPerMillisecond, kMostPaceMilliseconds);
}

bool IsFifo(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && S_ISFIFO(status.st_mode);
}

}  // namespace

/// The open path and the thread that reads it.
class PipeSource::Reader {
 public:
  Reader(std::string path, int file, const PcmFormat& format, SampleSink& sink)
      : path_(std::move(path)),
        file_(file),
        sink_(sink),
        converter_(kFileFormat, format),
        stop_(eventfd(0, EFD_CLOEXEC)),
        bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(kReadBytes)) {}

  ~Reader() {
    base::Ignored(eventfd_write(stop_, 1));
    if (thread_.joinable()) thread_.join();
    close(stop_);
    if (file_ >= 0) close(file_);
  }

  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  [[nodiscard]] const std::string& Error() const { return converter_.Error(); }

  void Start() {
    thread_ = std::thread([this] {
      if (!WaitForPath()) return;
      if (IsFifo(file_)) {
        RunFifo();
      } else {
        RunPaced();
      }
    });
  }

 private:
  /// A path that cannot be opened is tried again each second. False if it is time to end.
  bool WaitForPath() {
    while (file_ < 0) {
      pollfd stop{stop_, POLLIN, 0};
      if (poll(&stop, 1, kRetryMilliseconds) > 0) return false;
      file_ = OpenPath(path_);
    }
    return true;
  }

  void RunFifo() {
    while (WaitForFifo()) {
      ssize_t count = ReadSome(kReadBytes);
      while (count > 0) {
        if (!Rest(file_)) return;
        count = ReadSome(kReadBytes);
      }
      if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
      WaitForNextWriter();
      if (!Rest(file_)) return;
    }
  }

  /// Lets some sound gather instead of waking for each small write, but never so much that the pipe is full; a writer
  /// that closes the pipe is noticed at once. False if it is time to end.
  bool Rest(int fifo) {
    pollfd descriptors[] = {{stop_, POLLIN, 0}, {fifo, 0, 0}};
    base::Ignored(poll(descriptors, 2, PaceOf(fifo)));
    return (descriptors[0].revents & POLLIN) == 0;
  }

  /// False if it is time to end.
  bool WaitForFifo() {
    pollfd descriptors[] = {{stop_, POLLIN, 0}, {file_, POLLIN, 0}};
    base::Ignored(poll(descriptors, 2, file_ < 0 ? kRetryMilliseconds : -1));
    return (descriptors[0].revents & POLLIN) == 0;
  }

  /// A pipe that is opened again is quiet until somebody writes, while one whose writer has gone reports its end over
  /// and over. The old descriptor is closed last, so that a writer never finds the pipe without a reader.
  void WaitForNextWriter() {
    kept_ = 0;
    const int fresh = OpenPath(path_);
    if (file_ >= 0) close(file_);
    file_ = fresh;
  }

  void RunPaced() {
    const auto start = steady_clock::now();
    std::uint64_t read = 0;
    for (;;) {
      if (!Rest(-1)) return;
      const auto passed = std::chrono::duration_cast<microseconds>(steady_clock::now() - start).count();
      const std::uint64_t due = static_cast<std::uint64_t>(passed) *
                                static_cast<std::uint64_t>(kFileFormat.SampleRate) / 1'000'000 * kFrameBytes;
      while (read < due) {
        const ssize_t count = ReadSome(std::min<std::uint64_t>(due - read, kReadBytes));
        if (count <= 0) break;
        read += static_cast<std::uint64_t>(count);
      }
    }
  }

  /// Reads once and delivers the whole frames; the bytes of an incomplete one wait for the rest.
  ssize_t ReadSome(std::size_t most) {
    const ssize_t count = read(file_, bytes_.get() + kept_, std::min(most, kReadBytes - kept_));
    if (count <= 0) return count;
    const std::size_t there = kept_ + static_cast<std::size_t>(count);
    const std::size_t whole = there / kFrameBytes * kFrameBytes;
    samples_.clear();
    for (std::size_t at = 0; at < whole; at += 2) {
      samples_.push_back(
          static_cast<std::int16_t>(static_cast<std::uint16_t>(bytes_[at] | bytes_[at + 1] << 8)));
    }
    kept_ = there - whole;
    std::copy_n(bytes_.get() + whole, kept_, bytes_.get());
    if (samples_.empty()) return count;
    const std::span<const std::int16_t> converted = converter_.Convert(samples_);
    if (!converted.empty()) sink_.OnSamples(converted);
    return count;
  }

  const std::string path_;
  int file_;
  SampleSink& sink_;
  PcmConverter converter_;
  const int stop_;
  const std::unique_ptr<std::uint8_t[]> bytes_;  // the usual read leaves most of it untouched
  std::size_t kept_ = 0;
  std::vector<std::int16_t> samples_;
  std::thread thread_;
};

PipeSource::PipeSource(std::string path, std::string name) : path_(std::move(path)), name_(std::move(name)) {}

PipeSource::~PipeSource() = default;

std::vector<SoundDevice> PipeSource::Devices() {
  return {{name_.empty() ? path_ : name_, path_}};
}

bool PipeSource::Usable(const std::string& id) {
  struct stat status {};
  return id == path_ && stat(path_.c_str(), &status) == 0 && !S_ISDIR(status.st_mode) &&
         access(path_.c_str(), R_OK) == 0;
}

std::string PipeSource::Open(const std::string& id, const PcmFormat& format, SampleSink& sink) {
  Close();
  if (id != path_) return "no such device: " + id;
  const int file = OpenPath(path_);
  std::string reason = file < 0 ? std::error_code(errno, std::generic_category()).message() : "";
  auto reader = std::make_unique<Reader>(path_, file, format, sink);
  if (!reader->Error().empty()) return reader->Error();
  reader->Start();
  reader_ = std::move(reader);
  return reason;
}

void PipeSource::Close() {
  reader_.reset();
}

}  // namespace kestrune::platform
