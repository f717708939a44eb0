#pragma once

#include <QString>

class OverviewForm;

// What tests of the run-status page share.

//! Refreshes \a page now.
void refresh(OverviewForm &page);

//! The PID that \a page remembers.
qint64 &lastPid(OverviewForm &page);

//! The texts of all rows that \a page shows, separated by "|"; empty without a row.
QString shownRow(const OverviewForm &page);

/*!
    Compares all that \a page makes of the daemon: the PID that it remembers, the texts of its row
    ("Corvane|1234|…"; empty for none) and their alignment, the table's height and the notices.
*/
void verifyPage(OverviewForm &page, qint64 expectedPid, const QString &expectedRow);
