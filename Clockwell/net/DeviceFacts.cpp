#include "net/DeviceFacts.h"

#include <QFile>
#include <QMessageAuthenticationCode>
#include <QSysInfo>
#include <QUuid>

namespace clockwell {

namespace {

constexpr qint64 maxLineLength = 256;

QByteArray firstLine(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readLine(maxLineLength).trimmed();
}

/// The 16 bytes of a machine id (machine-id(5): 32 hexadecimal digits, not all zero); empty if there is none.
QByteArray machineId(const QString &path)
{
    const QByteArray text = firstLine(path);
    const QByteArray bytes = QByteArray::fromHex(text);
    const bool wellFormed = text.size() == 32 && bytes.toHex() == text.toLower();
    return wellFormed && bytes != QByteArray(16, '\0') ? bytes : QByteArray();
}

} // namespace

QString currentDeviceId()
{
    const QString systemd = QStringLiteral("/etc/machine-id");
    return currentDeviceId(QFile::exists(systemd) ? systemd : QStringLiteral("/var/lib/dbus/machine-id"));
}

QString currentDeviceId(const QString &machineIdPath)
{
    const QByteArray machine = machineId(machineIdPath);
    if (machine.isEmpty())
        return QStringLiteral("ios-unknown");
    // machine-id(5) requires that the id itself is never sent over a network, only a keyed hash of it that
    // differs between applications.
    const QByteArray app = QByteArray::fromHex("5f0c9d1e6b7a4c3f8a2d41b7e0936c58");
    QByteArray id = QMessageAuthenticationCode::hash(app, machine, QCryptographicHash::Sha256).first(16);
    // RFC 4122, section 4.4: version 4, variant 1.
    id[6] = static_cast<char>((id[6] & 0x0f) | 0x40);
    id[8] = static_cast<char>((id[8] & 0x3f) | 0x80);
    return QUuid::fromRfc4122(id).toString(QUuid::WithoutBraces).toUpper();
}

QString deviceModel()
{
    // Phones have their product name in the device tree, desktops in the firmware's DMI tables.
    for (const char *path : {"/proc/device-tree/model", "/sys/class/dmi/id/product_name"}) {
        QByteArray name = firstLine(QString::fromLatin1(path));
        while (name.endsWith('\0'))
            name.chop(1);
        const QString text = QString::fromUtf8(name).simplified();
        if (!text.isEmpty())
            return text;
    }
    return QSysInfo::currentCpuArchitecture();
}

QString systemVersion()
{
    const QString version = QSysInfo::productVersion();
    return version == QLatin1StringView("unknown") ? QSysInfo::kernelVersion() : version;
}

} // namespace clockwell
