#include "windows/frmRestrictList.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "windows/Binding.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

/// What differs between the columns: two are for artists and two for songs, and two lists have each other's
/// tip.
struct ColumnTexts {
  const char* ListTip;
  const char* TextTip;
  const char* AddTip;
  const char* DeleteTip;
  const char* ListName;
};

constexpr const char* kArtistTip = "Click to select Artist name to edit or delete";
constexpr const char* kSongTip = "Click to select Song name to edit or delete";

constexpr std::array<ColumnTexts, presenters::RestrictListEditor::kColumns> kColumnTexts{{
    {kArtistTip, "Edit Artist Name", "Click to add this artist entry", "Click to delete this artist entry",
     "Artists to record"},
    {kSongTip, "Edit Song Name", "Click to add this song entry", "Click to delete this song entry",
     "Songs to record"},
    {kSongTip, "Edit Artist Name", "Click to add this artist entry", "Click to delete this artist entry",
     "Artists never to record"},
    {kArtistTip, "Edit Song Name", "Click to add this song entry", "Click to delete this song entry",
     "Songs never to record"},
}};

QLabel* MakeLabel(const char* name, const char* caption, QWidget* parent) {
  auto* label = new QLabel(QLatin1String(caption), parent);
  label->setObjectName(QLatin1String(name));
  label->setTextFormat(Qt::PlainText);
  return label;
}

/// Changes only the rows between the equal ones at both ends, so that the list neither flickers nor scrolls.
void ShowItems(QListWidget& list, const std::vector<std::string>& items) {
  const auto shown = static_cast<std::size_t>(list.count());
  const auto same = [&](std::size_t row, std::size_t item) {
    return list.item(static_cast<int>(row))->text() == ToQt(items[item]);
  };
  const std::size_t least = std::min(shown, items.size());
  std::size_t head = 0;
  while (head < least && same(head, head)) ++head;
  std::size_t tail = 0;
  while (tail < least - head && same(shown - 1 - tail, items.size() - 1 - tail)) ++tail;
  for (std::size_t row = head; row < shown - tail; ++row) delete list.takeItem(static_cast<int>(head));
  for (std::size_t item = head; item < items.size() - tail; ++item)
    list.insertItem(static_cast<int>(item), ToQt(items[item]));
  // Scrolls to what the user has just added.
  if (items.size() - tail == head + 1 && shown > 0) list.scrollToItem(list.item(static_cast<int>(head)));
}

}  // namespace

