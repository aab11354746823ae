#include "Ratio.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"

#include <QCoreApplication>
#include <QCoro/QCoroNetwork>
#include <QNetworkAccessManager>
#include <QNetworkReply>

// A whole request through the client, two threads and a decoded record, against a bare awaited GET of the
// same reply.

using namespace clockwell;

namespace {

constexpr int requestsARound = 50;

QCoro::Task<> throughClient(APIClient &client)
{
    for (int i = 0; i < requestsARound; ++i)
        co_await client.request<AuthUser>(QStringLiteral("auth/me"), QStringLiteral("GET"), {}, std::nullopt,
                                          true);
}

QCoro::Task<> bare(QNetworkAccessManager &manager, QNetworkRequest request)
{
    for (int i = 0; i < requestsARound; ++i) {
        const std::unique_ptr<QNetworkReply> reply(manager.get(request));
        co_await reply.get();
        reply->readAll();
    }
}

/// Runs a task to its end on this thread's event loop.
void finish(QCoro::Task<> task)
{
    QEventLoop loop;
    const auto outcome = std::make_shared<test::Outcome<void>>();
    const auto ended = [](QCoro::Task<> inner, std::shared_ptr<test::Outcome<void>> done,
                          QEventLoop &events) -> QCoro::Task<> {
        co_await test::storeOutcome<void>(std::move(inner), done);
        events.quit();
    };
    const QCoro::Task<> running = ended(std::move(task), outcome, loop);
    if (!outcome->done)
        loop.exec();
    if (outcome->error)
        std::rethrow_exception(outcome->error);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    test::FakeServer server;
    server.expect("GET", "/api/auth/me")
        .anyNumber()
        .reply(200, R"({"id":"1","fullName":"N","email":"e@example","role":"EMPLOYEE","status":"ACTIVE"})");
    test::MemoryTokenStore tokens(QStringLiteral("a"), QStringLiteral("r"));
    SessionEvents events;
    APIClient client({.baseURL = server.url(QStringLiteral("/api"))}, tokens, events);
    QNetworkAccessManager manager;
    QNetworkRequest request(server.url(QStringLiteral("/api/auth/me")));
    request.setRawHeader("Accept", "application/json");
    request.setRawHeader("Authorization", "Bearer a");
    const double ratio =
        bench::ratioOf([&] { finish(throughClient(client)); }, [&] { finish(bare(manager, request)); }, 31);
    return bench::report("request-vs-bare", ratio, false, 1.3);
}
