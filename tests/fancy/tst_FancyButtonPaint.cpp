#include "tests/fancy/privates.h"
#include "tests/support/pixels.h"
#include "tests/support/waits.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionToolButton>
#include <QTest>

/*
    What a button looks like, pixel by pixel, on a backdrop of one colour. The whole class runs at
    the density that QT_SCALE_FACTOR sets.
*/

namespace {
constexpr QRgb Backdrop = qRgb(100, 100, 100);
constexpr QSize ButtonSize(48, 32);
constexpr QSize WindowSize(80, 60);
const QColor Hover(10, 200, 30);
const QColor Press(200, 10, 30);
const QColor Normal(10, 30, 200);

enum State { Idle, Hovered, Pressed, PressedAndHovered };
enum Colors { Default, Opaque, Invalid };
} // namespace
Q_DECLARE_METATYPE(State)
Q_DECLARE_METATYPE(Colors)

// Records how a style is asked to draw the label of a tool button.
class RecordingStyle : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;
    mutable QVector<Qt::ToolButtonStyle> labels;

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        if (const auto *label = qstyleoption_cast<const QStyleOptionToolButton *>(option))
            labels << label->toolButtonStyle;
        QProxyStyle::drawControl(element, option, painter, widget);
    }
};

class tst_FancyButtonPaint : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fillsTheWholeButton_data();
    void fillsTheWholeButton();
    void roundBackgroundIsACircleInTheMiddle_data();
    void roundBackgroundIsACircleInTheMiddle();
    void iconIsCentredAndSharp_data();
    void iconIsCentredAndSharp();
    void smallIconIsDrawnOnceAtTheIconSize();
    void smallIconIsScaledSmoothly();
    void iconIsTheNormalOneAlsoWhenDisabledOrChecked();
    void iconIsPaintedUnlessItsSizeIsEmpty_data();
    void iconIsPaintedUnlessItsSizeIsEmpty();
    void textLooksAsTheBasePaintsIt_data();
    void textLooksAsTheBasePaintsIt();
    void stylesAreAskedForTheText();
    void showsNoMenuArrow_data();
    void showsNoMenuArrow();
    void keyboardFocusIsARing_data();
    void keyboardFocusIsARing();

private:
    static QImage backdrop(const QSize &size = ButtonSize);
    static QImage imageOf(QWidget &widget, QWidget::RenderFlags flags = {});
    static QImage windowBackdrop();
    QImage imageAt(const QPoint &place);

    QScopedPointer<QWidget> window;
    FancyButton *button = nullptr;
};

void tst_FancyButtonPaint::init()
{
    QApplication::setStyle(QStringLiteral("fusion"));
    window.reset(new QWidget);
    window->setFixedSize(WindowSize);
    button = new FancyButton(window.data());
    button->setFixedSize(ButtonSize);
    button->setHasBorder(false);
}

void tst_FancyButtonPaint::cleanup()
{
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
}

QImage tst_FancyButtonPaint::backdrop(const QSize &size)
{
    const qreal ratio = qApp->devicePixelRatio();
    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Backdrop);
    return image;
}

QImage tst_FancyButtonPaint::imageOf(QWidget &widget, QWidget::RenderFlags flags)
{
    QImage image = backdrop(widget.size());
    widget.render(&image, QPoint(), QRegion(), flags);
    return image;
}

// The backdrop of the whole window. Ratio 1, so that comparisons are in the pixels of the screen.
QImage tst_FancyButtonPaint::windowBackdrop()
{
    QImage image = backdrop(WindowSize);
    image.setDevicePixelRatio(1);
    return image;
}

// The button in the window, at a place that may lie between the pixels of the screen.
QImage tst_FancyButtonPaint::imageAt(const QPoint &place)
{
    button->move(place);
    QImage image = imageOf(*window, QWidget::DrawChildren);
    image.setDevicePixelRatio(1);
    return image;
}

