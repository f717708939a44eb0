#include "tests/fancy/privates.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/pixels.h"

#include <QAction>
#include <QFrame>
#include <QLayout>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

using ButtonField = FancyButton *FancyTitleBarPrivate::*;
using IconField = QIcon (FancyTitleBarPrivate::*)[2]; // NOLINT(modernize-avoid-c-arrays)
using IconSetter = void (FancyTitleBar::*)(QIcon &);
Q_DECLARE_METATYPE(ButtonField)
Q_DECLARE_METATYPE(IconField)
Q_DECLARE_METATYPE(IconSetter)

namespace {
const QColor CommandColor(215, 226, 243);

QImage imageOf(const QIcon &icon)
{
    return icon.pixmap(16, 16).toImage();
}

QImage resourceImage(const QString &name)
{
    return imageOf(QIcon(QStringLiteral(":/client/resources/%1.svg").arg(name)));
}
} // namespace

class tst_FancyTitleBar : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void privatePartLoadsBothVariantsOfItsIcons();
    void installsItselfOnItsWindow();
    void buildsItsButtons_data();
    void buildsItsButtons();
    void buildsItsGroup();
    void buildsItsMenu();
    void looksItsTextsUpInThePrivateContext();
    void toolTipsAreAccessibleNames();
    void isInertWithoutAWindow();
    void iconSettersSetTheButtonOnly_data();
    void iconSettersSetTheButtonOnly();
    void normalIconIsStoredAndShown();
    void privateIconDarkAppliesIcons_data();
    void privateIconDarkAppliesIcons();
    void operationsNeedTheirButtons_data();
    void operationsNeedTheirButtons();
    void flagSettersStoreOnly();

private:
    FancyTitleBarPrivate &data() const { return *TitleBarData::of(*bar); }

    QScopedPointer<QWidget> window;
    FancyTitleBar *bar = nullptr;
};

void tst_FancyTitleBar::init()
{
    window.reset(new QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint));
    bar = new FancyTitleBar(window.data());
}

void tst_FancyTitleBar::privatePartLoadsBothVariantsOfItsIcons()
{
    const FancyTitleBarPrivate d;
    for (const int variant : {0, 1}) {
        QCOMPARE(imageOf(d.m_closeIcon[variant]), resourceImage("close"));
        QCOMPARE(imageOf(d.m_minimizeIcon[variant]), resourceImage("minimize"));
        QCOMPARE(imageOf(d.m_maximizeIcon[variant]), resourceImage("maximize"));
        QCOMPARE(imageOf(d.m_normalIcon[variant]), resourceImage("restore"));
    }
    QVERIFY(!imageOf(d.m_normalIcon[0]).isNull());
    // Tests tell the variants apart by these keys.
    QVERIFY(d.m_closeIcon[0].cacheKey() != d.m_closeIcon[1].cacheKey());
}

void tst_FancyTitleBar::installsItselfOnItsWindow()
{
    QCOMPARE(bar->parent(), window.data());
    QCOMPARE(bar->mainWidget(), window.data());
    QCOMPARE(data().q, bar);
    QCOMPARE(data().parent(), nullptr);
    QCOMPARE(data().m_mainWidget, window.data());
    QCOMPARE(data().m_windowFlags, window->windowFlags());
    QVERIFY(window->testAttribute(Qt::WA_MouseTracking));
    QVERIFY(window->testAttribute(Qt::WA_Hover));
    QCOMPARE(data().m_bDarkIcon, true);
    QCOMPARE(bar->resizable(), false);

    data().installWidget(nullptr);
    QCOMPARE(bar->mainWidget(), window.data());
}

void tst_FancyTitleBar::buildsItsButtons_data()
{
    QTest::addColumn<ButtonField>("field");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<bool>("hidden");

    QTest::newRow("minimize") << &FancyTitleBarPrivate::m_minimizeButton << "minimize"
                              << CommandColor << /*hidden*/ true;
    QTest::newRow("maximize") << &FancyTitleBarPrivate::m_maximizeButton << "maximize"
                              << CommandColor << /*hidden*/ true;
    QTest::newRow("close") << &FancyTitleBarPrivate::m_closeButton << "close" << QColor(255, 0, 0)
                           << /*hidden*/ false;
}

