#pragma once

#include <QString>

//! Kills the process \a pid if it still runs \a program, a stand-in daemon of this test's own, and
//! waits until it is reaped: until then pgrep tells of it. A number that is another process's by
//! now is left alone. Fails the test by qFatal() where the daemon doesn't end.
void killDaemon(qint64 pid, const QString &program);
