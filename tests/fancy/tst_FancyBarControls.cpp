#include "tests/fancy/privates.h"

#include <QAccessible>
#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <typeinfo>

namespace {
using Use = void (*)(FancyButton *);

void addUses()
{
    QTest::addColumn<Use>("use");
    QTest::newRow("mouse") << Use(
            [](FancyButton *button) { QTest::mouseClick(button, Qt::LeftButton); });
    QTest::newRow("keyboard") << Use(
            [](FancyButton *button) { QTest::keyClick(button, Qt::Key_Space); });
    QTest::newRow("click()") << Use([](FancyButton *button) { button->click(); });
    QTest::newRow("assistive tool") << Use([](FancyButton *button) {
        QAccessible::queryAccessibleInterface(button)->actionInterface()->doAction(
                QAccessibleActionInterface::pressAction());
    });
}
} // namespace
Q_DECLARE_METATYPE(Qt::MouseButton)
Q_DECLARE_METATYPE(Use)

class tst_FancyBarControls : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void widgetGoesIntoTheTitleRow();
    void widgetGoesIntoTheMenuRow();
    void widgetGoesNowhereWithoutAMenuRow();
    void missingControlsAreIgnored();
    void buttonShowsItsAction_data();
    void buttonShowsItsAction();
    void unplacedButtonIsKept();
    void buttonTriggersItsAction_data();
    void buttonTriggersItsAction();
    void buttonKeepsItsActionWithoutAClick_data();
    void buttonKeepsItsActionWithoutAClick();
    void menuOpensAtTheButtonsCorner();
    void openMenuKeepsItsButtonPressed();
    void eachPressConnectsAnew();
    void eachMenuPressesItsOwnButton();
    void menuStaysClosedForOtherSenders();

private:
    void showInWindow();
    FancyBarPrivate &data() const { return *BarData::of(*bar); }
    static bool isPressed(const FancyButton *button)
    {
        return ButtonData::of(*button)->m_bMousePress;
    }

    QScopedPointer<QWidget> window;
    FancyBar *bar = nullptr;
    QScopedPointer<QMenu> menu;
    QScopedPointer<QAction> action;
};

void tst_FancyBarControls::init()
{
    window.reset(new QWidget);
    bar = new FancyBar(window.data());
    menu.reset(new QMenu);
    menu->addAction(QStringLiteral("Entry"));
    action.reset(new QAction(QStringLiteral("Action")));
}

void tst_FancyBarControls::cleanup()
{
    window.reset();
    menu.reset();
    action.reset();
}

void tst_FancyBarControls::showInWindow()
{
    auto *layout = new QVBoxLayout(window.data());
    layout->addWidget(bar);
    layout->addStretch();
    window->resize(400, 200);
    window->move(60, 50);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.data()));
}

void tst_FancyBarControls::widgetGoesIntoTheTitleRow()
{
    auto *first = new QLabel;
    auto *second = new QLabel;
    bar->addAdditionalControl(first, FancyBar::TitlePosition, 7);
    bar->addAdditionalControl(second, FancyBar::TitlePosition, 0);

    const QHBoxLayout *area = data().m_titleAdditionalControlArea;
    QCOMPARE(area->count(), 4);
    QCOMPARE(area->itemAt(0)->spacerItem()->sizeHint().width(), 7);
    QCOMPARE(area->itemAt(1)->widget(), first);
    QCOMPARE(area->itemAt(2)->spacerItem()->sizeHint().width(), 0);
    QCOMPARE(area->itemAt(3)->widget(), second);
    QCOMPARE(area->stretch(1), 0);
    QCOMPARE(first->parentWidget(), data().m_titleWidget);
}

void tst_FancyBarControls::widgetGoesIntoTheMenuRow()
{
    data().createMenuWidget();
    auto *label = new QLabel;

    bar->addAdditionalControl(label, FancyBar::MenuPosition, 7);

    QCOMPARE(data().m_menuAdditionalControlArea->count(), 1);
    QCOMPARE(data().m_menuAdditionalControlArea->itemAt(0)->widget(), label);
    QCOMPARE(label->parentWidget(), data().m_menuWidget);
    QCOMPARE(data().m_titleAdditionalControlArea->count(), 0);
}

