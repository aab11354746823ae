#pragma once

#include "net/TokenStore.h"

#include <QByteArray>

namespace clockwell {

/// Stores tokens in the desktop's Secret Service, one item per key. Each call is a blocking D-Bus round trip
/// (a millisecond, but seconds if the service hangs): avoid it on the UI thread.
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
