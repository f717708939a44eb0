#pragma once

#include <QProxyStyle>

class QTabBar;

/*!
    Paints and measures the tabs of one tab bar. All have the same width and are 32 pixels high. The
    background is flat, under the mouse rounded and inset. The icon is centred left of the text. A
    text that is too long is elided in the middle; that of the selected tab is blue.

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
        Returns the common width of all tabs in pixels, or -1 when there is no tab; adjusts
        nothing.

        It is the width of the widest tab and at least 80, limited to an equal share of the tab
        bar's parent (if it has one) and to thirty wide characters of text. It is never less than
        three wide characters need.
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

    //! Whether the selected tab shows as such. Nothing sets it to false.
    bool _bIsActived = true;
    QTabBar *_tabBar;
};