frmRestrictList::frmRestrictList(presenters::RestrictListEditor& rules, const base::RunState& run,
                                 const config::SettingsSection& section, QWidget* parent)
    : QWidget(parent, Qt::Window), rules_(rules), run_(run), section_(section) {
  setObjectName(QStringLiteral("frmRestrictList"));
  setWindowTitle(QStringLiteral("Kestrune Grab/Kill Lists"));
  setAttribute(Qt::WA_DeleteOnClose);
  rules_.Load();

  auto* columns = new QGridLayout;
  columns->addWidget(MakeLabel("lblRecord", "Only record songs that contain:", this), 0, 0, 1, 2);
  columns->addWidget(MakeLabel("lblNeverRecord", "Never record songs that contain:", this), 0, 3, 1, 2);
  columns->addLayout(MakeColumn(0, MakeLabel("lblArtist", "In the Artist Name:", this)), 1, 0);
  columns->addLayout(MakeColumn(1, MakeLabel("lblSong", "In the Song Name:", this)), 1, 1);
  columns->addLayout(MakeColumn(2, MakeLabel("lblArtistNever", "In the Artist Name:", this)), 1, 3);
  columns->addLayout(MakeColumn(3, MakeLabel("lblSongNever", "In the Song Name:", this)), 1, 4);
  auto* between = new QFrame(this);
  between->setFrameStyle(QFrame::VLine | QFrame::Sunken);
  columns->addWidget(between, 0, 2, 2, 1);
  for (const int column : {0, 1, 3, 4}) columns->setColumnStretch(column, 1);

  auto* cmdSave = new QPushButton(QStringLiteral("Save"), this);
  Name(*cmdSave, "cmdSave", "Click to save changes and exit");
  connect(cmdSave, &QPushButton::clicked, this, &frmRestrictList::cmdSave);
  auto* cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
  Name(*cmdCancel, "cmdCancel", "Click to cancel changes and exit");
  connect(cmdCancel, &QPushButton::clicked, this, &frmRestrictList::cmdCancel);
  auto* ends = new QHBoxLayout;
  ends->addStretch();
  ends->addWidget(cmdSave);
  ends->addWidget(cmdCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(columns);
  layout->addLayout(ends);
  Refresh();
  RestorePlace(*this, section_, "RestrictList");
}

frmRestrictList::~frmRestrictList() {
  // A closed window lives on for a moment, and another one may be opened meanwhile.
  if (!closed_) rules_.Unload();
}

QVBoxLayout* frmRestrictList::MakeColumn(std::size_t index, QWidget* heading) {
  const ColumnTexts& texts = kColumnTexts[index];
  const auto named = [index](const char* name) { return fmt::format("{}_{}", name, index); };

  auto* list = new QListWidget(this);
  Name(*list, named("lstRestrict").c_str(), texts.ListTip, texts.ListName);
  list->setUniformItemSizes(true);
  list->setTextElideMode(Qt::ElideRight);
  list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list->setMinimumWidth(24 * fontMetrics().averageCharWidth());
  list->setMinimumHeight(4 * fontMetrics().lineSpacing());
  // The keys move within the list; only a click or Enter moves on to the text.
  connect(list, &QListWidget::itemSelectionChanged, this, [this, index] { Click(index, false); });
  connect(list, &QListWidget::itemClicked, this, [this, index] { Click(index, true); });
  connect(list, &QListWidget::itemActivated, this, [this, index] { Click(index, true); });

  auto* line = new QLineEdit(this);
  Name(*line, named("txtRestrict").c_str(), texts.TextTip, texts.TextTip);
  connect(line, &QLineEdit::textEdited, this,
          [this, index](const QString& text) { rules_.txtRestrict_Change(index, FromQt(text)); });
  connect(line, &QLineEdit::returnPressed, this, [this, index] { cmdAdd(index); });
  columns_[index] = {list, line};

  const auto button = [&](const char* name, const char* caption, const char* tip) {
    auto* made = new QPushButton(QLatin1String(caption), this);
    Name(*made, named(name).c_str(), tip);
    // Twelve buttons of the style's usual width would make the window wider than some screens.
    made->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    made->setMinimumWidth(made->fontMetrics().horizontalAdvance(made->text()) +
                          4 * made->fontMetrics().averageCharWidth());
    return made;
  };
  QPushButton* add = button("cmdAdd", "Add", texts.AddTip);
  connect(add, &QPushButton::clicked, this, [this, index] { cmdAdd(index); });
  QPushButton* remove = button("cmdDelete", "Delete", texts.DeleteTip);
  connect(remove, &QPushButton::clicked, this, [this, index] {
    rules_.cmdDelete(index);
    Refresh();
    columns_[index].txtRestrict->setFocus();
  });
  QPushButton* clear = button("cmdClear", "Clear", "Click to clear the entire list");
  connect(clear, &QPushButton::clicked, this, [this, index] {
    rules_.cmdClear(index);
    Refresh();
  });

  auto* buttons = new QHBoxLayout;
  for (QPushButton* one : {add, remove, clear}) buttons->addWidget(one);
  auto* column = new QVBoxLayout;
  column->addWidget(heading);
  column->addWidget(list);
  column->addWidget(line);
  column->addLayout(buttons);
  return column;
}

void frmRestrictList::Refresh() {
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    const presenters::RestrictColumn& column = rules_.Column(index);
    QListWidget& list = *columns_[index].lstRestrict;
    const QSignalBlocker quiet(list);
    ShowItems(list, column.lstRestrict);
    if (column.Selected >= 0) {
      if (list.currentRow() != column.Selected || !list.item(column.Selected)->isSelected())
        list.setCurrentRow(column.Selected);
    } else if (!list.selectedItems().isEmpty()) {
      list.clearSelection();
    }
    ShowText(*columns_[index].txtRestrict, column.txtRestrict);
  }
}

void frmRestrictList::Click(std::size_t index, bool focus) {
  const QListWidget& list = *columns_[index].lstRestrict;
  const bool selected = !list.selectedItems().isEmpty();
  rules_.lstRestrict_Click(index, selected ? list.row(list.selectedItems().first()) : -1);
  Refresh();
  if (!focus || !selected) return;
  QLineEdit& line = *columns_[index].txtRestrict;
  line.setFocus();
  line.deselect();
  line.end(false);
}

void frmRestrictList::cmdAdd(std::size_t index) {
  rules_.cmdAdd(index);
  Refresh();
  columns_[index].txtRestrict->setFocus();
}

void frmRestrictList::cmdSave() {
  if (!rules_.cmdSave()) return;
  if (FocusMainWindow) FocusMainWindow();
  close();
}

void frmRestrictList::cmdCancel() {
  if (FocusMainWindow) FocusMainWindow();
  close();
}

void frmRestrictList::closeEvent(QCloseEvent* event) {
  SavePlace(*this, section_, "RestrictList");
  // At the end of the program there is nobody left to ask.
  const bool closes = run_.ShuttingDown || rules_.MayClose();
  event->setAccepted(closes);
  if (closes && !closed_) {
    closed_ = true;
    rules_.Unload();
  }
  if (!run_.ShuttingDown && CloseEnded) CloseEnded(!closes);
}

void frmRestrictList::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    cmdCancel();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
