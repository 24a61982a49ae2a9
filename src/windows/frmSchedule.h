#pragma once

#include <QStringListModel>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>

#include "base/EventLoop.h"
#include "base/RunState.h"
#include "config/settings/SettingsSection.h"
#include "presenters/Scheduler.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QPushButton;

namespace kestrune::windows {

class ElidedLabel;
class WeekBar;

/// The scheduler: the coming week as a bar, and below it a row an entry with its next run. Made when it is shown, deleted by itself once it has closed.
class frmSchedule final : public QWidget {
 public:
  /// Takes rules that are newly loaded, and places itself. All references must outlive the window.
  frmSchedule(std::shared_ptr<presenters::Scheduler> rules, const base::EventLoop& loop,
              const base::RunState& run, const config::SettingsSection& section, QWidget* parent = nullptr);
  ~frmSchedule() override;

  /// A close has ended, refused or not: `chkSchedule` is to be ticked if it was refused, cleared if not. Does
  /// not come while the program shuts down.
  std::function<void(bool refused)> CloseEnded;
  /// Gives the main window the focus.
  std::function<void()> FocusMainWindow;

  [[nodiscard]] const presenters::Scheduler& Rules() const { return *rules_; }
  void Refresh();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  /// The lists of a time of day.
  struct TimeLists {
    QComboBox* Hour = nullptr;
    QComboBox* Minute = nullptr;
    QComboBox* Half = nullptr;
  };
  struct Row {
    QCheckBox* chkEnabled = nullptr;
    QComboBox* cboChannel = nullptr;
    QPushButton* cmdStartDate = nullptr;
    TimeLists Start;
    QComboBox* cboDurationHour = nullptr;
    QComboBox* cboDurationMinute = nullptr;
    QPushButton* cmdEndDate = nullptr;
    TimeLists End;
    QCheckBox* chkIntegrel = nullptr;
    QCheckBox* chkCleftune = nullptr;
    QCheckBox* chkGrab = nullptr;
    QCheckBox* chkKill = nullptr;
    QComboBox* cboMP3BitRate = nullptr;
    QLabel* lblNext = nullptr;
    ElidedLabel* lblWarning = nullptr;
    QWidget* Veil = nullptr;
  };
  /// A control of a row: its name, its tip, and its accessible name.
  struct Control {
    const char* Name;
    const char* Tip;
    const char* Accessible;
  };

  void ListChannels();
  void MakeHeadings(QGridLayout& grid);
  void MakeRow(int index, QGridLayout& grid, QWidget* page);
  void MakePlanLine(int index, QGridLayout& grid, QWidget* page);
  void ShowPlan();
  [[nodiscard]] QComboBox* MakeList(int index, const Control& control, QStringListModel& items,
                                    std::function<void()> chosen, QWidget* page);
  [[nodiscard]] QCheckBox* MakeBox(int index, const Control& control, const char* caption,
                                   void (presenters::Scheduler::*tick)(int, bool), QWidget* page);
  [[nodiscard]] QPushButton* MakeButton(int index, const Control& control, const char* caption,
                                        std::function<void()> pressed, QWidget* page);
  [[nodiscard]] TimeLists MakeTime(int index, const std::array<Control, 3>& controls,
                                   void (presenters::Scheduler::*choose)(int, schedule::TimeOfDay),
                                   TimeLists Row::*where, QWidget* page);
  void PickDate(int index, bool start);
  void cmdSave();
  void cmdCancel();

  // Shared, so that they outlive a window that is destroyed while it waits for an answer.
  std::shared_ptr<presenters::Scheduler> rules_;
  const base::EventLoop& loop_;
  const base::RunState& run_;
  const config::SettingsSection& section_;
  // Each list of a kind shows the same items.
  QStringListModel channels_;
  QStringListModel hours_;
  QStringListModel minutes_;
  QStringListModel halves_;
  QStringListModel durationHours_;
  QStringListModel bitRates_;
  std::array<Row, schedule::kSchedulerRows> row_;
  WeekBar* weekBar_;
};

}  // namespace kestrune::windows
