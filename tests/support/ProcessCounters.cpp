#include "tests/support/ProcessCounters.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <malloc.h>

namespace {

int entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

int openDescriptors()
{
    // The folder is read through a descriptor of its own.
    return entries(QStringLiteral("/proc/self/fd")) - 1;
}

int childProcesses()
{
    int count = 0;
    const QString tasks = QStringLiteral("/proc/self/task");
    const QStringList names = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &task : names) {
        QFile file(tasks + QLatin1Char('/') + task + QStringLiteral("/children"));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("can't read the list of child processes");
        const QList<QByteArray> numbers = file.readAll().simplified().split(' ');
        count += int(std::count_if(numbers.cbegin(), numbers.cend(),
                                   [](const QByteArray &number) { return !number.isEmpty(); }));
    }
    return count;
}

int threads()
{
    return entries(QStringLiteral("/proc/self/task"));
}

qint64 heapBytesInUse()
{
#if __GLIBC_PREREQ(2, 33)
    return qint64(mallinfo2().uordblks);
#else
    return mallinfo().uordblks;
#endif
}
