#pragma once

#include "Stage.h"

#include <QList>

#include <functional>

namespace clockwell::test {

/// One picture: its name, the device it is taken on and how the app gets there. `reach` returns false when it
/// did not.
struct State
{
    const char *name;
    std::function<bool(Stage &)> reach;
    Device device = {};
};

QList<State> signInStates();
QList<State> signUpStates();
QList<State> codeStates();
QList<State> mainStates();
QList<State> historyStates();
QList<State> summaryStates();
QList<State> profileStates();

} // namespace clockwell::test
