#pragma once

#include <QString>
#include <QUuid>

namespace clockwell {

/// A short message to the user.
struct Banner
{
    enum class Kind {
        Success,
        Error,
        Info,
    };

    /// New for every banner, so that a second banner with the same text differs from the first.
    QUuid id = QUuid::createUuid();
    QString text;
    Kind kind = Kind::Info;
};

} // namespace clockwell
