#include "tests/support/PanelProcess.h"

#include <QGuiApplication>
#include <QScreen>
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
constexpr QPoint PointerAtRest(0, 0);

constexpr QRgb HoverColor = qRgb(0xe5, 0xf3, 0xff);
constexpr QRgb PressColor = qRgb(0xcc, 0xe8, 0xff);
constexpr QRgb CloseHoverColor = qRgb(0xff, 0, 0);

} // namespace

/*!
    No test, but the photographer of the documentation: saves what the screen shows of the real
    program in each of its states, at device pixel ratios 1 and 2, into the folder that the
    environment names in PANEL_TEST_PICTURES. Needs a screen of at least 1600 × 1200 pixels.
*/
class Pictures : public QObject
{
    Q_OBJECT

private slots:
    void daemonRuns_data() { addRatios(); }
    void daemonRuns();
    void daemonStands_data() { addRatios(); }
    void daemonStands();

private:
    static void addRatios();
    void start(bool withDaemon);
    //! From the panel's pixels to those of the screen.
    QRect onScreen(const QRect &rect) const;
    QPoint onScreen(const QPoint &point) const;
    QImage window();
    void save(const QString &state);
    //! Waits until the screen shows \a color at \a point and saves the picture.
    void saveWithColor(const QString &state, const QPoint &point, QRgb color);
    void saveBox(const QString &state);

    std::unique_ptr<PanelProcess> m_panel;
    int m_ratio = 1;
};

void Pictures::addRatios()
{
    QTest::addColumn<int>("ratio");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
}

void Pictures::start(bool withDaemon)
{
    QFETCH(int, ratio);
    m_ratio = ratio;
    PanelProcess::moveMouse(PointerAtRest);
    m_panel = std::make_unique<PanelProcess>();
    m_panel->environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(ratio));
    // The Chinese forms of the characters, where a font has several.
    m_panel->environment().insert(QStringLiteral("FC_LANG"), QStringLiteral("zh-cn"));
    if (withDaemon)
        m_panel->placeDaemon();
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->property(Window, "isActiveWindow").toBool());
}

QRect Pictures::onScreen(const QRect &rect) const
{
    return {onScreen(rect.topLeft()), rect.size() * m_ratio};
}

QPoint Pictures::onScreen(const QPoint &point) const
{
    return point * m_ratio;
}

QImage Pictures::window()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().copy(
            onScreen(m_panel->globalRect(Window)));
}

void Pictures::save(const QString &state)
{
    // Twice the same: nothing is on its way to the screen any more.
    QImage picture;
    const auto isSettled = [&] {
        const QImage former = std::exchange(picture, window());
        return picture == former;
    };
    QVERIFY(QTest::qWaitFor(isSettled));

    const QString ratio = m_ratio == 1 ? QString() : QStringLiteral("@%1x").arg(m_ratio);
    const QString path = QStringLiteral("%1/panel-%2%3.png")
                                 .arg(qEnvironmentVariable("PANEL_TEST_PICTURES"), state, ratio);
    QVERIFY2(picture.save(path), qPrintable(path));
}

void Pictures::saveWithColor(const QString &state, const QPoint &point, QRgb color)
{
    const QPoint place = onScreen(point - m_panel->globalRect(Window).topLeft());
    QTRY_COMPARE(window().pixelColor(place), QColor(color));
    save(state);
}

void Pictures::saveBox(const QString &state)
{
    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
    QTRY_VERIFY(m_panel->isExposed(Box));
    QTRY_VERIFY(m_panel->property(Box, "isActiveWindow").toBool());
    save(state);
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());
}

void Pictures::daemonRuns()
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
    PanelProcess::moveMouse(PointerAtRest);
    PanelProcess::releaseButton();
    PanelProcess::moveMouse(onScreen(close));
    saveWithColor(QStringLiteral("close-hovered"), close, CloseHoverColor);

    PanelProcess::clickAt(onScreen(m_panel->globalRect(RepairButton).center()));
    PanelProcess::moveMouse(PointerAtRest);
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

void Pictures::daemonStands()
{
    start(false);
    QTRY_VERIFY(m_panel->isExposed(Notice));
    save(QStringLiteral("stopped"));

    PanelProcess::clickAt(onScreen(m_panel->globalRect(RepairButton).center()));
    PanelProcess::moveMouse(PointerAtRest);
    saveBox(QStringLiteral("repair-failed"));

    m_panel->placeDaemon();
    PanelProcess::clickAt(onScreen(m_panel->globalRect(RepairButton).center()));
    PanelProcess::moveMouse(PointerAtRest);
    saveBox(QStringLiteral("repaired"));
}

QTEST_MAIN(Pictures)
#include "pictures.moc"
