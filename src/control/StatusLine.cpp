#include "control/StatusLine.h"

#include <initializer_list>
#include <string_view>

#include <fmt/format.h>

#include "control/ConsoleText.h"

namespace kestrune::control {
namespace {

std::string Joined(std::initializer_list<std::string> parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

std::string RecordingWords(const StatusReport& report) {
  if (report.Loading || report.ChannelsLoading) {
    return report.ChannelCount == 0 ? "starting"
                                    : fmt::format("loading channels, {} so far", report.ChannelCount);
  }
  const std::string event = report.ActiveSchedule == 0 ? "" : fmt::format("entry {}", report.ActiveSchedule);
  return Joined({report.Recording.empty() ? "not recording" : report.Recording, event}, ", ");
}

}  // namespace

std::string StatusLine(const StatusReport& report) {
  std::string wrong = report.Warning;
  if (wrong.ends_with('.')) wrong.pop_back();
  if (wrong.empty() && !report.RadioLost.empty()) wrong = "radio lost: " + report.RadioLost;
  if (wrong.empty() && !report.CaptureFailure.empty()) wrong = "not being written: " + report.CaptureFailure;
  const std::string channel =
      report.ChannelNumber == 0
          ? ""
          : Joined({fmt::format("channel {}", report.ChannelNumber), report.Station}, " ");
  return Printable(
      Joined({wrong, RecordingWords(report), channel, Joined({report.Artist, report.Song}, " - "),
              report.RecordedCount == 0 ? "" : fmt::format("{} recorded", report.RecordedCount)},
             "; "));
}

}  // namespace kestrune::control
