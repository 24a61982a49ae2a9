#include "windows/frmChannels.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "base/Ignored.h"
#include "windows/Binding.h"
#include "windows/ChannelGridModel.h"
#include "windows/ChannelView.h"
#include "windows/HotKeys.h"
#include "windows/LockMark.h"
#include "windows/Placement.h"
#include "windows/RememberedPlace.h"
#include "windows/RowMenu.h"

namespace kestrune::windows {
namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kWidth = 8565 / kTwipsPerPixel;
constexpr int kLeastHeight = (2000 + kTwipsPerPixel - 1) / kTwipsPerPixel;
constexpr int kDesignedHeight = 420;
constexpr int kSearchLine = (490 + kTwipsPerPixel - 1) / kTwipsPerPixel;
constexpr int kMost = 16384;  // a settings file may hold anything

int Pixels(float twips) {
  return static_cast<int>(
      std::clamp(std::round(twips / kTwipsPerPixel), float{kLeastHeight}, static_cast<float>(kMost)));
}

}  // namespace

frmChannels::frmChannels(presenters::ChannelChooser& rules, presenters::ChannelListing& listing,
                         presenters::ChannelMenu& menu, const config::SettingsSection& section,
                         QWidget* parent)
    // The user can change only the height, so there is no maximise button.
    : QWidget(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      rules_(rules),
      listing_(listing),
      menu_(menu),
      section_(section),
      txtSearch_(new QLineEdit(this)),
      lblFound_(new QLabel(this)),
      boxLock_(new LockMark(this)),
      chkFavouritesFirst_(new QCheckBox(tr("Favourites fi&rst"), this)),
      model_(new ChannelGridModel(listing, this)),
      grdChannels_(new ChannelView(this)),
      mnuRow_(new RowMenu(menu, this)) {
  setObjectName(QStringLiteral("frmChannels"));
  setWindowTitle(QStringLiteral("Kestrune Channels"));

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(MakeSearchLine());
  layout->addWidget(grdChannels_);
  BindList();

  setFixedWidth(kWidth);
  setMinimumHeight(kLeastHeight);
  const float height = section_.Single("ChannelHeight", float{kDesignedHeight} * kTwipsPerPixel);
  resize(kWidth, Pixels(height));
  RestorePlace(*this, section_, "Channel");
  Refresh();
  grdChannels_->setFocus();
}

/// It has the room that the told height of the grid leaves above it, or what a large font needs.
QHBoxLayout* frmChannels::MakeSearchLine() {
  Name(*txtSearch_, "txtSearch", "Show only channels with these words", "Find");
  txtSearch_->setPlaceholderText(tr("Find by station, artist, song or genre (Ctrl+F)"));
  txtSearch_->setClearButtonEnabled(true);
  txtSearch_->installEventFilter(this);
  connect(txtSearch_, &QLineEdit::textChanged, this, &frmChannels::Search);
  Name(*lblFound_, "lblFound");
  lblFound_->hide();
  boxLock_->hide();
  Name(*chkFavouritesFirst_, "chkFavouritesFirst",
       "List the channels before the others that are marked in their menu");
  connect(chkFavouritesFirst_, &QCheckBox::clicked, this, [this](bool first) {
    menu_.Favourites().SetFirst(first);
    Refresh();
    ScrollToSelected();
  });

  auto* line = new QHBoxLayout;
  const int margin = fontMetrics().averageCharWidth() / 2;
  line->setContentsMargins(margin, 0, margin, 0);
  line->setSpacing(2 * margin);
  line->addStrut(kSearchLine);
  line->addWidget(txtSearch_, 1);
  line->addWidget(lblFound_);
  line->addWidget(boxLock_);
  line->addWidget(chkFavouritesFirst_);
  return line;
}

void frmChannels::BindList() {
  Name(*grdChannels_, "grdChannels", {}, "Channels and what they play");
  model_->RowTip = [this](std::int16_t channel) { return rules_.Tip(channel); };
  grdChannels_->setModel(model_);
  grdChannels_->BeforeInput = [this] { Refresh(); };
  grdChannels_->Moved = [this](int row) {
    rules_.MoveTo(listing_.GridRowAt(row));
    Refresh();
  };
  grdChannels_->Clicked = [this](int row) {
    rules_.ClickRow(listing_.GridRowAt(row));
    Refresh();
  };
  grdChannels_->DoubleClicked = [this](int row, int column) {
    rules_.DoubleClick(listing_.GridRowAt(row), column);
    Refresh();
  };
  grdChannels_->MenuAsked = [this](int row, QPoint where) { mnuRow_->Open(listing_.GridRowAt(row), where); };
  grdChannels_->Typed = [this](const QString& text) {
    txtSearch_->setText(txtSearch_->text() + text);
    txtSearch_->setFocus();
  };
  mnuRow_->ShowTuned = [this] { ShowTuned(); };
  mnuRow_->Chosen = [this] { Refresh(); };
  QHeaderView& titles = *grdChannels_->horizontalHeader();
  titles.setSortIndicatorShown(true);
  connect(&titles, &QHeaderView::sectionClicked, this, &frmChannels::ClickTitle);
  constexpr int kTitles = 0;
  connect(&titles, &QHeaderView::sectionDoubleClicked, this,
          [this](int column) { grdChannels_->DoubleClicked(kTitles, column); });
}

void frmChannels::Refresh() {
  const bool opens = rules_.Grid().Enabled && !isEnabled();
  ShowEnabled(*this, rules_.Grid().Enabled);
  ShowVisible(*boxLock_, !rules_.MayTune());
  // A disabled window loses its focus and does not regain it by itself.
  if (opens) grdChannels_->setFocus();
  const bool inView = grdChannels_->ShowsSelectedRow();
  model_->Update();
  ShowWidths();
  ShowSorting();
  ShowChecked(*chkFavouritesFirst_, menu_.Favourites().First());
  ShowText(*lblFound_, listing_.Found());
  ShowVisible(*lblFound_, listing_.Searches());
  grdChannels_->SelectRow(listing_.RowOf(rules_.Grid().SelectedRow()));
  // Rows that come, go and move do not push it out of view.
  if (inView && !grdChannels_->ShowsSelectedRow()) ScrollToSelected();
}

void frmChannels::ShowSorting() {
  const auto& sorted = rules_.Grid().Sorted();
  const bool descending = sorted && sorted->Direction == radio::ChannelGrid::Order::Descending;
  grdChannels_->horizontalHeader()->setSortIndicator(sorted ? sorted->Column : -1,
                                                     descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void frmChannels::ScrollToSelected() {
  if (grdChannels_->currentIndex().isValid()) grdChannels_->scrollTo(grdChannels_->currentIndex());
}

// The last column takes the width that the others and the scroll bar leave.
void frmChannels::ShowWidths() {
  if (widths_ == rules_.Grid().Widths()) return;
  widths_ = rules_.Grid().Widths();
  const int margin = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, grdChannels_) + 1) + 1;
  QFont bold = grdChannels_->font();  // that of the tuned channel
  bold.setBold(true);
  const int number = QFontMetrics(bold).horizontalAdvance(QStringLiteral("000")) + margin;
  for (int column = 0; column < radio::ChannelGrid::kColumns - 1; ++column) {
    const int told = widths_.at(static_cast<std::size_t>(column)) / kTwipsPerPixel;
    // A number is never cut off, however large the font.
    grdChannels_->setColumnWidth(column,
                                 column == radio::ChannelGrid::Number ? std::max(told, number) : told);
  }
}

void frmChannels::ClickTitle(int column) {
  Refresh();
  rules_.ClickTitle(column);
  Refresh();
  ScrollToSelected();
}

void frmChannels::Search(const QString& text) {
  listing_.Search(FromQt(text));
  Refresh();
  if (grdChannels_->currentIndex().isValid()) {
    ScrollToSelected();
  } else {
    grdChannels_->scrollToTop();
  }
}

void frmChannels::ToSearchLine() {
  txtSearch_->setFocus(Qt::ShortcutFocusReason);
  txtSearch_->selectAll();
}

void frmChannels::ToList() {
  grdChannels_->setFocus(Qt::OtherFocusReason);
  Refresh();
}

/// The selection lies on the tuned channel, but for the moment in which the user moves it.
void frmChannels::ShowTuned() {
  const int tuned = rules_.Grid().FindRow(listing_.Tuned());
  if (listing_.RowOf(tuned) == 0) txtSearch_->clear();
  if (const int row = listing_.RowOf(tuned); row != 0) grdChannels_->scrollTo(model_->index(row - 1, 0));
}

/// What the list and the main window do with a key, they do with it here too. Returns false for a key of the line.
bool frmChannels::PressInSearchLine(const QKeyEvent& event) {
  const int last = static_cast<int>(listing_.Rows().size());
  if (const int key = HotKeyOf(event); key != 0) {
    if (HotKey) HotKey(key);
    return true;
  }
  switch (event.key()) {
    case Qt::Key_Escape:
      txtSearch_->clear();
      ToList();
      return true;
    case Qt::Key_Down:
    case Qt::Key_PageDown:
      ToList();
      if (listing_.Searches() && last != 0) grdChannels_->Moved(1);
      return true;
    case Qt::Key_Up:
    case Qt::Key_PageUp:
      ToList();
      if (listing_.Searches() && last != 0) grdChannels_->Moved(last);
      return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      ToList();
      if (listing_.Searches() && last != 0) grdChannels_->Clicked(1);
      return true;
    default:
      return false;
  }
}

bool frmChannels::eventFilter(QObject* watched, QEvent* event) {
  if (watched == txtSearch_ && event->type() == QEvent::KeyPress &&
      PressInSearchLine(*static_cast<QKeyEvent*>(event)))
    return true;
  return QWidget::eventFilter(watched, event);
}

// Shows at once what has changed while it was hidden, and scrolls to the tuned channel.
void frmChannels::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Refresh();
  ScrollToSelected();
}

void frmChannels::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange && isMaximized()) {
    setWindowState(windowState() & ~Qt::WindowMaximized);
  }
}

void frmChannels::closeEvent(QCloseEvent* event) {
  const bool closes = rules_.Close();
  event->setAccepted(closes);
  if (!closes || !InNormalState(*this)) return;
  SavePlace(*this, section_, "Channel");
  base::Ignored(section_.SaveSingle("ChannelHeight", static_cast<float>(height() * kTwipsPerPixel)));
}

void frmChannels::keyPressEvent(QKeyEvent* event) {
  const int column = event->key() - Qt::Key_1;
  if (const int key = HotKeyOf(*event); key != 0) {
    if (HotKey) HotKey(key);
  } else if (event->modifiers() == Qt::ControlModifier && column >= 0 &&
             column < radio::ChannelGrid::kColumns) {
    ClickTitle(column);
  } else if (event->matches(QKeySequence::Find)) {
    ToSearchLine();
  } else if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_J) {
    ShowTuned();
  } else if (event->key() == Qt::Key_Escape && listing_.Searches()) {
    txtSearch_->clear();
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