void tst_FancyTitleBar::buildsItsButtons()
{
    QFETCH(ButtonField, field);
    QFETCH(QString, icon);
    QFETCH(QColor, color);
    QFETCH(bool, hidden);
    const FancyButton *button = data().*field;

    QCOMPARE(imageOf(button->icon()), resourceImage(icon));
    QCOMPARE(button->text(), QString());
    QCOMPARE(button->hoverColor(), color);
    QCOMPARE(button->pressColor(), color);
    QCOMPARE(button->minimumSize(), QSize(50, 32));
    QCOMPARE(button->maximumSize(), QSize(50, 32));
    QVERIFY(button->styleSheet().endsWith(QStringLiteral("color: #ffffffff;border:none;}")));
    QCOMPARE(button->isHidden(), hidden);
    QVERIFY(button->children().isEmpty());
}

void tst_FancyTitleBar::buildsItsGroup()
{
    const QWidget *group = bar->systemGroup();
    QCOMPARE(group, data().m_systemGroup);
    QCOMPARE(group->parentWidget(), window.data());
    QCOMPARE(group->metaObject()->className(), "QWidget");
    data().m_minimizeButton->setObjectName(QStringLiteral("minimize"));
    data().m_maximizeButton->setObjectName(QStringLiteral("maximize"));
    data().m_closeButton->setObjectName(QStringLiteral("close"));
    QCOMPARE(dumpLayout(*group), QStringLiteral("QHBoxLayout  spacing 0 margins 0,0,0,0\n"
                                                "  QFrame \n"
                                                "  FancyButton minimize\n"
                                                "  FancyButton maximize\n"
                                                "  FancyButton close\n"));

    const auto *separator = qobject_cast<QFrame *>(group->layout()->itemAt(0)->widget());
    QCOMPARE(separator->frameShape(), QFrame::VLine);
    QCOMPARE(separator->lineWidth(), 1);
    QCOMPARE(separator->styleSheet(), QStringLiteral("QFrame{color:rgb(214, 216, 221)}"));
    QCOMPARE(separator->minimumSize(), QSize(1, 20));
    QCOMPARE(separator->maximumSize(), QSize(1, 20));
}

void tst_FancyTitleBar::buildsItsMenu()
{
    const FancyTitleBarPrivate &d = data();
    QCOMPARE(d.m_menu->parentWidget(), window.data());
    const QList<QAction *> entries = d.m_menu->actions();
    QCOMPARE(entries.size(), 5);
    QVERIFY(entries.at(3)->isSeparator());
    QCOMPARE(entries, QList<QAction *>({d.m_restoreAction, d.m_minimizeAction, d.m_maximizeAction,
                                        entries.at(3), d.m_closeAction}));

    for (const QAction *action :
         {d.m_restoreAction, d.m_minimizeAction, d.m_maximizeAction, d.m_closeAction})
        QCOMPARE(action->parent(), &d);
    QCOMPARE(imageOf(d.m_restoreAction->icon()), resourceImage("restore"));
    QCOMPARE(imageOf(d.m_minimizeAction->icon()), resourceImage("minimize"));
    QCOMPARE(imageOf(d.m_maximizeAction->icon()), resourceImage("maximize"));
    QCOMPARE(imageOf(d.m_closeAction->icon()), resourceImage("close"));
    QCOMPARE(d.m_closeAction->shortcut(), QKeySequence("Alt+F4"));
    QVERIFY(d.m_restoreAction->shortcut().isEmpty());
}

void tst_FancyTitleBar::looksItsTextsUpInThePrivateContext()
{
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    init();
    const FancyTitleBarPrivate &d = data();
    const QString minimize = QStringLiteral("FancyTitleBarPrivate|最小化|");
    const QString maximize = QStringLiteral("FancyTitleBarPrivate|最大化|");
    const QString restore = QStringLiteral("FancyTitleBarPrivate|还原|");
    const QString close = QStringLiteral("FancyTitleBarPrivate|关闭|");

    QCOMPARE(d.m_minimizeButton->toolTip(), minimize);
    QCOMPARE(d.m_maximizeButton->toolTip(), maximize);
    QCOMPARE(d.m_closeButton->toolTip(), close);
    QCOMPARE(d.m_restoreAction->text(), restore);
    QCOMPARE(d.m_minimizeAction->text(), minimize);
    QCOMPARE(d.m_maximizeAction->text(), maximize);
    QCOMPARE(d.m_closeAction->text(), close);
    window->setWindowState(Qt::WindowMaximized);
    QCOMPARE(d.m_maximizeButton->toolTip(), restore);
    window->setWindowState(Qt::WindowNoState);
    QCOMPARE(d.m_maximizeButton->toolTip(), maximize);
}

