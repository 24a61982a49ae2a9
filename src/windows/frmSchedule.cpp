#include "windows/frmSchedule.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include <fmt/core.h>

#include "base/Text.h"
#include "presenters/DateSelect.h"
#include "windows/Binding.h"
#include "windows/Colours.h"
#include "windows/ElidedLabel.h"
#include "windows/FittedPage.h"
#include "windows/RememberedPlace.h"
#include "windows/WeekBar.h"
#include "windows/frmDateSelect.h"

namespace kestrune::windows {
namespace {

using presenters::Scheduler;
using schedule::SchedulerRow;
using schedule::TimeOfDay;

/// The columns of the grid, from the left; narrow empty ones set the groups apart.
enum Column : int {
  Number,
  Enabled,
  Channel,
  StartGap,
  StartDate,
  StartTime,
  DurationGap = StartTime + 3,
  Duration,
  EndGap = Duration + 2,
  EndDate,
  EndTime,
  ModesGap = EndTime + 3,
  Modes,
  BitRate = Modes + 4,
  ClearGap,
  Clear,
};

/// The line of the grid with the controls of a row; its plan is on the next one.
int LineOf(int index) {
  return 2 * index + 1;
}

QStringList Numbers(int first, int last, int width) {
  QStringList items;
  for (int number = first; number <= last; ++number) items += ToQt(fmt::format("{:0{}}", number, width));
  return items;
}

QStringList ToList(const std::vector<std::string>& texts) {
  QStringList items;
  for (const std::string& text : texts) items += ToQt(text);
  return items;
}

/// No wider than its widest text needs, so that ten rows of many controls fit on a screen.
void Tighten(QPushButton& button, const char* widest) {
  const QFontMetrics metrics = button.fontMetrics();
  button.setFixedWidth(metrics.horizontalAdvance(QLatin1String(widest)) + 3 * metrics.averageCharWidth());
}

/// Makes the row below it faint, whose controls work all the same.
class Veil final : public QWidget {
 public:
  explicit Veil(QWidget* parent) : QWidget(parent) { setAttribute(Qt::WA_TransparentForMouseEvents); }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    constexpr float kShare = 0.33F;  // more would make the texts hard to read
    QColor window = palette().color(QPalette::Window);
    window.setAlphaF(kShare);
    QPainter(this).fillRect(rect(), window);
  }
};

/// Its popup is as wide as its items. If its own width does not follow them, it elides a long text.
class NarrowList final : public QComboBox {
 public:
  using QComboBox::QComboBox;

  void showPopup() override {
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    view()->setMinimumWidth(std::max(width(), view()->sizeHintForColumn(0) + 2 * bar));
    QComboBox::showPopup();
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    if (sizeAdjustPolicy() == AdjustToContentsOnFirstShow) return QComboBox::paintEvent(event);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect room =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideRight, room.width() - 2 * kInset);
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
  }

 private:
  static constexpr int kInset = 2;
};

}  // namespace

