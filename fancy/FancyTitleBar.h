#pragma once

#include <QIcon>
#include <QObject>

class FancyTitleBarPrivate;
class QWidget;

/*!
    Gives a frameless top-level widget, its main widget, the buttons that a window frame would have:
    minimize, maximize or restore, and close, in one group widget. It follows the window's state, so
    that the maximize button always shows what it would do. A system menu of the same commands is
    built, but nothing opens it so far.

    The title bar is no widget. It draws no caption and neither moves nor resizes the window: place
    systemGroup() in a strip of your own. Construct it when the main widget has its final window
    flags. Minimize and maximize stay hidden until updateWidgetFlags() finds their hints among these
    flags.

    The title bar consumes every QEvent::WindowStateChange of the main widget: that widget's own
    changeEvent() doesn't see it.

    The icons come from the resources close.svg, minimize.svg, maximize.svg and restore.svg under
    ":/client/resources/". Each is stored twice, as light and as dark variant, from the same file;
    the dark variants are in use from the start.

    \section ownership Ownership

    The title bar is a child of the main widget, and so are the menu, the group and the buttons. The
    group moves on to the widget in whose layout it is placed. Each of them may be destroyed before
    the others: what is gone is null here, and operations that miss something do nothing.
*/
class FancyTitleBar : public QObject
{
    Q_OBJECT

public:
    /*!
        Builds buttons, group and menu for the main widget \a parent and filters its events. With a
        null \a parent the title bar is inert: no main widget, no group, no buttons.
    */
    explicit FancyTitleBar(QWidget *parent);
    ~FancyTitleBar() override;

    //! Tells which widget forms the title strip. It is kept, not owned, and not used so far.
    void setTitleWidget(QWidget *widget);

    //! The window that is served; null for an inert title bar and after the window is gone.
    QWidget *mainWidget() const;

    //! The widget with the three buttons, to be placed in the title strip; may be null.
    QWidget *systemGroup() const;

    /*!
        Set the icon of one button, until the title bar next applies those that it has stored: the
        maximize button gets the stored one with every change of the window's state.
    */
    void setCloseIcon(QIcon &icon);
    void setMinimizeIcon(QIcon &icon);
    void setMaximizeIcon(QIcon &icon);

    /*!
        Stores \a icon as the light variant of the restore icon, which a maximized window's button
        shows after setIconDark(false) and a state change. On a window that isn't maximized it also
        shows at once on the maximize button, until the next state change. Does nothing without a
        main widget.
    */
    void setNormalIcon(QIcon &icon);

    //! Chooses the dark or the light icons for the next state change; changes no icon now. The dark
    //! ones are chosen by default.
    void setIconDark(bool dark);

    //! What resizable() returns; false by default. Emits nothing.
    void setWidgetResizable(bool resizable);
    //! Kept for handlers that move the window; true by default. Emits nothing.
    void setWidgetMovable(bool movable);
    //! Kept for handlers that maximize the window; false by default. updateWidgetFlags() sets it as
    //! well.
    void setWidgetMaximizable(bool maximizable);

    //! Reads the main widget's window flags anew and shows the buttons whose hints they contain.
    void updateWidgetFlags();

    bool resizable() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    /*!
        For connections: the window was maximized (false) or restored (true) by private operations
        that nothing calls so far. The buttons and the window manager don't emit it.
    */
    void windowResizable(bool resizable);
    //! For connections; not emitted by the title bar.
    void windowMovable(bool movable);
    //! For connections; not emitted by the title bar.
    void windowIconChanged(QIcon &icon);
    //! The close button or its menu entry was used. The title bar doesn't close the window itself.
    void closeClicked();
    //! For connections; not emitted by the title bar. The spelling is part of the interface.
    void moveContinousOver();

private:
    FancyTitleBarPrivate *d;
};
