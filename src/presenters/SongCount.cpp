#include "presenters/SongCount.h"

#include <chrono>

namespace kestrune::presenters {
namespace {

constexpr std::chrono::milliseconds kFollowInterval{1000};

}  // namespace

SongCount::SongCount(const recorder::State& state, base::EventLoop& loop, platform::LauncherCount& launcher)
    : state_(state), launcher_(launcher), tmrFollow_(loop.MakeTimer(kFollowInterval, [this] { Follow(); })) {
  tmrFollow_->SetEnabled(true);
}

void SongCount::Follow() {
  launcher_.Show(state_.Run.ShuttingDown ? 0 : state_.Recording.RecordedCount);
}

}  // namespace kestrune::presenters
