#include <QGuiApplication>

#include <gtest/gtest.h>

// Tests of screens need a QGuiApplication, which GoogleTest's own main() does not create.
int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
