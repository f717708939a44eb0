#include "tests/support/PanelProcess.h"
#include "tests/support/pixels.h"

#include <QTest>

#include <utility>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto Notice = QStringLiteral("labelNoService");
const auto HallButton = QStringLiteral("kqfwdt");
const auto KnowledgeButton = QStringLiteral("kqzsk");
const auto RepairButton = QStringLiteral("xfkqfw");
const auto Box = QStringLiteral("QMessageBox");

constexpr int BoxTimeoutMs = 25000;
constexpr QPoint ButtonCorner(3, 3);
constexpr QPoint CloseButtonCorner(-46, 4);
constexpr QPoint Aside(0, 0);

constexpr QRgb HoverColor = qRgb(0xe5, 0xf3, 0xff);
constexpr QRgb PressColor = qRgb(0xcc, 0xe8, 0xff);
constexpr QRgb CloseHoverColor = qRgb(0xff, 0, 0);

} // namespace

/*!
    No test: saves what the screen shows of the real program in each of its states, at device pixel
    ratios 1 and 2, into the folder that the environment names in PANEL_TEST_SCREENSHOTS. Needs a
    screen of at least 1600 × 1200 pixels.
*/
class Screenshots : public QObject
{
    Q_OBJECT

private slots:
    void daemonRuns_data() { addRatios(); }
    void daemonRuns();
    void daemonIsMissing_data() { addRatios(); }
    void daemonIsMissing();

private:
    static void addRatios();
    void start(bool withDaemon);
    //! From the panel's pixels to those of the screen.
    QRect onScreen(const QRect &rect) const;
    QPoint onScreen(const QPoint &point) const;
    QImage window();
    void save(const QString &state);
    //! Waits until the screen shows \a color at \a point and saves the screenshot.
    void saveWithColor(const QString &state, const QPoint &point, QRgb color);
    void saveBox(const QString &state);

    std::unique_ptr<PanelProcess> m_panel;
    int m_ratio = 1;
};

void Screenshots::addRatios()
{
    QTest::addColumn<int>("ratio");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
}

void Screenshots::start(bool withDaemon)
{
    QFETCH(int, ratio);
    m_ratio = ratio;
    PanelProcess::moveMouse(Aside);
    m_panel = std::make_unique<PanelProcess>();
    m_panel->environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(ratio));
    // The Chinese forms of the characters, where a font has several.
    m_panel->environment().insert(QStringLiteral("FC_LANG"), QStringLiteral("zh-cn"));
    if (withDaemon)
        m_panel->placeDaemon();
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->property(Window, "isActiveWindow").toBool());
}

QRect Screenshots::onScreen(const QRect &rect) const
{
    return {onScreen(rect.topLeft()), rect.size() * m_ratio};
}

QPoint Screenshots::onScreen(const QPoint &point) const
{
    return point * m_ratio;
}

QImage Screenshots::window()
{
    return screenshot(onScreen(m_panel->globalRect(Window)));
}

void Screenshots::save(const QString &state)
{
    // Twice the same: nothing is on its way to the screen any more.
    QImage screenshot;
    const auto isSettled = [&] {
        const QImage former = std::exchange(screenshot, window());
        return screenshot == former;
    };
    QVERIFY(QTest::qWaitFor(isSettled));

    const QString ratio = m_ratio == 1 ? QString() : QStringLiteral("@%1x").arg(m_ratio);
    const QString path = QStringLiteral("%1/panel-%2%3.png")
                                 .arg(qEnvironmentVariable("PANEL_TEST_SCREENSHOTS"), state, ratio);
    QVERIFY2(screenshot.save(path), qPrintable(path));
}

void Screenshots::saveWithColor(const QString &state, const QPoint &point, QRgb color)
{
    const QPoint place = onScreen(point - m_panel->globalRect(Window).topLeft());
    QTRY_COMPARE(window().pixelColor(place), QColor(color));
    save(state);
}

void Screenshots::saveBox(const QString &state)
{
    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
    QTRY_VERIFY(m_panel->isExposed(Box));
    QTRY_VERIFY(m_panel->property(Box, "isActiveWindow").toBool());
    PanelProcess::moveMouse(Aside);
    save(state);
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());
}

void Screenshots::daemonRuns()
{
    start(true);
    QTRY_COMPARE(m_panel->rowTexts(Table).size(), 1);
    save(QStringLiteral("running"));

    const QRect button = m_panel->globalRect(HallButton);
    PanelProcess::moveMouse(onScreen(button.center()));
    saveWithColor(QStringLiteral("button-hovered"), button.topLeft() + ButtonCorner, HoverColor);
    PanelProcess::pressButton();
    saveWithColor(QStringLiteral("button-pressed"), button.topLeft() + ButtonCorner, PressColor);

    const QPoint close = m_panel->globalRect(Window).topRight() + CloseButtonCorner;
    PanelProcess::moveMouse(Aside);
    PanelProcess::releaseButton();
    PanelProcess::moveMouse(onScreen(close));
    saveWithColor(QStringLiteral("close-hovered"), close, CloseHoverColor);

    PanelProcess::clickAt(onScreen(m_panel->globalRect(RepairButton).center()));
    saveBox(QStringLiteral("needs-no-repair"));
    QTRY_VERIFY(m_panel->property(Window, "isActiveWindow").toBool());
    const auto focus = [this] { return m_panel->application(QStringLiteral("focus")).toString(); };
    while (focus() != KnowledgeButton) {
        const QString former = focus();
        PanelProcess::pressKeys("Tab");
        QTRY_VERIFY(focus() != former);
    }
    save(QStringLiteral("focused"));
}

void Screenshots::daemonIsMissing()
{
    start(false);
    QTRY_VERIFY(m_panel->isExposed(Notice));
    save(QStringLiteral("stopped"));

    PanelProcess::clickAt(onScreen(m_panel->globalRect(RepairButton).center()));
    saveBox(QStringLiteral("repair-failed"));

    m_panel->placeDaemon();
    PanelProcess::clickAt(onScreen(m_panel->globalRect(RepairButton).center()));
    saveBox(QStringLiteral("repaired"));
}

QTEST_MAIN(Screenshots)
#include "screenshots.moc"