void tst_FancyButtonPaint::fillsTheWholeButton_data()
{
    QTest::addColumn<State>("state");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<Colors>("colors");
    QTest::addColumn<QColor>("expected");

    // An invalid colour's brush is solid and black; only the normal colour is asked for validity.
    const QColor black(Qt::black);
    const QColor none(Backdrop);
    QTest::newRow("idle") << Idle << /*enabled*/ true << Opaque << Normal;
    QTest::newRow("hovered") << Hovered << /*enabled*/ true << Opaque << Hover;
    QTest::newRow("pressed") << Pressed << /*enabled*/ true << Opaque << Press;
    QTest::newRow("pressed over hovered")
            << PressedAndHovered << /*enabled*/ true << Opaque << Press;
    QTest::newRow("idle, invalid") << Idle << /*enabled*/ true << Invalid << none;
    QTest::newRow("hovered, invalid") << Hovered << /*enabled*/ true << Invalid << black;
    QTest::newRow("pressed, invalid") << Pressed << /*enabled*/ true << Invalid << black;
    QTest::newRow("disabled") << Idle << /*enabled*/ false << Opaque << Normal;
    QTest::newRow("disabled, hovered") << Hovered << /*enabled*/ false << Opaque << Normal;
    QTest::newRow("disabled, hovered, invalid") << Hovered << /*enabled*/ false << Invalid << none;
    QTest::newRow("disabled, selected")
            << PressedAndHovered << /*enabled*/ false << Opaque << Press;
    // 100 + (255 - 100) * 50 / 255 and 100 - 100 * 50 / 255.
    QTest::newRow("idle, default") << Idle << /*enabled*/ true << Default << none;
    QTest::newRow("hovered, default")
            << Hovered << /*enabled*/ true << Default << QColor(130, 130, 130);
    QTest::newRow("pressed, default")
            << Pressed << /*enabled*/ true << Default << QColor(80, 80, 80);
}

void tst_FancyButtonPaint::fillsTheWholeButton()
{
    QFETCH(State, state);
    QFETCH(bool, enabled);
    QFETCH(Colors, colors);
    QFETCH(QColor, expected);
    button->setHasBorder(colors == Default);
    if (colors != Default) {
        button->setHoverColor(colors == Opaque ? Hover : QColor());
        button->setPressColor(colors == Opaque ? Press : QColor());
        button->setNormalColor(colors == Opaque ? Normal : QColor());
    }
    button->setEnabled(enabled);
    FancyButtonPrivate *data = ButtonData::of(*button);
    data->m_bMouseHover = state == Hovered || state == PressedAndHovered;
    data->m_bMousePress = state == Pressed || state == PressedAndHovered;

    QImage image = backdrop();
    image.fill(expected);

    QCOMPARE(imageOf(*button), image);
}

void tst_FancyButtonPaint::roundBackgroundIsACircleInTheMiddle_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("circle");

    QTest::newRow("wide") << QSize(48, 32) << QRect(8, 0, 32, 32);
    QTest::newRow("high") << QSize(20, 40) << QRect(0, 10, 20, 20);
    QTest::newRow("odd") << QSize(31, 21) << QRect(5, 0, 20, 20);
}

void tst_FancyButtonPaint::roundBackgroundIsACircleInTheMiddle()
{
    QFETCH(QSize, size);
    QFETCH(QRect, circle);
    button->setFixedSize(size);
    button->setRound(true);
    button->setNormalColor(Normal);

    QImage expected = backdrop(size);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Normal);
    painter.drawEllipse(circle);
    painter.end();

    QCOMPARE(imageOf(*button), expected);
}

