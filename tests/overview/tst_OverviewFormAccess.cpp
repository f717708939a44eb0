#include "overview/OverviewForm.h"
#include "shell/PanelStyle.h"
#include "tests/support/PaintCounter.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/WebShortcuts.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

#include <memory>

//! The page for assistive tools and the keyboard.
class tst_OverviewFormAccess : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void names();
    void focusIsARing_data();
    void focusIsARing();
    void ringFollowsTheFocus();
    void enterIsOnePress_data();
    void enterIsOnePress();
    void otherKeysAreLeftToOthers();

private:
    //! Shows the page and gives \a button the focus, if the window manager lets it have it.
    QPushButton *focus(const QString &button);

    std::unique_ptr<ShimFolder> m_shims;
    std::unique_ptr<OverviewForm> m_page;
};

void tst_OverviewFormAccess::init()
{
    if (!qobject_cast<PanelStyle *>(QApplication::style()))
        PanelStyle::install();
    m_shims = std::make_unique<ShimFolder>();
    m_shims->addPrinting(QStringLiteral("pgrep"), "", 1);
    m_page = std::make_unique<OverviewForm>();
}

void tst_OverviewFormAccess::cleanup()
{
    m_page.reset();
    m_shims.reset();
}

QPushButton *tst_OverviewFormAccess::focus(const QString &button)
{
    auto *focused = m_page->findChild<QPushButton *>(button);
    m_page->resize(800, 568);
    m_page->show();
    m_page->activateWindow();
    focused->setFocus();
    static_cast<void>(QTest::qWaitFor([&] { return focused->hasFocus(); }));
    return focused;
}

void tst_OverviewFormAccess::names()
{
    const QList<QPair<const char *, const char *>> tables = {{"treeWidgetOW", "labelOW"},
                                                             {"treeWidgetTag", "labelTag"}};
    for (const auto &[table, title] : tables) {
        QCOMPARE(m_page->findChild<QTreeWidget *>(QLatin1String(table))->accessibleName(),
                 m_page->findChild<QLabel *>(QLatin1String(title))->text());
    }
    // Without the blank that separates text and icon.
    const QList<QPushButton *> buttons = m_page->findChildren<QPushButton *>();
    QVERIFY(!buttons.isEmpty());
    for (const QPushButton *button : buttons)
        QCOMPARE(QLatin1Char(' ') + button->accessibleName(), button->text());
}

void tst_OverviewFormAccess::focusIsARing_data()
{
    QTest::addColumn<QString>("button");

    for (const WebShortcut &shortcut : WebShortcuts)
        QTest::newRow(shortcut.button) << QString::fromLatin1(shortcut.button);
    QTest::newRow("repair") << QStringLiteral("xfkqfw");
}

void tst_OverviewFormAccess::focusIsARing()
{
    QFETCH(const QString, button);
    QPushButton *focused = focus(button);
    QVERIFY(focused->hasFocus());
    const QRect area(focused->mapTo(m_page.get(), QPoint()), focused->size());
    // Inside, the button is the style's own.
    const auto around = [&] {
        QImage image = m_page->grab().toImage();
        QPainter(&image).fillRect(area, Qt::black);
        return image;
    };
    m_page->setAttribute(Qt::WA_KeyboardFocusChange, false);
    const QImage plain = around();

    m_page->setAttribute(Qt::WA_KeyboardFocusChange);
    QImage expected = plain;
    QPainter painter(&expected);
    painter.setClipRegion(QRegion(area.adjusted(-3, -3, 3, 3)) - area.adjusted(-1, -1, 1, 1));
    painter.fillRect(expected.rect(), around().pixelColor(area.topLeft() - QPoint(2, 2)));
    painter.end();
    QVERIFY(expected != plain);
    QCOMPARE(around(), expected);

    focused->clearFocus();
    QCOMPARE(around(), plain);
}

void tst_OverviewFormAccess::ringFollowsTheFocus()
{
    auto *latter = m_page->findChild<QPushButton *>(QStringLiteral("xfkqfw"));
    QPushButton *former = focus(QStringLiteral("kqfwdt"));
    QVERIFY(former->hasFocus());
    QCoreApplication::processEvents();
    const PaintCounter painted;

    latter->setFocus();

    for (const QPushButton *button : {former, latter}) {
        const QPoint ring = button->mapTo(m_page.get(), QPoint(-2, 10));
        QTRY_VERIFY(painted.regions.value(m_page.get()).contains(ring));
    }
}

void tst_OverviewFormAccess::enterIsOnePress_data()
{
    QTest::addColumn<Qt::Key>("key");

    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void tst_OverviewFormAccess::enterIsOnePress()
{
    QFETCH(const Qt::Key, key);
    QPushButton *button = focus(QStringLiteral("kqzsk"));
    QVERIFY(button->hasFocus());
    disconnect(button, &QPushButton::clicked, m_page.get(), nullptr);
    const QSignalSpy clicks(button, &QPushButton::clicked);
    const auto press = [key](QWidget *target, Qt::KeyboardModifiers modifiers, bool isRepeat) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, QStringLiteral("\r"), isRepeat);
        QCoreApplication::sendEvent(target, &event);
        return event.isAccepted();
    };

    QVERIFY(press(button, Qt::NoModifier, false));
    QCOMPARE(clicks.size(), 1);
    // Held down, it repeats.
    QVERIFY(press(button, Qt::NoModifier, true));
    QCOMPARE(clicks.size(), 1);
    press(button, Qt::KeypadModifier, false);
    QCOMPARE(clicks.size(), 2);
    for (const Qt::KeyboardModifier other :
         {Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier})
        press(button, other, false);
    // Nothing has the focus: there is nothing to press.
    button->clearFocus();
    press(m_page.get(), Qt::NoModifier, false);
    QCOMPARE(clicks.size(), 2);
}

void tst_OverviewFormAccess::otherKeysAreLeftToOthers()
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);

    QCoreApplication::sendEvent(m_page.get(), &event);

    QVERIFY(!event.isAccepted());
}

QTEST_MAIN(tst_OverviewFormAccess)
#include "tst_OverviewFormAccess.moc"