// Assistive tools know the buttons by these names.
void tst_FancyTitleBar::toolTipsAreAccessibleNames()
{
    QCOMPARE(data().m_minimizeButton->accessibleName(), QStringLiteral("最小化"));
    QCOMPARE(data().m_maximizeButton->accessibleName(), QStringLiteral("最大化"));
    QCOMPARE(data().m_closeButton->accessibleName(), QStringLiteral("关闭"));

    window->setWindowState(Qt::WindowMaximized);
    QCOMPARE(data().m_maximizeButton->accessibleName(), QStringLiteral("还原"));
    data().m_closeButton->setToolTip(QStringLiteral("other"));
    QCOMPARE(data().m_closeButton->accessibleName(), QStringLiteral("other"));
}

void tst_FancyTitleBar::isInertWithoutAWindow()
{
    FancyTitleBar inert(nullptr);
    FancyTitleBarPrivate &d = *TitleBarData::of(inert);
    QIcon icon(filledPixmap(Qt::red, 16));

    inert.setNormalIcon(icon);
    inert.setCloseIcon(icon);
    inert.updateWidgetFlags();
    d.init();
    d.maximize();
    d.restore();
    d.minmize();
    d.updateWindowButtons();
    d.windowStateChange(nullptr);
    d.maximizeWidget(window.data());
    d.restoreWidget(window.data());
    d.setIconDark(true);

    QVERIFY(!d.q);
    QVERIFY(!d.m_closeButton);
    QVERIFY(!d.m_menu);
    QVERIFY(!d.m_bDarkIcon);
    QVERIFY(!inert.mainWidget());
    QVERIFY(!inert.systemGroup());
    QCOMPARE(imageOf(d.m_normalIcon[0]), resourceImage("restore"));
    QVERIFY(!window->isVisible());
}

void tst_FancyTitleBar::iconSettersSetTheButtonOnly_data()
{
    QTest::addColumn<IconSetter>("set");
    QTest::addColumn<ButtonField>("button");
    QTest::addColumn<IconField>("stored");

    QTest::newRow("close") << &FancyTitleBar::setCloseIcon << &FancyTitleBarPrivate::m_closeButton
                           << &FancyTitleBarPrivate::m_closeIcon;
    QTest::newRow("minimize") << &FancyTitleBar::setMinimizeIcon
                              << &FancyTitleBarPrivate::m_minimizeButton
                              << &FancyTitleBarPrivate::m_minimizeIcon;
    QTest::newRow("maximize") << &FancyTitleBar::setMaximizeIcon
                              << &FancyTitleBarPrivate::m_maximizeButton
                              << &FancyTitleBarPrivate::m_maximizeIcon;
}

void tst_FancyTitleBar::iconSettersSetTheButtonOnly()
{
    QFETCH(IconSetter, set);
    QFETCH(ButtonField, button);
    QFETCH(IconField, stored);
    QIcon icon(filledPixmap(Qt::red, 16));
    const qint64 light = (data().*stored)[0].cacheKey();
    const qint64 dark = (data().*stored)[1].cacheKey();

    (bar->*set)(icon);

    QCOMPARE((data().*button)->icon().cacheKey(), icon.cacheKey());
    QCOMPARE((data().*stored)[0].cacheKey(), light);
    QCOMPARE((data().*stored)[1].cacheKey(), dark);

    delete (data().*button);
    (bar->*set)(icon);
    QVERIFY(!(data().*button));
}

void tst_FancyTitleBar::normalIconIsStoredAndShown()
{
    QIcon red(filledPixmap(Qt::red, 16));
    bar->setNormalIcon(red);
    QCOMPARE(data().m_normalIcon[0].cacheKey(), red.cacheKey());
    QCOMPARE(imageOf(data().m_normalIcon[1]), resourceImage("restore"));
    QCOMPARE(data().m_maximizeButton->icon().cacheKey(), red.cacheKey());

    window->setWindowState(Qt::WindowMaximized);
    const qint64 shown = data().m_maximizeButton->icon().cacheKey();
    QIcon blue(filledPixmap(Qt::blue, 16));
    bar->setNormalIcon(blue);
    QCOMPARE(data().m_normalIcon[0].cacheKey(), blue.cacheKey());
    QCOMPARE(data().m_maximizeButton->icon().cacheKey(), shown);

    window->setWindowState(Qt::WindowNoState);
    delete data().m_maximizeButton;
    bar->setNormalIcon(red);
    QCOMPARE(data().m_normalIcon[0].cacheKey(), red.cacheKey());
}

