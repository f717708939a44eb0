#pragma once

#include <QProxyStyle>

class QTabBar;

/*!
    Paints and measures the tabs of one tab bar: all of the same width and 32 pixels high, on a flat
    background that is rounded and inset under the mouse, with the icon centred left of a text that
    is cut in the middle where it is too long, and blue on the selected tab.

    The style is for the tab bar that it is given, which it doesn't own and which must not be
    destroyed before the last use of the style. QWidget::setStyle() takes no ownership: whoever
    creates the style deletes it.
*/
class MultiProjectsTabStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /*!
        A style that measures the tabs of \a tabBar (none: the tabs keep the width of their
        contents, and their labels are the base style's). What it doesn't draw itself it leaves to
        \a style, which it takes over, or to the application's style where that is null.
    */
    explicit MultiProjectsTabStyle(QTabBar *tabBar, QStyle *style = nullptr);

    /*!
        The common width of all tabs in pixels, or -1 when there is no tab.

        It is that of the widest tab and at least 80, but no more than an even share of the tab
        bar's parent (if it has one) and than thirty wide characters of text need; and in any case
        enough for three.
    */
    int adjustItemSize() const;

    using QProxyStyle::polish;
    //! Also makes a tab bar \a widget tell which of its tabs is under the mouse.
    void polish(QWidget *widget) override;

    using QProxyStyle::unpolish;
    //! Takes back what polish() did to \a widget.
    void unpolish(QWidget *widget) override;

    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;

    //! Draws a tab's background, as drawControl() does for CE_TabBarTabShape.
    void drawTabShape(ControlElement element, const QStyleOption *option, QPainter *painter,
                      const QWidget *widget = nullptr) const;
    //! Draws a tab's icon and text, as drawControl() does for CE_TabBarTabLabel.
    void drawTabLabel(ControlElement element, const QStyleOption *option, QPainter *painter,
                      const QWidget *widget = nullptr) const;

private:
    bool showsAsSelected(const QStyleOption &option) const;

    bool _bIsActived = true;
    QTabBar *_tabBar;
};
