#include "cutlab/Station.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace kestrune::cutlab {

namespace {

using receiver::Dice;

double Uniform(Dice& dice, double low, double high) {
  return low + (high - low) * dice.Fraction();
}

double Gauss(Dice& dice) {
  return std::sqrt(-2 * std::log(1 - dice.Fraction())) * std::cos(2 * std::numbers::pi * dice.Fraction());
}

std::size_t Frames(double seconds) {
  return static_cast<std::size_t>(std::max(0.0, seconds) * kRate);
}

float Peak(const Stereo& sound, std::size_t at) {
  return std::max(std::abs(sound.Left[at]), std::abs(sound.Right[at]));
}

double Loudness(const Stereo& sound) {
  double sum = 0;
  for (std::size_t i = 0; i < sound.Left.size(); ++i) {
    sum += sound.Left[i] * sound.Left[i] + sound.Right[i] * sound.Right[i];
  }
  return std::sqrt(sum / std::max<double>(1, 2.0 * static_cast<double>(sound.Left.size())));
}

void Scale(Stereo& sound, double factor) {
  for (auto* channel : {&sound.Left, &sound.Right}) {
    for (float& sample : *channel) sample *= static_cast<float>(factor);
  }
}

void Erase(Stereo& sound, std::size_t from, std::size_t to) {
  for (auto* channel : {&sound.Left, &sound.Right}) {
    channel->erase(channel->begin() + static_cast<std::ptrdiff_t>(from),
                   channel->begin() + static_cast<std::ptrdiff_t>(to));
  }
}

/// Below this, against a loudness of 0.12, nothing is heard.
constexpr float kAudible = 0.0015F;

/// A song begins where it would be heard beside another.
constexpr float kBegins = 0.006F;

void TrimBeginning(Stereo& sound) {
  std::size_t first = 0;
  while (first < sound.Left.size() && Peak(sound, first) < kBegins) ++first;
  Erase(sound, 0, first);
}

void TrimEnd(Stereo& sound) {
  std::size_t end = sound.Left.size();
  while (end > 0 && Peak(sound, end - 1) < kAudible) --end;
  Erase(sound, end, sound.Left.size());
}

enum class Curve { Line, Power, Decibels };

double Down(Curve curve, double share) {
  share = std::clamp(share, 0.0, 1.0);
  switch (curve) {
    case Curve::Line:
      return 1 - share;
    case Curve::Power:
      return std::cos(share * std::numbers::pi / 2);
    case Curve::Decibels:
      return std::pow(10.0, -2.5 * share) * (1 - share * share);
  }
  return 0;
}

Curve AnyCurve(Dice& dice) {
  return static_cast<Curve>(dice.Between(0, 2));
}

void FadeOut(Stereo& sound, std::size_t frames, Curve curve) {
  const std::size_t length = sound.Left.size();
  frames = std::min(frames, length);
  for (std::size_t i = 0; i < frames; ++i) {
    const auto factor = static_cast<float>(Down(curve, static_cast<double>(i) / static_cast<double>(frames)));
    sound.Left[length - frames + i] *= factor;
    sound.Right[length - frames + i] *= factor;
  }
}

/// Throws one die after the other: arguments are evaluated in an order of the compiler's choice.
void FadeOutAnyhow(Stereo& sound, double shortest, double longest, Dice& dice) {
  const Curve curve = AnyCurve(dice);
  FadeOut(sound, Frames(Uniform(dice, shortest, longest)), curve);
}

void FadeIn(Stereo& sound, std::size_t frames) {
  frames = std::min(frames, sound.Left.size());
  for (std::size_t i = 0; i < frames; ++i) {
    const auto factor = static_cast<float>(
        std::sin(static_cast<double>(i) / static_cast<double>(frames) * std::numbers::pi / 2));
    sound.Left[i] *= factor;
    sound.Right[i] *= factor;
  }
}

/// The song of a piece: its beginning, and if it ends of itself, its end after a cross-fade of two seconds.
Stereo Song(const Piece& piece, double seconds, bool ownEnd) {
  Stereo song = piece.Head;
  Stereo tail = piece.Tail;
  if (!ownEnd || tail.Left.size() < Frames(8)) {
    const std::size_t length = std::min(song.Left.size(), Frames(seconds));
    Erase(song, length, song.Left.size());
    return song;
  }
  const std::size_t tailLength = std::min(tail.Left.size(), Frames(14));
  Erase(tail, 0, tail.Left.size() - tailLength);
  const std::size_t headLength = std::min(song.Left.size(), Frames(seconds) - tailLength);
  Erase(song, headLength, song.Left.size());
  const std::size_t cross = std::min({Frames(2), headLength, tailLength});
  FadeOut(song, cross, Curve::Power);
  FadeIn(tail, cross);
  const std::size_t at = headLength - cross;
  song.Left.resize(at + tailLength, 0);
  song.Right.resize(at + tailLength, 0);
  for (std::size_t i = 0; i < tailLength; ++i) {
    song.Left[at + i] += tail.Left[i];
    song.Right[at + i] += tail.Right[i];
  }
  return song;
}

/// Whether the last second is much quieter than what came before: the piece ends of itself.
bool DiesAway(const Stereo& sound) {
  const std::size_t length = sound.Left.size();
  if (length < Frames(6)) return false;
  double last = 0;
  double before = 0;
  for (std::size_t i = 0; i < Frames(0.3); ++i) last += Peak(sound, length - 1 - i);
  for (std::size_t i = 0; i < Frames(0.3); ++i) before += Peak(sound, length - Frames(5) + i);
  return last < 0.1 * before;
}

struct Mix {
  Stereo Sound;

