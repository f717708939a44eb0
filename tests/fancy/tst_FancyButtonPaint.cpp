#include "tests/fancy/privates.h"

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

//! The smallest rectangle that holds every pixel of \a color.
QRect boundsOf(const QImage &image, QRgb color)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

enum State { Idle, Hovered, Pressed, PressedAndHovered };
} // namespace
Q_DECLARE_METATYPE(State)

// What the button is asked to draw like: icon taken out, the base's painting, icon put back.
class PrescribedButton : public QToolButton
{
public:
    explicit PrescribedButton(const FancyButton &like)
    {
        setToolButtonStyle(like.toolButtonStyle());
        setAutoRaise(true);
        setStyleSheet(like.styleSheet());
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        const QIcon kept = icon();
        setIcon(QIcon());
        QToolButton::paintEvent(event);
        setIcon(kept);
    }
};

// Notes how a style is asked to draw the label of a tool button.
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
    void freshButtonIsTranslucent_data();
    void freshButtonIsTranslucent();
    void roundBackgroundIsACircleInTheMiddle_data();
    void roundBackgroundIsACircleInTheMiddle();
    void iconIsCentredAndSharp_data();
    void iconIsCentredAndSharp();
    void smallIconIsDrawnAtTheIconSize();
    void smallIconIsScaledSmoothly();
    void iconIsDrawnOnce();
    void iconsOfOnePixelAreDrawn_data();
    void iconsOfOnePixelAreDrawn();
    void iconIsTheNormalOneAlsoWhenDisabledOrChecked();
    void emptyIconSizePaintsNoIcon_data();
    void emptyIconSizePaintsNoIcon();
    void textLooksAsTheBasePaintsIt_data();
    void textLooksAsTheBasePaintsIt();
    void stylesAreAskedForTheText();
    void showsNoMenuArrow_data();
    void showsNoMenuArrow();
    void paintingLeavesTheIconAlone();
    void keyboardFocusIsARing_data();
    void keyboardFocusIsARing();

private:
    static QImage backdrop(const QSize &size = ButtonSize);
    static QImage imageOf(QWidget &widget, QWidget::RenderFlags flags = {});
    QImage imageAt(const QPoint &place);
    static QPixmap checkered(const QSize &size);
    void setState(State state);

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

// The button in a window, at a place that may lie between the pixels of the screen. Ratio 1, so
// that comparisons are in these pixels.
QImage tst_FancyButtonPaint::imageAt(const QPoint &place)
{
    button->move(place);
    QImage image = imageOf(*window, QWidget::DrawChildren);
    image.setDevicePixelRatio(1);
    return image;
}

// Neighbouring pixels differ as much as can be: any scaling or shift shows.
QPixmap tst_FancyButtonPaint::checkered(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, (x + y) % 2 == 0 ? qRgb(255, 255, 0) : qRgb(0, 0, 128));
    }
    image.setPixel(0, 0, qRgb(255, 0, 0));
    return QPixmap::fromImage(image);
}

void tst_FancyButtonPaint::setState(State state)
{
    FancyButtonPrivate *data = ButtonData::of(*button);
    data->m_bMouseHover = state == Hovered || state == PressedAndHovered;
    data->m_bMousePress = state == Pressed || state == PressedAndHovered;
}

void tst_FancyButtonPaint::fillsTheWholeButton_data()
{
    QTest::addColumn<State>("state");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("colored");
    QTest::addColumn<QColor>("expected");

    // An invalid colour's brush is solid and black; only the normal colour is asked for validity.
    const QColor black(Qt::black);
    const QColor none(Backdrop);
    QTest::newRow("idle") << Idle << true << true << Normal;
    QTest::newRow("hovered") << Hovered << true << true << Hover;
    QTest::newRow("pressed") << Pressed << true << true << Press;
    QTest::newRow("pressed over hovered") << PressedAndHovered << true << true << Press;
    QTest::newRow("idle, invalid") << Idle << true << false << none;
    QTest::newRow("hovered, invalid") << Hovered << true << false << black;
    QTest::newRow("pressed, invalid") << Pressed << true << false << black;
    QTest::newRow("disabled") << Idle << false << true << Normal;
    QTest::newRow("disabled, hovered") << Hovered << false << true << Normal;
    QTest::newRow("disabled, hovered, invalid") << Hovered << false << false << none;
    QTest::newRow("disabled, selected") << PressedAndHovered << false << true << Press;
}

void tst_FancyButtonPaint::fillsTheWholeButton()
{
    QFETCH(State, state);
    QFETCH(bool, enabled);
    QFETCH(bool, colored);
    QFETCH(QColor, expected);
    button->setHoverColor(colored ? Hover : QColor());
    button->setPressColor(colored ? Press : QColor());
    button->setNormalColor(colored ? Normal : QColor());
    button->setEnabled(enabled);
    setState(state);

    QImage filled = backdrop();
    filled.fill(expected);

    QCOMPARE(imageOf(*button), filled);
}

