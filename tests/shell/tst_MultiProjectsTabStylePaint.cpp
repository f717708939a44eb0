#include "shell/MultiProjectsTabStyle.h"
#include "tests/shell/StyledTabBar.h"
#include "tests/support/PrivateMember.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QStyleOptionTab>
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

constexpr QRect TabRect(10, 3, 120, 28);

//! An icon that is red when normal and off, and blue in each other mode and state.
QIcon tellTaleIcon(const QSize &size)
{
    QPixmap right(size);
    right.fill(Qt::red);
    QPixmap wrong(size);
    wrong.fill(Qt::blue);
    QIcon result;
    for (const QIcon::Mode mode :
         {QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected}) {
        for (const QIcon::State state : {QIcon::On, QIcon::Off}) {
            const bool isRight = mode == QIcon::Normal && state == QIcon::Off;
            result.addPixmap(isRight ? right : wrong, mode, state);
        }
    }
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
    return pixelsThat(image, [color](QRgb pixel) { return pixel == color; }).boundingRect();
}

} // namespace

//! What the style paints.
class tst_MultiProjectsTabStylePaint : public QObject
{
    Q_OBJECT

private slots:
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

void tst_MultiProjectsTabStylePaint::leavesTheRestToTheBase()
{
    constexpr auto Shape = QStyle::CE_TabBarTabShape;
    constexpr auto Label = QStyle::CE_TabBarTabLabel;
    Bar bar;
    auto *other = new BaseStyle;
    const MultiProjectsTabStyle withoutBar(nullptr, other);
    const QStyleOptionTab tab = tabOption(QStyle::State_None);
    QStyleOptionTab old = tab;
    old.version = 2;
    const QStyleOption plain;

    const QImage image = drawing([&](QPainter *painter) {
        bar.style.drawControl(QStyle::CE_PushButton, &tab, painter);
        bar.style.drawControl(QStyle::CE_TabBarTab, &tab, painter);
        bar.style.drawControl(Shape, nullptr, painter);
        bar.style.drawControl(Shape, &tab, nullptr);
        bar.style.drawControl(Label, nullptr, painter);
        bar.style.drawControl(Label, &tab, nullptr);
        bar.style.drawControl(Label, &old, painter);
        bar.style.drawControl(Label, &plain, painter);
        withoutBar.drawControl(Label, &tab, painter);
    });
    QCOMPARE(bar.base->drawn,
             QVector<QStyle::ControlElement>({QStyle::CE_PushButton, QStyle::CE_TabBarTab, Shape,
                                              Shape, Label, Label, Label, Label}));
    QCOMPARE(other->drawn, QVector<QStyle::ControlElement>({Label}));
    QCOMPARE(boundsOf(image, Background), image.rect());
}

void tst_MultiProjectsTabStylePaint::shape_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("isActived");
    QTest::addColumn<QRgb>("color");
    QTest::addColumn<int>("inset");

    const int selected = QStyle::State_Selected;
    const int hovered = QStyle::State_MouseOver;
    QTest::newRow("plain") << 0 << /*isActived*/ true << Plain << /*inset*/ 0;
    QTest::newRow("hovered") << hovered << /*isActived*/ true << Hover << /*inset*/ 4;
    QTest::newRow("selected") << selected << /*isActived*/ true << White << /*inset*/ 0;
    QTest::newRow("selected, hovered")
            << (selected | hovered) << /*isActived*/ true << White << /*inset*/ 0;
    QTest::newRow("not actived, selected")
            << selected << /*isActived*/ false << Plain << /*inset*/ 0;
    QTest::newRow("not actived, both")
            << (selected | hovered) << /*isActived*/ false << Hover << /*inset*/ 4;
}

void tst_MultiProjectsTabStylePaint::shape()
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

void tst_MultiProjectsTabStylePaint::iconPlace_data()
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

void tst_MultiProjectsTabStylePaint::iconPlace()
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

// Runs once more on a denser screen.
void tst_MultiProjectsTabStylePaint::iconIsSharp()
{
    const qreal ratio = qApp->devicePixelRatio();
    QCOMPARE(ratio, qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                            ? qgetenv("QT_SCALE_FACTOR").toDouble()
                            : 1.0);
    const QPixmap checkered = checkeredPixmap((QSizeF(16, 16) * ratio).toSize());
    Bar bar;
    QStyleOptionTab option = tabOption(QStyle::State_None);
    option.rect = QRect(10, 0, 120, 32);
    option.text.clear();
    option.icon = QIcon(checkered);
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
    QCOMPARE(image.copy(QRect(corner, checkered.size())),
             checkered.toImage().convertToFormat(image.format()));
}

void tst_MultiProjectsTabStylePaint::text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("isActived");
    QTest::addColumn<QRgb>("color");
    QTest::addColumn<bool>("isElided");

    const QString brief = QStringLiteral("M&i");
    const int selected = QStyle::State_Selected;
    QTest::newRow("plain") << brief << 0 << /*isActived*/ true << Black << /*isElided*/ false;
    QTest::newRow("hovered") << brief << int(QStyle::State_MouseOver) << /*isActived*/ true << Black
                             << /*isElided*/ false;
    QTest::newRow("selected") << brief << selected << /*isActived*/ true << Blue
                              << /*isElided*/ false;
    QTest::newRow("not actived") << brief << selected << /*isActived*/ false << Black
                                 << /*isElided*/ false;
    QTest::newRow("too long") << QStringLiteral("beginning and end") << 0 << /*isActived*/ true
                              << Black << /*isElided*/ true;
}

void tst_MultiProjectsTabStylePaint::text()
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

void tst_MultiProjectsTabStylePaint::restoresThePainter()
{
    Bar bar;
    const QStyleOptionTab option = tabOption(QStyle::State_Selected);
    QImage image(TabRect.size() * 2, QImage::Format_RGB32);
    QPainter painter(&image);
    const QPen pen(Qt::red, 3);
    const QBrush brush(Qt::blue, Qt::Dense3Pattern);
    painter.setPen(pen);
    painter.setBrush(brush);
    painter.setFont(QFont(QStringLiteral("monospace"), 30));
    const QFont font = painter.font();
    for (const auto element : {QStyle::CE_TabBarTabShape, QStyle::CE_TabBarTabLabel}) {
        bar.style.drawControl(element, &option, &painter);
        QCOMPARE(painter.pen(), pen);
        QCOMPARE(painter.brush(), brush);
        QCOMPARE(painter.font(), font);
    }
}

QTEST_MAIN(tst_MultiProjectsTabStylePaint)
#include "tst_MultiProjectsTabStylePaint.moc"
