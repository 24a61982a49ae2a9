#include "receiver/JoinShape.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "receiver/Dice.h"

namespace kestrune::receiver {
namespace {

// What is left of a song in the last part of its fade is 48 dB below it.
constexpr double kInaudiblePart = 1.0 / 16;
constexpr double kClick = 0.003;

double Uniform(Dice& dice, double low, double high) {
  return low + (high - low) * dice.Fraction();
}

/// What lies under an announcer is one of the other joins.
JoinKind UnderTalk(Dice& dice) {
  constexpr std::array kUnder = {JoinKind::Segue, JoinKind::Hard, JoinKind::NaturalEnd, JoinKind::Segue};
  return kUnder[static_cast<std::size_t>(dice.Between(0, static_cast<int>(kUnder.size()) - 1))];
}

}  // namespace

double JoinShape::FadedBy(double share) {
  const double left = 1 - std::clamp(share, 0.0, 1.0);
  return left * left;
}

double JoinShape::QuietBefore() const {
  return Overlap > 0 ? 0 : Silence + Fade * kInaudiblePart;
}

JoinShape ShapeOf(const Song& song) {
  Dice dice(HashOf(song.Title + '\n' + song.Artist));
  JoinShape shape;
  JoinKind kind = song.Join;
  if (kind == JoinKind::Talk) {
    const double length = Uniform(dice, 3, 7);
    shape.TalkBefore = Uniform(dice, 0.15, 0.85) * length;
    shape.TalkAfter = length - shape.TalkBefore;
    shape.Ducked = std::pow(10.0, -Uniform(dice, 6, 14) / 20);
    kind = UnderTalk(dice);
  }
  shape.Fade = kClick;
  switch (kind) {
    case JoinKind::Silence:
      shape.Fade = Uniform(dice, 0.02, 2.5);
      shape.Silence = Uniform(dice, 0.25, 2.5);
      break;
    case JoinKind::NaturalEnd:
      shape.Fade = Uniform(dice, 1.5, 5);
      shape.Silence = Uniform(dice, 0, 0.15);
      break;
    case JoinKind::Segue:
      shape.Overlap = Uniform(dice, 1, 6);
      shape.Fade = shape.Overlap * Uniform(dice, 1, 1.6);
      if (dice.Fraction() < 0.25) shape.FadeIn = Uniform(dice, 0.05, 0.6);
      break;
    default:
      break;
  }
  const double longest = std::chrono::duration<double>(song.Length).count() / 3;
  for (double* part :
       {&shape.Fade, &shape.Silence, &shape.Overlap, &shape.FadeIn, &shape.TalkBefore, &shape.TalkAfter}) {
    *part = std::min(*part, longest);
  }
  return shape;
}

}  // namespace kestrune::receiver
