#pragma once

#include <QProcess>
#include <QString>
#include <QUrl>

#include <optional>

namespace clockwell::test {

/// The real `clockwell-server` with the demo organisation in a fresh database, on a free loopback port, for
/// as long as the object lives.
class ServerProcess
{
public:
    /// What the `demo` command says about the employee who is ready to sign in.
    struct Demo
    {
        QString email;
        QString password;
        QString coordinates; ///< of the office: latitude,longitude in degrees
    };

    /// `binary` is the server's executable; the database and the log are written below `directory`.
    ServerProcess(QString binary, QString directory);
    ServerProcess(const ServerProcess &) = delete;
    ServerProcess &operator=(const ServerProcess &) = delete;
    ~ServerProcess();

    /// Fills the database and starts to serve; `error` says why when this is false. Waits at most 30 seconds.
    bool start(QString *error);
    /// Stops serving, gracefully, within 10 seconds; the database stays.
    void stop();

    QUrl baseUrl() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/api").arg(m_port)); }
    const Demo &demo() const { return m_demo; }
    QString database() const;
    /// Where the server's e-mail goes.
    QString outbox() const;

    /// Runs `clockwell-server admin` on the database and returns what it printed; empty, with `error` set,
    /// when it failed or took longer than 30 seconds.
    QString admin(const QStringList &arguments, QString *error) const;

    /// One query on the database file itself: rows of columns as texts. For looking, not for writing.
    QList<QStringList> rows(const QString &sql) const;

private:
    bool fillDatabase(QString *error);

    QString m_binary;
    QString m_directory;
    QProcess m_process;
    Demo m_demo;
    int m_port = 0;
};

} // namespace clockwell::test
