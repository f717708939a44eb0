#include "tests/overview/RunStatus.h"

#include "app/daemon.h"
#include "overview/OverviewForm.h"
#include "tests/support/PrivateMember.h"

#include <QLabel>
#include <QMap>
#include <QTreeWidget>

struct LastPid : PrivateMember<LastPid, qint64, OverviewForm>
{
};
template struct ExposePrivateMember<LastPid, &OverviewForm::lastPid>;

namespace {

QByteArray aliceValue(const Daemon::Figure &figure)
{
    static const QMap<QByteArray, QByteArray> values = {
            {"comm", "Corvane"}, {"pid", QByteArray::number(AlicePid)},
            {"user", "alice"},   {"etime", "01:02:03"},
            {"%cpu", "0.5"},     {"%mem", "1.2"},
    };
    // Any other figure reads as its own name.
    return values.value(figure.field, figure.field);
}

QString state(qint64 pid, const QString &row, bool hasNotice, bool hasError)
{
    return QStringLiteral("PID %1, row \"%2\", notice %3, error %4")
            .arg(QString::number(pid), row,
                 hasNotice ? QStringLiteral("shown") : QStringLiteral("hidden"),
                 hasError ? QStringLiteral("shown") : QStringLiteral("hidden"));
}

} // namespace

QByteArray aliceLine()
{
    QByteArray line;
    for (const Daemon::Figure &figure : Daemon::Figures)
        line += aliceValue(figure).rightJustified(10) + ' ';
    return line.trimmed() + '\n';
}

QString aliceRow()
{
    QStringList texts;
    for (const Daemon::Figure &figure : Daemon::Figures)
        texts.append(QString::fromUtf8(aliceValue(figure) + figure.suffix));
    return texts.join(QLatin1Char('|'));
}

void refresh(OverviewForm &page)
{
    if (!QMetaObject::invokeMethod(&page, "syncOWInfo", Qt::DirectConnection))
        qFatal("the page has no refresh");
}

qint64 &lastPid(OverviewForm &page)
{
    return LastPid::of(page);
}

QString shownRow(const OverviewForm &page)
{
    const auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    QStringList texts;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        for (int column = 0; column < tree->topLevelItem(i)->columnCount(); ++column)
            texts.append(tree->topLevelItem(i)->text(column));
    }
    return texts.join(QLatin1Char('|'));
}

QString pageState(OverviewForm &page)
{
    const auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    QString shown = shownRow(page);
    const QTreeWidgetItem *item = tree->topLevelItem(0);
    for (int column = 0; item && column < tree->columnCount(); ++column) {
        if (item->textAlignment(column) != Qt::AlignCenter)
            shown += QStringLiteral(" (column %1 isn't centred)").arg(column);
    }
    if (item && item->type() != QTreeWidgetItem::Type)
        shown += QStringLiteral(" (type %1)").arg(item->type());
    return state(lastPid(page), shown,
                 !page.findChild<QLabel *>(QStringLiteral("labelNoService"))->isHidden(),
                 !page.findChild<QLabel *>(QStringLiteral("labelOWError"))->isHidden());
}

QString expectedState(qint64 pid, const QString &row)
{
    return state(pid, row, row.isEmpty(), false);
}
