#pragma once

#include <QProcess>
#include <QString>
#include <QUrl>

#include <optional>

namespace clockwell::test {

/// Runs the real `clockwell-server` with the demo organisation in a new database on a free loopback port,
/// until the object is destroyed; or stands for one that runs already.
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

    /// A server, or several behind a balancer, that this object neither starts nor stops.
    struct Running
    {
        QUrl baseUrl;
        QString database; ///< a file, or the URL of a PostgreSQL database
        QString outbox;   ///< the folder of its e-mail
    };

    /// `binary` is the server's executable; the database and the log are written below `directory`.
    ServerProcess(QString binary, QString directory);
    /// `binary` administers the running server's database.
    ServerProcess(QString binary, Running running);
    ServerProcess(const ServerProcess &) = delete;
    ServerProcess &operator=(const ServerProcess &) = delete;
    ~ServerProcess();

    /// Fills the database, if it is empty or the object's own, and starts the server unless it runs. Returns
    /// false and sets `error` on failure. Each of the two steps may take 30 seconds.
    bool start(QString *error);
    /// Stops the server gracefully, or kills it after 10 seconds; the database is kept.
    void stop();

    QUrl baseUrl() const;
    const Demo &demo() const { return m_demo; }
    QString database() const;
    /// The folder for the server's e-mail.
    QString outbox() const;

    /// Runs `clockwell-server admin` on the database and returns what it printed; empty, with `error` set,
    /// when it failed or took longer than 30 seconds.
    QString admin(const QStringList &arguments, QString *error) const;

    /// Runs a query that SQLite and PostgreSQL both know on the database, and returns the rows with their
    /// columns, which hold no tab, as texts; no row when it fails.
    QList<QStringList> rows(const QString &sql) const;

private:
    bool fillDatabase(QString *error);
    QList<QStringList> rowsOfPostgres(const QString &sql) const;

    QString m_binary;
    QString m_directory;
    std::optional<Running> m_running;
    QProcess m_process;
    Demo m_demo;
    int m_port = 0;
};

} // namespace clockwell::test
