#include "windows/frmSplash.h"

#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <chrono>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Version.h"
#include "windows/Binding.h"
#include "windows/ProgramIcon.h"

namespace kestrune::windows {
namespace {

constexpr std::chrono::milliseconds kDelay{3000};
constexpr int kIconSize = 64;

QLabel* MakeLink(const char* name, const std::string& shown, QWidget* parent) {
  const QString text = ToQt(shown).toHtmlEscaped();
  auto* label = new QLabel(QStringLiteral("<a href=\"%1\">%1</a>").arg(text), parent);
  label->setTextFormat(Qt::RichText);
  label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  label->setAlignment(Qt::AlignCenter);
  label->setVisible(!shown.empty());
  Name(*label, name, {}, shown);
  return label;
}

}  // namespace

frmSplash::frmSplash(base::EventLoop& loop, platform::Shell& shell, platform::Dialogs& dialogs,
                     const MakerLinks& links)
    : QWidget(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint), shell_(shell), dialogs_(dialogs) {
  setObjectName(QStringLiteral("frmSplash"));
  setWindowTitle(QStringLiteral("About Kestrune"));
  setWindowIcon(ProgramIcon());

  auto* picture = new QLabel(this);
  picture->setPixmap(ProgramIcon().pixmap(QSize(kIconSize, kIconSize), devicePixelRatio()));
  picture->setAlignment(Qt::AlignCenter);
  auto* name = new QLabel(QStringLiteral("Kestrune"), this);
  QFont big = name->font();
  big.setPointSizeF(big.pointSizeF() * 2);
  big.setBold(true);
  name->setFont(big);
  auto* lblVersion = new QLabel(
      ToQt(fmt::format("Version {}.{}.{}", base::kVersionMajor, base::kVersionMinor, base::kVersionRevision)),
      this);
  Name(*lblVersion, "lblVersion");
  auto* purpose =
      new QLabel(QStringLiteral("A time shifter for satellite radio, for personal use only."), this);
  for (QLabel* label : {name, lblVersion, purpose}) label->setAlignment(Qt::AlignCenter);
  QLabel* lblURL = MakeLink("lblURL", links.WebSite, this);
  QLabel* lblMail = MakeLink("lblMail", links.Mail, this);
  connect(lblURL, &QLabel::linkActivated, this,
          [this, site = links.WebSite] { Open(site, "WWW Error", site); });
  connect(lblMail, &QLabel::linkActivated, this,
          [this, mail = links.Mail] { Open("mailto:" + mail, "Mail Error", mail); });

  auto* column = new QVBoxLayout(this);
  const int margin = fontMetrics().height() * 2;
  column->setContentsMargins(margin, margin, margin, margin);
  for (QLabel* label : {picture, name, lblVersion, purpose, lblURL, lblMail}) column->addWidget(label);

  tmrDelay_ = loop.MakeTimer(kDelay, [this] {
    tmrDelay_->SetEnabled(false);
    close();
  });
  tmrDelay_->SetEnabled(true);
}

void frmSplash::Open(const std::string& target, const char* title, const std::string& shown) {
  if (shell_.Open(target)) return;
  base::Ignored(dialogs_.Show({.Title = title, .Text = "Kestrune could not open " + shown + "."}));
}

void frmSplash::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) close();
}

void frmSplash::mousePressEvent(QMouseEvent* /*event*/) {
  close();
}

}  // namespace kestrune::windows
