#include "windows/frmDateSelect.h"

#include <QCalendarWidget>
#include <QDate>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include <fmt/core.h>

#include "base/DatePattern.h"
#include "windows/Binding.h"
#include "windows/Contrast.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

using base::DateValue;

QDate ToQt(DateValue date) {
  return {date.Year(), date.Month(), date.Day()};
}
DateValue FromQt(QDate date) {
  return DateValue::FromCivil(date.year(), date.month(), date.day());
}

struct Day {
  const char* Caption;
  const char* Tip;
};

constexpr std::array<Day, 7> kDays{{
    {"Sun", "Click to cause this schedule to record every Sunday"},
    {"Mon", "Click to cause this schedule to record every Monday"},
    {"Tue", "Click to cause this schedule to record every Tuesday"},
    {"Wed", "Click to cause this schedule to record every Wednesday"},
    {"Thu", "Click to cause this schedule to record every Thursday"},
    {"Fri", "Click to cause this schedule to record every Friday"},
    {"Sat", "Click to cause this schedule to record every Saturday"},
}};

}  // namespace

frmDateSelect::frmDateSelect(presenters::DateSelect& rules, const config::SettingsSection& section,
                             QWidget* parent)
    : QDialog(parent), rules_(rules), section_(section) {
  setObjectName(QStringLiteral("frmDateSelect"));
  setWindowTitle(QStringLiteral("Kestrune Date Select"));

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MakeCalendar());

  auto* label = new QLabel(QStringLiteral("Record every:"), this);
  label->setObjectName(QStringLiteral("Label1"));
  layout->addWidget(label);

  auto* days = new QHBoxLayout;
  days->setSpacing(layout->spacing() / 2);
  for (std::size_t index = 0; index < kDays.size(); ++index) {
    auto* cmdDay = new QPushButton(QLatin1String(kDays[index].Caption), this);
    Name(*cmdDay, fmt::format("cmdDay_{}", index).c_str(), kDays[index].Tip);
    cmdDay->setAutoDefault(false);
    cmdDay->setMinimumWidth(cmdDay->fontMetrics().horizontalAdvance(QStringLiteral("WWWW")));
    cmdDay->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(cmdDay, &QPushButton::clicked, this, [this, index] {
      rules_.cmdDay(static_cast<int>(index));
      accept();
    });
    days->addWidget(cmdDay, 1);
  }
  layout->addLayout(days);

  auto* cmdEveryDay = new QPushButton(QStringLiteral("Record Every Day"), this);
  Name(*cmdEveryDay, "cmdEveryDay", "Click to cause this schedule to record daily");
  cmdEveryDay->setAutoDefault(false);
  connect(cmdEveryDay, &QPushButton::clicked, this, [this] {
    rules_.cmdEveryDay();
    accept();
  });
  layout->addWidget(cmdEveryDay);
  layout->setSizeConstraint(QLayout::SetFixedSize);

  Refresh();
  cldDateSelect_->setFocus();
  RestorePlace(*this, section_, "DateSelect");
}

QWidget* frmDateSelect::MakeCalendar() {
  auto* frame = new QFrame(this);
  frame->setObjectName(QStringLiteral("frmCalendar"));
  frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);

  const auto mover = [&](const char* name, Qt::ArrowType arrow, const char* tip,
                         std::function<void()> moved) {
    auto* button = new QToolButton(frame);
    Name(*button, name, tip, tip);
    button->setArrowType(arrow);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    connect(button, &QToolButton::clicked, this, [this, moved = std::move(moved)] {
      moved();
      Refresh();
    });
    return button;
  };
  QToolButton* down =
      mover("cmdMonthDown", Qt::LeftArrow, "One month back", [this] { rules_.cmdMonthDown(); });
  lblMonth_ = new QLabel(frame);
  lblMonth_->setObjectName(QStringLiteral("lblMonth"));
  lblMonth_->setAlignment(Qt::AlignCenter);
  QFont bold = lblMonth_->font();
  bold.setBold(true);
  lblMonth_->setFont(bold);
  QToolButton* up = mover("cmdMonthUp", Qt::RightArrow, "One month on", [this] { rules_.cmdMonthUp(); });

  cldDateSelect_ = new QCalendarWidget(frame);
  Name(*cldDateSelect_, "cldDateSelect", {}, "Date");
  const Qt::DayOfWeek firstDay = locale().firstDayOfWeek();
  cldDateSelect_->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
  cldDateSelect_->setFirstDayOfWeek(firstDay);
  cldDateSelect_->setNavigationBarVisible(false);
  cldDateSelect_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  // The days of the months before and after can be chosen too.
  QPalette colours = cldDateSelect_->palette();
  const QColor faint = Dimmed(colours.color(QPalette::Active, QPalette::Text),
                              colours.color(QPalette::Active, QPalette::Base));
  colours.setColor(QPalette::Disabled, QPalette::Text, faint);
  cldDateSelect_->setPalette(colours);
  cldDateSelect_->setDateEditEnabled(false);
  // Weekends are not red, since red would seem to have a meaning here.
  for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday}) cldDateSelect_->setWeekdayTextFormat(day, {});
  connect(cldDateSelect_, &QCalendarWidget::selectionChanged, this,
          [this] { rules_.MoveCalendar(FromQt(cldDateSelect_->selectedDate())); });
  connect(cldDateSelect_, &QCalendarWidget::currentPageChanged, this, [this] { ShowPage(); });
  connect(cldDateSelect_, &QCalendarWidget::clicked, this, &frmDateSelect::ChooseDate);
  connect(cldDateSelect_, &QCalendarWidget::activated, this, &frmDateSelect::ChooseDate);

  auto* grid = new QGridLayout(frame);
  grid->addWidget(down, 0, 0);
  grid->addWidget(lblMonth_, 0, 1);
  grid->addWidget(up, 0, 2);
  grid->addWidget(cldDateSelect_, 1, 0, 1, 3);
  grid->setColumnStretch(1, 1);
  return frame;
}

void frmDateSelect::Refresh() {
  const QDate date = ToQt(rules_.Calendar());
  if (cldDateSelect_->selectedDate() != date) {
    const QSignalBlocker quiet(cldDateSelect_);
    cldDateSelect_->setSelectedDate(date);
  }
  cldDateSelect_->setCurrentPage(date.year(), date.month());
  ShowPage();
}

/// The month's name. Days that have passed are shown as disabled: choosing one gives today.
void frmDateSelect::ShowPage() {
  const QDate first(cldDateSelect_->yearShown(), cldDateSelect_->monthShown(), 1);
  ShowText(*lblMonth_, base::FormatDate(FromQt(first), "mmmm yyyy"));

  QTextCharFormat passed;
  passed.setForeground(palette().brush(QPalette::Disabled, QPalette::Text));
  cldDateSelect_->setDateTextFormat({}, {});
  const QDate today = ToQt(rules_.Today());
  const QDate end = std::min(today, first.addMonths(1));
  for (QDate day = first; day < end; day = day.addDays(1)) cldDateSelect_->setDateTextFormat(day, passed);
  QTextCharFormat marked;
  marked.setFontWeight(QFont::Bold);
  cldDateSelect_->setDateTextFormat(today, marked);
}

void frmDateSelect::ChooseDate(QDate date) {
  // A double click arrives as a click and then as an activation.
  if (!isVisible()) return;
  rules_.ChooseDate(FromQt(date));
  accept();
}

void frmDateSelect::done(int result) {
  if (isVisible()) SavePlace(*this, section_, "DateSelect");
  QDialog::done(result);
}

}  // namespace kestrune::windows
