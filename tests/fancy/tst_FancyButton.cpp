#include "tests/fancy/privates.h"

#include <QAction>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

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

class Button : public FancyButton
{
public:
    using FancyButton::enterEvent;
    using FancyButton::FancyButton;
    using FancyButton::leaveEvent;
    using FancyButton::mouseDoubleClickEvent;
    using FancyButton::mousePressEvent;
    using FancyButton::mouseReleaseEvent;
};

class tst_FancyButton : public QObject
{
    Q_OBJECT

private slots:
    void privatePartStartsWithItsDefaults();
    void privatePartDeclaresItsFieldsInOrder();
    void declaresItsSignalsInOrder();
    void startsAsAFlatIconButton();
    void storesColors_data();
    void storesColors();
    void colorSettersAskForNoRepaint_data();
    void colorSettersAskForNoRepaint();
    void setColorSetsTheSheetAndStoresNothing();
    void setHasBorderAppliesTheTextColor();
    void setHasBorderAndSelectRepaint();
    void comingUpRepaintsAlsoWhenDisabled();
    void selectChangesPressAndHover();
    void storesMenuAndRoundness();
    void toleratesAMissingPrivatePart();
    void toleratesMissingEvents();

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
    struct Counter : QObject
    {
        int paints = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } counter;
    button.installEventFilter(&counter);
    change();
    QCoreApplication::sendPostedEvents();
    return counter.paints;
}

void tst_FancyButton::privatePartStartsWithItsDefaults()
{
    const FancyButtonPrivate data;

    QCOMPARE(data.q, nullptr);
    QCOMPARE(data.m_hoverColor, QColor(255, 255, 255, 50));
    QCOMPARE(data.m_pressColor, QColor(0, 0, 0, 50));
    QCOMPARE(data.m_textColor, QColor(255, 255, 255, 255));
    QVERIFY(!data.m_normalColor.isValid());
    QCOMPARE(data.m_bMouseHover, false);
    QCOMPARE(data.m_bMousePress, false);
    QCOMPARE(data.m_hasBorder, true);
    QCOMPARE(data.m_bRound, false);
    QCOMPARE(data.m_hasMenu, false);
}

void tst_FancyButton::privatePartDeclaresItsFieldsInOrder()
{
    const FancyButtonPrivate d;

    QVERIFY(isDeclarationOrder({&d.q, &d.m_hoverColor, &d.m_pressColor, &d.m_textColor,
                                &d.m_normalColor, &d.m_bMouseHover, &d.m_bMousePress,
                                &d.m_hasBorder, &d.m_bRound, &d.m_hasMenu}));
}

void tst_FancyButton::declaresItsSignalsInOrder()
{
    QCOMPARE(ownMethods(FancyButton::staticMetaObject, QMetaMethod::Signal),
             QStringList({"menuTriggered(QMouseEvent*)", "doubleClicked()"}));
    QCOMPARE(ownMethods(FancyButton::staticMetaObject, QMetaMethod::Slot), QStringList());
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

void tst_FancyButton::comingUpRepaintsAlsoWhenDisabled()
{
    FancyButton button(nullptr);
    showUnseen(button);
    for (const bool isEnabled : {true, false}) {
        button.setEnabled(isEnabled);
        QCoreApplication::sendPostedEvents();
        QMouseEvent release(QEvent::MouseButtonRelease, QPointF(-1, -1), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        QVERIFY(paintsAfter(button, [&] { QCoreApplication::sendEvent(&button, &release); }) > 0);
    }
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

void tst_FancyButton::toleratesAMissingPrivatePart()
{
    Button button(nullptr);
    const QScopedPointer<FancyButtonPrivate> kept(std::exchange(ButtonData::of(button), nullptr));
    const QSignalSpy clicks(&button, &FancyButton::clicked);
    const QSignalSpy doubleClicks(&button, &FancyButton::doubleClicked);

    for (const ColorSetter set :
         {&FancyButton::setHoverColor, &FancyButton::setPressColor, &FancyButton::setTextColor,
          &FancyButton::setNormalColor, &FancyButton::setColor})
        (button.*set)(Qt::red);
    for (const ColorGetter get : {&FancyButton::hoverColor, &FancyButton::pressColor,
                                  &FancyButton::textColor, &FancyButton::normalColor})
        QVERIFY(!(button.*get)().isValid());
    button.select(true);
    button.setHasMenu(true);
    button.setHasBorder(false);
    button.setRound(true);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::mouseDClick(&button, Qt::LeftButton);
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&button, &enter);
    QCoreApplication::sendEvent(&button, &leave);
    QVERIFY(!button.grab().isNull());

    QVERIFY(!button.hasMenu());
    QCOMPARE(button.styleSheet(), BorderWhite);
    QCOMPARE(clicks.count(), 0);
    QCOMPARE(doubleClicks.count(), 0);
}

void tst_FancyButton::toleratesMissingEvents()
{
    Button button(nullptr);
    const QSignalSpy clicks(&button, &FancyButton::clicked);
    const QSignalSpy doubleClicks(&button, &FancyButton::doubleClicked);

    button.mousePressEvent(nullptr);
    button.mouseReleaseEvent(nullptr);
    button.mouseDoubleClickEvent(nullptr);
    button.enterEvent(nullptr);
    QCOMPARE(ButtonData::of(button)->m_bMouseHover, true);
    button.leaveEvent(nullptr);
    QCOMPARE(ButtonData::of(button)->m_bMouseHover, false);

    QCOMPARE(ButtonData::of(button)->m_bMousePress, false);
    QCOMPARE(clicks.count(), 0);
    QCOMPARE(doubleClicks.count(), 0);
}

QTEST_MAIN(tst_FancyButton)
#include "tst_FancyButton.moc"
