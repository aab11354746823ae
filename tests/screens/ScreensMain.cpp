#include "State.h"

#include <QGuiApplication>
#include <QTextStream>

#include <gtest/gtest.h>

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

// clockwell_screens DIRECTORY [NAME]: takes a screenshot of every state (whose name contains NAME) of every
// screen.
int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const QString directory = QGuiApplication::arguments().value(1, u"out/screens"_s);
    const QString wanted = QGuiApplication::arguments().value(2);
    int taken = 0;
    int missed = 0;
    for (const auto &state : clockwell::test::signInStates() + clockwell::test::signUpStates() +
                                 clockwell::test::codeStates() + clockwell::test::mainStates() +
                                 clockwell::test::historyStates() + clockwell::test::summaryStates() +
                                 clockwell::test::profileStates()) {
        if (!QString::fromLatin1(state.name).contains(wanted))
            continue;
        for (const auto &format : formats)
            ++(takeScreenshot(state, format, directory) ? taken : missed);
    }
    QTextStream(stdout) << taken << " pictures in " << directory << ", " << missed << " missed" << Qt::endl;
    return missed == 0 && taken > 0 && !::testing::UnitTest::GetInstance()->Failed() ? 0 : 1;
}