  void Add(const Stereo& other, std::size_t at) {
    const std::size_t end = at + other.Left.size();
    if (Sound.Left.size() < end) {
      Sound.Left.resize(end, 0);
      Sound.Right.resize(end, 0);
    }
    for (std::size_t i = 0; i < other.Left.size(); ++i) {
      Sound.Left[at + i] += other.Left[i];
      Sound.Right[at + i] += other.Right[i];
    }
  }
};

struct Talk {
  std::size_t From = 0;
  std::vector<float> Voice;
  double Ducked = 0.3;
};

}  // namespace

std::string_view NameOf(JoinKind kind) {
  constexpr std::array<std::string_view, kJoinKinds> kNames = {"silence", "natural", "hard", "segue", "talk"};
  return kNames[static_cast<std::size_t>(kind)];
}

Station MakeStation(Pieces& pieces, int songs, std::uint64_t seed) {
  Dice dice(seed);
  Station station;
  station.Lag = Uniform(dice, -1.0, 2.5);
  std::vector<JoinKind> kinds;
  while (static_cast<int>(kinds.size()) < songs) {
    std::array<JoinKind, kJoinKinds> each = {JoinKind::Silence, JoinKind::NaturalEnd, JoinKind::Hard,
                                             JoinKind::Segue, JoinKind::Talk};
    for (int i = kJoinKinds - 1; i > 0; --i) {
      std::swap(each[static_cast<std::size_t>(i)], each[static_cast<std::size_t>(dice.Between(0, i))]);
    }
    kinds.insert(kinds.end(), each.begin(), each.end());
  }

  std::vector<std::size_t> order;
  Mix mix;
  std::vector<Talk> talks;
  std::size_t start = 0;
  double fadeIn = 0;  // of the song that comes
  for (int song = 0; song <= songs; ++song) {
    if (order.empty()) {
      for (std::size_t i = 0; i < pieces.Count(); ++i) order.push_back(i);
      for (std::size_t i = order.size() - 1; i > 0; --i) {
        std::swap(order[i], order[static_cast<std::size_t>(dice.Between(0, static_cast<int>(i)))]);
      }
    }
    Piece piece = pieces.Music(order.back());
    order.pop_back();
    const double loudness = 0.12 * std::pow(10.0, Uniform(dice, -3, 3) / 20);
    for (Stereo* part : {&piece.Head, &piece.Tail}) Scale(*part, loudness / std::max(0.001, Loudness(*part)));
    TrimBeginning(piece.Head);
    TrimEnd(piece.Tail);

    const JoinKind kind = song < songs ? kinds[static_cast<std::size_t>(song)] : JoinKind::Hard;
    // What lies under the talk is one of the other joins.
    constexpr std::array<JoinKind, 4> kUnder = {JoinKind::Segue, JoinKind::Hard, JoinKind::NaturalEnd,
                                                JoinKind::Segue};
    const JoinKind join =
        kind == JoinKind::Talk ? kUnder[static_cast<std::size_t>(dice.Between(0, 3))] : kind;
    const bool ownEnd = join == JoinKind::NaturalEnd || (join == JoinKind::Silence && dice.Fraction() < 0.5);
    if (dice.Fraction() < 0.2 && piece.Head.Left.size() > Frames(38)) {
      Erase(piece.Head, 0, Frames(Uniform(dice, 1, 8)));  // a song that begins in full swing
      FadeIn(piece.Head, Frames(0.003));
    }
    Stereo sound = Song(piece, Uniform(dice, 30, 45), ownEnd);
    if (fadeIn > 0) FadeIn(sound, Frames(fadeIn));
    fadeIn = 0;
    double gap = 0;
    double overlap = 0;
    switch (join) {
      case JoinKind::Silence:
        if (!ownEnd || !DiesAway(sound)) FadeOutAnyhow(sound, 0.02, 2.5, dice);
        gap = Uniform(dice, 0.25, 2.5);
        break;
      case JoinKind::NaturalEnd:
        if (!DiesAway(sound)) FadeOutAnyhow(sound, 1.5, 5, dice);
        gap = Uniform(dice, 0, 0.15);
        break;
      case JoinKind::Segue:
        overlap = Uniform(dice, 1, 6);
        FadeOutAnyhow(sound, overlap, overlap * 1.6, dice);
        if (dice.Fraction() < 0.25) fadeIn = Uniform(dice, 0.05, 0.6);
        break;
      default:
        FadeOut(sound, Frames(0.003), Curve::Line);
        break;
    }
    mix.Add(sound, start);
    if (song == songs) break;
    std::size_t end = start + sound.Left.size();
    std::size_t audible = end;
    while (audible > start && Peak(mix.Sound, audible - 1) < kAudible) --audible;
    if (join == JoinKind::NaturalEnd) end = audible;
    Join truth;
    truth.Kind = kind;
    start = end + Frames(gap) - Frames(overlap);
    truth.Start = static_cast<std::int64_t>(start);
    truth.GapFrom = std::min(truth.Start, static_cast<std::int64_t>(audible));
    station.Joins.push_back(truth);
    if (kind == JoinKind::Talk) {
      Talk talk;
      talk.Voice = pieces.Voice(dice);
      const double length = static_cast<double>(talk.Voice.size()) / kRate;
      talk.From = start - Frames(std::min(Uniform(dice, 0.15, 0.85) * length, 9.0));
      talk.Ducked = std::pow(10.0, -Uniform(dice, 6, 14) / 20);
      double power = 0;
      for (const float sample : talk.Voice) power += sample * sample;
      const double rms = std::sqrt(power / std::max<double>(1, static_cast<double>(talk.Voice.size())));
      const double wanted = 0.12 * std::pow(10.0, Uniform(dice, -3, 2) / 20);
      for (float& sample : talk.Voice) sample *= static_cast<float>(wanted / std::max(0.001, rms));
      talks.push_back(std::move(talk));
    }
  }

  for (const Talk& talk : talks) {
    const std::size_t ramp = Frames(0.3);
    const std::size_t length = talk.Voice.size();
    for (std::size_t i = 0; i < length + 2 * ramp; ++i) {
      const std::size_t at = talk.From + i - ramp;
      if (at >= mix.Sound.Left.size()) break;
      const double edge = std::min({1.0, static_cast<double>(i) / static_cast<double>(ramp),
                                    static_cast<double>(length + 2 * ramp - i) / static_cast<double>(ramp)});
      const auto factor = static_cast<float>(1 - (1 - talk.Ducked) * edge);
      const float voice = i >= ramp && i < ramp + length ? talk.Voice[i - ramp] : 0;
      mix.Sound.Left[at] = mix.Sound.Left[at] * factor + voice;
      mix.Sound.Right[at] = mix.Sound.Right[at] * factor + voice;
    }
  }

  // A little noise as every analogue way has it.
  const double noise = std::pow(10.0, Uniform(dice, -84, -66) / 20);
  // Dice would take longer than all the rest.
  auto chance = static_cast<std::uint32_t>(dice.Between(1, 1 << 30));
  station.Samples.resize(mix.Sound.Left.size() * 2);
  for (std::size_t i = 0; i < mix.Sound.Left.size(); ++i) {
    for (std::size_t channel = 0; channel < 2; ++channel) {
      chance = chance * 1664525U + 1013904223U;
      const double sample = (channel == 0 ? mix.Sound.Left[i] : mix.Sound.Right[i]) +
                            noise * static_cast<std::int32_t>(chance) / 2147483648.0;
      station.Samples[2 * i + channel] =
          static_cast<std::int16_t>(std::clamp(sample * 32767, -32768.0, 32767.0));
    }
  }
  return station;
}

