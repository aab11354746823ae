#pragma once

#include <QProcess>
#include <QString>
#include <QUrl>

#include <optional>

namespace clockwell::test {

/// Runs the real `clockwell-server` with the demo organisation in a new database on a free loopback port,
/// until the object is destroyed.
class ServerProcess
{
public:
    /// The account of the demo employee, as printed by the `demo` command.
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

    /// Fills the database and starts the server. Returns false and sets `error` on failure. Each of the two
    /// steps may take 30 seconds.
    bool start(QString *error);
    /// Stops the server gracefully, or kills it after 10 seconds; the database is kept.
    void stop();

    QUrl baseUrl() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/api").arg(m_port)); }
    const Demo &demo() const { return m_demo; }
    QString database() const;
    /// The folder for the server's e-mail.
    QString outbox() const;

    /// Runs `clockwell-server admin` on the database and returns what it printed; empty, with `error` set,
    /// when it failed or took longer than 30 seconds.
    QString admin(const QStringList &arguments, QString *error) const;

    /// Runs a query on the database file, read-only, and returns the rows with their columns as texts.
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
