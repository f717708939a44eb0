#pragma once

#include <QtGlobal>

/*!
    Returns how long a repair waits for the daemon that it has started: 5 to 14 seconds, drawn from
    a generator with the given \a seed.
*/
int repairWaitSeconds(quint32 seed);
