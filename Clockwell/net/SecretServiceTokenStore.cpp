#include "net/SecretServiceTokenStore.h"

#include <QByteArrayView>
#include <QStringDecoder>

// GLib's headers have members called "signals".
#undef signals
#include <libsecret/secret.h>

#include <memory>

namespace clockwell {

namespace {

// No xdg:schema attribute: an item is identified by its service and account alone.
const SecretSchema schema = {
    "io.clockwell.app.tokens",
    SECRET_SCHEMA_DONT_MATCH_NAME,
    {
        {"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
        {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
        {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING},
    },
    0,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

/// Takes the error that a call reports and drops it: no session bus, no service, a locked keyring all read as
/// "nothing".
class Ignored
{
public:
    Ignored() = default;
    Ignored(const Ignored &) = delete;
    Ignored &operator=(const Ignored &) = delete;
    ~Ignored() { g_clear_error(&m_error); }
    GError **operator&() { return &m_error; }

private:
    GError *m_error = nullptr;
};

struct ValueUnref
{
    void operator()(SecretValue *value) const { secret_value_unref(value); }
};

} // namespace

SecretServiceTokenStore::SecretServiceTokenStore(const QString &service) : m_service(service.toUtf8()) {}

std::optional<QString> SecretServiceTokenStore::load(const QString &key) const
{
    Ignored error;
    const std::unique_ptr<SecretValue, ValueUnref> value(
        secret_password_lookup_binary_sync(&schema, nullptr, &error, "service", m_service.constData(),
                                           "account", key.toUtf8().constData(), nullptr));
    if (!value)
        return std::nullopt;
    gsize length = 0;
    const gchar *bytes = secret_value_get(value.get(), &length);
    const QByteArrayView view(bytes, static_cast<qsizetype>(length));
    if (!view.isValidUtf8())
        return std::nullopt;
    // Not a null string: an empty token is a stored token.
    return length == 0 ? QStringLiteral("") : QString::fromUtf8(view);
}

void SecretServiceTokenStore::save(const QString &key, const std::optional<QString> &value)
{
    const QByteArray account = key.toUtf8();
    {
        Ignored error;
        secret_password_clear_sync(&schema, nullptr, &error, "service", m_service.constData(), "account",
                                   account.constData(), nullptr);
    }
    if (!value)
        return;
    const QByteArray bytes = value->toUtf8();
    const std::unique_ptr<SecretValue, ValueUnref> secret(
        secret_value_new(bytes.constData(), static_cast<gssize>(bytes.size()), "text/plain"));
    Ignored error;
    secret_password_store_binary_sync(&schema, SECRET_COLLECTION_DEFAULT, "Clockwell", secret.get(), nullptr,
                                      &error, "service", m_service.constData(), "account",
                                      account.constData(), nullptr);
}

} // namespace clockwell
