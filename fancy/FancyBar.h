#pragma once

#include <QColor>
#include <QWidget>

class FancyBarPrivate;
class FancyButton;
class FancyTitleBar;
class QAction;

/*!
    The title strip of a frameless window: a row with space for the caller's own controls at the
    left and the window's system buttons at the right, on a solid background.

    Create it with the window as parent and place it at the top of the window's layout. It brings a
    FancyTitleBar for that window along, see titleBar(); connect its closeClicked() to the window's
    close(), the bar doesn't. Its height is fixed by setTitleBarHeight(), and by nothing before that
    is called.

    A second row, for a menu bar and further buttons, exists in the private part only: MenuPosition
    has no effect before it is built there.

    \section ownership Ownership

    The title bar controller is a child of the window and goes with the window; all else goes with
    the bar. Bar, window and controller may be destroyed in any order.
*/
class FancyBar : public QWidget
{
    Q_OBJECT

public:
    //! The row that an additional control is added to.
    enum AdditionalControlPosition {
        TitlePosition = 0,
        MenuPosition = 1,
    };
    //! How the rows are arranged. Reserved: no function takes it.
    enum FancyStyle {
        WindowStyle = 0,
        ClassicStyle = 1,
        MergedStyle = 2,
        DialogStyle = 3,
    };

    /*!
        Creates the bar of the window \a parent, in the colour that was last set on any bar and red
        before that. Without a \a parent the bar has no system buttons.
    */
    explicit FancyBar(QWidget *parent = nullptr);

    //! The window's title bar controller; null after it was destroyed.
    FancyTitleBar *titleBar() const;

    //! Stores the colour of the menu's text, opaque RGB (250, 250, 250) by default. Nothing shows
    //! it.
    void setTextColor(const QColor &color);

    /*!
        Paints the bar in \a color from now on, and starts every bar that is created later with it.
        An invalid colour paints this bar black and leaves later ones without a background.
    */
    void setBackgroundColor(const QColor &color);

    /*!
        Adds \a widget at the right end of the controls of the row \a position, which takes it over.
        In the title row \a spacing pixels are put before it; in the menu row \a spacing is ignored.
        Does nothing for a null \a widget and where the row doesn't exist.
    */
    void addAdditionalControl(QWidget *widget, AdditionalControlPosition position, int spacing);

    /*!
        Adds a button that shows text, icon and tooltip of \a action and triggers it, in the same
        place as a widget; in the title row it is 25 pixels high. A press of the mouse on the button
        of an action with a menu opens the menu at the button's bottom left corner, and the button
        looks pressed while it is open.

        Mouse, keyboard and click() alike emit the button's clicked() and with it the action's
        triggered(), once. None of them toggles a checkable action.

        Returns the button, or null for a null \a action. Where the row doesn't exist the button is
        placed nowhere: give it a parent, or it goes with the bar.
    */
    FancyButton *addAdditionalControl(QAction *action, AdditionalControlPosition position,
                                      int spacing);

    //! What titleBar()->resizable() returns from now on; false by default. Changes nothing else.
    void setWidgetResizable(bool resizable);

    /*!
        Fixes the height of the bar and of its title row at \a height pixels where that is from 33
        to 47, and otherwise at the height stored before, 32 by default.
    */
    void setTitleBarHeight(int height);

    //! Shows the system buttons that the window's flags now ask for.
    void updateWidgetFlags();

    //! The bar's present width and its stored height.
    QSize sizeHint() const override;

signals:
    /*!
        The title bar controller's windowResizable(), passed on: the window was maximized where
        \a resizable is false, and restored where it is true.
    */
    void maximizationChanged(bool resizable);

private:
    FancyBarPrivate *d;

    static QColor s_backgroundColor;
};
