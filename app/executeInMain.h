#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

/*!
    Runs \a program with \a arguments and waits for its end in the calling thread, the main one.

    Returns the whole standard output (a QByteArray) and the exit code (an int), in this order, or
    an empty list when the program could not be started within 30000 milliseconds. A program killed
    by a signal yields what it had written and the exit code that QProcess reports. Standard error
    is not read. Standard input is at its end from the start.

    Blocks the calling thread without running an event loop, and without a limit once the program
    has started. Meant for short commands; use QProcess::startDetached() for programs that outlive
    the call.
*/
QList<QVariant> executeInMain(const QString &program, const QStringList &arguments);
