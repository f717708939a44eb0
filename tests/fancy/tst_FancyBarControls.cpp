#include "tests/fancy/privates.h"
#include "tests/support/pixels.h"
#include "tests/support/waits.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <typeinfo>

class tst_FancyBarControls : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void controlsGoIntoTheTitleRow();
    void controlsGoIntoTheMenuRow();
    void missingControlsAndRowsAreIgnored();
    void buttonShowsItsAction();
    void buttonTriggersItsAction();
    void eachPressConnectsAnew();
    void eachMenuOpensBelowItsOwnButton();
    void menuStaysClosedForOtherSenders();

private:
    bool showInWindow();
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

//! Shows the bar in its window; whether that is active then.
bool tst_FancyBarControls::showInWindow()
{
    auto *layout = new QVBoxLayout(window.data());
    layout->addWidget(bar);
    layout->addStretch();
    window->resize(400, 200);
    window->move(60, 50);
    window->show();
    return QTest::qWaitForWindowActive(window.data(), WindowTimeoutMs);
}

void tst_FancyBarControls::controlsGoIntoTheTitleRow()
{
    auto *first = new QLabel;
    auto *second = new QLabel;
    bar->addAdditionalControl(first, FancyBar::TitlePosition, 7);
    bar->addAdditionalControl(second, FancyBar::TitlePosition, 0);
    const FancyButton *third = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 9);

    const QHBoxLayout *area = data().m_titleAdditionalControlArea;
    QCOMPARE(area->count(), 6);
    QCOMPARE(area->itemAt(0)->spacerItem()->sizeHint().width(), 7);
    QCOMPARE(area->itemAt(1)->widget(), first);
    QCOMPARE(area->itemAt(2)->spacerItem()->sizeHint().width(), 0);
    QCOMPARE(area->itemAt(3)->widget(), second);
    QCOMPARE(area->itemAt(4)->spacerItem()->sizeHint().width(), 9);
    QCOMPARE(area->itemAt(5)->widget(), third);
    QCOMPARE(area->stretch(1), 0);
    QCOMPARE(first->parentWidget(), data().m_titleWidget);
    QCOMPARE(third->minimumHeight(), 25);
    QCOMPARE(third->maximumHeight(), 25);
}

void tst_FancyBarControls::controlsGoIntoTheMenuRow()
{
    data().createMenuWidget();
    auto *first = new QLabel;
    bar->addAdditionalControl(first, FancyBar::MenuPosition, 7);
    const FancyButton *second = bar->addAdditionalControl(action.data(), FancyBar::MenuPosition, 9);

    const QHBoxLayout *area = data().m_menuAdditionalControlArea;
    QCOMPARE(area->count(), 2);
    QCOMPARE(area->itemAt(0)->widget(), first);
    QCOMPARE(area->itemAt(1)->widget(), second);
    QCOMPARE(area->stretch(0), 0);
    QCOMPARE(first->parentWidget(), data().m_menuWidget);
    QCOMPARE(second->minimumHeight(), 0);
    QCOMPARE(second->maximumHeight(), QWIDGETSIZE_MAX);
    QCOMPARE(data().m_titleAdditionalControlArea->count(), 0);
}

void tst_FancyBarControls::missingControlsAndRowsAreIgnored()
{
    QWidget *noWidget = nullptr;
    QAction *noAction = nullptr;
    bar->addAdditionalControl(noWidget, FancyBar::TitlePosition, 7);
    QVERIFY(!bar->addAdditionalControl(noAction, FancyBar::TitlePosition, 7));
    QVERIFY(data().m_additionalButtons.isEmpty());

    QLabel label;
    bar->addAdditionalControl(&label, FancyBar::MenuPosition, 7);
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::MenuPosition, 9);
    QVERIFY(!label.parent());
    QVERIFY(!button->parent());
    QCOMPARE(data().m_additionalButtons, QList<FancyButton *>({button}));
    QCOMPARE(data().m_titleAdditionalControlArea->count(), 0);

    delete data().m_titleWidget;
    bar->addAdditionalControl(&label, FancyBar::TitlePosition, 7);
    QVERIFY(!label.parent());
}

void tst_FancyBarControls::buttonShowsItsAction()
{
    action->setIcon(filledPixmap(Qt::red, 16));
    action->setToolTip(QStringLiteral("Tip"));

    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 9);

    QCOMPARE(button->text(), QStringLiteral("Action"));
    QCOMPARE(button->toolTip(), QStringLiteral("Tip"));
    QCOMPARE(button->icon().cacheKey(), action->icon().cacheKey());
    QCOMPARE(button->defaultAction(), action.data());
    QCOMPARE(button->accessibleName(), QString());
    QCOMPARE(data().m_additionalButtons, QList<FancyButton *>({button}));
}

void tst_FancyBarControls::buttonTriggersItsAction()
{
    action->setCheckable(true);
    FancyButton *button = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    QVERIFY(typeid(*button) == typeid(FancyButton));
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy triggered(action.data(), &QAction::triggered);
    const QSignalSpy toggled(action.data(), &QAction::toggled);

    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(triggered.count(), 1);
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(triggered.count(), 2);
    button->click();
    QCOMPARE(triggered.count(), 3);

    QCOMPARE(clicked.count(), 3);
    for (const QVariantList &arguments : triggered)
        QCOMPARE(arguments, QVariantList {false});
    QCOMPARE(toggled.count(), 0);
    QVERIFY(!action->isChecked());
    QVERIFY(!button->isChecked());
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
    QVERIFY(showInWindow());

    QTest::mousePress(button, Qt::LeftButton);
    QTRY_VERIFY(menu->isVisible());
    menu->hide();
    QCOMPARE(button->selections, QVector<bool>({true, false}));

    QTest::mousePress(button, Qt::LeftButton);
    QTRY_VERIFY(menu->isVisible());
    menu->hide();
    QCOMPARE(button->selections, QVector<bool>({true, false, true, true, false, false}));
}

void tst_FancyBarControls::eachMenuOpensBelowItsOwnButton()
{
    QMenu otherMenu;
    otherMenu.addAction(QStringLiteral("Other entry"));
    QAction otherAction(QStringLiteral("Other"));
    action->setMenu(menu.data());
    otherAction.setMenu(&otherMenu);
    FancyButton *first = bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 20);
    FancyButton *second = bar->addAdditionalControl(&otherAction, FancyBar::TitlePosition, 0);
    QVERIFY(showInWindow());

    QTest::mousePress(first, Qt::LeftButton, Qt::NoModifier, QPoint(3, 4));
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), first->mapToGlobal(QPoint(0, 25)));
    QCOMPARE(data().m_menuButton, first);
    menu->hide();
    QTest::mousePress(second, Qt::LeftButton);
    QTRY_VERIFY(otherMenu.isVisible());
    QCOMPARE(otherMenu.pos(), second->mapToGlobal(QPoint(0, 25)));

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
