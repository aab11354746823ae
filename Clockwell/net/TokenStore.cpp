#include "net/TokenStore.h"

namespace clockwell {

// The access token is always written or deleted first. If the process is interrupted between the two calls, a
// session without an access token is renewed; an access token without a refresh token would work for a while
// and then fail without warning.
void clearTokens(TokenStore &store)
{
    store.save(TokenKey::accessToken, std::nullopt);
    store.save(TokenKey::refreshToken, std::nullopt);
}

void saveTokens(TokenStore &store, const QString &access, const QString &refresh)
{
    store.save(TokenKey::accessToken, access);
    store.save(TokenKey::refreshToken, refresh);
}

} // namespace clockwell
