#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/Journal.h"
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

/// The rules of the window that edits the Grab and Kill lists. It works on a copy of the list file, from when the
/// window opens until it closes. The columns are numbered as the lists are, 0 to 3.
class RestrictListEditor final : public schedule::ListEditor {
 public:
  static constexpr std::size_t kColumns = 4;

  /// All references must outlive the editor.
  RestrictListEditor(schedule::Restrictions& restrictions, platform::Files& files,
                     const platform::Environment& environment, platform::Dialogs& dialogs, base::Journal& log)
      : restrictions_(restrictions), files_(files), environment_(environment), dialogs_(dialogs), log_(log) {}
  ~RestrictListEditor() override { Unload(); }
  RestrictListEditor(const RestrictListEditor&) = delete;
  RestrictListEditor& operator=(const RestrictListEditor&) = delete;

  /// The window opens: reads the file. If it exists but cannot be read, the columns are empty, and what they then
  /// hold is never saved.
  void Load();
  /// The window has closed.
  void Unload();
  [[nodiscard]] bool IsLoaded() const { return loaded_; }

  [[nodiscard]] const RestrictColumn& Column(std::size_t index) const { return columns_[index]; }
  [[nodiscard]] bool ListDirty() const { return listDirty_; }

  /// The user types.
  void txtRestrict_Change(std::size_t index, std::string_view text) { columns_[index].txtRestrict = text; }
  /// The user chooses an item, or none if the row is -1.
  void lstRestrict_Click(std::size_t index, int row);
  void cmdAdd(std::size_t index);
  void cmdDelete(std::size_t index);
  /// Asks first. Does not make the lists dirty: after nothing but a Clear, Cancel asks no question.
  void cmdClear(std::size_t index);
  /// Writes the lists and lets them take effect. Returns false if they could not be written; then everything stays
  /// as it is, and the log says why.
  [[nodiscard]] bool cmdSave();
  /// The user or the window asks for the close: a question if there are changes. Returns false to refuse it.
  [[nodiscard]] bool MayClose();

  void AddItem(schedule::RestrictList list, std::string_view fragment) override;

 private:
  static void RemoveDuplicates(std::vector<std::string>& items);
  static void Insert(RestrictColumn& column, std::string item);
  static void Replace(RestrictColumn& column, std::string item);
  [[nodiscard]] static bool Has(const RestrictColumn& column, std::string_view item);

  schedule::Restrictions& restrictions_;
  platform::Files& files_;
  const platform::Environment& environment_;
  platform::Dialogs& dialogs_;
  base::Journal& log_;

  std::array<RestrictColumn, kColumns> columns_;
  std::string path_;
  bool loaded_ = false;
  bool unread_ = false;  // there is a file, and it could not be read
  bool listDirty_ = false;
};

}  // namespace kestrune::presenters
