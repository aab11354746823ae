#include "net/Reachability.h"

#include <QNetworkInformation>

namespace clockwell {

namespace {

class PlatformReachability final : public Reachability
{
public:
    PlatformReachability()
    {
        if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability))
            return;
        m_platform = QNetworkInformation::instance();
        connect(m_platform, &QNetworkInformation::reachabilityChanged, this, &Reachability::changed);
        connect(m_platform, &QNetworkInformation::transportMediumChanged, this, &Reachability::changed);
    }

    bool isOffline() const override
    {
        // In any state but "disconnected", a server on the local network may still be reachable.
        return m_platform && m_platform->reachability() == QNetworkInformation::Reachability::Disconnected;
    }

private:
    QNetworkInformation *m_platform = nullptr;
};

} // namespace

std::unique_ptr<Reachability> platformReachability()
{
    return std::make_unique<PlatformReachability>();
}

} // namespace clockwell
