#include "windows/frmPleaseWait.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "windows/Binding.h"
#include "windows/ProgramIcon.h"

namespace kestrune::windows {

frmPleaseWait::frmPleaseWait()
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
  setObjectName(QStringLiteral("frmPleaseWait"));
  setWindowTitle(QStringLiteral("Kestrune: Initializing"));
  setWindowIcon(ProgramIcon());
  auto* lblPleaseWait = new QLabel(QStringLiteral("Looking for your satellite radio. Please wait..."), this);
  Name(*lblPleaseWait, "lblPleaseWait");
  auto* lblcPort = new QLabel(QStringLiteral("Port:"), this);
  Name(*lblcPort, "lblcPort");
  lblPort_ = new QLabel(this);
  Name(*lblPort_, "lblPort");
  auto* row = new QHBoxLayout;
  row->addWidget(lblcPort);
  row->addWidget(lblPort_, 1);
  auto* column = new QVBoxLayout(this);
  const int margin = fontMetrics().height();
  column->setContentsMargins(margin * 2, margin, margin * 2, margin);
  column->addWidget(lblPleaseWait);
  column->addLayout(row);
}

void frmPleaseWait::ShowPort(std::int16_t port) {
  ShowText(*lblPort_, std::to_string(port));
}

void frmPleaseWait::closeEvent(QCloseEvent* event) {
  event->ignore();  // it closes when the search for the radio ends
}

}  // namespace kestrune::windows
