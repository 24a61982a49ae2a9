#pragma once

#include <QDialog>

#include "config/settings/SettingsSection.h"
#include "presenters/DateSelect.h"

class QCalendarWidget;
class QDate;
class QLabel;

namespace kestrune::windows {

/// The date picker of the scheduler. It is shown by exec(), which blocks. Any choice closes it; closed
/// without one, it leaves the date unchanged.
class frmDateSelect final : public QDialog {
 public:
  /// Both references must outlive the window.
  frmDateSelect(presenters::DateSelect& rules, const config::SettingsSection& section,
                QWidget* parent = nullptr);

  void Refresh();
  void done(int result) override;

 private:
  [[nodiscard]] QWidget* MakeCalendar();
  void ChooseDate(QDate date);
  void ShowPage();

  presenters::DateSelect& rules_;
  const config::SettingsSection& section_;
  QCalendarWidget* cldDateSelect_ = nullptr;
  QLabel* lblMonth_ = nullptr;
};

}  // namespace kestrune::windows