void tst_FancyBarControls::widgetGoesNowhereWithoutAMenuRow()
{
    QLabel label;

    bar->addAdditionalControl(&label, FancyBar::MenuPosition, 7);

    QVERIFY(!label.parent());
    QCOMPARE(data().m_titleAdditionalControlArea->count(), 0);

    delete data().m_titleWidget;
    bar->addAdditionalControl(&label, FancyBar::TitlePosition, 7);
    QVERIFY(!label.parent());
}

void tst_FancyBarControls::missingControlsAreIgnored()
{
    bar->addAdditionalControl(static_cast<QWidget *>(nullptr), FancyBar::TitlePosition, 7);

    QVERIFY(!bar->addAdditionalControl(static_cast<QAction *>(nullptr), FancyBar::TitlePosition,
                                       7));
    QCOMPARE(data().m_titleAdditionalControlArea->count(), 0);
    QVERIFY(data().m_additionalButtons.isEmpty());
}

void tst_FancyBarControls::buttonShowsItsAction_data()
{
    QTest::addColumn<int>("position");

    QTest::newRow("title row") << int(FancyBar::TitlePosition);
    QTest::newRow("menu row") << int(FancyBar::MenuPosition);
}

void tst_FancyBarControls::buttonShowsItsAction()
{
    QFETCH(int, position);
    data().createMenuWidget();
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    action->setIcon(pixmap);
    action->setToolTip(QStringLiteral("Tip"));

    const FancyButton *button = bar->addAdditionalControl(
            action.data(), static_cast<FancyBar::AdditionalControlPosition>(position), 9);

    QCOMPARE(button->text(), QStringLiteral("Action"));
    QCOMPARE(button->toolTip(), QStringLiteral("Tip"));
    QCOMPARE(button->icon().cacheKey(), action->icon().cacheKey());
    QCOMPARE(button->defaultAction(), action.data());
    QCOMPARE(button->accessibleName(), QString());
    QCOMPARE(data().m_additionalButtons, QList<FancyButton *>({const_cast<FancyButton *>(button)}));
    const bool inTitle = position == FancyBar::TitlePosition;
    const QHBoxLayout *area =
            inTitle ? data().m_titleAdditionalControlArea : data().m_menuAdditionalControlArea;
    QCOMPARE(area->count(), inTitle ? 2 : 1);
    QCOMPARE(area->itemAt(area->count() - 1)->widget(), button);
    if (inTitle)
        QCOMPARE(area->itemAt(0)->spacerItem()->sizeHint().width(), 9);
    QCOMPARE(button->maximumHeight(), inTitle ? 25 : QWIDGETSIZE_MAX);
    QCOMPARE(button->minimumHeight(), inTitle ? 25 : 0);
}

void tst_FancyBarControls::unplacedButtonIsKept()
{
    const FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::MenuPosition, 9);

    QVERIFY(button);
    QVERIFY(!button->parent());
    QCOMPARE(data().m_additionalButtons.size(), 1);
    QCOMPARE(data().m_additionalButtons.first(), button);
}

void tst_FancyBarControls::buttonTriggersItsAction_data()
{
    addUses();
}

void tst_FancyBarControls::buttonTriggersItsAction()
{
    QFETCH(Use, use);
    action->setCheckable(true);
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    QVERIFY(typeid(*button) == typeid(FancyButton));
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy triggered(action.data(), &QAction::triggered);
    const QSignalSpy toggled(action.data(), &QAction::toggled);

    use(button);

    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first(), QVariantList {false});
    QCOMPARE(triggered.count(), 1);
    QCOMPARE(triggered.first(), QVariantList {false});
    QCOMPARE(toggled.count(), 0);
    QVERIFY(!action->isChecked() && !button->isChecked());
}

void tst_FancyBarControls::buttonKeepsItsActionWithoutAClick_data()
{
    QTest::addColumn<Qt::MouseButton>("mouseButton");
    QTest::addColumn<QPoint>("released");

    QTest::newRow("let go elsewhere") << Qt::LeftButton << QPoint(-10, 5);
    QTest::newRow("another mouse button") << Qt::RightButton << QPoint(5, 5);
}

