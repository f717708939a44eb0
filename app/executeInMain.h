#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

/*!
    Runs \a program with \a arguments and waits for its end.

    Returns the command's whole standard output (a QByteArray) and its exit code (an int), in this
    order, or an empty list when the program could not be started within 30000 milliseconds. A
    program that dies of a signal yields what it had written and the exit code that QProcess
    reports for it. Standard error is not read.

    Blocks the calling thread, without a limit once the program has started, and runs no event
    loop meanwhile. Meant for short commands; for programs that outlive the call use
    QProcess::startDetached().
*/
QList<QVariant> executeInMain(const QString &program, const QStringList &arguments);
