#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CaptureFile.h"
#include "platform/codec/EncodedFile.h"
#include "platform/posix/PosixFiles.h"

namespace kestrune::test {

/// The real disk, which can be full for a while: what needs room then fails.
class CrampedDisk final : public platform::Files {
 public:
  bool Full = false;

  [[nodiscard]] base::Result Room() const {
    return Full ? base::Result::Failed("No space left on device") : base::Result::Done();
  }

  [[nodiscard]] bool Exists(std::string_view path) const override { return disk_.Exists(path); }
  [[nodiscard]] base::Result CheckWritable(std::string_view folder) const override {
    return disk_.CheckWritable(folder);
  }
  [[nodiscard]] base::Result CreateFolder(std::string_view path) override {
    return Full ? Room() : disk_.CreateFolder(path);
  }
  [[nodiscard]] bool MakeOwnFolder(std::string_view path) override { return disk_.MakeOwnFolder(path); }
  [[nodiscard]] std::string CreatePrivateFolder(std::string_view parent) override {
    return Full ? std::string() : disk_.CreatePrivateFolder(parent);
  }
  [[nodiscard]] base::Result RemoveFolder(std::string_view path) override { return disk_.RemoveFolder(path); }
  [[nodiscard]] std::vector<std::string> Matching(std::string_view folder,
                                                  std::string_view pattern) const override {
    return disk_.Matching(folder, pattern);
  }
  [[nodiscard]] std::vector<platform::FileEntry> List(std::string_view folder) const override {
    return disk_.List(folder);
  }
  [[nodiscard]] std::optional<std::int64_t> Bytes(std::string_view path) const override {
    return disk_.Bytes(path);
  }
  [[nodiscard]] bool InUse(std::string_view path) const override { return disk_.InUse(path); }
  [[nodiscard]] base::Result Remove(std::string_view path) override { return disk_.Remove(path); }
  [[nodiscard]] base::Result RemoveUnlessHeld(std::string_view path) override {
    return disk_.RemoveUnlessHeld(path);
  }
  [[nodiscard]] platform::RenameResult RenameNoReplace(std::string_view from, std::string_view to) override {
    return disk_.RenameNoReplace(from, to);
  }
  [[nodiscard]] base::Result Copy(std::string_view from, std::string_view to) override {
    return Full ? Room() : disk_.Copy(from, to);
  }
  [[nodiscard]] std::optional<std::string> Read(std::string_view path) const override {
    return disk_.Read(path);
  }
  [[nodiscard]] base::Result Replace(std::string_view path, std::string_view text) override {
    return Full ? Room() : disk_.Replace(path, text);
  }
  [[nodiscard]] base::Result Append(std::string_view path, std::string_view text) override {
    return Full ? Room() : disk_.Append(path, text);
  }
  [[nodiscard]] base::Result CreateProgram(std::string_view path, std::string_view bytes) override {
    return Full ? Room() : disk_.CreateProgram(path, bytes);
  }
  [[nodiscard]] std::unique_ptr<platform::OpenTextFile> OpenForWriting(std::string_view path) override {
    return Full ? nullptr : disk_.OpenForWriting(path);
  }
  [[nodiscard]] double FreeBytes(std::string_view /*path*/) const override { return Full ? 0 : kFree; }

 private:
  static constexpr double kFree = 100e9;

  platform::PosixFiles disk_;
};

/// A real capture on that disk.
class CrampedCaptureFile final : public platform::CaptureFile {
 public:
  /// The disk must outlive the object.
  explicit CrampedCaptureFile(const CrampedDisk& disk) : disk_(disk) {}

  void SetFormat(const platform::CaptureFormat& format) override { file_.SetFormat(format); }
  platform::NumberedResult Create(std::string_view path) override {
    if (disk_.Full) return {.Number = -1, .Cause = disk_.Room().Cause()};
    return file_.Create(path);
  }
  [[nodiscard]] platform::PcmFormat FormatValues() const override { return file_.FormatValues(); }
  base::Result WriteBlock(std::span<const std::int16_t> samples) override {
    return disk_.Full ? disk_.Room() : file_.WriteBlock(samples);
  }
  [[nodiscard]] std::int32_t Length() const override { return file_.Length(); }
  [[nodiscard]] std::string FormatDescription() const override { return file_.FormatDescription(); }
  base::Result Close() override { return file_.Close(); }
  void Release() override { file_.Release(); }

 private:
  const CrampedDisk& disk_;
  platform::EncodedFile file_;
};

}  // namespace kestrune::test
