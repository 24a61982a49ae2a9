// Whatever comes in on the control socket is answered with one line that is a reply, and a request that the
// protocol refuses reaches nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include "control/ControlServer.h"
#include "control/PeopleText.h"
#include "control/Protocol.h"
#include "support/FakeControlTarget.h"

using namespace kestrune;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// As kestrune-ctl shows it to people: nothing in it controls the terminal.
void RequireTameText(const control::Json& result) {
  for (const char* command : {"status", "channels", "update", "log", "get", "schedule", "lists", "report",
                              "history", "hints", "cuts", "shelf", "keep", "stop"}) {
    const auto text = control::PeopleText(command, result);
    if (text) Require(text->find('\x1B') == std::string::npos);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string line(reinterpret_cast<const char*>(data), size);
  test::FakeControlTarget target;
  target.NextStatus.Station = line;
  target.NextSetting.Value = line;
  target.Log = {line};
  target.NextLists.KillSongs = {line};
  target.NextSchedule.emplace_back().Station = line;
  target.NextReport.Advice = {line};
  target.NextReport.Events.emplace_back().Why = line;
  target.NextPlays.emplace_back().Title = line;
  target.NextCounts.emplace_back().Artist = line;
  target.NextHints.Hints.emplace_back().Text = line;
  target.NextShelf.emplace_back().File = line;
  target.NextCuts.emplace_back().Next = line;
  target.NextChannels.emplace_back().Song = line;
  target.NextStationLags.emplace_back().Station = line;
  target.NextStatus.Warning = line;
  std::string answer;
  control::Dispatch(target, line, [&answer](std::string text) { answer = std::move(text); });
  Require(answer.find('\n') == std::string::npos);
  const auto reply = control::ReplyFromLine(answer);
  Require(reply.has_value());
  Require((reply->Exit == control::ExitCode::WrongUse) == target.Calls.empty());

  RequireTameText(reply->Result);

  // The client's side: any line may come back to it.
  if (const auto hostile = control::ReplyFromLine(line)) RequireTameText(hostile->Result);
  return 0;
}
