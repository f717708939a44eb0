#include "tests/support/childProcesses.h"

#include <QFile>

QList<qint64> childProcesses()
{
    QFile file(QStringLiteral("/proc/thread-self/children"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("can't read %s", qPrintable(file.fileName()));

    QList<qint64> result;
    const QList<QByteArray> numbers = file.readAll().split(' ');
    for (const QByteArray &number : numbers) {
        if (!number.isEmpty())
            result.append(number.toLongLong());
    }
    return result;
}
