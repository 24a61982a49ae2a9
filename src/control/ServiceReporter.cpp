#include "control/ServiceReporter.h"

#include <algorithm>

#include "control/StatusLine.h"
#include "control/StatusOf.h"

namespace kestrune::control {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kWhileStarting{1};
constexpr seconds kInterval{10};
constexpr milliseconds kShortest{50};
/// A wait of the start or the end that serves nothing is far shorter.
constexpr seconds kMoreTime{60};

}  // namespace

ServiceReporter::ServiceReporter(const recorder::Kestrune& unit, base::EventLoop& loop,
                                 platform::ServiceManager& manager)
    : unit_(unit), manager_(manager), timer_(loop.MakeTimer(kWhileStarting, [this] { Tell(); })) {}

void ServiceReporter::Start() {
  if (!manager_.Listens()) return;
  timer_->SetInterval(Interval());
  Tell();
  timer_->SetEnabled(true);
}

/// A third of the patience leaves room for a step that holds up the loop.
milliseconds ServiceReporter::Interval() const {
  const milliseconds wanted = ready_ ? milliseconds(kInterval) : milliseconds(kWhileStarting);
  const milliseconds patience = manager_.Patience();
  return patience.count() == 0 ? wanted : std::clamp(patience / 3, kShortest, wanted);
}

void ServiceReporter::Tell() {
  const recorder::State& state = unit_.State();
  const bool ready = state.Recording.ChannelsLoaded;
  const bool stopping = state.Run.ShuttingDown;
  std::string status = StatusLine(StatusOf(unit_.Snapshot()));
  platform::ServiceManager::News news{.Alive = true};
  news.Ready = ready && !ready_;
  news.Stopping = stopping && !stopping_;
  if (!ready || stopping) news.MoreTime = kMoreTime;
  if (status != told_) news.Status = status;
  if (!manager_.Tell(news)) return;
  stopping_ = stopping;
  told_ = std::move(status);
  if (!news.Ready) return;
  ready_ = true;
  timer_->SetInterval(Interval());
}

}  // namespace kestrune::control
