#include "windows/frmGrabKill.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>
#include <cstdint>

#include <fmt/core.h>

#include "base/Text.h"
#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

struct Answer {
  const char* Caption;
  const char* Tip;
};

constexpr std::array<Answer, 3> kAnswers{{
    {"Cancel", "Cancel without adding to either list"},
    {"Grab", "Add to the grab list, so it will always be recorded"},
    {"Kill", "Add to the kill list, so it will never be recorded"},
}};

}  // namespace

frmGrabKill::frmGrabKill(presenters::GrabKill& rules, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmGrabKill"));
  setWindowTitle(QStringLiteral("Kestrune Grab/Kill List Addition"));

  auto* lblQuestion = new QLabel(this);
  lblQuestion->setObjectName(QStringLiteral("lblQuestion"));
  lblQuestion->setTextFormat(Qt::PlainText);
  lblQuestion->setWordWrap(true);
  lblQuestion->setMinimumWidth(56 * fontMetrics().averageCharWidth());
  // A caption has doubled ampersands; the user sees single ones.
  ShowText(*lblQuestion, base::ReplaceAll(rules.lblQuestion(), "&&", "&"));

  auto* answers = new QHBoxLayout;
  answers->addStretch();
  for (std::size_t index = 0; index < kAnswers.size(); ++index) {
    auto* cmdResult = new QPushButton(QLatin1String(kAnswers[index].Caption), this);
    Name(*cmdResult, fmt::format("cmdResult_{}", index).c_str(), kAnswers[index].Tip);
    connect(cmdResult, &QPushButton::clicked, this, [this, &rules, index] {
      rules.cmdResult(static_cast<std::int16_t>(index));
      accept();
    });
    answers->addWidget(cmdResult);
  }

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblQuestion);
  layout->addLayout(answers);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace kestrune::windows