void tst_FancyBarControls::buttonKeepsItsActionWithoutAClick()
{
    QFETCH(const Qt::MouseButton, mouseButton);
    QFETCH(const QPoint, released);
    action->setCheckable(true);
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    const QSignalSpy triggered(action.data(), &QAction::triggered);

    QTest::mousePress(button, mouseButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseRelease(button, mouseButton, Qt::NoModifier, released);

    QVERIFY(!action->isChecked());
    QVERIFY(!button->isChecked());
    QCOMPARE(triggered.count(), 0);
}

void tst_FancyBarControls::menuOpensAtTheButtonsCorner()
{
    action->setMenu(menu.data());
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 20);
    showInWindow();

    QTest::mousePress(button, Qt::LeftButton, Qt::NoModifier, QPoint(3, 4));

    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), button->mapToGlobal(QPoint(0, 25)));
    QCOMPARE(data().m_menuButton, button);
    menu->hide();

    QMouseEvent fractions(QEvent::MouseButtonPress, QPointF(2.6, 2.4), QPointF(2.6, 2.4),
                          QPointF(30.4, 40.5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(button, &fractions);
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), QPoint(27, 39 + 25));
    menu->hide();
}

void tst_FancyBarControls::openMenuKeepsItsButtonPressed()
{
    action->setMenu(menu.data());
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    button->setPressColor(Qt::blue);
    showInWindow();

    QTest::mousePress(button, Qt::LeftButton);
    QTRY_VERIFY(menu->isVisible());
    ButtonData::of(*button)->m_bMousePress = false;
    data().aboutToShowMenu();
    QVERIFY(isPressed(button));
    QCOMPARE(button->grab().toImage().pixel(1, 1), QColor(Qt::blue).rgb());

    ButtonData::of(*button)->m_bMouseHover = true;
    QTest::keyClick(menu.data(), Qt::Key_Escape);
    QTRY_VERIFY(!menu->isVisible());
    QVERIFY(!isPressed(button));
    QVERIFY(!ButtonData::of(*button)->m_bMouseHover);
}

void tst_FancyBarControls::eachPressConnectsAnew()
{
    class Counting : public FancyButton
    {
    public:
        using FancyButton::FancyButton;
        QVector<bool> selections;
        void select(bool on) override
        {
            selections << on;
            FancyButton::select(on);
        }
    };
    action->setMenu(menu.data());
    auto *button = new Counting(window.data());
    button->setDefaultAction(action.data());
    connect(button, &FancyButton::menuTriggered, &data(), &FancyBarPrivate::menuTriggered);
    showInWindow();

    QTest::mousePress(button, Qt::LeftButton);
    QTRY_VERIFY(menu->isVisible());
    menu->hide();
    QCOMPARE(button->selections, QVector<bool>({true, false}));

    QTest::mousePress(button, Qt::LeftButton);
    QTRY_VERIFY(menu->isVisible());
    menu->hide();
    QCOMPARE(button->selections, QVector<bool>({true, false, true, true, false, false}));
}

void tst_FancyBarControls::eachMenuPressesItsOwnButton()
{
    QMenu otherMenu;
    otherMenu.addAction(QStringLiteral("Other entry"));
    QAction otherAction(QStringLiteral("Other"));
    action->setMenu(menu.data());
    otherAction.setMenu(&otherMenu);
    FancyButton *first = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    FancyButton *second = bar->addAdditionalControl(&otherAction, FancyBar::TitlePosition, 0);
    showInWindow();

    QTest::mousePress(first, Qt::LeftButton);
    QTRY_VERIFY(menu->isVisible());
    menu->hide();
    QTest::mousePress(second, Qt::LeftButton);
    QTRY_VERIFY(otherMenu.isVisible());

    QCOMPARE(data().m_menuButton, second);
    QVERIFY(!isPressed(first));
    QVERIFY(isPressed(second));
    otherMenu.hide();
    QVERIFY(!isPressed(second));
}

void tst_FancyBarControls::menuStaysClosedForOtherSenders()
{
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    button->setHasMenu(true);
    QTest::mousePress(button, Qt::LeftButton);
    QVERIFY(!data().m_menuButton);

    action->setMenu(menu.data());
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    data().menuTriggered(&press);
    emit button->menuTriggered(nullptr);
    QVERIFY(!data().m_menuButton);
    QVERIFY(!menu->isVisible());

    FancyButton plain(nullptr);
    plain.setHasMenu(true);
    connect(&plain, &FancyButton::menuTriggered, &data(), &FancyBarPrivate::menuTriggered);
    QTest::mousePress(&plain, Qt::LeftButton);
    QVERIFY(!data().m_menuButton);
}

QTEST_MAIN(tst_FancyBarControls)
#include "tst_FancyBarControls.moc"
