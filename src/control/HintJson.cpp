#include "control/HintJson.h"

#include "control/ConsoleText.h"
#include "control/JsonMembers.h"

namespace kestrune::control {

static void ForEachMember(EitherConst<HintReport> auto& hint, auto& visit) {
  visit("number", hint.Number);
  visit("began", hint.Began);
  visit("channel", hint.Channel);
  visit("station", hint.Station);
  visit("artist", hint.Artist);
  visit("song", hint.Song);
  visit("text", hint.Text);
}

std::string HintsText(const std::vector<HintReport>& hints) {
  std::string text;
  for (const HintReport& hint : hints) text += Printable(hint.Text) + '\n';
  return text;
}

Json ToJson(const std::vector<HintReport>& hints) {
  return ArrayOf(hints);
}

Json ToJson(const HintReport& hint) {
  return ObjectOf(hint);
}

std::optional<std::vector<HintReport>> HintsFromJson(const Json& json) {
  return FromArray<HintReport>(json);
}

}  // namespace kestrune::control
