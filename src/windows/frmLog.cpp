#include "windows/frmLog.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QListView>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "windows/Binding.h"
#include "windows/HotKeys.h"
#include "windows/LogLines.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {

/// Gives all lines the size of the widest one, so that the view need not measure thousands of lines for each
/// new one.
class LogLineDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QString Widest;

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyleOptionViewItem widest = option;
    initStyleOption(&widest, index);
    widest.text = Widest;
    return widest.widget->style()->sizeFromContents(QStyle::CT_ItemViewItem, &widest, {}, widest.widget);
  }
};

frmLog::frmLog(presenters::LogWindow& rules, const config::SettingsSection& section, QWidget* parent)
    // This window remembers a size of the user's choice, so it has no maximise button.
    : QWidget(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      rules_(rules),
      section_(section),
      lines_(new LogLines(rules.List(), this)),
      delegate_(new LogLineDelegate(this)),
      lstLog_(new QListView(this)) {
  setObjectName(QStringLiteral("frmLog"));
  setWindowTitle(QStringLiteral("Kestrune Recording Log"));

  Name(*lstLog_, "lstLog", {}, "Recording log, oldest line first");
  lstLog_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstLog_->setUniformItemSizes(true);
  lstLog_->setItemDelegate(delegate_);
  lstLog_->setModel(lines_);
  lstLog_->installEventFilter(this);
  lstLog_->viewport()->installEventFilter(this);

  auto* cmdClear = new QPushButton(QStringLiteral("Clear"), this);
  Name(*cmdClear, "cmdClear", "Clear recording log");
  cmdClear->setAutoDefault(false);
  connect(cmdClear, &QPushButton::clicked, this, [this] { rules_.cmdClear(); });

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lstLog_);
  layout->addWidget(cmdClear, 0, Qt::AlignRight);

  QScrollBar* bar = lstLog_->verticalScrollBar();
  connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) {
    if (!moving_) following_ = value == bar->maximum();
  });
  connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int /*least*/, int most) {
    const QScopedValueRollback moving(moving_, true);
    if (following_) bar->setValue(most);
  });
  connect(lines_, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex& /*parent*/, int first) {
    Measure(first);
    Follow();
  });
  connect(lines_, &QAbstractItemModel::modelReset, this, [this] {
    following_ = true;
    delegate_->Widest.clear();
    Measure(0);
    Follow();
  });
  // The scroll bar counts lines, so what the user reads stays in place when the oldest lines are removed.
  connect(lines_, &QAbstractItemModel::rowsRemoved, this,
          [this, bar](const QModelIndex& /*parent*/, int first, int last) {
            const QScopedValueRollback moving(moving_, true);
            if (!following_) bar->setValue(bar->value() - (last - first + 1));
          });

  constexpr int kLeastWidth = 134;  // 2000 twips
  constexpr int kLeastHeight = 67;  // 1000 twips
  setMinimumSize(kLeastWidth, kLeastHeight);
  const int letter = fontMetrics().averageCharWidth();
  resize(90 * letter, 20 * fontMetrics().lineSpacing());
  RestorePlace(*this, section_, "Log", Remembered::PlaceAndSize);
  Measure(0);
}

void frmLog::SavePlace() const {
  // It is loaded with the program, often never shown, and has no place until then.
  if (!everShown_) return;
  windows::SavePlace(*this, section_, "Log", Remembered::PlaceAndSize);
}

void frmLog::Measure(int firstLine) {
  const QFontMetrics metrics = lstLog_->fontMetrics();
  int widest = metrics.horizontalAdvance(delegate_->Widest);
  for (int i = firstLine; i < lines_->rowCount(); ++i) {
    const QString line = lines_->index(i).data().toString();
    const int width = metrics.horizontalAdvance(line);
    if (width <= widest) continue;
    widest = width;
    delegate_->Widest = line;
  }
}

void frmLog::Follow() {
  if (!following_ || isHidden()) return;
  const QScopedValueRollback moving(moving_, true);
  const int aside = lstLog_->horizontalScrollBar()->value();
  lstLog_->setCurrentIndex(lines_->index(rules_.List().SelectedLine()));
  lstLog_->scrollToBottom();
  lstLog_->horizontalScrollBar()->setValue(aside);
}

void frmLog::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  everShown_ = true;
  Follow();
}

void frmLog::OpenCopy() {
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  rules_.OpenCopy();
  QGuiApplication::restoreOverrideCursor();
}

bool frmLog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == lstLog_->viewport() && event->type() == QEvent::MouseButtonDblClick) {
    OpenCopy();
    return true;
  }
  if (watched == lstLog_ && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
      OpenCopy();
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void frmLog::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange && isMaximized()) {
    setWindowState(windowState() & ~Qt::WindowMaximized);
  }
}

void frmLog::closeEvent(QCloseEvent* event) {
  SavePlace();
  event->setAccepted(QuitFlag);
  if (QuitFlag) return;
  hide();
  if (Hidden) Hidden();
}

void frmLog::keyPressEvent(QKeyEvent* event) {
  if (const int key = HotKeyOf(*event); key != 0) {
    if (HotKey) HotKey(key);
  } else if (event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace kestrune::windows
