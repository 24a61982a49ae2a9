#include "presenters/RestrictListEditor.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/Ignored.h"
#include "base/OneLine.h"
#include "base/Text.h"
#include "schedule/log/EachLine.h"
#include "schedule/log/UserDataFolder.h"

namespace kestrune::presenters {
namespace {

bool SortsBefore(const std::string& a, const std::string& b) {
  return base::ToLower(a) < base::ToLower(b);
}

}  // namespace

void RestrictListEditor::Load() {
  Unload();
  loaded_ = true;
  restrictions_.SetEditor(this);
  base::Ignored(schedule::MakeUserDataFolder(files_, environment_));
  path_ = restrictions_.RestrictionFile();
  const auto text = restrictions_.ReadFile();
  unread_ = !text;
  if (unread_) {
    log_.DoLog("The Grab and Kill lists cannot be edited: " + path_ + " could not be read");
    return;
  }
  schedule::EachLine(*text, [this](std::string_view line) {
    if (line.empty() || line.front() < '0' || line.front() > '3') return;
    columns_[static_cast<std::size_t>(line.front() - '0')].lstRestrict.emplace_back(line.substr(1));
  });
  for (RestrictColumn& column : columns_) {
    std::stable_sort(column.lstRestrict.begin(), column.lstRestrict.end(), SortsBefore);
    RemoveDuplicates(column.lstRestrict);
  }
}

void RestrictListEditor::Unload() {
  if (loaded_) restrictions_.SetEditor(nullptr);
  columns_ = {};
  loaded_ = unread_ = listDirty_ = false;
}

// The last item is never tested, so that a duplicate in last place stays until the lists are saved.
void RestrictListEditor::RemoveDuplicates(std::vector<std::string>& items) {
  if (items.empty()) return;
  const auto last = items.end() - 1;
  const auto end = std::unique(items.begin(), last, base::EqualsNoCase);
  items.erase(end, last);
}

void RestrictListEditor::lstRestrict_Click(std::size_t index, int row) {
  RestrictColumn& column = columns_[index];
  const bool exists = row >= 0 && static_cast<std::size_t>(row) < column.lstRestrict.size();
  column.Selected = exists ? row : -1;
  if (!exists) return;
  const std::string& item = column.lstRestrict[static_cast<std::size_t>(row)];
  column.txtRestrict = item == schedule::Restrictions::kBlank ? std::string() : item;
}

void RestrictListEditor::cmdAdd(std::size_t index) {
  RestrictColumn& column = columns_[index];
  listDirty_ = true;
  const std::string line = base::OneLine(column.txtRestrict);
  const std::string_view text = base::Trim(line);
  // An empty box stands for the marker, and stays as it is.
  const std::string_view item = text.empty() ? schedule::Restrictions::kBlank : text;
  if (!text.empty()) column.txtRestrict.clear();
  if (column.Selected >= 0) {
    Replace(column, std::string(item));
  } else if (!Has(column, item)) {
    Insert(column, std::string(item));
  }
  column.Selected = -1;
}

void RestrictListEditor::cmdDelete(std::size_t index) {
  RestrictColumn& column = columns_[index];
  listDirty_ = true;
  if (column.Selected >= 0) column.lstRestrict.erase(column.lstRestrict.begin() + column.Selected);
  column.Selected = -1;
  column.txtRestrict.clear();
}

void RestrictListEditor::cmdClear(std::size_t index) {
  const auto answer = dialogs_.Show({.Title = "Clear List",
                                     .Text = "This will delete the entire list, are you sure?",
                                     .Icon = platform::MessageIcon::Question,
                                     .Buttons = platform::MessageButtons::YesNo});
  if (answer != platform::MessageAnswer::Yes) return;
  columns_[index].lstRestrict.clear();
  columns_[index].Selected = -1;
}

bool RestrictListEditor::cmdSave() {
  const auto failed = [this](std::string_view why) {
    log_.DoLog("The Grab and Kill lists were not saved: " + path_ + std::string(why));
    return false;
  };
  // What is in the file is unknown, and must not be replaced by what is in the window.
  if (unread_) return failed(" could not be read when the window opened");
  std::string text;
  for (std::size_t list = 0; list < kColumns; ++list) {
    const std::string* before = nullptr;
    for (const std::string& item : columns_[list].lstRestrict) {
      if (before == nullptr || !base::EqualsNoCase(item, *before)) {
        text += static_cast<char>('0' + list);
        text.append(item).append("\n");
      }
      before = &item;
    }
  }
  if (!files_.Replace(path_, text)) return failed(" could not be written");
  restrictions_.LoadRestrictions();
  listDirty_ = false;
  return true;
}

bool RestrictListEditor::MayClose() {
  if (!listDirty_) return true;
  const auto answer = dialogs_.Show({.Title = "Save Grab/Kill Changes",
                                     .Text = "You have made changes, do you want to save your changes first?",
                                     .Icon = platform::MessageIcon::Question,
                                     .Buttons = platform::MessageButtons::YesNoCancel});
  if (answer == platform::MessageAnswer::Yes) return cmdSave();
  return answer == platform::MessageAnswer::No;
}

void RestrictListEditor::AddItem(schedule::RestrictList list, std::string_view fragment) {
  Insert(columns_[static_cast<std::size_t>(list)], std::string(fragment));
}

/// Inserts after items that differ only in case, so that the first of such a pair stays first. The selection stays
/// on its item.
void RestrictListEditor::Insert(RestrictColumn& column, std::string item) {
  auto& items = column.lstRestrict;
  const auto place = std::upper_bound(items.begin(), items.end(), item, SortsBefore);
  if (place - items.begin() <= column.Selected) ++column.Selected;
  items.insert(place, std::move(item));
}

void RestrictListEditor::Replace(RestrictColumn& column, std::string item) {
  column.lstRestrict.erase(column.lstRestrict.begin() + std::exchange(column.Selected, -1));
  Insert(column, std::move(item));
}

bool RestrictListEditor::Has(const RestrictColumn& column, std::string_view item) {
  return std::any_of(column.lstRestrict.begin(), column.lstRestrict.end(),
                     [item](const std::string& other) { return base::Trim(other) == item; });
}

}  // namespace kestrune::presenters
