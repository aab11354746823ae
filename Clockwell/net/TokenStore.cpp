#include "net/TokenStore.h"

namespace clockwell {

// The access token goes first each time: interrupted half-way, a session without an access token renews
// itself, while an access token that outlived its refresh token would work for a while and then end without
// warning.
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
