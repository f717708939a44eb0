#include "shell/MultiProjectsTabStyle.h"
#include "tests/support/PrivateMember.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QScopedPointer>
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
    void isActived();
    void declaresNothing();
    void asksForEachTab();
    void switchesHoveringBesideTheBase();
    void width_data();
    void width();
    void widthByKnownNumbers();
    void widthOfTheFirstOfEquals();
    void widthWithButtons();
    void widthWithoutTabs();
    void sizes();
    void leavesTheRestToTheBase();
    void shape_data();
    void shape();
    void shapeRestoresThePainter();
    void iconPlace_data();
    void iconPlace();
    void iconIsNormalAndOff();
    void iconIsSharp();
    void textColor_data();
    void textColor();
    void textPlaceAndElision_data();
    void textPlaceAndElision();
    void labelRestoresThePainter();
    void drawsWhatTheTabBarShows();
};

void tst_MultiProjectsTabStyle::isActived()
{
    Bar bar;
    QVERIFY(IsActived::of(bar.style));
}

void tst_MultiProjectsTabStyle::declaresNothing()
{
    const QMetaObject &meta = MultiProjectsTabStyle::staticMetaObject;
    QCOMPARE(meta.className(), "MultiProjectsTabStyle");
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
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
        QCOMPARE(option.iconSize, bar.bar->iconSize());
        QCOMPARE(option.rect, bar.bar->tabRect(tab));
        QCOMPARE(option.row, 0);
        QCOMPARE(option.state.testFlag(QStyle::State_Selected), tab == 1);
        QCOMPARE(option.position, tab == 0 ? QStyleOptionTab::Beginning : QStyleOptionTab::End);
        QCOMPARE(option.selectedPosition,
                 tab == 0 ? QStyleOptionTab::NextIsSelected : QStyleOptionTab::NotAdjacent);
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

    QTest::newRow("short") << QStringList {QStringLiteral("a"), QStringLiteral("b")} << false;
    QTest::newRow("short, icons") << QStringList {QStringLiteral("a"), QStringLiteral("b")} << true;
    QTest::newRow("four wide") << QStringList {wide(4), wide(4)} << true;
    QTest::newRow("mnemonic") << QStringList {QStringLiteral("&Long enough text"),
                                              QStringLiteral("x")}
                              << true;
    QTest::newRow("mixed") << QStringList {QStringLiteral("a"), wide(9), wide(3)} << true;
    QTest::newRow("thirty wide") << QStringList {wide(30)} << true;
    QTest::newRow("thirty-one wide") << QStringList {wide(31)} << true;
    QTest::newRow("very long") << QStringList {wide(80), wide(2)} << false;
    QTest::newRow("one") << QStringList {wide(6)} << false;
    QStringList many;
    for (int i = 0; i < 40; ++i)
        many << wide(1 + i % 7);
    QTest::newRow("many") << many << true;
    QTest::newRow("empty text") << QStringList {QString()} << false;
}

void tst_MultiProjectsTabStyle::width()
{
    QFETCH(const QStringList, texts);
    QFETCH(const bool, haveIcons);
    Bar bar;
    for (const QString &text : texts)
        bar.addTab(text, haveIcons);
    bar.bar->setIconSize(QSize(20, 16));

    int maxW = 0;
    int widest = 0;
    for (const QString &text : texts) {
        const int total = textWidth(text) + HSpace + (haveIcons ? 20 + 4 : 0);
        if (total > maxW) {
            maxW = total;
            widest = textWidth(text);
        }
    }
    for (const int parentWidth : {0, 1, 50, 161, 400, 401, 800, 3000, 30000}) {
        bar.parent.resize(parentWidth, 32);
        const int a = qMax(maxW, 80);
        const int b = int(double(parentWidth) / texts.size());
        const int c = textWidth(wide(30)) - widest + maxW;
        const int d = textWidth(wide(3)) - widest + maxW;
        QCOMPARE(bar.style.adjustItemSize(), qMax(qMin(qMin(a, b), c), d));
    }
}