void tst_FancyButtonPaint::freshButtonIsTranslucent_data()
{
    QTest::addColumn<State>("state");
    QTest::addColumn<QRgb>("expected");

    // 100 + (255 - 100) * 50 / 255 and 100 - 100 * 50 / 255.
    QTest::newRow("idle") << Idle << Backdrop;
    QTest::newRow("hovered") << Hovered << qRgb(130, 130, 130);
    QTest::newRow("pressed") << Pressed << qRgb(80, 80, 80);
}

void tst_FancyButtonPaint::freshButtonIsTranslucent()
{
    QFETCH(State, state);
    QFETCH(QRgb, expected);
    button->setHasBorder(true);
    setState(state);

    QImage filled = backdrop();
    filled.fill(expected);

    QCOMPARE(imageOf(*button), filled);
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
    const QImage actual = imageOf(*button);

    QCOMPARE(actual, expected);
    const QPoint middle = QPoint(actual.width() / 2, actual.height() / 2);
    QCOMPARE(actual.pixel(middle), Normal.rgb());
    QCOMPARE(actual.pixel(0, 0), Backdrop);
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
    const QPixmap exact = checkered((QSizeF(iconSize) * ratio).toSize());
    QIcon icon(exact);
    icon.addPixmap(QPixmap(exact.size() * 2));
    button->setFixedSize(buttonSize);
    button->setIconSize(iconSize);
    button->setIcon(icon);

    QImage expected = backdrop(WindowSize);
    expected.setDevicePixelRatio(1);
    QPainter painter(&expected);
    painter.drawPixmap((QPointF(place + corner) * ratio).toPoint(), exact);
    painter.end();

    QCOMPARE(button->devicePixelRatioF(), ratio);
    QCOMPARE(ratio, qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                            ? qgetenv("QT_SCALE_FACTOR").toDouble()
                            : 1.0);
    QCOMPARE(imageAt(place), expected);
    QCOMPARE(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps), highDpiPixmaps);
}

void tst_FancyButtonPaint::smallIconIsDrawnAtTheIconSize()
{
    QPixmap small(4, 4);
    small.fill(Qt::red);
    button->setIconSize(QSize(16, 16));
    button->setIcon(small);

    QImage expected = backdrop();
    QPainter painter(&expected);
    painter.fillRect(QRect(16, 8, 16, 16), Qt::red);
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
    QVERIFY2(beforeTheMiddle.red() > 0 && beforeTheMiddle.blue() > 0,
             qPrintable(beforeTheMiddle.name()));
}

void tst_FancyButtonPaint::iconIsDrawnOnce()
{
    QPixmap veil(64, 64);
    veil.fill(QColor(255, 0, 0, 102));
    button->setIconSize(QSize(16, 16));
    button->setIcon(veil);

    const QImage image = imageOf(*button);

    // Two fifths of the red over three fifths of the backdrop.
    QCOMPARE(image.pixel(image.width() / 2, image.height() / 2), qRgb(162, 60, 60));
}

void tst_FancyButtonPaint::iconsOfOnePixelAreDrawn_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("wide") << QSize(10, 1);
    QTest::newRow("high") << QSize(1, 10);
}

void tst_FancyButtonPaint::iconsOfOnePixelAreDrawn()
{
    QFETCH(QSize, size);
    QPixmap red(64, 64);
    red.fill(Qt::red);
    button->setIconSize(size);
    button->setIcon(red);

    const QImage image = imageOf(*button);

    const QPoint corner((ButtonSize.width() - size.width()) / 2,
                        (ButtonSize.height() - size.height()) / 2);
    const QPoint inside = corner * image.devicePixelRatio();
    QVERIFY(image.pixel(inside) != Backdrop);
}

