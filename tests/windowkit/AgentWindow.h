#pragma once

#include <QWKWidgets/widgetwindowagent.h>

#include <QEvent>
#include <QPoint>
#include <QRect>
#include <QStringList>
#include <QVector>
#include <QWidget>

class QPushButton;

namespace QWK {
class WindowAgentBase;
}

constexpr QSize WindowSize(400, 200);
constexpr QPoint WindowPosition(300, 250);
constexpr QRect HeaderRect(0, 0, 340, 60);
constexpr QRect ButtonRect(340, 0, 60, 60);
constexpr QRect PageRect(0, 60, 400, 140);
//! Where most drags begin, and where the page is touched, in window coordinates.
constexpr QPoint HeaderPoint(150, 30);
constexpr QPoint PagePoint(100, 120);

//! A widget that records the mouse events that reach it.
class Recorder : public QWidget
{
    Q_OBJECT

public:
    Recorder(const QRect &geometry, QWidget *parent);

    QVector<QEvent::Type> events; // without motion
    QVector<Qt::MouseButton> buttons; // one for each event
    QPoint lastMotion;

protected:
    bool event(QEvent *event) override;
};

//! A small frameless window: a header that may drag, a button at its right and a page below.
class Window : public QWidget
{
    Q_OBJECT

public:
    Window();

    //! Shows the window and waits until the server has it in its place.
    void present();

    Recorder *header;
    QPushButton *button;
    Recorder *page;
};

//! Answers the agent, true for the header, and records its questions.
class Answer : public QObject
{
    Q_OBJECT

public:
    explicit Answer(QWK::WindowAgentBase *agent);

    QVector<QPoint> questions;
};

//! A window on the screen that may be dragged by its header.
class ServedWindow : public Window
{
    Q_OBJECT

public:
    ServedWindow();

    QWK::WidgetWindowAgent agent;
    Answer answer {&agent};
};

//! Records the presses and releases that later event filters of \a window let pass.
class Observer : public QObject
{
    Q_OBJECT

public:
    explicit Observer(QWindow *window);

    bool eventFilter(QObject *watched, QEvent *event) override;

    QVector<QEvent::Type> events;
    QVector<Qt::MouseButton> buttons; // one for each event
};

//! A press and its release, as Recorder and Observer record them.
extern const QVector<QEvent::Type> PressAndRelease;

//! Runs xdotool to its end. No event of this process is handled meanwhile.
void xdotool(const QStringList &arguments);
//! Runs xdotool to its end while this process goes on handling its events.
void xdotoolBeside(const QStringList &arguments);

// Arguments of xdotool. They can be added up.
extern const QStringList PressLeft;
extern const QStringList ReleaseLeft;
QStringList moveTo(const QPoint &global);
QStringList click(int button, int repeat = 1);
//! A whole drag, without a pause.
QStringList drag(const QPoint &from, const QPoint &to);

//! Where the X server has the window.
QPoint placeOnServer(const QWidget &window);
//! Waits until every event up to now has been handled: the page has seen a last motion.
void settle(const Window &window);
//! The window comes to \a place, for the server and for Qt.
void verifyPlace(const Window &window, const QPoint &place);
//! Drags the window once by its header, and by its page in vain.
void verifyDrags(const Window &window);
