#include "Outbox.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace clockwell::test {

QString Outbox::nextCode(const QString &address, std::chrono::milliseconds limit)
{
    QString code;
    const auto found = [&] { return !(code = newestCode(address)).isEmpty(); };
    return QTest::qWaitFor(found, static_cast<int>(limit.count())) ? code : QString();
}

QString Outbox::newestCode(const QString &address)
{
    static const QRegularExpression sixDigits(u"(?<![0-9])[0-9]{6}(?![0-9])"_s);
    const auto names = QDir(m_folder).entryList({u"*.eml"_s}, QDir::Files, QDir::Name | QDir::Reversed);
    for (const QString &name : names) {
        if (name <= m_lastRead)
            break;
        QFile file(QDir(m_folder).filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString message = QString::fromUtf8(file.readAll());
        const qsizetype body = message.indexOf(u"\r\n\r\n"_s);
        static const QRegularExpression to(u"^To:.*$"_s, QRegularExpression::MultilineOption);
        if (body < 0 || !to.match(message).captured().contains(address))
            continue;
        m_lastRead = name;
        return sixDigits.match(message, body).captured();
    }
    return {};
}

} // namespace clockwell::test
