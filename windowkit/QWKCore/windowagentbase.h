#pragma once

#include <QObject>

class QPoint;

namespace QWK {

/*!
    What every frameless-window agent has: the question whether a point of its window may drag it.
*/
class WindowAgentBase : public QObject
{
    Q_OBJECT

public:
    //! An agent without a window. \a parent is the owner.
    explicit WindowAgentBase(QObject *parent = nullptr);
    ~WindowAgentBase() override;

signals:
    /*!
        Asks whether a press at \a pos, in window coordinates (pixels from the window's top-left
        corner), may drag the window. The answer is what the receiver returns, the last one's where
        there are several, and false without a receiver. Only receivers that are called at once, in
        the agent's own thread, can answer.
    */
    bool inTitleBarDraggableArea(const QPoint &pos);
};

} // namespace QWK
