#pragma once

#include <QtGlobal>

/*!
    How long a repair waits for the daemon that it has started, in whole seconds from 5 to 14. The
    same \a seed gives the same wait.
*/
int repairWaitSeconds(quint32 seed);
