#pragma once

#include <QPoint>
#include <QStringList>

// The mouse as a user has it: real input through the X server, in its pixels. Actions are words of
// xdotool; added up, they run without a pause. Button 1 is the left one.

QStringList moveTo(const QPoint &global);
QStringList press(int button = 1);
QStringList release(int button = 1);
QStringList click(int button = 1, int repeat = 1);
//! A whole drag with the left button.
QStringList drag(const QPoint &from, const QPoint &to);

//! Runs xdotool with \a words to its end, without handling an event of this process meanwhile. The
//! calling test fails where that doesn't succeed.
void xdotool(const QStringList &words);
//! The same, but this process goes on handling its events meanwhile.
void xdotoolBeside(const QStringList &words);
