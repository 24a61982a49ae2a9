#include "receiver/TraceReplay.h"

#include <charconv>
#include <cmath>

namespace kestrune::receiver {
namespace {

constexpr std::chrono::milliseconds kDay = std::chrono::hours(24);

/// Takes the line's time off it; nothing if the line does not begin with a time.
std::optional<std::chrono::milliseconds> TakeTime(std::string_view& line) {
  double seconds = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), seconds);
  if (error != std::errc{} || !(seconds >= 0 && seconds <= 86400)) return std::nullopt;
  line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

std::string BytesOf(std::string_view hex) {
  std::string bytes;
  while (hex.size() >= 2) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(hex.data(), hex.data() + 2, value, 16);
    if (error != std::errc{} || end != hex.data() + 2) break;
    bytes.push_back(static_cast<char>(value));
    hex.remove_prefix(2);
    if (!hex.empty() && hex.front() == ' ') hex.remove_prefix(1);
  }
  return bytes;
}

}  // namespace

TraceReplay::TraceReplay(std::string_view trace) {
  std::optional<std::chrono::milliseconds> first;
  std::chrono::milliseconds previous{0};
  std::chrono::milliseconds days{0};
  while (!trace.empty()) {
    const std::size_t end = trace.find('\n');
    std::string_view line = trace.substr(0, end);
    trace.remove_prefix(end == std::string_view::npos ? trace.size() : end + 1);
    const auto time = TakeTime(line);
    if (!time) continue;
    if (first && *time + kDay / 2 < previous) days += kDay;
    previous = *time;
    if (!first) first = *time;
    constexpr std::string_view kReceived = " < ";
    if (!line.starts_with(kReceived)) continue;
    line.remove_prefix(kReceived.size());
    std::string bytes = BytesOf(line);
    if (!bytes.empty()) entries_.push_back({*time + days - *first, std::move(bytes)});
  }
}

std::vector<std::string> TraceReplay::Take(std::chrono::milliseconds sinceStart) {
  std::vector<std::string> due;
  while (next_ < entries_.size() && entries_[next_].At <= sinceStart) due.push_back(entries_[next_++].Bytes);
  return due;
}

std::optional<std::chrono::milliseconds> TraceReplay::Next() const {
  if (next_ == entries_.size()) return std::nullopt;
  return entries_[next_].At;
}

}  // namespace kestrune::receiver
