#pragma once

#include "net/TokenStore.h"

#include <QByteArray>

namespace clockwell {

/// Tokens in the desktop's Secret Service, one item a key. Each call is a blocking D-Bus round trip (a
/// millisecond, but seconds when the service hangs): keep it off the UI thread where that matters.
class SecretServiceTokenStore final : public TokenStore
{
public:
    explicit SecretServiceTokenStore(const QString &service = QStringLiteral("io.clockwell.app.tokens"));

    std::optional<QString> load(const QString &key) const override;
    void save(const QString &key, const std::optional<QString> &value) override;

private:
    const QByteArray m_service;
};

} // namespace clockwell
