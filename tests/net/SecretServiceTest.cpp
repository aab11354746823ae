#include "net/SecretServiceTokenStore.h"
#include "support/Await.h"

#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

// GLib's headers have members called "signals".
#undef signals
#include <libsecret/secret.h>

#include <algorithm>
#include <csignal>
#include <limits>
#include <thread>
#include <vector>

namespace clockwell::test {

namespace {

using namespace std::chrono_literals;

const QString service = QStringLiteral("io.clockwell.app.tokens.test");

/// Stops the service that the script started, and starts another one on the same keyring.
class OwnService
{
public:
    OwnService() = default;
    OwnService(const OwnService &) = delete;
    OwnService &operator=(const OwnService &) = delete;
    ~OwnService()
    {
        m_process.terminate();
        m_process.waitForFinished(5000);
    }

    void stop()
    {
        kill(qEnvironmentVariableIntValue("CLOCKWELL_TEST_KEYRING_PID"), SIGTERM);
        ASSERT_TRUE(spinUntil([] { return !isThere(); }));
    }

    void start()
    {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.start(QStringLiteral("gnome-keyring-daemon"),
                        {QStringLiteral("--foreground"), QStringLiteral("--unlock"),
                         QStringLiteral("--components=secrets")});
        m_process.write(qgetenv("CLOCKWELL_TEST_KEYRING_PASSWORD"));
        m_process.closeWriteChannel();
        ASSERT_TRUE(spinUntil([] { return isThere(); }));
    }

private:
    static bool isThere()
    {
        QProcess ask;
        ask.start(QStringLiteral("gdbus"),
                  QStringLiteral("call --session --dest org.freedesktop.DBus --object-path "
                                 "/org/freedesktop/DBus --method "
                                 "org.freedesktop.DBus.NameHasOwner org.freedesktop.secrets")
                      .split(u' '));
        return ask.waitForFinished(5000) && ask.readAllStandardOutput().contains("true");
    }

    QProcess m_process;
};

/// Runs against the service that with-secret-service has started; the tests may stop and restart it.
class SecretService : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        ASSERT_TRUE(qEnvironmentVariableIsSet("CLOCKWELL_TEST_KEYRING_PID"))
            << "run this test by with-secret-service";
    }

    void TearDown() override { clearTokens(m_store); }

    /// The secrets that the service stores for a key, one entry per item, read without the code under test.
    static QList<QByteArray> items(const char *account)
    {
        GHashTable *attributes = g_hash_table_new(g_str_hash, g_str_equal);
        g_hash_table_insert(attributes, const_cast<char *>("service"),
                            const_cast<char *>("io.clockwell.app.tokens.test"));
        g_hash_table_insert(attributes, const_cast<char *>("account"), const_cast<char *>(account));
        const auto flags = static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS);
        GList *found = secret_service_search_sync(nullptr, nullptr, attributes, flags, nullptr, nullptr);
        g_hash_table_unref(attributes);
        QList<QByteArray> values;
        for (GList *entry = found; entry; entry = entry->next) {
            SecretValue *value = secret_item_get_secret(SECRET_ITEM(entry->data));
            gsize length = 0;
            const char *bytes = secret_value_get(value, &length);
            values.append(QByteArray(bytes, static_cast<qsizetype>(length)));
            secret_value_unref(value);
        }
        g_list_free_full(found, g_object_unref);
        return values;
    }

    SecretServiceTokenStore m_store{service};
    static inline OwnService m_restarted;
    const QString m_text = QStringLiteral("eyJhbGciOiJIUzI1NiJ9.e30.c2ln");
};

} // namespace

TEST_F(SecretService, KeyNeverSavedIsAbsent)
{
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
}

TEST_F(SecretService, SavedTextIsLoaded)
{
    m_store.save(TokenKey::accessToken, m_text);
    EXPECT_EQ(m_store.load(TokenKey::accessToken), m_text);
    EXPECT_EQ(m_store.load(TokenKey::refreshToken), std::nullopt);
}

TEST_F(SecretService, SecondTextReplacesTheFirstInOneItem)
{
    m_store.save(TokenKey::accessToken, m_text);
    m_store.save(TokenKey::accessToken, QStringLiteral("second"));
    EXPECT_EQ(m_store.load(TokenKey::accessToken), QStringLiteral("second"));
    EXPECT_EQ(items("accessToken"), QList<QByteArray>{"second"});
}

TEST_F(SecretService, NoValueDeletes)
{
    m_store.save(TokenKey::accessToken, m_text);
    m_store.save(TokenKey::accessToken, std::nullopt);
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
    EXPECT_TRUE(items("accessToken").isEmpty());
}

TEST_F(SecretService, DeletingAnAbsentKeyDoesNothing)
{
    m_store.save(TokenKey::accessToken, std::nullopt);
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
}

TEST_F(SecretService, EmptyTextIsStoredAndNotAbsent)
{
    m_store.save(TokenKey::accessToken, QStringLiteral(""));
    EXPECT_EQ(items("accessToken"), QList<QByteArray>{""});
    const std::optional<QString> loaded = m_store.load(TokenKey::accessToken);
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->isEmpty());
}

