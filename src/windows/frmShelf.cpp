#include "windows/frmShelf.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <string>

#include "windows/Binding.h"
#include "windows/ElidedLabel.h"
#include "windows/HotKeys.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

enum Column { TimeColumn, StationColumn, ArtistColumn, TitleColumn, LengthColumn, FateColumn, ColumnCount };
constexpr int kFileRole = Qt::UserRole;
constexpr int kMessageLetters = 40;

/// Its rows leave it as files.
class SongList final : public QTreeWidget {
 public:
  using QTreeWidget::QTreeWidget;

 protected:
  [[nodiscard]] QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override {
    auto* mime = new QMimeData;
    QList<QUrl> files;
    for (const QTreeWidgetItem* item : items) {
      const QString file = item->data(TimeColumn, kFileRole).toString();
      if (!file.isEmpty()) files.append(QUrl::fromLocalFile(file));
    }
    mime->setUrls(files);
    return mime;
  }
  [[nodiscard]] QStringList mimeTypes() const override { return {QStringLiteral("text/uri-list")}; }
};

}  // namespace

frmShelf::frmShelf(presenters::Shelf& rules, const config::SettingsSection& section, QWidget* parent)
    : QWidget(parent, Qt::Window),
      rules_(rules),
      section_(section),
      txtSearch_(new QLineEdit(this)),
      lstSongs_(new SongList(this)),
      lblMessage_(new ElidedLabel(kMessageLetters, this)),
      cmdPlay_(new QPushButton(QStringLiteral("&Play"), this)),
      cmdKeep_(new QPushButton(QStringLiteral("&Keep"), this)),
      cmdShowInFolder_(new QPushButton(QStringLiteral("Show in &Folder"), this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName(QStringLiteral("frmShelf"));
  setWindowTitle(QStringLiteral("Kestrune Shelf"));

  Name(*txtSearch_, "txtSearch", "Show only what has these words", "Search");
  txtSearch_->setPlaceholderText(QStringLiteral("Search"));
  txtSearch_->setClearButtonEnabled(true);
  // A row that is dropped on it is no search.
  txtSearch_->setAcceptDrops(false);
  connect(txtSearch_, &QLineEdit::textChanged, this, [this](const QString& text) {
    rules_.Search(FromQt(text));
    Refresh();
  });
  connect(txtSearch_, &QLineEdit::returnPressed, this, [this] { ChooseFirstFound(); });

  Name(*lstSongs_, "lstSongs", {}, "What just played and was not kept, the newest first");
  lstSongs_->setColumnCount(ColumnCount);
  lstSongs_->setHeaderLabels(
      {tr("Time"), tr("Station"), tr("Artist"), tr("Song"), tr("Length"), tr("Why not kept")});
  lstSongs_->setRootIsDecorated(false);
  lstSongs_->setUniformRowHeights(true);
  lstSongs_->setDragEnabled(true);
  lstSongs_->setDragDropMode(QAbstractItemView::DragOnly);
  lstSongs_->setDefaultDropAction(Qt::CopyAction);
  lstSongs_->header()->setStretchLastSection(false);
  for (const int column : {TimeColumn, StationColumn, LengthColumn, FateColumn})
    lstSongs_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  for (const int column : {ArtistColumn, TitleColumn})
    lstSongs_->header()->setSectionResizeMode(column, QHeaderView::Stretch);
  connect(lstSongs_, &QTreeWidget::itemActivated, this, [this] {
    rules_.Play(Chosen());
    Refresh();
  });
  connect(lstSongs_, &QTreeWidget::currentItemChanged, this, [this] { ShowButtons(); });

  Name(*lblMessage_, "lblMessage");
  Name(*cmdPlay_, "cmdPlay", "Play the chosen song in the desktop's player");
  Name(*cmdKeep_, "cmdKeep", "Move the chosen song to the recordings; the one that plays, at its end");
  Name(*cmdShowInFolder_, "cmdShowInFolder", "Open the folder of the shelf");
  connect(cmdPlay_, &QPushButton::clicked, this, [this] {
    rules_.Play(Chosen());
    Refresh();
  });
  connect(cmdKeep_, &QPushButton::clicked, this, [this] {
    rules_.Keep(Chosen());
    Refresh();
  });
  connect(cmdShowInFolder_, &QPushButton::clicked, this, [this] { rules_.ShowInFolder(Chosen()); });

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(lblMessage_, 1);
  for (QPushButton* button : {cmdPlay_, cmdKeep_, cmdShowInFolder_}) buttons->addWidget(button);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(txtSearch_);
  layout->addWidget(lstSongs_, 1);
  layout->addLayout(buttons);

  const int letter = fontMetrics().averageCharWidth();
  resize(120 * letter, 24 * fontMetrics().lineSpacing());
  RestorePlace(*this, section_, "Shelf", Remembered::PlaceAndSize);
  rules_.Load();
  Refresh();
  // The song that plays, if there is one: what a user opens the window for in a hurry.
  if (lstSongs_->topLevelItemCount() > 0) lstSongs_->setCurrentItem(lstSongs_->topLevelItem(0));
  ShowButtons();
  lstSongs_->setFocus();
}

void frmShelf::Refresh() {
  if (changes_ == rules_.Changes()) return;
  changes_ = rules_.Changes();
  ShowRows();
  ShowText(*lblMessage_, rules_.Message());
  ShowButtons();
}

void frmShelf::ShowRows() {
  const QSignalBlocker quiet(lstSongs_);
  // The song stays chosen, not its place.
  const QTreeWidgetItem* current = lstSongs_->currentItem();
  const bool chosen = current != nullptr;
  const QString file = chosen ? current->data(TimeColumn, kFileRole).toString() : QString();
  const auto rows = static_cast<int>(rules_.Rows().size());
  while (lstSongs_->topLevelItemCount() > rows) delete lstSongs_->takeTopLevelItem(rows);
  int again = -1;
  for (int number = 0; number < rows; ++number) {
    const presenters::ShelfRow& row = rules_.Rows()[static_cast<std::size_t>(number)];
    QTreeWidgetItem* item = lstSongs_->topLevelItem(number);
    if (chosen && ToQt(row.File) == file) again = number;
    if (item != nullptr && shown_.at(static_cast<std::size_t>(number)) == row) continue;
    if (item == nullptr) item = new QTreeWidgetItem(lstSongs_);
    const std::array<const std::string*, ColumnCount> texts{&row.Time,  &row.Station, &row.Artist,
                                                            &row.Title, &row.Length,  &row.Fate};
    for (int column = 0; column < ColumnCount; ++column) {
      item->setText(column, ToQt(*texts.at(static_cast<std::size_t>(column))));
      QFont font = lstSongs_->font();
      font.setBold(row.Present);
      item->setFont(column, font);
    }
    item->setTextAlignment(LengthColumn, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(TimeColumn, kFileRole, ToQt(row.File));
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    item->setFlags(row.File.empty() ? flags : flags | Qt::ItemIsDragEnabled);
  }
  shown_ = rules_.Rows();
  lstSongs_->setCurrentItem(again >= 0 ? lstSongs_->topLevelItem(again) : nullptr);
}

void frmShelf::ShowButtons() {
  const int row = Chosen();
  ShowEnabled(*cmdPlay_, rules_.HasFile(row));
  ShowEnabled(*cmdKeep_, rules_.MayKeep(row));
  ShowEnabled(*cmdShowInFolder_, rules_.HasFile(row));
}

void frmShelf::ChooseFirstFound() {
  const auto found = std::ranges::find_if(shown_, [](const auto& row) { return !row.File.empty(); });
  if (found == shown_.end()) return;
  lstSongs_->setFocus();
  lstSongs_->setCurrentItem(lstSongs_->topLevelItem(static_cast<int>(found - shown_.begin())));
}

int frmShelf::Chosen() const {
  return lstSongs_->currentItem() == nullptr ? -1 : lstSongs_->indexOfTopLevelItem(lstSongs_->currentItem());
}

void frmShelf::closeEvent(QCloseEvent* event) {
  rules_.Unload();
  SavePlace(*this, section_, "Shelf", Remembered::PlaceAndSize);
  event->accept();
}

void frmShelf::keyPressEvent(QKeyEvent* event) {
  if (const int key = HotKeyOf(*event); key != 0) {
    if (HotKey) HotKey(key);
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else if (event->key() == Qt::Key_Down && txtSearch_->hasFocus()) {
    ChooseFirstFound();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
