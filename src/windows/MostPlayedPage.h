#pragma once

#include <QWidget>
#include <cstdint>
#include <string_view>

#include "presenters/MostPlayed.h"

class QComboBox;
class QTreeWidget;

namespace kestrune::windows {

class ElidedLabel;

/// The page of the recording report with what was played most.
class MostPlayedPage final : public QWidget {
 public:
  /// The rules must outlive the page. It shows nothing of them before they were told to show.
  explicit MostPlayedPage(presenters::MostPlayed& rules, QWidget* parent = nullptr);

  void Refresh();

 private:
  using Choose = void (presenters::MostPlayed::*)(int row);

  QComboBox* AddList(const char* name, std::string_view tip, const char* caption, int characters,
                     Choose choose);
  void ShowRows();

  presenters::MostPlayed& rules_;
  QComboBox* cboPlayedAs_;
  QComboBox* cboPlayedChannel_;
  QComboBox* cboPlayedDays_;
  QTreeWidget* lstPlayed_;
  ElidedLabel* lblPlayed_;
  std::uint32_t changes_ = 0;  // shown
};

}  // namespace kestrune::windows