void tst_FancyTitleBar::privateIconDarkAppliesIcons_data()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<bool>("maximized");

    QTest::newRow("light") << /*dark*/ false << /*maximized*/ false;
    QTest::newRow("dark") << /*dark*/ true << /*maximized*/ false;
    QTest::newRow("light, maximized") << /*dark*/ false << /*maximized*/ true;
    QTest::newRow("dark, maximized") << /*dark*/ true << /*maximized*/ true;
}

void tst_FancyTitleBar::privateIconDarkAppliesIcons()
{
    QFETCH(bool, dark);
    QFETCH(bool, maximized);
    FancyTitleBarPrivate &d = data();
    d.m_bDarkIcon = !dark;
    if (maximized)
        window->setWindowState(Qt::WindowMaximized);

    d.setIconDark(dark);

    QCOMPARE(d.m_bDarkIcon, dark);
    QCOMPARE(d.m_minimizeButton->icon().cacheKey(), d.m_minimizeIcon[dark].cacheKey());
    QCOMPARE(d.m_closeButton->icon().cacheKey(), d.m_closeIcon[dark].cacheKey());
    QCOMPARE(d.m_maximizeButton->icon().cacheKey(),
             (maximized ? d.m_normalIcon : d.m_maximizeIcon)[dark].cacheKey());
}

void tst_FancyTitleBar::operationsNeedTheirButtons_data()
{
    QTest::addColumn<ButtonField>("missing");
    QTest::addColumn<bool>("readsFlags");
    QTest::addColumn<bool>("followsState");

    QTest::newRow("minimize") << &FancyTitleBarPrivate::m_minimizeButton << /*readsFlags*/ false
                              << /*followsState*/ true;
    QTest::newRow("maximize") << &FancyTitleBarPrivate::m_maximizeButton << /*readsFlags*/ false
                              << /*followsState*/ false;
    QTest::newRow("close") << &FancyTitleBarPrivate::m_closeButton << /*readsFlags*/ true
                           << /*followsState*/ true;
}

void tst_FancyTitleBar::operationsNeedTheirButtons()
{
    QFETCH(ButtonField, missing);
    QFETCH(bool, readsFlags);
    QFETCH(bool, followsState);
    delete (data().*missing);
    QVERIFY(!(data().*missing));
    window->setWindowFlags(Qt::Window | Qt::WindowMaximizeButtonHint);

    data().setIconDark(false);
    QCOMPARE(data().m_bDarkIcon, true);
    bar->updateWidgetFlags();
    QCOMPARE(data().m_bWidgetMaximizable, readsFlags);
    window->setWindowState(Qt::WindowMaximized);
    QCOMPARE(data().m_maximizeAction->isEnabled(), !followsState);
}

void tst_FancyTitleBar::flagSettersStoreOnly()
{
    using Flags = QVector<bool>;
    const FancyTitleBarPrivate &d = data();
    const auto flags = [&d] {
        return Flags({d.m_bWidgetResizable, d.m_bWidgetMovable, d.m_bWidgetMaximizable});
    };
    const QSignalSpy resizable(bar, &FancyTitleBar::windowResizable);
    const QSignalSpy movable(bar, &FancyTitleBar::windowMovable);

    bar->setWidgetResizable(true);
    QCOMPARE(flags(), Flags({true, true, false}));
    QVERIFY(bar->resizable());
    bar->setWidgetMovable(false);
    QCOMPARE(flags(), Flags({true, false, false}));
    bar->setWidgetMaximizable(true);
    QCOMPARE(flags(), Flags({true, false, true}));
    bar->setWidgetResizable(false);
    QCOMPARE(flags(), Flags({false, false, true}));
    QVERIFY(!bar->resizable());

    QCOMPARE(resizable.count(), 0);
    QCOMPARE(movable.count(), 0);
}

QTEST_MAIN(tst_FancyTitleBar)
#include "tst_FancyTitleBar.moc"
