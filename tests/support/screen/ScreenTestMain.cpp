#include <QGuiApplication>

#include <gtest/gtest.h>

// Screens need a GUI application for the whole run; GoogleTest's own main has none.
int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