//! The same rule with the results worked out for one character's width.
void tst_MultiProjectsTabStyle::widthByKnownNumbers()
{
    const int character = textWidth(wide(1));
    QCOMPARE(textWidth(wide(30)), 30 * character);
    QVERIFY(3 * character + HSpace < 80);

    Bar bar;
    bar.parent.resize(5000, 32);
    bar.addTab(QString());
    QCOMPARE(bar.style.adjustItemSize(), 80);
    bar.bar->setTabText(0, wide(20));
    QCOMPARE(bar.style.adjustItemSize(), 20 * character + HSpace);
    bar.bar->setTabText(0, wide(31));
    QCOMPARE(bar.style.adjustItemSize(), 30 * character + HSpace);

    // An even share of the parent, cut off; and no less than three characters.
    bar.addTab(wide(31));
    bar.addTab(wide(31));
    bar.parent.resize(500, 32);
    QCOMPARE(bar.style.adjustItemSize(), 166);
    bar.parent.resize(100, 32);
    QCOMPARE(bar.style.adjustItemSize(), 3 * character + HSpace);
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
    IsActived::of(bar.style) = isActived;
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
    QCOMPARE(image.pixel(inner.topLeft()), inset ? Background : color);
    QCOMPARE(image.pixel(inner.bottomRight()), inset ? Background : color);
    QCOMPARE(image.pixel(inner.topLeft() + QPoint(4, 0)), color);
    QCOMPARE(image.pixel(inner.topLeft() + QPoint(0, 4)), color);
}

void tst_MultiProjectsTabStyle::shapeRestoresThePainter()
{
    Bar bar;
    const QStyleOptionTab option = tabOption(QStyle::State_None);
    drawing([&](QPainter *painter) {
        const QPen pen(Qt::red, 3);
        const QBrush brush(Qt::blue, Qt::Dense3Pattern);
        painter->setPen(pen);
        painter->setBrush(brush);
        bar.style.drawControl(QStyle::CE_TabBarTabShape, &option, painter);
        QCOMPARE(painter->pen(), pen);
        QCOMPARE(painter->brush(), brush);
    });
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
    Bar bar;
    QStyleOptionTab option = tabOption(QStyle::State_None);
    option.rect = tab;
    option.text.clear();
    option.iconSize = size;
    option.icon = tellTaleIcon(size);
    const QImage image = drawing([&](QPainter *painter) {
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
    });
    QFETCH(const QPoint, expected);
    QCOMPARE(boundsOf(image, qRgb(255, 0, 0)), QRect(expected, size));
}

void tst_MultiProjectsTabStyle::iconIsNormalAndOff()
{
    Bar bar;
    QStyleOptionTab option = tabOption(QStyle::State_Selected | QStyle::State_MouseOver
                                       | QStyle::State_On | QStyle::State_Active);
    option.state &= ~QStyle::State_Enabled;
    option.icon = tellTaleIcon(option.iconSize);
    const QImage image = drawing([&](QPainter *painter) {
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
    });
    QCOMPARE(boundsOf(image, qRgb(255, 0, 0)).size(), QSize(16, 16));
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

void tst_MultiProjectsTabStyle::textColor_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("isActived");
    QTest::addColumn<QRgb>("color");
    QTest::newRow("plain") << 0 << true << Black;
    QTest::newRow("hovered") << int(QStyle::State_MouseOver) << true << Black;
    QTest::newRow("selected") << int(QStyle::State_Selected) << true << Blue;
    QTest::newRow("not actived") << int(QStyle::State_Selected) << false << Black;
}

