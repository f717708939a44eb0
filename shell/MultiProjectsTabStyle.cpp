#include "shell/MultiProjectsTabStyle.h"

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QIcon>
#include <QPainter>
#include <QPen>
#include <QStyleFactory>
#include <QStyleOptionTab>
#include <QTabBar>

#include <algorithm>

namespace {

constexpr int TabHeight = 32;
constexpr int MinimumTabWidth = 80;
constexpr int HoverInset = 4;
//! Between the text of a tab and an icon or a button.
constexpr int PartSpacing = 4;

constexpr char16_t WideCharacter = u'\u94B0';
constexpr int FewestWideCharacters = 3;
constexpr int MostWideCharacters = 30;

constexpr QRgb SelectedColor = qRgb(255, 255, 255);
constexpr QRgb HoverColor = qRgb(246, 247, 249);
constexpr QRgb PlainColor = qRgb(215, 215, 222);

//! Marks a tab bar whose WA_Hover polish() has set.
constexpr const char *HoverProperty = "multiProjectsHover";

constexpr QRgb SelectedTextColor = qRgb(0, 106, 177);
constexpr QRgb TextColor = qRgb(0, 0, 0);

int textWidth(const QFontMetrics &metrics, const QString &text)
{
    return metrics.size(Qt::TextShowMnemonic, text).width();
}

//! What a button of \a size beside the text takes.
int buttonWidth(const QSize &size)
{
    return size.isEmpty() ? 0 : size.width() + PartSpacing;
}

//! Exposes the protected initStyleOption().
struct TabBarOpener : QTabBar
{
    using QTabBar::initStyleOption;
};

// The protected initStyleOption() gives the same measures as the tab bar's private tab list.
QStyleOptionTab tabOption(const QTabBar &tabBar, int index)
{
    QStyleOptionTab option;
    (tabBar.*&TabBarOpener::initStyleOption)(&option, index);
    // There the text is already cut to the tab's present width.
    option.text = tabBar.tabText(index);
    return option;
}

//! Another one of the application's style. QProxyStyle itself would take the desktop's.
QStyle *applicationStyle()
{
    return QStyleFactory::create(QApplication::style()->objectName());
}

} // namespace

MultiProjectsTabStyle::MultiProjectsTabStyle(QTabBar *tabBar, QStyle *style)
    : QProxyStyle(style ? style : applicationStyle())
    , _tabBar(tabBar)
{
}

int MultiProjectsTabStyle::adjustItemSize() const
{
    const int count = _tabBar ? _tabBar->count() : 0;
    if (count == 0)
        return -1;

    const QFontMetrics metrics((QFont()));
    int widestTab = 0;
    int widestText = 0;
    for (int i = 0; i < count; ++i) {
        const QStyleOptionTab option = tabOption(*_tabBar, i);
        const int text = textWidth(metrics, option.text);
        const int icon = option.icon.isNull() ? 0 : option.iconSize.width() + PartSpacing;
        const int space = pixelMetric(PM_TabBarTabHSpace, &option, _tabBar);
        // The result is not needed, as the height is fixed; base styles still see the request.
        pixelMetric(PM_TabBarTabVSpace, &option, _tabBar);
        const int tab = icon + text + space + buttonWidth(option.leftButtonSize)
                        + buttonWidth(option.rightButtonSize);
        if (tab > widestTab) {
            widestTab = tab;
            widestText = text;
        }
    }

    const auto widthFor = [&](int characters) {
        const QString text(characters, QChar(WideCharacter));
        return textWidth(metrics, text) - widestText + widestTab;
    };
    int width = std::min(std::max(widestTab, MinimumTabWidth), widthFor(MostWideCharacters));
    if (const QWidget *parent = _tabBar->parentWidget())
        width = std::min(width, parent->width() / count);
    return std::max(width, widthFor(FewestWideCharacters));
}

void MultiProjectsTabStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    // Without it a tab bar never paints a tab as hovered, and not every base style sets it.
    if (qobject_cast<QTabBar *>(widget) && !widget->testAttribute(Qt::WA_Hover)) {
        widget->setAttribute(Qt::WA_Hover);
        widget->setProperty(HoverProperty, true);
    }
}

void MultiProjectsTabStyle::unpolish(QWidget *widget)
{
    if (widget->property(HoverProperty).isValid()) {
        widget->setAttribute(Qt::WA_Hover, false);
        widget->setProperty(HoverProperty, QVariant());
    }
    QProxyStyle::unpolish(widget);
}

QSize MultiProjectsTabStyle::sizeFromContents(ContentsType type, const QStyleOption *option,
                                              const QSize &size, const QWidget *widget) const
{
    if (type != CT_TabBarTab)
        return QProxyStyle::sizeFromContents(type, option, size, widget);

    const int width = adjustItemSize();
    return {width >= 1 ? width : size.width(), TabHeight};
}

void MultiProjectsTabStyle::drawControl(ControlElement element, const QStyleOption *option,
                                        QPainter *painter, const QWidget *widget) const
{
    switch (element) {
    case CE_TabBarTabShape:
        drawTabShape(element, option, painter, widget);
        break;
    case CE_TabBarTabLabel:
        drawTabLabel(element, option, painter, widget);
        break;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void MultiProjectsTabStyle::drawTabShape(ControlElement element, const QStyleOption *option,
                                         QPainter *painter, const QWidget *widget) const
{
    if (!painter || !option) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }

    const bool isSelected = showsAsSelected(*option);
    const bool isHovered = !isSelected && option->state.testFlag(State_MouseOver);
    const int inset = isHovered ? HoverInset : 0;

    painter->save();
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(isSelected ? SelectedColor : isHovered ? HoverColor : PlainColor));
    painter->drawRoundedRect(option->rect.adjusted(inset, inset, -inset, -inset), inset, inset,
                             Qt::AbsoluteSize);
    painter->restore();
}

void MultiProjectsTabStyle::drawTabLabel(ControlElement element, const QStyleOption *option,
                                         QPainter *painter, const QWidget *widget) const
{
    const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option);
    if (!painter || !_tabBar || !tab) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }

    const QRect textRect = subElementRect(SE_TabBarTabText, option, widget);
    const QSize iconSize = tab->iconSize;
    const int gap = textRect.left() - tab->rect.left();
    // Without the tab's top: the icon's y is an offset from 0.
    const QPoint iconPosition(tab->rect.left() + (gap - iconSize.width()) / 2,
                              (tab->rect.height() - iconSize.height()) / 2);
    const QFont font;

    painter->save();
    painter->drawPixmap(QRect(iconPosition, iconSize),
                        tab->icon.pixmap(iconSize, QIcon::Normal, QIcon::Off));

    QPen pen = painter->pen();
    pen.setColor(QColor(showsAsSelected(*option) ? SelectedTextColor : TextColor));
    painter->setPen(pen);
    painter->setFont(font);
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(tab->text, Qt::ElideMiddle, textRect.width()));
    painter->restore();
}

//! Whether the tab of \a option has the look of the selected one.
bool MultiProjectsTabStyle::showsAsSelected(const QStyleOption &option) const
{
    return _bIsActived && option.state.testFlag(State_Selected);
}
