#include "net/SecretServiceTokenStore.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace clockwell::test {

// This program runs with DBUS_SESSION_BUS_ADDRESS set to a socket that does not exist.
TEST(SecretServiceWithoutBus, ReadsAsAbsentAndLosesWritesSilently)
{
    ASSERT_TRUE(
        qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS").contains(QStringLiteral("nobody-listens-here")));
    SecretServiceTokenStore store;
    QElapsedTimer clock;
    clock.start();
    testing::internal::CaptureStderr();
    EXPECT_EQ(store.load(TokenKey::accessToken), std::nullopt);
    saveTokens(store, QStringLiteral("a"), QStringLiteral("r"));
    EXPECT_EQ(store.load(TokenKey::accessToken), std::nullopt);
    clearTokens(store);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_LT(clock.elapsed(), 20'000);
}

} // namespace clockwell::test
