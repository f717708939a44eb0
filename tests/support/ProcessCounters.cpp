#include "tests/support/ProcessCounters.h"

#include <QDir>

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