void tst_FancyButtonPaint::iconIsCentredAndSharp_data()
{
    QTest::addColumn<QSize>("buttonSize");
    QTest::addColumn<QSize>("iconSize");
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<bool>("highDpiPixmaps");

    for (const bool on : {false, true}) {
        for (const QPoint &place : {QPoint(0, 0), QPoint(7, 5), QPoint(10, 9)}) {
            const auto row = [=](const char *name, const QSize &outer, const QSize &icon,
                                 const QPoint &corner) {
                QTest::addRow("%s at %d, %d, %s", name, place.x(), place.y(),
                              on ? "with" : "without")
                        << outer << icon << corner << place << on;
            };
            row("square", {48, 32}, {16, 16}, {16, 8});
            row("oblong", {48, 32}, {25, 9}, {11, 11});
            row("rounded down", {49, 33}, {16, 16}, {16, 8});
            row("as large as the button", {48, 32}, {48, 32}, {0, 0});
        }
    }
}

void tst_FancyButtonPaint::iconIsCentredAndSharp()
{
    QFETCH(QSize, buttonSize);
    QFETCH(QSize, iconSize);
    QFETCH(QPoint, corner);
    QFETCH(QPoint, place);
    QFETCH(bool, highDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, highDpiPixmaps);
    const qreal ratio = qApp->devicePixelRatio();
    const QPixmap exact = checkeredPixmap((QSizeF(iconSize) * ratio).toSize());
    QIcon icon(exact);
    icon.addPixmap(QPixmap(exact.size() * 2));
    button->setFixedSize(buttonSize);
    button->setIconSize(iconSize);
    button->setIcon(icon);

    QImage expected = windowBackdrop();
    QPainter painter(&expected);
    painter.drawPixmap((QPointF(place + corner) * ratio).toPoint(), exact);
    painter.end();

    QCOMPARE(button->devicePixelRatioF(), ratio);
    QCOMPARE(ratio, qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                            ? qgetenv("QT_SCALE_FACTOR").toDouble()
                            : 1.0);
    QCOMPARE(imageAt(place), expected);
    QCOMPARE(button->icon().cacheKey(), icon.cacheKey());
    QCOMPARE(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps), highDpiPixmaps);
}

void tst_FancyButtonPaint::smallIconIsDrawnOnceAtTheIconSize()
{
    const QColor veil(255, 0, 0, 102);
    button->setIconSize(QSize(16, 16));
    button->setIcon(filledPixmap(veil, 4));

    QImage expected = backdrop();
    QPainter painter(&expected);
    painter.fillRect(QRect(16, 8, 16, 16), veil);
    painter.end();

    QCOMPARE(imageOf(*button), expected);
}

void tst_FancyButtonPaint::smallIconIsScaledSmoothly()
{
    QImage halves(2, 2, QImage::Format_RGB32);
    halves.fill(Qt::red);
    halves.setPixelColor(1, 0, Qt::blue);
    halves.setPixelColor(1, 1, Qt::blue);
    button->setIconSize(QSize(16, 16));
    button->setIcon(QPixmap::fromImage(halves));

    const QImage image = imageOf(*button);

    const qreal ratio = image.devicePixelRatio();
    const QColor beforeTheMiddle(image.pixel((QPointF(23, 16) * ratio).toPoint()));
    QVERIFY2(beforeTheMiddle.red() > 0, qPrintable(beforeTheMiddle.name()));
    QVERIFY2(beforeTheMiddle.blue() > 0, qPrintable(beforeTheMiddle.name()));
}

void tst_FancyButtonPaint::iconIsTheNormalOneAlsoWhenDisabledOrChecked()
{
    QIcon icon(filledPixmap(Qt::red, 64));
    icon.addPixmap(filledPixmap(Qt::blue, 64), QIcon::Disabled);
    icon.addPixmap(filledPixmap(Qt::blue, 64), QIcon::Normal, QIcon::On);
    button->setIconSize(QSize(16, 16));
    button->setIcon(icon);
    button->setCheckable(true);
    const QImage expected = imageOf(*button);
    const QPoint middle(expected.width() / 2, expected.height() / 2);
    QCOMPARE(expected.pixel(middle), qRgb(255, 0, 0));

    button->setEnabled(false);
    QCOMPARE(imageOf(*button), expected);

    button->setEnabled(true);
    button->setChecked(true);
    QCOMPARE(imageOf(*button).pixel(middle), qRgb(255, 0, 0));
}

