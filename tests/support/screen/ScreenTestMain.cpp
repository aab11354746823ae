#include <QGuiApplication>

#include <gtest/gtest.h>

// Tests of screens need a QGuiApplication, which GoogleTest's own main() does not create.
int main(int argc, char **argv)
{
    // Also for listing the tests, which ctest does without the environment that it gives to each of them.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
