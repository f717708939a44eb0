#include "shell/MultiProjectsTabStyle.h"
#include "tests/shell/StyledTabBar.h"

#include <QApplication>
#include <QFontMetrics>
#include <QStyleFactory>
#include <QStyleOptionTab>
#include <QTabBar>
#include <QTest>

namespace {

QString wide(int count)
{
    return {count, QChar(0x94B0)};
}

int textWidth(const QString &text)
{
    return QFontMetrics(QFont()).size(Qt::TextShowMnemonic, text).width();
}

} // namespace

//! What the style measures and what it switches.
class tst_MultiProjectsTabStyle : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void buildsOnTheApplicationsStyle();
    void asksForEachTab();
    void switchesHoveringBesideTheBase();
    void width_data();
    void width();
    void widthOfTheFirstOfEquals();
    void widthWithButtons();
    void widthWithoutTabs();
    void sizes();
};

// What the tables of widths count on.
void tst_MultiProjectsTabStyle::initTestCase()
{
    const int character = textWidth(wide(1));
    QCOMPARE(textWidth(wide(30)), 30 * character);
    QVERIFY(3 * character + HSpace < 75);
}

void tst_MultiProjectsTabStyle::buildsOnTheApplicationsStyle()
{
    const QString former = QApplication::style()->objectName();
    for (const QString &name : {QStringLiteral("windows"), QStringLiteral("fusion")}) {
        QApplication::setStyle(name);
        const MultiProjectsTabStyle style(nullptr);
        QCOMPARE(style.baseStyle()->metaObject()->className(),
                 QApplication::style()->metaObject()->className());
    }
    QApplication::setStyle(former);

    auto *base = QStyleFactory::create(QStringLiteral("windows"));
    const MultiProjectsTabStyle style(nullptr, base);
    QCOMPARE(style.baseStyle(), base);
}

void tst_MultiProjectsTabStyle::asksForEachTab()
{
    Bar bar;
    bar.addTab(QStringLiteral("first"), true);
    bar.addTab(wide(60));
    bar.bar->setCurrentIndex(1);
    bar.bar->setElideMode(Qt::ElideRight);
    bar.bar->resize(120, 32);
    bar.base->asked.clear();

    bar.style.adjustItemSize();

    const QVector<BaseStyle::Question> &asked = bar.base->asked;
    QCOMPARE(asked.size(), 4);
    for (int i = 0; i < 4; ++i) {
        const int tab = i / 2;
        const QStyleOptionTab &option = asked.at(i).option;
        QCOMPARE(asked.at(i).metric,
                 i % 2 == 0 ? QStyle::PM_TabBarTabHSpace : QStyle::PM_TabBarTabVSpace);
        QCOMPARE(asked.at(i).widget, bar.bar);
        QCOMPARE(option.text, bar.bar->tabText(tab));
        QCOMPARE(option.icon.isNull(), tab == 1);
        QCOMPARE(option.rect, bar.bar->tabRect(tab));
    }
}

void tst_MultiProjectsTabStyle::switchesHoveringBesideTheBase()
{
    Bar bar;
    QWidget other;
    for (const bool before : {false, true}) {
        bar.bar->setAttribute(Qt::WA_Hover, before);
        bar.style.polish(bar.bar);
        // A style sheet polishes a widget again.
        bar.style.polish(bar.bar);
        QVERIFY(bar.bar->testAttribute(Qt::WA_Hover));
        bar.style.unpolish(bar.bar);
        QCOMPARE(bar.bar->testAttribute(Qt::WA_Hover), before);
    }
    QVERIFY(bar.bar->dynamicPropertyNames().isEmpty());

    other.setAttribute(Qt::WA_Hover);
    bar.style.unpolish(&other);
    QVERIFY(other.testAttribute(Qt::WA_Hover));
    other.setAttribute(Qt::WA_Hover, false);
    bar.style.polish(&other);
    QVERIFY(!other.testAttribute(Qt::WA_Hover));

    QWidget *const tabBar = bar.bar;
    QCOMPARE(bar.base->polished, QVector<QWidget *>({tabBar, tabBar, tabBar, tabBar, &other}));
    QCOMPARE(bar.base->unpolished, QVector<QWidget *>({tabBar, tabBar, &other}));
}

