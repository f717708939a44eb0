#include "tests/support/PanelProcess.h"
#include "tests/support/ServerWindow.h"
#include "tests/support/waits.h"

#include <QCursor>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QWidget>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto RepairButton = QStringLiteral("xfkqfw");

//! A place of the strip that drags, in window coordinates.
constexpr QPoint Grip(400, 16);
//! The middle of the close button.
constexpr QPoint CloseButton(775, 16);

const auto ShortcutButton = QStringLiteral("kqzsk");
const QColor HoverColour(0xe5, 0xf3, 0xff);

constexpr int FastDrags = 100;

//! Real input without a wait in between: one xdotool for all of it.
void runInOneGo(const QStringList &words)
{
    QProcess process;
    process.start(QStringLiteral("xdotool"), words);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
}

QStringList moveTo(const QPoint &point)
{
    return {QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y())};
}

} // namespace

/*!
    The window of the whole program under the mouse and the keyboard, with a window manager and
    without one.
*/
class tst_Window : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    void placeAndSize();
    void dragsByTheHeaderOnly_data();
    void dragsByTheHeaderOnly();
    void followsThePointerInFastDrags();
    void closesByItsButtonAfterADrag();
    void repairsWhileCovered();

private:
    //! Where the panel has its window.
    QPoint position();
    //! Where the X server has it.
    QPoint placeOnTheServer();
    //! Drags by \a way from \a grip in window coordinates; returns by how much the window moved.
    QPoint drag(const QPoint &grip, const QPoint &way);
    bool isHovered(const QString &button);
    //! Whether the close button is painted in the red of a hovered one.
    bool closeButtonIsRed();

    std::unique_ptr<PanelProcess> m_panel;
    //! The test function that it serves.
    QByteArray m_function;
};

void tst_Window::init()
{
    // One panel serves all rows of a function, one drag after the other.
    const QByteArray function = QTest::currentTestFunction();
    if (!m_panel || m_function != function) {
        m_function = function;
        m_panel.reset();
        m_panel = std::make_unique<PanelProcess>();
        if (function == "repairsWhileCovered")
            m_panel->placeDaemon();
        QVERIFY(m_panel->start());
    }
    PanelProcess::moveMouse(QPoint(5, 5));
}

void tst_Window::cleanup()
{
    // A failed test may have left a button down.
    runInOneGo({"mouseup", "1", "mouseup", "3"});
    if (QTest::currentTestFailed())
        m_panel.reset();
}

void tst_Window::cleanupTestCase()
{
    m_panel.reset();
}

QPoint tst_Window::position()
{
    return m_panel->globalRect(Window).topLeft();
}

QPoint tst_Window::placeOnTheServer()
{
    return serverWindow(m_panel->windowId(Window)).geometry.topLeft();
}

QPoint tst_Window::drag(const QPoint &grip, const QPoint &way)
{
    const QPoint before = position();
    PanelProcess::moveMouse(before + grip);
    if (!QTest::qWaitFor([&] { return !isHovered(ShortcutButton); }))
        return {};
    PanelProcess::pressButton();
    PanelProcess::moveMouse(before + grip + way / 2);
    PanelProcess::moveMouse(before + grip + way);
    PanelProcess::releaseButton();
    // What comes behind the release has been served: so has the drag.
    const auto isServed = [&] {
        PanelProcess::moveMouse(m_panel->globalRect(ShortcutButton).center());
        return isHovered(ShortcutButton);
    };
    if (!QTest::qWaitFor(isServed))
        return {};
    return position() - before;
}

bool tst_Window::isHovered(const QString &button)
{
    return m_panel->grab(button).pixelColor(5, 5) == HoverColour;
}

bool tst_Window::closeButtonIsRed()
{
    return m_panel->grabScreen().pixelColor(position() + QPoint(755, 4)) == QColor(255, 0, 0);
}

void tst_Window::placeAndSize()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    QCOMPARE(m_panel->globalRect(Window).size(), QSize(800, 600));
    // Relative to (0, 0), on whichever screen the window is.
    QCOMPARE(position(), QPoint((screen.width() - 800) / 2, (screen.height() - 600) / 2));
    QCOMPARE(m_panel->property(Window, "frameGeometry"), m_panel->property(Window, "geometry"));
}