frmSchedule::frmSchedule(std::shared_ptr<Scheduler> rules, const base::EventLoop& loop,
                         const base::RunState& run, const config::SettingsSection& section, QWidget* parent)
    : QWidget(parent, Qt::Window),
      rules_(std::move(rules)),
      loop_(loop),
      run_(run),
      section_(section),
      hours_(Numbers(1, 12, 1)),
      minutes_(Numbers(0, 59, 2)),
      halves_({QStringLiteral("AM"), QStringLiteral("PM")}),
      durationHours_(Numbers(0, 47, 1)),
      bitRates_(ToList(schedule::SchedulerBitRates())),
      weekBar_(new WeekBar(this)) {
  setObjectName(QStringLiteral("frmSchedule"));
  setWindowTitle(QStringLiteral("Kestrune Scheduler"));
  setAttribute(Qt::WA_DeleteOnClose);
  ListChannels();

  auto* page = new FittedPage(this);
  auto* grid = new QGridLayout(&page->Content());
  const int letter = fontMetrics().averageCharWidth();
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(letter / 3);
  grid->setVerticalSpacing(letter / 2);
  for (const Column gap : {StartGap, DurationGap, EndGap, ModesGap, ClearGap})
    grid->setColumnMinimumWidth(gap, letter);
  // Its heading stands apart from the next one.
  grid->setColumnMinimumWidth(Enabled, 4 * letter);
  grid->setColumnStretch(Channel, 1);
  MakeHeadings(*grid);
  for (int index = 0; index < schedule::kSchedulerRows; ++index) MakeRow(index, *grid, &page->Content());
  grid->setRowStretch(2 * schedule::kSchedulerRows + 1, 1);

  auto* save = new QPushButton(QStringLiteral("Save"), this);
  Name(*save, "cmdSave");
  connect(save, &QPushButton::clicked, this, &frmSchedule::cmdSave);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  Name(*cancel, "cmdCancel");
  connect(cancel, &QPushButton::clicked, this, &frmSchedule::cmdCancel);
  auto* ends = new QHBoxLayout;
  ends->addStretch();
  ends->addWidget(save);
  ends->addWidget(cancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(weekBar_);
  layout->addWidget(page);
  layout->addLayout(ends);

  Refresh();
  FitToScreen(*this);
  RestorePlace(*this, section_, "Schedule");
  rules_->Reread = [this] {
    ListChannels();
    Refresh();
  };
}

frmSchedule::~frmSchedule() {
  rules_->Reread = [] {};
}

void frmSchedule::ListChannels() {
  QStringList channels;
  for (const schedule::SchedulerChannel& channel : rules_->Channels())
    channels += ToQt(Scheduler::ChannelItem(channel));
  if (channels_.stringList() != channels) channels_.setStringList(channels);
}

void frmSchedule::MakeHeadings(QGridLayout& grid) {
  const auto heading = [&](const char* text, int column, int span) {
    auto* label = new QLabel(QLatin1String(text));
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    grid.addWidget(label, 0, column, 1, span);
  };
  heading("On", Enabled, 1);
  heading("Channel", Channel, 1);
  heading("Start", StartDate, 4);
  heading("Duration", Duration, 2);
  heading("End", EndDate, 4);
  heading("Modes", Modes, 4);
  heading("Bit rate", BitRate, 1);
}

void frmSchedule::MakeRow(int index, QGridLayout& grid, QWidget* page) {
  Row& row = row_.at(static_cast<std::size_t>(index));
  const int line = LineOf(index);

  auto* lblItem = new QLabel(QString::number(index + 1), page);
  Name(*lblItem, fmt::format("lblItem_{}", index).c_str());
  lblItem->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  grid.addWidget(lblItem, line, Number);
  row.chkEnabled = MakeBox(index, {"chkEnabled", "Enable this schedule entry", "enabled"}, "",
                           &Scheduler::TickEnabled, page);
  grid.addWidget(row.chkEnabled, line, Enabled);
  row.cboChannel = MakeList(
      index, {"cboChannel", "Select the channel to record from", "channel"}, channels_,
      [this, index, &row] { rules_->ChooseChannel(index, row.cboChannel->currentIndex()); }, page);
  constexpr int kLeastStation = 15;
  row.cboChannel->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  row.cboChannel->setMinimumContentsLength(kLeastStation);
  row.cboChannel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  grid.addWidget(row.cboChannel, line, Channel);

  constexpr const char* kWidestDate = "Every Wednesday";
  row.cmdStartDate = MakeButton(
      index, {"cmdStartDate", "Click to change the date the recording will begin", "start date"}, "",
      [this, index] { PickDate(index, true); }, page);
  Tighten(*row.cmdStartDate, kWidestDate);
  grid.addWidget(row.cmdStartDate, line, StartDate);
  row.Start = MakeTime(index,
                       {{{"cboStartHour", "Select the hour of the start time", "start hour"},
                         {"cboStartMinute", "Select the minutes of the start time", "start minutes"},
                         {"cboStartAMPM", "Select AM or PM for the start time", "start AM or PM"}}},
                       &Scheduler::ChooseStartTime, &Row::Start, page);

  const auto duration = [this, index, &row] {
    rules_->ChooseDuration(index, row.cboDurationHour->currentIndex(), row.cboDurationMinute->currentIndex());
  };
  row.cboDurationHour =
      MakeList(index, {"cboDurationHour", "Select the number of hours to record", "hours to record"},
               durationHours_, duration, page);
  row.cboDurationMinute =
      MakeList(index, {"cboDurationMinute", "Select the number of minutes to record", "minutes to record"},
               minutes_, duration, page);
  grid.addWidget(row.cboDurationHour, line, Duration);
  grid.addWidget(row.cboDurationMinute, line, Duration + 1);

  row.cmdEndDate = MakeButton(
      index, {"cmdEndDate", "Click to change the date the recording will end", "end date"}, "",
      [this, index] { PickDate(index, false); }, page);
  Tighten(*row.cmdEndDate, kWidestDate);
  grid.addWidget(row.cmdEndDate, line, EndDate);
  row.End = MakeTime(index,
                     {{{"cboEndHour", "Select the hour of the end time", "end hour"},
                       {"cboEndMinute", "Select the minutes of the end time", "end minutes"},
                       {"cboEndAMPM", "Select AM or PM for the end time", "end AM or PM"}}},
                     &Scheduler::ChooseEndTime, &Row::End, page);
  for (const auto& [lists, column] : {std::pair{row.Start, StartTime}, {row.End, EndTime}}) {
    grid.addWidget(lists.Hour, line, column);
    grid.addWidget(lists.Minute, line, column + 1);
    grid.addWidget(lists.Half, line, column + 2);
  }

  row.chkIntegrel =
      MakeBox(index, {"chkIntegrel", "", "Integrel"}, "Integrel", &Scheduler::TickIntegrel, page);
  row.chkCleftune =
      MakeBox(index, {"chkCleftune", "Split tracks into individual files (default on!)", "Cleftune"},
              "Cleftune", &Scheduler::TickCleftune, page);
  row.chkGrab = MakeBox(
      index, {"chkGrab", "Check to require all songs in this event to appear in the grab list", "Grab List"},
      "Grab List", &Scheduler::TickGrab, page);
  row.chkKill =
      MakeBox(index,
              {"chkKill", "Check to disallow recording in this event any songs that appear in the kill list",
               "Kill List"},
              "Kill List", &Scheduler::TickKill, page);
  int column = Modes;
  for (QCheckBox* box : {row.chkIntegrel, row.chkCleftune, row.chkGrab, row.chkKill})
    grid.addWidget(box, line, column++);

  row.cboMP3BitRate = MakeList(
      index, {"cboMP3BitRate", "", "MP3 bit rate"}, bitRates_,
      [this, index, &row] { rules_->ChooseMP3BitRate(index, FromQt(row.cboMP3BitRate->currentText())); },
      page);
  grid.addWidget(row.cboMP3BitRate, line, BitRate);
  QPushButton* clear = MakeButton(
      index, {"cmdClear", "Clear this schedule entry", "clear"}, "Clear",
      [this, index] {
        rules_->cmdClear(index);
        Refresh();
      },
      page);
  Tighten(*clear, "Clear");
  grid.addWidget(clear, line, Clear);
  MakePlanLine(index, grid, page);
  // Last, so that it lies over the row.
  row.Veil = new Veil(page);
  Name(*row.Veil, fmt::format("veil_{}", index).c_str());
  grid.addWidget(row.Veil, line, Channel, 1, Clear - Channel + 1);
}

/// Below the controls of a row. It keeps its room while it is empty, so that no row moves under the mouse.
void frmSchedule::MakePlanLine(int index, QGridLayout& grid, QWidget* page) {
  constexpr int kWarningLetters = 60;
  Row& row = row_.at(static_cast<std::size_t>(index));
  row.lblNext = new QLabel(page);
  Name(*row.lblNext, fmt::format("lblNext_{}", index).c_str());
  row.lblNext->setTextFormat(Qt::PlainText);
  row.lblNext->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  row.lblWarning = new ElidedLabel(kWarningLetters, page);
  Name(*row.lblWarning, fmt::format("lblWarning_{}", index).c_str());
  auto* line = new QHBoxLayout;
  const int letter = fontMetrics().averageCharWidth();
  line->setContentsMargins(letter / 2, 0, 0, letter / 2);
  line->setSpacing(2 * letter);
  line->addStrut(fontMetrics().height() + letter / 2);
  line->addWidget(row.lblNext);
  line->addWidget(row.lblWarning, 1);
  grid.addLayout(line, LineOf(index) + 1, Channel, 1, Clear - Channel + 1);
}

QComboBox* frmSchedule::MakeList(int index, const Control& control, QStringListModel& items,
                                 std::function<void()> chosen, QWidget* page) {
  constexpr int kVisibleItems = 20;
  auto* list = new NarrowList(page);
  Name(*list, fmt::format("{}_{}", control.Name, index).c_str(), control.Tip,
       fmt::format("Entry {}, {}", index + 1, control.Accessible));
  list->setModel(&items);
  list->setMaxVisibleItems(kVisibleItems);
  list->setFocusPolicy(Qt::StrongFocus);
  list->installEventFilter(this);
  connect(list, &QComboBox::activated, this, [this, chosen = std::move(chosen)] {
    chosen();
    Refresh();
  });
  return list;
}

QCheckBox* frmSchedule::MakeBox(int index, const Control& control, const char* caption,
                                void (Scheduler::*tick)(int, bool), QWidget* page) {
  auto* box = new QCheckBox(QLatin1String(caption), page);
  Name(*box, fmt::format("{}_{}", control.Name, index).c_str(), control.Tip,
       fmt::format("Entry {}, {}", index + 1, control.Accessible));
  connect(box, &QCheckBox::clicked, this, [this, index, tick](bool ticked) {
    (*rules_.*tick)(index, ticked);
    Refresh();
  });
  return box;
}

QPushButton* frmSchedule::MakeButton(int index, const Control& control, const char* caption,
                                     std::function<void()> pressed, QWidget* page) {
  auto* button = new QPushButton(QLatin1String(caption), page);
  Name(*button, fmt::format("{}_{}", control.Name, index).c_str(), control.Tip);
  button->setAccessibleDescription(ToQt(fmt::format("Entry {}, {}", index + 1, control.Accessible)));
  connect(button, &QPushButton::clicked, this, std::move(pressed));
  return button;
}

frmSchedule::TimeLists frmSchedule::MakeTime(int index, const std::array<Control, 3>& controls,
                                             void (Scheduler::*choose)(int, TimeOfDay), TimeLists Row::*where,
                                             QWidget* page) {
  const auto chosen = [this, index, choose, where] {
    const TimeLists& lists = row_.at(static_cast<std::size_t>(index)).*where;
    (*rules_.*choose)(index, {.Hour = lists.Hour->currentIndex() + 1,
                              .Minute = lists.Minute->currentIndex(),
                              .PM = lists.Half->currentIndex() == 1});
  };
  return {.Hour = MakeList(index, controls[0], hours_, chosen, page),
          .Minute = MakeList(index, controls[1], minutes_, chosen, page),
          .Half = MakeList(index, controls[2], halves_, chosen, page)};
}

void frmSchedule::Refresh() {
  const auto showTime = [](const TimeLists& lists, const TimeOfDay& time) {
    ShowIndex(*lists.Hour, time.Hour - 1);
    ShowIndex(*lists.Minute, time.Minute);
    ShowIndex(*lists.Half, time.PM ? 1 : 0);
  };
  for (int index = 0; index < schedule::kSchedulerRows; ++index) {
    const Row& shown = row_.at(static_cast<std::size_t>(index));
    const SchedulerRow& row = rules_->Row(index);
    ShowChecked(*shown.chkEnabled, row.Enabled);
    ShowIndex(*shown.cboChannel, row.Channel);
    ShowText(*shown.cmdStartDate, row.Start.Caption);
    showTime(shown.Start, row.Start.Time);
    ShowIndex(*shown.cboDurationHour, row.DurationHours);
    ShowIndex(*shown.cboDurationMinute, row.DurationMinutes);
    ShowText(*shown.cmdEndDate, row.End.Caption);
    showTime(shown.End, row.End.Time);
    ShowChecked(*shown.chkIntegrel, row.Integrel);
    ShowChecked(*shown.chkCleftune, row.Cleftune);
    ShowChecked(*shown.chkGrab, row.Grab);
    ShowChecked(*shown.chkKill, row.Kill);
    // A text that the list does not have is shown as it is stored.
    const auto rate = static_cast<int>(bitRates_.stringList().indexOf(ToQt(row.MP3BitRate)));
    ShowIndex(*shown.cboMP3BitRate, rate);
    const QString other = rate < 0 ? ToQt(base::Trim(row.MP3BitRate)) : QString();
    if (shown.cboMP3BitRate->placeholderText() != other) shown.cboMP3BitRate->setPlaceholderText(other);
  }
  ShowPlan();
}

void frmSchedule::ShowPlan() {
  const presenters::SchedulePlan& plan = rules_->Plan();
  const QColor warning = WarningColour(palette());
  weekBar_->Show(plan.Week);
  for (std::size_t index = 0; index < row_.size(); ++index) {
    Row& row = row_.at(index);
    const presenters::RowPlan& text = plan.Rows.at(index);
    ShowText(*row.lblNext, text.Next);
    ShowText(*row.lblWarning, text.Warning);
    if (row.lblWarning->palette().color(QPalette::WindowText) != warning) {
      QPalette colours;
      colours.setColor(QPalette::WindowText, warning);
      row.lblWarning->setPalette(colours);
    }
    const QString words = ToQt(text.Next + (text.Warning.empty() ? "" : ". " + text.Warning));
    if (row.chkEnabled->accessibleDescription() != words) row.chkEnabled->setAccessibleDescription(words);
    ShowVisible(*row.Veil, !rules_->Row(static_cast<int>(index)).Enabled);
  }
}

void frmSchedule::PickDate(int index, bool start) {
  const QPointer<frmSchedule> self(this);
  const std::shared_ptr<Scheduler> rules = rules_;
  const auto picker = [this, &rules] {
    presenters::DateSelect choices(loop_, rules->SelDate);
    QPointer<frmDateSelect> window(new frmDateSelect(choices, section_, this));
    window->exec();
    delete window;
  };
  if (start) {
    rules->cmdStartDate(index, picker);
  } else {
    rules->cmdEndDate(index, picker);
  }
  if (self) Refresh();
}

void frmSchedule::cmdSave() {
  const QPointer<frmSchedule> self(this);
  const std::shared_ptr<Scheduler> rules = rules_;
  const bool saved = rules->cmdSave();
  if (!self) return;
  Refresh();
  if (!saved) return;
  if (FocusMainWindow) FocusMainWindow();
  close();
}

void frmSchedule::cmdCancel() {
  if (FocusMainWindow) FocusMainWindow();
  close();
}

/// The wheel changes a list only while it has the focus, else scrolling the rows would change them.
bool frmSchedule::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Wheel && !static_cast<QWidget*>(watched)->hasFocus()) {
    event->ignore();
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

void frmSchedule::closeEvent(QCloseEvent* event) {
  const QPointer<frmSchedule> self(this);
  const std::shared_ptr<Scheduler> rules = rules_;
  SavePlace(*this, section_, "Schedule");
  // At the end of the program there is nobody left to ask.
  const bool closes = rules->MayClose(!run_.ShuttingDown);
  event->setAccepted(closes);
  if (!self) return;
  if (!closes) Refresh();
  if (!run_.ShuttingDown && CloseEnded) CloseEnded(!closes);
}

void frmSchedule::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    cmdCancel();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