void tst_FancyButtonPaint::iconIsPaintedUnlessItsSizeIsEmpty_data()
{
    QTest::addColumn<QSize>("iconSize");
    QTest::addColumn<bool>("paints");

    QTest::newRow("no width") << QSize(0, 16) << /*paints*/ false;
    QTest::newRow("no height") << QSize(16, 0) << /*paints*/ false;
    QTest::newRow("smallest width") << QSize(1, 10) << /*paints*/ true;
    QTest::newRow("smallest height") << QSize(10, 1) << /*paints*/ true;
}

void tst_FancyButtonPaint::iconIsPaintedUnlessItsSizeIsEmpty()
{
    QFETCH(QSize, iconSize);
    QFETCH(bool, paints);
    button->setIcon(filledPixmap(Qt::red, 64));
    button->setIconSize(iconSize);

    QCOMPARE(imageOf(*button) != backdrop(), paints);
}

void tst_FancyButtonPaint::textLooksAsTheBasePaintsIt_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<bool>("border");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("icon");
    QTest::addColumn<Qt::ToolButtonStyle>("toolButtonStyle");
    QTest::addColumn<Qt::ArrowType>("arrow");
    QTest::addColumn<bool>("checked");

    for (const char *style : {"fusion", "windows"}) {
        for (const bool border : {false, true}) {
            const auto row = [=](const char *name, const QString &text, bool icon,
                                 Qt::ToolButtonStyle toolButtonStyle = Qt::ToolButtonIconOnly,
                                 Qt::ArrowType arrow = Qt::NoArrow, bool checked = false) {
                QTest::addRow("%s, %s, %s", style, border ? "border" : "no border", name)
                        << style << border << text << icon << toolButtonStyle << arrow << checked;
            };
            const QString text = QStringLiteral("Text");
            row("text alone", text, false);
            row("text and icon", text, true);
            row("icon alone", QString(), true);
            row("neither", QString(), false);
            row("beside", text, true, Qt::ToolButtonTextBesideIcon);
            row("under", text, true, Qt::ToolButtonTextUnderIcon);
            row("text only", text, true, Qt::ToolButtonTextOnly);
            row("no text, text only", QString(), true, Qt::ToolButtonTextOnly);
            row("arrow", text, true, Qt::ToolButtonIconOnly, Qt::DownArrow);
            row("arrow beside", text, true, Qt::ToolButtonTextBesideIcon, Qt::LeftArrow);
            row("checked", text, true, Qt::ToolButtonIconOnly, Qt::NoArrow, true);
        }
    }
}

void tst_FancyButtonPaint::textLooksAsTheBasePaintsIt()
{
    QFETCH(QString, style);
    QFETCH(bool, border);
    QFETCH(QString, text);
    QFETCH(bool, icon);
    QFETCH(Qt::ToolButtonStyle, toolButtonStyle);
    QFETCH(Qt::ArrowType, arrow);
    QFETCH(bool, checked);
    QApplication::setStyle(style);
    button->setHasBorder(border);
    button->setToolButtonStyle(toolButtonStyle);
    QToolButton iconless;
    iconless.setToolButtonStyle(toolButtonStyle);
    iconless.setAutoRaise(true);
    iconless.setStyleSheet(button->styleSheet());

    for (QToolButton *each : {static_cast<QToolButton *>(button), &iconless}) {
        each->setFixedSize(ButtonSize);
        each->setText(text);
        each->setArrowType(arrow);
        each->setCheckable(true);
        each->setChecked(checked);
    }
    if (icon)
        button->setIcon(filledPixmap(Qt::transparent, 16));
    const QImage expected = imageOf(iconless);

    QCOMPARE(imageOf(*button), expected);
    if (!text.isEmpty())
        QVERIFY(expected != backdrop());
}

