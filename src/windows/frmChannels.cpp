#include "windows/frmChannels.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "base/Ignored.h"
#include "windows/Binding.h"
#include "windows/ChannelGridModel.h"
#include "windows/ChannelView.h"
#include "windows/HotKeys.h"
#include "windows/Placement.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kWidth = 8565 / kTwipsPerPixel;
constexpr int kLeastHeight = (2000 + kTwipsPerPixel - 1) / kTwipsPerPixel;
constexpr int kDesignedHeight = 420;
constexpr int kMost = 16384;  // a settings file may hold anything

int Pixels(float twips) {
  return static_cast<int>(
      std::clamp(std::round(twips / kTwipsPerPixel), float{kLeastHeight}, static_cast<float>(kMost)));
}

}  // namespace

frmChannels::frmChannels(presenters::ChannelChooser& rules, const config::SettingsSection& section,
                         QWidget* parent)
    // The user can change only the height, so there is no maximise button.
    : QWidget(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      rules_(rules),
      section_(section),
      model_(new ChannelGridModel(rules.Grid(), this)),
      grdChannels_(new ChannelView(this)) {
  setObjectName(QStringLiteral("frmChannels"));
  setWindowTitle(QStringLiteral("Kestrune Channels"));

  Name(*grdChannels_, "grdChannels", {}, "Channels and what they play");
  model_->RowTip = [this](std::int16_t channel) { return rules_.Tip(channel); };
  grdChannels_->setModel(model_);
  grdChannels_->BeforeInput = [this] { Refresh(); };
  grdChannels_->Moved = [this](int row) {
    rules_.MoveTo(row);
    Refresh();
  };
  grdChannels_->Clicked = [this](int row) {
    rules_.ClickRow(row);
    Refresh();
  };
  grdChannels_->DoubleClicked = [this](int row, int column) {
    rules_.DoubleClick(row, column);
    Refresh();
  };
  connect(grdChannels_->horizontalHeader(), &QHeaderView::sectionClicked, this, &frmChannels::ClickTitle);
  constexpr int kTitles = 0;
  connect(grdChannels_->horizontalHeader(), &QHeaderView::sectionDoubleClicked, this,
          [this](int column) { grdChannels_->DoubleClicked(kTitles, column); });

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(grdChannels_);

  setFixedWidth(kWidth);
  setMinimumHeight(kLeastHeight);
  const float height = section_.Single("ChannelHeight", float{kDesignedHeight} * kTwipsPerPixel);
  resize(kWidth, Pixels(height));
  RestorePlace(*this, section_, "Channel");
  Refresh();
}

void frmChannels::Refresh() {
  const bool opens = rules_.Grid().Enabled && !isEnabled();
  ShowEnabled(*this, rules_.Grid().Enabled);
  // A disabled window loses its focus and does not regain it by itself.
  if (opens) grdChannels_->setFocus();
  model_->Update();
  ShowWidths();
  grdChannels_->SelectRow(rules_.Grid().SelectedRow());
}

// The last column takes the width that the others and the scroll bar leave.
void frmChannels::ShowWidths() {
  if (widths_ == rules_.Grid().Widths()) return;
  widths_ = rules_.Grid().Widths();
  const int margin = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, grdChannels_) + 1) + 1;
  const int number = grdChannels_->fontMetrics().horizontalAdvance(QStringLiteral("000")) + margin;
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
  grdChannels_->scrollTo(grdChannels_->currentIndex());
}

// Shows at once what has changed while it was hidden, and scrolls to the tuned channel.
void frmChannels::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Refresh();
  grdChannels_->scrollTo(grdChannels_->currentIndex());
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
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
