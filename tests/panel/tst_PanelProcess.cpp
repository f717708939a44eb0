#include "tests/support/PanelProcess.h"

#include <QTest>

#include <limits>

/*!
    The tests' own tool, on things whose answers are known without the panel's help.
*/
class tst_PanelProcess : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void findsObjectsByNameAndClass();
    void keepsTheTypeOfAProperty();
    void grabsWhatTheScreenShows();
    void tellsTheExitStatusAndTheErrorLines();

private:
    std::unique_ptr<PanelProcess> m_panel;
};

void tst_PanelProcess::init()
{
    m_panel = std::make_unique<PanelProcess>(QStringLiteral("a folder"));
    QVERIFY(m_panel->start());
}

void tst_PanelProcess::cleanup()
{
    m_panel.reset();
}

void tst_PanelProcess::findsObjectsByNameAndClass()
{
    QCOMPARE(m_panel->count(QStringLiteral("treeWidgetOW")), 1);
    QCOMPARE(m_panel->count(QStringLiteral("ServiceContainer/OverviewForm/treeWidgetOW")), 1);
    QCOMPARE(m_panel->count(QStringLiteral("treeWidgetOW/OverviewForm")), 0);
    QCOMPARE(m_panel->count(QStringLiteral("OverviewForm/QTreeWidget")), 2);
    QCOMPARE(m_panel->count(QStringLiteral("OverviewForm/QTreeView")), 2);
    QVERIFY(!m_panel->exists(QStringLiteral("QMessageBox")));
}

void tst_PanelProcess::keepsTheTypeOfAProperty()
{
    constexpr qlonglong number = std::numeric_limits<qlonglong>::max();
    const QString window = QStringLiteral("ServiceContainer");
    QVERIFY(!m_panel->property(window, "number").isValid());
    m_panel->setProperty(window, "number", number);
    QCOMPARE(m_panel->property(window, "number"), QVariant(number));
    QCOMPARE(m_panel->property(window, "size"), QVariant(QSize(800, 600)));
    QCOMPARE(m_panel->property(window, "windowModality").toInt(), static_cast<int>(Qt::NonModal));
}

void tst_PanelProcess::grabsWhatTheScreenShows()
{
    const QString button = QStringLiteral("xfkqfw");
    const QRect place = m_panel->globalRect(button);
    QCOMPARE(place.size(), m_panel->property(button, "size").toSize());
    // Of the whole window: a button's background is its window's.
    const QString window = QStringLiteral("ServiceContainer");
    const QRect inWindow = place.translated(-m_panel->globalRect(window).topLeft());
    QTRY_COMPARE(m_panel->grabScreen().copy(place).convertToFormat(QImage::Format_RGB32),
                 m_panel->grab(window).copy(inWindow).convertToFormat(QImage::Format_RGB32));
}

void tst_PanelProcess::tellsTheExitStatusAndTheErrorLines()
{
    QCOMPARE(m_panel->errorLines(),
             QStringList(QStringLiteral("file: \"%1/Corvane\"").arg(m_panel->folder())));
    QVERIFY(m_panel->folder().endsWith(QLatin1String("/a folder")));
    m_panel->invoke(QStringLiteral("ServiceContainer"), "close");
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
    QVERIFY(!m_panel->isRunning());
}

QTEST_MAIN(tst_PanelProcess)
#include "tst_PanelProcess.moc"
