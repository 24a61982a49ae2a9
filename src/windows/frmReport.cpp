#include "windows/frmReport.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "windows/Binding.h"
#include "windows/Colours.h"
#include "windows/HotKeys.h"
#include "windows/MostPlayedPage.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

enum Column { TimeColumn, LengthColumn, TextColumn, NoteColumn, ColumnCount };
/// The line of the story that an item shows.
constexpr int kLineRole = Qt::UserRole;

}  // namespace

frmReport::frmReport(presenters::RecordingReport& rules, presenters::MostPlayed& mostPlayed,
                     const config::SettingsSection& section, QWidget* parent)
    : QWidget(parent, Qt::Window),
      rules_(rules),
      mostPlayed_(mostPlayed),
      section_(section),
      tabReport_(new QTabWidget(this)),
      lstNights_(new QListWidget),
      lstStory_(new QTreeWidget),
      cmdShowInFolder_(new QPushButton(QStringLiteral("Show in &Folder"))),
      played_(new MostPlayedPage(mostPlayed)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName(QStringLiteral("frmReport"));
  setWindowTitle(QStringLiteral("Kestrune Recording Report"));
  Name(*tabReport_, "tabReport");
  tabReport_->addTab(MakeNights(), QStringLiteral("&Nights"));
  tabReport_->addTab(played_, QStringLiteral("&Most Played"));
  connect(tabReport_, &QTabWidget::currentChanged, this, [this] {
    if (tabReport_->currentWidget() == played_) mostPlayed_.Show();
    Refresh();
  });
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabReport_);

  const int letter = fontMetrics().averageCharWidth();
  resize(130 * letter, 30 * fontMetrics().lineSpacing());
  RestorePlace(*this, section_, "Report", Remembered::PlaceAndSize);
  rules_.Load();
  Refresh();
  lstStory_->setFocus();
}

QWidget* frmReport::MakeNights() {
  Name(*lstNights_, "lstNights", {}, "Nights, the newest first");
  connect(lstNights_, &QListWidget::currentRowChanged, this, [this](int row) {
    rules_.Select(row);
    Refresh();
  });

  Name(*lstStory_, "lstStory", {}, "What happened in the night, problems first");
  lstStory_->setColumnCount(ColumnCount);
  lstStory_->setHeaderLabels({tr("Time"), tr("Length"), tr("What"), tr("What became of it")});
  lstStory_->setUniformRowHeights(true);
  lstStory_->header()->setStretchLastSection(false);
  lstStory_->header()->setSectionResizeMode(TextColumn, QHeaderView::Stretch);
  for (const int column : {TimeColumn, LengthColumn, NoteColumn}) {
    lstStory_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  }
  connect(lstStory_, &QTreeWidget::itemActivated, this, [this] { ShowInFolder(); });
  connect(lstStory_, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* item) {
    const int line = item != nullptr ? item->data(TimeColumn, kLineRole).toInt() : -1;
    cmdShowInFolder_->setEnabled(line >= 0 &&
                                 !rules_.Story().at(static_cast<std::size_t>(line)).File.empty());
  });

  Name(*cmdShowInFolder_, "cmdShowInFolder", "Open the folder of the chosen song");
  cmdShowInFolder_->setEnabled(false);
  connect(cmdShowInFolder_, &QPushButton::clicked, this, [this] { ShowInFolder(); });

  auto* page = new QWidget;
  auto* both = new QSplitter(page);
  both->addWidget(lstNights_);
  both->addWidget(lstStory_);
  both->setStretchFactor(1, 1);
  both->setChildrenCollapsible(false);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(both);
  layout->addWidget(cmdShowInFolder_, 0, Qt::AlignRight);
  const int letter = fontMetrics().averageCharWidth();
  both->setSizes({30 * letter, 100 * letter});
  return page;
}

void frmReport::ShowSongsOf(std::int16_t channel) {
  {
    // Turning the page alone would ask for what was chosen before.
    const QSignalBlocker quiet(tabReport_);
    tabReport_->setCurrentWidget(played_);
  }
  mostPlayed_.ShowSongsOf(channel);
  Refresh();
}

void frmReport::Refresh() {
  played_->Refresh();
  if (changes_ == rules_.Changes()) return;
  changes_ = rules_.Changes();
  ShowNights();
  ShowStory();
}

void frmReport::ShowNights() {
  const QSignalBlocker quiet(lstNights_);
  lstNights_->clear();
  for (const presenters::ReportNight& night : rules_.Nights()) {
    lstNights_->addItem(ToQt(night.Title + "\n" + night.Summary));
    if (night.Problems) lstNights_->item(lstNights_->count() - 1)->setForeground(WarningColour(palette()));
  }
  lstNights_->setCurrentRow(rules_.Selected());
}

void frmReport::ShowStory() {
  const int current = lstStory_->currentItem() != nullptr
                          ? lstStory_->currentItem()->data(TimeColumn, kLineRole).toInt()
                          : -1;
  lstStory_->clear();
  QTreeWidgetItem* heading = nullptr;
  int number = 0;
  for (const presenters::ReportLine& line : rules_.Story()) {
    QTreeWidgetItem* item = nullptr;
    if (line.Heading || heading == nullptr) {
      item = heading = new QTreeWidgetItem(lstStory_, {ToQt(line.Text)});
      item->setFirstColumnSpanned(true);
      item->setExpanded(true);
      QFont bold = font();
      bold.setBold(true);
      item->setFont(TimeColumn, bold);
    } else if (line.Time.empty() && line.Note.empty()) {
      // A sentence has the whole row.
      item = new QTreeWidgetItem(heading, {ToQt(line.Text)});
      item->setFirstColumnSpanned(true);
      item->setToolTip(TimeColumn, PlainTip(ToQt(line.Text)));
    } else {
      item = new QTreeWidgetItem(heading,
                                 {ToQt(line.Time), ToQt(line.Length), ToQt(line.Text), ToQt(line.Note)});
      item->setToolTip(TextColumn, PlainTip(ToQt(line.Text)));
      item->setTextAlignment(LengthColumn, Qt::AlignRight | Qt::AlignVCenter);
    }
    item->setData(TimeColumn, kLineRole, number);
    for (int column = 0; line.Problem && column < ColumnCount; ++column) {
      item->setForeground(column, WarningColour(palette()));
    }
    if (number == current) lstStory_->setCurrentItem(item);
    ++number;
  }
}

void frmReport::ShowInFolder() {
  if (const QTreeWidgetItem* item = lstStory_->currentItem()) {
    rules_.ShowInFolder(item->data(TimeColumn, kLineRole).toInt());
  }
}

void frmReport::closeEvent(QCloseEvent* event) {
  rules_.Unload();
  mostPlayed_.Unload();
  SavePlace(*this, section_, "Report", Remembered::PlaceAndSize);
  event->accept();
  if (Closed) Closed();
}

void frmReport::keyPressEvent(QKeyEvent* event) {
  if (const int key = HotKeyOf(*event); key != 0) {
    if (HotKey) HotKey(key);
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
