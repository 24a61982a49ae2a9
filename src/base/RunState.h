#pragma once

namespace kestrune::base {

/// The stage of the run. Every room may read it; only the start and the shutdown write it.
struct RunState {
  bool FormLoading = false;   ///< the load sequence runs: ticks and requests stay empty
  bool ShuttingDown = false;  ///< set once by the first pass of closing, never cleared
  bool Quitting = false;      ///< the quit timer drives the update cycle by hand
};

}  // namespace kestrune::base
