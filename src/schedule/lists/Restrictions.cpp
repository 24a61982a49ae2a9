#include "schedule/lists/Restrictions.h"

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Text.h"
#include "schedule/log/EachLine.h"
#include "schedule/log/UserDataFolder.h"

namespace kestrune::schedule {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Files that were put together have marks inside too, and the removal of what is before one may make its line the
/// first.
std::string WithoutMarks(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    while (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    const std::string_view line = text.substr(0, text.find('\n')), end = text.substr(line.size(), 1);
    result.append(line).append(end);
    text.remove_prefix(line.size() + end.size());
  }
  return result;
}

}  // namespace

std::string Restrictions::RestrictionFile() const {
  return UserDataFolder(environment_).append("/Restriction").append(multiUnit_).append(".txt");
}

void Restrictions::LoadRestrictions() {
  base::Ignored(MakeUserDataFolder(files_, environment_));
  const auto text = ReadFile();
  if (!text) {
    log_.DoLog("The Grab and Kill lists stay as they are: " + RestrictionFile() + " could not be read");
    return;
  }
  for (Rows& rows : rows_) rows.clear();
  EachLine(*text, [this](std::string_view line) {
    if (line.empty() || line.front() < '0' || line.front() > '3') return;
    Rows& rows = rows_[static_cast<std::size_t>(line.front() - '0')];
    if (rows.size() == kMaxRows) return;
    const std::string_view fragment = line.substr(1);
    rows.push_back({std::string(fragment), base::ToLower(fragment)});
  });
}

std::optional<std::string> Restrictions::ReadFile() const {
  const std::string path = RestrictionFile();
  if (!files_.Exists(path)) return std::string();
  const auto text = files_.Read(path);
  if (!text) return std::nullopt;
  return WithoutMarks(*text);
}

base::Result Restrictions::Add(RestrictList list, std::string_view fragment) {
  base::Ignored(MakeUserDataFolder(files_, environment_));
  const std::string path = RestrictionFile();
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
    return base::Result::Failed("the file of the lists could not be written");
  }
  LoadRestrictions();
  if (editor_ != nullptr) editor_->AddItem(list, fragment);
  return base::Result::Done();
}

Restrictions::Removal Restrictions::Remove(RestrictList list, std::string_view text) {
  const auto failed = [&](std::string_view what) {
    Removal removal{.Failure = "the list file " + RestrictionFile() + " could not be " + std::string(what)};
    log_.DoLog("Nothing was removed from the Grab and Kill lists: " + removal.Failure);
    return removal;
  };
  const auto before = ReadFile();
  if (!before) return failed("read");
  std::string after;
  int removed = 0;
  EachLine(*before, [&](std::string_view line) {
    const bool ofList = !line.empty() && line.front() == static_cast<char>('0' + static_cast<int>(list));
    if (ofList && base::EqualsNoCase(base::Trim(line.substr(1)), base::Trim(text))) {
      ++removed;
    } else {
      after.append(line).append("\n");
    }
  });
  if (removed == 0) return {};
  if (!files_.Replace(RestrictionFile(), after)) return failed("written");
  LoadRestrictions();
  return {.Count = removed, .Failure = ""};
}

bool Restrictions::Matches(const Rows& rows, std::string_view text) {
  const std::string lower = base::ToLower(text);
  const bool blank = base::Trim(text).empty();
  for (const Row& row : rows) {
    const bool inside = !lower.empty() && lower.find(row.Lower) != std::string::npos;
    if (inside || (blank && row.Fragment == kBlank)) return true;
  }
  return false;
}

bool Restrictions::IsInGrabList(std::string_view artist, std::string_view song) const {
  return Matches(RowsOf(RestrictList::GrabArtists), artist) || Matches(RowsOf(RestrictList::GrabSongs), song);
}

bool Restrictions::IsInKillList(std::string_view artist, std::string_view song) const {
  return Matches(RowsOf(RestrictList::KillArtists), artist) || Matches(RowsOf(RestrictList::KillSongs), song);
}

std::int16_t Restrictions::RestrictCount(RestrictList list) const {
  return static_cast<std::int16_t>(RowsOf(list).size());
}

std::string_view Restrictions::Fragment(RestrictList list, std::int16_t row) const {
  const Rows& rows = RowsOf(list);
  if (row < 1 || static_cast<std::size_t>(row) > rows.size()) return {};
  return rows[static_cast<std::size_t>(row) - 1].Fragment;
}

}  // namespace kestrune::schedule
