#include "windows/frmFilenameFormatSelect.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <cstddef>
#include <string>

#include "windows/Binding.h"
#include "windows/ConfigPlace.h"

namespace kestrune::windows {
namespace {

constexpr int kDescriptionCharacters = 60;

}  // namespace

frmFilenameFormatSelect::frmFilenameFormatSelect(presenters::FilenameFormatSelect& formats,
                                                 const config::SettingsSection& section, QWidget* parent)
    : QDialog(parent), formats_(formats), section_(section) {
  setObjectName(QStringLiteral("frmFilenameFormatSelect"));
  setWindowTitle(QStringLiteral("Filename Formats"));
  auto* column = new QVBoxLayout(this);
  auto* grid = new QGridLayout;
  column->addLayout(grid);
  const auto rows = presenters::FilenameFormats();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    auto* button = new QPushButton(ToQt(formats_.Caption(row)), this);
    Name(*button, ("cmdSelect_" + std::to_string(row)).c_str(), "Click to select this file format");
    button->setAccessibleDescription(ToQt(rows[row].Description));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, row] {
      formats_.cmdSelect(row);
      accept();
    });
    auto* label = new QLabel(ToQt(rows[row].Description), this);
    Name(*label, ("lblDescription_" + std::to_string(row)).c_str());
    label->setTextFormat(Qt::PlainText);
    label->setProperty("tag", ToQt(rows[row].Format));
    label->setWordWrap(true);
    label->setMinimumWidth(label->fontMetrics().averageCharWidth() * kDescriptionCharacters);
    // On a small screen a window starts too low for labels that wrap, unless they have a minimum height.
    label->setMinimumHeight(label->heightForWidth(label->minimumWidth()));
    grid->addWidget(button, static_cast<int>(row), 0);
    grid->addWidget(label, static_cast<int>(row), 1);
  }
  grid->setColumnStretch(1, 1);
  column->addStretch();
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  Name(*cancel, "cmdCancel", "Exit without making any changes");
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  column->addWidget(cancel, 0, Qt::AlignRight);
  MoveToConfigPlace(*this, section_);
}

void frmFilenameFormatSelect::done(int result) {
  if (!isMinimized()) SaveConfigPlace(*this, section_);
  QDialog::done(result);
}

}  // namespace kestrune::windows
