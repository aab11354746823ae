#include "net/DeviceFacts.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace clockwell {

namespace {

class DeviceFacts : public testing::Test
{
protected:
    QString idOf(const QByteArray &machineId)
    {
        QFile file(m_directory.filePath(QStringLiteral("machine-id")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(machineId);
        file.close();
        return currentDeviceId(file.fileName());
    }

    QTemporaryDir m_directory;
    const QByteArray m_machine = "0123456789abcdef0123456789abcdef\n";
    const QString m_unknown = QStringLiteral("ios-unknown");
};

} // namespace

TEST_F(DeviceFacts, IdIsAnUpperCaseVersion4Uuid)
{
    const QRegularExpression form(
        QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$"));
    EXPECT_TRUE(form.match(idOf(m_machine)).hasMatch()) << idOf(m_machine).toStdString();
}

TEST_F(DeviceFacts, IdIsStableAndDiffersBetweenMachines)
{
    EXPECT_EQ(idOf(m_machine), idOf(m_machine));
    EXPECT_EQ(idOf(m_machine), idOf("0123456789ABCDEF0123456789ABCDEF"));
    EXPECT_NE(idOf(m_machine), idOf("1123456789abcdef0123456789abcdef\n"));
}

TEST_F(DeviceFacts, IdDoesNotContainTheMachineId)
{
    const QString id = idOf(m_machine).remove(u'-').toLower();
    EXPECT_FALSE(id.contains(QStringLiteral("0123456789ab")));
}

TEST_F(DeviceFacts, IdIsReadAgainOnEachCall)
{
    const QString before = idOf(m_machine);
    EXPECT_NE(before, idOf("fedcba9876543210fedcba9876543210\n"));
}

TEST_F(DeviceFacts, IdIsUnknownWithoutMachineId)
{
    EXPECT_EQ(currentDeviceId(m_directory.filePath(QStringLiteral("missing"))), m_unknown);
    EXPECT_EQ(idOf(""), m_unknown);
    EXPECT_EQ(idOf("uninitialized\n"), m_unknown);
    EXPECT_EQ(idOf("0123456789abcdef"), m_unknown);
    EXPECT_EQ(idOf("zz23456789abcdef0123456789abcdef\n"), m_unknown);
    EXPECT_EQ(idOf("00000000000000000000000000000000\n"), m_unknown);
}

TEST_F(DeviceFacts, ModelAndVersionAreNotEmpty)
{
    EXPECT_FALSE(deviceModel().isEmpty());
    EXPECT_EQ(deviceModel(), deviceModel().simplified());
    EXPECT_FALSE(systemVersion().isEmpty());
}

} // namespace clockwell
