#include "presenters/GrabKill.h"

#include "base/Ignored.h"
#include "base/OneLine.h"
#include "base/Text.h"
#include "schedule/log/UserDataFolder.h"

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
  grabMode_ = 0;
  lblQuestion_ = base::ReplaceAll(kQuestion, "%t", field == Field::Artist ? "Artist" : "Song");
  lblQuestion_ = base::ReplaceAll(lblQuestion_, "%v", text);
  if (show_) show_();
  if (grabMode_ == 0) return;
  const bool kill = grabMode_ == kKill;
  schedule::RestrictList list =
      kill ? schedule::RestrictList::KillArtists : schedule::RestrictList::GrabArtists;
  if (field == Field::Song)
    list = kill ? schedule::RestrictList::KillSongs : schedule::RestrictList::GrabSongs;
  const std::string single = base::OneLine(base::ReplaceAll(text, "&&", "&"));
  base::Ignored(Append(list, base::Trim(single)));
}

bool GrabKill::Append(schedule::RestrictList list, std::string_view fragment) {
  base::Ignored(schedule::MakeUserDataFolder(files_, environment_));
  const std::string path = restrictions_.RestrictionFile();
  const auto before = files_.Read(path);
  // An editor may have left the last line without an end: the entry would become a part of it.
  std::string line = before && !before->empty() && !before->ends_with('\n') ? "\n" : "";
  line += static_cast<char>('0' + static_cast<int>(list));
  line.append(fragment).append("\n");
  const bool written = files_.Append(path, line);
  restrictions_.LoadRestrictions();
  editor_.AddItem(list, fragment);
  return written;
}

}  // namespace kestrune::presenters
