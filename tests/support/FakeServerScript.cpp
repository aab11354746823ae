#include "support/FakeServerScript.h"

#include <QSslSocket>
#include <QTimer>
#include <QUrlQuery>

#include <sys/socket.h>

namespace clockwell::test {

namespace {

bool matches(const FakeServer::Script &script, const FakeServer::Request &request)
{
    if (script.remaining == 0 || script.method != request.method || script.path != request.path)
        return false;
    return std::all_of(script.wanted.begin(), script.wanted.end(), [&](const auto &wanted) {
        return request.has(wanted.first) == !wanted.second.isEmpty() &&
               request.header(wanted.first) == wanted.second;
    });
}

QByteArray toBytes(const FakeServer::Reply &reply, bool closing)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(reply.status) + " Scripted\r\n";
    for (const auto &[name, value] : reply.headers)
        bytes += name + ": " + value + "\r\n";
    if (reply.status != 204)
        bytes += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n";
    if (closing)
        bytes += "Connection: close\r\n";
    return bytes + "\r\n" + reply.body;
}

void parseHead(const QByteArray &head, FakeServer::Request &request)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    request.method = first.value(0);
    request.target = first.value(1);
    const QUrl url(QString::fromUtf8(request.target));
    request.path = url.path();
    for (const auto &[key, value] : QUrlQuery(url).queryItems(QUrl::FullyDecoded))
        request.query.insert(key, value);
    for (const QByteArray &line : lines.mid(1))
        if (const qsizetype colon = line.indexOf(':'); colon > 0)
            request.headers.append({line.left(colon).trimmed(), line.mid(colon + 1).trimmed()});
}

} // namespace

void FakeServerJournal::add(std::shared_ptr<FakeServer::Script> script)
{
    const std::scoped_lock lock(m_mutex);
    m_scripts.append(std::move(script));
}

int FakeServerJournal::countConnection()
{
    const std::scoped_lock lock(m_mutex);
    return ++m_connections;
}

int FakeServerJournal::connections() const
{
    const std::scoped_lock lock(m_mutex);
    return m_connections;
}

std::shared_ptr<FakeServer::Script> FakeServerJournal::record(const FakeServer::Request &request)
{
    const std::scoped_lock lock(m_mutex);
    m_requests.append(request);
    for (const auto &script : std::as_const(m_scripts)) {
        if (!matches(*script, request))
            continue;
        if (script->remaining > 0)
            --script->remaining;
        return script;
    }
    m_failures.append(QStringLiteral("unexpected request: %1 %2")
                          .arg(QString::fromUtf8(request.method), QString::fromUtf8(request.target)));
    return nullptr;
}

QList<FakeServer::Request> FakeServerJournal::requests() const
{
    const std::scoped_lock lock(m_mutex);
    return m_requests;
}

QStringList FakeServerJournal::takeFailures()
{
    const std::scoped_lock lock(m_mutex);
    for (const auto &script : std::as_const(m_scripts)) {
        if (script->remaining > 0) {
            m_failures.append(QStringLiteral("%1 expected request(s) never came: %2 %3")
                                  .arg(script->remaining)
                                  .arg(QString::fromUtf8(script->method), script->path));
        }
    }
    m_scripts.clear();
    return std::exchange(m_failures, {});
}

FakeServerConnection::FakeServerConnection(QSslSocket *socket, FakeServerJournal &journal)
    : QObject(socket), m_socket(socket), m_journal(journal), m_number(journal.countConnection())
{
    connect(socket, &QIODevice::readyRead, this, [this] { read(); });
    connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
}

void FakeServerConnection::read()
{
    m_input += m_socket->readAll();
    FakeServer::Request request;
    while (takeRequest(request)) {
        const std::shared_ptr<FakeServer::Script> script = m_journal.record(request);
        FakeServer::Script unexpected;
        unexpected.reply = {599, "unexpected", {}};
        const FakeServer::Script chosen = script ? *script : unexpected;
        if (chosen.delay.count() == 0)
            execute(chosen, request);
        else
            QTimer::singleShot(chosen.delay, this, [this, chosen, request] { execute(chosen, request); });
        request = {};
    }
}

bool FakeServerConnection::takeRequest(FakeServer::Request &request)
{
    const qsizetype end = m_input.indexOf("\r\n\r\n");
    if (end < 0)
        return false;
    parseHead(m_input.left(end), request);
    const qsizetype length = request.header("Content-Length").toLongLong();
    if (m_input.size() < end + 4 + length)
        return false;
    request.body = m_input.mid(end + 4, length);
    request.connection = m_number;
    request.at = std::chrono::steady_clock::now();
    m_input.remove(0, end + 4 + length);
    return true;
}

void FakeServerConnection::execute(const FakeServer::Script &script, const FakeServer::Request &request)
{
    const bool closing = script.ending != FakeServer::Script::Ending::KeepAlive;
    const FakeServer::Reply reply = script.make ? script.make(request) : script.reply;
    send(script.raw ? *script.raw : toBytes(reply, closing), script);
}

void FakeServerConnection::send(QByteArray bytes, FakeServer::Script script)
{
    const qsizetype piece = script.piece == 0 ? bytes.size() : script.piece;
    m_socket->write(bytes.left(piece));
    m_socket->flush();
    bytes.remove(0, piece);
    if (bytes.isEmpty())
        end(script.ending);
    else
        QTimer::singleShot(script.every, this, [this, bytes, script] { send(bytes, script); });
}

void FakeServerConnection::end(FakeServer::Script::Ending ending)
{
    if (ending == FakeServer::Script::Ending::Close) {
        m_socket->disconnectFromHost();
    } else if (ending == FakeServer::Script::Ending::Reset) {
        while (m_socket->bytesToWrite() > 0 && m_socket->waitForBytesWritten(1000)) {
        }
        const linger noLinger{1, 0};
        setsockopt(static_cast<int>(m_socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &noLinger,
                   sizeof noLinger);
        m_socket->abort();
    }
}

} // namespace clockwell::test
