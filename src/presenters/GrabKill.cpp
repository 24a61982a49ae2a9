#include "presenters/GrabKill.h"

#include <fmt/format.h>

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
  lblQuestion_ = base::ReplaceAll(kQuestion, "%t", field == Field::Artist ? "Artist" : "Song");
  lblQuestion_ = base::ReplaceAll(lblQuestion_, "%v", text);
  const std::string single = base::OneLine(base::ReplaceAll(text, "&&", "&"));
  do {
    grabMode_ = 0;
    if (show_) show_();
  } while (grabMode_ != 0 && !Append(ListOf(field), base::Trim(single)));
}

schedule::RestrictList GrabKill::ListOf(Field field) const {
  const bool kill = grabMode_ == kKill;
  if (field == Field::Song)
    return kill ? schedule::RestrictList::KillSongs : schedule::RestrictList::GrabSongs;
  return kill ? schedule::RestrictList::KillArtists : schedule::RestrictList::GrabArtists;
}

bool GrabKill::Append(schedule::RestrictList list, std::string_view fragment) {
  base::Ignored(schedule::MakeUserDataFolder(files_, environment_));
  const std::string path = restrictions_.RestrictionFile();
  const auto before = files_.Read(path);
  // A text editor may have left the last line without an end: the entry would become part of it. If the file cannot
  // be read, that is possible too; an empty line does no harm.
  const bool endsInLine = before ? before->empty() || before->ends_with('\n') : !files_.Exists(path);
  std::string line = endsInLine ? "" : "\n";
  line += static_cast<char>('0' + static_cast<int>(list));
  line.append(fragment).append("\n");
  if (!files_.Append(path, line)) {
    log_.DoLog(fmt::format("\"{}\" was not added to the Grab and Kill lists: {} could not be written",
                           fragment, path));
    return false;
  }
  restrictions_.LoadRestrictions();
  editor_.AddItem(list, fragment);
  return true;
}

}  // namespace kestrune::presenters
