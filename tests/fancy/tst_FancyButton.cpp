#include "tests/fancy/privates.h"
#include "tests/support/PaintCounter.h"

#include <QMouseEvent>
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
    void init();

    void startsAsAFlatIconButton();
    void storesColors_data();
    void storesColors();
    void sheetFollowsColorAndBorder();
    void changesOfStateRepaint();
    void selectChangesPressAndHover();
    void storesMenuAndRoundness();

private:
    int paintsAfter(const std::function<void()> &change) const;

    QScopedPointer<FancyButton> button;
    FancyButtonPrivate *data = nullptr;
};

void tst_FancyButton::init()
{
    button.reset(new FancyButton);
    data = ButtonData::of(*button);
    // Qt paints it like any other, but neither the X server nor a window manager can ask for it.
    button->setAttribute(Qt::WA_DontShowOnScreen);
    button->show();
    QCoreApplication::sendPostedEvents();
}

// The number of paint events that the button gets for a change.
int tst_FancyButton::paintsAfter(const std::function<void()> &change) const
{
    const PaintCounter counter;
    change();
    QCoreApplication::sendPostedEvents();
    return counter.paints.value(button.data());
}

void tst_FancyButton::startsAsAFlatIconButton()
{
    QWidget parent;
    FancyButton child(&parent);

    QCOMPARE(child.parentWidget(), &parent);
    QCOMPARE(ButtonData::of(child)->q, &child);
    QCOMPARE(child.toolButtonStyle(), Qt::ToolButtonIconOnly);
    QVERIFY(child.autoRaise());
    QCOMPARE(child.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(child.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(child.styleSheet(), BorderWhite);
    QCOMPARE(child.hasMenu(), false);
    QVERIFY(child.children().isEmpty());
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
    QCOMPARE((*button.*get)(), FancyButtonPrivate().*field);

    QCOMPARE(paintsAfter([&] { (*button.*set)(SomeColor); }), 0);

    QCOMPARE((*button.*get)(), SomeColor);
    QCOMPARE(data->*field, SomeColor);
    QCOMPARE(button->styleSheet(), BorderWhite);
}

void tst_FancyButton::sheetFollowsColorAndBorder()
{
    button->setColor(SomeColor);
    QCOMPARE(button->styleSheet(), BorderColor);
    QCOMPARE(button->textColor(), QColor(Qt::white));

    button->setHasBorder(true);
    QCOMPARE(button->styleSheet(), BorderWhite);
    button->setTextColor(SomeColor);
    button->setHasBorder(false);
    QCOMPARE(button->styleSheet(), NoBorderColor);
    button->setHasBorder(true);
    QCOMPARE(button->styleSheet(), BorderColor);
}

void tst_FancyButton::changesOfStateRepaint()
{
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(-1, -1), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);

    QVERIFY(paintsAfter([&] { button->setHasBorder(false); }) > 0);
    QVERIFY(paintsAfter([&] { button->select(true); }) > 0);
    QVERIFY(paintsAfter([&] { button->select(false); }) > 0);
    QVERIFY(paintsAfter([&] { QCoreApplication::sendEvent(button.data(), &release); }) > 0);
}

void tst_FancyButton::selectChangesPressAndHover()
{
    data->m_bMouseHover = true;

    button->select(true);
    QCOMPARE(data->m_bMousePress, true);
    QCOMPARE(data->m_bMouseHover, true);

    button->select(false);
    QCOMPARE(data->m_bMousePress, false);
    QCOMPARE(data->m_bMouseHover, false);
}

void tst_FancyButton::storesMenuAndRoundness()
{
    button->setHasMenu(true);
    QVERIFY(button->hasMenu());
    button->setHasMenu(false);
    QVERIFY(!button->hasMenu());

    QCOMPARE(paintsAfter([&] { button->setRound(true); }), 0);
    QCOMPARE(data->m_bRound, true);
    button->setRound(false);
    QCOMPARE(data->m_bRound, false);
}

QTEST_MAIN(tst_FancyButton)
#include "tst_FancyButton.moc"
