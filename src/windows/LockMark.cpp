#include "windows/LockMark.h"

#include <QHBoxLayout>
#include <QLabel>

#include "presenters/ChannelLock.h"
#include "windows/Binding.h"
#include "windows/Colours.h"
#include "windows/MarkIcon.h"

namespace kestrune::windows {

LockMark::LockMark(QWidget* parent) : QWidget(parent) {
  Name(*this, "boxLock", presenters::kChannelLockedWhy);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  auto* padlock = new QLabel(this);
  const int size = fontMetrics().height() + 2;
  padlock->setPixmap(MarkIcon(Mark::Padlock, WarningColour(palette())).pixmap(size, size));
  row->addWidget(padlock);
  auto* text = new QLabel(QString::fromUtf8(presenters::kChannelLocked.data()), this);
  text->setTextFormat(Qt::PlainText);
  Name(*text, "lblLock");
  row->addWidget(text);
}

}  // namespace kestrune::windows
