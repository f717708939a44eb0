#include "tests/fancy/privates.h"
#include "tests/support/PaintCounter.h"

#include <QAction>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using ColorSetter = void (FancyButton::*)(const QColor &);
using ColorGetter = QColor (FancyButton::*)() const;
using ColorField = QColor FancyButtonPrivate::*;
Q_DECLARE_METATYPE(ColorSetter)
Q_DECLARE_METATYPE(ColorGetter)
Q_DECLARE_METATYPE(ColorField)

namespace {
const QString BorderWhite =
        QStringLiteral("QToolButton::menu-indicator { image: None; }QToolButton{background-color: "
                       "transparent;color: #ffffffff;}");
const QString BorderColor =
        QStringLiteral("QToolButton::menu-indicator { image: None; }QToolButton{background-color: "
                       "transparent;color: #04010203;}");
const QString NoBorderColor =
        QStringLiteral("QToolButton::menu-indicator { image: None; }QToolButton{background-color: "
                       "transparent;color: #04010203;border:none;}");
const QColor SomeColor(1, 2, 3, 4);
} // namespace

class tst_FancyButton : public QObject
{
    Q_OBJECT

private slots:
    void startsAsAFlatIconButton();
    void storesColors_data();
    void storesColors();
    void colorSettersAskForNoRepaint_data();
    void colorSettersAskForNoRepaint();
    void setColorSetsTheSheetAndStoresNothing();
    void setHasBorderAppliesTheTextColor();
    void setHasBorderAndSelectRepaint();
    void releaseRepaints();
    void selectChangesPressAndHover();
    void storesMenuAndRoundness();

private:
    static void showUnseen(FancyButton &button);
    static int paintsAfter(FancyButton &button, const std::function<void()> &change);
};

// Qt paints it like any other, but neither the X server nor a window manager can ask for a paint.
void tst_FancyButton::showUnseen(FancyButton &button)
{
    button.setAttribute(Qt::WA_DontShowOnScreen);
    button.show();
    QCoreApplication::sendPostedEvents();
}

// The number of paint events that a shown button gets for a change.
int tst_FancyButton::paintsAfter(FancyButton &button, const std::function<void()> &change)
{
    const PaintCounter counter;
    change();
    QCoreApplication::sendPostedEvents();
    return counter.paints.value(&button);
}

void tst_FancyButton::startsAsAFlatIconButton()
{
    QWidget parent;
    FancyButton button(&parent);

    QCOMPARE(button.parentWidget(), &parent);
    QCOMPARE(ButtonData::of(button)->q, &button);
    QCOMPARE(button.toolButtonStyle(), Qt::ToolButtonIconOnly);
    QVERIFY(button.autoRaise());
    QCOMPARE(button.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(button.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(button.styleSheet(), BorderWhite);
    QCOMPARE(button.hasMenu(), false);
    QVERIFY(button.children().isEmpty());
}

void tst_FancyButton::storesColors_data()
{
    QTest::addColumn<ColorSetter>("set");
    QTest::addColumn<ColorGetter>("get");
    QTest::addColumn<ColorField>("field");

    QTest::newRow("hover") << &FancyButton::setHoverColor << &FancyButton::hoverColor
                           << &FancyButtonPrivate::m_hoverColor;
    QTest::newRow("press") << &FancyButton::setPressColor << &FancyButton::pressColor
                           << &FancyButtonPrivate::m_pressColor;
    QTest::newRow("text") << &FancyButton::setTextColor << &FancyButton::textColor
                          << &FancyButtonPrivate::m_textColor;
    QTest::newRow("normal") << &FancyButton::setNormalColor << &FancyButton::normalColor
                            << &FancyButtonPrivate::m_normalColor;
}

void tst_FancyButton::storesColors()
{
    QFETCH(ColorSetter, set);
    QFETCH(ColorGetter, get);
    QFETCH(ColorField, field);
    FancyButton button(nullptr);
    QCOMPARE((button.*get)(), FancyButtonPrivate().*field);

    (button.*set)(SomeColor);

    QCOMPARE((button.*get)(), SomeColor);
    QCOMPARE(ButtonData::of(button)->*field, SomeColor);
    QCOMPARE(button.styleSheet(), BorderWhite);
}

void tst_FancyButton::colorSettersAskForNoRepaint_data()
{
    storesColors_data();
}

void tst_FancyButton::colorSettersAskForNoRepaint()
{
    QFETCH(ColorSetter, set);
    FancyButton button(nullptr);
    showUnseen(button);

    QCOMPARE(paintsAfter(button, [&] { (button.*set)(SomeColor); }), 0);
    QCOMPARE(paintsAfter(button, [&] { button.setRound(true); }), 0);
}

void tst_FancyButton::setColorSetsTheSheetAndStoresNothing()
{
    FancyButton button(nullptr);

    button.setColor(SomeColor);

    QCOMPARE(button.styleSheet(), BorderColor);
    QCOMPARE(button.textColor(), QColor(Qt::white));
}

void tst_FancyButton::setHasBorderAppliesTheTextColor()
{
    FancyButton button(nullptr);
    button.setTextColor(SomeColor);

    button.setHasBorder(false);
    QCOMPARE(button.styleSheet(), NoBorderColor);
    QCOMPARE(ButtonData::of(button)->m_hasBorder, false);

    button.setHasBorder(true);
    QCOMPARE(button.styleSheet(), BorderColor);
    QCOMPARE(ButtonData::of(button)->m_hasBorder, true);
}

void tst_FancyButton::setHasBorderAndSelectRepaint()
{
    FancyButton button(nullptr);
    showUnseen(button);

    QVERIFY(paintsAfter(button, [&] { button.setHasBorder(false); }) > 0);
    QVERIFY(paintsAfter(button, [&] { button.select(true); }) > 0);
    QVERIFY(paintsAfter(button, [&] { button.select(false); }) > 0);
}

void tst_FancyButton::releaseRepaints()
{
    FancyButton button(nullptr);
    showUnseen(button);
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(-1, -1), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QVERIFY(paintsAfter(button, [&] { QCoreApplication::sendEvent(&button, &release); }) > 0);
}

void tst_FancyButton::selectChangesPressAndHover()
{
    FancyButton button(nullptr);
    FancyButtonPrivate *data = ButtonData::of(button);
    data->m_bMouseHover = true;

    button.select(true);
    QCOMPARE(data->m_bMousePress, true);
    QCOMPARE(data->m_bMouseHover, true);

    button.select(false);
    QCOMPARE(data->m_bMousePress, false);
    QCOMPARE(data->m_bMouseHover, false);
}

void tst_FancyButton::storesMenuAndRoundness()
{
    FancyButton button(nullptr);

    button.setHasMenu(true);
    QVERIFY(button.hasMenu());
    QCOMPARE(ButtonData::of(button)->m_hasMenu, true);
    button.setHasMenu(false);
    QVERIFY(!button.hasMenu());

    button.setRound(true);
    QCOMPARE(ButtonData::of(button)->m_bRound, true);
    button.setRound(false);
    QCOMPARE(ButtonData::of(button)->m_bRound, false);
}

QTEST_MAIN(tst_FancyButton)
#include "tst_FancyButton.moc"
