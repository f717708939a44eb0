#include "fancy/FancyButton.h"

#include "fancy/DevicePixels.h"
#include "fancy/FancyButton_p.h"
#include "fancy/colorToArgb.h"

#include <QAction>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>
#include <QPointer>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace {
const QLatin1String BorderSheet("QToolButton::menu-indicator { image: None; }"
                                "QToolButton{background-color: transparent;color: #%1;}");
const QLatin1String
        NoBorderSheet("QToolButton::menu-indicator { image: None; }"
                      "QToolButton{background-color: transparent;color: #%1;border:none;}");
constexpr qreal OutlineWidth = 1.0;
//! Of the focus ring, in pixels.
constexpr int FocusMargin = 3;
constexpr int FocusWidth = 2;

//! A pixmap of \a icon of \a size in device pixels, as far as the icon has one so large.
QPixmap devicePixmap(const QIcon &icon, const QSize &size)
{
    // With AA_UseHighDpiPixmaps, QIcon would multiply the size by the device pixel ratio once more.
    const bool multiplies = QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
    const QPixmap pixmap = icon.pixmap(size, QIcon::Normal, QIcon::Off);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, multiplies);
    return pixmap;
}

} // namespace

FancyButton::FancyButton(QWidget *parent)
    : QToolButton(parent)
    , d(new FancyButtonPrivate)
{
    d->q = this;
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setAutoRaise(true);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setColor(Qt::white);
    // Otherwise the base opens the menu on pressed(), for the keyboard and click().
    disconnect(this, SIGNAL(pressed()), this, SLOT(_q_buttonPressed()));
}

FancyButton::~FancyButton()
{
    delete d;
}

void FancyButton::select(bool on)
{
    if (!d)
        return;
    d->m_bMousePress = on;
    if (!on)
        d->m_bMouseHover = false;
    update();
}

void FancyButton::setHoverColor(const QColor &color)
{
    if (d)
        d->m_hoverColor = color;
}

QColor FancyButton::hoverColor() const
{
    return d ? d->m_hoverColor : QColor();
}

void FancyButton::setPressColor(const QColor &color)
{
    if (d)
        d->m_pressColor = color;
}

QColor FancyButton::pressColor() const
{
    return d ? d->m_pressColor : QColor();
}

void FancyButton::setTextColor(const QColor &color)
{
    if (d)
        d->m_textColor = color;
}

QColor FancyButton::textColor() const
{
    return d ? d->m_textColor : QColor();
}

void FancyButton::setNormalColor(const QColor &color)
{
    if (d)
        d->m_normalColor = color;
}

QColor FancyButton::normalColor() const
{
    return d ? d->m_normalColor : QColor();
}

void FancyButton::setColor(const QColor &color)
{
    if (!d)
        return;
    const QString sheet = d->m_hasBorder ? BorderSheet : NoBorderSheet;
    setStyleSheet(sheet.arg(colorToArgb(color)));
}

void FancyButton::setHasMenu(bool hasMenu)
{
    if (d)
        d->m_hasMenu = hasMenu;
}

bool FancyButton::hasMenu() const
{
    return d && d->m_hasMenu;
}

void FancyButton::setHasBorder(bool hasBorder)
{
    if (!d)
        return;
    d->m_hasBorder = hasBorder;
    setColor(d->m_textColor);
    update();
}

void FancyButton::setRound(bool round)
{
    if (d)
        d->m_bRound = round;
}

// Without the base's handler, which would announce the default action to the status bar.
void FancyButton::enterEvent(QEvent *)
{
    // When the application changes its style, the former one's unpolish() clears WA_Hover.
    setAttribute(Qt::WA_Hover);
    if (d && isEnabled())
        d->m_bMouseHover = true;
}

void FancyButton::leaveEvent(QEvent *)
{
    if (d)
        d->m_bMouseHover = false;
}

// Without the base's handler, which would open the menu of the default action.
void FancyButton::mousePressEvent(QMouseEvent *event)
{
    if (!d || !event || !isEnabled() || event->button() != Qt::LeftButton)
        return;
    d->m_bMousePress = true;

    const QPointer<FancyButton> self(this);
    if (d->m_hasMenu || (defaultAction() && defaultAction()->menu()))
        emit menuTriggered(event);
    if (self)
        update();
}

void FancyButton::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (d && event && isEnabled() && event->button() == Qt::LeftButton)
        emit doubleClicked();
}

// The base would also trigger the default action; callers connect clicked() to it.
void FancyButton::nextCheckState()
{
    if (!defaultAction())
        QToolButton::nextCheckState();
}

// Any left release inside clicks, wherever the button went down.
void FancyButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (!d || !event || event->button() != Qt::LeftButton)
        return;
    d->m_bMousePress = false;
    update();
    if (rect().contains(event->localPos().toPoint()))
        emit clicked(false);
}

void FancyButton::paintEvent(QPaintEvent *)
{
    if (!d)
        return;
    paintBackground();
    paintTextAndFrame();
    paintIcon();
    paintFocusRing();
}

void FancyButton::paintBackground()
{
    QBrush brush(Qt::NoBrush);
    // Only the normal colour may be invalid to paint nothing; an invalid one gives a solid brush.
    if (d->m_bMousePress)
        brush = d->m_pressColor;
    // The pointer may still be over a button that was disabled under it.
    else if (d->m_bMouseHover && isEnabled())
        brush = d->m_hoverColor;
    else if (d->m_normalColor.isValid())
        brush = d->m_normalColor;
    else
        return;

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QBrush(Qt::NoBrush), OutlineWidth));
    painter.setBrush(brush);
    if (d->m_bRound) {
        const int radius = qMin(width(), height()) / 2;
        painter.drawEllipse(width() / 2 - radius, height() / 2 - radius, 2 * radius, 2 * radius);
    } else {
        painter.drawRect(rect());
    }
}

void FancyButton::paintTextAndFrame()
{
    QStyleOptionToolButton option;
    initStyleOption(&option);

    // Clearing the icon of the option instead of the button's own leaves nothing to repaint.
    option.icon = QIcon();
    if (option.arrowType == Qt::NoArrow && !option.text.isEmpty())
        option.toolButtonStyle = Qt::ToolButtonTextOnly;

    // The style sheet can't hide the arrow of a button that Qt has switched to MenuButtonPopup.
    option.features &= ~(QStyleOptionToolButton::HasMenu | QStyleOptionToolButton::MenuButtonPopup);
    option.subControls &= ~QStyle::SC_ToolButtonMenu;
    option.activeSubControls &= ~QStyle::SC_ToolButtonMenu;

    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
}

void FancyButton::paintIcon()
{
    const QIcon buttonIcon = icon();
    const QSize size = iconSize();
    if (buttonIcon.isNull() || size.isEmpty())
        return;

    const QPoint corner((width() - size.width()) / 2, (height() - size.height()) / 2);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const DevicePixels pixels(&painter);
    const QSize deviceSize(pixels.length(size.width()), pixels.length(size.height()));
    const QRect target(pixels.rect({corner, size}).topLeft(), deviceSize);
    painter.drawPixmap(target, devicePixmap(buttonIcon, deviceSize));
}

// The style sheet hides the style's own focus ring.
void FancyButton::paintFocusRing()
{
    if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange))
        return;
    QPainter painter(this);
    const DevicePixels pixels(&painter);
    const int margin = pixels.length(FocusMargin);
    const QRect outer = pixels.rect(rect()).adjusted(margin, margin, -margin, -margin);
    pixels.fillFrame(outer, pixels.length(FocusWidth), Qt::black);
}
