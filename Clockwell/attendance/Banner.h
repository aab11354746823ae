#pragma once

#include <QString>
#include <QUuid>

namespace clockwell {

/// A short message for the person.
struct Banner
{
    enum class Kind {
        Success,
        Error,
        Info,
    };

    /// Fresh for every banner: the same text again is a new banner.
    QUuid id = QUuid::createUuid();
    QString text;
    Kind kind = Kind::Info;
};

} // namespace clockwell
