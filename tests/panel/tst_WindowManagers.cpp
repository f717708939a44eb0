#include "shell/ServiceContainer.h"
#include "tests/support/PanelProcess.h"
#include "tests/support/ServerWindow.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScreen>
#include <QSettings>
#include <QTest>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Header = QStringLiteral("TabTitle");
const auto HiddenTabs = QStringLiteral("tabWidget");
const auto RepairButton = QStringLiteral("xfkqfw");
const auto Table = QStringLiteral("treeWidgetOW");

constexpr QSize WindowSize = ServiceContainer::fixedSize();
constexpr QSize LargeScreen(1920, 1080);
constexpr QSize SmallScreen(1280, 720);
//! From the window's top right corner to the middle of the close button, 50 × 32 pixels in size.
constexpr QPoint CloseButtonOffset(-25, 16);
constexpr QPoint DragBy(37, 53);
//! Of another length, so that it can't be taken for one that counts.
constexpr QPoint VainDragBy(61, 17);
constexpr int DragSteps = 4;
//! In pixels, wide enough for any frame.
constexpr int FrameMargin = 60;
constexpr int RightButton = 3;
constexpr int BoxTimeoutMs = 25000;

//! What \a program writes; the running test function fails where it ends with another status than
//! 0.
QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        QTest::qFail(qPrintable(program + QLatin1Char(' ') + arguments.join(QLatin1Char(' '))),
                     __FILE__, __LINE__);
    return process.readAllStandardOutput();
}

//! What is to the right of \a window's property \a name, as xprop prints it in \a format, if given.
QString windowProperty(qulonglong window, const QString &name, const QString &format = {})
{
    QStringList arguments {QStringLiteral("-notype")};
    if (window)
        arguments << QStringLiteral("-id") << QString::number(window);
    else
        arguments << QStringLiteral("-root");
    if (!format.isEmpty())
        arguments << QStringLiteral("-f") << name << format << QStringLiteral(" $0+\n");
    arguments << name;
    const QString line = QString::fromUtf8(outputOf(QStringLiteral("xprop"), arguments));
    const QRegularExpression value(QStringLiteral("^\\w+ ?[=:#]?(?: window id #)? *(.*)\n"));
    return value.match(line).captured(1);
}

//! The images in a window's _NET_WM_ICON: width, height and one number a pixel, over and over.
QList<QImage> windowIcons(qulonglong window)
{
    const QStringList numbers =
            windowProperty(window, QStringLiteral("_NET_WM_ICON"), QStringLiteral("32c"))
                    .split(QStringLiteral(", "));
    QList<QImage> result;
    for (int i = 0; i + 1 < numbers.size();) {
        const int width = numbers.at(i++).toInt();
        const int height = numbers.at(i++).toInt();
        if (width < 1 || height < 1 || i + width * height > numbers.size())
            return {};
        QImage icon(width, height, QImage::Format_ARGB32);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                icon.setPixel(x, y, numbers.at(i++).toUInt());
        }
        result.append(icon);
    }
    return result;
}

//! The smallest rectangle outside of which \a one and \a other are the same.
QRect difference(const QImage &one, const QImage &other)
{
    QRegion result;
    for (int y = 0; y < one.height(); ++y) {
        int left = 0;
        int right = one.width() - 1;
        while (left <= right && one.pixel(left, y) == other.pixel(left, y))
            ++left;
        while (right > left && one.pixel(right, y) == other.pixel(right, y))
            --right;
        if (left <= right)
            result += QRect(QPoint(left, y), QPoint(right, y));
    }
    return result.boundingRect();
}

QImage screenshot()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

QRect centred(const QSize &screen)
{
    return {QPoint((screen.width() - WindowSize.width()) / 2,
                   (screen.height() - WindowSize.height()) / 2),
            WindowSize};
}

