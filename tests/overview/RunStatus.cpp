#include "tests/overview/RunStatus.h"

#include "overview/OverviewForm.h"
#include "tests/support/PrivateMember.h"

#include <QLabel>
#include <QTest>
#include <QTreeWidget>

struct LastPid : PrivateMember<LastPid, qint64, OverviewForm>
{
};
template struct ExposePrivateMember<LastPid, &OverviewForm::lastPid>;

namespace {

constexpr int Columns = 6;
constexpr int HeaderHeight = 36;
constexpr int HeaderAndRowHeight = 76;

} // namespace

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

void verifyPage(OverviewForm &page, qint64 expectedPid, const QString &expectedRow)
{
    const auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    const bool hasRow = !expectedRow.isEmpty();
    const int height = hasRow ? HeaderAndRowHeight : HeaderHeight;

    QCOMPARE(shownRow(page), expectedRow);
    QCOMPARE(lastPid(page), expectedPid);
    QCOMPARE(tree->minimumHeight(), height);
    QCOMPARE(tree->maximumHeight(), height);
    QCOMPARE(page.findChild<QLabel *>(QStringLiteral("labelNoService"))->isHidden(), hasRow);
    QVERIFY(page.findChild<QLabel *>(QStringLiteral("labelOWError"))->isHidden());
    if (!hasRow)
        return;
    const QTreeWidgetItem *item = tree->topLevelItem(0);
    QCOMPARE(item->type(), int(QTreeWidgetItem::Type));
    for (int column = 0; column < Columns; ++column)
        QCOMPARE(item->textAlignment(column), int(Qt::AlignCenter));
}
