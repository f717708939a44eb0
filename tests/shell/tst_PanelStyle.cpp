#include "shell/PanelStyle.h"
#include "tests/support/contrast.h"
#include "tests/support/pixels.h"
#include "tests/support/waits.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionFocusRect>
#include <QTest>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr double TextContrast = 4.5;
constexpr QRgb White = qRgb(255, 255, 255);

//! A white widget that holds what is to be looked at, shown.
class Page : public QWidget
{
public:
    Page()
    {
        resize(200, 100);
        QPalette white;
        white.setColor(QPalette::Window, Qt::white);
        setPalette(white);
    }

    //! Whether it is on the screen.
    bool appear()
    {
        show();
        return QTest::qWaitForWindowExposed(this, WindowTimeoutMs);
    }

    QImage image() { return grab().toImage().convertToFormat(QImage::Format_RGB32); }
};

//! Draws a focus rectangle around a part of itself, as a page does for its focused widget.
class RingPage : public Page
{
public:
    QRect part;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = part;
        QPainter painter(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
};

//! What is painted two pixels left of \a part: the ring, where there is one.
QRgb ringColor(const QImage &image, const QRect &part)
{
    return image.pixel(
            (QPointF(part.left() - 2, part.center().y()) * image.devicePixelRatioF()).toPoint());
}

QVector<QRgb> withoutBackground(QVector<QRgb> pixels)
{
    pixels.removeAll(White);
    return pixels;
}

} // namespace

/*!
    What the application's style adds to Fusion. It runs at several scales, by QT_SCALE_FACTOR.
*/
class tst_PanelStyle : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void isFusion();
    void paletteIsFusionsButForTheSelection();
    void staysWhenThePaletteIsChanged();
    void staysWhenTheStyleIsChanged();
    void toolTipsHaveThePalette();
    void dropDownListsKeepFusionsFrame();
    void separatorsAreEquallyThick_data();
    void separatorsAreEquallyThick();
    void plainFramesAreEquallyThick();
    void focusRing();
    void focusedWidgetsKeepFusionsFocusRectangle();
};

void tst_PanelStyle::init()
{
    if (!qobject_cast<PanelStyle *>(QApplication::style()))
        PanelStyle::install();
}

void tst_PanelStyle::isFusion()
{
    const auto *style = qobject_cast<PanelStyle *>(QApplication::style());
    QVERIFY(style);
    QCOMPARE(style->baseStyle()->metaObject()->className(), "QFusionStyle");
    // The name by which another style finds the application's.
    QCOMPARE(style->objectName(), QStringLiteral("Fusion"));
}

void tst_PanelStyle::paletteIsFusionsButForTheSelection()
{
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(QStringLiteral("Fusion")));
    const QPalette expected = fusion->standardPalette();
    const QPalette palette = QApplication::palette();
    for (int group = 0; group < QPalette::NColorGroups; ++group) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const bool isSelection = role == QPalette::Highlight && group != QPalette::Disabled;
            const auto color = [=](const QPalette &of) {
                return of.color(QPalette::ColorGroup(group), QPalette::ColorRole(role));
            };
            QCOMPARE(color(palette), isSelection ? QColor(0, 113, 200) : color(expected));
        }
        QVERIFY(contrast(palette.color(QPalette::ColorGroup(group), QPalette::WindowText).rgb(),
                         palette.color(QPalette::ColorGroup(group), QPalette::Window).rgb())
                >= (group == QPalette::Disabled ? 1 : TextContrast));
    }
    QVERIFY(contrast(palette.highlightedText().color().rgb(), palette.highlight().color().rgb())
            >= TextContrast);
}

void tst_PanelStyle::staysWhenThePaletteIsChanged()
{
    const QPalette palette = QApplication::palette();
    QLabel label;
    QApplication::setPalette(QPalette(Qt::darkGray));
    QCOMPARE(QApplication::palette(), palette);
    QCOMPARE(label.palette().color(QPalette::Window), palette.color(QPalette::Window));
}

void tst_PanelStyle::toolTipsHaveThePalette()
{
    Page page;
    QVERIFY(page.appear());
    QToolTip::setPalette(QPalette(Qt::darkGray));
    QToolTip::showText(page.mapToGlobal(QPoint(10, 10)), QStringLiteral("tip"), &page);
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto tip = std::find_if(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->inherits("QTipLabel");
    });
    QVERIFY(tip != windows.end());
    QCOMPARE((*tip)->palette().color(QPalette::ToolTipBase),
             QApplication::palette().color(QPalette::ToolTipBase));
    QCOMPARE((*tip)->palette().color(QPalette::Window),
             QApplication::palette().color(QPalette::Window));
}

void tst_PanelStyle::dropDownListsKeepFusionsFrame()
{
    Page page;
    QComboBox list(&page);
    list.addItems({QStringLiteral("one"), QStringLiteral("two")});
    QVERIFY(page.appear());
    list.showPopup();
    QWidget *frame = list.view()->parentWidget();
    QTRY_VERIFY(frame->isVisible());
    const QImage shown = frame->grab().toImage();

    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(QStringLiteral("Fusion")));
    frame->setStyle(fusion.get());
    QCOMPARE(differingPixels(frame->grab().toImage(), shown).boundingRect(), QRect());
    frame->setStyle(nullptr);
}

