#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <cstdlib>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "../posix/TemporaryFolder.h"
#include "WebApplication.h"
#include "platform/qtweb/QtWeb.h"
#include "support/ChildProcess.h"

namespace kestrune::test {
namespace {

using namespace std::chrono_literals;

/// A server with a certificate that it has signed itself, made for this test. It answers every request alike.
class EncryptedServer {
 public:
  explicit EncryptedServer(QByteArray answer) : answer_(std::move(answer)) {
    ChildProcess maker({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                        "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", folder_ / "key",
                        "-out", folder_ / "certificate"},
                       {}, folder_ / "output");
    EXPECT_EQ(maker.Wait(60s), 0) << FileText(folder_ / "output");
    QFile key(QString::fromStdString(folder_ / "key"));
    EXPECT_TRUE(key.open(QFile::ReadOnly));
    certificate_ = QSslCertificate::fromPath(QString::fromStdString(folder_ / "certificate")).value(0);
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate_);
    configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    server_.setSslConfiguration(configuration);
    EXPECT_TRUE(server_.listen(QHostAddress::AnyIPv4));
    QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_, [this] {
      QTcpSocket* const connection = server_.nextPendingConnection();
      QObject::connect(connection, &QTcpSocket::readyRead, connection, [this, connection] {
        connection->readAll();
        connection->write(answer_);
        connection->disconnectFromHost();
      });
    });
  }

  [[nodiscard]] std::string Address() const {
    return fmt::format("https://127.0.0.1:{}/NewVersion.txt", server_.serverPort());
  }
  [[nodiscard]] const QSslCertificate& Certificate() const { return certificate_; }

 private:
  TemporaryFolder folder_;
  QByteArray answer_;
  QSslCertificate certificate_;
  QSslServer server_;
};

/// While it lives, the program trusts this certificate beside those of the system.
class Trusted {
 public:
  explicit Trusted(const QSslCertificate& certificate) : before_(QSslConfiguration::defaultConfiguration()) {
    QSslConfiguration configuration = before_;
    configuration.addCaCertificate(certificate);
    QSslConfiguration::setDefaultConfiguration(configuration);
  }
  ~Trusted() { QSslConfiguration::setDefaultConfiguration(before_); }
  Trusted(const Trusted&) = delete;
  Trusted& operator=(const Trusted&) = delete;

 private:
  QSslConfiguration before_;
};

class EncryptedWebTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!QSslSocket::supportsSsl()) GTEST_SKIP() << "Qt has no encryption here";
    if (!ChildProcess::Installed("openssl")) GTEST_SKIP() << "nothing makes a certificate here";
  }

  QCoreApplication& application = WebApplication();
};

constexpr const char* kAnswer = "HTTP/1.0 200 OK\r\nContent-Length: 11\r\n\r\n003.000.030";

TEST_F(EncryptedWebTest, ACertificateThatNobodyVouchesForIsRefused) {
  const EncryptedServer server(kAnswer);
  platform::QtWeb web;
  EXPECT_EQ(web.FetchText(server.Address()), "");
}

TEST_F(EncryptedWebTest, ATrustedServersTextComesThrough) {
  const EncryptedServer server(kAnswer);
  const Trusted trusted(server.Certificate());
  platform::QtWeb web;
  EXPECT_EQ(web.FetchText(server.Address()), "003.000.030");
}

TEST_F(EncryptedWebTest, AnotherHostsCertificateIsRefused) {
  const EncryptedServer server(kAnswer);
  const Trusted trusted(server.Certificate());
  platform::QtWeb web;
  std::string address = server.Address();
  address.replace(address.find("127.0.0.1"), 9, "127.0.0.2");
  EXPECT_EQ(web.FetchText(address), "");
}

TEST_F(EncryptedWebTest, ARedirectionToAnOpenAddressIsNotFollowed) {
  const EncryptedServer server(
      "HTTP/1.0 302 Found\r\nLocation: http://127.0.0.1:9/x\r\nContent-Length: 4\r\n\r\ngone");
  const Trusted trusted(server.Certificate());
  platform::QtWeb web;
  EXPECT_EQ(web.FetchText(server.Address()), "");
}

}  // namespace
}  // namespace kestrune::test
