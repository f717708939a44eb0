#include "overview/OverviewForm.h"
#include "tests/overview/RunStatus.h"
#include "tests/support/PaintCounter.h"
#include "tests/support/ShimFolder.h"

#include <QAbstractEventDispatcher>
#include <QHeaderView>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <memory>

namespace {

void handleEvents()
{
    while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) { }
}

} // namespace

//! How much of the page a refresh paints again.
class tst_OverviewFormRepaint : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void runningDaemonRepaintsTheTableOnce();
    void absentDaemonRepaintsNothing();

private:
    void showPage();

    std::unique_ptr<ShimFolder> m_shims;
    std::unique_ptr<OverviewForm> m_page;
    QTreeWidget *m_tree = nullptr;
};

void tst_OverviewFormRepaint::init()
{
    m_shims = std::make_unique<ShimFolder>();
    m_shims->addPrinting(QStringLiteral("pgrep"), "1234 Corvane\n");
    m_shims->addPrinting(QStringLiteral("ps"), aliceLine());
}

void tst_OverviewFormRepaint::cleanup()
{
    m_page.reset();
    m_shims.reset();
}

void tst_OverviewFormRepaint::showPage()
{
    m_page = std::make_unique<OverviewForm>();
    m_tree = m_page->findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    // Refreshes come when this test calls for them, and only then.
    m_page->findChild<QTimer *>()->stop();
    // Painted like any other, but neither the X server nor a window manager can ask for a paint.
    m_page->setAttribute(Qt::WA_DontShowOnScreen);
    m_page->show();
    // The first refresh of a shown page finds what the showing left to do.
    refresh(*m_page);
    handleEvents();
}

void tst_OverviewFormRepaint::runningDaemonRepaintsTheTableOnce()
{
    showPage();
    const PaintCounter counter;

    refresh(*m_page);
    QTRY_VERIFY(counter.paints.value(m_tree->viewport()) > 0);
    handleEvents();

    const QHash<const QObject *, int> expected = {{m_tree->viewport(), 1},
                                                  {m_tree->header()->viewport(), 1}};
    QCOMPARE(counter.paints, expected);
}

void tst_OverviewFormRepaint::absentDaemonRepaintsNothing()
{
    m_shims->addPrinting(QStringLiteral("pgrep"), "", 1);
    showPage();
    QCOMPARE(m_tree->topLevelItemCount(), 0);
    const PaintCounter counter;

    refresh(*m_page);
    handleEvents();

    QCOMPARE(counter.paints.size(), 0);
}

QTEST_MAIN(tst_OverviewFormRepaint)
#include "tst_OverviewFormRepaint.moc"
