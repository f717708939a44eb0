#pragma once

#include <QProcess>
#include <QString>

/*!
    A stand-in daemon that a test starts itself: a copy of the stand-in under a path of the test's
    choice, running from construction to destruction as a child of the test.
*/
class StandInDaemon
{
public:
    //! Copies the stand-in daemon to \a path, whose folder must exist, and starts it there without
    //! arguments. Fails the calling test by qFatal() when it doesn't run.
    explicit StandInDaemon(const QString &path);
    //! Ends the process, if it still runs.
    ~StandInDaemon();

    StandInDaemon(const StandInDaemon &) = delete;
    StandInDaemon &operator=(const StandInDaemon &) = delete;

    qint64 pid() const;

    //! Kills the process outright and waits for its end.
    void kill();

private:
    QProcess m_process;
    qint64 m_pid = -1;
};
