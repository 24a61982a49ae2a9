#include "presenters/HintLine.h"

namespace kestrune::presenters {

const recorder::Hint* ShownHint(const recorder::State& state) {
  if (state.Hints.empty() || state.HintHome != 0 || state.Radio.ChannelsLoading ||
      !state.Watch.Warning().empty())
    return nullptr;
  const recorder::Hint& newest = state.Hints.front();
  return state.MayRecord() || newest.Fresh ? &newest : nullptr;
}

std::int16_t HintChannel(const recorder::State& state) {
  const recorder::Hint* const hint = ShownHint(state);
  return hint == nullptr || state.Recording.GetRecordingStatus() ? std::int16_t{0} : hint->Channel;
}

}  // namespace kestrune::presenters
