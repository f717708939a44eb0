#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/WebShortcuts.h"
#include "tests/support/pixels.h"

#include <QTest>

#include <algorithm>
#include <utility>

namespace {

const auto Opener = QStringLiteral("xdg-open");
const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto RepairButton = QStringLiteral("xfkqfw");
//! The close button goes by its class.
const auto CloseButton = QStringLiteral("FancyButton");

//! How far a focus ring may be from its widget, in pixels.
constexpr int RingReach = 4;
//! The least contrast of a ring with what was there before.
constexpr double LeastContrast = 3.0;

} // namespace

/*!
    The panel without a mouse.
*/
class tst_Keyboard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showsTheFocus();
    void actsOnTheFocusedButton();
    void closesByTheFocusedButton();

private:
    QString focus();
    //! Presses Tab, and returns which widget has the focus then.
    QString tab();
    //! Presses Tab until \a name has the focus. Returns whether it comes to have it.
    bool tabTo(const QString &name);

    std::unique_ptr<ShimFolder> m_shims;
    std::unique_ptr<PanelProcess> m_panel;
};

void tst_Keyboard::init()
{
    m_shims = std::make_unique<ShimFolder>();
    m_shims->add(Opener, "");
    m_panel = std::make_unique<PanelProcess>();
}

void tst_Keyboard::cleanup()
{
    m_panel.reset();
    m_shims.reset();
}

QString tst_Keyboard::focus()
{
    return m_panel->application(QStringLiteral("focus")).toString();
}

QString tst_Keyboard::tab()
{
    const QString former = focus();
    PanelProcess::pressKeys("Tab");
    static_cast<void>(QTest::qWaitFor([&] { return focus() != former; }));
    return focus();
}

bool tst_Keyboard::tabTo(const QString &name)
{
    if (!QTest::qWaitFor([this] { return m_panel->property(Window, "isActiveWindow").toBool(); }))
        return false;
    QStringList seen = {focus()};
    while (seen.constLast() != name) {
        const QString next = tab();
        if (seen.contains(next))
            return false;
        seen.append(next);
    }
    return true;
}

void tst_Keyboard::showsTheFocus()
{
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->isExposed(QStringLiteral("labelNoService")));
    const QImage unfocused = m_panel->grab(Window);
    const QPoint corner = m_panel->globalRect(Window).topLeft();

    QStringList order;
    QVector<QRect> places;
    QString before;
    do {
        before = focus();
        const QString focused = tab();
        QVERIFY(focused != before);
        const QRect widget = m_panel->application(QStringLiteral("focusRect")).toRect();
        order.append(focused);
        places.append(widget.translated(-corner));

        const QRect reach =
                places.constLast().marginsAdded({RingReach, RingReach, RingReach, RingReach});
        const QRegion ring = differingPixels(unfocused, m_panel->grab(Window), LeastContrast);
        QVERIFY2(!ring.isEmpty(), qPrintable(focused));
        QVERIFY2(reach.contains(ring.boundingRect()), qPrintable(focused));
        // All round it: a line from the middle meets it whichever way it goes.
        const QPoint middle = reach.center();
        for (const QPoint &end :
             {QPoint(middle.x(), reach.top()), QPoint(middle.x(), reach.bottom()),
              QPoint(reach.left(), middle.y()), QPoint(reach.right(), middle.y())})
            QVERIFY2(ring.intersects(QRect(middle, end).normalized()), qPrintable(focused));
    } while (order.count(order.last()) == 1);

    order.removeLast();
    places.removeLast();
    // The table and all buttons of the page in reading order, and the close button.
    const auto first = order.indexOf(Table);
    QVERIFY(first >= 0);
    std::rotate(order.begin(), order.begin() + first, order.end());
    std::rotate(places.begin(), places.begin() + first, places.end());
    QCOMPARE(order.constLast(), CloseButton);
    QCOMPARE(order.size(), 1 + m_panel->count(QStringLiteral("OverviewForm/QPushButton")) + 1);
    const auto isBefore = [](const QRect &one, const QRect &other) {
        return std::make_pair(one.top(), one.left()) < std::make_pair(other.top(), other.left());
    };
    QVERIFY(std::is_sorted(places.begin(), places.end() - 1, isBefore));

    PanelProcess::pressKeys("shift+Tab");
    QTRY_COMPARE(focus(), before);
}

void tst_Keyboard::actsOnTheFocusedButton()
{
    m_panel->placeDaemon();
    QVERIFY(m_panel->start());
    QTRY_COMPARE(m_panel->rowTexts(Table).size(), 1);

    QList<QStringList> expected;
    for (const char *key : {"space", "Return", "KP_Enter"}) {
        for (const WebShortcut &shortcut : WebShortcuts) {
            QVERIFY(tabTo(QLatin1String(shortcut.button)));
            PanelProcess::pressKeys(key);
            expected.append(QStringList(QLatin1String(shortcut.address)));
            QTRY_COMPARE(m_shims->calls(Opener), expected);
        }
    }

    QVERIFY(tabTo(RepairButton));
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(m_panel->messageBox());
    QTRY_VERIFY(m_panel->property(QStringLiteral("QMessageBox"), "isActiveWindow").toBool());
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());
    QTRY_COMPARE(focus(), RepairButton);
}

void tst_Keyboard::closesByTheFocusedButton()
{
    QVERIFY(m_panel->start());
    QVERIFY(tabTo(CloseButton));
    PanelProcess::pressKeys("space");
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

QTEST_MAIN(tst_Keyboard)
#include "tst_Keyboard.moc"
