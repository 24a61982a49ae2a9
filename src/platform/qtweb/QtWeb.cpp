#include "platform/qtweb/QtWeb.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <memory>

#include "platform/qtweb/QtSocket.h"

namespace kestrune::platform {
namespace {

constexpr int kMostRedirections = 5;

QNetworkRequest RequestFor(const QUrl& url, std::chrono::milliseconds silence) {
  QNetworkRequest request(url);
  request.setTransferTimeout(static_cast<int>(silence.count()));
  request.setMaximumRedirectsAllowed(kMostRedirections);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  request.setHeader(QNetworkRequest::UserAgentHeader, "Kestrune");
  // The bytes as they lie on the server, so that their number is theirs.
  request.setRawHeader("Accept-Encoding", "identity");
  request.setRawHeader("Connection", "close");
  return request;
}

/// The server has what was asked for, and it has arrived whole.
bool IsWhole(const QNetworkReply& reply) {
  constexpr int kOk = 200;
  return reply.error() == QNetworkReply::NoError &&
         reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == kOk;
}

}  // namespace

QtWeb::QtWeb(WebLimits limits) : limits_(limits) {}

std::string QtWeb::FetchText(std::string_view address) {
  return Fetch(address, limits_.Text, limits_.TextSize);
}

std::string QtWeb::FetchBytes(std::string_view address) {
  return Fetch(address, limits_.Bytes, limits_.BytesSize);
}

std::unique_ptr<Socket> QtWeb::MakeSocket() {
  return std::make_unique<QtSocket>(waits_);
}

std::string QtWeb::Fetch(std::string_view address, std::chrono::milliseconds limit, std::size_t mostBytes) {
  const QUrl url(QString::fromUtf8(address.data(), static_cast<qsizetype>(address.size())));
  const bool ofTheWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
  if (!url.isValid() || !ofTheWeb || waits_.Ended()) return {};

  std::string body;
  bool tooMuch = false;
  QEventLoop end;
  // A client of its own for each fetch: between two of them lie hours, and nothing is to be kept open meanwhile.
  QNetworkAccessManager client;
  const std::unique_ptr<QNetworkReply> reply(client.get(RequestFor(url, limits_.Silence)));
  const auto take = [&] {
    const QByteArray piece = reply->readAll();
    if (body.size() + static_cast<std::size_t>(piece.size()) > mostBytes) {
      tooMuch = true;
      end.quit();
      return;
    }
    body.append(piece.constData(), static_cast<std::size_t>(piece.size()));
  };
  QObject::connect(reply.get(), &QNetworkReply::readyRead, &end, take);
  QObject::connect(reply.get(), &QNetworkReply::finished, &end, &QEventLoop::quit);
  waits_.Run(end, limit);
  if (!tooMuch) take();
  if (tooMuch || !reply->isFinished() || !IsWhole(*reply)) return {};
  return body;
}

}  // namespace kestrune::platform
