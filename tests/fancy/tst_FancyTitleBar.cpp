#include "tests/fancy/privates.h"

#include <QAccessible>
#include <QAction>
#include <QFile>
#include <QFrame>
#include <QHBoxLayout>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

using ButtonField = FancyButton *FancyTitleBarPrivate::*;
using IconField = QIcon (FancyTitleBarPrivate::*)[2]; // NOLINT(modernize-avoid-c-arrays)
using IconSetter = void (FancyTitleBar::*)(QIcon &);
using FlagSetter = void (FancyTitleBar::*)(bool);
using FlagField = bool FancyTitleBarPrivate::*;
Q_DECLARE_METATYPE(ButtonField)
Q_DECLARE_METATYPE(IconField)
Q_DECLARE_METATYPE(IconSetter)
Q_DECLARE_METATYPE(FlagSetter)
Q_DECLARE_METATYPE(FlagField)

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

QIcon filled(Qt::GlobalColor color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return {pixmap};
}
} // namespace

class tst_FancyTitleBar : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void privatePartLoadsBothVariantsOfItsIcons_data();
    void privatePartLoadsBothVariantsOfItsIcons();
    void installsItselfOnItsWindow();
    void buildsItsButtons_data();
    void buildsItsButtons();
    void buildsItsGroup();
    void buildsItsMenu();
    void looksItsTextsUpInThePrivateContext();
    void isInertWithoutAWindow();
    void storesTheTitleWidget();
    void iconSettersSetTheButtonOnly_data();
    void iconSettersSetTheButtonOnly();
    void iconSettersTolerateMissingButtons();
    void normalIconIsStoredAndShown();
    void publicIconDarkOnlyStores();
    void privateIconDarkAppliesIcons_data();
    void privateIconDarkAppliesIcons();
    void privateIconDarkNeedsAllButtons_data();
    void privateIconDarkNeedsAllButtons();
    void flagSettersStoreOnly_data();
    void flagSettersStoreOnly();
    void buttonsCanBeFoundAndPressedByAssistiveTools();

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

void tst_FancyTitleBar::cleanup()
{
    window.reset();
}

void tst_FancyTitleBar::privatePartLoadsBothVariantsOfItsIcons_data()
{
    QTest::addColumn<IconField>("icons");
    QTest::addColumn<QString>("resource");

    QTest::newRow("close") << &FancyTitleBarPrivate::m_closeIcon << "close";
    QTest::newRow("minimize") << &FancyTitleBarPrivate::m_minimizeIcon << "minimize";
    QTest::newRow("maximize") << &FancyTitleBarPrivate::m_maximizeIcon << "maximize";
    QTest::newRow("normal") << &FancyTitleBarPrivate::m_normalIcon << "restore";
}

void tst_FancyTitleBar::privatePartLoadsBothVariantsOfItsIcons()
{
    QFETCH(IconField, icons);
    QFETCH(QString, resource);
    const FancyTitleBarPrivate d;
    QVERIFY(QFile::exists(QStringLiteral(":/client/resources/%1.svg").arg(resource)));
    QVERIFY(!resourceImage(resource).isNull());

    QCOMPARE(imageOf((d.*icons)[0]), resourceImage(resource));
    QCOMPARE(imageOf((d.*icons)[1]), resourceImage(resource));
    QVERIFY((d.*icons)[0].cacheKey() != (d.*icons)[1].cacheKey());
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
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<bool>("hidden");

    QTest::newRow("minimize") << &FancyTitleBarPrivate::m_minimizeButton << "minimize"
                              << "最小化" << CommandColor << true;
    QTest::newRow("maximize") << &FancyTitleBarPrivate::m_maximizeButton << "maximize"
                              << "最大化" << CommandColor << true;
    QTest::newRow("close") << &FancyTitleBarPrivate::m_closeButton << "close"
                           << "关闭" << QColor(255, 0, 0) << false;
}

