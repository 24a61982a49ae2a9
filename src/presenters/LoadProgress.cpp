#include "presenters/LoadProgress.h"

#include <fmt/format.h>

namespace kestrune::presenters {
namespace {

std::string TextOf(const radio::ChannelLoad& load) {
  const char* const what = load.Checking ? "Checking" : "Loading";
  if (load.Expected != 0)
    return fmt::format("{} the radio's channels: {} of {}", what, load.Done, load.Expected);
  if (load.Done != 0) return fmt::format("{} the radio's channels: {} so far", what, load.Done);
  return "The radio's channels are being loaded.";
}

}  // namespace

LoadProgress ShowLoad(const radio::RadioState& state) {
  if (!state.ChannelsLoading) return {};
  const radio::ChannelLoad& load = state.Load;
  LoadProgress shown{.Visible = true, .Text = TextOf(load)};
  if (load.Expected == 0) return shown;
  // Each of the two passes is half of it.
  constexpr int kPass = LoadProgress::kWhole / 2;
  shown.Known = true;
  shown.Value = kPass * load.Done / load.Expected + (load.Checking ? kPass : 0);
  return shown;
}

}  // namespace kestrune::presenters