//! Changes the screen as display settings do, and waits until it has become known.
void setScreenSize(const QSize &size)
{
    const QString mode = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
    const QByteArray modes = outputOf(QStringLiteral("xrandr"), {});
    if (!modes.contains(mode.toLatin1() + ' ')) {
        const QString width = QString::number(size.width());
        const QString height = QString::number(size.height());
        const QString none = QStringLiteral("0");
        outputOf(QStringLiteral("xrandr"), {QStringLiteral("--newmode"), mode, none, width, none,
                                            none, width, height, none, none, height});
        outputOf(QStringLiteral("xrandr"),
                 {QStringLiteral("--addmode"), QStringLiteral("screen"), mode});
    }
    outputOf(QStringLiteral("xrandr"), {QStringLiteral("--output"), QStringLiteral("screen"),
                                        QStringLiteral("--mode"), mode});
    QTRY_COMPARE(QGuiApplication::primaryScreen()->size(), size);
}

//! Drags with the button \a button as a hand does: not in one leap.
void drag(const QPoint &from, const QPoint &by, int button = PanelProcess::LeftButton)
{
    PanelProcess::moveMouse(from);
    PanelProcess::pressButton(button);
    for (int step = 1; step <= DragSteps; ++step)
        PanelProcess::moveMouse(from + by * step / DragSteps);
    PanelProcess::releaseButton(button);
}

} // namespace

/*!
    The whole program under a real window manager, whichever is there. Where nothing must happen,
    the test does something after it that must: when that has happened, the manager has seen all. A
    panel serves one test after the other for as long as they leave it open.
*/
class tst_WindowManagers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    void comesUpBareAndCentred();
    void tellsTaskBarsWhatItIs();
    void keepsItsSize();
    void isDraggedByItsHeaderOnly();
    void closesByItsButton();
    void closesByTheKey();
    void goesOnThroughChangesOfTheDesktop();
    void closesByTheManagersMessage();
    void keepsItsSizeWhereItIsScaled();

private:
    //! Where the window is and how large, by what the X server says.
    QRect place();
    QStringList states();
    //! A point that drags the window.
    QPoint grip();
    QPoint closeButton();
    //! Has the manager put the window at \a corner and waits until it stands there, unchanged.
    void verifyMovesTo(const QPoint &corner);
    void restartManager();

    std::unique_ptr<PanelProcess> m_panel;
    std::unique_ptr<QProcess> m_manager;
    QImage m_emptyScreen;
};

void tst_WindowManagers::init()
{
    if (m_panel)
        return;
    PanelProcess::moveMouse(QPoint(0, 0));
    m_emptyScreen = screenshot();
    m_panel = std::make_unique<PanelProcess>();
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->property(Window, "isActiveWindow").toBool());
}

void tst_WindowManagers::cleanup()
{
    if (QTest::currentTestFailed() || !m_panel->isRunning())
        m_panel.reset();
}

void tst_WindowManagers::cleanupTestCase()
{
    if (!m_manager)
        return;
    m_manager->terminate();
    QVERIFY(m_manager->waitForFinished());
}

QRect tst_WindowManagers::place()
{
    return serverWindow(m_panel->windowId(Window)).geometry;
}

QStringList tst_WindowManagers::states()
{
    return windowProperty(m_panel->windowId(Window), QStringLiteral("_NET_WM_STATE"))
            .split(QStringLiteral(", "));
}

QPoint tst_WindowManagers::grip()
{
    const QRect header = m_panel->globalRect(Header);
    return {header.right() - header.width() / 4, header.center().y()};
}

QPoint tst_WindowManagers::closeButton()
{
    return m_panel->globalRect(Window).topRight() + CloseButtonOffset;
}

void tst_WindowManagers::verifyMovesTo(const QPoint &corner)
{
    outputOf(QStringLiteral("xdotool"),
             {QStringLiteral("windowmove"), QString::number(m_panel->windowId(Window)),
              QString::number(corner.x()), QString::number(corner.y())});
    QTRY_COMPARE(place(), QRect(corner, WindowSize));
    QVERIFY(!states().contains(QStringLiteral("_NET_WM_STATE_MAXIMIZED_VERT")));
    QVERIFY(!states().contains(QStringLiteral("_NET_WM_STATE_MAXIMIZED_HORZ")));
}

