#pragma once

#include <QWKCore/windowagentbase.h>

#include <QPoint>
#include <QPointF>
#include <QPointer>

#include <optional>

class QMouseEvent;
class QWidget;
class QWindow;

namespace QWK {

/*!
    Lets the user drag a frameless window by the points that inTitleBarDraggableArea() names.

    The agent sees the left mouse button before the window's widgets do. Over a point that may drag
    it takes press, motion, release and double click for itself, and the window follows the pointer;
    everything else goes to the widgets untouched. The question is asked on a left press and on a
    left double click, and at no other time.

    It is made for a window of fixed size: it moves its window and never resizes it.
*/
class WidgetWindowAgent : public WindowAgentBase
{
    Q_OBJECT

public:
    //! An agent without a window. \a parent is the owner.
    explicit WidgetWindowAgent(QObject *parent = nullptr);
    ~WidgetWindowAgent() override;

    /*!
        Makes the agent serve \a window for as long as both live, and the window frameless for as
        long. The native window need not exist yet, is not created here, and may be replaced later.

        Returns true once. For a null \a window, and after a call that returned true, it returns
        false and changes nothing.
    */
    bool setup(QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void attach();
    bool handlePress(const QMouseEvent &event);
    bool handleMove(const QMouseEvent &event);
    bool handleRelease(const QMouseEvent &event);

    QPointer<QWidget> m_widget;
    QPointer<QWindow> m_window;
    bool m_isSetUp = false;
    bool m_isDragging = false;
    //! The pointer's position in the window when the drag began, in window coordinates.
    QPointF m_grip;
    //! The place last asked for, and when the pointer asked for it (milliseconds, the server's).
    QPoint m_requested;
    ulong m_requestTime = 0;
    //! That place before it was rounded to whole pixels; none before the first drag.
    std::optional<QPointF> m_exact;
    //! True until a move event reports that place.
    bool m_isSettling = false;
};

} // namespace QWK
