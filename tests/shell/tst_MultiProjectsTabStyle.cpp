#include "shell/MultiProjectsTabStyle.h"
#include "tests/support/PrivateMember.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QStyleFactory>
#include <QStyleOptionTab>
#include <QTabBar>
#include <QTest>

struct IsActived : PrivateMember<IsActived, bool, MultiProjectsTabStyle>
{
};
template struct ExposePrivateMember<IsActived, &MultiProjectsTabStyle::_bIsActived>;

namespace {

constexpr QRgb White = 0xffffffff;
constexpr QRgb Hover = 0xfff6f7f9;
constexpr QRgb Plain = 0xffd7d7de;
constexpr QRgb Blue = 0xff006ab1;
constexpr QRgb Black = 0xff000000;
//! What images are filled with before something is drawn.
constexpr QRgb Background = 0xff00ff00;

constexpr int HSpace = 30;
constexpr QRect TextRect(42, 3, 77, 28);
constexpr QRect TabRect(10, 3, 120, 28);

//! A base style with measures that tests can count on, and that records what it is asked for.
class BaseStyle : public QProxyStyle
{
public:
    BaseStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option))
            asked.append({metric, *tab, widget});
        return metric == PM_TabBarTabHSpace ? HSpace
                                            : QProxyStyle::pixelMetric(metric, option, widget);
    }
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override
    {
        return element == SE_TabBarTabText ? TextRect
                                           : QProxyStyle::subElementRect(element, option, widget);
    }
    QSize sizeFromContents(ContentsType type, const QStyleOption * /*option*/, const QSize &size,
                           const QWidget * /*widget*/) const override
    {
        return size + QSize(int(type), 1000);
    }
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QWidget *widget) override { polished.append(widget); }
    void unpolish(QWidget *widget) override { unpolished.append(widget); }
    void drawControl(ControlElement element, const QStyleOption * /*option*/,
                     QPainter * /*painter*/, const QWidget * /*widget*/) const override
    {
        drawn.append(element);
    }

    struct Question
    {
        PixelMetric metric;
        QStyleOptionTab option;
        const QWidget *widget;
    };

    QVector<QWidget *> polished;
    QVector<QWidget *> unpolished;
    mutable QVector<ControlElement> drawn;
    //! The metrics of tabs.
    mutable QVector<Question> asked;
};

//! A tab bar of its own in a parent, and the style that measures it.
struct Bar
{
    QWidget parent;
    QTabBar *bar = new QTabBar(&parent);
    BaseStyle *base = new BaseStyle;
    MultiProjectsTabStyle style {bar, base};

    void addTab(const QString &text, bool hasIcon = false)
    {
        QPixmap pixmap(16, 16);
        pixmap.fill(Qt::red);
        bar->addTab(hasIcon ? QIcon(pixmap) : QIcon(), text);
    }
};

QString wide(int count)
{
    return {count, QChar(0x94B0)};
}

int textWidth(const QString &text)
{
    return QFontMetrics(QFont()).size(Qt::TextShowMnemonic, text).width();
}

//! An icon that is red when normal and off, and blue in each other mode and state.
QIcon tellTaleIcon(const QSize &size)
{
    QPixmap right(size);
    right.fill(Qt::red);
    QPixmap wrong(size);
    wrong.fill(Qt::blue);
    QIcon result;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected})
        for (const QIcon::State state : {QIcon::On, QIcon::Off})
            result.addPixmap(mode == QIcon::Normal && state == QIcon::Off ? right : wrong, mode,
                             state);
    return result;
}

QStyleOptionTab tabOption(QStyle::State state)
{
    QStyleOptionTab option;
    option.rect = TabRect;
    option.state = state | QStyle::State_Enabled;
    option.text = QStringLiteral("M");
    option.iconSize = QSize(16, 16);
    return option;
}

template<typename Draw>
QImage drawing(Draw draw)
{
    QImage image(150, 50, QImage::Format_RGB32);
    image.fill(Background);
    QPainter painter(&image);
    draw(&painter);
    return image;
}

