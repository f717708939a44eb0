#pragma once

#include <QObject>

class QWidget;

/*!
    Keeps the thin lines of a page whole where the device pixel ratio is no whole number.

    Qt 5 places a line of one pixel between device pixels there: it comes out one or two of them
    thick, or not at all, by where its widget happens to stand. This object paints anew, on device
    pixels, the separators, the plain frames, the borders of 1 pixel that style sheets set, and the
    gaps between a table's cells. At whole ratios it paints the plain frames only, and at 1 nothing.
*/
class DeviceLines : public QObject
{
    Q_OBJECT

public:
    //! Serves all that \a page contains now. The page is the owner.
    explicit DeviceLines(QWidget *page);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool m_isForwarding = false;
};
