#include "presenters/GrabKill.h"

#include "base/OneLine.h"
#include "base/Text.h"

namespace kestrune::presenters {
namespace {

constexpr std::string_view kQuestion =
    "Do you want to add the %t \"%v\" to the Grab list (always record) or the Kill list (never record)?";
constexpr std::int16_t kKill = 2;

}  // namespace

void GrabKill::DblClick(Field field, std::string_view caption) {
  // The caption may change while the question is open.
  const std::string text(caption);
  if (base::Trim(text).empty()) return;
  lblQuestion_ = base::ReplaceAll(kQuestion, "%t", field == Field::Artist ? "Artist" : "Song");
  lblQuestion_ = base::ReplaceAll(lblQuestion_, "%v", text);
  const std::string plain = base::ReplaceAll(text, "&&", "&");
  do {
    grabMode_ = 0;
    if (show_) show_();
  } while (grabMode_ != 0 && !Write(field, grabMode_ == kKill, plain));
}

void GrabKill::Add(Field field, bool kill, std::string_view text) {
  if (base::Trim(text).empty()) return;
  if (!Write(field, kill, text)) DblClick(field, base::DoubleAmpersands(text));
}

bool GrabKill::Write(Field field, bool kill, std::string_view text) {
  const std::string single = base::OneLine(text);
  return restrictions_.Add(ListOf(field, kill), base::Trim(single)).Ok();
}

schedule::RestrictList GrabKill::ListOf(Field field, bool kill) {
  if (field == Field::Song)
    return kill ? schedule::RestrictList::KillSongs : schedule::RestrictList::GrabSongs;
  return kill ? schedule::RestrictList::KillArtists : schedule::RestrictList::GrabArtists;
}

}  // namespace kestrune::presenters
