#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cut/Listener.h"
#include "cutlab/Station.h"

namespace kestrune::cutlab {

/// How one change was cut, in three ways. Errors are in seconds, signed, and 0 anywhere inside the gap.
struct Judged {
  JoinKind Kind = JoinKind::Hard;
  int Number = 0;  ///< of the change in its station, from 1
  double Listen = 0;
  double Text = 0;  ///< 600 ms after the stamp
  double Learned =
      0;  ///< after the stamp by the median of the station's true lags so far, which nobody knows
  cut::Reason Reason = cut::Reason::Text;
  float Confidence = 0;
};

/// Cuts a station change by change, as the program would.
void JudgeStation(const Station& station, const std::vector<std::int64_t>& stamps, bool oneChannel,
                  const cut::EvidenceWeights& weights, std::vector<Judged>& judged);

/// Results of the same joins under three conditions.
struct Results {
  std::vector<Judged> Usual;
  std::vector<Judged> MoreJitter;  ///< 0.6 s instead of 0.3 s
  std::vector<Judged> OneChannel;
};

/// The table of the laboratory, for people.
[[nodiscard]] std::string Table(const Results& results);

}  // namespace kestrune::cutlab