//! The smallest rectangle that holds every pixel of \a color.
QRect boundsOf(const QImage &image, QRgb color)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == color)
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

} // namespace

class tst_MultiProjectsTabStyle : public QObject
{
    Q_OBJECT

private slots:
    void asksForEachTab();
    void switchesHoveringBesideTheBase();
    void width_data();
    void width();
    void widthOfTheFirstOfEquals();
    void widthWithButtons();
    void widthWithoutTabs();
    void sizes();
    void leavesTheRestToTheBase();
    void shape_data();
    void shape();
    void iconPlace_data();
    void iconPlace();
    void iconIsSharp();
    void text_data();
    void text();
    void restoresThePainter();
};

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
    QCOMPARE(textWidth(wide(30)), 30 * character);
    const int three = 3 * character + HSpace;
    QVERIFY(three < 75);
    const int twenty = 20 * character + HSpace;
    const int thirty = 30 * character + HSpace;
    const int icon = 20 + 4;
    const QStringList pair = {wide(1), wide(1)};
    const QStringList longOnes = {wide(31), wide(31), wide(31)};

    QTest::newRow("no text") << QStringList(QString()) << false << 5000 << 80;
    QTest::newRow("short") << pair << false << 5000 << 80;
    QTest::newRow("widest") << QStringList {wide(3), wide(20), wide(9)} << false << 5000 << twenty;
    QTest::newRow("with icons") << QStringList(wide(20)) << true << 5000 << twenty + icon;
    QTest::newRow("mnemonic") << QStringList(QLatin1Char('&') + wide(20)) << false << 5000
                              << twenty;
    QTest::newRow("thirty") << QStringList(wide(30)) << false << 5000 << thirty;
    QTest::newRow("thirty-one") << QStringList(wide(31)) << false << 5000 << thirty;
    QTest::newRow("thirty-one, icon") << QStringList(wide(31)) << true << 5000 << thirty + icon;
    QTest::newRow("even share, cut off") << longOnes << false << 500 << 166;
    QTest::newRow("share below 80") << pair << false << 151 << 75;
    QTest::newRow("share of 80") << pair << false << 161 << 80;
    QTest::newRow("no less than three") << longOnes << false << 100 << three;
    QTest::newRow("no less than three, icon") << longOnes << true << 100 << three + icon;
    QTest::newRow("parent without width") << pair << false << 0 << three;
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

void tst_MultiProjectsTabStyle::leavesTheRestToTheBase()
{
    Bar bar;
    MultiProjectsTabStyle &style = bar.style;
    auto *other = new BaseStyle;
    MultiProjectsTabStyle withoutBar(nullptr, other);
    const QStyleOptionTab tab = tabOption(QStyle::State_None);
    QStyleOptionTab old = tab;
    old.version = 2;
    const QStyleOption plain;

    const QImage image = drawing([&](QPainter *painter) {
        style.drawControl(QStyle::CE_PushButton, &tab, painter);
        style.drawControl(QStyle::CE_TabBarTab, &tab, painter);
        style.drawControl(QStyle::CE_TabBarTabShape, nullptr, painter);
        style.drawControl(QStyle::CE_TabBarTabShape, &tab, nullptr);
        style.drawControl(QStyle::CE_TabBarTabLabel, nullptr, painter);
        style.drawControl(QStyle::CE_TabBarTabLabel, &tab, nullptr);
        style.drawControl(QStyle::CE_TabBarTabLabel, &old, painter);
        style.drawControl(QStyle::CE_TabBarTabLabel, &plain, painter);
        withoutBar.drawControl(QStyle::CE_TabBarTabLabel, &tab, painter);
    });
    const auto shape = QStyle::CE_TabBarTabShape;
    const auto label = QStyle::CE_TabBarTabLabel;
    QCOMPARE(bar.base->drawn,
             QVector<QStyle::ControlElement>({QStyle::CE_PushButton, QStyle::CE_TabBarTab, shape,
                                              shape, label, label, label, label}));
    QCOMPARE(other->drawn, QVector<QStyle::ControlElement>({label}));
    QCOMPARE(boundsOf(image, Background), image.rect());
}

