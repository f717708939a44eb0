#include "fancy/FancyButton.h"

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
//! Of the mark of the focus, in pixels.
constexpr int FocusMargin = 3;
constexpr int FocusWidth = 2;

//! A pixmap of \a icon of \a size in device pixels, as far as the icon has one so large.
QPixmap devicePixmap(const QIcon &icon, const QSize &size)
{
    // With the attribute QIcon takes a size for one in points and multiplies it once more.
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
    // With it the base would open a menu that the keyboard or click() presses the button for.
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

// The base swallows what reaches a disabled button. A button that was disabled while it was held
// down must still come up.
bool FancyButton::event(QEvent *event)
{
    if (d && !isEnabled() && event->type() == QEvent::MouseButtonRelease
        && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        d->m_bMousePress = false;
        update();
    }
    return QToolButton::event(event);
}

// The base's handler would also announce the default action to the status bar: deliberately left
// out.
void FancyButton::enterEvent(QEvent *)
{
    if (d && isEnabled())
        d->m_bMouseHover = true;
}

void FancyButton::leaveEvent(QEvent *)
{
    if (d)
        d->m_bMouseHover = false;
}

// Deliberately without the base's handler, which would open the menu of the default action.
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

// Where the button went down is deliberately not asked: any left release inside clicks.
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
    paintFocus();
}

QColor FancyButton::backgroundColor() const
{
    if (d->m_bMousePress)
        return d->m_pressColor;
    // The pointer may still be over a button that was disabled under it.
    if (d->m_bMouseHover && isEnabled())
        return d->m_hoverColor;
    return d->m_normalColor;
}

void FancyButton::paintBackground()
{
    const QColor color = backgroundColor();
    if (!color.isValid())
        return;

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QBrush(Qt::NoBrush), OutlineWidth));
    painter.setBrush(color);
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

    const qreal ratio = devicePixelRatioF();
    const QSize deviceSize(qRound(size.width() * ratio), qRound(size.height() * ratio));
    const QPixmap pixmap = devicePixmap(buttonIcon, deviceSize);

    const QRect target(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, pixmap);
}

// The style sheet hides the style's own mark of the focus.
void FancyButton::paintFocus()
{
    if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange))
        return;
    const QRect outer = rect().marginsRemoved({FocusMargin, FocusMargin, FocusMargin, FocusMargin});
    const QRect inner = outer.marginsRemoved({FocusWidth, FocusWidth, FocusWidth, FocusWidth});
    QPainter painter(this);
    painter.setClipRegion(QRegion(outer) - inner);
    painter.fillRect(outer, Qt::black);
}
