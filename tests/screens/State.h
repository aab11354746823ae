#pragma once

#include "Stage.h"

#include <QList>

#include <functional>

namespace clockwell::test {

/// One screenshot: its name, the simulated device, and the function that brings the app into the state.
/// `reach` returns false when it fails.
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
