#pragma once

#include <algorithm>
#include <vector>

namespace kestrune::schedule {

/// An open editor of the stored entries.
class EntryEditor {
 public:
  virtual ~EntryEditor() = default;

  /// Whether it holds changes that are not stored yet.
  [[nodiscard]] virtual bool HasChanges() const = 0;
  /// The stored entries were changed elsewhere, while it had no changes of its own: it reads them again.
  virtual void EntriesChanged() = 0;
};

/// The editors that are open. Before changing the stored entries elsewhere, ask whether an editor has changes, which
/// its save would put over the new ones; afterwards let the editors read the entries again.
class EntryEditors {
 public:
  /// The editor must be removed before it is destroyed.
  void Add(EntryEditor& editor) { open_.push_back(&editor); }
  void Remove(EntryEditor& editor) { std::erase(open_, &editor); }

  [[nodiscard]] bool HaveChanges() const {
    return std::any_of(open_.begin(), open_.end(),
                       [](const EntryEditor* editor) { return editor->HasChanges(); });
  }
  void EntriesChanged() {
    for (EntryEditor* editor : open_) editor->EntriesChanged();
  }

 private:
  std::vector<EntryEditor*> open_;
};

}  // namespace kestrune::schedule