void tst_Window::dragsByTheHeaderOnly_data()
{
    QTest::addColumn<QPoint>("grip");
    QTest::addColumn<bool>("drags");

    // The hidden tabs keep the size of a widget that was never laid out, and the place of that
    // rectangle is the strip's corner.
    QTest::newRow("corner of the strip") << QPoint(0, 0) << false;
    QTest::newRow("the name") << QPoint(60, 16) << false;
    QTest::newRow("inside the tabs' own size") << QPoint(99, 29) << false;
    QTest::newRow("right of it") << QPoint(100, 16) << true;
    QTest::newRow("below it") << QPoint(50, 30) << true;
    QTest::newRow("middle of the strip") << Grip << true;
    QTest::newRow("end of the header") << QPoint(748, 31) << true;
    QTest::newRow("close button") << CloseButton << false;
    QTest::newRow("page below the strip") << QPoint(400, 32) << false;
    QTest::newRow("page") << QPoint(600, 400) << false;
}

void tst_Window::dragsByTheHeaderOnly()
{
    QFETCH(QPoint, grip);
    QFETCH(bool, drags);
    const QPoint way(37, 53);

    QCOMPARE(drag(grip, way), drags ? way : QPoint(0, 0));
    QVERIFY(m_panel->isRunning());
    QCOMPARE(m_panel->globalRect(Window).size(), QSize(800, 600));
}

void tst_Window::followsThePointerInFastDrags()
{
    QPoint from = position() + Grip;
    for (int i = 0; i < FastDrags; ++i) {
        // There and back and to another end, with no pause and not a single look in between.
        const QPoint end(500 + (i * 137) % 700, 100 + (i * 71) % 400);
        QStringList words = moveTo(from) + QStringList {"mousedown", "1"};
        words += moveTo(from + QPoint(-30, 20)) + moveTo(from + QPoint(200, 150)) + moveTo(from);
        words += moveTo(end) + QStringList {"mouseup", "1"};
        runInOneGo(words);
        // A press hits the window where the X server has it, which may lag behind the panel.
        // QTRY_COMPARE would look every 50 ms only.
        static_cast<void>(QTest::qWaitFor(
                [&] { return position() + Grip == end && placeOnTheServer() + Grip == end; }));
        QCOMPARE(placeOnTheServer() + Grip, end);
        QCOMPARE(position() + Grip, end);
        QCOMPARE(QCursor::pos(), end);
        from = end;
    }
}

void tst_Window::closesByItsButtonAfterADrag()
{
    QCOMPARE(drag(Grip, QPoint(-120, 60)), QPoint(-120, 60));

    QVERIFY(!closeButtonIsRed());
    PanelProcess::moveMouse(position() + CloseButton);
    QTRY_VERIFY(closeButtonIsRed());
    // Pressed it is red as well, and let go elsewhere it does nothing.
    PanelProcess::pressButton();
    PanelProcess::moveMouse(position() + QPoint(600, 300));
    QTRY_VERIFY(closeButtonIsRed());
    PanelProcess::releaseButton();
    QTRY_VERIFY(!closeButtonIsRed());
    QVERIFY(m_panel->isRunning());

    PanelProcess::clickAt(position() + CloseButton);
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

void tst_Window::repairsWhileCovered()
{
    QTRY_COMPARE(m_panel->rowTexts(QStringLiteral("treeWidgetOW")).size(), 1);
    m_panel->click(RepairButton);

    // The panel sleeps; meanwhile another window comes over all of it, and goes again.
    QWidget cover;
    cover.setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    cover.setStyleSheet(QStringLiteral("background:#00ff00"));
    cover.setGeometry(QGuiApplication::primaryScreen()->geometry());
    cover.show();
    QVERIFY(QTest::qWaitForWindowExposed(&cover, WindowTimeoutMs));

    QTRY_VERIFY(m_panel->messageBox());
    QCOMPARE(m_panel->messageBox()->text, QStringLiteral("统一服务运行正常，无需修复。"));
    cover.hide();
    QTRY_VERIFY(m_panel->property(QStringLiteral("QMessageBox"), "isActiveWindow").toBool());
    QTRY_VERIFY(m_panel->isExposed(QStringLiteral("QMessageBox")));
    m_panel->click(QStringLiteral("QMessageBox/QPushButton"));
    QTRY_VERIFY(!m_panel->messageBox());

    // All of the window is painted again. The row is left out: its running time goes on meanwhile.
    for (const QRect &part : {QRect(0, 0, 800, 100), QRect(0, 150, 800, 450)}) {
        const QRect onTheScreen = part.translated(position());
        QTRY_COMPARE_WITH_TIMEOUT(
                m_panel->grabScreen().copy(onTheScreen).convertToFormat(QImage::Format_RGB32),
                m_panel->grab(Window).copy(part).convertToFormat(QImage::Format_RGB32), 15000);
    }
}

QTEST_MAIN(tst_Window)
#include "tst_Window.moc"
