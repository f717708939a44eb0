#pragma once

#include <QList>
#include <QString>
#include <QTemporaryDir>

/*!
    The daemons of a test, real processes without a parent of the test's own, as a service manager
    would have started them. The destructor kills those that are left.
*/
class DaemonFlock
{
public:
    DaemonFlock();
    ~DaemonFlock();
    Q_DISABLE_COPY_MOVE(DaemonFlock)

    //! The daemons that run or are stopped, the oldest first.
    [[nodiscard]] const QList<qint64> &pids() const { return m_pids; }

    //! Starts a further daemon and waits until it goes by its name. Returns its process number.
    qint64 start();
    //! Kills daemon \a pid and waits until the system has forgotten it.
    void kill(qint64 pid);
    //! Stops daemon \a pid and waits until it stands.
    static void stop(qint64 pid);
    //! Lets daemon \a pid go on, if it is stopped.
    static void resume(qint64 pid);

    //! The daemon's executable.
    [[nodiscard]] QString program() const { return m_program; }
    //! Takes note of what others have done: daemons that are gone, and \a pid, which has come.
    void adopt(qint64 pid = 0);

private:
    QTemporaryDir m_folder;
    QString m_program;
    QList<qint64> m_pids;
};
