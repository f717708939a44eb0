#include "tests/support/StandInDaemon.h"

#include <QFile>

StandInDaemon::StandInDaemon(const QString &path)
{
    if (!QFile::exists(path) && !QFile::copy(QStringLiteral(PANEL_TEST_DAEMON), path))
        qFatal("can't copy the stand-in daemon to %s", qPrintable(path));
    m_process.start(path, QStringList());
    if (!m_process.waitForStarted())
        qFatal("can't start %s", qPrintable(path));
    m_pid = m_process.processId();
}

StandInDaemon::~StandInDaemon()
{
    kill();
}

qint64 StandInDaemon::pid() const
{
    return m_pid;
}

void StandInDaemon::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}
