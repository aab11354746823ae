#pragma once

#include "net/TokenStore.h"

#include <QList>
#include <QMap>

#include <mutex>

namespace clockwell::test {

/// Keeps tokens in memory and records every write, for tests that do not test the secure store.
class MemoryTokenStore final : public TokenStore
{
public:
    using Write = QPair<QString, std::optional<QString>>;

    MemoryTokenStore() = default;
    MemoryTokenStore(const QString &access, const QString &refresh)
        : m_values{{TokenKey::accessToken, access}, {TokenKey::refreshToken, refresh}}
    {}

    std::optional<QString> load(const QString &key) const override
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = m_values.constFind(key);
        return found == m_values.cend() ? std::nullopt : std::optional(*found);
    }

    void save(const QString &key, const std::optional<QString> &value) override
    {
        const std::scoped_lock lock(m_mutex);
        m_writes.append({key, value});
        m_values.remove(key);
        if (value)
            m_values.insert(key, *value);
    }

    std::optional<QString> access() const { return load(TokenKey::accessToken); }
    std::optional<QString> refresh() const { return load(TokenKey::refreshToken); }

    QList<Write> writes() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_writes;
    }

private:
    mutable std::mutex m_mutex;
    QMap<QString, QString> m_values;
    QList<Write> m_writes;
};

} // namespace clockwell::test