void tst_MultiProjectsTabStyle::width_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<bool>("haveIcons");
    QTest::addColumn<int>("parentWidth");
    QTest::addColumn<int>("expected");

    const int character = textWidth(wide(1));
    const int three = 3 * character + HSpace;
    const int twenty = 20 * character + HSpace;
    const int thirty = 30 * character + HSpace;
    const int icon = 20 + 4;
    const bool plain = false;
    const bool withIcons = true;
    // More than the widest tabs need.
    const int ample = 5000;
    const QStringList pair = {wide(1), wide(1)};
    const QStringList longOnes = {wide(31), wide(31), wide(31)};

    QTest::newRow("no text") << QStringList(QString()) << plain << ample << 80;
    QTest::newRow("short") << pair << plain << ample << 80;
    QTest::newRow("widest") << QStringList {wide(3), wide(20), wide(9)} << plain << ample << twenty;
    QTest::newRow("with icons") << QStringList(wide(20)) << withIcons << ample << twenty + icon;
    QTest::newRow("mnemonic") << QStringList(QLatin1Char('&') + wide(20)) << plain << ample
                              << twenty;
    QTest::newRow("thirty") << QStringList(wide(30)) << plain << ample << thirty;
    QTest::newRow("thirty-one") << QStringList(wide(31)) << plain << ample << thirty;
    QTest::newRow("thirty-one, icon")
            << QStringList(wide(31)) << withIcons << ample << thirty + icon;
    QTest::newRow("even share, cut off") << longOnes << plain << 500 << 166;
    QTest::newRow("share below 80") << pair << plain << 151 << 75;
    QTest::newRow("share of 80") << pair << plain << 161 << 80;
    QTest::newRow("no less than three") << longOnes << plain << 100 << three;
    QTest::newRow("no less than three, icon") << longOnes << withIcons << 100 << three + icon;
    QTest::newRow("parent without width") << pair << plain << 0 << three;
}

void tst_MultiProjectsTabStyle::width()
{
    QFETCH(const QStringList, texts);
    QFETCH(const bool, haveIcons);
    QFETCH(const int, parentWidth);
    Bar bar;
    bar.parent.resize(parentWidth, 32);
    bar.bar->setIconSize(QSize(20, 16));
    for (const QString &text : texts)
        bar.addTab(text, haveIcons);
    QTEST(bar.style.adjustItemSize(), "expected");
}

void tst_MultiProjectsTabStyle::widthOfTheFirstOfEquals()
{
    // Both tabs are equally wide, but only the first's text sets the limit of three characters.
    const QString text = wide(2);
    const int character = textWidth(wide(1));
    for (const bool isIconFirst : {true, false}) {
        Bar bar;
        bar.bar->setIconSize(QSize(2 * character - 4, 16));
        bar.parent.resize(10, 32);
        bar.addTab(isIconFirst ? QString() : text, isIconFirst);
        bar.addTab(isIconFirst ? text : QString(), !isIconFirst);
        QCOMPARE(bar.style.adjustItemSize(), (isIconFirst ? 5 : 3) * character + HSpace);
    }
}

void tst_MultiProjectsTabStyle::widthWithButtons()
{
    const auto button = [](const QSize &size) {
        auto *widget = new QWidget;
        widget->resize(size);
        return widget;
    };
    Bar bar;
    bar.parent.resize(5000, 32);
    bar.addTab(wide(10));
    const int plain = bar.style.adjustItemSize();
    bar.bar->setTabButton(0, QTabBar::LeftSide, button({11, 9}));
    QCOMPARE(bar.style.adjustItemSize(), plain + 15);
    bar.bar->setTabButton(0, QTabBar::RightSide, button({17, 5}));
    QCOMPARE(bar.style.adjustItemSize(), plain + 15 + 21);
    bar.bar->setTabButton(0, QTabBar::LeftSide, button({11, 0}));
    QCOMPARE(bar.style.adjustItemSize(), plain + 21);
    bar.bar->setTabButton(0, QTabBar::RightSide, button({0, 5}));
    QCOMPARE(bar.style.adjustItemSize(), plain);
}

void tst_MultiProjectsTabStyle::widthWithoutTabs()
{
    Bar bar;
    QCOMPARE(bar.style.adjustItemSize(), -1);
    MultiProjectsTabStyle without(nullptr);
    QCOMPARE(without.adjustItemSize(), -1);

    // A tab bar that is a window has nothing to share with others.
    QTabBar alone;
    MultiProjectsTabStyle style(&alone, new BaseStyle);
    alone.addTab(wide(20));
    QCOMPARE(style.adjustItemSize(), textWidth(wide(20)) + HSpace);
}

void tst_MultiProjectsTabStyle::sizes()
{
    Bar bar;
    const QStyleOptionTab option;
    QCOMPARE(bar.style.sizeFromContents(QStyle::CT_TabBarTab, &option, QSize(77, 5)),
             QSize(77, 32));
    bar.parent.resize(400, 32);
    bar.addTab(wide(1));
    QCOMPARE(bar.style.sizeFromContents(QStyle::CT_TabBarTab, &option, QSize(77, 5)),
             QSize(80, 32));
    QCOMPARE(bar.style.sizeFromContents(QStyle::CT_PushButton, &option, QSize(77, 5)),
             QSize(77 + QStyle::CT_PushButton, 1005));
}

QTEST_MAIN(tst_MultiProjectsTabStyle)
#include "tst_MultiProjectsTabStyle.moc"
