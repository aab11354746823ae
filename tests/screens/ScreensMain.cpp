#include "State.h"

#include <QGuiApplication>
#include <QTextStream>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;
using clockwell::test::Format;
using clockwell::test::Stage;
using clockwell::test::State;

namespace {

constexpr Format formats[] = {
    {"390x844", {390, 844}, 1},
    {"320x568", {320, 568}, 1},
    {"768x1024", {768, 1024}, 1},
    {"390x844-text-200", {390, 844}, 2},
};

bool takeScreenshot(const State &state, const Format &format, const QString &directory)
{
    Stage stage(format, state.device);
    const QString name = u"%1-%2"_s.arg(QString::fromLatin1(state.name), QString::fromLatin1(format.name));
    if (!state.reach(stage)) {
        QTextStream(stderr) << name << " was not reached; the screen has\n"
                            << stage.screen().dump() << Qt::endl;
        return false;
    }
    return stage.screen().savePng(u"%1/%2.png"_s.arg(directory, name));
}

} // namespace

// clockwell_screens DIRECTORY FORMAT [NAME]: takes a screenshot in this format of every state (whose name
// contains NAME) of every screen.
// clockwell_screens --formats: lists the formats, a line each.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.value(1) == "--formats"_L1) {
        for (const auto &format : formats)
            QTextStream(stdout) << format.name << Qt::endl;
        return 0;
    }
    const QString directory = arguments.value(1);
    const auto *format = std::ranges::find(formats, arguments.value(2),
                                           [](const Format &each) { return QString::fromLatin1(each.name); });
    if (format == std::end(formats)) {
        QTextStream(stderr) << "There is no format " << arguments.value(2) << Qt::endl;
        return 2;
    }
    const QString wanted = arguments.value(3);
    int taken = 0;
    int missed = 0;
    for (const auto &state : clockwell::test::signInStates() + clockwell::test::signUpStates() +
                                 clockwell::test::codeStates() + clockwell::test::mainStates() +
                                 clockwell::test::historyStates() + clockwell::test::summaryStates() +
                                 clockwell::test::profileStates())
        if (QString::fromLatin1(state.name).contains(wanted))
            ++(takeScreenshot(state, *format, directory) ? taken : missed);
    QTextStream(stdout) << format->name << ": " << taken << " pictures in " << directory << ", " << missed
                        << " missed" << Qt::endl;
    return missed == 0 && taken > 0 && !::testing::UnitTest::GetInstance()->Failed() ? 0 : 1;
}
