#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::presenters {

/// One of the editor's four columns, as it is shown.
struct RestrictColumn {
  std::vector<std::string> lstRestrict;  ///< sorted without regard to case
  int Selected = -1;                     ///< index in the list
  std::string txtRestrict;
};

/// The rules of the window that edits the Grab and Kill lists: a private copy of the list file, from the load of
/// the window to its end. The columns are numbered as the lists are, 0 to 3.
class RestrictListEditor {
 public:
  static constexpr std::size_t kColumns = 4;

  /// All references must outlive the editor.
  RestrictListEditor(schedule::Restrictions& restrictions, platform::Files& files,
                     const platform::Environment& environment, platform::Dialogs& dialogs)
      : restrictions_(restrictions), files_(files), environment_(environment), dialogs_(dialogs) {}

  /// The window opens: reads the file anew.
  void Load();
  /// The window has closed.
  void Unload();
  [[nodiscard]] bool IsLoaded() const { return loaded_; }

  [[nodiscard]] const RestrictColumn& Column(std::size_t index) const { return columns_[index]; }
  [[nodiscard]] bool ListDirty() const { return listDirty_; }

  /// The user writes.
  void txtRestrict_Change(std::size_t index, std::string_view text) { columns_[index].txtRestrict = text; }
  /// The user chooses an item, or none if the row is -1.
  void lstRestrict_Click(std::size_t index, int row);
  void cmdAdd(std::size_t index);
  void cmdDelete(std::size_t index);
  /// Asks first. Does not make the lists dirty: a Clear alone is lost on Cancel without a question.
  void cmdClear(std::size_t index);
  /// Writes the lists and lets them take effect; false, and everything stays as it is, if they could not be
  /// written.
  [[nodiscard]] bool cmdSave();
  /// The user or the window asks for the close: a question if there are changes. False refuses it.
  [[nodiscard]] bool MayClose();

  /// An entry that has reached the file otherwise, so that an open editor does not lose it.
  void AddItem(schedule::RestrictList list, std::string_view fragment);

 private:
  static void RemoveDuplicates(std::vector<std::string>& items);
  static void Insert(RestrictColumn& column, std::string item);
  static void Replace(RestrictColumn& column, std::string item);
  [[nodiscard]] static bool Has(const RestrictColumn& column, std::string_view item);

  schedule::Restrictions& restrictions_;
  platform::Files& files_;
  const platform::Environment& environment_;
  platform::Dialogs& dialogs_;

  std::array<RestrictColumn, kColumns> columns_;
  std::string path_;
  bool loaded_ = false;
  bool listDirty_ = false;
};

}  // namespace kestrune::presenters
