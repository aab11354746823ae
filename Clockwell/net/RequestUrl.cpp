#include "net/RequestUrl.h"

namespace clockwell {

namespace {

QStringView withoutSlashes(QStringView path)
{
    while (path.startsWith(u'/'))
        path = path.sliced(1);
    while (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

} // namespace

QUrl requestUrl(const QUrl &base, const QString &path, const QMap<QString, QString> &query)
{
    QString root = base.path(QUrl::FullyDecoded);
    while (root.endsWith(u'/'))
        root.chop(1);
    QUrl url = base;
    url.setPath(root + u'/' + withoutSlashes(path).toString(), QUrl::DecodedMode);
    QStringList items;
    for (auto item = query.cbegin(); item != query.cend(); ++item) {
        items += QString::fromLatin1(QUrl::toPercentEncoding(item.key()) + '=' +
                                     QUrl::toPercentEncoding(item.value()));
    }
    url.setQuery(items.isEmpty() ? QString() : items.join(u'&'));
    if (!url.isValid())
        qFatal("a request URL cannot be made");
    return url;
}

} // namespace clockwell
