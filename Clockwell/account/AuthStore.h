#pragma once
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

class AuthStore : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("built by the composition root")
    Q_PROPERTY(QString fullName READ fullName CONSTANT)
public:
    explicit AuthStore(QObject *parent = nullptr) : QObject(parent) {}
    QString fullName() const { return QStringLiteral("x"); }
};

} // namespace clockwell
