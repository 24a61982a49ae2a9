#include "platform/qtweb/QtSocket.h"

#include <QString>

namespace kestrune::platform {
namespace {

/// What the socket takes in before anybody reads: enough for one read, and no server can make it more.
constexpr qint64 kReadBuffer = 32767;

}  // namespace

QtSocket::QtSocket(Waits& waits) : waits_(waits) {
  socket_.setReadBufferSize(kReadBuffer);
  const auto leave = [this] { change_.quit(); };
  QObject::connect(&socket_, &QTcpSocket::connected, &change_, leave);
  QObject::connect(&socket_, &QTcpSocket::readyRead, &change_, leave);
  QObject::connect(&socket_, &QTcpSocket::disconnected, &change_, leave);
  QObject::connect(&socket_, &QTcpSocket::errorOccurred, &change_, leave);
}

bool QtSocket::Connect(std::string_view hostName, std::uint16_t remotePort,
                       std::chrono::milliseconds timeout) {
  timeout_ = timeout;
  if (hostName.empty() || waits_.Ended()) return false;
  socket_.connectToHost(QString::fromUtf8(hostName.data(), static_cast<qsizetype>(hostName.size())),
                        remotePort);
  const auto state = socket_.state();
  if (state == QAbstractSocket::HostLookupState || state == QAbstractSocket::ConnectingState) {
    waits_.Run(change_, timeout_);
  }
  if (socket_.state() == QAbstractSocket::ConnectedState) return true;
  socket_.abort();
  return false;
}

bool QtSocket::Write(std::string_view text) {
  if (socket_.state() != QAbstractSocket::ConnectedState) return false;
  const auto size = static_cast<qint64>(text.size());
  const bool taken = socket_.write(text.data(), size) == size;
  // What the system does not take now goes on its way while the next read waits.
  socket_.flush();
  return taken;
}

std::string QtSocket::Read(std::size_t atMost) {
  if (socket_.bytesAvailable() == 0 && socket_.state() == QAbstractSocket::ConnectedState) {
    waits_.Run(change_, timeout_);
  }
  return socket_.read(static_cast<qint64>(atMost)).toStdString();
}

}  // namespace kestrune::platform
