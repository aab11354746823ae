#include "ServerProcess.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

constexpr int startLimitMs = 30'000;
constexpr int stopLimitMs = 10'000;

QString textOf(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes).trimmed();
}

} // namespace

ServerProcess::ServerProcess(QString binary, QString directory)
    : m_binary(std::move(binary)), m_directory(std::move(directory))
{}

ServerProcess::ServerProcess(QString binary, Running running)
    : m_binary(std::move(binary)), m_running(std::move(running))
{}

ServerProcess::~ServerProcess()
{
    stop();
}

QUrl ServerProcess::baseUrl() const
{
    return m_running ? m_running->baseUrl : QUrl(u"http://127.0.0.1:%1/api"_s.arg(m_port));
}

QString ServerProcess::database() const
{
    if (m_running)
        return m_running->database;
    return QDir(m_directory).filePath(u"demo.db"_s);
}

QString ServerProcess::outbox() const
{
    if (m_running)
        return m_running->outbox;
    return QDir(m_directory).filePath(u"outbox"_s);
}

QString ServerProcess::admin(const QStringList &arguments, QString *error) const
{
    QProcess admin;
    admin.start(m_binary, QStringList{u"admin"_s, u"--database"_s, database()} + arguments);
    if (admin.waitForFinished(startLimitMs) && admin.exitStatus() == QProcess::NormalExit &&
        admin.exitCode() == 0)
        return textOf(admin.readAllStandardOutput());
    *error = u"The admin command failed: "_s + textOf(admin.readAllStandardError());
    return {};
}

bool ServerProcess::fillDatabase(QString *error)
{
    if (!m_running) {
        QDir(outbox()).removeRecursively();
        for (const auto *suffix : {"", "-wal", "-shm"})
            QFile::remove(database() + QLatin1String(suffix));
    }
    QProcess demo;
    demo.start(m_binary, {u"demo"_s, u"--database"_s, database()});
    if (!demo.waitForFinished(startLimitMs) || demo.exitCode() != 0) {
        *error = u"The demo database could not be created: "_s + textOf(demo.readAllStandardError());
        return false;
    }
    // One fact per line: "  e-mail       ada@..."
    static const QRegularExpression fact(u"^  (\\S+) {2,}(.+)$"_s, QRegularExpression::MultilineOption);
    QMap<QString, QString> facts;
    const QString said = QString::fromUtf8(demo.readAllStandardOutput());
    for (auto match = fact.globalMatch(said); match.hasNext();) {
        const auto found = match.next();
        facts.insert(found.captured(1), found.captured(2));
    }
    m_demo = {facts.value(u"e-mail"_s), facts.value(u"password"_s), facts.value(u"coordinates"_s)};
    if (m_demo.email.isEmpty() || m_demo.coordinates.isEmpty())
        *error = u"The demo command did not print the account to sign in with:\n"_s + said;
    return error->isEmpty();
}

bool ServerProcess::start(QString *error)
{
    if (m_running)
        return fillDatabase(error);
    QDir().mkpath(m_directory);
    if (!fillDatabase(error))
        return false;
    const QString portFile = QDir(m_directory).filePath(u"port"_s);
    QFile::remove(portFile);
    m_process.setStandardErrorFile(QDir(m_directory).filePath(u"server.log"_s));
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.start(m_binary, {u"serve"_s, u"--database"_s, database(), u"--listen"_s, u"127.0.0.1:0"_s,
                               u"--port-file"_s, portFile, u"--outbox"_s, outbox()});
    const bool listening = QTest::qWaitFor(
        [&] {
            QFile file(portFile);
            if (file.open(QIODevice::ReadOnly))
                m_port = textOf(file.readAll()).toInt();
            return m_port != 0 || m_process.state() == QProcess::NotRunning;
        },
        startLimitMs);
    if (!listening || m_port == 0)
        *error = u"The server did not start; its log is in "_s + m_directory;
    return m_port != 0;
}

void ServerProcess::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(stopLimitMs))
        m_process.kill();
    m_process.waitForFinished(stopLimitMs);
}

QList<QStringList> ServerProcess::rowsOfPostgres(const QString &sql) const
{
    QProcess psql;
    psql.start(u"psql"_s, {u"--no-psqlrc"_s, u"--tuples-only"_s, u"--no-align"_s, u"--field-separator=\t"_s,
                           u"--dbname"_s, database(), u"--command"_s, sql});
    if (!psql.waitForFinished(startLimitMs) || psql.exitCode() != 0)
        return {};
    QList<QStringList> rows;
    const QString said = QString::fromUtf8(psql.readAllStandardOutput());
    for (const QString &line : said.split(u'\n', Qt::SkipEmptyParts))
        rows.append(line.split(u'\t'));
    return rows;
}

QList<QStringList> ServerProcess::rows(const QString &sql) const
{
    if (database().startsWith(u"postgresql://"_s))
        return rowsOfPostgres(sql);
    sqlite3 *connection = nullptr;
    QList<QStringList> rows;
    if (sqlite3_open_v2(database().toUtf8().constData(), &connection, SQLITE_OPEN_READONLY, nullptr) ==
        SQLITE_OK) {
        const auto take = [](void *target, int count, char **values, char **) {
            QStringList row;
            for (int column = 0; column < count; ++column)
                row.append(QString::fromUtf8(values[column])); // NULL gives an empty text
            static_cast<QList<QStringList> *>(target)->append(row);
            return 0;
        };
        sqlite3_exec(connection, sql.toUtf8().constData(), take, &rows, nullptr);
    }
    sqlite3_close(connection);
    return rows;
}

} // namespace clockwell::test