void tst_WindowManagers::restartManager()
{
    const auto check = [] { return windowProperty(0, QStringLiteral("_NET_SUPPORTING_WM_CHECK")); };
    const QString former = check();
    m_manager = std::make_unique<QProcess>();
    m_manager->setProcessChannelMode(QProcess::ForwardedChannels);
    QStringList command = QProcess::splitCommand(qEnvironmentVariable("PANEL_TEST_WM"));
    const QString program = command.takeFirst();
    m_manager->start(program, command << QStringLiteral("--replace"));
    QVERIFY(m_manager->waitForStarted());
    QTRY_VERIFY(check().startsWith(QStringLiteral("0x")) && check() != former);
}

void tst_WindowManagers::comesUpBareAndCentred()
{
    const QRect expected = centred(QGuiApplication::primaryScreen()->size());
    QTRY_COMPARE(place(), expected);
    QCOMPARE(m_panel->property(Window, "size").toSize(), WindowSize);
    // Nothing has come to the screen there but the window: no frame, no shadow.
    const QRect around =
            expected.marginsAdded({FrameMargin, FrameMargin, FrameMargin, FrameMargin});
    QTRY_COMPARE(difference(m_emptyScreen.copy(around), screenshot().copy(around)),
                 expected.translated(-around.topLeft()));
}

void tst_WindowManagers::tellsTaskBarsWhatItIs()
{
    const qulonglong window = m_panel->windowId(Window);
    const auto property = [&](const char *name) {
        return windowProperty(window, QLatin1String(name));
    };
    QCOMPARE(property("_NET_WM_NAME"), QStringLiteral("\"朔川统一服务\""));
    // Task bars take the window for the desktop entry's by its class, which is the second name.
    const QSettings entry(QStringLiteral(PANEL_DESKTOP_ENTRY), QSettings::IniFormat);
    const auto expectedClass =
            entry.value(QStringLiteral("Desktop Entry/StartupWMClass")).toString();
    QCOMPARE(property("WM_CLASS"), QStringLiteral("\"corvane-panel\", \"%1\"").arg(expectedClass));
    QCOMPARE(property("_NET_WM_PID"), QString::number(m_panel->pid()));
    QCOMPARE(property("_NET_WM_WINDOW_TYPE").section(QStringLiteral(", "), -1),
             QStringLiteral("_NET_WM_WINDOW_TYPE_NORMAL"));

    const QImage icon = m_panel->icon(QStringLiteral(":/client/resources/application.svg"))
                                .convertToFormat(QImage::Format_ARGB32);
    const QList<QImage> icons = windowIcons(window);
    QVERIFY(icons.contains(icon));
    for (const QImage &other : icons)
        QVERIFY(other.width() >= 16 && other.width() == other.height());
}

void tst_WindowManagers::keepsItsSize()
{
    // There the keys mean nothing to the panel.
    PanelProcess::clickAt(m_panel->globalRect(Table).center());
    // By which managers resize and maximise. One of them takes the first for a move.
    for (const char *keys : {"alt+F8", "Right", "Down", "Return", "alt+F10", "super+Up"})
        PanelProcess::pressKeys(keys);
    verifyMovesTo({200, 100});

    const QRect window(QPoint(200, 100), WindowSize);
    drag(window.bottomRight(), DragBy);
    drag(window.bottomLeft(), DragBy);
    drag({window.right(), window.center().y()}, DragBy);
    drag({window.center().x(), window.bottom()}, DragBy);
    PanelProcess::clickAt(grip());
    PanelProcess::clickAt(grip());
    verifyMovesTo({300, 200});

    const QString id = QString::number(m_panel->windowId(Window));
    outputOf(QStringLiteral("wmctrl"),
             {QStringLiteral("-i"), QStringLiteral("-r"), id, QStringLiteral("-b"),
              QStringLiteral("add,maximized_vert,maximized_horz")});
    outputOf(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-r"), id,
                                        QStringLiteral("-e"), QStringLiteral("0,-1,-1,900,700")});
    verifyMovesTo({400, 300});
}

