#pragma once

#include <QWidget>

class Ui_TabTitle;

/*!
    The header in the window's title bar: the panel's icon and its name in white on blue, and the
    tabs that choose the page. The tabs have no pages of their own; whoever holds the pages follows
    tabIndexChanged().
*/
class TabTitle : public QWidget
{
    Q_OBJECT

public:
    //! Builds the header with its two tabs, the first of them current. \a parent is the owner.
    explicit TabTitle(QWidget *parent = nullptr);
    ~TabTitle() override;

    /*!
        Whether a press at \a pos may drag the window: true inside the header, except in a rectangle
        of the tab widget's size at the header's own top-left corner, whether the tabs are shown or
        not. The borders count as inside for both.
    */
    bool inDragArea(const QPoint &pos) const;

    //! Shows the tabs, or hides them when \a show is false.
    void showTabWidget(bool show);

signals:
    //! The current tab has become \a index, counted from 0. Not emitted during construction.
    void tabIndexChanged(int index);

private:
    Ui_TabTitle *ui;
};
