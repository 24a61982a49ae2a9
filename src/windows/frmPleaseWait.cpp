#include "windows/frmPleaseWait.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "windows/Binding.h"
#include "windows/ElidedLabel.h"
#include "windows/ProgramIcon.h"
#include "windows/SpokenLabel.h"

namespace kestrune::windows {
namespace {

/// Room for a device's path and what is done with it.
constexpr int kStepLetters = 46;

}  // namespace

// It stays above the about window, which stays above all others, by being shown later.
frmPleaseWait::frmPleaseWait() : QWidget(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint) {
  setObjectName(QStringLiteral("frmPleaseWait"));
  setWindowTitle(QStringLiteral("Kestrune: Initializing"));
  setWindowIcon(ProgramIcon());
  SpeakElidedLabels();
  auto* lblPleaseWait = new QLabel(QStringLiteral("Looking for your satellite radio. Please wait..."), this);
  Name(*lblPleaseWait, "lblPleaseWait");
  auto* lblcPort = new QLabel(QStringLiteral("Port:"), this);
  Name(*lblcPort, "lblcPort");
  lblPort_ = new ElidedLabel(4, this, QStringLiteral("Port"));
  Name(*lblPort_, "lblPort");
  lblStep_ = new ElidedLabel(kStepLetters, this);
  Name(*lblStep_, "lblStep");
  pbrSearch_ = new QProgressBar(this);
  Name(*pbrSearch_, "pbrSearch", {}, "Search for the radio");
  pbrSearch_->setRange(0, presenters::PleaseWait::kWhole);
  pbrSearch_->setTextVisible(false);
  cmdCancel_ = new QPushButton(QStringLiteral("Cancel"), this);
  Name(*cmdCancel_, "cmdCancel", "End the search, and the program");
  connect(cmdCancel_, &QPushButton::clicked, this, [this] { CancelAsked(); });

  auto* port = new QHBoxLayout;
  port->addWidget(lblcPort);
  port->addWidget(lblPort_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdCancel_);
  auto* column = new QVBoxLayout(this);
  const int margin = fontMetrics().height();
  column->setContentsMargins(margin * 2, margin, margin * 2, margin);
  column->addWidget(lblPleaseWait);
  column->addLayout(port);
  column->addWidget(lblStep_);
  column->addWidget(pbrSearch_);
  column->addLayout(buttons);
  Refresh({});
}

void frmPleaseWait::Refresh(const presenters::PleaseWait& record) {
  ShowText(*lblPort_, record.lblPort);
  ShowText(*lblStep_, record.lblStep);
  if (pbrSearch_->value() != record.pbrSearch) pbrSearch_->setValue(record.pbrSearch);
  ShowEnabled(*cmdCancel_, record.cmdCancelEnabled);
}

void frmPleaseWait::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) CancelAsked();
}

void frmPleaseWait::closeEvent(QCloseEvent* event) {
  event->ignore();  // it goes with the search, or with the program
  CancelAsked();
}

}  // namespace kestrune::windows
