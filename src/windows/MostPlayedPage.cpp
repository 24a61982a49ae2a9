#include "windows/MostPlayedPage.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "windows/Binding.h"
#include "windows/Choosing.h"
#include "windows/ElidedLabel.h"

namespace kestrune::windows {
namespace {

enum Column { PlaysColumn, ArtistColumn, TitleColumn, LastColumn, ColumnCount };
constexpr int kAsCharacters = 8;
constexpr int kChannelCharacters = 22;
constexpr int kDaysCharacters = 22;
constexpr int kMessageLetters = 40;

}  // namespace

MostPlayedPage::MostPlayedPage(presenters::MostPlayed& rules, QWidget* parent)
    : QWidget(parent), rules_(rules) {
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(new QHBoxLayout);
  cboPlayedAs_ = AddList("cboPlayedAs", "Count the plays of artists or of songs", "&Count:", kAsCharacters,
                         &presenters::MostPlayed::cboPlayedAs);
  cboPlayedChannel_ = AddList("cboPlayedChannel", "Count only what this channel played",
                              "&On:", kChannelCharacters, &presenters::MostPlayed::cboPlayedChannel);
  cboPlayedDays_ = AddList("cboPlayedDays", "Count only what was played within this time",
                           "&Within:", kDaysCharacters, &presenters::MostPlayed::cboPlayedDays);
  static_cast<QHBoxLayout*>(layout->itemAt(0)->layout())->addStretch();

  lstPlayed_ = new QTreeWidget(this);
  Name(*lstPlayed_, "lstPlayed", {}, "What was played most, and how often");
  lstPlayed_->setColumnCount(ColumnCount);
  lstPlayed_->setHeaderLabels({tr("Plays"), tr("Artist"), tr("Song"), tr("Last Played")});
  lstPlayed_->setRootIsDecorated(false);
  lstPlayed_->setUniformRowHeights(true);
  lstPlayed_->header()->setStretchLastSection(false);
  for (const int column : {PlaysColumn, LastColumn})
    lstPlayed_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  for (const int column : {ArtistColumn, TitleColumn})
    lstPlayed_->header()->setSectionResizeMode(column, QHeaderView::Stretch);
  layout->addWidget(lstPlayed_, 1);

  lblPlayed_ = new ElidedLabel(kMessageLetters, this);
  Name(*lblPlayed_, "lblPlayed");
  layout->addWidget(lblPlayed_);
}

QComboBox* MostPlayedPage::AddList(const char* name, std::string_view tip, const char* caption,
                                   int characters, Choose choose) {
  auto* list = new ElidedList(this);
  Name(*list, name, tip);
  Restrain(*list, characters);
  connect(list, &QComboBox::activated, this, [this, choose](int row) {
    (rules_.*choose)(row);
    Refresh();
  });
  auto* label = new QLabel(QLatin1String(caption), this);
  label->setBuddy(list);
  auto* row = static_cast<QHBoxLayout*>(layout()->itemAt(0)->layout());
  row->addWidget(label);
  row->addWidget(list);
  return list;
}

void MostPlayedPage::Refresh() {
  if (changes_ == rules_.Changes()) return;
  changes_ = rules_.Changes();
  ShowChoices(*cboPlayedAs_, rules_.PlayedAs());
  ShowChoices(*cboPlayedChannel_, rules_.Channels());
  ShowChoices(*cboPlayedDays_, rules_.Days());
  ShowText(*lblPlayed_, rules_.Message());
  ShowRows();
}

void MostPlayedPage::ShowRows() {
  lstPlayed_->setColumnHidden(TitleColumn, !rules_.BySong());
  lstPlayed_->clear();
  for (const presenters::MostPlayedRow& row : rules_.Rows()) {
    auto* item =
        new QTreeWidgetItem(lstPlayed_, {ToQt(row.Plays), ToQt(row.Artist), ToQt(row.Title), ToQt(row.Last)});
    item->setTextAlignment(PlaysColumn, Qt::AlignRight | Qt::AlignVCenter);
  }
}

}  // namespace kestrune::windows
