#include "presenters/PleaseWait.h"

#include <algorithm>

#include <fmt/format.h>

namespace kestrune::presenters {
namespace {

/// A port whose device has no name is known by its number alone.
std::string NameOf(const radio::SearchProgress& search) {
  return search.Device.empty() ? fmt::format("port {}", search.Port) : search.Device;
}

std::string StepOf(const recorder::State& state) {
  const radio::SearchProgress& search = state.Search;
  if (state.Run.ShuttingDown) return "Closing...";
  if (search.Found) return fmt::format("The radio is on {}. Asking who it is...", NameOf(search));
  if (search.Port == 0) return "Looking for serial devices...";
  return search.Searching
             ? fmt::format("Searching on {}: round {} of {}", NameOf(search), search.Round, search.Rounds)
             : fmt::format("Trying {}: attempt {} of {}", NameOf(search), search.Round, search.Rounds);
}

int ProgressOf(const radio::SearchProgress& search, std::chrono::milliseconds now) {
  if (search.Found) return PleaseWait::kWhole;
  if (search.Steps <= 0 || search.Longest.count() <= 0) return 0;
  const double within =
      static_cast<double>((now - search.Began).count()) / static_cast<double>(search.Longest.count());
  const double steps = search.StepsDone + std::clamp(within, 0.0, 1.0);
  return std::clamp(static_cast<int>(steps / search.Steps * PleaseWait::kWhole), 0, PleaseWait::kWhole);
}

}  // namespace

PleaseWait ShowSearch(const recorder::State& state, std::chrono::milliseconds now) {
  return {.lblPort = state.Search.Port == 0 ? std::string() : std::to_string(state.Search.Port),
          .lblStep = StepOf(state),
          .pbrSearch = ProgressOf(state.Search, now),
          .cmdCancelEnabled = !state.Run.ShuttingDown};
}

}  // namespace kestrune::presenters