// Styles may well hide the text of an icon-only button, without an icon or with one.
void tst_FancyButtonPaint::stylesAreAskedForTheText()
{
    auto *style = new RecordingStyle(QStringLiteral("fusion"));
    QApplication::setStyle(style);
    button->setIcon(checkeredPixmap(QSize(16, 16)));

    imageOf(*button);
    QCOMPARE(style->labels, QVector<Qt::ToolButtonStyle>({Qt::ToolButtonIconOnly}));

    button->setText(QStringLiteral("Text"));
    imageOf(*button);
    QCOMPARE(style->labels,
             QVector<Qt::ToolButtonStyle>({Qt::ToolButtonIconOnly, Qt::ToolButtonTextOnly}));
}

void tst_FancyButtonPaint::showsNoMenuArrow_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<bool>("border");

    for (const char *style : {"fusion", "windows"}) {
        for (const bool border : {false, true})
            QTest::addRow("%s, border %d", style, border) << style << border;
    }
}

void tst_FancyButtonPaint::showsNoMenuArrow()
{
    QFETCH(QString, style);
    QFETCH(bool, border);
    QApplication::setStyle(style);
    QMenu menu;
    QAction action(QStringLiteral("Text"));
    button->setHasBorder(border);
    button->setDefaultAction(&action);
    const QImage withoutMenu = imageOf(*button);

    action.setMenu(&menu);
    button->setDefaultAction(&action);
    for (const auto mode :
         {QToolButton::DelayedPopup, QToolButton::MenuButtonPopup, QToolButton::InstantPopup}) {
        button->setPopupMode(mode);
        QCOMPARE(imageOf(*button), withoutMenu);
    }
}

void tst_FancyButtonPaint::keyboardFocusIsARing_data()
{
    QTest::addColumn<QPoint>("place");

    for (const QPoint &place : {QPoint(0, 0), QPoint(7, 5), QPoint(10, 9), QPoint(13, 18)})
        QTest::addRow("%d, %d", place.x(), place.y()) << place;
}

void tst_FancyButtonPaint::keyboardFocusIsARing()
{
    QFETCH(QPoint, place);
    // The pointer may be anywhere.
    button->setHoverColor(Qt::transparent);
    button->setFocusPolicy(Qt::StrongFocus);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.data(), WindowTimeoutMs));
    button->setFocus();
    QTRY_VERIFY(button->hasFocus());
    window->setAttribute(Qt::WA_KeyboardFocusChange, false);
    QCOMPARE(imageAt(place), windowBackdrop());

    window->setAttribute(Qt::WA_KeyboardFocusChange);
    const qreal ratio = qApp->devicePixelRatio();
    // Three pixels inside the button and two wide, rounded.
    const QMap<qreal, int> margins {{1, 3}, {1.25, 4}, {1.5, 5}, {1.75, 5}, {2, 6}, {3, 9}};
    const QMap<qreal, int> widths {{1, 2}, {1.25, 3}, {1.5, 3}, {1.75, 4}, {2, 4}, {3, 6}};
    QVERIFY(widths.contains(ratio));
    const int margin = margins.value(ratio);
    const int width = widths.value(ratio);
    const QRect outline((QPointF(place) * ratio).toPoint(), (QSizeF(ButtonSize) * ratio).toSize());
    const QRect ring = outline.adjusted(margin, margin, -margin, -margin);
    QImage expected = windowBackdrop();
    QPainter painter(&expected);
    painter.fillRect(ring, Qt::black);
    painter.fillRect(ring.adjusted(width, width, -width, -width), QColor(Backdrop));
    painter.end();
    QCOMPARE(imageAt(place), expected);

    button->clearFocus();
    QCOMPARE(imageAt(place), windowBackdrop());
}

QTEST_MAIN(tst_FancyButtonPaint)
#include "tst_FancyButtonPaint.moc"
