#pragma once

#include <QWidget>

class FancyBar;
class TabTitle;
class Ui_ServiceContainer;

/*!
    The panel's one window: frameless, always of fixedSize(), with the title strip on top
    and the stack of the two pages below it, the run-status page first.

    The window can be dragged by its strip, except where inTitleBarDraggableArea() says otherwise,
    and is closed by the strip's close button. The tabs that choose the page are hidden. Should the
    strip come without a title bar, there is nothing in the window but an empty stack.
*/
class ServiceContainer : public QWidget
{
    Q_OBJECT

public:
    /*!
        Builds the window with its pages. Blocks for the run-status page's first refresh, and has
        the settings page create its folder and read its file. \a parent is the owner.
    */
    explicit ServiceContainer(QWidget *parent = nullptr);
    ~ServiceContainer() override;

    //! The size that every window has: 800 × 600 pixels at a scale of 1.
    static constexpr QSize fixedSize() { return {800, 600}; }

    //! Whether a press at \a pos, in window coordinates, may drag the window. False where there is
    //! no tab header.
    bool inTitleBarDraggableArea(const QPoint &pos) const;

public slots:
    //! Shows page \a index: 0 is the run-status page, 1 the settings page.
    void onTabIndexChanged(int index);

private:
    Ui_ServiceContainer *ui;
    FancyBar *bar = nullptr;
    TabTitle *tab = nullptr;
};