TEST_F(SecretService, TextIsStoredAsUtf8WithoutTerminator)
{
    m_store.save(TokenKey::accessToken, QString::fromUtf8("é😀"));
    EXPECT_EQ(items("accessToken"), QList<QByteArray>{"é😀"});
    EXPECT_EQ(m_store.load(TokenKey::accessToken), QString::fromUtf8("é😀"));
}

TEST_F(SecretService, LongTextIsLoaded)
{
    const QString text(16'384, u'x');
    m_store.save(TokenKey::accessToken, text);
    EXPECT_EQ(m_store.load(TokenKey::accessToken), text);
}

TEST_F(SecretService, BytesThatAreNotUtf8ReadAsAbsent)
{
    const SecretSchema schema = {"io.clockwell.app.tokens",
                                 SECRET_SCHEMA_DONT_MATCH_NAME,
                                 {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                  {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                  {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                 0,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr};
    SecretValue *value = secret_value_new("\xff\xfe", 2, "application/octet-stream");
    ASSERT_TRUE(secret_password_store_binary_sync(&schema, SECRET_COLLECTION_DEFAULT, "x", value, nullptr,
                                                  nullptr, "service", "io.clockwell.app.tokens.test",
                                                  "account", "accessToken", nullptr));
    secret_value_unref(value);
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
}

TEST_F(SecretService, ClearingDeletesBoth)
{
    saveTokens(m_store, QStringLiteral("a"), QStringLiteral("r"));
    EXPECT_EQ(m_store.load(TokenKey::accessToken), QStringLiteral("a"));
    EXPECT_EQ(m_store.load(TokenKey::refreshToken), QStringLiteral("r"));
    clearTokens(m_store);
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
    EXPECT_EQ(m_store.load(TokenKey::refreshToken), std::nullopt);
}

TEST_F(SecretService, OtherServicesAreNotAffected)
{
    SecretServiceTokenStore other(QStringLiteral("io.clockwell.app.tokens.other"));
    other.save(TokenKey::accessToken, QStringLiteral("o"));
    m_store.save(TokenKey::accessToken, m_text);
    m_store.save(TokenKey::accessToken, std::nullopt);
    EXPECT_EQ(other.load(TokenKey::accessToken), QStringLiteral("o"));
    clearTokens(other);
}

TEST_F(SecretService, SeveralThreadsMayUseItAtOnce)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this, i] {
            const QString key = QStringLiteral("key%1").arg(i);
            for (int round = 0; round < 5; ++round) {
                m_store.save(key, QString::number(round));
                EXPECT_EQ(m_store.load(key), QString::number(round));
            }
            m_store.save(key, std::nullopt);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

TEST_F(SecretService, LoadingAnAbsentKeyIsFast)
{
    m_store.load(TokenKey::accessToken);
    qint64 shortest = std::numeric_limits<qint64>::max(); // other work on the machine only ever adds to it
    for (int i = 0; i < 20; ++i) {
        QElapsedTimer clock;
        clock.start();
        EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
        shortest = std::min(shortest, clock.elapsed());
    }
    EXPECT_LT(shortest, 20);
}

TEST_F(SecretService, KilledServiceReadsAsAbsentAndTheNextOneStillHasTheTokens)
{
    saveTokens(m_store, QStringLiteral("a"), QStringLiteral("r"));
    m_restarted.stop();
    testing::internal::CaptureStderr();
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
    m_store.save(TokenKey::accessToken, QStringLiteral("lost"));
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
    EXPECT_LT(clock.elapsed(), 20'000);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    m_restarted.start();
    EXPECT_EQ(m_store.load(TokenKey::accessToken), QStringLiteral("a"));
    EXPECT_EQ(m_store.load(TokenKey::refreshToken), QStringLiteral("r"));
    m_store.save(TokenKey::accessToken, QStringLiteral("b"));
    EXPECT_EQ(items("accessToken"), QList<QByteArray>{"b"});
}

// Must be the last test: it leaves the keyring locked.
TEST_F(SecretService, LockedKeyringReadsAsAbsentAndLosesWritesWithoutWaiting)
{
    m_store.save(TokenKey::accessToken, m_text);
    ASSERT_EQ(QProcess::execute(
                  QStringLiteral("gdbus"),
                  QStringLiteral("call --session --dest org.freedesktop.secrets --object-path "
                                 "/org/freedesktop/secrets --method org.freedesktop.Secret.Service.Lock "
                                 "['/org/freedesktop/secrets/collection/login']")
                      .split(u' ')),
              0);
    testing::internal::CaptureStderr();
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(m_store.load(TokenKey::accessToken), std::nullopt);
    m_store.save(TokenKey::refreshToken, m_text);
    m_store.save(TokenKey::accessToken, std::nullopt);
    EXPECT_EQ(m_store.load(TokenKey::refreshToken), std::nullopt);
    EXPECT_LT(clock.elapsed(), 20'000);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace clockwell::test