void tst_MultiProjectsTabStyle::shape_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("isActived");
    QTest::addColumn<QRgb>("color");
    QTest::addColumn<int>("inset");

    const int selected = QStyle::State_Selected;
    const int hovered = QStyle::State_MouseOver;
    QTest::newRow("plain") << 0 << true << Plain << 0;
    QTest::newRow("hovered") << hovered << true << Hover << 4;
    QTest::newRow("selected") << selected << true << White << 0;
    QTest::newRow("selected, hovered") << (selected | hovered) << true << White << 0;
    QTest::newRow("not actived, selected") << selected << false << Plain << 0;
    QTest::newRow("not actived, both") << (selected | hovered) << false << Hover << 4;
}

void tst_MultiProjectsTabStyle::shape()
{
    QFETCH(const int, state);
    QFETCH(const bool, isActived);
    QFETCH(const QRgb, color);
    QFETCH(const int, inset);
    Bar bar;
    // It is true from the start.
    if (!isActived)
        IsActived::of(bar.style) = false;
    const QStyleOptionTab option = tabOption(QStyle::State(state));
    const QImage image = drawing([&](QPainter *painter) {
        painter->setPen(Qt::red);
        bar.style.drawControl(QStyle::CE_TabBarTabShape, &option, painter);
    });

    const QRect inner = TabRect.adjusted(inset, inset, -inset, -inset);
    QCOMPARE(boundsOf(image, color), inner);
    // Only the corners of a rounded shape are left out.
    const QImage expected = drawing([&](QPainter *painter) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(color));
        painter->drawRoundedRect(inner, inset, inset);
    });
    QCOMPARE(image, expected);
}

void tst_MultiProjectsTabStyle::iconPlace_data()
{
    QTest::addColumn<QRect>("tab");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("expected");

    // The text begins at x = 42.
    QTest::newRow("16") << QRect(10, 0, 120, 32) << QSize(16, 16) << QPoint(18, 8);
    QTest::newRow("odd gap") << QRect(11, 0, 120, 32) << QSize(16, 16) << QPoint(18, 8);
    QTest::newRow("odd height") << QRect(10, 0, 120, 31) << QSize(16, 16) << QPoint(18, 7);
    QTest::newRow("the top isn't added") << QRect(10, 9, 120, 32) << QSize(16, 16) << QPoint(18, 8);
    QTest::newRow("wider than the gap") << QRect(20, 0, 120, 32) << QSize(27, 10) << QPoint(18, 11);
    QTest::newRow("not square") << QRect(0, 0, 120, 32) << QSize(22, 12) << QPoint(10, 10);
}

void tst_MultiProjectsTabStyle::iconPlace()
{
    QFETCH(const QRect, tab);
    QFETCH(const QSize, size);
    QFETCH(const QPoint, expected);
    Bar bar;
    // Whatever the state, the icon is the normal one, switched off.
    QStyleOptionTab option = tabOption(QStyle::State_Selected | QStyle::State_MouseOver
                                       | QStyle::State_On | QStyle::State_Active);
    option.state &= ~QStyle::State_Enabled;
    option.rect = tab;
    option.text.clear();
    option.iconSize = size;
    option.icon = tellTaleIcon(size);
    const QImage image = drawing([&](QPainter *painter) {
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
    });
    QCOMPARE(boundsOf(image, qRgb(255, 0, 0)), QRect(expected, size));
    QCOMPARE(boundsOf(image, qRgb(0, 0, 255)), QRect());
}