void tst_MultiProjectsTabStyle::textColor()
{
    QFETCH(const int, state);
    QFETCH(const bool, isActived);
    QFETCH(const QRgb, color);
    Bar bar;
    IsActived::of(bar.style) = isActived;
    QStyleOptionTab option = tabOption(QStyle::State(state));
    option.text = wide(3);
    const QImage image = drawing([&](QPainter *painter) {
        painter->fillRect(0, 0, 150, 50, QColor(White));
        painter->setPen(Qt::magenta);
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
    });
    QVERIFY(!boundsOf(image, color).isNull());
    QVERIFY(boundsOf(image, color == Blue ? Black : Blue).isNull());
}

void tst_MultiProjectsTabStyle::textPlaceAndElision_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isElided");
    QTest::newRow("short") << QStringLiteral("Mi") << false;
    QTest::newRow("with an ampersand") << QStringLiteral("M&i") << false;
    QTest::newRow("too long") << QStringLiteral("beginning and end") << true;
    QTest::newRow("too long, wide") << wide(31) << true;
}

void tst_MultiProjectsTabStyle::textPlaceAndElision()
{
    QFETCH(const QString, text);
    QFETCH(const bool, isElided);
    Bar bar;
    QStyleOptionTab option = tabOption(QStyle::State_None);
    option.text = text;
    const QImage image = drawing([&](QPainter *painter) {
        QFont other(QStringLiteral("monospace"), 30);
        painter->setFont(other);
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
    });

    // Cut in the middle: as much of the beginning as of the end, and an ellipsis between.
    const QString shown = QFontMetrics(QFont()).elidedText(text, Qt::ElideMiddle, TextRect.width());
    QCOMPARE(shown != text, isElided);
    if (isElided) {
        QCOMPARE(shown.at(0), text.at(0));
        QCOMPARE(shown.at(shown.size() - 1), text.at(text.size() - 1));
        QVERIFY(shown.contains(QChar(0x2026)));
    }
    const QImage expected = drawing([&](QPainter *painter) {
        painter->setFont(QFont());
        painter->setPen(QColor(Black));
        painter->drawText(TextRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    });
    QVERIFY(boundsOf(expected, Background) == expected.rect());
    QCOMPARE(image, expected);
}

void tst_MultiProjectsTabStyle::labelRestoresThePainter()
{
    Bar bar;
    const QStyleOptionTab option = tabOption(QStyle::State_Selected);
    drawing([&](QPainter *painter) {
        const QPen pen(Qt::red, 3);
        painter->setPen(pen);
        painter->setFont(QFont(QStringLiteral("monospace"), 30));
        const QFont font = painter->font();
        bar.style.drawControl(QStyle::CE_TabBarTabLabel, &option, painter);
        QCOMPARE(painter->pen(), pen);
        QCOMPARE(painter->font(), font);
    });
}

//! Through a real tab bar, from its measures to its pixels.
void tst_MultiProjectsTabStyle::drawsWhatTheTabBarShows()
{
    QWidget parent;
    auto *bar = new QTabBar(&parent);
    const QScopedPointer<MultiProjectsTabStyle> style(
            new MultiProjectsTabStyle(bar, QStyleFactory::create(QStringLiteral("fusion"))));
    bar->setStyle(style.data());
    parent.resize(400, 32);
    bar->addTab(wide(4));
    bar->addTab(wide(4));
    bar->resize(bar->sizeHint());
    QCOMPARE(bar->style(), style.data());

    const int natural = 4 * textWidth(wide(1)) + style->pixelMetric(QStyle::PM_TabBarTabHSpace);
    const int width = qMin(200, qMax(80, natural));
    QCOMPARE(bar->tabRect(0), QRect(0, 0, width, 32));
    QCOMPARE(bar->tabRect(1), QRect(width, 0, width, 32));
    const QImage image = bar->grab().toImage().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(image.pixel(0, 0), White);
    QCOMPARE(image.pixel(width - 1, 31), White);
    QCOMPARE(image.pixel(width, 0), Plain);
    QCOMPARE(image.pixel(2 * width - 1, 31), Plain);
    bar->setStyle(nullptr);
}

QTEST_MAIN(tst_MultiProjectsTabStyle)
#include "tst_MultiProjectsTabStyle.moc"
