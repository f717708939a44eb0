#pragma once

#include <QByteArray>
#include <QString>

class OverviewForm;

// What tests of the run-status page share.

//! The PID in aliceLine().
constexpr qint64 AlicePid = 1234;

//! What ps prints for a daemon of the user alice: a value for each figure that the panel asks for.
QByteArray aliceLine();
//! The texts of the row for it, separated by "|".
QString aliceRow();

//! Refreshes \a page now.
void refresh(OverviewForm &page);

//! The PID that \a page remembers.
qint64 &lastPid(OverviewForm &page);

//! The texts of all rows that \a page shows, separated by "|"; empty without a row.
QString shownRow(const OverviewForm &page);

/*!
    All that \a page makes of the daemon: the PID that it remembers, the texts of its row and how
    they are aligned, the table's height and the notices.
*/
QString pageState(OverviewForm &page);
//! What pageState() should be for the PID \a pid and the row \a row, empty for none.
QString expectedState(qint64 pid, const QString &row);
