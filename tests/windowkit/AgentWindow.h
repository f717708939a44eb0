#pragma once

#include <QWKWidgets/widgetwindowagent.h>

#include <QEvent>
#include <QPoint>
#include <QRect>
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

    //! Shows the window; whether the server has it in its place then.
    bool present();

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

//! A window that may be dragged by its header.
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

//! Where the X server has the window.
QPoint placeOnServer(const QWidget &window);
//! Whether every event up to now gets handled: the page sees a last motion.
bool settle(const Window &window);
//! Whether the window comes to \a place, for the server and for Qt.
bool comesTo(const Window &window, const QPoint &place);
//! Whether a drag by its header moves the window, and one by its page doesn't.
bool isDraggedByItsHeaderOnly(const Window &window);
