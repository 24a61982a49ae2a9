#include "windows/frmRadioID.h"

#include <QFont>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/OneLine.h"
#include "windows/Binding.h"

namespace kestrune::windows {

frmRadioID::frmRadioID(std::string_view radioID, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmRadioID"));
  setWindowTitle(QStringLiteral("Radio ID"));
  setModal(true);

  auto* lblPCRIDIs = new QLabel(QStringLiteral("Your XM Radio ID is:"), this);
  Name(*lblPCRIDIs, "lblPCRIDIs");

  auto* lblID = new QLabel(this);
  Name(*lblID, "lblID");
  QFont font(QStringLiteral("Courier New"));
  font.setStyleHint(QFont::Monospace);
  font.setBold(true);
  font.setPointSizeF(lblPCRIDIs->font().pointSizeF() * 2);
  lblID->setFont(font);
  lblID->setTextFormat(Qt::PlainText);
  // The user has to pass it on, so it can be selected and copied.
  lblID->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  lblID->setText(ToQt(base::OneLine(radioID)));

  auto* lblWarning = new QLabel(
      QStringLiteral("Please note that the letters I (eye) and O (oh) are never used in radio ID's."), this);
  Name(*lblWarning, "lblWarning");

  auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
  Name(*cmdOK, "cmdOK");
  cmdOK->setDefault(true);
  cmdOK->setFocus();
  connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);

  auto* layout = new QVBoxLayout(this);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(lblPCRIDIs, 0, Qt::AlignHCenter);
  layout->addWidget(lblID, 0, Qt::AlignHCenter);
  layout->addWidget(lblWarning);
  layout->addWidget(cmdOK, 0, Qt::AlignHCenter);
}

}  // namespace kestrune::windows