void tst_WindowManagers::isDraggedByItsHeaderOnly()
{
    const QRect before = place();
    const QPoint corner = before.topLeft();
    // The panel may not know its place yet.
    QTRY_COMPARE(m_panel->globalRect(Header).topLeft(), corner);
    const QRect header = m_panel->globalRect(Header);
    const QSize tabs = m_panel->property(HiddenTabs, "size").toSize();
    const QPoint besideTabs(tabs.width(), tabs.height() - 1);
    const QPoint belowTabs(tabs.width() - 1, tabs.height());
    QVERIFY(header.contains(corner + besideTabs) && header.contains(corner + belowTabs));

    drag(corner, VainDragBy);
    drag(corner + besideTabs - QPoint(1, 0), VainDragBy);
    drag(closeButton(), VainDragBy);
    drag(header.topRight() + QPoint(1, 0), VainDragBy);
    drag(m_panel->globalRect(Table).center(), VainDragBy);
    drag(header.bottomRight() + QPoint(0, 1), VainDragBy);
    drag(grip(), VainDragBy, RightButton);

    drag(corner + besideTabs, DragBy);
    QTRY_COMPARE(place(), before.translated(DragBy));
    drag(corner + DragBy + belowTabs, DragBy);
    QTRY_COMPARE(place(), before.translated(2 * DragBy));
    drag(header.bottomRight() + 2 * DragBy, -2 * DragBy);
    QTRY_COMPARE(place(), before);
}

void tst_WindowManagers::closesByItsButton()
{
    PanelProcess::clickAt(closeButton());
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

void tst_WindowManagers::closesByTheKey()
{
    PanelProcess::pressKeys("alt+F4");
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

void tst_WindowManagers::goesOnThroughChangesOfTheDesktop()
{
    m_panel->setRefreshInterval(PanelProcess::QuickRefreshMs);
    m_panel->placeDaemon();
    m_panel->click(RepairButton);
    QTRY_VERIFY(m_panel->hasDaemonRecord());

    // All of this while the panel waits for its daemon and answers nobody.
    restartManager();
    setScreenSize(SmallScreen);

    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
    QCOMPARE(m_panel->messageBox()->icon, int(QMessageBox::Information));
    QTRY_VERIFY(m_panel->property(QStringLiteral("QMessageBox"), "isActiveWindow").toBool());
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());
    QTRY_COMPARE(m_panel->rowTexts(Table).size(), 1);

    // Not far: some managers keep a window on the screen.
    const QPoint corner(100, 20);
    verifyMovesTo(corner);
    drag(grip(), DragBy);
    QTRY_COMPARE(place(), QRect(corner + DragBy, WindowSize));
    setScreenSize(LargeScreen);
    drag(grip(), DragBy);
    QTRY_COMPARE(place(), QRect(corner + 2 * DragBy, WindowSize));
}

void tst_WindowManagers::closesByTheManagersMessage()
{
    outputOf(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-c"),
                                        QString::number(m_panel->windowId(Window))});
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

//! Qt has the manager resize in steps of two pixels there, which don't divide the window's size.
void tst_WindowManagers::keepsItsSizeWhereItIsScaled()
{
    m_panel = std::make_unique<PanelProcess>();
    m_panel->environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("1.5"));
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->property(Window, "isActiveWindow").toBool());
    QCOMPARE(place().size(), WindowSize * 1.5);
}

QTEST_MAIN(tst_WindowManagers)
#include "tst_WindowManagers.moc"
