#include "shell/PanelStyle.h"

#include "fancy/DevicePixels.h"

#include <QApplication>
#include <QColor>
#include <QEvent>
#include <QFrame>
#include <QPainter>
#include <QPalette>
#include <QStyleOptionFrame>
#include <QWidget>
#include <QWindow>

#include <cmath>

namespace {

const auto BaseStyle = QStringLiteral("Fusion");

//! White on Fusion's own has a contrast of 3.7 to 1 only, on this one of 5. Fusion makes the line
//! around a focused widget of it too: a lighter blue gives one that is too pale for grey.
constexpr QRgb SelectionColor = qRgb(0x00, 0x71, 0xc8);

//! The ring around a focused widget, and the gap between them, in pixels.
constexpr QRgb FocusColor = qRgb(0x00, 0x78, 0xd4);
constexpr int FocusWidth = 2;
constexpr int FocusGap = 1;

bool isWhole(qreal ratio)
{
    return qFuzzyCompare(ratio, std::round(ratio));
}

void drawSeparator(const QStyleOptionFrame &option, QPainter *painter)
{
    const DevicePixels pixels(painter);
    QRect line = pixels.rect(option.rect);
    const int thickness = pixels.length(1);
    if (option.frameShape == QFrame::HLine)
        line = {line.left(), line.center().y(), line.width(), thickness};
    else
        line = {line.center().x(), line.top(), thickness, line.height()};
    const bool isPlain = !(option.state & (QStyle::State_Sunken | QStyle::State_Raised));
    painter->fillRect(line, option.palette.color(isPlain ? QPalette::WindowText : QPalette::Dark));
}

void drawPlainFrame(const QStyleOptionFrame &option, QPainter *painter)
{
    const DevicePixels pixels(painter);
    pixels.fillFrame(pixels.rect(option.rect), pixels.length(1),
                     option.palette.color(QPalette::Mid));
}

void drawFocusRing(const QRect &widget, QPainter *painter)
{
    const DevicePixels pixels(painter);
    const int width = pixels.length(FocusWidth);
    const QRect inner = pixels.rect(widget.marginsAdded({FocusGap, FocusGap, FocusGap, FocusGap}));
    pixels.fillFrame(inner.marginsAdded({width, width, width, width}), width, QColor(FocusColor));
}

} // namespace

PanelStyle::PanelStyle()
    : QProxyStyle(BaseStyle)
{
    // By this name other styles build on the application's.
    setObjectName(BaseStyle);
}

void PanelStyle::install()
{
    auto *style = new PanelStyle;
    QApplication::setStyle(style);
    const QPalette palette = style->standardPalette();
    QApplication::setPalette(palette);

    // Some desktops' plug-ins set a palette or a style of their own when the user changes the
    // theme.
    connect(qGuiApp, &QGuiApplication::paletteChanged, style, [style, palette] {
        if (QApplication::style() == style && QApplication::palette() != palette)
            QApplication::setPalette(palette);
    });
    connect(style, &QObject::destroyed, qGuiApp, &PanelStyle::install, Qt::QueuedConnection);
}

QPalette PanelStyle::standardPalette() const
{
    QPalette palette = QProxyStyle::standardPalette();
    palette.setColor(QPalette::Active, QPalette::Highlight, QColor(SelectionColor));
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(SelectionColor));
    return palette;
}

void PanelStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (widget->inherits("QTipLabel")) {
        // Tool tips have a palette apart, which a theme may change at any time.
        widget->setPalette(standardPalette());
        widget->installEventFilter(this);
    }
}

// Qt may put a tool tip over the very button that it is about: the click there is the button's.
bool PanelStyle::eventFilter(QObject *watched, QEvent *event)
{
    const auto *tip = qobject_cast<QWidget *>(watched);
    QWindow *window = tip ? tip->windowHandle() : nullptr;
    // Only when it is on the screen, and not by setting the flag alone: Qt 5 gives the tip another
    // native window when it is first shown, and takes that one's flag for set.
    if (window && event->type() == QEvent::Paint) {
        window->setFlag(Qt::WindowTransparentForInput, false);
        window->setFlag(Qt::WindowTransparentForInput);
    }
    return QProxyStyle::eventFilter(watched, event);
}

int PanelStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                          QStyleHintReturn *returnData) const
{
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 1;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

void PanelStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const
{
    const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
    // The frame of a drop-down list is a menu's.
    if (element == CE_ShapedFrame && frame
        && !(widget && widget->inherits("QComboBoxPrivateContainer"))) {
        const qreal ratio = painter->device()->devicePixelRatioF();
        const auto shape = frame->frameShape;
        if ((shape == QFrame::HLine || shape == QFrame::VLine) && !isWhole(ratio)) {
            drawSeparator(*frame, painter);
            return;
        }
        // Above a ratio of 1 Fusion centres the frame on the widget's edge, which clips half of it.
        if (shape == QFrame::StyledPanel && ratio > 1) {
            drawPlainFrame(*frame, painter);
            return;
        }
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void PanelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                               QPainter *painter, const QWidget *widget) const
{
    if (element == PE_FrameFocusRect && widget && !widget->hasFocus())
        drawFocusRing(option->rect, painter);
    else
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}