// Runs once more on a denser screen. Neighbouring pixels of the icon differ: any scaling shows.
void tst_MultiProjectsTabStyle::iconIsSharp()
{
    const qreal ratio = qApp->devicePixelRatio();
    QCOMPARE(ratio, qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                            ? qgetenv("QT_SCALE_FACTOR").toDouble()
                            : 1.0);
    QImage checkered((QSizeF(16, 16) * ratio).toSize(), QImage::Format_RGB32);
    for (int y = 0; y < checkered.height(); ++y)
        for (int x = 0; x < checkered.width(); ++x)
            checkered.setPixel(x, y, (x + y) % 2 == 0 ? White : Blue);
    Bar bar;
    QStyleOptionTab option = tabOption(QStyle::State_None);
    option.rect = QRect(10, 0, 120, 32);
    option.text.clear();
    option.icon = QIcon(QPixmap::fromImage(checkered));
    option.icon.addPixmap(QPixmap(checkered.size() * 2));
    option.icon.addPixmap(QPixmap(checkered.size() / 2));

    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QImage image((QSizeF(150, 50) * ratio).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Background);
    QPainter painter(&image);
    bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, &painter);
    painter.end();
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);

    image.setDevicePixelRatio(1);
    const QPoint corner = QPoint(18, 8) * ratio;
    QCOMPARE(image.copy(QRect(corner, checkered.size())), checkered);
}

void tst_MultiProjectsTabStyle::text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("isActived");
    QTest::addColumn<QRgb>("color");
    QTest::addColumn<bool>("isElided");

    const QString brief = QStringLiteral("M&i");
    const int selected = QStyle::State_Selected;
    QTest::newRow("plain") << brief << 0 << true << Black << false;
    QTest::newRow("hovered") << brief << int(QStyle::State_MouseOver) << true << Black << false;
    QTest::newRow("selected") << brief << selected << true << Blue << false;
    QTest::newRow("not actived") << brief << selected << false << Black << false;
    QTest::newRow("too long") << QStringLiteral("beginning and end") << 0 << true << Black << true;
}

void tst_MultiProjectsTabStyle::text()
{
    QFETCH(const QString, text);
    QFETCH(const int, state);
    QFETCH(const bool, isActived);
    QFETCH(const QRgb, color);
    QFETCH(const bool, isElided);
    Bar bar;
    if (!isActived)
        IsActived::of(bar.style) = false;
    QStyleOptionTab option = tabOption(QStyle::State(state));
    option.text = text;
    const QImage image = drawing([&](QPainter *painter) {
        painter->setFont(QFont(QStringLiteral("monospace"), 30));
        painter->setPen(Qt::magenta);
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
    });

    // Cut in the middle: as much of the beginning as of the end, and an ellipsis between.
    const QString shown = QFontMetrics(QFont()).elidedText(text, Qt::ElideMiddle, TextRect.width());
    QCOMPARE(shown.contains(QChar(0x2026)), isElided);
    const QImage expected = drawing([&](QPainter *painter) {
        painter->setFont(QFont());
        painter->setPen(QColor(color));
        painter->drawText(TextRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    });
    QCOMPARE(boundsOf(expected, Background), expected.rect());
    QCOMPARE(image, expected);
}

void tst_MultiProjectsTabStyle::restoresThePainter()
{
    Bar bar;
    const QStyleOptionTab option = tabOption(QStyle::State_Selected);
    drawing([&](QPainter *painter) {
        const QPen pen(Qt::red, 3);
        const QBrush brush(Qt::blue, Qt::Dense3Pattern);
        painter->setPen(pen);
        painter->setBrush(brush);
        painter->setFont(QFont(QStringLiteral("monospace"), 30));
        const QFont font = painter->font();
        for (const auto element : {QStyle::CE_TabBarTabShape, QStyle::CE_TabBarTabLabel}) {
            bar.style.drawControl(element, &option, painter);
            QCOMPARE(painter->pen(), pen);
            QCOMPARE(painter->brush(), brush);
            QCOMPARE(painter->font(), font);
        }
    });
}

QTEST_MAIN(tst_MultiProjectsTabStyle)
#include "tst_MultiProjectsTabStyle.moc"
