#include "tests/windowkit/AgentWindow.h"
#include "tests/support/waits.h"

#include <QWKCore/windowagentbase.h>

#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QWindow>

namespace {

constexpr int TimeoutMs = 20000;

//! Waits until \a condition holds, for a comparison behind it. The QTRY macros look every 50 ms
//! only: too seldom for hundreds of drags.
template<typename Condition>
void waitFor(Condition condition)
{
    static_cast<void>(QTest::qWaitFor(condition, TimeoutMs));
}

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
    present();
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

void xdotool(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("xdotool"), arguments);
    QVERIFY(process.waitForFinished(TimeoutMs));
    QCOMPARE(process.exitCode(), 0);
}

void xdotoolBeside(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("xdotool"), arguments);
    waitFor([&process] { return process.state() == QProcess::NotRunning; });
    QCOMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(process.exitCode(), 0);
}

QStringList moveTo(const QPoint &global)
{
    return {QStringLiteral("mousemove"), QString::number(global.x()), QString::number(global.y())};
}

const QStringList PressLeft = {QStringLiteral("mousedown"), QStringLiteral("1")};
const QStringList ReleaseLeft = {QStringLiteral("mouseup"), QStringLiteral("1")};

QStringList click(int button, int repeat)
{
    return {QStringLiteral("click"),   QStringLiteral("--repeat"), QString::number(repeat),
            QStringLiteral("--delay"), QStringLiteral("20"),       QString::number(button)};
}

QStringList drag(const QPoint &from, const QPoint &to)
{
    return moveTo(from) + PressLeft + moveTo(to) + ReleaseLeft;
}

QPoint placeOnServer(const QWidget &window)
{
    QProcess process;
    process.start(QStringLiteral("xdotool"),
                  {QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"),
                   QString::number(window.windowHandle()->winId())});
    process.waitForFinished(TimeoutMs);
    const QString text = QString::fromLatin1(process.readAllStandardOutput());
    const auto value = [&text](const QString &name) {
        return QRegularExpression(name + QStringLiteral("=(-?\\d+)"))
                .match(text)
                .captured(1)
                .toInt();
    };
    return {value(QStringLiteral("X")), value(QStringLiteral("Y"))};
}

void settle(const Window &window)
{
    static int count = 0;
    const QPoint inPage(10 + ++count % 100, 10);
    xdotool(moveTo(placeOnServer(window) + PageRect.topLeft() + inPage));
    waitFor([&] { return window.page->lastMotion == inPage; });
    QCOMPARE(window.page->lastMotion, inPage);
}

void Window::present()
{
    show();
    QVERIFY(QTest::qWaitForWindowExposed(this, WindowTimeoutMs));
    waitFor([this] { return placeOnServer(*this) == pos(); });
    QCOMPARE(placeOnServer(*this), pos());
    settle(*this);
}

void verifyPlace(const Window &window, const QPoint &place)
{
    waitFor([&] { return window.pos() == place && placeOnServer(window) == place; });
    QCOMPARE(placeOnServer(window), place);
    QCOMPARE(window.pos(), place);
}

void verifyDrags(const Window &window)
{
    const QPoint start = placeOnServer(window);
    const QPoint distance(123, -45);
    xdotool(drag(start + HeaderPoint, start + HeaderPoint + distance));
    verifyPlace(window, start + distance);
    xdotool(drag(start + distance + PagePoint, start + PagePoint));
    settle(window);
    verifyPlace(window, start + distance);
}
