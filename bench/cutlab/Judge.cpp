#include "cutlab/Judge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>

#include <fmt/format.h>

namespace kestrune::cutlab {

namespace {

double ErrorOf(const Join& join, std::int64_t frame) {
  if (frame < join.GapFrom) return static_cast<double>(frame - join.GapFrom) / kRate;
  if (frame > join.Start) return static_cast<double>(frame - join.Start) / kRate;
  return 0;
}

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

using Which = double Judged::*;

double Within(const std::vector<const Judged*>& judged, Which which, double limit) {
  const auto count = std::count_if(judged.begin(), judged.end(),
                                   [&](const Judged* one) { return std::abs(one->*which) <= limit; });
  return static_cast<double>(count) / std::max<double>(1, static_cast<double>(judged.size()));
}

double MedianError(const std::vector<const Judged*>& judged, Which which) {
  std::vector<double> errors;
  errors.reserve(judged.size());
  for (const Judged* one : judged) errors.push_back(std::abs(one->*which));
  return Median(std::move(errors));
}

double Worse(const std::vector<const Judged*>& judged, Which which) {
  const auto count = std::count_if(judged.begin(), judged.end(), [&](const Judged* one) {
    return std::abs(one->*which) > std::abs(one->Text) + 0.1;
  });
  return static_cast<double>(count) / std::max<double>(1, static_cast<double>(judged.size()));
}

constexpr std::array<Which, 3> kColumns = {&Judged::Text, &Judged::Learned, &Judged::Listen};

std::string Line(std::string_view what, const std::function<double(Which)>& number) {
  std::string line = fmt::format("{:<44}", what);
  for (const Which which : kColumns) line += fmt::format("{:>12.3f}", number(which));
  return line + "\n";
}

std::vector<const Judged*> Select(const std::vector<Judged>& judged,
                                  const std::function<bool(const Judged&)>& wanted) {
  std::vector<const Judged*> selected;
  for (const Judged& one : judged) {
    if (wanted(one)) selected.push_back(&one);
  }
  return selected;
}

bool Late(const Judged& one) {
  return one.Number >= 11;
}

}  // namespace

void JudgeStation(const Station& station, const std::vector<std::int64_t>& stamps, bool oneChannel,
                  const cut::EvidenceWeights& weights, std::vector<Judged>& judged) {
  const std::vector<std::int16_t> one = oneChannel ? Mean(station.Samples) : std::vector<std::int16_t>();
  std::span<const std::int16_t> samples = oneChannel ? one : station.Samples;
  cut::Listener listener(kRate, oneChannel ? 1 : 2, 0);
  cut::LagModel lags;
  std::vector<double> known;
  for (std::size_t i = 0; i < stamps.size(); ++i) {
    const Join& join = station.Joins[i];
    // As in the program: no more is heard than what has come ten seconds after the stamp.
    const std::int64_t wanted = stamps[i] + kRate * cut::kWantedAfterMs / 1000 - listener.End();
    const auto count = std::min(
        samples.size(), static_cast<std::size_t>(std::max<std::int64_t>(0, wanted)) * (oneChannel ? 1 : 2));
    listener.Hear(samples.first(count));
    samples = samples.subspan(count);
    const cut::Cut cut = listener.Choose(stamps[i], lags, weights);
    Judged result;
    result.Kind = join.Kind;
    result.Number = static_cast<int>(i) + 1;
    result.Listen = ErrorOf(join, cut.Frame);
    result.Text = ErrorOf(join, stamps[i] + kRate * 6 / 10);
    const double learned = known.empty() ? 0.6 : Median(known);
    result.Learned = ErrorOf(join, stamps[i] + static_cast<std::int64_t>(learned * kRate));
    result.Reason = cut.Reason;
    result.Confidence = cut.Confidence;
    known.push_back(static_cast<double>(join.Start - stamps[i]) / kRate);
    judged.push_back(result);
  }
}

std::string Table(const Results& results) {
  const auto late = Select(results.Usual, Late);
  std::string table =
      fmt::format("{:<44}{:>12}{:>12}{:>12}\n",
                  fmt::format("{} cuts of {}, from the 11th of a station", late.size(), results.Usual.size()),
                  "text+600", "text+learned", "listen");
  for (const double limit : {0.1, 0.5, 1.0}) {
    table += Line(fmt::format("share within {} s", limit),
                  [&](Which which) { return Within(late, which, limit); });
  }
  table += Line("median error, s", [&](Which which) { return MedianError(late, which); });
  for (int kind = 0; kind < kJoinKinds; ++kind) {
    const auto some = Select(
        results.Usual, [&](const Judged& one) { return Late(one) && static_cast<int>(one.Kind) == kind; });
    table += Line(fmt::format("{}: within 0.1 s", NameOf(static_cast<JoinKind>(kind))),
                  [&](Which which) { return Within(some, which, 0.1); });
    table += Line(fmt::format("{}: median error, s", NameOf(static_cast<JoinKind>(kind))),
                  [&](Which which) { return MedianError(some, which); });
  }
  table += Line("worse than text + 600 ms by over 0.1 s", [&](Which which) { return Worse(late, which); });
  const auto first = Select(results.Usual, [](const Judged& one) { return one.Number <= 5; });
  table += Line("first five cuts, within 0.1 s", [&](Which which) { return Within(first, which, 0.1); });
  const auto jitter = Select(results.MoreJitter, Late);
  table += Line("jitter 0.6 s: within 0.1 s", [&](Which which) { return Within(jitter, which, 0.1); });
  table += Line("jitter 0.6 s: within 0.5 s", [&](Which which) { return Within(jitter, which, 0.5); });
  const auto mono = Select(results.OneChannel, Late);
  table += Line("one channel: within 0.1 s", [&](Which which) { return Within(mono, which, 0.1); });
  const auto talk =
      Select(results.OneChannel, [](const Judged& one) { return Late(one) && one.Kind == JoinKind::Talk; });
  table += Line("one channel, talk: median error, s", [&](Which which) { return MedianError(talk, which); });
  double sure = 0;
  for (const Judged* one : late) sure += one->Confidence;
  table += fmt::format("mean confidence {:.3f}; reasons:",
                       sure / std::max<double>(1, static_cast<double>(late.size())));
  for (const auto reason :
       {cut::Reason::Gap, cut::Reason::Onset, cut::Reason::Novelty, cut::Reason::Lag, cut::Reason::Text}) {
    table += fmt::format(
        " {} {}", cut::NameOf(reason),
        std::count_if(late.begin(), late.end(), [&](const Judged* one) { return one->Reason == reason; }));
  }
  return table + "\n";
}

}  // namespace kestrune::cutlab
