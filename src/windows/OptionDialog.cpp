#include "windows/OptionDialog.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "windows/Binding.h"

namespace kestrune::windows {

OptionDialog::OptionDialog(const char* objectName, std::string_view caption, QWidget* parent)
    : QDialog(parent), body_(new QVBoxLayout) {
  setObjectName(QLatin1String(objectName));
  setWindowTitle(ToQt(caption));
  auto* column = new QVBoxLayout(this);
  column->addLayout(body_, 1);
}

void OptionDialog::AddButtons() {
  auto* row = new QHBoxLayout;
  row->addStretch();
  auto* ok = new QPushButton(QStringLiteral("OK"), this);
  Name(*ok, "cmdOK");
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, [this] {
    if (cmdOK()) accept();
  });
  row->addWidget(ok);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  Name(*cancel, "cmdCancel");
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  row->addWidget(cancel);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
}

}  // namespace kestrune::windows
