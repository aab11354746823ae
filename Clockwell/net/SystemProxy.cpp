#include "net/SystemProxy.h"

#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QUrl>

namespace clockwell {

namespace {

bool isLoopback(const QUrl &url)
{
    return url.host() == QLatin1StringView("localhost") || QHostAddress(url.host()).isLoopback();
}

QString schemeOf(const QNetworkProxy &proxy)
{
    switch (proxy.type()) {
    case QNetworkProxy::Socks5Proxy:
        return QStringLiteral("socks5h"); // the proxy resolves the host name
    case QNetworkProxy::HttpProxy:
    case QNetworkProxy::HttpCachingProxy:
        return QStringLiteral("http");
    default:
        return {};
    }
}

} // namespace

QByteArray systemProxy(const QUrl &url)
{
    // A proxy on another machine could not reach this machine's loopback interface.
    if (isLoopback(url))
        return {};
    const QNetworkProxy proxy = QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(url)).value(0);
    const QString scheme = schemeOf(proxy);
    if (scheme.isEmpty())
        return {};
    QUrl found;
    found.setScheme(scheme);
    found.setUserName(proxy.user());
    found.setPassword(proxy.password());
    found.setHost(proxy.hostName());
    found.setPort(proxy.port());
    return found.toEncoded();
}

} // namespace clockwell
