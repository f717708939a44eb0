#include "tests/windowkit/AgentWindow.h"

#include "tests/support/ServerWindow.h"
#include "tests/support/realInput.h"
#include "tests/support/waits.h"

#include <QWKCore/windowagentbase.h>

#include <QDeadlineTimer>
#include <QDebug>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <QWindow>

namespace {

constexpr int TimeoutMs = 20000;
constexpr int MotionTimeoutMs = 2000;

} // namespace

Recorder::Recorder(const QRect &geometry, QWidget *parent)
    : QWidget(parent)
{
    setGeometry(geometry);
    setMouseTracking(true);
}

bool Recorder::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        events.append(event->type());
        buttons.append(static_cast<QMouseEvent *>(event)->button());
        return true;
    case QEvent::MouseMove:
        lastMotion = static_cast<QMouseEvent *>(event)->pos();
        return true;
    default:
        return QWidget::event(event);
    }
}

Window::Window()
    : header(new Recorder(HeaderRect, this))
    , button(new QPushButton(this))
    , page(new Recorder(PageRect, this))
{
    setWindowFlag(Qt::FramelessWindowHint);
    setFixedSize(WindowSize);
    move(WindowPosition);
    button->setGeometry(ButtonRect);
}

Answer::Answer(QWK::WindowAgentBase *agent)
{
    connect(agent, &QWK::WindowAgentBase::inTitleBarDraggableArea, this, [this](const QPoint &pos) {
        questions.append(pos);
        return HeaderRect.contains(pos);
    });
}

ServedWindow::ServedWindow()
{
    agent.setup(this);
}

Observer::Observer(QWindow *window)
{
    window->installEventFilter(this);
}

bool Observer::eventFilter(QObject * /*watched*/, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease) {
        events.append(event->type());
        buttons.append(static_cast<QMouseEvent *>(event)->button());
    }
    return false;
}

const QVector<QEvent::Type> PressAndRelease = {QEvent::MouseButtonPress,
                                               QEvent::MouseButtonRelease};

QPoint placeOnServer(const QWidget &window)
{
    return serverWindow(window.windowHandle()->winId()).geometry.topLeft();
}

bool settle(const Window &window)
{
    static int count = 0;
    const QDeadlineTimer deadline(TimeoutMs);
    // Once more where the window has moved away under the pointer.
    while (!deadline.hasExpired()) {
        const QPoint inPage(10 + ++count % 100, 10);
        xdotool(moveTo(placeOnServer(window) + PageRect.topLeft() + inPage));
        if (QTest::qWaitFor([&] { return window.page->lastMotion == inPage; }, MotionTimeoutMs))
            return true;
    }
    return false;
}

bool Window::present()
{
    show();
    return QTest::qWaitForWindowExposed(this, WindowTimeoutMs)
           && QTest::qWaitFor([this] { return placeOnServer(*this) == pos(); }, TimeoutMs)
           && settle(*this);
}

bool comesTo(const Window &window, const QPoint &place)
{
    const auto isThere = [&] { return window.pos() == place && placeOnServer(window) == place; };
    // The QTRY macros look every 50 ms only: too seldom for hundreds of drags.
    if (QTest::qWaitFor(isThere, TimeoutMs))
        return true;
    qWarning() << "The window is at" << placeOnServer(window) << "for the server, at"
               << window.pos() << "for Qt, not at" << place;
    return false;
}

bool isDraggedByItsHeaderOnly(const Window &window)
{
    const QPoint start = placeOnServer(window);
    const QPoint distance(123, -45);
    xdotool(drag(start + HeaderPoint, start + HeaderPoint + distance));
    if (!comesTo(window, start + distance))
        return false;
    xdotool(drag(start + distance + PagePoint, start + PagePoint));
    return settle(window) && comesTo(window, start + distance);
}
