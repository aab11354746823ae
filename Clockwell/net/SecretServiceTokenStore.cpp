#include "net/SecretServiceTokenStore.h"

#include <QByteArrayView>

// GLib's headers have members called "signals".
#undef signals
#include <libsecret/secret.h>

#include <memory>

namespace clockwell {

namespace {

// Items match by service and account alone, regardless of the schema name that the keyring stores with them.
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

/// Receives the error of a call and discards it: without a session bus or a service, or with a locked
/// keyring, a secret reads as absent.
class IgnoredError
{
public:
    IgnoredError() = default;
    IgnoredError(const IgnoredError &) = delete;
    IgnoredError &operator=(const IgnoredError &) = delete;
    ~IgnoredError() { g_clear_error(&m_error); }
    operator GError **() { return &m_error; }

private:
    GError *m_error = nullptr;
};

struct Unref
{
    void operator()(void *object) const { g_object_unref(object); }
    void operator()(SecretValue *value) const { secret_value_unref(value); }
    void operator()(GHashTable *table) const { g_hash_table_unref(table); }
};
template <class T>
using Owned = std::unique_ptr<T, Unref>;

Owned<GHashTable> attributesOf(const QByteArray &service, const QString &key)
{
    return Owned<GHashTable>(secret_attributes_build(&schema, "service", service.constData(), "account",
                                                     key.toUtf8().constData(), nullptr));
}

/// Null without a session bus or a service on it. libsecret owns, shares and keeps the connection. The key
/// exchange for encrypting secrets (several milliseconds of computation) is deferred until the first secret
/// is transferred.
Owned<SecretService> connectToService()
{
    return Owned<SecretService>(secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, IgnoredError()));
}

/// The secret of the first item that matches. Unlike libsecret's simple API it never prompts the user to
/// unlock a keyring: starting the app must not open a password dialog.
Owned<SecretValue> findSecret(SecretService *service, GHashTable *attributes)
{
    GList *items = secret_service_search_sync(service, &schema, attributes, SECRET_SEARCH_LOAD_SECRETS,
                                              nullptr, IgnoredError());
    SecretValue *value = items ? secret_item_get_secret(SECRET_ITEM(items->data)) : nullptr;
    g_list_free_full(items, g_object_unref);
    return Owned<SecretValue>(value);
}

bool isDefaultCollectionLocked(SecretService *service)
{
    const Owned<SecretCollection> collection(secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, IgnoredError()));
    return collection && secret_collection_get_locked(collection.get());
}

} // namespace

SecretServiceTokenStore::SecretServiceTokenStore(const QString &service) : m_service(service.toUtf8()) {}

std::optional<QString> SecretServiceTokenStore::load(const QString &key) const
{
    const Owned<SecretService> service = connectToService();
    if (!service)
        return std::nullopt;
    const Owned<SecretValue> value = findSecret(service.get(), attributesOf(m_service, key).get());
    if (!value)
        return std::nullopt;
    gsize length = 0;
    const gchar *bytes = secret_value_get(value.get(), &length);
    const QByteArrayView view(bytes, static_cast<qsizetype>(length));
    if (!view.isValidUtf8())
        return std::nullopt;
    // An empty, not a null string: an empty token is a stored token.
    return length == 0 ? QStringLiteral("") : QString::fromUtf8(view);
}

void SecretServiceTokenStore::save(const QString &key, const std::optional<QString> &value)
{
    const Owned<SecretService> service = connectToService();
    if (!service)
        return;
    const Owned<GHashTable> attributes = attributesOf(m_service, key);
    secret_service_clear_sync(service.get(), &schema, attributes.get(), nullptr, IgnoredError());
    if (!value || isDefaultCollectionLocked(service.get()))
        return;
    const QByteArray bytes = value->toUtf8();
    const Owned<SecretValue> secret(
        secret_value_new(bytes.constData(), static_cast<gssize>(bytes.size()), "text/plain"));
    secret_service_store_sync(service.get(), &schema, attributes.get(), SECRET_COLLECTION_DEFAULT,
                              "Clockwell", secret.get(), nullptr, IgnoredError());
}

} // namespace clockwell
