#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/pixels.h"

#include <QTest>

#include <algorithm>

namespace {

const auto Opener = QStringLiteral("xdg-open");
const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto HallButton = QStringLiteral("kqfwdt");
const auto KnowledgeButton = QStringLiteral("kqzsk");
const auto RepairButton = QStringLiteral("xfkqfw");
//! The close button has no object name.
const QString CloseButton;

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
    //! Presses Tab until \a name has the focus.
    void tabTo(const QString &name);

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

void tst_Keyboard::tabTo(const QString &name)
{
    QTRY_VERIFY(m_panel->property(Window, "isActiveWindow").toBool());
    for (int i = 0; focus() != name; ++i) {
        QVERIFY2(i < 10, qPrintable(name));
        const QString former = focus();
        PanelProcess::pressKeys("Tab");
        QTRY_VERIFY(focus() != former);
    }
}

void tst_Keyboard::showsTheFocus()
{
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->isExposed(QStringLiteral("labelNoService")));
    const QImage unfocused = m_panel->grab(Window);
    const QPoint corner = m_panel->globalRect(Window).topLeft();
    const QRect window(QPoint(), unfocused.size());

    QStringList order;
    QString before;
    do {
        before = focus();
        PanelProcess::pressKeys("Tab");
        QTRY_VERIFY(focus() != before);
        order.append(focus());

        const QRect widget = focus() == CloseButton
                                     ? QRect(window.right() - 49, window.top(), 50, 32)
                                     : m_panel->globalRect(focus()).translated(-corner);
        const QRect reach = widget.marginsAdded({RingReach, RingReach, RingReach, RingReach});
        const QRegion ring = differingPixels(unfocused, m_panel->grab(Window), LeastContrast);
        QVERIFY2(!ring.isEmpty(), qPrintable(focus()));
        QVERIFY2(reach.contains(ring.boundingRect()), qPrintable(focus()));
        // All round it: a line from the middle meets it whichever way it goes.
        const QPoint middle = reach.center();
        for (const QPoint &end :
             {QPoint(middle.x(), reach.top()), QPoint(middle.x(), reach.bottom()),
              QPoint(reach.left(), middle.y()), QPoint(reach.right(), middle.y())})
            QVERIFY2(ring.intersects(QRect(middle, end).normalized()), qPrintable(focus()));
    } while (order.count(order.last()) == 1);

    // From the table on, in reading order.
    order.removeLast();
    std::rotate(order.begin(), std::find(order.begin(), order.end(), Table), order.end());
    QCOMPARE(order, (QStringList {Table, HallButton, KnowledgeButton, RepairButton, CloseButton}));
    PanelProcess::pressKeys("shift+Tab");
    QTRY_COMPARE(focus(), before);
}

void tst_Keyboard::actsOnTheFocusedButton()
{
    m_panel->placeDaemon();
    QVERIFY(m_panel->start());
    QTRY_COMPARE(m_panel->rowTexts(Table).size(), 1);

    QStringList pages;
    for (const char *key : {"space", "Return", "KP_Enter"}) {
        for (const QString &button : {HallButton, KnowledgeButton}) {
            tabTo(button);
            PanelProcess::pressKeys(key);
            QTRY_COMPARE(m_shims->calls(Opener).size(), pages.size() + 1);
            pages.append(m_shims->calls(Opener).last().value(0));
        }
    }
    QVERIFY(pages.at(0) != pages.at(1));
    QCOMPARE(pages, pages.mid(0, 2) + pages.mid(0, 2) + pages.mid(0, 2));

    tabTo(RepairButton);
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
    tabTo(CloseButton);
    PanelProcess::pressKeys("space");
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

QTEST_MAIN(tst_Keyboard)
#include "tst_Keyboard.moc"
