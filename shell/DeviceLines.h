#pragma once

#include <QObject>

class QWidget;

/*!
    Keeps the lines that style sheets draw on a page whole where the device pixel ratio is no whole
    number. At whole ratios it changes nothing.

    Qt 5 places a line of one pixel between device pixels there: it comes out blurred, one or two of
    them thick, or not at all, by where its widget happens to stand. This object paints such lines
    anew, over Qt's own. The page names their colours by properties of its widgets:

    - "borderColor": a widget has a border of 1 pixel in this colour, at all edges or, with
      "borderEdges" (Qt::Edges as an int), at these;
    - "headerColor": a table's header has this background, and there are gaps of 2 pixels in the
      table's base colour between its columns, and of 1 around it.
*/
class DeviceLines : public QObject
{
    Q_OBJECT

public:
    //! Serves all that \a page contains and names now. The page is the owner.
    explicit DeviceLines(QWidget *page);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool m_isForwarding = false;
};
