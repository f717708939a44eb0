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
