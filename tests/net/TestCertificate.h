#pragma once

#include <QFile>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTemporaryDir>

namespace clockwell::test {

/// A key and a self-signed certificate for 127.0.0.1, made anew and gone with the object.
class TestCertificate
{
public:
    TestCertificate()
    {
        const QString arguments =
            QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
                           "-subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 -keyout %1 -out %2");
        QProcess openssl;
        openssl.start(QStringLiteral("openssl"), arguments.arg(keyFile(), certificateFile()).split(u' '));
        if (!openssl.waitForFinished() || openssl.exitCode() != 0)
            qFatal("no certificate can be made");
    }

    QString keyFile() const { return m_directory.filePath(QStringLiteral("key.pem")); }
    QString certificateFile() const { return m_directory.filePath(QStringLiteral("cert.pem")); }

    /// What a server needs to prove with it who it is.
    QSslConfiguration serverTls() const
    {
        QFile key(keyFile());
        if (!key.open(QIODevice::ReadOnly))
            qFatal("the key cannot be read");
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setPrivateKey(QSslKey(key.readAll(), QSsl::Ec));
        tls.setLocalCertificate(QSslCertificate::fromPath(certificateFile()).value(0));
        return tls;
    }

private:
    const QTemporaryDir m_directory;
};

} // namespace clockwell::test