void tst_PanelStyle::staysWhenTheStyleIsChanged()
{
    const QPalette palette = QApplication::palette();
    for (int change = 0; change < 2; ++change) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Windows")));
        QTRY_VERIFY(qobject_cast<PanelStyle *>(QApplication::style()));
        QCOMPARE(QApplication::palette(), palette);
    }
}

void tst_PanelStyle::separatorsAreEquallyThick_data()
{
    QTest::addColumn<QFrame::Shape>("shape");
    QTest::addColumn<QFrame::Shadow>("shadow");
    QTest::addColumn<QPalette::ColorRole>("role");

    QTest::newRow("horizontal") << QFrame::HLine << QFrame::Sunken << QPalette::Dark;
    QTest::newRow("vertical") << QFrame::VLine << QFrame::Sunken << QPalette::Dark;
    QTest::newRow("plain") << QFrame::VLine << QFrame::Plain << QPalette::WindowText;
}

void tst_PanelStyle::separatorsAreEquallyThick()
{
    QFETCH(const QFrame::Shape, shape);
    QFETCH(const QFrame::Shadow, shadow);
    QFETCH(const QPalette::ColorRole, role);
    const bool isHorizontal = shape == QFrame::HLine;
    Page page;
    QFrame line(&page);
    line.setFrameShape(shape);
    line.setFrameShadow(shadow);
    // The light half of a sunken line doesn't show on white.
    line.setPalette(page.palette());
    QVERIFY(page.appear());

    const double ratio = page.devicePixelRatioF();
    const bool isWhole = qFuzzyCompare(ratio, std::round(ratio));
    int thickness = qRound(ratio);

    // Wherever it stands between the device pixels.
    for (int place = 3; place < 11; ++place) {
        line.setGeometry(isHorizontal ? QRect(10, place, 100, 3) : QRect(place, 10, 3, 80));
        const QImage image = page.image();
        const int middle = int(40 * ratio);
        const QVector<QRgb> across =
                withoutBackground(isHorizontal ? column(image, middle) : ::line(image, middle));
        // Where Qt needs no help, its own thickness counts.
        if (isWhole && place == 3)
            thickness = std::max(1, across.size());
        QCOMPARE(across, QVector<QRgb>(thickness, page.palette().color(role).rgb()));
    }
}

void tst_PanelStyle::plainFramesAreEquallyThick()
{
    Page page;
    QFrame frame(&page);
    frame.setFrameStyle(int(QFrame::StyledPanel) | int(QFrame::Raised));
    QVERIFY(page.appear());
    const double ratio = page.devicePixelRatioF();

    for (int place = 3; place < 11; ++place) {
        frame.setGeometry(place, place, 100, 60);
        const QImage image = page.image();
        const QVector<QRgb> across = withoutBackground(line(image, int(40 * ratio)));
        const QVector<QRgb> down = withoutBackground(column(image, int(40 * ratio)));
        const QVector<QRgb> expected(2 * qRound(ratio), across.value(0));
        QCOMPARE(across, expected);
        QCOMPARE(down, expected);
        if (ratio > 1)
            QCOMPARE(across.first(), page.palette().color(QPalette::Mid).rgb());
    }
}

void tst_PanelStyle::focusRing()
{
    RingPage page;
    QVERIFY(page.appear());
    const double ratio = page.devicePixelRatioF();
    const int width = qRound(2 * ratio);
    page.part = QRect(13, 13, 100, 60);
    const QRgb color = ringColor(page.image(), page.part);
    QVERIFY(color != White);
    // The same at every scale: one of them tells.
    if (qFuzzyCompare(ratio, 1.0))
        QCOMPARE(QColor(color), QColor(0, 120, 212));

    for (int place = 13; place < 21; ++place) {
        page.part = QRect(place, place, 100, 60);
        const QImage image = page.image();
        const auto toDevice = [ratio](int logical) { return qRound(logical * ratio); };
        // A gap of one logical pixel lies between the part and the ring.
        const QRect inner(QPoint(toDevice(place - 1), toDevice(place - 1)),
                          QPoint(toDevice(place + 101) - 1, toDevice(place + 61) - 1));
        QImage expected(image.size(), image.format());
        expected.fill(White);
        QPainter painter(&expected);
        painter.fillRect(inner.adjusted(-width, -width, width, width), QColor(color));
        painter.fillRect(inner, Qt::white);
        painter.end();
        QVERIFY2(image == expected,
                 qPrintable(QStringLiteral("at %1: %2").arg(place).arg(colorsOf(image))));
    }
}

void tst_PanelStyle::focusedWidgetsKeepFusionsFocusRectangle()
{
    RingPage page;
    page.part = QRect(20, 20, 100, 60);
    page.setFocusPolicy(Qt::StrongFocus);
    QVERIFY(page.appear());
    page.activateWindow();
    page.setFocus();
    QTRY_VERIFY(page.hasFocus());
    QCOMPARE(QColor(ringColor(page.image(), page.part)), QColor(White));
}

QTEST_MAIN(tst_PanelStyle)
#include "tst_PanelStyle.moc"
