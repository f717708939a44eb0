#include "shell/ServiceContainer.h"
#include "tests/support/PanelProcess.h"
#include "tests/support/ServerWindow.h"
#include "tests/support/pixels.h"
#include "tests/support/realInput.h"
#include "tests/support/waits.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto ShortcutButton = QStringLiteral("kqzsk");
const auto RepairButton = QStringLiteral("xfkqfw");
const auto Box = QStringLiteral("QMessageBox");

//! On the screen.
constexpr QPoint Aside(0, 0);

// In window coordinates.
//! A place of the strip that drags.
constexpr QPoint Grip(400, 16);
constexpr QPoint Page(600, 400);
//! The middle of the close button, and a place in it beside its cross.
constexpr QPoint CloseButton(ServiceContainer::fixedSize().width() - 25, 16);
constexpr QPoint CloseBackground = CloseButton + QPoint(-20, -12);

constexpr int RepaintTimeoutMs = 15000;

} // namespace

/*!
    The window of the whole program under the mouse, with a window manager and without one.
*/
class tst_Window : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void dragsByTheStripOnly();
    void closesByItsButtonAfterADrag();
    void repairsWhileCovered();

private:
    //! Where the panel has its window.
    QPoint position();
    //! Where the X server has it.
    QPoint placeOnTheServer();
    //! Presses the button at \a grip in window coordinates and moves the mouse by \a way.
    void beginDrag(const QPoint &grip, const QPoint &way);
    //! Releases the button. Returns whether the panel has handled all of the drag.
    bool endDrag();
    QColor closeButtonColor();

    std::unique_ptr<PanelProcess> m_panel;
    //! The shortcut button without the pointer on it.
    QImage m_idleButton;
};

void tst_Window::init()
{
    PanelProcess::moveMouse(Aside);
    m_panel = std::make_unique<PanelProcess>();
}

void tst_Window::cleanup()
{
    m_panel.reset();
    // A failed test may have left it down.
    xdotool(release());
}

QPoint tst_Window::position()
{
    return m_panel->globalRect(Window).topLeft();
}

QPoint tst_Window::placeOnTheServer()
{
    return serverWindow(m_panel->windowId(Window)).geometry.topLeft();
}

void tst_Window::beginDrag(const QPoint &grip, const QPoint &way)
{
    const QPoint from = position() + grip;
    PanelProcess::moveMouse(from);
    m_idleButton = m_panel->grab(ShortcutButton);
    PanelProcess::pressButton();
    PanelProcess::moveMouse(from + way / 2);
    PanelProcess::moveMouse(from + way);
}

bool tst_Window::endDrag()
{
    PanelProcess::releaseButton();
    // Events come in order: what came before the hovering has been handled.
    return QTest::qWaitFor([this] {
        PanelProcess::moveMouse(m_panel->globalRect(ShortcutButton).center());
        return m_panel->grab(ShortcutButton) != m_idleButton;
    });
}

QColor tst_Window::closeButtonColor()
{
    return screenshot().pixelColor(position() + CloseBackground);
}

void tst_Window::dragsByTheStripOnly()
{
    const QPoint way(37, 53);
    QVERIFY(m_panel->start());
    const QPoint start = position();

    beginDrag(Grip, way);
    QTRY_COMPARE(position(), start + way);
    QTRY_COMPARE(placeOnTheServer(), start + way);
    QVERIFY(endDrag());
    QCOMPARE(position(), start + way);

    PanelProcess::moveMouse(Aside);
    QTRY_COMPARE(m_panel->grab(ShortcutButton), m_idleButton);
    beginDrag(Page, way);
    QVERIFY(endDrag());
    QCOMPARE(position(), start + way);
    QCOMPARE(placeOnTheServer(), start + way);
}

void tst_Window::closesByItsButtonAfterADrag()
{
    QVERIFY(m_panel->start());
    const QPoint way(-120, 60);
    const QPoint start = position();
    beginDrag(Grip, way);
    QTRY_COMPARE(placeOnTheServer(), start + way);
    QVERIFY(endDrag());

    const QColor idle = closeButtonColor();
    PanelProcess::moveMouse(position() + CloseButton);
    QTRY_VERIFY(closeButtonColor() != idle);
    const QColor hovered = closeButtonColor();
    // Pressed it looks the same, and released elsewhere it does nothing.
    const QPoint place = placeOnTheServer();
    PanelProcess::pressButton();
    PanelProcess::moveMouse(position() + Page);
    QTRY_COMPARE(closeButtonColor(), hovered);
    PanelProcess::releaseButton();
    QTRY_COMPARE(closeButtonColor(), idle);
    QVERIFY(m_panel->isRunning());
    QCOMPARE(placeOnTheServer(), place);

    PanelProcess::clickAt(position() + CloseButton);
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

void tst_Window::repairsWhileCovered()
{
    m_panel->placeDaemon();
    QVERIFY(m_panel->start());
    QTRY_COMPARE(m_panel->rowTexts(Table).size(), 1);
    m_panel->click(RepairButton);

    // The panel sleeps; meanwhile another window covers all of it, and goes again.
    QWidget cover;
    cover.setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    cover.setStyleSheet(QStringLiteral("background:#00ff00"));
    cover.setGeometry(QGuiApplication::primaryScreen()->geometry());
    cover.show();
    QVERIFY(QTest::qWaitForWindowExposed(&cover, WindowTimeoutMs));

    QTRY_VERIFY(m_panel->messageBox());
    cover.hide();
    QTRY_VERIFY(m_panel->property(Box, "isActiveWindow").toBool());
    QTRY_VERIFY(m_panel->isExposed(Box));
    m_panel->click(QStringLiteral("QMessageBox/QPushButton"));
    QTRY_VERIFY(!m_panel->messageBox());

    QRegion wrong;
    const auto isRepainted = [&] {
        const QRect window = m_panel->globalRect(Window);
        wrong = differingPixels(screenshot(window), m_panel->grab(Window));
        // The running time in its row changes.
        wrong -= m_panel->globalRect(Table).translated(-window.topLeft());
        return wrong.isEmpty();
    };
    static_cast<void>(QTest::qWaitFor(isRepainted, RepaintTimeoutMs));
    QCOMPARE(wrong.boundingRect(), QRect());
}

QTEST_MAIN(tst_Window)
#include "tst_Window.moc"