void tst_FancyButtonPaint::iconIsTheNormalOneAlsoWhenDisabledOrChecked()
{
    QPixmap red(64, 64);
    red.fill(Qt::red);
    QPixmap blue(64, 64);
    blue.fill(Qt::blue);
    QIcon icon(red);
    icon.addPixmap(blue, QIcon::Disabled);
    icon.addPixmap(blue, QIcon::Normal, QIcon::On);
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

void tst_FancyButtonPaint::emptyIconSizePaintsNoIcon_data()
{
    QTest::addColumn<QSize>("iconSize");

    QTest::newRow("no width") << QSize(0, 16);
    QTest::newRow("no height") << QSize(16, 0);
}

void tst_FancyButtonPaint::emptyIconSizePaintsNoIcon()
{
    QFETCH(QSize, iconSize);
    button->setIcon(checkered(QSize(16, 16)));
    QVERIFY(imageOf(*button) != backdrop());
    button->setIconSize(iconSize);

    QCOMPARE(imageOf(*button), backdrop());
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
    PrescribedButton prescribed(*button);

    QPixmap transparent(16, 16);
    transparent.fill(Qt::transparent);
    for (QToolButton *each :
         {static_cast<QToolButton *>(button), static_cast<QToolButton *>(&prescribed)}) {
        each->setFixedSize(ButtonSize);
        each->setText(text);
        each->setArrowType(arrow);
        each->setCheckable(true);
        each->setChecked(checked);
        if (icon)
            each->setIcon(transparent);
    }
    const QImage expected = imageOf(prescribed);

    QCOMPARE(imageOf(*button), expected);
    if (!text.isEmpty())
        QVERIFY(expected != backdrop());
}

// Styles may well hide the text of an icon-only button, without an icon or with one.
void tst_FancyButtonPaint::stylesAreAskedForTheText()
{
    auto *style = new RecordingStyle(QStringLiteral("fusion"));
    QApplication::setStyle(style);
    button->setIcon(checkered(QSize(16, 16)));

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
    QTest::addColumn<QToolButton::ToolButtonPopupMode>("mode");

    for (const char *style : {"fusion", "windows"}) {
        for (const bool border : {false, true}) {
            const char *frame = border ? "border" : "no border";
            QTest::addRow("%s, %s, delayed", style, frame)
                    << style << border << QToolButton::DelayedPopup;
            QTest::addRow("%s, %s, menu button", style, frame)
                    << style << border << QToolButton::MenuButtonPopup;
            QTest::addRow("%s, %s, instant", style, frame)
                    << style << border << QToolButton::InstantPopup;
        }
    }
}

void tst_FancyButtonPaint::showsNoMenuArrow()
{
    QFETCH(QString, style);
    QFETCH(bool, border);
    QFETCH(QToolButton::ToolButtonPopupMode, mode);
    QApplication::setStyle(style);
    QMenu menu;
    QAction action(QStringLiteral("Text"));
    button->setHasBorder(border);
    button->setDefaultAction(&action);
    const QImage withoutMenu = imageOf(*button);

    action.setMenu(&menu);
    button->setDefaultAction(&action);
    button->setPopupMode(mode);

    QCOMPARE(imageOf(*button), withoutMenu);
}

void tst_FancyButtonPaint::paintingLeavesTheIconAlone()
{
    const QIcon icon(checkered(QSize(16, 16)));
    button->setIcon(icon);

    imageOf(*button);

    QCOMPARE(button->icon().cacheKey(), icon.cacheKey());
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
    QVERIFY(QTest::qWaitForWindowActive(window.data()));
    button->setFocus();
    QTRY_VERIFY(button->hasFocus());
    window->setAttribute(Qt::WA_KeyboardFocusChange, false);
    QCOMPARE(boundsOf(imageAt(place), qRgb(0, 0, 0)), QRect());

    window->setAttribute(Qt::WA_KeyboardFocusChange);
    const QImage image = imageAt(place);
    const QRect ring = boundsOf(image, qRgb(0, 0, 0));
    // Three pixels inside the button, to the rounding of its place and of its size.
    const qreal ratio = qApp->devicePixelRatio();
    const QRectF ideal(QPointF(place + QPoint(3, 3)) * ratio,
                       QSizeF(ButtonSize - QSize(6, 6)) * ratio);
    QVERIFY(qAbs(ring.left() - ideal.left()) <= 1 && qAbs(ring.top() - ideal.top()) <= 1);
    QVERIFY(qAbs(ring.right() + 1 - ideal.right()) <= 1);
    QVERIFY(qAbs(ring.bottom() + 1 - ideal.bottom()) <= 1);
    const QMap<qreal, int> widths {{1, 2}, {1.25, 3}, {1.5, 3}, {1.75, 4}, {2, 4}, {3, 6}};
    QVERIFY(widths.contains(ratio));
    const int width = widths.value(ratio);
    QImage expected = backdrop(WindowSize);
    expected.setDevicePixelRatio(1);
    QPainter painter(&expected);
    painter.fillRect(ring, Qt::black);
    painter.fillRect(ring.adjusted(width, width, -width, -width), QColor(Backdrop));
    painter.end();
    QCOMPARE(image, expected);

    button->clearFocus();
    QCOMPARE(boundsOf(imageAt(place), qRgb(0, 0, 0)), QRect());
}

QTEST_MAIN(tst_FancyButtonPaint)
#include "tst_FancyButtonPaint.moc"
