#pragma once

#include <QString>

#include <optional>

namespace clockwell {

/// Stores the session's two tokens in the platform's secure store. Stateless, callable from any thread, and
/// never reports errors: a token that cannot be read is absent; one that cannot be written is lost, and the
/// session then ends by itself.
class TokenStore
{
public:
    TokenStore() = default;
    TokenStore(const TokenStore &) = delete;
    TokenStore &operator=(const TokenStore &) = delete;
    virtual ~TokenStore() = default;

    virtual std::optional<QString> load(const QString &key) const = 0;
    /// Replaces the stored text; nullopt deletes it. An empty text is a value.
    virtual void save(const QString &key, const std::optional<QString> &value) = 0;
};

namespace TokenKey {
inline const QString accessToken = QStringLiteral("accessToken");
inline const QString refreshToken = QStringLiteral("refreshToken");
} // namespace TokenKey

void clearTokens(TokenStore &store);
void saveTokens(TokenStore &store, const QString &access, const QString &refresh);

} // namespace clockwell
