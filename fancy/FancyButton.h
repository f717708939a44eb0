#pragma once

#include <QColor>
#include <QToolButton>

struct FancyButtonPrivate;

/*!
    A flat tool button that paints its own background for its states (idle, hovered, pressed), draws
    its icon centred at exactly iconSize() on screens of any density, and leaves the opening of a
    menu to whoever listens to menuTriggered().

    Differences from QToolButton that a caller should know:

    - The button shows no menu arrow and never opens a menu by itself, neither for the mouse nor for
      the keyboard nor for click(). As menuTriggered() is for the mouse alone, a menu that is to be
      within reach of the keyboard needs a way of its own, such as a shortcut.
    - A left press or release acts on its own: a release inside the button emits clicked(false),
      wherever the button went down. The pressed() and released() signals and isDown() stay out of
      it when the mouse is used.
    - The button never triggers or toggles its default action, by mouse or keyboard: connect
      clicked() to it.
    - The text is painted beneath the icon (an icon-only tool button shows its text where it has no
      icon). Give a button with an icon no text unless its icon covers it.
    - A disabled button ignores the mouse and never shows the hover colour. One that is disabled
      while it is held down looks pressed until select(false) or the next left release.
    - A black focus ring inside the button shows that the keyboard has brought the focus there.

    Colours take effect with the next repaint; the setters don't ask for one unless they say so. An
    invalid normal colour paints no background, an invalid hover or press colour an opaque black
    one.
*/
class FancyButton : public QToolButton
{
    Q_OBJECT

public:
    /*!
        Creates an auto-raising, icon-only button with a border, white text, a translucent white
        hover colour, a translucent black press colour and no normal colour. \a parent owns it.
    */
    explicit FancyButton(QWidget *parent = nullptr);
    ~FancyButton() override;

    /*!
        Shows the button pressed until it is called with false, or until a left release. Switching
        \a on off also ends the hover look. Emits nothing.
    */
    virtual void select(bool on);

    //! Background while the pointer is over the button; RGBA (255, 255, 255, 50) by default.
    void setHoverColor(const QColor &color);
    QColor hoverColor() const;

    //! Background while pressed or selected; RGBA (0, 0, 0, 50) by default. Wins over hover.
    void setPressColor(const QColor &color);
    QColor pressColor() const;

    //! The text colour that the next setHasBorder() applies; opaque white by default.
    void setTextColor(const QColor &color);
    QColor textColor() const;

    //! Background otherwise; invalid by default, which paints none.
    void setNormalColor(const QColor &color);
    QColor normalColor() const;

    //! Shows the text in \a color at once. textColor() doesn't change.
    void setColor(const QColor &color);

    //! Whether a press emits menuTriggered() also where the default action carries no menu.
    void setHasMenu(bool hasMenu);
    bool hasMenu() const;

    //! Whether the style paints its border; true by default. Applies textColor() and repaints.
    void setHasBorder(bool hasBorder);

    //! Whether the background is a circle in the middle of the button; false by default.
    void setRound(bool round);

signals:
    /*!
        The left mouse button went down on an enabled button that has a menu: by setHasMenu() or
        through its default action. \a event is the press and lives until the slots return; slots
        place the menu by it. Not emitted for the keyboard.
    */
    void menuTriggered(QMouseEvent *event);

    //! The left mouse button was double-clicked on the enabled button.
    void doubleClicked();

protected:
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override;

private:
    void paintBackground();
    void paintTextAndFrame();
    void paintIcon();
    void paintFocusRing();

    FancyButtonPrivate *d;
};
