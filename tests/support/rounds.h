#pragma once

#include <QtGlobal>

/*!
    How many rounds a test is to do: \a rounds, or what the variable PANEL_TEST_ROUNDS says, with
    which its long form is run. A variable that holds no positive number counts as not set.
*/
inline int roundsOr(int rounds)
{
    bool isNumber = false;
    const int asked = qEnvironmentVariableIntValue("PANEL_TEST_ROUNDS", &isNumber);
    return isNumber && asked > 0 ? asked : rounds;
}
