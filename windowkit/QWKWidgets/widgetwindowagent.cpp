#include <QWKWidgets/widgetwindowagent.h>

#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

#include <cmath>
#include <utility>

namespace QWK {

namespace {

//! How long the window may take to get where it was last asked to be, in milliseconds.
constexpr ulong SettlingTime = 250;

} // namespace

WidgetWindowAgent::WidgetWindowAgent(QObject *parent)
    : WindowAgentBase(parent)
{
}

WidgetWindowAgent::~WidgetWindowAgent() = default;

bool WidgetWindowAgent::setup(QWidget *window)
{
    if (!window || m_isSetUp)
        return false;

    m_isSetUp = true;
    m_widget = window;
    m_widget->installEventFilter(this);
    attach();
    return true;
}

bool WidgetWindowAgent::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_widget && event->type() == QEvent::WinIdChange)
        attach();
    if (watched != m_window)
        return WindowAgentBase::eventFilter(watched, event);

    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return handlePress(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return handleMove(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return handleRelease(*static_cast<QMouseEvent *>(event));
    case QEvent::Leave:
        // In a fast drag the pointer leaves the window until that has caught up. Newer versions of
        // Qt tell of that, but not of the return while a button is down: what the pointer comes
        // upon next would miss its Enter.
        return m_isDragging;
    case QEvent::Move:
        if (static_cast<QMoveEvent *>(event)->pos() == m_requested)
            m_isSettling = false;
        return false;
    default:
        return WindowAgentBase::eventFilter(watched, event);
    }
}

//! Watches the native window that the widget has now, if any, and keeps the widget frameless.
void WidgetWindowAgent::attach()
{
    // Not setWindowFlag(): that would hide the window and make a new native one.
    m_widget->overrideWindowFlags(m_widget->windowFlags() | Qt::FramelessWindowHint);

    QWindow *window = m_widget->windowHandle();
    if (window)
        window->setFlag(Qt::FramelessWindowHint);
    if (window == m_window)
        return;

    if (m_window)
        m_window->removeEventFilter(this);
    if (window)
        window->installEventFilter(this);
    m_window = window;
    m_isDragging = false;
    m_isSettling = false;
    m_exact.reset();
}

bool WidgetWindowAgent::handlePress(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return false;

    // Whoever answers may delete the agent, for instance with its window.
    const QPointer<WidgetWindowAgent> self(this);
    const bool mayDrag = emit inTitleBarDraggableArea(event.pos());
    if (!self)
        return mayDrag;
    m_isDragging = mayDrag;
    if (!m_isDragging)
        return false;

    // Until the window manager has carried out the last move, a press is relative to the window's
    // old place. The manager may also refuse the move: after a while the window's real place
    // counts.
    m_isSettling = m_isSettling && event.timestamp() - m_requestTime < SettlingTime;
    // If the window is where it was last asked to be, the exact place counts: otherwise the
    // rounding of many drags would add up.
    const QPointF offset = event.screenPos() - event.localPos() - m_requested;
    const bool isThere = std::abs(offset.x()) < 1 && std::abs(offset.y()) < 1;
    m_grip = m_exact && (m_isSettling || isThere) ? event.screenPos() - *m_exact : event.localPos();
    return true;
}

bool WidgetWindowAgent::handleMove(const QMouseEvent &event)
{
    if (!m_isDragging)
        return false;
    if (!event.buttons().testFlag(Qt::LeftButton)) {
        m_isDragging = false;
        return false;
    }

    m_exact = event.screenPos() - m_grip;
    const QPoint former = std::exchange(m_requested, m_exact->toPoint());
    m_requestTime = event.timestamp();
    // While a move is under way, Qt may still be told of the one before. It does nothing for the
    // place that it takes for the window's, so a motion back there needs one to somewhere else.
    if (m_isSettling && m_requested != former && m_window->position() == m_requested)
        m_window->setPosition(m_requested + QPoint(1, 0));
    m_isSettling = true;
    m_window->setPosition(m_requested);
    return true;
}

bool WidgetWindowAgent::handleRelease(const QMouseEvent &event)
{
    if (!m_isDragging || event.button() != Qt::LeftButton)
        return false;

    m_isDragging = false;
    return true;
}

} // namespace QWK
