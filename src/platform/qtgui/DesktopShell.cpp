#include "platform/qtgui/DesktopShell.h"

#include <QDesktopServices>
#include <QProcess>
#include <QString>
#include <QUrl>

namespace kestrune::platform {

bool DesktopShell::Open(std::string_view target) {
  if (target.empty()) return false;
  const QString text = QString::fromUtf8(target.data(), static_cast<qsizetype>(target.size()));
  // A path may hold anything, a "#" or a "%" among it, so it must not be read as an address.
  const QUrl url = text.startsWith(QLatin1Char('/')) ? QUrl::fromLocalFile(text) : QUrl(text);
  if (!url.isValid() || url.scheme().isEmpty()) return false;
  if (QDesktopServices::openUrl(url)) return true;
  return QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString(QUrl::FullyEncoded)});
}

}  // namespace kestrune::platform
