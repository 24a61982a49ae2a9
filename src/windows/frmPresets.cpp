#include "windows/frmPresets.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include "base/OneLine.h"
#include "windows/Binding.h"
#include "windows/RememberedPlace.h"

namespace kestrune::windows {
namespace {

constexpr int kRows = 4;  // as in the main window
constexpr int kShownLines = 20;

}  // namespace

frmPresets::frmPresets(presenters::PresetSetup& rules, const config::SettingsSection& section,
                       QWidget* parent)
    : QDialog(parent), rules_(rules), section_(section) {
  setObjectName(QStringLiteral("frmPresets"));
  setWindowTitle(QStringLiteral("Preset Button Setup"));
  setAttribute(Qt::WA_DeleteOnClose);
  rules_.Load();

  auto* lblInstructions =
      new QLabel(QStringLiteral("Select the channel to be associated with each preset button:"), this);
  Name(*lblInstructions, "lblInstructions");

  // The lists differ only in their choice, so they share their lines.
  auto* lines = new QStandardItemModel(this);
  for (const presenters::PresetSetup::Line& line : rules_.Lines()) {
    auto* item = new QStandardItem(ToQt(base::OneLine(line.Text)));
    item->setData(line.Channel, Qt::UserRole);
    item->setEditable(false);
    lines->appendRow(item);
  }

  auto* grid = new QGridLayout;
  for (int i = 0; i < presenters::Presets::kCount; ++i) {
    const QString title = QStringLiteral("Preset %1:").arg(i + 1);
    auto* list = new QComboBox(this);
    cboPreset_.at(static_cast<std::size_t>(i)) = list;
    Name(*list, QByteArray("cboPreset_").append(QByteArray::number(i)).constData(),
         "Select the channel to associate with this preset button",
         FromQt(QStringLiteral("Preset %1").arg(i + 1)));
    list->setModel(lines);
    list->setMaxVisibleItems(kShownLines);
    // Wide enough for a number and a name, whatever the names are.
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    list->setMinimumContentsLength(24);
    connect(list, &QComboBox::activated, this, [this, i](int line) {
      rules_.cboPreset_Click(i, line);
      Refresh();
    });
    const int column = i / kRows * 2;
    auto* label = new QLabel(title, this);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(label, i % kRows, column);
    grid->addWidget(list, i % kRows, column + 1);
    grid->setColumnStretch(column + 1, 1);
  }

  auto* cmdSave = new QPushButton(QStringLiteral("Save changes and Exit"), this);
  Name(*cmdSave, "cmdSave");
  cmdSave->setDefault(true);
  connect(cmdSave, &QPushButton::clicked, this, &frmPresets::cmdSave_Click);
  auto* cmdCancel = new QPushButton(QStringLiteral("Exit without saving changes"), this);
  Name(*cmdCancel, "cmdCancel");
  connect(cmdCancel, &QPushButton::clicked, this, &frmPresets::cmdCancel_Click);
  auto* buttons = new QDialogButtonBox(this);
  buttons->addButton(cmdSave, QDialogButtonBox::AcceptRole);
  buttons->addButton(cmdCancel, QDialogButtonBox::RejectRole);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblInstructions);
  layout->addLayout(grid);
  layout->addStretch();
  layout->addWidget(buttons);

  Refresh();
  RestorePlace(*this, section_, "Preset");
}

void frmPresets::Refresh() {
  for (int i = 0; i < presenters::Presets::kCount; ++i) {
    ShowIndex(*cboPreset_.at(static_cast<std::size_t>(i)), rules_.Selected(i));
  }
}

void frmPresets::cmdSave_Click() {
  rules_.cmdSave();
  close();
}

void frmPresets::cmdCancel_Click() {
  rules_.cmdCancel();
  close();
}

void frmPresets::closeEvent(QCloseEvent* event) {
  SavePlace(*this, section_, "Preset");
  event->setAccepted(rules_.Close());
}

}  // namespace kestrune::windows
