#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cut/Lags.h"

namespace kestrune::cut {

/// What is known of how far a station's text runs ahead of its sound: a probability for each lag and each
/// size of jitter. Each change of text moves it by what was heard. A value; it can be copied and kept.
class LagModel {
 public:
  /// Standard deviations of a station's jitter, in milliseconds.
  static constexpr std::array<int, 6> kJitters = {60, 120, 220, 350, 550, 850};

  /// Nothing heard yet: lags around `expectedMs` are the likeliest.
  explicit LagModel(int expectedMs = 600);

  /// For each lag, how likely it is that of the next change; the sum is 1.
  [[nodiscard]] LagRow Expected() const;

  /// Renews it after a change: `evidence` is the logarithm of how much likelier the sound is if the song
  /// began at that lag, each up to a common constant. Numbers that are not finite are no evidence for their
  /// lag.
  void Renew(const LagRow& evidence);

  /// Lets some knowledge go, as when a station was not heard for `days`: of what differs from a fresh model,
  /// half is left after thirty days.
  void Forget(double days);

  /// The lag in the middle of the probability, in milliseconds.
  [[nodiscard]] int MedianMs() const;
  /// The jitter that is expected on average, in milliseconds.
  [[nodiscard]] int JitterMs() const;
  /// How many changes it has heard.
  [[nodiscard]] int Changes() const { return changes_; }

  /// One line of printable characters for a database, and back: "1 CHANGES EXPECTED lag:jitter:probability ...", with
  /// what is too unlikely to matter left out. A text that is none gives nothing to `model` and false.
  [[nodiscard]] std::string Text() const;
  [[nodiscard]] static bool FromText(std::string_view text, LagModel& model);

 private:
  using Grid = std::array<LagRow, kJitters.size()>;

  [[nodiscard]] static Grid Fresh(int expectedMs);
  void Normalise();
  void Walk();

  Grid grid_;
  int expectedMs_;
  int changes_ = 0;
};

}  // namespace kestrune::cut