std::vector<std::int64_t> MakeStamps(const Station& station, const Stamping& stamping, std::uint64_t seed) {
  Dice dice(seed);
  std::vector<std::int64_t> stamps;
  const double direction = dice.Fraction() < 0.5 ? -1 : 1;
  const auto count = static_cast<double>(std::max<std::size_t>(1, station.Joins.size()));
  for (std::size_t i = 0; i < station.Joins.size(); ++i) {
    double lag = station.Lag + direction * stamping.Drift * (static_cast<double>(i) / count - 0.5);
    lag += stamping.Jitter * Gauss(dice);
    if (dice.Fraction() < stamping.OutlierShare) lag += Uniform(dice, -3, 3);
    const double noticed = static_cast<double>(station.Joins[i].Start) / kRate - lag;
    const double polled = noticed + stamping.PollingSeconds * dice.Fraction();
    stamps.push_back(static_cast<std::int64_t>(polled * kRate));
  }
  return stamps;
}

std::vector<std::int16_t> Mean(std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> mean;
  mean.reserve(samples.size() / 2);
  for (std::size_t i = 0; i + 1 < samples.size(); i += 2) {
    mean.push_back(static_cast<std::int16_t>((samples[i] + samples[i + 1]) / 2));
  }
  return mean;
}

}  // namespace kestrune::cutlab
