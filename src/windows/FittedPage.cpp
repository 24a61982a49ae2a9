#include "windows/FittedPage.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>

namespace kestrune::windows {
namespace {

// What most window managers' frames take.
constexpr QSize kFrame(10, 40);
constexpr int kLeastLetters = 30;
constexpr int kLeastLines = 8;

}  // namespace

FittedPage::FittedPage(QWidget* parent) : QScrollArea(parent), content_(new QWidget) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus);
  setWidget(content_);
  content_->installEventFilter(this);
}

QSize FittedPage::sizeHint() const {
  return content_->sizeHint();
}

QSize FittedPage::minimumSizeHint() const {
  return QSize(kLeastLetters * fontMetrics().averageCharWidth(), kLeastLines * fontMetrics().lineSpacing())
      .boundedTo(content_->minimumSizeHint());
}

bool FittedPage::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::LayoutRequest) updateGeometry();
  return QScrollArea::eventFilter(watched, event);
}

QSize FittedSize(QSize wished, QSize room, int bar) {
  room -= kFrame;
  if (wished.width() > room.width()) wished.rheight() += bar;
  return wished.boundedTo(room);
}

void FitToScreen(QWidget& window) {
  const QScreen* screen = window.screen() != nullptr ? window.screen() : QGuiApplication::primaryScreen();
  if (screen == nullptr) return;
  window.ensurePolished();
  window.resize(FittedSize(window.sizeHint(), screen->availableSize(),
                           window.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &window)));
}

}  // namespace kestrune::windows
