#include "windows/KeptList.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>

#include "base/PathText.h"
#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

enum Column { TimeColumn, ArtistColumn, TitleColumn, LengthColumn, ColumnCount };
constexpr int kFileRole = Qt::UserRole;

}  // namespace

KeptList::KeptList(const presenters::RecentSongs& rules, QWidget* parent)
    : QWidget(parent),
      rules_(rules),
      lstKept_(new QTreeWidget(this)),
      cmdShowKept_(new QPushButton(QStringLiteral("Show in Folder"), this)) {
  auto* caption = new QLabel(QStringLiteral("Last kept songs:"), this);
  Name(*caption, "lblcKept");
  Name(*lstKept_, "lstKept", "Double click to play the song in the desktop's player", "Last kept songs");
  lstKept_->setColumnCount(ColumnCount);
  lstKept_->setHeaderLabels({tr("Time"), tr("Artist"), tr("Song"), tr("Length")});
  lstKept_->setRootIsDecorated(false);
  lstKept_->setUniformRowHeights(true);
  lstKept_->header()->setStretchLastSection(false);
  for (const int column : {TimeColumn, LengthColumn})
    lstKept_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  for (const int column : {ArtistColumn, TitleColumn})
    lstKept_->header()->setSectionResizeMode(column, QHeaderView::Stretch);
  Name(*cmdShowKept_, "cmdShowKept", "Open the folder of the chosen song");
  connect(lstKept_, &QTreeWidget::itemActivated, this, [this] { Open(ChosenFile()); });
  connect(lstKept_, &QTreeWidget::currentItemChanged, this, [this] { ShowButton(); });
  connect(cmdShowKept_, &QPushButton::clicked, this, [this] { Open(base::FolderOf(ChosenFile())); });

  auto* head = new QHBoxLayout;
  head->addWidget(caption, 1);
  head->addWidget(cmdShowKept_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addLayout(head);
  column->addWidget(lstKept_, 1);
  ShowButton();
}

void KeptList::Refresh() {
  if (changes_ == rules_.Changes()) return;
  changes_ = rules_.Changes();
  ShowRows();
  ShowButton();
}

void KeptList::ShowRows() {
  const QSignalBlocker quiet(lstKept_);
  // The song stays chosen, not its place.
  const QString chosen = ToQt(ChosenFile());
  lstKept_->clear();
  for (const presenters::KeptRow& row : rules_.Kept()) {
    auto* item = new QTreeWidgetItem(lstKept_);
    const std::array<const std::string*, ColumnCount> texts{&row.Time, &row.Artist, &row.Title, &row.Length};
    for (int column = 0; column < ColumnCount; ++column)
      item->setText(column, ToQt(*texts.at(static_cast<std::size_t>(column))));
    item->setTextAlignment(LengthColumn, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(TimeColumn, kFileRole, ToQt(row.File));
    if (!chosen.isEmpty() && ToQt(row.File) == chosen) lstKept_->setCurrentItem(item);
  }
}

void KeptList::ShowButton() {
  ShowEnabled(*cmdShowKept_, !ChosenFile().empty());
}

std::string KeptList::ChosenFile() const {
  const QTreeWidgetItem* chosen = lstKept_->currentItem();
  return chosen == nullptr ? std::string() : FromQt(chosen->data(TimeColumn, kFileRole).toString());
}

}  // namespace kestrune::windows
