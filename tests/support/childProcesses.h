#pragma once

#include <QList>

/*!
    The PIDs of the calling thread's children, zombies included, as the kernel tells
    them. Fails the calling test by qFatal() where it doesn't.
*/
QList<qint64> childProcesses();
