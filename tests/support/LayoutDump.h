#pragma once

#include <QString>
#include <QStringList>

class QObject;
class QWidget;

/*!
    The layout tree of \a widget as text, a line an item, indented by depth, to compare with what a
    form should hold: class and object name of layouts and widgets, size and policies of spacers.
    Only what differs from a fresh layout is written behind a layout's name: its spacing, its
    contents margins, and stretch or alignment of an item.
*/
QString dumpLayout(const QWidget &widget);

//! The object names of the direct children of \a object that have one, in order of creation.
QStringList namedChildren(const QObject &object);

//! The window title of \a form and the texts of its labels and buttons, in order of creation.
QStringList formTexts(const QWidget &form);

/*!
    The object names of what the \a size bytes at \a ui point to, a form's class with nothing but
    pointers into \a form, in their order; "spacer" for what has no name.
*/
QStringList formMembers(const void *ui, size_t size, const QWidget &form);
