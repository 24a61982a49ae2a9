#include "windows/frmUpdating.h"

#include <QKeySequence>
#include <QLabel>
#include <QProgressBar>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>
#include <chrono>

#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

/// About the refresh rate of a screen.
constexpr std::chrono::milliseconds kRedraw{20};
constexpr int kCharactersOfALine = 56;

}  // namespace

frmUpdating::frmUpdating(const config::UpdatingWindow& record, QWidget* parent)
    : QWidget(parent, Qt::Dialog),
      record_(record),
      lblUpdating_(new QLabel(this)),
      pbrDownload_(new QProgressBar(this)) {
  Name(*this, "frmUpdating");
  Name(*lblUpdating_, "lblUpdating");
  Name(*pbrDownload_, "pbrDownload", {}, "Download");
  lblUpdating_->setTextFormat(Qt::PlainText);
  lblUpdating_->setWordWrap(true);
  lblUpdating_->setMinimumWidth(fontMetrics().averageCharWidth() * kCharactersOfALine);
  pbrDownload_->setRange(0, 100);
  // The bar says nothing about the progress, so no number may seem to.
  pbrDownload_->setTextVisible(false);
  auto* const rows = new QVBoxLayout(this);
  rows->addWidget(lblUpdating_);
  rows->addWidget(pbrDownload_);
  rows->setSizeConstraint(QLayout::SetFixedSize);

  QObject::connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
                   &QWidget::hide);
  auto* const redraw = new QTimer(this);
  QObject::connect(redraw, &QTimer::timeout, this, &frmUpdating::Refresh);
  redraw->start(kRedraw);
  Refresh();
}

void frmUpdating::Refresh() {
  const QString caption = ToQt(record_.Caption);
  if (windowTitle() != caption) setWindowTitle(caption);
  ShowText(*lblUpdating_, record_.lblUpdating);
  pbrDownload_->setValue(record_.pbrDownload);
}

}  // namespace kestrune::windows
