#include "windows/frmLegal.h"

#include <QCheckBox>
#include <QFile>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "base/Ignored.h"
#include "windows/Binding.h"
#include "windows/ProgramIcon.h"

namespace kestrune::windows {

frmLegal::frmLegal(const std::string& agreementFile, platform::Dialogs& dialogs)
    : QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint), dialogs_(dialogs) {
  setObjectName(QStringLiteral("frmLegal"));
  setWindowTitle(QStringLiteral("Kestrune Agreement"));
  setWindowIcon(ProgramIcon());

  auto* brwAgreement = new QTextBrowser(this);
  Name(*brwAgreement, "brwAgreement", {}, "Agreement");
  brwAgreement->setOpenLinks(false);
  QFile file(ToQt(agreementFile));
  if (file.open(QIODevice::ReadOnly)) {
    brwAgreement->setHtml(QString::fromUtf8(file.readAll()));
  } else {
    brwAgreement->setPlainText(
        QStringLiteral("The file Agreement.html of this installation is missing.\n\n"
                       "Kestrune is intended for use as a timeshifting utility for personal use only."));
  }
  chkAgree_ = new QCheckBox(QStringLiteral("&I Agree"), this);
  Name(*chkAgree_, "chkAgree");
  auto* cmdAgree = new QPushButton(QStringLiteral("&Continue"), this);
  Name(*cmdAgree, "cmdAgree");
  auto* cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
  Name(*cmdCancel, "cmdCancel");
  // Enter in the agreement's text must not count as a yes.
  cmdAgree->setAutoDefault(false);
  cmdCancel->setAutoDefault(false);
  connect(cmdAgree, &QPushButton::clicked, this, [this] { cmdAgree_Click(); });
  connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

  auto* row = new QHBoxLayout;
  row->addWidget(chkAgree_);
  row->addStretch();
  row->addWidget(cmdAgree);
  row->addWidget(cmdCancel);
  auto* column = new QVBoxLayout(this);
  column->addWidget(brwAgreement);
  column->addLayout(row);
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 30);
}

void frmLegal::cmdAgree_Click() {
  if (chkAgree_->isChecked()) return accept();
  base::Ignored(dialogs_.Show({.Title = "Checkbox Not Checked",
                               .Text = "You must check the \"I Agree\" checkbox before proceeding."}));
}

}  // namespace kestrune::windows
