#include "presenters/FolderRoom.h"

#include <cmath>

#include <fmt/format.h>

namespace kestrune::presenters {
namespace {

constexpr double kMegabyte = 1e6;
constexpr double kGigabyte = 1e9;

/// Rounded down, so that no more is promised than there is.
std::string Size(double bytes) {
  if (bytes < kGigabyte) return fmt::format("{:.0f} MB", std::floor(bytes / kMegabyte));
  return fmt::format("{:.1f} GB", std::floor(bytes / kGigabyte * 10) / 10);
}

}  // namespace

FolderRoom RoomIn(const platform::Files& files, std::string_view folder, double enough) {
  if (!folder.starts_with('/')) return {};
  const double free = files.FreeBytes(folder);
  if (free < 0) return {};
  FolderRoom room{.Text = Size(free) + " free", .Scarce = free < enough};
  if (room.Scarce) room.Text += ", which is little";
  return room;
}

}  // namespace kestrune::presenters
