#pragma once

#include <QProxyStyle>

/*!
    The application's style: Fusion, the same on every desktop, with what a dense screen and the
    panel's pages need besides.

    - Separators and plain frames are whole device pixels thick at device pixel ratios above 1.
    - A focus rectangle that a page asks for around another widget is a ring.
    - Tool tips let the pointer through to what lies below them.
*/
class PanelStyle : public QProxyStyle
{
    Q_OBJECT

public:
    PanelStyle();

    /*!
        Makes a new PanelStyle the application's style and its palette the application's, and keeps
        both when the desktop's theme changes. Call it once, when the application object exists,
        which owns the style. Neither the command line nor the environment chooses another.
    */
    static void install();

    //! Fusion's palette, with a selection that white text stands out from.
    QPalette standardPalette() const override;

    using QProxyStyle::polish;
    //! Also makes a tool tip \a widget transparent for the pointer.
    void polish(QWidget *widget) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

    //! Gives the buttons of message boxes icons, whatever the desktop prefers.
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr,
                  const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
};
