#include "platform/codec/WorkerCaptureMender.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/codec/CodecTable.h"
#include "platform/codec/Mending.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/SystemError.h"

namespace kestrune::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kLookInterval{50};
constexpr int kMostNames = 1000000;

base::DateValue LocalTime(std::time_t moment) {
  std::tm fields{};
  if (::localtime_r(&moment, &fields) == nullptr) return {};
  return base::DateValue::FromCivil(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                                    fields.tm_min, fields.tm_sec);
}

/// The files of a folder and of those inside it whose names match a pattern. No link is followed, neither to a folder
/// nor to a file. A folder inside that nobody may read is left out, since no capture was made there; the folder itself
/// must be readable.
class Search {
 public:
  Search(const std::string& folder, std::string pattern, std::stop_token stop)
      : pattern_(std::move(pattern)), stop_(std::move(stop)) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); Goes(entry, error); entry.increment(error)) {
      Take(*entry);
      std::error_code unknown;
      const fs::file_type type = entry->symlink_status(unknown).type();
      if (type == fs::file_type::directory) error = LookInside(entry->path());
      // It may be a folder, with captures in it.
      if (type == fs::file_type::none) error = unknown;
      if (error) break;
    }
    std::sort(found_.begin(), found_.end());
    const bool nothingThere = !error || error == std::errc::no_such_file_or_directory;
    if (!nothingThere) looked_ = FailedWith(error.value());
    if (names_ > kMostNames) looked_ = base::Result::Failed("there are too many files");
  }

  [[nodiscard]] const std::vector<std::string>& Found() const { return found_; }
  /// Why not all of it was seen.
  [[nodiscard]] const base::Result& Looked() const { return looked_; }

 private:
  std::error_code LookInside(const fs::path& folder) {
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
         Goes(entry, error); entry.increment(error)) {
      Take(*entry);
    }
    return error;
  }

  template <typename Iterator>
  bool Goes(const Iterator& entry, const std::error_code& error) {
    return !error && entry != Iterator() && !stop_.stop_requested() && ++names_ <= kMostNames;
  }

  void Take(const fs::directory_entry& entry) {
    const std::string& path = entry.path().native();
    if (!MatchesPattern(std::string_view(path).substr(path.rfind('/') + 1), pattern_)) return;
    // What it is shows when it is opened.
    std::error_code unknown;
    const fs::file_type type = entry.symlink_status(unknown).type();
    if (type == fs::file_type::regular || type == fs::file_type::none) found_.push_back(path);
  }

  std::string pattern_;
  std::stop_token stop_;
  std::vector<std::string> found_;
  base::Result looked_ = base::Result::Done();
  int names_ = 0;
};

}  // namespace

MendedCapture MendCapture(DiskFile& file, std::string_view path, const std::stop_token& stop) {
  const Codec* const codec = FindCodecOfFile(path);
  if (codec == nullptr) return {};
  if (!file.OpenHeld(path)) {
    const int error = file.Error();
    const bool notOurs = error == EBUSY || error == ENOENT || error == ELOOP || error == ENOTDIR;
    return notOurs ? MendedCapture() : NotMended(file.Failure().Cause());
  }
  const timespec written = file.Written();
  MendedCapture mended = codec->Mend(file, stop);
  // What it took for the end was no end.
  if (file.ReadError() != 0) mended = NotMended(FailedWith(file.ReadError()).Cause());
  file.SetWritten(written);
  mended.Written = LocalTime(written.tv_sec);
  return mended;
}

WorkerCaptureMender::WorkerCaptureMender(base::EventLoop& loop)
    : tmrLook_(loop.MakeTimer(kLookInterval, [this] { Look(); })) {}

void WorkerCaptureMender::Find(std::string_view folder, std::string_view pattern, FoundHandler found) {
  Begin([folder = std::string(folder), pattern = std::string(pattern),
         found = std::move(found)](const std::stop_token& stop) -> Answer {
    return [found, search = Search(folder, pattern, stop)] { found(search.Found(), search.Looked()); };
  });
}

void WorkerCaptureMender::Mend(std::string_view path, MendedHandler mended) {
  Begin([this, path = std::string(path), mended = std::move(mended)](const std::stop_token& stop) -> Answer {
    return [mended, capture = MendCapture(file_, path, stop)] { mended(capture); };
  });
}

void WorkerCaptureMender::Begin(std::function<Answer(const std::stop_token& stop)> work) {
  Stop();
  stop_ = std::stop_source();
  running_ = std::async(std::launch::async, std::move(work), stop_.get_token());
  tmrLook_->SetEnabled(true);
}

void WorkerCaptureMender::Look() {
  if (running_.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
  tmrLook_->SetEnabled(false);
  const Answer answer = running_.get();
  answer();
}

void WorkerCaptureMender::Stop() {
  tmrLook_->SetEnabled(false);
  stop_.request_stop();
  if (running_.valid()) running_.wait();
  running_ = {};
  file_.Close();
}

}  // namespace kestrune::platform
