#include <QCoreApplication>

#include <gtest/gtest.h>

// For tests that need an event loop but no window.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