void tst_FancyTitleBar::buildsItsButtons()
{
    QFETCH(ButtonField, field);
    QFETCH(QString, icon);
    QFETCH(QString, toolTip);
    QFETCH(QColor, color);
    QFETCH(bool, hidden);
    const FancyButton *button = data().*field;

    QCOMPARE(imageOf(button->icon()), resourceImage(icon));
    QCOMPARE(button->toolTip(), toolTip);
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

    const auto *row = qobject_cast<QHBoxLayout *>(group->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(row->spacing(), 0);
    QCOMPARE(row->count(), 4);
    const auto *separator = qobject_cast<QFrame *>(row->itemAt(0)->widget());
    QVERIFY(separator);
    QCOMPARE(separator->frameShape(), QFrame::VLine);
    QCOMPARE(separator->lineWidth(), 1);
    QCOMPARE(separator->styleSheet(), QStringLiteral("QFrame{color:rgb(214, 216, 221)}"));
    QCOMPARE(separator->minimumSize(), QSize(1, 20));
    QCOMPARE(separator->maximumSize(), QSize(1, 20));
    QCOMPARE(row->itemAt(1)->widget(), data().m_minimizeButton);
    QCOMPARE(row->itemAt(2)->widget(), data().m_maximizeButton);
    QCOMPARE(row->itemAt(3)->widget(), data().m_closeButton);
    for (int i = 0; i < row->count(); ++i) {
        QCOMPARE(row->stretch(i), 0);
        QCOMPARE(row->itemAt(i)->alignment(), Qt::Alignment());
        QCOMPARE(row->itemAt(i)->widget()->parentWidget(), group);
    }
}

void tst_FancyTitleBar::buildsItsMenu()
{
    const FancyTitleBarPrivate &d = data();
    QCOMPARE(d.m_menu->parentWidget(), window.data());

    const QList<QAction *> entries = d.m_menu->actions();
    QCOMPARE(entries.size(), 5);
    QCOMPARE(entries.at(0), d.m_restoreAction);
    QCOMPARE(entries.at(1), d.m_minimizeAction);
    QCOMPARE(entries.at(2), d.m_maximizeAction);
    QVERIFY(entries.at(3)->isSeparator());
    QCOMPARE(entries.at(4), d.m_closeAction);

    QStringList texts;
    for (const QAction *action :
         {d.m_restoreAction, d.m_minimizeAction, d.m_maximizeAction, d.m_closeAction}) {
        texts << action->text();
        QCOMPARE(action->parent(), &d);
    }
    QCOMPARE(texts, QStringList({"还原", "最小化", "最大化", "关闭"}));
    QCOMPARE(imageOf(d.m_restoreAction->icon()), resourceImage("restore"));
    QCOMPARE(imageOf(d.m_minimizeAction->icon()), resourceImage("minimize"));
    QCOMPARE(imageOf(d.m_maximizeAction->icon()), resourceImage("maximize"));
    QCOMPARE(imageOf(d.m_closeAction->icon()), resourceImage("close"));
    QCOMPARE(d.m_closeAction->shortcut(), QKeySequence("Alt+F4"));
    QVERIFY(d.m_restoreAction->shortcut().isEmpty());
}

void tst_FancyTitleBar::looksItsTextsUpInThePrivateContext()
{
    struct Echo : QTranslator
    {
        bool isEmpty() const override { return false; }
        QString translate(const char *context, const char *source, const char *, int) const override
        {
            return QStringLiteral("%1/%2").arg(QString::fromUtf8(context),
                                               QString::fromUtf8(source));
        }
    } echo;
    QVERIFY(QCoreApplication::installTranslator(&echo));
    QWidget other;
    const FancyTitleBar translated(&other);
    const FancyTitleBarPrivate &d = *TitleBarData::of(translated);

    QCOMPARE(d.m_closeButton->toolTip(), QStringLiteral("FancyTitleBarPrivate/关闭"));
    QCOMPARE(d.m_minimizeButton->toolTip(), QStringLiteral("FancyTitleBarPrivate/最小化"));
    QCOMPARE(d.m_maximizeButton->toolTip(), QStringLiteral("FancyTitleBarPrivate/最大化"));
    QCOMPARE(d.m_restoreAction->text(), QStringLiteral("FancyTitleBarPrivate/还原"));
    other.setWindowState(Qt::WindowMaximized);
    QCOMPARE(d.m_maximizeButton->toolTip(), QStringLiteral("FancyTitleBarPrivate/还原"));
    QCOMPARE(d.m_maximizeButton->accessibleName(), QStringLiteral("FancyTitleBarPrivate/还原"));
}

void tst_FancyTitleBar::isInertWithoutAWindow()
{
    FancyTitleBar inert(nullptr);
    const FancyTitleBarPrivate &d = *TitleBarData::of(inert);
    QIcon icon = filled(Qt::red);

    inert.setNormalIcon(icon);
    inert.setCloseIcon(icon);
    inert.updateWidgetFlags();
    TitleBarData::of(inert)->init();
    TitleBarData::of(inert)->maximize();
    TitleBarData::of(inert)->restore();
    TitleBarData::of(inert)->minmize();
    TitleBarData::of(inert)->updateWindowButtons();
    TitleBarData::of(inert)->windowStateChange(nullptr);
    TitleBarData::of(inert)->maximizeWidget(window.data());
    TitleBarData::of(inert)->restoreWidget(window.data());
    TitleBarData::of(inert)->setIconDark(true);

    QVERIFY(!d.q);
    QVERIFY(!inert.mainWidget());
    QVERIFY(!inert.systemGroup());
    QVERIFY(!d.m_closeButton);
    QVERIFY(!d.m_menu);
    QVERIFY(!d.m_bDarkIcon);
    QCOMPARE(imageOf(d.m_normalIcon[0]), resourceImage("restore"));
    QVERIFY(!window->isVisible());
}

void tst_FancyTitleBar::storesTheTitleWidget()
{
    QWidget strip;
    QVERIFY(!data().m_titleWidget);

    bar->setTitleWidget(&strip);
    QCOMPARE(data().m_titleWidget, &strip);

    bar->setTitleWidget(nullptr);
    QVERIFY(!data().m_titleWidget);
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
    QIcon icon = filled(Qt::red);
    const qint64 light = (data().*stored)[0].cacheKey();
    const qint64 dark = (data().*stored)[1].cacheKey();

    (bar->*set)(icon);

    QCOMPARE((data().*button)->icon().cacheKey(), icon.cacheKey());
    QCOMPARE((data().*stored)[0].cacheKey(), light);
    QCOMPARE((data().*stored)[1].cacheKey(), dark);
}

void tst_FancyTitleBar::iconSettersTolerateMissingButtons()
{
    QIcon icon = filled(Qt::red);
    delete bar->systemGroup();

    bar->setCloseIcon(icon);
    bar->setMinimizeIcon(icon);
    bar->setMaximizeIcon(icon);
    bar->setNormalIcon(icon);

    QCOMPARE(data().m_normalIcon[0].cacheKey(), icon.cacheKey());
}

void tst_FancyTitleBar::normalIconIsStoredAndShown()
{
    QIcon red = filled(Qt::red);
    bar->setNormalIcon(red);
    QCOMPARE(data().m_normalIcon[0].cacheKey(), red.cacheKey());
    QCOMPARE(imageOf(data().m_normalIcon[1]), resourceImage("restore"));
    QCOMPARE(data().m_maximizeButton->icon().cacheKey(), red.cacheKey());

    window->setWindowState(Qt::WindowMaximized);
    const qint64 shown = data().m_maximizeButton->icon().cacheKey();
    QIcon blue = filled(Qt::blue);
    bar->setNormalIcon(blue);
    QCOMPARE(data().m_normalIcon[0].cacheKey(), blue.cacheKey());
    QCOMPARE(data().m_maximizeButton->icon().cacheKey(), shown);
}

void tst_FancyTitleBar::publicIconDarkOnlyStores()
{
    FancyTitleBarPrivate &d = data();
    d.m_maximizeIcon[0] = filled(Qt::red);
    const qint64 shown = d.m_maximizeButton->icon().cacheKey();

    bar->setIconDark(false);
    QCOMPARE(d.m_bDarkIcon, false);
    QCOMPARE(d.m_maximizeButton->icon().cacheKey(), shown);

    QEvent change(QEvent::WindowStateChange);
    QCoreApplication::sendEvent(window.data(), &change);
    QCOMPARE(d.m_maximizeButton->icon().cacheKey(), d.m_maximizeIcon[0].cacheKey());

    bar->setIconDark(true);
    QCOMPARE(d.m_bDarkIcon, true);
}

void tst_FancyTitleBar::privateIconDarkAppliesIcons_data()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<bool>("maximized");

    QTest::newRow("light") << false << false;
    QTest::newRow("dark") << true << false;
    QTest::newRow("light, maximized") << false << true;
    QTest::newRow("dark, maximized") << true << true;
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

void tst_FancyTitleBar::privateIconDarkNeedsAllButtons_data()
{
    QTest::addColumn<ButtonField>("missing");

    QTest::newRow("minimize") << &FancyTitleBarPrivate::m_minimizeButton;
    QTest::newRow("maximize") << &FancyTitleBarPrivate::m_maximizeButton;
    QTest::newRow("close") << &FancyTitleBarPrivate::m_closeButton;
}

void tst_FancyTitleBar::privateIconDarkNeedsAllButtons()
{
    QFETCH(ButtonField, missing);
    delete (data().*missing);
    QVERIFY(!(data().*missing));

    data().setIconDark(false);

    QCOMPARE(data().m_bDarkIcon, true);
}

void tst_FancyTitleBar::flagSettersStoreOnly_data()
{
    QTest::addColumn<FlagSetter>("set");
    QTest::addColumn<FlagField>("field");
    QTest::addColumn<bool>("initial");

    QTest::newRow("resizable") << &FancyTitleBar::setWidgetResizable
                               << &FancyTitleBarPrivate::m_bWidgetResizable << false;
    QTest::newRow("movable") << &FancyTitleBar::setWidgetMovable
                             << &FancyTitleBarPrivate::m_bWidgetMovable << true;
    QTest::newRow("maximizable") << &FancyTitleBar::setWidgetMaximizable
                                 << &FancyTitleBarPrivate::m_bWidgetMaximizable << false;
}

void tst_FancyTitleBar::flagSettersStoreOnly()
{
    QFETCH(FlagSetter, set);
    QFETCH(FlagField, field);
    QFETCH(bool, initial);
    const QSignalSpy resizable(bar, &FancyTitleBar::windowResizable);
    const QSignalSpy movable(bar, &FancyTitleBar::windowMovable);
    QCOMPARE(data().*field, initial);

    (bar->*set)(!initial);
    QCOMPARE(data().*field, !initial);
    QCOMPARE(bar->resizable(), data().m_bWidgetResizable);
    (bar->*set)(initial);
    QCOMPARE(data().*field, initial);

    QCOMPARE(resizable.count(), 0);
    QCOMPARE(movable.count(), 0);
}

void tst_FancyTitleBar::buttonsCanBeFoundAndPressedByAssistiveTools()
{
    const auto nameOf = [](QWidget *widget) {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    };
    QCOMPARE(nameOf(data().m_minimizeButton), QStringLiteral("最小化"));
    QCOMPARE(nameOf(data().m_maximizeButton), QStringLiteral("最大化"));
    QCOMPARE(nameOf(data().m_closeButton), QStringLiteral("关闭"));

    window->setWindowState(Qt::WindowMaximized);
    QCOMPARE(nameOf(data().m_maximizeButton), QStringLiteral("还原"));
    window->setWindowState(Qt::WindowNoState);
    QCOMPARE(nameOf(data().m_maximizeButton), QStringLiteral("最大化"));
    data().m_closeButton->setToolTip(QStringLiteral("other"));
    QCOMPARE(nameOf(data().m_closeButton), QStringLiteral("other"));

    const QSignalSpy closeClicked(bar, &FancyTitleBar::closeClicked);
    QAccessibleActionInterface *actions =
            QAccessible::queryAccessibleInterface(data().m_closeButton)->actionInterface();
    actions->doAction(QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(closeClicked.count(), 1);
}

QTEST_MAIN(tst_FancyTitleBar)
#include "tst_FancyTitleBar.moc"
