#include "windows/OptionButtons.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cstddef>
#include <string>

#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

/// A longer group is shown in two columns, and to the right of the others.
constexpr std::size_t kLong = 5;

}  // namespace

OptionButtons::OptionButtons(presenters::FormatOptions& options, QWidget* parent)
    : OptionDialog(("frmFormat" + std::string(options.Design().FileFormat)).c_str(), options.Design().Caption,
                   parent),
      options_(options) {
  options_.Load();
  AddGroups();
  AddButtons();
  Refresh();
}

void OptionButtons::AddGroups() {
  auto* row = new QHBoxLayout;
  Body().addLayout(row, 1);
  auto* column = new QVBoxLayout;
  row->addLayout(column);
  const auto groups = options_.Design().Groups;
  for (std::size_t group = 0; group < groups.size(); ++group) {
    const presenters::OptionGroup& design = groups[group];
    const bool isLong = design.Buttons.size() > kLong;
    auto* frame = new QGroupBox(ToQt(design.Frame), this);
    if (isLong)
      row->addWidget(frame, 1);
    else
      column->addWidget(frame);
    auto* grid = new QGridLayout(frame);
    const int rows = static_cast<int>(isLong ? (design.Buttons.size() + 1) / 2 : design.Buttons.size());
    buttons_.emplace_back();
    for (std::size_t i = 0; i < design.Buttons.size(); ++i) {
      auto* button = new QRadioButton(ToQt(design.Buttons[i].Caption), frame);
      const std::string name = std::string(design.Name) + "_" + std::to_string(i);
      Name(*button, name.c_str(), design.Buttons[i].Tip);
      connect(button, &QRadioButton::clicked, this, [this, group, i] {
        options_.Choose(group, i);
        Refresh();
      });
      grid->addWidget(button, static_cast<int>(i) % rows, static_cast<int>(i) / rows);
      buttons_.back().push_back(button);
    }
    grid->setRowStretch(rows, 1);
  }
}

void OptionButtons::Refresh() {
  for (std::size_t group = 0; group < buttons_.size(); ++group) {
    for (std::size_t i = 0; i < buttons_[group].size(); ++i) {
      ShowChecked(*buttons_[group][i], options_.On(group) == static_cast<int>(i));
    }
  }
}

bool OptionButtons::cmdOK() {
  return options_.cmdOK();
}

}  // namespace kestrune::windows
